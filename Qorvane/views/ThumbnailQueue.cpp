#include "views/ThumbnailQueue.h"

#include <algorithm>
#include <thread>

namespace Qorvane {

ThumbnailQueue::ThumbnailQueue(int threadCount)
{
    m_pool->setMaxThreadCount(threadCount);
    m_pool->setObjectName(QStringLiteral("thumbnails"));
}

ThumbnailQueue::~ThumbnailQueue()
{
    {
        const std::scoped_lock lock(m_desk->mutex);
        m_desk->waiting.clear();
    }
    m_pool->clear();
    if (m_pool->waitForDone(0))
        return;
    // A pool waits for its threads when it goes, so it goes elsewhere.
    std::thread([pool = std::move(m_pool)]() mutable { pool.reset(); }).detach();
}

ThumbnailQueue::Ticket ThumbnailQueue::add(const QString &path, Work work)
{
    Ticket ticket = 0;
    {
        const std::scoped_lock lock(m_desk->mutex);
        ticket = ++m_desk->lastTicket;
        m_desk->waiting.push_back({ticket, path, std::move(work)});
    }
    // One turn for each piece; which piece a turn takes is decided when a thread is free for it.
    m_pool->start([desk = m_desk] {
        if (const Work next = desk->takeNext())
            next();
    });
    return ticket;
}

bool ThumbnailQueue::drop(Ticket ticket)
{
    const std::scoped_lock lock(m_desk->mutex);
    return std::erase_if(m_desk->waiting, [ticket](const Entry &entry) { return entry.ticket == ticket; }) >
           0;
}

void ThumbnailQueue::setVisiblePaths(const QSet<QString> &paths)
{
    const std::scoped_lock lock(m_desk->mutex);
    m_desk->visiblePaths = paths;
}

ThumbnailQueue::Work ThumbnailQueue::Desk::takeNext()
{
    const std::scoped_lock lock(mutex);
    if (waiting.empty())
        return {};
    auto next = std::find_if(waiting.begin(), waiting.end(),
                             [this](const Entry &entry) { return visiblePaths.contains(entry.path); });
    if (next == waiting.end())
        next = std::prev(waiting.end());
    Work work = std::move(next->work);
    waiting.erase(next);
    return work;
}

} // namespace Qorvane
