#pragma once

#include "platform/FileUrl.h"

#include <QObject>
#include <QString>

#include <memory>

namespace Qorvane {

class LibrarySnapshot;
class LibraryState;
class MediaList;
class SelectionRules;

/// Tags and ratings as the views change them: written to the store at once, then the list and the tags shown
/// follow. GUI thread; the writes wait for the store.
class TagsAndRatings : public QObject
{
    Q_OBJECT

public:
    /// What is given by reference outlives it.
    TagsAndRatings(LibraryState &state, const std::shared_ptr<LibrarySnapshot> &snapshot,
                   MediaList &mediaList, SelectionRules &selection);

    void addTag(const QString &tag, const FileUrl &url);
    void removeTag(const QString &tag, const FileUrl &url);
    void renameTag(const QString &oldTag, const QString &newTag, const FileUrl &url);
    void deleteTagGlobally(const QString &tag);
    void setRating(int rating, const FileUrl &url);
    void clearRating(const FileUrl &url);
    void refreshAllTags();

private:
    void reloadIfShowing(const QString &tag);
    void publishAllTags(const QStringList &tags, quint64 refresh);

    LibraryState &m_state;
    const std::weak_ptr<LibrarySnapshot> m_snapshot;
    MediaList &m_mediaList;
    SelectionRules &m_selection;
    quint64 m_refreshes = 0;
    quint64 m_publishedRefresh = 0;
};

} // namespace Qorvane
