#include "platform/Directories.h"

#include <QDir>
#include <QFile>

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

bool create(const QString &path)
{
    return QDir().mkpath(path);
}

} // namespace Qorvane::Directories
