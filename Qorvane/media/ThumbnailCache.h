#pragma once

#include "media/Image.h"
#include "platform/FileUrl.h"

#include <optional>

// One small JPEG on disk for every picture and video of the library; see ThumbnailPaths.h for where. Grid,
// search results and the pipeline read these, never the media themselves.

namespace Qorvane::ThumbnailCache {

/// Largest side of a thumbnail in pixels.
inline constexpr int thumbnailSize = 800;
/// Largest side in pixels of a video's preview, which the player shows full-window before it starts.
inline constexpr int previewSize = 2048;

/// The thumbnail of a media file: from the cache when a file is there, else made and stored. An existing
/// cache file is the answer whatever it holds and however old it is; it isn't decoded here. One that is
/// broken gives no picture, now or through `Image::isNull` at the first use, until the cache is cleared: it
/// is never made again by itself.
///
/// Nothing when the media give no picture; the reason is then in the log. Blocks while it decodes, at most as
/// many at once as there are cores. Any thread; from the GUI thread only the answer from the cache may be
/// expected.
std::optional<Image> getThumbnail(const FileUrl &file);

/// Makes and stores the thumbnail of a picture (anything but a video), without looking into the cache first.
/// When it can't be stored, the picture itself is the result. Nothing, with a log line, when the file gives
/// no picture. Blocks; any thread but the GUI's.
std::optional<Image> makeThumbnail(const FileUrl &file);

/// Makes and stores the thumbnail of a video. Unlike a picture's, one that can't be stored is lost: nothing
/// then. Nothing, with a log line, when there is no frame. Blocks; not on the GUI thread, where a video is
/// never opened and there is no frame.
std::optional<Image> generateVideoThumbnail(const FileUrl &file);

/// A frame of a video of at most `previewSize` pixels, stored nowhere. Failure and threads as above.
std::optional<Image> generateVideoPreview(const FileUrl &file);

/// A video's preview. For a picture it only says in the log that this is the wrong operation, and gives
/// nothing: full-size pictures come from the display cache. Threads as above.
std::optional<Image> getPreviewImage(const FileUrl &file);

/// What the thumbnails take on disk, in units of 1,048,576 bytes: every file below the base with the
/// extension "jpg", in any case, but those named "preview.jpg". Files that can't be asked count nothing; 0
/// when there is no cache yet, nothing when there is no caches folder at all. Removes on its way what a crash
/// left half-written. Blocks; any thread but the GUI's.
std::optional<double> measureCacheSizeInMB();

/// Removes the cache and makes it anew, empty. False, with a log line, when either step fails, also when
/// there was no cache to remove. Touches neither the database nor images that callers hold. Blocks; any
/// thread but the GUI's.
bool clearCache();

} // namespace Qorvane::ThumbnailCache
