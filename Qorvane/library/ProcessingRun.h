#pragma once

#include "library/EmbeddingRequest.h"
#include "library/FolderProcessingState.h"
#include "platform/DetachedTask.h"
#include "platform/FileAttributes.h"
#include "platform/FileUrl.h"

#include <QHash>
#include <QList>
#include <QString>

#include <memory>
#include <optional>
#include <vector>

namespace Qorvane {

class LibrarySnapshot;
class ProcessingReports;

/// What a run needs of the library. Holds no object of the GUI thread, so that a run may be the last to let
/// go of it.
struct RunSurroundings
{
    std::shared_ptr<LibrarySnapshot> snapshot;
    std::shared_ptr<ProcessingReports> reports;
    EmbeddingRequest embedding;

    /// The vector of the file's thumbnail, never of the full-size file; nothing when there is no thumbnail,
    /// no vector, or no answer in time. Blocks; any thread but the GUI's.
    std::optional<std::vector<float>> computeImageEmbedding(const FileUrl &file) const;
};

/// One folder's run: thumbnails of all its files first, then all vectors, one file in work at any time.
/// It may be cancelled between two files. It ends `completed` even if every file failed; what is missing is
/// what the next run does.
class ProcessingRun
{
public:
    /// `path` is the key that the run reports under; `task` is asked for cancellation.
    ProcessingRun(std::shared_ptr<const RunSurroundings> surroundings, TaskHandle task, QString path,
                  QList<FileUrl> files);

    /// Blocks until the run has ended. A background thread.
    void execute();

private:
    enum class Outcome { goOn, end };

    Outcome makeThumbnails();
    Outcome makeThumbnail(const FileUrl &file);
    Outcome computeVectors();
    Outcome computeVector(const FileUrl &file);
    /// False when the file vanished meanwhile, which leaves it uncounted.
    bool storeVector(const FileUrl &file, const QString &thumbnailPath, double mtime);
    /// Whether the first stage found that there is no picture in the file as it is now, and nobody has made
    /// its thumbnail since.
    bool isKnownToBeNoPicture(const FileUrl &file, const QString &thumbnailPath) const;
    Outcome endIdle(const QString &line) const;
    void report(FolderProcessingState state, double progress, const QString &detail) const;

    const std::shared_ptr<const RunSurroundings> m_surroundings;
    const TaskHandle m_task;
    const QString m_path;
    const QList<FileUrl> m_files;
    /// From file to thumbnail, for the files handled in this run.
    QHash<QString, QString> m_thumbnailPaths;
    /// The files that went through the first stage, in order.
    QList<FileUrl> m_processed;
    /// The pictures that couldn't be read, as they were before the attempt.
    QHash<QString, FileAttributes> m_unreadable;
    qsizetype m_embedded = 0;
};

} // namespace Qorvane
