#pragma once

#include "library/FolderProcessingState.h"
#include "platform/FileUrl.h"

#include <QPointer>
#include <QString>

#include <optional>

namespace Qorvane {

class LibraryState;

/// How far the runs have come, on its way to the views. May outlive the library; what it is told then is
/// only logged.
class ProcessingReports
{
public:
    /// GUI thread.
    explicit ProcessingReports(LibraryState &state);

    /// Logs the report and queues its publication; what is absent leaves the earlier value in place. No
    /// report is held back: each reaches the GUI thread, in the order of the calls. Any thread; returns at
    /// once.
    void setProcessing(const QString &path, std::optional<FolderProcessingState> state,
                       std::optional<double> progress, const std::optional<QString> &detail) const;

    /// What the sidebar shows for a folder: idle without an entry, and idle for a completed folder below
    /// another root that is completed too, so that not every sub-folder carries a mark. GUI thread.
    FolderProcessingState processingState(const FileUrl &folderUrl) const;

private:
    const QPointer<LibraryState> m_state;
};

} // namespace Qorvane
