#include "encoders/compare/PictureEmbedding.h"

#include "media/ThumbnailCache.h"
#include "platform/FileUrl.h"

#include <QThread>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace Qorvane::Encoders {

namespace {

constexpr char cacheVariable[] = "XDG_CACHE_HOME";

} // namespace

TemporaryThumbnails::TemporaryThumbnails()
    : m_before(qgetenv(cacheVariable))
    , m_wasSet(qEnvironmentVariableIsSet(cacheVariable))
{
    if (m_folder.isValid())
        qputenv(cacheVariable, m_folder.path().toLocal8Bit());
}

TemporaryThumbnails::~TemporaryThumbnails()
{
    if (m_wasSet)
        qputenv(cacheVariable, m_before);
    else
        qunsetenv(cacheVariable);
}

EmbeddedFile embedFile(const QString &path, const InstalledPair &pair)
{
    const std::optional<Image> thumbnail = ThumbnailCache::getThumbnail(FileUrl::file(path));
    if (!thumbnail || thumbnail->isNull()) {
        return problem(QStringLiteral("a picture that can be read"), path,
                       QStringLiteral("take it out of the table, or mend the file"));
    }
    return pair.embedPicture(thumbnail->pixels());
}

std::vector<EmbeddedFile> embedFiles(const QStringList &paths, const InstalledPair &pair,
                                     const std::function<void(double)> &progress)
{
    std::vector<EmbeddedFile> results(std::size_t(paths.size()));
    std::atomic_size_t next = 0;
    std::mutex mutex;
    std::condition_variable changed;
    std::size_t done = 0;
    {
        std::vector<std::jthread> workers;
        for (int worker = 0; worker < std::max(1, QThread::idealThreadCount()); ++worker) {
            workers.emplace_back([&] {
                for (std::size_t index = next++; index < results.size(); index = next++) {
                    results[index] = embedFile(paths[qsizetype(index)], pair);
                    const std::lock_guard lock(mutex);
                    ++done;
                    changed.notify_one();
                }
            });
        }
        std::unique_lock lock(mutex);
        for (std::size_t shown = 0; shown < results.size(); shown = done) {
            changed.wait(lock, [&] { return done > shown; });
            progress(double(done) / double(results.size()));
        }
    }
    return results;
}

} // namespace Qorvane::Encoders
