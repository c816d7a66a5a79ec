#pragma once

#include "platform/FileUrl.h"

#include <QList>
#include <QString>

namespace Qorvane {

/// Moves HOME and every XDG folder below `home`, keeps away from the desktop's session and its screen.
void leaveTheDesktop(const QString &home);

/// A folder of so many photographs that the library is done with: each has a thumbnail in the cache and a row
/// in the store. The files themselves are empty, since nobody opens them. The thumbnails are a few hundred
/// pictures of usual size and weight, each under many names: each is read and decoded as if it were the only
/// one, but from memory, as after a first look at the folder.
QList<FileUrl> makeFinishedFolder(const QString &path, int fileCount);

} // namespace Qorvane
