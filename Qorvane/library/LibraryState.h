#pragma once

#include "library/Folder.h"
#include "library/FolderProcessingState.h"
#include "library/SortCriterion.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QStringList>

#include <memory>
#include <optional>

namespace Qorvane {

class LibrarySnapshot;

/// The published fields of the library, and nothing that thinks about them. Every `publish...` announces
/// `objectWillChange`, writes, then emits the field's own signal, whether or not the value differs. GUI
/// thread.
class LibraryState : public QObject
{
    Q_OBJECT

public:
    /// Keeps `snapshot` in step with what is published.
    explicit LibraryState(std::shared_ptr<LibrarySnapshot> snapshot);

    bool isLoading() const { return m_isLoading; }
    const std::optional<Folder> &selectedFolder() const { return m_selectedFolder; }
    const QList<FileUrl> &imageURLs() const { return m_imageURLs; }
    const QList<Folder> &libraryFolders() const { return m_libraryFolders; }
    const QList<Folder> &favoriteFolders() const { return m_favoriteFolders; }
    SortSettings sortSettings() const { return m_sortSettings; }
    double cacheSizeInMB() const { return m_cacheSizeInMB; }
    const std::optional<QString> &selectedTag() const { return m_selectedTag; }
    const QStringList &allTags() const { return m_allTags; }
    std::optional<int> selectedRating() const { return m_selectedRating; }
    const QHash<QString, FolderProcessingState> &folderProcessingStatus() const { return m_status; }
    const QHash<QString, double> &folderProcessingProgress() const { return m_progress; }
    const QHash<QString, QString> &folderProcessingDetails() const { return m_details; }

    void publishIsLoading(bool isLoading);
    void publishSelectedFolder(const std::optional<Folder> &folder);
    void publishImageURLs(const QList<FileUrl> &urls);
    void publishLibraryFolders(const QList<Folder> &folders);
    void publishFavoriteFolders(const QList<Folder> &folders);
    void publishSortCriterion(SortCriterion criterion);
    void publishSortOrder(SortOrder order);
    void publishCacheSizeInMB(double size);
    void publishSelectedTag(const std::optional<QString> &tag);
    void publishAllTags(const QStringList &tags);
    void publishSelectedRating(std::optional<int> rating);
    /// All three dictionaries are published, one after the other; what is absent keeps its entry. So the
    /// three agree only after the last signal.
    void publishProcessing(const QString &path, std::optional<FolderProcessingState> state,
                           std::optional<double> progress, const std::optional<QString> &detail);
    /// Says that something changed that isn't a field here, a rating for example.
    void announceChange();

Q_SIGNALS:
    void objectWillChange();
    void isLoadingChanged();
    void selectedFolderChanged();
    void imageURLsChanged();
    void libraryFoldersChanged();
    void favoriteFoldersChanged();
    void sortCriterionChanged();
    void sortOrderChanged();
    void cacheSizeInMBChanged();
    void selectedTagChanged();
    void allTagsChanged();
    void selectedRatingChanged();
    void folderProcessingStatusChanged();
    void folderProcessingProgressChanged();
    void folderProcessingDetailsChanged();

private:
    template <typename Value>
    void publish(Value &field, const Value &value, void (LibraryState::*changed)());
    template <typename Value>
    void publishEntry(QHash<QString, Value> &dictionary, const QString &path,
                      const std::optional<Value> &value, void (LibraryState::*changed)());

    const std::shared_ptr<LibrarySnapshot> m_snapshot;
    bool m_isLoading = false;
    std::optional<Folder> m_selectedFolder;
    QList<FileUrl> m_imageURLs;
    QList<Folder> m_favoriteFolders;
    SortSettings m_sortSettings;
    double m_cacheSizeInMB = 0;
    std::optional<QString> m_selectedTag;
    QStringList m_allTags;
    std::optional<int> m_selectedRating;
    QHash<QString, FolderProcessingState> m_status;
    QHash<QString, double> m_progress;
    QHash<QString, QString> m_details;
    QList<Folder> m_libraryFolders;
};

} // namespace Qorvane
