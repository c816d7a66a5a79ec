#pragma once

#include <QString>

/// The notifications that tell of changes to media files, so that whoever shows them follows. They travel
/// over the default notification centre.
namespace Qorvane::ImageMessages {

/// Posted after files were deleted, with `pathsKey`.
inline const QString deletedName = QStringLiteral("ImagesDeleted");
/// QStringList: where the files were.
inline const QString pathsKey = QStringLiteral("paths");

/// Posted after a file's picture was changed in place, with `urlKey`.
inline const QString transformedName = QStringLiteral("ImageTransformed");
/// FileUrl (platform/FileUrl.h): the file.
inline const QString urlKey = QStringLiteral("url");

} // namespace Qorvane::ImageMessages
