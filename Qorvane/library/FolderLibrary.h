#pragma once

#include "library/ChangeLine.h"
#include "library/Folder.h"
#include "library/LibraryTimings.h"

#include <QObject>

#include <functional>
#include <memory>
#include <optional>

namespace Qorvane {

class DeferredWrites;
class LibrarySnapshot;
class LibraryState;
class ProcessingPipeline;
class ProcessingReports;
class SelectionRules;

/// The roots of the library and the favourites: added, removed, stored, found. GUI thread; what asks the disk
/// does so in the background, and what follows it comes when it has answered.
class FolderLibrary : public QObject
{
    Q_OBJECT

public:
    struct Surroundings
    {
        LibraryState &state;
        std::shared_ptr<LibrarySnapshot> snapshot;
        std::shared_ptr<ProcessingReports> reports;
        ProcessingPipeline &pipeline;
        SelectionRules &selection;
        /// Where bookmarks are saved and read, and nothing else is.
        std::shared_ptr<DeferredWrites> bookmarkWrites;
        /// Writes the user's tags and ratings.
        std::shared_ptr<DeferredWrites> edits;
        LibraryTimings timings;
    };

    /// What is given by reference outlives it.
    explicit FolderLibrary(Surroundings surroundings);

    void addFolder(const FileUrl &url);
    void removeFolderFromLibrary(const Folder &folder);
    void addToFavorites(const Folder &folder);
    void removeFromFavorites(const Folder &folder);
    void saveBookmarks();
    void saveFavoriteBookmarks();
    /// For the end of the program: what was asked for and still waits, for a folder's tree say, is saved as
    /// if it had been done.
    void saveWaitingChanges();
    /// Whether changes of the roots wait, or one is being made.
    bool isChanging() const { return m_rootChanges.isHeld(); }
    void loadBookmarks(std::function<void()> completion);
    /// Whether the roots of earlier runs are still being read.
    bool isLoading() const { return m_isLoading; }
    /// Calls `completion` in any case.
    void loadFavoriteBookmarks(std::function<void()> completion);
    std::optional<Folder> folderForSidebarSelection(const std::optional<QString> &selection) const;
    std::optional<Folder> folderWithAbsoluteString(const QString &text) const;

Q_SIGNALS:
    void isLoadingChanged();

private:
    using Change = ChangeLine::Change;

    struct RootChange
    {
        enum class Kind { addition, removal };

        Kind kind;
        Folder folder;

        friend bool operator==(const RootChange &, const RootChange &) = default;
    };

    QList<Folder> rootsWithWaitingChanges() const;
    void setLoading(bool isLoading);
    void resolve(const QList<QByteArray> &bookmarks, const Change &completion);
    void publishLoaded(const QList<Folder> &roots, const Change &completion);
    void readTree(const FileUrl &url);
    void adopt(const Folder &folder);
    void finishAdoption(const Folder &folder, bool isFirst);
    void processAdopted(const FileUrl &url);
    void remove(const Folder &folder);
    void scheduleRecordDeletion(const QString &path);
    void publishFavorites(const QList<Folder> &favorites);
    void publishLoadedFavorites(const QList<FileUrl> &urls);
    /// Saves, then goes on with `then`: with what comes after a save in the order of things. That waits for
    /// the save only so long (LibraryTimings), since the disk of one root may have stopped answering.
    void saveBookmarks(const Change &then);

    const Surroundings m_surroundings;
    LibraryState &m_state;
    ChangeLine m_rootChanges;
    /// Those of the line that haven't reached the published roots, oldest first.
    QList<RootChange> m_waitingChanges;
    /// The roots of earlier runs are stored, but not published yet.
    bool m_isLoading = false;
    ChangeLine m_favoriteChanges;
};

} // namespace Qorvane
