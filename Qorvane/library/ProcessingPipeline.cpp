#include "library/ProcessingPipeline.h"

#include "library/LibrarySnapshot.h"
#include "library/ProcessingReports.h"
#include "library/ProcessingRun.h"
#include "platform/Localization.h"
#include "platform/Log.h"

#include <utility>

namespace Qorvane {

ProcessingPipeline::ProcessingPipeline(std::shared_ptr<const RunSurroundings> surroundings)
    : m_surroundings(std::move(surroundings))
    , m_taskQueue("com.qorvane.backgroundtasks", QualityOfService::utility)
{
}

ProcessingPipeline::~ProcessingPipeline()
{
    cancelAllTasks();
}

void ProcessingPipeline::startProcessing(const QList<FileUrl> &urls, const QString &folderPath)
{
    if (urls.isEmpty())
        return;
    cancelFolderTasksSilently(folderPath);
    m_surroundings->reports->setProcessing(folderPath, FolderProcessingState::thumbnails, 0,
                                           localized("准备生成缩略图..."));
    const TaskHandle task =
        DetachedTask::start(QualityOfService::background,
                            [weak = std::weak_ptr(m_surroundings), folderPath, urls](const TaskHandle &own) {
                                if (const std::shared_ptr<const RunSurroundings> surroundings = weak.lock())
                                    ProcessingRun(surroundings, own, folderPath, urls).execute();
                            });
    // Queued behind the cancel above, which therefore can't meet the new run.
    m_taskQueue.async([this, folderPath, task] { m_backgroundTasks.insert(folderPath, task); });
}

void ProcessingPipeline::cancelFolderTasks(const QString &path)
{
    m_taskQueue.async([this, path] {
        if (takeTask(path, QStringLiteral("🔄 已取消文件夹的后台任务: ")))
            m_surroundings->reports->setProcessing(path, FolderProcessingState::idle, 0, QString());
    });
}

void ProcessingPipeline::cancelFolderTasksSilently(const QString &path)
{
    m_taskQueue.async([this, path] { takeTask(path, QStringLiteral("🔄 静默取消文件夹的后台任务: ")); });
}

void ProcessingPipeline::cancelAllTasks()
{
    m_taskQueue.async([this] {
        for (auto task = m_backgroundTasks.cbegin(); task != m_backgroundTasks.cend(); ++task) {
            task->cancel();
            Log::line(QStringLiteral("🔄 已取消后台任务: ") + task.key());
        }
        m_backgroundTasks.clear();
        for (const QString &path : m_surroundings->snapshot->processedPaths())
            m_surroundings->reports->setProcessing(path, FolderProcessingState::idle, 0, QString());
    });
}

bool ProcessingPipeline::takeTask(const QString &path, const QString &line)
{
    const auto task = m_backgroundTasks.constFind(path);
    if (task == m_backgroundTasks.cend())
        return false;
    task->cancel();
    m_backgroundTasks.erase(task);
    Log::line(line + path);
    return true;
}

} // namespace Qorvane
