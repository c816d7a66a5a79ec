#include "views/pictures/PictureQueue.h"

#include <algorithm>
#include <mutex>
#include <utility>
#include <vector>

namespace Qorvane {

class PictureQueue::Desk
{
public:
    Ticket add(const QString &path, Work work)
    {
        const std::scoped_lock lock(m_mutex);
        if (!m_isClosed)
            m_waiting.push_back({++m_lastTicket, path, std::move(work)});
        return m_lastTicket;
    }

    bool drop(Ticket ticket)
    {
        const std::scoped_lock lock(m_mutex);
        return std::erase_if(m_waiting, [ticket](const Entry &entry) { return entry.ticket == ticket; }) > 0;
    }

    void setVisiblePaths(const QSet<QString> &paths)
    {
        const std::scoped_lock lock(m_mutex);
        m_visiblePaths = paths;
    }

    void close()
    {
        std::vector<Entry> dropped; // goes without the lock: it is somebody else's
        const std::scoped_lock lock(m_mutex);
        m_isClosed = true;
        dropped.swap(m_waiting);
    }

    void runNext()
    {
        const Work work = takeNext();
        if (!work)
            return;
        const Delivery deliver = work();
        // Under the lock, so that nobody closes the queue, and goes, in the middle of it.
        const std::scoped_lock lock(m_mutex);
        if (deliver && !m_isClosed)
            deliver();
    }

private:
    struct Entry
    {
        Ticket ticket;
        QString path;
        Work work;
    };

    Work takeNext()
    {
        const std::scoped_lock lock(m_mutex);
        if (m_waiting.empty())
            return {};
        auto next = std::find_if(m_waiting.begin(), m_waiting.end(),
                                 [this](const Entry &entry) { return m_visiblePaths.contains(entry.path); });
        if (next == m_waiting.end())
            next = std::prev(m_waiting.end());
        Work work = std::move(next->work);
        m_waiting.erase(next);
        return work;
    }

    std::mutex m_mutex;
    std::vector<Entry> m_waiting; // in the order asked for
    QSet<QString> m_visiblePaths;
    Ticket m_lastTicket = 0;
    bool m_isClosed = false;
};

PictureQueue::PictureQueue(int threadCount)
    : m_desk(std::make_shared<Desk>())
    // Behind the window, which draws the scroll that asks for them, and before the runs.
    , m_threads(QualityOfService::utility, threadCount)
{
}

PictureQueue::~PictureQueue()
{
    close();
}

PictureQueue::Ticket PictureQueue::add(const QString &path, Work work)
{
    const Ticket ticket = m_desk->add(path, std::move(work));
    // One turn for each piece; which piece a turn takes is decided when a thread is free for it.
    m_threads.start([desk = m_desk] { desk->runNext(); });
    return ticket;
}

bool PictureQueue::drop(Ticket ticket)
{
    return m_desk->drop(ticket);
}

void PictureQueue::setVisiblePaths(const QSet<QString> &paths)
{
    m_desk->setVisiblePaths(paths);
}

void PictureQueue::close()
{
    m_desk->close();
}

} // namespace Qorvane
