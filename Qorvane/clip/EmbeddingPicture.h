#pragma once

#include "media/Image.h"
#include "platform/FileUrl.h"

#include <optional>

namespace Qorvane {

/// The picture by which `file` is embedded: its thumbnail where there is one that loads, else one made now.
/// Decodes; any thread but the GUI's.
std::optional<Image> embeddingPicture(const FileUrl &file);

/// Makes the thumbnail of `file` and writes it to its place in the cache. Unlike the pipeline's own step it
/// applies no orientation and takes no frame of a video. Nothing when any step fails, the writing included.
/// Threads as above.
std::optional<Image> makeThumbnail(const FileUrl &file);

} // namespace Qorvane
