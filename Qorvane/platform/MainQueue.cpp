#include "platform/MainQueue.h"

#include <QCoreApplication>
#include <QPointer>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <map>
#include <utility>

namespace Qorvane {

namespace {

using Clock = std::chrono::steady_clock;

// Timers count in milliseconds and would let a block overtake one that is due a little earlier. So a timer
// only says that something may be due; what is due runs in the order of its times. Lives as long as the
// application, on its thread.
class DelayedBlocks : public QObject
{
public:
    static DelayedBlocks &instance()
    {
        static QPointer<DelayedBlocks> current;
        if (!current)
            current = new DelayedBlocks(QCoreApplication::instance());
        return *current;
    }

    void add(Clock::time_point due, MainQueue::Block block)
    {
        m_blocks.emplace(due, std::move(block));
        const auto wait = std::max(due - Clock::now(), Clock::duration::zero());
        QTimer::singleShot(std::chrono::ceil<std::chrono::milliseconds>(wait), Qt::PreciseTimer, this,
                           [this, due] { runUntil(std::max(due, Clock::now())); });
    }

private:
    using QObject::QObject;

    void runUntil(Clock::time_point limit)
    {
        // Taken out first: a block may run an event loop of its own.
        while (!m_blocks.empty() && m_blocks.begin()->first <= limit)
            m_blocks.extract(m_blocks.begin()).mapped()();
    }

    std::multimap<Clock::time_point, MainQueue::Block> m_blocks;
};

} // namespace

void MainQueue::async(Block block)
{
    if (QCoreApplication *application = QCoreApplication::instance())
        QMetaObject::invokeMethod(application, std::move(block), Qt::QueuedConnection);
}

void MainQueue::after(double seconds, Block block)
{
    const auto delay = std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
    // Timers belong to a thread with an event loop, so it is started there.
    async([due = Clock::now() + delay, block = std::move(block)]() mutable {
        DelayedBlocks::instance().add(due, std::move(block));
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
