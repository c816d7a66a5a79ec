#pragma once

#include <QString>

#include <optional>

namespace Qorvane {

class ByteSource;

/// The kinds of file that a decoder stands ready for, plus one that is known and refused.
enum class ContentType {
    jpeg,
    png,
    gif,
    webp,
    tiff,
    raw, ///< camera raw files but X3F
    x3f,
    heif, ///< HEIC, HEIF, AVIF: stills in an ISO base media file
    bmp,
    dib, ///< a BMP without its file header
    icns,
    ico,
    cur,
    psd, ///< PSB as well
    xbm,
    jpeg2000,
    pict,
    softimagePic,
    qtif,
    sgi,
    tga,
    pnm, ///< the whole family, floating-point PFM included
    radianceHdr,
    flashPix, ///< no decoder exists for it
};

/// What the bytes are. Their content decides; `extension` (lower case, no dot) only speaks for kinds that
/// have no or weak marks of their own (TGA, DIB, PICT, XBM, headerless raw files) and tells a raw file from a
/// TIFF where both look alike. Nothing when the bytes are of no kind known here: text that some library might
/// run as a script, drawings that name other files, videos. Reads a few kilobytes at most.
std::optional<ContentType> contentType(const ByteSource &bytes, const QString &extension);

/// The kind's name for reasons and reports, such as "JPEG".
QString contentTypeName(ContentType type);

} // namespace Qorvane
