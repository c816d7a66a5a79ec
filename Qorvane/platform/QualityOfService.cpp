#include "platform/QualityOfService.h"

#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace Qorvane {

namespace {

// Niceness per class: 0 is the window's own; 19 is the weakest there is and yields almost the whole
// processor to anything else that wants it; 5 leaves utility work behind the window but well before that.
int niceness(QualityOfService quality)
{
    switch (quality) {
    case QualityOfService::userInitiated:
        return 0;
    case QualityOfService::utility:
        return 5;
    case QualityOfService::background:
        return 19;
    }
    return 0;
}

} // namespace

void applyToCurrentThread(QualityOfService quality)
{
    // On Linux niceness belongs to the thread when it is addressed by its own id.
    setpriority(PRIO_PROCESS, static_cast<id_t>(::syscall(SYS_gettid)), niceness(quality));
}

} // namespace Qorvane
