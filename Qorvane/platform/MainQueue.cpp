#include "platform/MainQueue.h"

#include <QCoreApplication>
#include <QThread>
#include <QTimer>

#include <chrono>
#include <cmath>
#include <utility>

namespace Qorvane {

void MainQueue::async(Block block)
{
    if (QCoreApplication *application = QCoreApplication::instance())
        QMetaObject::invokeMethod(application, std::move(block), Qt::QueuedConnection);
}

void MainQueue::after(double seconds, Block block)
{
    const std::chrono::milliseconds delay{std::llround(seconds * 1000)};
    const auto start = std::chrono::steady_clock::now();
    // Timers belong to a thread with an event loop, so it is started there; the time the hop took is taken
    // off.
    async([delay, start, block = std::move(block)]() mutable {
        const auto passed =
            std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start);
        QTimer::singleShot(std::max(delay - passed, std::chrono::milliseconds::zero()), Qt::PreciseTimer,
                           QCoreApplication::instance(), std::move(block));
    });
}

void MainQueue::sync(const Block &block)
{
    if (isCurrent()) {
        block();
        return;
    }
    if (QCoreApplication *application = QCoreApplication::instance())
        QMetaObject::invokeMethod(application, block, Qt::BlockingQueuedConnection);
}

bool MainQueue::isCurrent()
{
    const QCoreApplication *application = QCoreApplication::instance();
    return application && application->thread() == QThread::currentThread();
}

} // namespace Qorvane
