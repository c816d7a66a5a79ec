#pragma once

#include "library/Folder.h"
#include "library/FolderProcessingState.h"
#include "library/LibraryTimings.h"
#include "library/SortCriterion.h"

#include <QFuture>
#include <QHash>
#include <QList>
#include <QObject>
#include <QSet>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace Qorvane {

class DeferredWrites;
class FolderLibrary;
class Image;
class LibrarySnapshot;
class LibraryState;
class MediaList;
class ProcessingPipeline;
class ProcessingReports;
class SelectionRules;
class TagsAndRatings;
class ThumbnailRequests;
struct RunSurroundings;

/// The library as the rest of the program sees it: folders, selection, the list shown, the state of the
/// background runs, tags and ratings. One lives as long as the program. A façade: each theme is a class of
/// its own, and this one forwards.
///
/// GUI thread only, unless an operation says otherwise. Every write of a property emits `objectWillChange`
/// before the value changes and the property's own signal afterwards, also when the value is equal to the one
/// before.
class QorManage : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool isLoading READ isLoading NOTIFY isLoadingChanged)
    Q_PROPERTY(std::optional<Qorvane::Folder> selectedFolder READ selectedFolder WRITE setSelectedFolder
                   NOTIFY selectedFolderChanged)
    Q_PROPERTY(QList<Qorvane::FileUrl> imageURLs READ imageURLs NOTIFY imageURLsChanged)
    Q_PROPERTY(QList<Qorvane::Folder> libraryFolders READ libraryFolders NOTIFY libraryFoldersChanged)
    Q_PROPERTY(QList<Qorvane::Folder> favoriteFolders READ favoriteFolders NOTIFY favoriteFoldersChanged)
    Q_PROPERTY(Qorvane::SortCriterion sortCriterion READ sortCriterion WRITE setSortCriterion NOTIFY
                   sortCriterionChanged)
    Q_PROPERTY(Qorvane::SortOrder sortOrder READ sortOrder WRITE setSortOrder NOTIFY sortOrderChanged)
    Q_PROPERTY(double cacheSizeInMB READ cacheSizeInMB NOTIFY cacheSizeInMBChanged)
    Q_PROPERTY(
        std::optional<QString> selectedTag READ selectedTag WRITE setSelectedTag NOTIFY selectedTagChanged)
    Q_PROPERTY(QStringList allTags READ allTags NOTIFY allTagsChanged)
    Q_PROPERTY(std::optional<int> selectedRating READ selectedRating WRITE setSelectedRating NOTIFY
                   selectedRatingChanged)

