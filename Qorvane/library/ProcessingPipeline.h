#pragma once

#include "platform/DetachedTask.h"
#include "platform/FileUrl.h"
#include "platform/SerialQueue.h"

#include <QHash>
#include <QList>
#include <QString>

#include <memory>

namespace Qorvane {

struct RunSurroundings;

/// Starts and cancels the background runs, one per folder path at a time; runs of different paths go on side
/// by side, over shared files too. A run that has ended keeps its entry until a cancel takes it.
class ProcessingPipeline
{
public:
    explicit ProcessingPipeline(std::shared_ptr<const RunSurroundings> surroundings);
    /// Cancels every run and doesn't wait for them.
    ~ProcessingPipeline();

    /// GUI thread. An empty list changes nothing.
    void startProcessing(const QList<FileUrl> &urls, const QString &folderPath);
    /// Cancels the run under exactly this path and makes the folder idle; without an entry nothing happens.
    /// Any thread.
    void cancelFolderTasks(const QString &path);
    /// The same without a change of state. Any thread.
    void cancelFolderTasksSilently(const QString &path);
    /// Cancels all, and makes every folder idle that ever had a state. Any thread.
    void cancelAllTasks();

private:
    /// Cancels and forgets the run; false when there is none. Only on the queue.
    bool takeTask(const QString &path, const QString &line);

    const std::shared_ptr<const RunSurroundings> m_surroundings;
    QHash<QString, TaskHandle> m_backgroundTasks; // touched only on the queue
    SerialQueue m_taskQueue; // last: it runs what is still queued before what that works on goes
};

} // namespace Qorvane
