#include "library/MediaList.h"

#include "library/DeferredWrites.h"
#include "library/LibrarySnapshot.h"
#include "library/LibraryState.h"
#include "library/MediaListing.h"
#include "library/ProcessingPipeline.h"
#include "library/SortingRules.h"
#include "platform/FileAttributes.h"
#include "platform/GlobalQueue.h"
#include "platform/Log.h"
#include "platform/MainQueue.h"
#include "store/EmbeddingStore.h"

#include <QHash>
#include <QPointer>

#include <utility>

namespace Qorvane {

namespace {

QList<FileUrl> existingFiles(const QStringList &paths)
{
    QList<FileUrl> urls;
    for (const QString &path : paths) {
        if (fileExists(path))
            urls.append(FileUrl::file(path));
    }
    return urls;
}

QList<FileUrl> sorted(const QList<FileUrl> &urls, const SortSettings &settings)
{
    return SortingRules::sortURLs(urls, settings.criterion, settings.order);
}

// As a list reads in the log: ["/a/1.jpg", "/a/2.jpg"].
QString firstThree(const QStringList &paths)
{
    QStringList quoted;
    for (const QString &path : paths.mid(0, 3))
        quoted.append(u'"' + path + u'"');
    return u'[' + quoted.join(QStringLiteral(", ")) + u']';
}

// Runs on a pool's thread.
QList<FileUrl> filesOfTag(const QString &tag, const LibrarySnapshot &snapshot)
{
    const QStringList paths = EmbeddingStore::shared().fetchPathsByTag(tag);
    Log::line(QStringLiteral("🏷️ Found ") + QString::number(paths.size()) +
              QStringLiteral(" paths for tag '") + tag + QStringLiteral("': ") + firstThree(paths));
    QList<FileUrl> urls;
    for (const QString &path : paths) {
        if (fileExists(path))
            urls.append(FileUrl::file(path));
        else
            Log::line(QStringLiteral("⚠️ File not found: ") + path);
    }
    Log::line(QStringLiteral("🏷️ Valid URLs: ") + QString::number(urls.size()));
    return sorted(urls, snapshot.sortSettings());
}

/// The files under each root, by plain text prefix: a root "/a/b" has those of a root "/a/bc" as well, and
/// both process them.
QHash<QString, QList<FileUrl>> filesByRoot(const QList<FileUrl> &files, const QList<Folder> &roots)
{
    QHash<QString, QList<FileUrl>> result;
    for (const Folder &root : roots) {
        QList<FileUrl> &below = result[root.url.path()];
        if (!below.isEmpty())
            continue;
        for (const FileUrl &file : files) {
            if (file.path().startsWith(root.url.path()))
                below.append(file);
        }
    }
    return result;
}

} // namespace

MediaList::MediaList(LibraryState &state, const std::shared_ptr<LibrarySnapshot> &snapshot,
                     const std::shared_ptr<DeferredWrites> &edits, ProcessingPipeline &pipeline)
    : m_state(state)
    , m_snapshot(snapshot)
    , m_edits(edits)
    , m_pipeline(pipeline)
{
}

void MediaList::inBackground(std::function<void()> work)
{
    GlobalQueue::async(QualityOfService::userInitiated, [edits = m_edits, work = std::move(work)] {
        edits->wait();
        work();
    });
}

void MediaList::loadImages()
{
    publishLoaded({});
    m_state.publishIsLoading(true);
    if (const std::optional<QString> tag = m_state.selectedTag())
        loadTag(*tag);
    else if (const std::optional<int> rating = m_state.selectedRating())
        loadRating(*rating);
    else if (const std::optional<Folder> folder = m_state.selectedFolder())
        loadFolder(*folder);
    else
        processAllRoots();
}

void MediaList::loadTag(const QString &tag)
{
    Log::line(QStringLiteral("🏷️ Loading images for tag: ") + tag);
    inBackground([self = QPointer(this), weak = m_snapshot, tag] {
        const std::shared_ptr<LibrarySnapshot> snapshot = weak.lock();
        if (!snapshot)
            return;
        MainQueue::async([self, tag, urls = filesOfTag(tag, *snapshot)] {
            if (!self || self->m_state.selectedTag() != tag)
                return;
            Log::line(QStringLiteral("🏷️ Setting imageURLs with ") + QString::number(urls.size()) +
                      QStringLiteral(" images for tag '") + tag + u'\'');
            self->publishLoaded(urls);
            self->m_state.publishIsLoading(false);
        });
    });
}

void MediaList::loadRating(int rating)
{
    Log::line(QStringLiteral("⭐️ Loading images for rating: ") + QString::number(rating));
    inBackground([self = QPointer(this), weak = m_snapshot, rating] {
        const std::shared_ptr<LibrarySnapshot> snapshot = weak.lock();
        if (!snapshot)
            return;
        const QList<FileUrl> files = existingFiles(EmbeddingStore::shared().fetchPathsByRating(rating));
        MainQueue::async([self, rating, urls = sorted(files, snapshot->sortSettings())] {
            if (!self || self->m_state.selectedRating() != rating)
                return;
            self->publishLoaded(urls);
            self->m_state.publishIsLoading(false);
        });
    });
}

void MediaList::loadFolder(const Folder &folder)
{
    inBackground(
        [self = QPointer(this), weak = m_snapshot, url = folder.url, settings = m_state.sortSettings()] {
            if (weak.expired())
                return;
            MainQueue::async([self, url, urls = sorted(MediaListing::collectMediaFiles(url), settings)] {
                // A selected rating isn't asked for: while the folder stays selected its list is shown.
                if (!self || self->m_state.selectedTag() || !self->m_state.selectedFolder() ||
                    self->m_state.selectedFolder()->url != url)
                    return;
                self->publishLoaded(urls);
                self->m_state.publishIsLoading(false);
                self->m_pipeline.startProcessing(urls, url.path());
            });
        });
}

void MediaList::processAllRoots()
{
    m_state.publishIsLoading(false);
    inBackground([self = QPointer(this), weak = m_snapshot] {
        const std::shared_ptr<LibrarySnapshot> snapshot = weak.lock();
        if (!snapshot)
            return;
        const QList<Folder> roots = snapshot->roots();
        QList<FileUrl> files;
        for (const Folder &root : roots)
            files.append(MediaListing::collectMediaFiles(root.url));
        MainQueue::async([self, files, known = filesByRoot(files, roots)] {
            if (!self)
                return;
            for (const Folder &root : self->m_state.libraryFolders()) {
                const QString path = root.url.path();
                const auto below = known.contains(path) ? known : filesByRoot(files, {root});
                self->m_pipeline.startProcessing(below.value(path), path);
            }
        });
    });
}

void MediaList::publishLoaded(const QList<FileUrl> &urls)
{
    ++m_generation;
    m_resorts.clear();
    m_state.publishImageURLs(urls);
}

void MediaList::handleSortChange()
{
    if (!m_state.imageURLs().isEmpty())
        resortImages();
    else if (m_state.selectedFolder() || m_state.selectedTag() || m_state.selectedRating())
        loadImages();
}

void MediaList::resortImages()
{
    if (MainQueue::isCurrent())
        requestResort(Publication::always);
    else
        resortFromBackground();
}

void MediaList::resortImagesIfChanged()
{
    requestResort(Publication::ifChanged);
}

void MediaList::requestResort(Publication publication)
{
    if (m_state.imageURLs().isEmpty())
        return;
    m_resorts.push_back({m_state.sortSettings(), publication});
    startNextResort();
}

void MediaList::startNextResort()
{
    if (m_isResorting || m_resorts.empty())
        return;
    m_isResorting = true;
    const Resort resort = m_resorts.front();
    m_resorts.pop_front();
    inBackground([self = QPointer(this), resort, urls = m_state.imageURLs(), generation = m_generation] {
        MainQueue::async([self, resort, generation, result = sorted(urls, resort.settings)] {
            if (self)
                self->finishResort(result, generation, resort.publication);
        });
    });
}

void MediaList::finishResort(const QList<FileUrl> &sorted, quint64 generation, Publication publication)
{
    m_isResorting = false;
    const bool isWanted = publication == Publication::always || sorted != m_state.imageURLs();
    if (generation == m_generation && isWanted)
        m_state.publishImageURLs(sorted);
    startNextResort();
}

void MediaList::resortFromBackground()
{
    QList<FileUrl> urls;
    SortSettings settings;
    quint64 generation = 0;
    MainQueue::sync([&] {
        urls = m_state.imageURLs();
        settings = m_state.sortSettings();
        generation = m_generation;
    });
    if (urls.isEmpty())
        return;
    const QList<FileUrl> result = sorted(urls, settings);
    MainQueue::sync([&] {
        if (generation == m_generation)
            m_state.publishImageURLs(result);
    });
}

} // namespace Qorvane
