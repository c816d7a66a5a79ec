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
#include "platform/QuotedList.h"
#include "store/EmbeddingStore.h"

#include <QHash>

#include <semaphore>
#include <utility>

namespace Qorvane {

namespace {

PendingLoads::List sorted(const QList<FileUrl> &urls, const SortSettings &settings)
{
    return {SortingRules::sortURLs(urls, settings.criterion, settings.order), settings};
}

// Runs on a pool's thread.
PendingLoads::List filesOfTag(const QString &tag, const LibrarySnapshot &snapshot)
{
    const QStringList paths = EmbeddingStore::shared().fetchPathsByTag(tag);
    Log::line(QStringLiteral("🏷️ Found ") + QString::number(paths.size()) +
              QStringLiteral(" paths for tag '") + tag + QStringLiteral("': ") + quotedList(paths.mid(0, 3)));
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
    , m_self(this)
{
}

MediaList::Needs MediaList::needsOf(SortCriterion criterion)
{
    return criterion == SortCriterion::rating ? Needs::edits : Needs::filesOnly;
}

void MediaList::inBackground(Needs needs, std::function<void()> work)
{
    GlobalQueue::async(QualityOfService::userInitiated, [needs, edits = m_edits, work = std::move(work)] {
        if (needs == Needs::edits)
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
    load(
        Needs::edits, [tag](const LibrarySnapshot &snapshot) { return filesOfTag(tag, snapshot); },
        [this, tag] { return m_state.selectedTag() == tag; },
        [this, tag](const QList<FileUrl> &urls) {
            Log::line(QStringLiteral("🏷️ Setting imageURLs with ") + QString::number(urls.size()) +
                      QStringLiteral(" images for tag '") + tag + u'\'');
            publishLoaded(urls);
            m_state.publishIsLoading(false);
        });
}

void MediaList::loadRating(int rating)
{
    Log::line(QStringLiteral("⭐️ Loading images for rating: ") + QString::number(rating));
    load(
        Needs::edits,
        [rating](const LibrarySnapshot &snapshot) {
            const QList<FileUrl> files =
                MediaListing::existingFiles(EmbeddingStore::shared().fetchPathsByRating(rating));
            return sorted(files, snapshot.sortSettings());
        },
        [this, rating] { return m_state.selectedRating() == rating; },
        [this](const QList<FileUrl> &urls) {
            publishLoaded(urls);
            m_state.publishIsLoading(false);
        });
}

void MediaList::loadFolder(const Folder &folder)
{
    load(
        needsOf(m_state.sortSettings().criterion),
        [url = folder.url, settings = m_state.sortSettings()](const LibrarySnapshot &) {
            return sorted(MediaListing::collectMediaFiles(url), settings);
        },
        [this, url = folder.url] {
            // A selected rating isn't asked for: while the folder stays selected its list is shown.
            return !m_state.selectedTag() && m_state.selectedFolder() && m_state.selectedFolder()->url == url;
        },
        [this, url = folder.url](const QList<FileUrl> &urls) {
            publishLoaded(urls);
            m_state.publishIsLoading(false);
            m_pipeline.startProcessing(urls, url.path());
        });
}

void MediaList::load(Needs needs, const Find &find, std::function<bool()> isWanted,
                     std::function<void(const QList<FileUrl> &urls)> show)
{
    m_latestSettings = m_state.sortSettings();
    const PendingLoads::Number number = m_loads.begin(std::move(isWanted), std::move(show));
    inBackground(needs, [self = m_self, weak = m_snapshot, number, find] {
        const std::shared_ptr<LibrarySnapshot> snapshot = weak.lock();
        if (!snapshot)
            return;
        MainQueue::async([self, number, list = find(*snapshot)] {
            if (self)
                self->finishLoad(number, list);
        });
    });
}

void MediaList::finishLoad(PendingLoads::Number number, const PendingLoads::List &list)
{
    m_loads.finish(number, list);
    while (std::optional<PendingLoads::Load> next = m_loads.takeNext()) {
        if (isOutdated(next->list->settings) && !m_loads.isAnyWanted()) {
            sortAgain(std::move(*next));
            return;
        }
        next->show(next->list->urls);
    }
}

// Settings that changed but weren't acted upon yet are no reason: the change sorts what is shown by then.
bool MediaList::isOutdated(const SortSettings &settings) const
{
    return settings != m_latestSettings && settings != m_state.sortSettings();
}

// The list shown was sorted anew while this load, begun with the settings from before, was under way. With no
// later load to put it right, its order would stay.
void MediaList::sortAgain(PendingLoads::Load load)
{
    const QList<FileUrl> urls = load.list->urls;
    const PendingLoads::Number number = load.number;
    m_loads.reopen(std::move(load));
    inBackground(needsOf(m_state.sortSettings().criterion),
                 [self = m_self, number, urls, settings = m_state.sortSettings()] {
                     MainQueue::async([self, number, list = sorted(urls, settings)] {
                         if (self)
                             self->finishLoad(number, list);
                     });
                 });
}

void MediaList::processAllRoots()
{
    m_state.publishIsLoading(false);
    inBackground(Needs::filesOnly, [self = m_self, weak = m_snapshot] {
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

void MediaList::requestResort(Publication publication, const Ticket &ticket)
{
    if (m_state.imageURLs().isEmpty())
        return;
    m_latestSettings = m_state.sortSettings();
    m_resorts.push_back({m_latestSettings, publication, ticket});
    startNextResort();
}

void MediaList::startNextResort()
{
    if (m_isResorting || m_resorts.empty())
        return;
    m_isResorting = true;
    const Resort resort = m_resorts.front();
    m_resorts.pop_front();
    inBackground(needsOf(resort.settings.criterion), [self = m_self, resort, urls = m_state.imageURLs(),
                                                      generation = m_generation] {
        MainQueue::async([self, resort, generation, result = sorted(urls, resort.settings).urls] {
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

// Takes its turn among the resorts that the GUI thread asked for, so that none with older settings comes
// last. Touches nothing of this object but from the GUI thread, where that may have gone meanwhile.
void MediaList::resortFromBackground() const
{
    const auto isOver = std::make_shared<std::binary_semaphore>(0);
    MainQueue::async([self = m_self, ticket = Ticket(nullptr, [isOver](void *) { isOver->release(); })] {
        if (self)
            self->requestResort(Publication::always, ticket);
    });
    isOver->acquire();
}

} // namespace Qorvane
