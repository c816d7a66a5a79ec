#pragma once

#include "platform/FileUrl.h"

#include <QList>
#include <QString>

#include <optional>

namespace Qorvane {

/// The path under which a library with these roots knows the file: `path` as it stands when it lies below a
/// root, otherwise that of the same file below a root that is reached by another way, through a symbolic
/// link. Nothing for a file of no root. `path` is absolute and clean. Asks the disk.
std::optional<QString> pathInLibrary(const QString &path, const QList<FileUrl> &roots);

} // namespace Qorvane
