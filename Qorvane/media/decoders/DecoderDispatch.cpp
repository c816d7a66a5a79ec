#include "media/decoders/DecoderDispatch.h"

#include "media/decoders/HeifDecoder.h"
#include "media/decoders/InputFile.h"
#include "media/decoders/Jpeg2000Decoder.h"
#include "media/decoders/JpegDecoder.h"
#include "media/decoders/MagickDecoder.h"
#include "media/decoders/PictContent.h"
#include "media/decoders/PsdDecoder.h"
#include "media/decoders/QtDecoder.h"
#include "media/decoders/QuickTimeImage.h"
#include "media/decoders/RawDecoder.h"
#include "media/decoders/SoftimagePic.h"
#include "media/decoders/TiffDirectory.h"
#include "media/decoders/VipsDecoder.h"
#include "media/decoders/X3fDecoder.h"

#include <cctype>

namespace Qorvane {

namespace {

/// Formats that Qt reads first and ImageMagick where Qt gives up.
std::optional<QImage> decodeWithQtOrMagick(const ByteSource &bytes, const char *qtFormat,
                                           const char *magickCoder, const DecodeRequest &request,
                                           QString &reason)
{
    if (const auto image = decodeWithQt(bytes, qtFormat, request, reason))
        return image;
    QString second;
    return decodeWithMagick(bytes, magickCoder, request, second);
}

/// Rare layouts (planes in tiles, less than a byte for several samples) that libvips leaves to others.
std::optional<QImage> decodeTiff(const ByteSource &bytes, const DecodeRequest &request, QString &reason)
{
    if (const auto image = decodeWithVips(bytes, ContentType::tiff, request, reason))
        return image;
    // Where data are missing it would show what happened to stand in memory.
    QString second;
    return TiffDirectory::holdsItsData(bytes) ? decodeWithMagick(bytes, "TIFF", request, second)
                                              : std::nullopt;
}

/// Whether a comment follows another one before the picture's size and range are told.
bool hasStackedComments(const QByteArray &head)
{
    constexpr int numbersOfHeader = 3;
    bool isBehindComment = false;
    int numbers = 0;
    for (qsizetype i = 2; i < head.size() && numbers < numbersOfHeader; ++i) {
        if (std::isspace(uchar(head[i])))
            continue;
        const bool isComment = head[i] == '#';
        if (isComment && isBehindComment)
            return true;
        isBehindComment = isComment;
        numbers += isComment ? 0 : 1;
        while (i < head.size() && !(isComment ? head[i] == '\n' : std::isspace(uchar(head[i])) != 0))
            ++i;
    }
    return false;
}

/// libvips takes the words of a second comment for numbers.
std::optional<QImage> decodePnm(const ByteSource &bytes, const DecodeRequest &request, QString &reason)
{
    constexpr qint64 headerSize = 1024;
    if (hasStackedComments(bytes.bytes(0, headerSize))) {
        if (const auto image = decodeWithQt(bytes, "ppm", request, reason))
            return image;
    }
    return decodeWithVips(bytes, ContentType::pnm, request, reason);
}

/// ImageMagick passes over what is drawn and would show a drawing as a black rectangle.
std::optional<QImage> decodePict(const ByteSource &bytes, const DecodeRequest &request, QString &reason)
{
    if (pictContent(bytes) == PictContent::drawingOnly) {
        reason = QStringLiteral("it holds a drawing and no bitmap, and drawings are not rendered");
        return std::nullopt;
    }
    return decodeWithMagick(bytes, "PICT", request, reason);
}

} // namespace

std::optional<QImage> decodeContent(const InputFile &file, ContentType type, const DecodeRequest &request,
                                    QString &reason)
{
    const auto &bytes = static_cast<const ByteSource &>(file);
    if (type != ContentType::raw)
        return decodeContent(bytes, type, request, reason);
    if (const auto image = decodeRaw(file, request, reason))
        return image;
    // A scanner's TIFF under a raw extension.
    QString second;
    const bool isPlainTiff = contentType(file, {}) == ContentType::tiff;
    return isPlainTiff ? decodeContent(bytes, ContentType::tiff, request, second) : std::nullopt;
}

std::optional<QImage> decodeContent(const ByteSource &bytes, ContentType type, const DecodeRequest &request,
                                    QString &reason)
{
    switch (type) {
    case ContentType::jpeg:
        return decodeJpeg(bytes, request, JpegTolerance::cutPictures, reason);
    case ContentType::png:
    case ContentType::gif:
    case ContentType::webp:
    case ContentType::radianceHdr:
        return decodeWithVips(bytes, type, request, reason);
    case ContentType::pnm:
        return decodePnm(bytes, request, reason);
    case ContentType::jpeg2000:
        return decodeJpeg2000(bytes, request, reason);
    case ContentType::tiff:
        return decodeTiff(bytes, request, reason);
    case ContentType::heif:
        return decodeHeif(bytes, request, reason);
    case ContentType::x3f:
        return decodeX3f(bytes, request, reason);
    case ContentType::qtif:
        return decodeQuickTimeImage(bytes, request, reason);
    case ContentType::softimagePic:
        return decodeSoftimagePic(bytes, request, reason);
    case ContentType::bmp:
        return decodeWithQtOrMagick(bytes, "bmp", "BMP", request, reason);
    case ContentType::dib:
        return decodeWithQtOrMagick(bytes, "dib", "DIB", request, reason);
    case ContentType::ico:
    case ContentType::cur:
        // A cursor is an icon with a hot spot in place of two fields that nobody needs.
        return decodeWithQtOrMagick(bytes, "ico", type == ContentType::ico ? "ICO" : "CUR", request, reason);
    case ContentType::tga:
        return decodeWithMagick(bytes, "TGA", request, reason);
    case ContentType::xbm:
        return decodeWithQtOrMagick(bytes, "xbm", "XBM", request, reason);
    case ContentType::icns:
        return decodeWithQt(bytes, "icns", request, reason);
    case ContentType::psd:
        return decodePsd(bytes, request, reason);
    case ContentType::pict:
        return decodePict(bytes, request, reason);
    case ContentType::sgi:
        return decodeWithMagick(bytes, "SGI", request, reason);
    case ContentType::raw:
        reason = QStringLiteral("a raw file inside another file");
        return std::nullopt;
    case ContentType::flashPix:
        reason = QStringLiteral("FlashPix is not supported: there is no decoder for its tiles");
        return std::nullopt;
    }
    return std::nullopt;
}

} // namespace Qorvane
