#include "media/ThumbnailPaths.h"

#include "platform/Directories.h"
#include "platform/FileAttributes.h"

#include <QCryptographicHash>

namespace Qorvane {

QString sha256Hex(const QString &text)
{
    return QString::fromLatin1(QCryptographicHash::hash(text.toUtf8(), QCryptographicHash::Sha256).toHex());
}

std::optional<FileUrl> thumbnailCacheDirectory()
{
    const std::optional<QString> caches = Directories::caches();
    if (!caches)
        return std::nullopt;
    return FileUrl::directory(*caches + QStringLiteral("/com.qorvane.thumbnails"));
}

std::optional<FileUrl> thumbnailDirectory(const FileUrl &folder)
{
    const std::optional<FileUrl> base = thumbnailCacheDirectory();
    if (!base)
        return std::nullopt;
    const FileUrl directory = FileUrl::directory(base->path() + u'/' + sha256Hex(folder.path()));
    // Asked first because this runs for every cell that scrolls by, and a look is far cheaper than the
    // attempt.
    if (!directoryExists(directory.path()))
        Directories::create(directory.path());
    return directory;
}

std::optional<FileUrl> thumbnailURL(const FileUrl &file)
{
    const std::optional<FileUrl> directory = thumbnailDirectory(file.deletingLastPathComponent());
    if (!directory)
        return std::nullopt;
    return FileUrl::file(directory->path() + u'/' + sha256Hex(file.path()) + QStringLiteral(".jpg"));
}

} // namespace Qorvane
