#include "library/ProcessingRun.h"

#include "library/LibrarySnapshot.h"
#include "library/ProcessingReports.h"
#include "media/SupportedExtensions.h"
#include "media/ThumbnailCache.h"
#include "media/ThumbnailPaths.h"
#include "platform/FileAttributes.h"
#include "platform/Localization.h"
#include "platform/Log.h"
#include "store/EmbeddingStore.h"

#include <algorithm>
#include <utility>

namespace Qorvane {

namespace {

// The unit of iteration of the first stage. It bounds nothing: within a slice, too, one file follows the
// other.
constexpr qsizetype sliceSize = 5;

double modificationTime(const FileUrl &file)
{
    const std::optional<FileAttributes> attributes = fileAttributes(file.path());
    return attributes ? attributes->modificationTime : 0.0;
}

} // namespace

std::optional<std::vector<float>> RunSurroundings::computeImageEmbedding(const FileUrl &file) const
{
    const std::optional<Image> thumbnail = ThumbnailCache::getThumbnail(file);
    // A broken cache file shows itself only here, where its pixels are needed for the first time.
    if (!thumbnail || thumbnail->isNull())
        return std::nullopt;
    return embedding.send(*thumbnail, file.lastPathComponent());
}

ProcessingRun::ProcessingRun(std::shared_ptr<const RunSurroundings> surroundings, TaskHandle task,
                             QString path, QList<FileUrl> files)
    : m_surroundings(std::move(surroundings))
    , m_task(std::move(task))
    , m_path(std::move(path))
    , m_files(std::move(files))
{
}

void ProcessingRun::execute()
{
    Log::line(QStringLiteral("🔄 开始生成缩略图: ") + m_path);
    if (makeThumbnails() == Outcome::end)
        return;
    Log::line(QStringLiteral("🎯 缩略图生成完成，共 %1 张图片").arg(m_processed.size()));
    report(FolderProcessingState::vectors, 0, localized("准备生成向量..."));
    Log::line(QStringLiteral("🔄 状态更新为向量生成中: ") + m_path);

    Log::line(QStringLiteral("🔄 开始生成向量: ") + m_path);
    if (computeVectors() == Outcome::end)
        return;
    Log::line(QStringLiteral("🎯 向量生成完成: ") + m_path);
    report(FolderProcessingState::completed, 1, localized("处理完成"));
    Log::line(QStringLiteral("✅ 状态更新为完成: ") + m_path);
}

ProcessingRun::Outcome ProcessingRun::makeThumbnails()
{
    for (qsizetype start = 0; start < m_files.size(); start += sliceSize) {
        const qsizetype end = std::min(start + sliceSize, m_files.size());
        for (qsizetype i = start; i < end; ++i) {
            if (makeThumbnail(m_files[i]) == Outcome::end)
                return Outcome::end;
        }
    }
    return Outcome::goOn;
}

ProcessingRun::Outcome ProcessingRun::makeThumbnail(const FileUrl &file)
{
    if (m_task.isCancelled())
        return endIdle(QStringLiteral("🔄 缩略图生成任务已取消: "));
    if (!fileExists(file.path())) {
        Log::line(QStringLiteral("⚠️ 文件已不存在，跳过缩略图生成: ") + file.path());
        return Outcome::goOn;
    }
    if (!m_surroundings->snapshot->containsPath(file.path()))
        return endIdle(QStringLiteral("⚠️ 文件夹已从库中移除，取消缩略图生成: "));

    // Made for the file on disk; a failure shows when the vector is wanted.
    const std::optional<FileAttributes> before = fileAttributes(file.path());
    // A video is asked for again then: each of its failures has a line that is due.
    if (!ThumbnailCache::getThumbnail(file) && before && !isVideoFile(file))
        m_unreadable.insert(file.path(), *before);
    const std::optional<FileUrl> thumbnail = thumbnailURL(file);
    if (!thumbnail)
        return Outcome::goOn;
    m_thumbnailPaths.insert(file.path(), thumbnail->path());
    m_processed.append(file);
    Log::line(QStringLiteral("✅ 缩略图生成完成: ") + file.lastPathComponent());
    report(FolderProcessingState::thumbnails, double(m_processed.size()) / double(m_files.size()),
           localizedFormat("thumb_progress", m_processed.size(), m_files.size()));
    return Outcome::goOn;
}

ProcessingRun::Outcome ProcessingRun::computeVectors()
{
    for (const FileUrl &file : std::as_const(m_processed)) {
        if (computeVector(file) == Outcome::end)
            return Outcome::end;
    }
    return Outcome::goOn;
}

ProcessingRun::Outcome ProcessingRun::computeVector(const FileUrl &file)
{
    if (m_task.isCancelled())
        return endIdle(QStringLiteral("🔄 向量生成任务已取消: "));
    if (!fileExists(file.path())) {
        Log::line(QStringLiteral("⚠️ 文件在向量生成阶段被删除，跳过: ") + file.path());
        return Outcome::goOn;
    }
    if (!m_surroundings->snapshot->containsPath(file.path()))
        return endIdle(QStringLiteral("⚠️ 文件夹已从库中移除，取消向量生成: "));

    const qsizetype count = m_processed.size();
    const double mtime = modificationTime(file);
    if (EmbeddingStore::shared().isUpToDate(file.path(), mtime)) {
        Log::line(QStringLiteral("⏭️ 向量已是最新，跳过: ") + file.lastPathComponent());
        ++m_embedded;
        report(FolderProcessingState::vectors, double(m_embedded) / double(count),
               localizedFormat("embed_progress", m_embedded, count));
        return Outcome::goOn;
    }
    const auto thumbnailPath = m_thumbnailPaths.constFind(file.path());
    if (thumbnailPath == m_thumbnailPaths.cend()) {
        Log::line(QStringLiteral("⚠️ 缩略图路径不存在，跳过向量生成: ") + file.path());
        return Outcome::goOn;
    }
    if (!storeVector(file, *thumbnailPath, mtime))
        return Outcome::goOn;
    ++m_embedded;
    // Plain on purpose: only the text for files that were skipped is translated.
    report(FolderProcessingState::vectors, double(m_embedded) / double(count),
           QStringLiteral("向量: %1/%2").arg(m_embedded).arg(count));
    return Outcome::goOn;
}

bool ProcessingRun::storeVector(const FileUrl &file, const QString &thumbnailPath, double mtime)
{
    const std::optional<std::vector<float>> vector = isKnownToBeNoPicture(file, thumbnailPath)
                                                         ? std::nullopt
                                                         : m_surroundings->computeImageEmbedding(file);
    if (!vector || vector->empty()) {
        Log::line(QStringLiteral("❌ 向量生成失败: ") + file.lastPathComponent());
        return true;
    }
    if (!fileExists(file.path())) {
        Log::line(QStringLiteral("⚠️ 文件在向量计算后被删除，跳过数据库插入: ") +
                  file.path());
        return false;
    }
    // With the time from before the picture was read: a file changed meanwhile is then stale at the next run.
    EmbeddingStore::shared().upsert(file.path(), thumbnailPath, *vector, int(vector->size()), mtime);
    Log::line(QStringLiteral("✅ 向量生成完成: ") + file.lastPathComponent());
    return true;
}

bool ProcessingRun::isKnownToBeNoPicture(const FileUrl &file, const QString &thumbnailPath) const
{
    const auto before = m_unreadable.constFind(file.path());
    return before != m_unreadable.cend() && fileAttributes(file.path()) == *before &&
           !fileExists(thumbnailPath);
}

// A superseded run, too, comes by here and writes idle over the state of the run that took its place; that
// run's next report puts it right.
ProcessingRun::Outcome ProcessingRun::endIdle(const QString &line) const
{
    Log::line(line + m_path);
    report(FolderProcessingState::idle, 0, QString());
    return Outcome::end;
}

void ProcessingRun::report(FolderProcessingState state, double progress, const QString &detail) const
{
    m_surroundings->reports->setProcessing(m_path, state, progress, detail);
}

} // namespace Qorvane
