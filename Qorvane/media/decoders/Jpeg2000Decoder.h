#pragma once

#include "media/decoders/ByteSource.h"
#include "media/decoders/DecodeRequest.h"

#include <QImage>
#include <QString>

#include <optional>

namespace Qorvane {

/// Decodes JPEG 2000 with OpenJPEG, at the halved size that just covers what is asked for. Grey, RGB and YCC
/// with any subsampling and 1 to 16 bits, an alpha channel, a palette, an ICC profile. libvips reads the
/// format too, but its 8.14 writes beyond its memory on components of unlike size.
std::optional<QImage> decodeJpeg2000(const ByteSource &bytes, const DecodeRequest &request, QString &reason);

} // namespace Qorvane
