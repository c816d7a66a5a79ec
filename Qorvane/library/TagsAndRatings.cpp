#include "library/TagsAndRatings.h"

#include "library/DeferredWrites.h"
#include "library/LibrarySnapshot.h"
#include "library/LibraryState.h"
#include "library/MediaList.h"
#include "library/SelectionRules.h"
#include "platform/GlobalQueue.h"
#include "platform/MainQueue.h"
#include "store/EmbeddingStore.h"

#include <QPointer>

#include <algorithm>
#include <utility>

namespace Qorvane {

namespace {

// The stars that the views show. A photo is never rated 0 from here: that is what clearing is for.
constexpr int lowestRating = 1;
constexpr int highestRating = 5;

} // namespace

TagsAndRatings::TagsAndRatings(LibraryState &state, const std::shared_ptr<LibrarySnapshot> &snapshot,
                               const std::shared_ptr<DeferredWrites> &edits, MediaList &mediaList,
                               SelectionRules &selection)
    : m_state(state)
    , m_snapshot(snapshot)
    , m_edits(edits)
    , m_mediaList(mediaList)
    , m_selection(selection)
{
}

void TagsAndRatings::write(const std::function<void()> &edit, const std::function<void()> &then)
{
    m_edits->perform(edit, this, then);
}

void TagsAndRatings::addTag(const QString &tag, const FileUrl &url)
{
    write([tag, url] { EmbeddingStore::shared().addTag(url.path(), tag); },
          [this, tag] {
              refreshAllTags();
              reloadIfShowing(tag);
          });
}

void TagsAndRatings::removeTag(const QString &tag, const FileUrl &url)
{
    write([tag, url] { EmbeddingStore::shared().removeTag(url.path(), tag); },
          [this, tag] {
              refreshAllTags();
              reloadIfShowing(tag);
          });
}

void TagsAndRatings::renameTag(const QString &oldTag, const QString &newTag, const FileUrl &url)
{
    write([oldTag, newTag, url] { EmbeddingStore::shared().replaceTag(url.path(), oldTag, newTag); },
          [this, oldTag, newTag] {
              refreshAllTags();
              if (m_state.selectedTag() == oldTag || m_state.selectedTag() == newTag)
                  m_mediaList.loadImages();
          });
}

void TagsAndRatings::deleteTagGlobally(const QString &tag)
{
    write([tag] { EmbeddingStore::shared().deleteTagGlobally(tag); },
          [this, tag] {
              refreshAllTags();
              if (m_state.selectedTag() == tag)
                  m_selection.selectTag(std::nullopt);
          });
}

void TagsAndRatings::reloadIfShowing(const QString &tag)
{
    if (m_state.selectedTag() == tag)
        m_mediaList.loadImages();
}

void TagsAndRatings::setRating(int rating, const FileUrl &url)
{
    const int clamped = std::clamp(rating, lowestRating, highestRating);
    write([clamped, url] { EmbeddingStore::shared().setRating(url.path(), clamped); },
          [this, clamped, url] { followRating(clamped, url); });
}

void TagsAndRatings::followRating(int rating, const FileUrl &url)
{
    const std::optional<int> selected = m_state.selectedRating();
    if (!selected || *selected == rating)
        m_state.announceChange();
    else if (m_state.imageURLs().contains(url)) // it leaves the list shown
        m_mediaList.loadImages();
}

void TagsAndRatings::clearRating(const FileUrl &url)
{
    write([url] { EmbeddingStore::shared().clearRating(url.path()); },
          [this] {
              if (m_state.selectedRating())
                  m_mediaList.loadImages();
              else
                  m_state.announceChange();
          });
}

void TagsAndRatings::refreshAllTags()
{
    // The one at work may have read already what has changed since. However many ask meanwhile, one more is
    // enough: a busy store would else have a thread wait for each.
    if (m_isRefreshing) {
        m_isRefreshWanted = true;
        return;
    }
    m_isRefreshing = true;
    readAllTags();
}

void TagsAndRatings::readAllTags()
{
    GlobalQueue::async(QualityOfService::background,
                       [self = QPointer(this), weak = m_snapshot, edits = m_edits] {
                           if (weak.expired())
                               return;
                           edits->wait();
                           MainQueue::async([self, tags = EmbeddingStore::shared().listAllTags()] {
                               if (self)
                                   self->publishAllTags(tags);
                           });
                       });
}

void TagsAndRatings::publishAllTags(const QStringList &tags)
{
    m_isRefreshing = false;
    if (std::exchange(m_isRefreshWanted, false))
        refreshAllTags();
    m_state.publishAllTags(tags);
    if (m_state.selectedTag() && !tags.contains(*m_state.selectedTag()))
        m_selection.selectTag(std::nullopt);
}

std::function<QStringList(const QString &tag)> TagsAndRatings::pathsOfTag() const
{
    return [weak = std::weak_ptr(m_edits)](const QString &tag) {
        const std::shared_ptr<DeferredWrites> edits = weak.lock();
        if (!edits)
            return QStringList();
        edits->wait();
        return EmbeddingStore::shared().fetchPathsByTag(tag);
    };
}

} // namespace Qorvane
