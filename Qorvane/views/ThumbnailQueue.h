#pragma once

#include <QSet>
#include <QString>
#include <QThreadPool>

#include <functional>
#include <memory>
#include <mutex>
#include <vector>

namespace Qorvane {

/// Work for cells of a grid, done by a few threads at a time. What a cell in view waits for goes first, in
/// the order it was asked for; then the rest, newest first, since that is nearest to where the user is. Work
/// whose cell is gone is dropped before its turn. Any thread.
class ThumbnailQueue
{
public:
    /// `work` runs on a thread of the queue's.
    using Work = std::function<void()>;
    using Ticket = quint64;

    /// `threadCount` pieces of work run at the same time.
    explicit ThumbnailQueue(int threadCount);
    /// Drops what waits. What runs comes to its end by itself, later maybe: a file on a drive that no longer
    /// answers would hold up whoever closes the window.
    ~ThumbnailQueue();
    ThumbnailQueue(const ThumbnailQueue &) = delete;
    ThumbnailQueue &operator=(const ThumbnailQueue &) = delete;

    /// Queues `work` for the file at `path`.
    Ticket add(const QString &path, Work work);

    /// Takes the work back; false when it has begun, or is done.
    bool drop(Ticket ticket);

    /// Names the files whose cells are in view now.
    void setVisiblePaths(const QSet<QString> &paths);

private:
    struct Entry
    {
        Ticket ticket;
        QString path;
        Work work;
    };

    /// What the threads share with the queue, and may outlive it with.
    struct Desk
    {
        Work takeNext();

        std::mutex mutex;
        std::vector<Entry> waiting; // in the order asked for
        QSet<QString> visiblePaths;
        Ticket lastTicket = 0;
    };

    std::shared_ptr<Desk> m_desk = std::make_shared<Desk>();
    std::unique_ptr<QThreadPool> m_pool = std::make_unique<QThreadPool>();
};

} // namespace Qorvane
