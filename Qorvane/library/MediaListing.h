#pragma once

#include "platform/FileUrl.h"

#include <QList>
#include <QStringList>

namespace Qorvane::MediaListing {

/// Every media file below `url`, at any depth, in the order of the disk: a folder's own entry, then what is
/// inside it. Told by the extension alone, so a folder named "a.jpg" is one too. Hidden entries are left out,
/// so is the inside of packages (folders that the user sees as one document), and symbolic links to folders
/// are not entered. Empty when the folder can't be read. An entry that the library can't name, because its
/// name isn't UTF-8, leaves a line on the log. Any thread; blocks on the disk.
QList<FileUrl> collectMediaFiles(const FileUrl &url);

/// Those of `paths` that are files on disk, in their order. Any thread; blocks on the disk.
QList<FileUrl> existingFiles(const QStringList &paths);

} // namespace Qorvane::MediaListing
