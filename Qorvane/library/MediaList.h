#pragma once

#include "library/PendingLoads.h"
#include "library/SortCriterion.h"
#include "platform/FileUrl.h"

#include <QList>
#include <QObject>
#include <QPointer>

#include <deque>
#include <functional>
#include <memory>

namespace Qorvane {

struct Folder;
class DeferredWrites;
class LibrarySnapshot;
class LibraryState;
class ProcessingPipeline;

/// The list that the grid shows: loaded for the selection, sorted, published. Loads overlap freely and are
/// published in the order they were begun; a result that no longer fits the selection is dropped. Nothing
/// here waits for the disk or the store on the GUI thread. GUI thread, unless said otherwise.
class MediaList : public QObject
{
    Q_OBJECT

public:
    /// What is given by reference outlives it. `edits` writes the user's tags and ratings.
    MediaList(LibraryState &state, const std::shared_ptr<LibrarySnapshot> &snapshot,
              const std::shared_ptr<DeferredWrites> &edits, ProcessingPipeline &pipeline);

    /// Empties the list and loads it for the selected tag, else rating, else folder. A folder's load starts
    /// its run; with nothing selected the list stays empty and the runs of all roots start.
    void loadImages();
    /// Sorts what is there, or loads for a selection that shows nothing.
    void handleSortChange();
    /// Sorts the list by the present settings and publishes it, unless another list was published meanwhile.
    /// Any thread; on the GUI thread it returns at once and the list follows, on any other it returns when
    /// the list is published.
    void resortImages();
    /// The same for the GUI thread, publishing only a list that came out different.
    void resortImagesIfChanged();

private:
    enum class Publication { always, ifChanged };
    /// Whoever waits for a resort holds on to this; it goes with the resort, published or void.
    using Ticket = std::shared_ptr<void>;
    struct Resort
    {
        SortSettings settings;
        Publication publication;
        Ticket ticket;
    };
    using Find = std::function<PendingLoads::List(const LibrarySnapshot &snapshot)>;

    /// Whether a list depends on tags and ratings. What doesn't need not wait for those being written.
    enum class Needs { edits, filesOnly };

    static Needs needsOf(SortCriterion criterion);
    /// Runs `work` in the background; when it needs them, behind the edits that were asked for before.
    void inBackground(Needs needs, std::function<void()> work);
    void loadTag(const QString &tag);
    void loadRating(int rating);
    void loadFolder(const Folder &folder);
    /// Begins a load: `find` makes its list in the background.
    void load(Needs needs, const Find &find, std::function<bool()> isWanted,
              std::function<void(const QList<FileUrl> &urls)> show);
    void finishLoad(PendingLoads::Number number, const PendingLoads::List &list);
    bool isOutdated(const SortSettings &settings) const;
    void sortAgain(PendingLoads::Load load);
    void processAllRoots();

    /// Publishes the list of a load; a resort of the list before it is void.
    void publishLoaded(const QList<FileUrl> &urls);
    void requestResort(Publication publication, const Ticket &ticket = {});
    void startNextResort();
    void finishResort(const QList<FileUrl> &sorted, quint64 generation, Publication publication);
    void resortFromBackground() const;

    LibraryState &m_state;
    const std::weak_ptr<LibrarySnapshot> m_snapshot;
    const std::shared_ptr<DeferredWrites> m_edits;
    ProcessingPipeline &m_pipeline;
    const QPointer<MediaList> m_self; // made once: only copying it is safe from any thread
    PendingLoads m_loads;
    /// What the newest load or resort was asked for with.
    SortSettings m_latestSettings;
    /// Counts the lists that loads have published.
    quint64 m_generation = 0;
    /// One sort after the other, each on the result of the one before, as if they were done at once: among
    /// equal names the earlier order stays, so leaving one out would show.
    std::deque<Resort> m_resorts;
    bool m_isResorting = false;
};

} // namespace Qorvane
