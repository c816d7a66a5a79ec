#pragma once

#include "media/decoders/ByteSource.h"
#include "media/decoders/DecodeRequest.h"

#include <QImage>
#include <QString>

#include <optional>

namespace Qorvane {

/// How much damage a JPEG may have.
enum class JpegTolerance {
    cutPictures, ///< what there is of a truncated or damaged picture counts
    none,        ///< for previews, in whose place there is something better to show
};

/// Decodes a JPEG: baseline, progressive, grey, RGB, CMYK and YCCK, with its colour profile. The reduction is
/// done by the inverse DCT as far as it covers the size asked for, the rest by scaledImage(). With
/// `request.isPreviewAllowed` the EXIF thumbnail goes first, if it decodes.
std::optional<QImage> decodeJpeg(const ByteSource &bytes, const DecodeRequest &request,
                                 JpegTolerance tolerance, QString &reason);

/// Width and height by the header; nothing when it can't be read before `deadline`.
std::optional<QSize> jpegSize(const ByteSource &bytes, const QDeadlineTimer &deadline);

} // namespace Qorvane
