#pragma once

#include "media/decoders/ByteSource.h"

namespace Qorvane {

/// What a PICT is made of.
enum class PictContent {
    bitmap,      ///< a bitmap or a compressed picture, perhaps among other things
    drawingOnly, ///< lines, shapes and text alone
    unknown,     ///< damaged, or with something of unknown length in it before any bitmap
};

/// Walks over the file's instructions up to the first bitmap.
PictContent pictContent(const ByteSource &bytes);

} // namespace Qorvane
