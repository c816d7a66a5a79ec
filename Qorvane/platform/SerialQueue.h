#pragma once

#include "platform/QualityOfService.h"

#include <QByteArray>

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace Qorvane {

/// First in, first out, one block at a time, on a worker thread of its own that carries the label as its
/// name. The queue is the lock: what is touched only from its blocks needs no other.
class SerialQueue
{
public:
    using Block = std::function<void()>;

    SerialQueue(QByteArray label, QualityOfService quality);
    /// Runs what is still queued, then ends the thread. Not callable from a block of this queue.
    ~SerialQueue();
    SerialQueue(const SerialQueue &) = delete;
    SerialQueue &operator=(const SerialQueue &) = delete;

    /// Queues `block` and returns at once. Any thread, also from a block of this queue.
    void async(Block block);

    /// Queues `block` and waits until it has run. Any thread but the queue's own: from there it
    /// could never run, so that call is a programming error and ends the program.
    void sync(const Block &block);

    /// Whether the caller is inside a block of this queue.
    bool isCurrent() const;

    const QByteArray &label() const { return m_label; }

private:
    void run(QualityOfService quality);

    const QByteArray m_label;
    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::deque<Block> m_blocks;
    bool m_isEnding = false;
    std::thread m_thread;
};

} // namespace Qorvane
