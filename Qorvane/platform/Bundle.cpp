#include "platform/Bundle.h"

#include "platform/Directories.h"
#include "platform/FileAttributes.h"

#include <QCoreApplication>
#include <QDir>

namespace Qorvane::Bundle {

QStringList resourceDirectories()
{
    // bin/ and share/ are neighbours when installed. In a build tree the application lies one folder below
    // the top as well, a test or a tool possibly two.
    const QString program = QCoreApplication::applicationDirPath();
    QStringList candidates{QDir::cleanPath(program + QStringLiteral("/../share/qorvane")),
                           QDir::cleanPath(program + QStringLiteral("/../../share/qorvane"))};
    if (const std::optional<QString> support = Directories::applicationSupport())
        candidates.append(*support + QStringLiteral("/Qorvane/models"));
    candidates.removeIf([](const QString &candidate) { return !directoryExists(candidate); });
    return candidates;
}

std::optional<QString> urlForResource(const QString &name, const QString &extension)
{
    return urlForResource(name, extension, resourceDirectories());
}

std::optional<QString> urlForResource(const QString &name, const QString &extension,
                                      const QStringList &directories)
{
    for (const QString &directory : directories) {
        const QString path = directory + u'/' + name + u'.' + extension;
        if (fileExists(path))
            return path;
    }
    return std::nullopt;
}

QString resourcePath()
{
    return resourceDirectories().value(0);
}

} // namespace Qorvane::Bundle
