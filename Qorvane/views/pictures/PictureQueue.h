#pragma once

#include "platform/LeavablePool.h"

#include <QSet>
#include <QString>

#include <functional>
#include <memory>

namespace Qorvane {

/// Pictures for a window, made by a few threads at a time. What a cell in view waits for goes first, in
/// the order it was asked for; then the rest, newest first, since that is nearest to where the user is. Work
/// whose cell is gone is dropped before its turn. Any thread.
class PictureQueue
{
public:
    /// Makes what is to be delivered, on a thread of the queue's, and owns all that it uses: it may outlive
    /// the queue. Nothing is delivered where it returns nothing.
    using Delivery = std::function<void()>;
    using Work = std::function<Delivery()>;
    using Ticket = quint64;

    /// `threadCount` pieces of work run at the same time.
    explicit PictureQueue(int threadCount);
    /// Closes it.
    ~PictureQueue();
    PictureQueue(const PictureQueue &) = delete;
    PictureQueue &operator=(const PictureQueue &) = delete;

    /// Queues `work` for the file at `path`. Dropped when the queue is closed.
    Ticket add(const QString &path, Work work);

    /// Drops what waits, and what running work makes is never delivered: nothing of it reaches anybody once
    /// this has returned. Doesn't wait for the work, which may be at a file on a drive that no longer
    /// answers.
    void close();

    /// Takes the work back; false when it has begun, or is done.
    bool drop(Ticket ticket);

    /// Names the files whose cells are in view now.
    void setVisiblePaths(const QSet<QString> &paths);

private:
    class Desk;
    const std::shared_ptr<Desk> m_desk; // running work outlives the queue with it
    LeavablePool m_threads;
};

} // namespace Qorvane
