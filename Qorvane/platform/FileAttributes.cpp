#include "platform/FileAttributes.h"

#include "platform/NativePath.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace Qorvane {

namespace {

double seconds(const struct statx_timestamp &time)
{
    constexpr double nanosecondsPerSecond = 1e9;
    return double(time.tv_sec) + double(time.tv_nsec) / nanosecondsPerSecond;
}

} // namespace

std::optional<FileAttributes> fileAttributes(const QString &path, QString *error)
{
    const std::optional<QByteArray> name = nativePath(path);
    struct statx buffer = {};
    if (!name)
        errno = ENOENT;
    if (!name || ::statx(AT_FDCWD, name->constData(), 0, STATX_BASIC_STATS | STATX_BTIME, &buffer) != 0) {
        if (error)
            *error = qt_error_string(errno);
        return std::nullopt;
    }
    FileAttributes attributes;
    attributes.size = qint64(buffer.stx_size);
    attributes.modificationTime = seconds(buffer.stx_mtime);
    if (buffer.stx_mask & STATX_BTIME)
        attributes.creationTime = seconds(buffer.stx_btime);
    attributes.isDirectory = S_ISDIR(buffer.stx_mode);
    return attributes;
}

bool fileExists(const QString &path)
{
    const std::optional<QByteArray> name = nativePath(path);
    return name && ::access(name->constData(), F_OK) == 0;
}

bool directoryExists(const QString &path)
{
    const std::optional<FileAttributes> attributes = fileAttributes(path);
    return attributes && attributes->isDirectory;
}

} // namespace Qorvane
