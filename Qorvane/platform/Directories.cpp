#include "platform/Directories.h"

#include <QDir>
#include <QFile>

#include <sys/stat.h>
#include <unistd.h>

namespace Qorvane::Directories {

namespace {

// The XDG base directory rules: a relative value is invalid and is passed over.
std::optional<QString> baseDirectory(const char *variable, QLatin1String belowHome)
{
    const QString value = QFile::decodeName(qgetenv(variable));
    if (value.startsWith(u'/'))
        return QDir::cleanPath(value);
    const QString home = QFile::decodeName(qgetenv("HOME"));
    if (home.startsWith(u'/'))
        return QDir::cleanPath(home + u'/' + belowHome);
    return std::nullopt;
}

// Whoever may write there could stand in for us. Not through a link, which another may have laid.
bool isOnlyOurs(const QString &folder)
{
    struct stat found = {};
    return ::lstat(QFile::encodeName(folder).constData(), &found) == 0 && S_ISDIR(found.st_mode) &&
           found.st_uid == ::geteuid() && (found.st_mode & (S_IWGRP | S_IWOTH)) == 0 &&
           ::access(QFile::encodeName(folder).constData(), W_OK) == 0;
}

} // namespace

std::optional<QString> applicationSupport()
{
    return baseDirectory("XDG_DATA_HOME", QLatin1String(".local/share"));
}

std::optional<QString> caches()
{
    return baseDirectory("XDG_CACHE_HOME", QLatin1String(".cache"));
}

std::optional<QString> configuration()
{
    return baseDirectory("XDG_CONFIG_HOME", QLatin1String(".config"));
}

std::optional<QString> runtime()
{
    // Someone else's after a change of user that kept the environment.
    const QString given = QFile::decodeName(qgetenv("XDG_RUNTIME_DIR"));
    if (given.startsWith(u'/') && isOnlyOurs(QDir::cleanPath(given)))
        return QDir::cleanPath(given);
    const QString own = QStringLiteral("%1/qorvane-%2").arg(QDir::tempPath()).arg(::geteuid());
    ::mkdir(QFile::encodeName(own).constData(), S_IRWXU);
    return isOnlyOurs(own) ? std::optional(own) : std::nullopt;
}

bool create(const QString &path)
{
    return QDir().mkpath(path);
}

} // namespace Qorvane::Directories
