#include "views/ThumbnailQueue.h"

#include "platform/QualityOfService.h"

#include <algorithm>

namespace Qorvane {

ThumbnailQueue::ThumbnailQueue(int threadCount)
{
    m_pool.setMaxThreadCount(threadCount);
    m_pool.setObjectName(QStringLiteral("thumbnails"));
}

ThumbnailQueue::~ThumbnailQueue()
{
    {
        const std::scoped_lock lock(m_mutex);
        m_waiting.clear();
    }
    m_pool.waitForDone();
}

ThumbnailQueue::Ticket ThumbnailQueue::add(const QString &path, Work work)
{
    Ticket ticket = 0;
    {
        const std::scoped_lock lock(m_mutex);
        ticket = ++m_lastTicket;
        m_waiting.push_back({ticket, path, std::move(work)});
    }
    // One turn for each piece; which piece a turn takes is decided when a thread is free for it.
    m_pool.start([this] { runNext(); });
    return ticket;
}

bool ThumbnailQueue::drop(Ticket ticket)
{
    const std::scoped_lock lock(m_mutex);
    return std::erase_if(m_waiting, [ticket](const Entry &entry) { return entry.ticket == ticket; }) > 0;
}

void ThumbnailQueue::setVisiblePaths(const QSet<QString> &paths)
{
    const std::scoped_lock lock(m_mutex);
    m_visiblePaths = paths;
}

void ThumbnailQueue::runNext()
{
    // Behind the window, which draws the scroll that asks for them, and before the runs.
    if (qualityOfCurrentThread() != QualityOfService::utility)
        applyToCurrentThread(QualityOfService::utility);
    if (const Work work = takeNext())
        work();
}

ThumbnailQueue::Work ThumbnailQueue::takeNext()
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

} // namespace Qorvane
