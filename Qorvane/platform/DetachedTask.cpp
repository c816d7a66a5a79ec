#include "platform/DetachedTask.h"

#include <QThreadPool>

#include <limits>
#include <utility>

namespace Qorvane {

namespace {

QThreadPool &pool()
{
    static QThreadPool instance;
    // No task may keep another from starting (a whole folder run is one task), so the pool has no useful
    // limit.
    [[maybe_unused]] static const bool isUnlimited = [] {
        instance.setMaxThreadCount(std::numeric_limits<int>::max());
        return true;
    }();
    return instance;
}

} // namespace

TaskHandle DetachedTask::start(QualityOfService quality, Body body)
{
    TaskHandle handle;
    pool().start([quality, handle, body = std::move(body)] {
        applyToCurrentThread(quality);
        body(handle);
    });
    return handle;
}

void DetachedTask::waitUntilIdle()
{
    pool().waitForDone();
}

} // namespace Qorvane
