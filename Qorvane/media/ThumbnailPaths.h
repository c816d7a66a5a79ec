#pragma once

#include "platform/FileUrl.h"

#include <QString>

#include <optional>

// How a media file maps to its place in the thumbnail cache:
// <caches>/com.qorvane.thumbnails/<sha256Hex(folder path)>/<sha256Hex(file path)>.jpg
// The layout is flat, one first-level folder for each folder that directly contains media. There is no index
// and no version marker: that the file exists is the whole of the state. All of this may be called from any
// thread.

namespace Qorvane {

/// SHA-256 of the UTF-8 bytes of `text`: 64 hexadecimal digits in lower case. The text is taken as it stands,
/// with no Unicode normalisation, so two spellings of one name have two hashes.
QString sha256Hex(const QString &text);

/// The base of the cache; nothing when the user has no caches folder. Not created here.
std::optional<FileUrl> thumbnailCacheDirectory();

/// The cache folder for the media directly inside `folder`. Created with all folders above it when it isn't
/// there; a failure to create it is swallowed, the address is returned all the same. Nothing only when there
/// is no base.
std::optional<FileUrl> thumbnailDirectory(const FileUrl &folder);

/// The cache file for the media file `file`, whether or not it exists. Goes through `thumbnailDirectory`, so
/// merely asking creates the folder.
std::optional<FileUrl> thumbnailURL(const FileUrl &file);

} // namespace Qorvane
