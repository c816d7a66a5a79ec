#include "library/FolderLibrary.h"

#include "library/DeferredWrites.h"
#include "library/FolderBookmarks.h"
#include "library/FolderTree.h"
#include "library/LibrarySnapshot.h"
#include "library/LibraryState.h"
#include "library/MediaListing.h"
#include "library/ProcessingPipeline.h"
#include "library/ProcessingReports.h"
#include "library/SelectionRules.h"
#include "platform/GlobalQueue.h"
#include "platform/Localization.h"
#include "platform/MainQueue.h"
#include "store/EmbeddingStore.h"

#include <QPointer>

#include <algorithm>
#include <utility>

namespace Qorvane {

namespace {

bool isSameFolder(const Folder &a, const Folder &b)
{
    return a.url.absoluteString() == b.url.absoluteString();
}

bool containsFolder(const QList<Folder> &folders, const Folder &folder)
{
    return std::ranges::any_of(folders, [&](const Folder &one) { return isSameFolder(one, folder); });
}

bool containsUrl(const QList<Folder> &folders, const FileUrl &url)
{
    return std::ranges::any_of(folders, [&](const Folder &one) { return one.url == url; });
}

QList<Folder> without(QList<Folder> folders, const Folder &folder)
{
    folders.removeIf([&](const Folder &one) { return isSameFolder(one, folder); });
    return folders;
}

} // namespace

FolderLibrary::FolderLibrary(Surroundings surroundings)
    : m_surroundings(std::move(surroundings))
    , m_state(m_surroundings.state)
{
}

void FolderLibrary::addFolder(const FileUrl &url)
{
    // A place that isn't on this machine's file system has no path, and an empty one is a prefix of every
    // path: as a root it would own the whole library.
    if (!url.path().startsWith(u'/'))
        return;
    m_waitingChanges.append({RootChange::Kind::addition, {url, std::nullopt}});
    m_rootChanges.perform([this, url] { readTree(url); });
}

void FolderLibrary::removeFolderFromLibrary(const Folder &folder)
{
    const RootChange change{RootChange::Kind::removal, {folder.url, std::nullopt}};
    m_waitingChanges.append(change);
    m_rootChanges.perform([this, folder, change] {
        m_waitingChanges.removeOne(change);
        remove(folder);
    });
}

void FolderLibrary::readTree(const FileUrl &url)
{
    m_rootChanges.hold();
    GlobalQueue::async(QualityOfService::userInitiated, [self = QPointer(this), url] {
        MainQueue::async([self, folder = FolderTree::buildFolderHierarchy(url)] {
            if (self)
                self->adopt(folder);
        });
    });
}

void FolderLibrary::adopt(const Folder &folder)
{
    m_waitingChanges.removeOne({RootChange::Kind::addition, {folder.url, std::nullopt}});
    QList<Folder> roots = m_state.libraryFolders();
    if (containsUrl(roots, folder.url)) {
        m_rootChanges.release();
        return;
    }
    const bool isFirst = roots.isEmpty();
    roots.append(folder);
    m_state.publishLibraryFolders(roots);
    saveBookmarks([this, folder, isFirst] { finishAdoption(folder, isFirst); });
}

void FolderLibrary::finishAdoption(const Folder &folder, bool isFirst)
{
    if (isFirst)
        m_surroundings.selection.selectFolder(folder);
    m_surroundings.reports->setProcessing(folder.url.path(), FolderProcessingState::thumbnails, 0,
                                          localized("准备生成缩略图..."));
    processAdopted(folder.url);
    m_rootChanges.release();
}

void FolderLibrary::processAdopted(const FileUrl &url)
{
    GlobalQueue::async(QualityOfService::userInitiated, [self = QPointer(this), url,
                                                         weak = std::weak_ptr(m_surroundings.snapshot)] {
        if (weak.expired())
            return;
        MainQueue::async([self, url, files = MediaListing::collectMediaFiles(url)] {
            if (!self)
                return;
            const Surroundings &surroundings = self->m_surroundings;
            if (files.isEmpty())
                surroundings.reports->setProcessing(url.path(), FolderProcessingState::completed, 1,
                                                    localized("处理完成"));
            else
                surroundings.pipeline.startProcessing(files, url.path());
        });
    });
}

void FolderLibrary::remove(const Folder &folder)
{
    if (m_state.selectedFolder() && isSameFolder(*m_state.selectedFolder(), folder))
        m_surroundings.selection.selectFolder(std::nullopt);
    m_surroundings.pipeline.cancelFolderTasks(folder.url.path());
    scheduleRecordDeletion(folder.url.path());
    // Only a root leaves the list. A sub-folder stays in its tree on purpose, for as long as its directory
    // exists: only its run and its records go.
    if (containsFolder(m_state.libraryFolders(), folder)) {
        m_state.publishLibraryFolders(without(m_state.libraryFolders(), folder));
        saveBookmarks();
    }
}

void FolderLibrary::scheduleRecordDeletion(const QString &path)
{
    const auto check = [path] {
        GlobalQueue::async(QualityOfService::userInitiated, [path] {
            EmbeddingStore::shared().verifyFolderDeletion(path);
            EmbeddingStore::shared().printStatistics();
        });
    };
    const auto deletion = [self = QPointer(this), path, check, edits = m_surroundings.edits,
                           delay = m_surroundings.timings.untilDeletionCheck] {
        // Tags given before would otherwise be written behind it, for files that are gone from the library.
        edits->wait();
        EmbeddingStore::shared().deleteFolder(path);
        // Tags and ratings count fewer files now.
        MainQueue::async([self] {
            if (self)
                self->m_state.announceChange();
        });
        MainQueue::after(delay, check);
    };
    MainQueue::after(m_surroundings.timings.untilRecordDeletion, [self = QPointer(this), deletion] {
        // Deleting scans the whole table, which the window need not wait for.
        if (self)
            GlobalQueue::async(QualityOfService::userInitiated, deletion);
    });
}

void FolderLibrary::addToFavorites(const Folder &folder)
{
    m_favoriteChanges.perform([this, folder] {
        QList<Folder> favorites = m_state.favoriteFolders();
        if (containsFolder(favorites, folder))
            return;
        favorites.append(folder);
        publishFavorites(favorites);
    });
}

void FolderLibrary::removeFromFavorites(const Folder &folder)
{
    m_favoriteChanges.perform(
        [this, folder] { publishFavorites(without(m_state.favoriteFolders(), folder)); });
}

void FolderLibrary::publishFavorites(const QList<Folder> &favorites)
{
    m_state.publishFavoriteFolders(favorites);
    saveFavoriteBookmarks();
    m_state.announceChange();
    saveFavoriteBookmarks();
}

void FolderLibrary::saveBookmarks()
{
    m_surroundings.bookmarkWrites->perform(
        [roots = m_state.libraryFolders()] { FolderBookmarks::library().save(roots); });
}

void FolderLibrary::saveBookmarks(const Change &then)
{
    const Change once = [isDone = std::make_shared<bool>(false), then] {
        if (!std::exchange(*isDone, true))
            then();
    };
    m_surroundings.bookmarkWrites->perform(
        [roots = m_state.libraryFolders()] { FolderBookmarks::library().save(roots); }, this, once);
    MainQueue::after(m_surroundings.timings.bookmarkPatience, [self = QPointer(this), once] {
        if (self)
            once();
    });
}

void FolderLibrary::saveWaitingChanges()
{
    if (m_waitingChanges.isEmpty())
        return;
    if (!m_isLoading) {
        m_surroundings.bookmarkWrites->perform(
            [roots = rootsWithWaitingChanges()] { FolderBookmarks::library().save(roots); });
        return;
    }
    // What is stored stays, whether it can be reached or not. There is nothing to remove before the stored
    // roots are shown.
    QList<FileUrl> added;
    for (const RootChange &change : m_waitingChanges) {
        if (change.kind == RootChange::Kind::addition)
            added.append(change.folder.url);
    }
    m_surroundings.bookmarkWrites->perform([added] { FolderBookmarks::library().append(added); });
}

QList<Folder> FolderLibrary::rootsWithWaitingChanges() const
{
    QList<Folder> roots = m_state.libraryFolders();
    for (const RootChange &change : m_waitingChanges) {
        switch (change.kind) {
        case RootChange::Kind::addition:
            if (!containsUrl(roots, change.folder.url))
                roots.append(change.folder);
            break;
        case RootChange::Kind::removal:
            roots = without(roots, change.folder);
            break;
        }
    }
    return roots;
}

void FolderLibrary::saveFavoriteBookmarks()
{
    m_surroundings.bookmarkWrites->perform(
        [favorites = m_state.favoriteFolders()] { FolderBookmarks::favorites().save(favorites); });
}

void FolderLibrary::loadBookmarks(Change completion)
{
    // In its turn, since it replaces the list: a folder added while it reads would be lost again.
    m_rootChanges.perform([this, completion = std::move(completion)] {
        m_rootChanges.hold();
        setLoading(true);
        const auto stored = std::make_shared<std::optional<QList<QByteArray>>>();
        const auto read = [stored] { *stored = FolderBookmarks::library().stored(); };
        // Read behind the saves that were asked for before, but not resolved there: that may take long.
        m_surroundings.bookmarkWrites->perform(read, this, [this, stored, completion] {
            if (*stored) {
                resolve(**stored, completion);
                return;
            }
            setLoading(false);
            m_rootChanges.release();
        });
    });
}

void FolderLibrary::setLoading(bool isLoading)
{
    if (std::exchange(m_isLoading, isLoading) != isLoading)
        Q_EMIT isLoadingChanged();
}

void FolderLibrary::resolve(const QList<QByteArray> &bookmarks, const Change &completion)
{
    GlobalQueue::async(
        QualityOfService::userInitiated,
        [self = QPointer(this), weak = std::weak_ptr(m_surroundings.snapshot), bookmarks, completion] {
            if (weak.expired())
                return;
            QList<Folder> roots;
            for (const QByteArray &bookmark : bookmarks) {
                if (const auto url = FolderBookmarks::library().resolve(bookmark))
                    roots.append(FolderTree::buildFolderHierarchy(*url));
            }
            MainQueue::async([self, roots, completion] {
                if (self)
                    self->publishLoaded(roots, completion);
            });
        });
}

void FolderLibrary::publishLoaded(const QList<Folder> &roots, const Change &completion)
{
    m_state.publishLibraryFolders(roots);
    setLoading(false);
    // What couldn't be reached at this start is thereby forgotten, by design.
    saveBookmarks([this, completion] {
        if (completion)
            completion();
        m_rootChanges.release();
    });
}

void FolderLibrary::loadFavoriteBookmarks(Change completion)
{
    m_favoriteChanges.perform([this, completion = std::move(completion)] {
        m_favoriteChanges.hold();
        const auto urls = std::make_shared<std::optional<QList<FileUrl>>>();
        const auto read = [urls] { *urls = FolderBookmarks::favorites().resolveStored(); };
        m_surroundings.bookmarkWrites->perform(read, this, [this, urls, completion] {
            if (*urls)
                publishLoadedFavorites(**urls);
            m_favoriteChanges.release();
            if (completion)
                completion();
        });
    });
}

void FolderLibrary::publishLoadedFavorites(const QList<FileUrl> &urls)
{
    QList<Folder> favorites;
    for (const FileUrl &url : urls) {
        const std::optional<Folder> known = FolderTree::findFolder(url, m_state.libraryFolders());
        favorites.append(known.value_or(Folder{url, std::nullopt}));
    }
    m_state.publishFavoriteFolders(favorites);
    saveFavoriteBookmarks();
}

std::optional<Folder> FolderLibrary::folderForSidebarSelection(const std::optional<QString> &selection) const
{
    if (!selection)
        return std::nullopt;
    // Everything up to the last "-" is taken for the section's prefix, so a folder with a "-" in its address
    // is never found. Known and wanted.
    const QStringList pieces = selection->split(u'-', Qt::SkipEmptyParts);
    return folderWithAbsoluteString(pieces.isEmpty() ? QString() : pieces.last());
}

std::optional<Folder> FolderLibrary::folderWithAbsoluteString(const QString &text) const
{
    if (const std::optional<Folder> found = FolderTree::findFolder(text, m_state.libraryFolders()))
        return found;
    const QList<Folder> &favorites = m_state.favoriteFolders();
    const auto favorite = std::ranges::find_if(
        favorites, [&](const Folder &folder) { return folder.url.absoluteString() == text; });
    return favorite == favorites.end() ? std::nullopt : std::optional(*favorite);
}

} // namespace Qorvane
