#include "library/QorManage.h"

#include "library/DeferredWrites.h"
#include "library/FolderLibrary.h"
#include "library/FolderTree.h"
#include "library/LibrarySnapshot.h"
#include "library/LibraryState.h"
#include "library/MediaList.h"
#include "library/MediaListing.h"
#include "library/ProcessingPipeline.h"
#include "library/ProcessingReports.h"
#include "library/ProcessingRun.h"
#include "library/SelectionRules.h"
#include "library/SortingRules.h"
#include "library/TagsAndRatings.h"
#include "library/ThumbnailRequests.h"
#include "media/SupportedExtensions.h"
#include "media/ThumbnailPaths.h"
#include "platform/Log.h"
#include "platform/MainQueue.h"

#include <QCoreApplication>
#include <QPointer>

#include <utility>

namespace Qorvane {

QorManage::QorManage(QObject *parent, const LibraryTimings &timings)
    : QObject(parent)
    , m_timings(timings)
    , m_bookmarkWrites(std::make_shared<DeferredWrites>("com.qorvane.bookmarks",
                                                        QStringLiteral("Error saving bookmarks: ")))
    , m_edits(std::make_shared<DeferredWrites>("com.qorvane.edits",
                                               QStringLiteral("Error saving tags and ratings: ")))
    , m_snapshot(std::make_shared<LibrarySnapshot>())
    , m_state(std::make_unique<LibraryState>(m_snapshot))
    , m_reports(std::make_shared<ProcessingReports>(*m_state))
    , m_runSurroundings(std::make_shared<RunSurroundings>(
          RunSurroundings{m_snapshot, m_reports, EmbeddingRequest(timings.embeddingTimeout)}))
    , m_pipeline(std::make_unique<ProcessingPipeline>(m_runSurroundings))
    , m_mediaList(std::make_unique<MediaList>(*m_state, m_snapshot, m_edits, *m_pipeline))
    , m_selection(std::make_unique<SelectionRules>(*m_state, *m_mediaList))
    , m_folders(std::make_unique<FolderLibrary>(FolderLibrary::Surroundings{
          *m_state, m_snapshot, m_reports, *m_pipeline, *m_selection, m_bookmarkWrites, m_edits, m_timings}))
    , m_tagsAndRatings(
          std::make_unique<TagsAndRatings>(*m_state, m_snapshot, m_edits, *m_mediaList, *m_selection))
    , m_thumbnails(std::make_unique<ThumbnailRequests>(*m_state))
{
    forwardSignals();
    // Stored before anything reads them: favourites hold for one run of the program only, by design.
    m_state->publishFavoriteFolders({});
    saveFavoriteBookmarks();
    loadBookmarks([this] { finishStart(); });
    // Queued, so that the new value can be read when they arrive.
    connect(m_state.get(), &LibraryState::sortCriterionChanged, this, &QorManage::handleSortChange,
            Qt::QueuedConnection);
    connect(m_state.get(), &LibraryState::sortOrderChanged, this, &QorManage::handleSortChange,
            Qt::QueuedConnection);
    // The program ends without taking the library down.
    connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit, this, &QorManage::finishWrites);
    updateCacheSize();
    refreshAllTags();
}

QorManage::~QorManage() = default;

void QorManage::finishStart()
{
    m_folders->loadFavoriteBookmarks([this] {
        MainQueue::after(m_timings.untilStartupSync, [self = QPointer(this)] {
            if (self)
                Log::line(QStringLiteral("🔄 启动时检查文件夹同步状态..."));
        });
    });
}

void QorManage::finishWrites()
{
    m_folders->saveWaitingChanges();
    DeferredWrites::finish({m_bookmarkWrites.get(), m_edits.get()});
}

void QorManage::forwardSignals()
{
    const LibraryState *state = m_state.get();
    connect(state, &LibraryState::objectWillChange, this, &QorManage::objectWillChange);
    connect(state, &LibraryState::isLoadingChanged, this, &QorManage::isLoadingChanged);
    connect(state, &LibraryState::selectedFolderChanged, this, &QorManage::selectedFolderChanged);
    connect(state, &LibraryState::imageURLsChanged, this, &QorManage::imageURLsChanged);
    connect(state, &LibraryState::libraryFoldersChanged, this, &QorManage::libraryFoldersChanged);
    connect(state, &LibraryState::favoriteFoldersChanged, this, &QorManage::favoriteFoldersChanged);
    connect(m_folders.get(), &FolderLibrary::isLoadingChanged, this, &QorManage::isLoadingFoldersChanged);
    connect(state, &LibraryState::sortCriterionChanged, this, &QorManage::sortCriterionChanged);
    connect(state, &LibraryState::sortOrderChanged, this, &QorManage::sortOrderChanged);
    connect(state, &LibraryState::cacheSizeInMBChanged, this, &QorManage::cacheSizeInMBChanged);
    connect(state, &LibraryState::selectedTagChanged, this, &QorManage::selectedTagChanged);
    connect(state, &LibraryState::allTagsChanged, this, &QorManage::allTagsChanged);
    connect(state, &LibraryState::selectedRatingChanged, this, &QorManage::selectedRatingChanged);
    connect(state, &LibraryState::folderProcessingStatusChanged, this,
            &QorManage::folderProcessingStatusChanged);
    connect(state, &LibraryState::folderProcessingProgressChanged, this,
            &QorManage::folderProcessingProgressChanged);
    connect(state, &LibraryState::folderProcessingDetailsChanged, this,
            &QorManage::folderProcessingDetailsChanged);
}

