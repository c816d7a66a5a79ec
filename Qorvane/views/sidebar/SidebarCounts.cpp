#include "views/sidebar/SidebarCounts.h"

#include "platform/GlobalQueue.h"
#include "platform/MainQueue.h"
#include "store/EmbeddingStore.h"

#include <QElapsedTimer>
#include <QPointer>

#include <algorithm>

namespace Qorvane {

namespace {

using std::chrono::milliseconds;

// Nobody sees more than a frame's worth of changes.
constexpr milliseconds frame(16);
// Of each ten moments the store works for this in one at most, even while a run announces something without
// end.
constexpr int restsPerRead = 9;

} // namespace

SidebarCounts::SidebarCounts(Source source, QObject *parent)
    : QObject(parent)
    , m_source(std::make_shared<const Source>(std::move(source)))
{
    m_wait.setSingleShot(true);
    connect(&m_wait, &QTimer::timeout, this, &SidebarCounts::read);
}

TagAndRatingCounts SidebarCounts::readStore()
{
    return {EmbeddingStore::shared().getAllTagCounts(), EmbeddingStore::shared().getAllRatingCounts()};
}

void SidebarCounts::refresh()
{
    m_isStale = true;
    if (m_isReading || m_wait.isActive())
        return;
    const milliseconds rest(m_rest.remainingTime());
    m_wait.start(std::max(frame, rest));
}

void SidebarCounts::read()
{
    m_isReading = true;
    m_isStale = false;
    GlobalQueue::async(
        QualityOfService::userInitiated, [self = QPointer(this), weak = std::weak_ptr(m_source)] {
            const std::shared_ptr<const Source> source = weak.lock();
            if (!source)
                return;
            QElapsedTimer timer;
            timer.start();
            const TagAndRatingCounts counts = (*source)();
            MainQueue::async([self, counts, duration = std::chrono::nanoseconds(timer.nsecsElapsed())] {
                if (self)
                    self->take(counts, duration);
            });
        });
}

void SidebarCounts::take(const TagAndRatingCounts &counts, std::chrono::nanoseconds duration)
{
    m_isReading = false;
    m_rest.setPreciseRemainingTime(0, (duration * restsPerRead).count());
    if (m_last != counts) {
        m_last = counts;
        Q_EMIT changed(counts);
    }
    if (m_isStale)
        refresh();
}

} // namespace Qorvane
