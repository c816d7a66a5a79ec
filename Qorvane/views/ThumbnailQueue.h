#pragma once

#include <QSet>
#include <QString>
#include <QThreadPool>

#include <functional>
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
    /// Drops what waits, and waits for what runs.
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

    void runNext();
    Work takeNext();

    std::mutex m_mutex;
    std::vector<Entry> m_waiting; // in the order asked for
    QSet<QString> m_visiblePaths;
    Ticket m_lastTicket = 0;
    QThreadPool m_pool; // last: its threads use all of the above
};

} // namespace Qorvane
