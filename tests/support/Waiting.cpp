#include "support/Waiting.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QTimer>

namespace Qorvane {

bool waitUntil(const std::function<bool()> &condition, std::chrono::milliseconds timeout)
{
    const QDeadlineTimer deadline(timeout);
    // Wakes the loop now and then, for conditions that change without an event of ours (a file on disk).
    QTimer heartbeat;
    heartbeat.start(std::chrono::milliseconds(10));
    while (!condition()) {
        if (deadline.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

void drainMainQueue()
{
    bool isReached = false;
    QMetaObject::invokeMethod(
        QCoreApplication::instance(), [&isReached] { isReached = true; }, Qt::QueuedConnection);
    while (!isReached)
        QCoreApplication::processEvents();
    QCoreApplication::processEvents();
}

} // namespace Qorvane