bool QorManage::isLoading() const
{
    return m_state->isLoading();
}

const std::optional<Folder> &QorManage::selectedFolder() const
{
    return m_state->selectedFolder();
}

void QorManage::setSelectedFolder(const std::optional<Folder> &folder)
{
    m_selection->selectFolder(folder);
}

const QList<FileUrl> &QorManage::imageURLs() const
{
    return m_state->imageURLs();
}

const QList<Folder> &QorManage::libraryFolders() const
{
    return m_state->libraryFolders();
}

const QList<Folder> &QorManage::favoriteFolders() const
{
    return m_state->favoriteFolders();
}

SortCriterion QorManage::sortCriterion() const
{
    return m_state->sortSettings().criterion;
}

void QorManage::setSortCriterion(SortCriterion criterion)
{
    m_state->publishSortCriterion(criterion);
}

SortOrder QorManage::sortOrder() const
{
    return m_state->sortSettings().order;
}

void QorManage::setSortOrder(SortOrder order)
{
    m_state->publishSortOrder(order);
}

double QorManage::cacheSizeInMB() const
{
    return m_state->cacheSizeInMB();
}

const std::optional<QString> &QorManage::selectedTag() const
{
    return m_state->selectedTag();
}

void QorManage::setSelectedTag(const std::optional<QString> &tag)
{
    m_selection->selectTag(tag);
}

const QStringList &QorManage::allTags() const
{
    return m_state->allTags();
}

std::optional<int> QorManage::selectedRating() const
{
    return m_state->selectedRating();
}

void QorManage::setSelectedRating(std::optional<int> rating)
{
    m_selection->selectRating(rating);
}

const QHash<QString, FolderProcessingState> &QorManage::folderProcessingStatus() const
{
    return m_state->folderProcessingStatus();
}

const QHash<QString, double> &QorManage::folderProcessingProgress() const
{
    return m_state->folderProcessingProgress();
}

const QHash<QString, QString> &QorManage::folderProcessingDetails() const
{
    return m_state->folderProcessingDetails();
}

void QorManage::addFolder(const FileUrl &url)
{
    m_folders->addFolder(url);
}

void QorManage::removeFolderFromLibrary(const Folder &folder)
{
    m_folders->removeFolderFromLibrary(folder);
}

void QorManage::addToFavorites(const Folder &folder)
{
    m_folders->addToFavorites(folder);
}

void QorManage::removeFromFavorites(const Folder &folder)
{
    m_folders->removeFromFavorites(folder);
}

void QorManage::saveBookmarks()
{
    m_folders->saveBookmarks();
}

void QorManage::saveFavoriteBookmarks()
{
    m_folders->saveFavoriteBookmarks();
}

void QorManage::loadBookmarks(std::function<void()> completion)
{
    m_folders->loadBookmarks(std::move(completion));
}

bool QorManage::isChangingFolders() const
{
    return m_folders->isChanging();
}

bool QorManage::isLoadingFolders() const
{
    return m_folders->isLoading();
}

void QorManage::loadFavoriteBookmarks()
{
    m_folders->loadFavoriteBookmarks({});
}

Folder QorManage::buildFolderHierarchy(const FileUrl &url)
{
    return FolderTree::buildFolderHierarchy(url);
}

std::optional<Folder> QorManage::findFolder(const FileUrl &url, const QList<Folder> &folders)
{
    return FolderTree::findFolder(url, folders);
}

std::optional<Folder> QorManage::folderForSidebarSelection(const std::optional<QString> &selection) const
{
    return m_folders->folderForSidebarSelection(selection);
}

std::optional<Folder> QorManage::folderWithAbsoluteString(const QString &text) const
{
    return m_folders->folderWithAbsoluteString(text);
}