public:
    using FolderProcessingState = Qorvane::FolderProcessingState;

    /// Empties the stored favourites: they hold for one run of the program only. That too is written in the
    /// background, so the key reads as empty a moment later; what the library itself reads comes after.
    /// Starts to resolve the stored folders, and starts the refresh of the cache size and of the tag list.
    explicit QorManage(QObject *parent = nullptr, const LibraryTimings &timings = {});
    /// Cancels every background run.
    ~QorManage() override;

    // Published properties ------------------------------------------------------------------------------

    /// A list load is running.
    bool isLoading() const;
    const std::optional<Folder> &selectedFolder() const;
    /// A folder takes the place of a selected tag and rating; the list is loaded anew in any case.
    void setSelectedFolder(const std::optional<Folder> &folder);
    /// The list shown, sorted.
    const QList<FileUrl> &imageURLs() const;
    /// The roots of the library with the trees below them.
    const QList<Folder> &libraryFolders() const;
    const QList<Folder> &favoriteFolders() const;
    SortCriterion sortCriterion() const;
    /// The list follows when the event loop comes round.
    void setSortCriterion(SortCriterion criterion);
    SortOrder sortOrder() const;
    void setSortOrder(SortOrder order);
    /// Size of the thumbnail cache in units of 1,048,576 bytes.
    double cacheSizeInMB() const;
    const std::optional<QString> &selectedTag() const;
    void setSelectedTag(const std::optional<QString> &tag);
    /// Every distinct tag, in the store's order.
    const QStringList &allTags() const;
    /// 1 to 5, or none.
    std::optional<int> selectedRating() const;
    void setSelectedRating(std::optional<int> rating);
    /// The three by folder path; entries are never removed.
    const QHash<QString, FolderProcessingState> &folderProcessingStatus() const;
    /// Fraction of the present stage, 0 to 1.
    const QHash<QString, double> &folderProcessingProgress() const;
    const QHash<QString, QString> &folderProcessingDetails() const;

    // Folders -------------------------------------------------------------------------------------------

    /// Adds a root, saves the bookmarks and starts its run. The tree is read in the background; calls take
    /// effect in their order. A folder that is a root already changes nothing.
    void addFolder(const FileUrl &url);
    /// Takes a root out of the library: its run, and a little later its records; the files on disk stay. Of
    /// a sub-folder only the run and the records go.
    void removeFolderFromLibrary(const Folder &folder);
    void addToFavorites(const Folder &folder);
    void removeFromFavorites(const Folder &folder);
    /// Both store the list as it is now, in the background and in the order of the calls.
    void saveBookmarks();
    void saveFavoriteBookmarks();
    /// Reads and resolves the stored roots in the background, publishes and saves them, then calls
    /// `completion`, which isn't called when no list was ever stored.
    void loadBookmarks(std::function<void()> completion = {});
    /// Whether a change of the roots that was asked for hasn't taken effect: a folder is being added, say, or
    /// those of earlier runs are being read.
    bool isChangingFolders() const;
    /// Whether the roots of earlier runs are still being read: until then a library without folders may have
    /// some.
    bool isLoadingFolders() const;
    /// Reads and resolves the stored favourites in the background, publishes and saves them; changes asked
    /// for meanwhile come after that.
    void loadFavoriteBookmarks();
    /// The folder with the tree below it, as it is on disk now. Any thread; blocks on the disk.
    static Folder buildFolderHierarchy(const FileUrl &url);
    /// The first folder with this very address, depth first. Any thread.
    static std::optional<Folder> findFolder(const FileUrl &url, const QList<Folder> &folders);
    /// The folder behind a sidebar row's id; none for one whose address contains a "-".
    std::optional<Folder> folderForSidebarSelection(const std::optional<QString> &selection) const;
    std::optional<Folder> folderWithAbsoluteString(const QString &text) const;

    // The list ------------------------------------------------------------------------------------------

    /// Loads the list of the selected tag, else rating, else folder; with none of them, starts the runs of
    /// all roots instead.
    void loadImages();
    /// The media files below `url` in the order of the disk, hidden ones left out. Any thread; blocks on the
    /// disk.
    static QList<FileUrl> collectMediaFiles(const FileUrl &url);
    /// Sorted ascending by `criterion`, equal ones in their order, then reversed when `order` asks for it.
    /// Any thread; blocks on the disk or the store.
    static QList<FileUrl> sortURLs(const QList<FileUrl> &urls, SortCriterion criterion, SortOrder order);
    void handleSortChange();
    /// Sorts the list shown with the present settings. Any thread.
    void resortImages();
    /// The same, publishing only a list that came out different.
    void resortImagesIfChanged();

    // Background runs -----------------------------------------------------------------------------------

    /// Starts the run that brings thumbnails and vectors of `urls` up to date; it supersedes the one under
    /// the same path. An empty list changes nothing.
    void startProcessing(const QList<FileUrl> &urls, const QString &folderPath);
    /// The file's vector, computed by whoever answers the request; nothing when there is no picture, no
    /// vector, or no answer in time. Any thread but the GUI's; blocks up to the timeout.
    std::optional<std::vector<float>> computeImageEmbedding(const FileUrl &url) const;
    /// Cancels the run under exactly this path and makes the folder idle. Any thread.
    void cancelFolderTasks(const QString &path);
    /// The same without a change of state. Any thread.
    void cancelFolderTasksSilently(const QString &path);
    /// Any thread.
    void cancelAllTasks();
    /// Whether a root's path is a plain text prefix of `path`; no "/" is asked for. Any thread.
    bool isPathInLibrary(const QString &path) const;
    /// What the sidebar shows for a folder: `completed` isn't repeated below a completed root.
    FolderProcessingState processingState(const FileUrl &folderUrl) const;
    /// The one writer of the three dictionaries; what is absent leaves the earlier value in place. Any
    /// thread; returns at once, the writes follow on the GUI thread in the order of the calls.
    void setProcessing(const QString &path, std::optional<FolderProcessingState> state,
                       std::optional<double> progress, const std::optional<QString> &detail);

    // Thumbnails ----------------------------------------------------------------------------------------

    /// The file's thumbnail, made if it isn't there; nothing when that fails. Any thread; the work runs in
    /// the background, and a future cancelled before its turn costs nothing.
    QFuture<std::optional<Image>> getThumbnail(const FileUrl &fileUrl);
    QFuture<std::optional<Image>> generateVideoThumbnail(const FileUrl &fileUrl);
    /// A larger frame, stored nowhere.
    QFuture<std::optional<Image>> generateVideoPreview(const FileUrl &fileUrl);
    /// A video's preview frame. For a picture it logs that this is the wrong operation, and gives nothing.
    QFuture<std::optional<Image>> getPreviewImage(const FileUrl &fileUrl);
    static std::optional<FileUrl> thumbnailCacheDirectory();
    static std::optional<FileUrl> thumbnailDirectory(const FileUrl &folderUrl);
    static std::optional<FileUrl> thumbnailURL(const FileUrl &fileUrl);
    /// Measures the cache in the background and publishes `cacheSizeInMB`. Any thread.
    void updateCacheSize();
    /// Empties the cache as a whole, in the background, and measures it anew.
    void clearCache();

    // Tags and ratings ----------------------------------------------------------------------------------

    // The changes are written in the background, in the order of the calls; what they change in the published
    // state follows when they are written. Lists loaded and paths read after the call hold them.

    void addTag(const QString &tag, const FileUrl &url);
    void removeTag(const QString &tag, const FileUrl &url);
    void renameTag(const QString &oldTag, const QString &newTag, const FileUrl &url);
    void deleteTagGlobally(const QString &tag);
    /// A rating below 1 counts as 1, above 5 as 5.
    void setRating(int rating, const FileUrl &url);
    void clearRating(const FileUrl &url);
    /// Reads the tags in the background and publishes `allTags`; a selected tag that is gone is deselected.
    void refreshAllTags();
    /// What reads the paths that carry a tag, in the store's order. It blocks until the changes asked for
    /// before are written, on any thread but the GUI's; with the library and its work gone it gives nothing.
    std::function<QStringList(const QString &tag)> pathsOfTag() const;

    static const QSet<QString> &supportedImageExtensions();
    static const QSet<QString> &supportedVideoExtensions();

Q_SIGNALS:
    void objectWillChange();
    void isLoadingChanged();
    void selectedFolderChanged();
    void imageURLsChanged();
    void libraryFoldersChanged();
    void favoriteFoldersChanged();
    void isLoadingFoldersChanged();
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
    void forwardSignals();
    void finishStart();
    void finishWrites();

    const LibraryTimings m_timings;
    // Each may use those above it; they end in the reverse order.
    std::shared_ptr<DeferredWrites> m_bookmarkWrites;
    std::shared_ptr<DeferredWrites> m_edits;
    std::shared_ptr<LibrarySnapshot> m_snapshot;
    std::unique_ptr<LibraryState> m_state;
    std::shared_ptr<ProcessingReports> m_reports;
    std::shared_ptr<const RunSurroundings> m_runSurroundings;
    std::unique_ptr<ProcessingPipeline> m_pipeline;
    std::unique_ptr<MediaList> m_mediaList;
    std::unique_ptr<SelectionRules> m_selection;
    std::unique_ptr<FolderLibrary> m_folders;
    std::unique_ptr<TagsAndRatings> m_tagsAndRatings;
    std::unique_ptr<ThumbnailRequests> m_thumbnails;
};

} // namespace Qorvane
