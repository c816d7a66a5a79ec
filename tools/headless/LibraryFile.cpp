#include "headless/LibraryFile.h"

#include <QFileInfo>

namespace Qorvane {

namespace {

// What follows the folder's path and its "/"; nothing for what isn't below the folder.
std::optional<QString> below(const QString &folder, const QString &path)
{
    const QString prefix = folder.endsWith(u'/') ? folder : folder + u'/';
    if (folder.isEmpty() || !path.startsWith(prefix))
        return std::nullopt;
    return path.mid(prefix.size());
}

} // namespace

std::optional<QString> pathInLibrary(const QString &path, const QList<FileUrl> &roots)
{
    for (const FileUrl &root : roots) {
        if (below(root.path(), path))
            return path;
    }
    const QString canonical = QFileInfo(path).canonicalFilePath();
    for (const FileUrl &root : roots) {
        if (const auto rest = below(QFileInfo(root.path()).canonicalFilePath(), canonical))
            return (root.path().endsWith(u'/') ? root.path() : root.path() + u'/') + *rest;
    }
    return std::nullopt;
}

} // namespace Qorvane
