#include "platform/NotificationPermission.h"

#include "platform/MainQueue.h"

namespace Qorvane::NotificationPermission {

void request(const Completion &completion)
{
    if (completion)
        MainQueue::async([completion] { completion(true); });
}

} // namespace Qorvane::NotificationPermission
