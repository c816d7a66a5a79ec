#pragma once

#include "platform/FileUrl.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

namespace Qorvane {

class DeferredWrites;
class LibrarySnapshot;
class LibraryState;
class MediaList;
class SelectionRules;

/// Tags and ratings as the views change them: written to the store, in the order of the calls, and then the
/// list and the tags shown follow. GUI thread.
///
/// The store's operations wait for their turn, behind a scan of all vectors if need be, so it is not the GUI
/// thread that waits for a write. What has to stay on that thread is all that follows a write: it changes
/// published state. And what is asked of the store for its answer (`EmbeddingStore::getRating`, `getTags`)
/// holds its caller by its nature; who asks when such a change is announced finds it written.
class TagsAndRatings : public QObject
{
    Q_OBJECT

public:
    /// What is given by reference outlives it.
    TagsAndRatings(LibraryState &state, const std::shared_ptr<LibrarySnapshot> &snapshot,
                   const std::shared_ptr<DeferredWrites> &edits, MediaList &mediaList,
                   SelectionRules &selection);

    void addTag(const QString &tag, const FileUrl &url);
    void removeTag(const QString &tag, const FileUrl &url);
    void renameTag(const QString &oldTag, const QString &newTag, const FileUrl &url);
    void deleteTagGlobally(const QString &tag);
    void setRating(int rating, const FileUrl &url);
    void clearRating(const FileUrl &url);
    void refreshAllTags();
    std::function<QStringList(const QString &tag)> pathsOfTag() const;

private:
    void write(const std::function<void()> &edit, const std::function<void()> &then);
    void reloadIfShowing(const QString &tag);
    void followRating(int rating, const FileUrl &url);
    void readAllTags();
    void publishAllTags(const QStringList &tags);

    LibraryState &m_state;
    const std::weak_ptr<LibrarySnapshot> m_snapshot;
    const std::shared_ptr<DeferredWrites> m_edits;
    MediaList &m_mediaList;
    SelectionRules &m_selection;
    bool m_isRefreshing = false;
    bool m_isRefreshWanted = false; // once more, after the one at work
};

} // namespace Qorvane
