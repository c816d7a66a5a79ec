#include "platform/SerialQueue.h"

#include <QtGlobal>

#include <pthread.h>

#include <semaphore>
#include <utility>

namespace Qorvane {

SerialQueue::SerialQueue(QByteArray label, QualityOfService quality)
    : m_label(std::move(label))
{
    withFullWeight([this, quality] { m_thread = std::thread([this, quality] { run(quality); }); });
}

SerialQueue::~SerialQueue()
{
    {
        const std::scoped_lock lock(m_mutex);
        m_isEnding = true;
    }
    m_wake.notify_one();
    m_thread.join();
}

void SerialQueue::async(Block block)
{
    {
        const std::scoped_lock lock(m_mutex);
        m_blocks.push_back(std::move(block));
    }
    m_wake.notify_one();
}

void SerialQueue::sync(const Block &block)
{
    if (isCurrent())
        qFatal("SerialQueue::sync called on its own queue %s", m_label.constData());
    std::binary_semaphore done(0);
    async([&] {
        block();
        done.release();
    });
    done.acquire();
}

bool SerialQueue::isCurrent() const
{
    return std::this_thread::get_id() == m_thread.get_id();
}

void SerialQueue::run(QualityOfService quality)
{
    // The kernel keeps 15 bytes of a thread's name; the end of a reverse name is the telling part.
    pthread_setname_np(pthread_self(), m_label.right(15).constData());
    applyToCurrentThread(quality);
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_wake.wait(lock, [this] { return m_isEnding || !m_blocks.empty(); });
        if (m_blocks.empty())
            return;
        const Block block = std::move(m_blocks.front());
        m_blocks.pop_front();
        lock.unlock();
        block();
        lock.lock();
    }
}

} // namespace Qorvane
