#include "library/DeferredWrites.h"

#include "platform/MainQueue.h"

#include <QPointer>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <semaphore>
#include <utility>

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

DeferredWrites::DeferredWrites(QByteArray label)
    : m_queue(std::make_unique<SerialQueue>(std::move(label), QualityOfService::userInitiated))
{
}

DeferredWrites::~DeferredWrites()
{
    // A queue's end joins its thread, which may never come back.
    if (!wait(patienceAtTheEnd))
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
    const auto isReached = std::make_shared<std::binary_semaphore>(0);
    m_queue->async([isReached] { isReached->release(); });
    return isReached->try_acquire_for(std::chrono::duration<double>(seconds));
}

void DeferredWrites::waitUntilIdle()
{
    openWrites().waitForNone();
}

} // namespace Qorvane