void QorManage::loadImages()
{
    m_mediaList->loadImages();
}

QList<FileUrl> QorManage::collectMediaFiles(const FileUrl &url)
{
    return MediaListing::collectMediaFiles(url);
}

QList<FileUrl> QorManage::sortURLs(const QList<FileUrl> &urls, SortCriterion criterion, SortOrder order)
{
    return SortingRules::sortURLs(urls, criterion, order);
}

void QorManage::handleSortChange()
{
    m_mediaList->handleSortChange();
}

void QorManage::resortImages()
{
    m_mediaList->resortImages();
}

void QorManage::resortImagesIfChanged()
{
    m_mediaList->resortImagesIfChanged();
}

void QorManage::startProcessing(const QList<FileUrl> &urls, const QString &folderPath)
{
    m_pipeline->startProcessing(urls, folderPath);
}

std::optional<std::vector<float>> QorManage::computeImageEmbedding(const FileUrl &url) const
{
    // A hold of its own: the wait for the answer may outlast the library.
    const std::shared_ptr<const RunSurroundings> surroundings = m_runSurroundings;
    return surroundings->computeImageEmbedding(url);
}

void QorManage::cancelFolderTasks(const QString &path)
{
    m_pipeline->cancelFolderTasks(path);
}

void QorManage::cancelFolderTasksSilently(const QString &path)
{
    m_pipeline->cancelFolderTasksSilently(path);
}

void QorManage::cancelAllTasks()
{
    m_pipeline->cancelAllTasks();
}

bool QorManage::isPathInLibrary(const QString &path) const
{
    return m_snapshot->containsPath(path);
}

FolderProcessingState QorManage::processingState(const FileUrl &folderUrl) const
{
    return m_reports->processingState(folderUrl);
}

void QorManage::setProcessing(const QString &path, std::optional<FolderProcessingState> state,
                              std::optional<double> progress, const std::optional<QString> &detail)
{
    m_reports->setProcessing(path, state, progress, detail);
}

QFuture<std::optional<Image>> QorManage::getThumbnail(const FileUrl &fileUrl)
{
    return m_thumbnails->getThumbnail(fileUrl);
}

QFuture<std::optional<Image>> QorManage::generateVideoThumbnail(const FileUrl &fileUrl)
{
    return m_thumbnails->generateVideoThumbnail(fileUrl);
}

QFuture<std::optional<Image>> QorManage::generateVideoPreview(const FileUrl &fileUrl)
{
    return m_thumbnails->generateVideoPreview(fileUrl);
}

QFuture<std::optional<Image>> QorManage::getPreviewImage(const FileUrl &fileUrl)
{
    return m_thumbnails->getPreviewImage(fileUrl);
}

std::optional<FileUrl> QorManage::thumbnailCacheDirectory()
{
    return Qorvane::thumbnailCacheDirectory();
}

std::optional<FileUrl> QorManage::thumbnailDirectory(const FileUrl &folderUrl)
{
    return Qorvane::thumbnailDirectory(folderUrl);
}

std::optional<FileUrl> QorManage::thumbnailURL(const FileUrl &fileUrl)
{
    return Qorvane::thumbnailURL(fileUrl);
}

void QorManage::updateCacheSize()
{
    m_thumbnails->updateCacheSize();
}

void QorManage::clearCache()
{
    m_thumbnails->clearCache();
}

void QorManage::addTag(const QString &tag, const FileUrl &url)
{
    m_tagsAndRatings->addTag(tag, url);
}

void QorManage::removeTag(const QString &tag, const FileUrl &url)
{
    m_tagsAndRatings->removeTag(tag, url);
}

void QorManage::renameTag(const QString &oldTag, const QString &newTag, const FileUrl &url)
{
    m_tagsAndRatings->renameTag(oldTag, newTag, url);
}

void QorManage::deleteTagGlobally(const QString &tag)
{
    m_tagsAndRatings->deleteTagGlobally(tag);
}

void QorManage::setRating(int rating, const FileUrl &url)
{
    m_tagsAndRatings->setRating(rating, url);
}

void QorManage::clearRating(const FileUrl &url)
{
    m_tagsAndRatings->clearRating(url);
}

void QorManage::refreshAllTags()
{
    m_tagsAndRatings->refreshAllTags();
}

std::function<QStringList(const QString &tag)> QorManage::pathsOfTag() const
{
    return m_tagsAndRatings->pathsOfTag();
}

const QSet<QString> &QorManage::supportedImageExtensions()
{
    return Qorvane::supportedImageExtensions();
}

const QSet<QString> &QorManage::supportedVideoExtensions()
{
    return Qorvane::supportedVideoExtensions();
}

} // namespace Qorvane
