#pragma once

#include <QByteArray>

namespace Qorvane {

/// The JPEG that an EXIF block (from its TIFF header on) embeds as its thumbnail; empty when there is none,
/// when the block is damaged, and for the uncompressed thumbnails of some early cameras, whose pictures are
/// small enough to be decoded themselves.
QByteArray exifThumbnail(const QByteArray &exifBlock);

} // namespace Qorvane
