#pragma once

#include "library/Folder.h"
#include "library/LibraryTimings.h"

#include <QObject>

#include <deque>
#include <functional>
#include <memory>
#include <optional>

namespace Qorvane {

class LibrarySnapshot;
class LibraryState;
class ProcessingPipeline;
class ProcessingReports;
class SelectionRules;

/// The roots of the library and the favourites: added, removed, stored, found. GUI thread.
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
        LibraryTimings timings;
    };

    /// What is given by reference outlives it.
    explicit FolderLibrary(Surroundings surroundings);

    void addFolder(const FileUrl &url);
    void removeFolderFromLibrary(const Folder &folder);
    void addToFavorites(const Folder &folder);
    void removeFromFavorites(const Folder &folder);
    void saveBookmarks() const;
    void saveFavoriteBookmarks() const;
    void loadBookmarks(std::function<void()> completion);
    void loadFavoriteBookmarks();
    std::optional<Folder> folderForSidebarSelection(const std::optional<QString> &selection) const;
    std::optional<Folder> folderWithAbsoluteString(const QString &text) const;

private:
    using Change = std::function<void()>;

    /// Makes `change` now, or after the folder whose tree is being read and what waits behind it.
    void inOrder(Change change);
    void readTree(const FileUrl &url);
    void finishReading(const Folder &folder);
    void adopt(const Folder &folder);
    void processAdopted(const FileUrl &url);
    void remove(const Folder &folder);
    void scheduleRecordDeletion(const QString &path);
    void publishFavorites(const QList<Folder> &favorites);

    const Surroundings m_surroundings;
    LibraryState &m_state;
    std::deque<Change> m_waiting;
    bool m_isReadingTree = false;
};

} // namespace Qorvane
