#include "library/DeferredWrites.h"

#include "platform/Log.h"
#include "platform/MainQueue.h"

#include <QPointer>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <utility>
#include <vector>

namespace Qorvane {

namespace {

/// The writes of the whole process that haven't been made.
class OpenWrites
{
public:
    void add()
    {
        const std::scoped_lock lock(m_mutex);
        ++m_count;
    }

    void remove()
    {
        const std::scoped_lock lock(m_mutex);
        --m_count;
        m_wake.notify_all();
    }

    bool isNone()
    {
        const std::scoped_lock lock(m_mutex);
        return m_count == 0;
    }

    void waitForNone()
    {
        std::unique_lock lock(m_mutex);
        m_wake.wait(lock, [this] { return m_count == 0; });
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_wake;
    int m_count = 0;
};

OpenWrites &openWrites()
{
    // Never taken down: a write that hangs may come back at the very end of the process.
    static OpenWrites &instance = *std::make_unique<OpenWrites>().release();
    return instance;
}

} // namespace

DeferredWrites::DeferredWrites(QByteArray label, QString failure)
    : m_failure(std::move(failure))
    , m_queue(std::make_unique<SerialQueue>(std::move(label), QualityOfService::userInitiated))
{
}

DeferredWrites::~DeferredWrites()
{
    // A queue's end joins its thread, which may never come back.
    if (wait(patienceAtTheEnd))
        return;
    tellOfLoss();
    m_queue.release();
}

void DeferredWrites::perform(Block write)
{
    openWrites().add();
    m_queue->async([write = std::move(write)] {
        write();
        openWrites().remove();
    });
}

void DeferredWrites::perform(Block write, QObject *context, Block then)
{
    perform([write = std::move(write), guard = QPointer(context), then = std::move(then)] {
        write();
        MainQueue::async([guard, then] {
            if (guard)
                then();
        });
    });
}

void DeferredWrites::wait()
{
    m_queue->sync([] {});
}

bool DeferredWrites::wait(double seconds)
{
    return mark()->try_acquire_for(std::chrono::duration<double>(seconds));
}

void DeferredWrites::finish(std::initializer_list<DeferredWrites *> writes, double seconds)
{
    using Clock = std::chrono::steady_clock;
    const auto deadline =
        Clock::now() + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
    // All at once, so that one that hangs leaves the others their time.
    std::vector<std::pair<const DeferredWrites *, Mark>> marks;
    for (DeferredWrites *const one : writes)
        marks.emplace_back(one, one->mark());
    for (const auto &[one, mark] : marks) {
        if (!mark->try_acquire() && !mark->try_acquire_until(deadline))
            one->tellOfLoss();
    }
}

DeferredWrites::Mark DeferredWrites::mark()
{
    const auto mark = std::make_shared<std::binary_semaphore>(0);
    m_queue->async([mark] { mark->release(); });
    return mark;
}

void DeferredWrites::tellOfLoss() const
{
    Log::line(m_failure + QStringLiteral("the disk didn't answer in time"));
}

bool DeferredWrites::isIdle()
{
    return openWrites().isNone();
}

void DeferredWrites::waitUntilIdle()
{
    openWrites().waitForNone();
}

} // namespace Qorvane
