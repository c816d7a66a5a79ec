#pragma once

#include "media/decoders/ByteSource.h"
#include "media/decoders/DecodeRequest.h"

#include <QImage>
#include <QString>

#include <optional>

namespace Qorvane {

/// Decodes an X3F file by the JPEGs embedded in it, whatever is asked for: the library that develops raw
/// files comes without a decoder for its sensor data. The smallest JPEG that covers the size goes first, else
/// the largest.
std::optional<QImage> decodeX3f(const ByteSource &bytes, const DecodeRequest &request, QString &reason);

/// The EXIF orientation by the rotation in the file's header; 1 when it says none.
int x3fOrientation(const ByteSource &bytes);

} // namespace Qorvane
