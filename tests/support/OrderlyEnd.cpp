#include "support/OrderlyEnd.h"

#include "platform/DetachedTask.h"
#include "platform/GlobalQueue.h"
#include "platform/LeavablePool.h"

#include <QCoreApplication>
#include <QEvent>

namespace Qorvane {

void finishAllWork()
{
    // Who goes on may begin something new.
    do {
        DetachedTask::waitUntilIdle();
        GlobalQueue::waitUntilIdle();
        LeavablePool::waitUntilIdle();
        // Only what is queued, and no timers: those may be for what a test had on its stack.
        QCoreApplication::sendPostedEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    } while (!DetachedTask::isIdle() || !GlobalQueue::isIdle() || !LeavablePool::isIdle());
}

} // namespace Qorvane
