#include "platform/FileAttributes.h"

#include <QFile>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

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
    struct statx buffer;
    if (::statx(AT_FDCWD, QFile::encodeName(path).constData(), 0, STATX_BASIC_STATS | STATX_BTIME, &buffer) !=
        0) {
        if (error)
            *error = QString::fromLocal8Bit(std::strerror(errno));
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
    return ::access(QFile::encodeName(path).constData(), F_OK) == 0;
}

bool directoryExists(const QString &path)
{
    const std::optional<FileAttributes> attributes = fileAttributes(path);
    return attributes && attributes->isDirectory;
}

} // namespace Qorvane
