#pragma once

#include "library/Folder.h"

#include <QList>
#include <QString>

#include <optional>

/// The folders below a folder: how they are read from disk and found again. Any thread.
namespace Qorvane::FolderTree {

/// The folder at `url` with all folders below it, in the order of the disk, hidden ones left out, symbolic
/// links to folders included. One that can't be read has no children and leaves a line on the log. Blocks on
/// the disk.
Folder buildFolderHierarchy(const FileUrl &url);

/// The first folder in `folders` or below with this very address: depth first, in list order.
std::optional<Folder> findFolder(const FileUrl &url, const QList<Folder> &folders);

/// The same by the absolute text of the address.
std::optional<Folder> findFolder(const QString &absoluteString, const QList<Folder> &folders);

} // namespace Qorvane::FolderTree
