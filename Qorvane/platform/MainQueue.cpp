#include "platform/MainQueue.h"

#include <QCoreApplication>
#include <QPointer>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <map>
#include <memory>
#include <mutex>
#include <utility>

namespace Qorvane {

namespace {

using Clock = std::chrono::steady_clock;

// What was queued and hasn't run. Not inside of Qt's events: those that are left when the application goes
// are deleted under the lock of its own event list, and a block may own something that posts an event as it
// goes, as an unfinished promise does to tell that it is cancelled, and would wait for that lock forever.
class QueuedBlocks
{
public:
    static QueuedBlocks &instance()
    {
        // Never taken down: background work may still queue when static objects go.
        static QueuedBlocks &blocks = *std::make_unique<QueuedBlocks>().release();
        return blocks;
    }

    void add(MainQueue::Block block)
    {
        const std::scoped_lock lock(m_mutex);
        if (!m_isOpen)
            return;
        const quint64 number = ++m_lastNumber;
        m_blocks.emplace(number, std::move(block));
        // Under the lock, so that the application, which has this closed as it goes, is still there.
        QMetaObject::invokeMethod(
            QCoreApplication::instance(), [this, number] { run(number); }, Qt::QueuedConnection);
    }

    void open()
    {
        const std::scoped_lock lock(m_mutex);
        m_isOpen = true;
        qAddPostRoutine([] { instance().close(); });
    }

private:
    using Blocks = std::map<quint64, MainQueue::Block>;

    void run(quint64 number)
    {
        Blocks::node_type node;
        {
            const std::scoped_lock lock(m_mutex);
            node = m_blocks.extract(number);
        }
        if (!node.empty())
            node.mapped()();
    }

    void close()
    {
        Blocks left; // goes without the lock: it may want to queue
        const std::scoped_lock lock(m_mutex);
        m_isOpen = false;
        left.swap(m_blocks);
    }

    std::mutex m_mutex;
    Blocks m_blocks;
    quint64 m_lastNumber = 0;
    bool m_isOpen = false; // while there is an application
};

void openQueuedBlocks()
{
    QueuedBlocks::instance().open();
}
Q_COREAPP_STARTUP_FUNCTION(openQueuedBlocks)

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
    QueuedBlocks::instance().add(std::move(block));
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
