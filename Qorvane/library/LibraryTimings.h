#pragma once

namespace Qorvane {

/// The waits of the library, in seconds. The defaults are the program's own; tests pass shorter ones.
struct LibraryTimings
{
    /// From the published roots to the first synchronisation: the window gets to draw itself first.
    double untilStartupSync = 1.0;
    /// From a folder's removal to the deletion of its records: a run in work has a file's time to stop.
    double untilRecordDeletion = 1.0;
    /// From that deletion to the check of what is left.
    double untilDeletionCheck = 0.5;
    /// How long a run waits for one embedding before it counts the file as failed.
    double embeddingTimeout = 10.0;
    /// How long what follows a save of the bookmarks waits for it. Only a disk that has stopped answering
    /// takes longer, and that is no reason to leave a new folder unprocessed.
    double bookmarkPatience = 2.0;

    friend bool operator==(const LibraryTimings &, const LibraryTimings &) = default;
};

} // namespace Qorvane
