#include "media/ThumbnailCache.h"
#include "media/ThumbnailPaths.h"
#include "media/WholeFile.h"
#include "platform/Log.h"

#include <QFile>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <system_error>

namespace fs = std::filesystem;

namespace Qorvane::ThumbnailCache {

namespace {

constexpr double megabytesPerByte = 9.5367431640625e-07; // 1 / 1,048,576, exactly

// No write of a thumbnail takes this long, so what is older was left by a crash.
constexpr auto oldestTemporary = std::chrono::hours(1);

fs::path nativePath(const QString &path)
{
    return QFile::encodeName(path).toStdString();
}

bool isThumbnail(const fs::path &path)
{
    const FileUrl url = FileUrl::file(QFile::decodeName(path.c_str()));
    return url.pathExtension().toLower() == QLatin1String("jpg")
           // No code of ours writes that name; it is left out of the figure all the same.
           && url.lastPathComponent() != QLatin1String("preview.jpg");
}

void removeIfAbandoned(const fs::directory_entry &entry)
{
    std::error_code error;
    const fs::file_time_type time = entry.last_write_time(error);
    if (!error && fs::file_time_type::clock::now() - time > oldestTemporary)
        fs::remove(entry.path(), error);
}

int64_t fileSize(const fs::directory_entry &entry)
{
    std::error_code error;
    const bool isRegular = entry.is_regular_file(error) && !error;
    const auto size = isRegular ? entry.file_size(error) : 0;
    return error ? 0 : int64_t(size);
}

// Folders that can't be read, or vanish while they are, add what was seen of them; links to folders aren't
// followed.
int64_t bytesBelow(const fs::path &folder)
{
    int64_t bytes = 0;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error); !error && entry != fs::directory_iterator();
         entry.increment(error)) {
        std::error_code ignored;
        if (entry->is_directory(ignored) && !entry->is_symlink(ignored))
            bytes += bytesBelow(entry->path());
        else if (isTemporaryOfWholeFile(QFile::decodeName(entry->path().filename().c_str())))
            removeIfAbandoned(*entry);
        else if (isThumbnail(entry->path()))
            bytes += fileSize(*entry);
    }
    return bytes;
}

// A run may store a thumbnail in a folder that is just being emptied, which then can't be removed: the next
// attempt takes that one along.
std::error_code removeWithContents(const fs::path &folder)
{
    std::error_code error;
    if (!fs::exists(fs::symlink_status(folder, error)))
        return error ? error : std::make_error_code(std::errc::no_such_file_or_directory);
    constexpr int attempts = 5;
    for (int i = 0; i < attempts; ++i) {
        fs::remove_all(folder, error);
        if (error != std::errc::directory_not_empty)
            break;
    }
    return error;
}

} // namespace

std::optional<double> measureCacheSizeInMB()
{
    const std::optional<FileUrl> base = thumbnailCacheDirectory();
    if (!base)
        return std::nullopt;
    return double(bytesBelow(nativePath(base->path()))) * megabytesPerByte;
}

bool clearCache()
{
    const std::optional<FileUrl> base = thumbnailCacheDirectory();
    if (!base)
        return false;
    const fs::path folder = nativePath(base->path());
    std::error_code error = removeWithContents(folder);
    if (!error)
        fs::create_directories(folder, error);
    if (!error)
        return true;
    Log::line(QStringLiteral("Error clearing cache: ") + QString::fromLocal8Bit(error.message().c_str()));
    return false;
}

} // namespace Qorvane::ThumbnailCache
