#include "library/LibraryState.h"

#include "library/LibrarySnapshot.h"

#include <utility>

namespace Qorvane {

LibraryState::LibraryState(std::shared_ptr<LibrarySnapshot> snapshot)
    : m_snapshot(std::move(snapshot))
{
}

template <typename Value>
void LibraryState::publish(Value &field, const Value &value, void (LibraryState::*changed)())
{
    Q_EMIT objectWillChange();
    field = value;
    Q_EMIT(this->*changed)();
}

// Written in place: a copy that is changed and put back would cost a deep copy of the dictionary for each of
// the thousands of reports of a run.
template <typename Value>
void LibraryState::publishEntry(QHash<QString, Value> &dictionary, const QString &path,
                                const std::optional<Value> &value, void (LibraryState::*changed)())
{
    Q_EMIT objectWillChange();
    if (value)
        dictionary.insert(path, *value);
    Q_EMIT(this->*changed)();
}

void LibraryState::publishIsLoading(bool isLoading)
{
    publish(m_isLoading, isLoading, &LibraryState::isLoadingChanged);
}

void LibraryState::publishSelectedFolder(const std::optional<Folder> &folder)
{
    publish(m_selectedFolder, folder, &LibraryState::selectedFolderChanged);
}

void LibraryState::publishImageURLs(const QList<FileUrl> &urls)
{
    publish(m_imageURLs, urls, &LibraryState::imageURLsChanged);
}

void LibraryState::publishLibraryFolders(const QList<Folder> &folders)
{
    m_snapshot->setRoots(folders);
    publish(m_libraryFolders, folders, &LibraryState::libraryFoldersChanged);
}

void LibraryState::publishFavoriteFolders(const QList<Folder> &folders)
{
    publish(m_favoriteFolders, folders, &LibraryState::favoriteFoldersChanged);
}

void LibraryState::publishSortCriterion(SortCriterion criterion)
{
    m_snapshot->setSortSettings({criterion, m_sortSettings.order});
    publish(m_sortSettings.criterion, criterion, &LibraryState::sortCriterionChanged);
}

void LibraryState::publishSortOrder(SortOrder order)
{
    m_snapshot->setSortSettings({m_sortSettings.criterion, order});
    publish(m_sortSettings.order, order, &LibraryState::sortOrderChanged);
}

void LibraryState::publishCacheSizeInMB(double size)
{
    publish(m_cacheSizeInMB, size, &LibraryState::cacheSizeInMBChanged);
}

void LibraryState::publishSelectedTag(const std::optional<QString> &tag)
{
    publish(m_selectedTag, tag, &LibraryState::selectedTagChanged);
}

void LibraryState::publishAllTags(const QStringList &tags)
{
    publish(m_allTags, tags, &LibraryState::allTagsChanged);
}

void LibraryState::publishSelectedRating(std::optional<int> rating)
{
    publish(m_selectedRating, rating, &LibraryState::selectedRatingChanged);
}

void LibraryState::publishProcessing(const QString &path, std::optional<FolderProcessingState> state,
                                     std::optional<double> progress, const std::optional<QString> &detail)
{
    if (state && !m_status.contains(path))
        m_snapshot->addProcessedPath(path);
    publishEntry(m_status, path, state, &LibraryState::folderProcessingStatusChanged);
    publishEntry(m_progress, path, progress, &LibraryState::folderProcessingProgressChanged);
    publishEntry(m_details, path, detail, &LibraryState::folderProcessingDetailsChanged);
}

void LibraryState::announceChange()
{
    Q_EMIT objectWillChange();
}

} // namespace Qorvane
