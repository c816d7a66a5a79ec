#include "media/decoders/JpegDecoder.h"

#include "media/decoders/ColorTransform.h"
#include "media/decoders/ExifThumbnail.h"
#include "media/decoders/JpegReader.h"
#include "media/decoders/PixelScaler.h"

#include <QColorSpace>

#include <algorithm>
#include <vector>

namespace Qorvane {

namespace {

#if Q_BYTE_ORDER == Q_LITTLE_ENDIAN
constexpr J_COLOR_SPACE rgb32ColorSpace = JCS_EXT_BGRX;
#else
constexpr J_COLOR_SPACE rgb32ColorSpace = JCS_EXT_XRGB;
#endif

bool covers(QSize size, QSize box)
{
    return size.width() >= box.width() && size.height() >= box.height();
}

/// Leaves the reader at the largest reduction that still covers `box`.
QSize chooseScale(JpegReader &reader, QSize box)
{
    for (const int denominator : {8, 4, 2}) {
        const QSize size = reader.scaledSize(denominator);
        if (covers(size, box))
            return size;
    }
    return reader.scaledSize(1);
}

/// Reads all rows, each turned into QRgb by `convert(samples, pixels)` on its way through a buffer.
template <typename Convert>
bool readConvertedRows(JpegReader &reader, QImage &image, int samplesPerPixel, Convert convert)
{
    std::vector<uchar> samples(size_t(image.width()) * size_t(samplesPerPixel));
    for (int y = 0; y < image.height(); ++y) {
        if (!reader.readRow(samples.data()))
            return false;
        convert(samples.data(), reinterpret_cast<QRgb *>(image.scanLine(y)));
    }
    return true;
}

bool readRgb(JpegReader &reader, QImage &image)
{
    if (!reader.start(rgb32ColorSpace))
        return false;
    for (int y = 0; y < image.height(); ++y) {
        if (!reader.readRow(image.scanLine(y)))
            return false;
    }
    return true;
}

bool readGray(JpegReader &reader, QImage &image, const ColorTransform &transform)
{
    return reader.start(JCS_GRAYSCALE) &&
           readConvertedRows(reader, image, 1, [&](const uchar *samples, QRgb *pixels) {
               transform.apply(samples, pixels, image.width());
           });
}

bool readCmyk(JpegReader &reader, QImage &image, const QByteArray &profile)
{
    const bool isInverted = reader.hasAdobeMarker();
    const auto transform =
        ColorTransform::toSrgb(profile, isInverted ? SampleLayout::cmyk8Inverted : SampleLayout::cmyk8);
    return reader.start(JCS_CMYK) &&
           readConvertedRows(reader, image, 4, [&](const uchar *samples, QRgb *pixels) {
               if (transform)
                   transform->apply(samples, pixels, image.width());
               else
                   plainCmykToSrgb(samples, pixels, image.width(), isInverted);
           });
}

/// Fills `image`; `profile` is emptied when it has been applied on the way.
bool readPixels(JpegReader &reader, QImage &image, QByteArray &profile)
{
    const J_COLOR_SPACE colorSpace = reader.colorSpace();
    if (colorSpace == JCS_CMYK || colorSpace == JCS_YCCK)
        return readCmyk(reader, image, std::exchange(profile, {}));
    if (colorSpace == JCS_GRAYSCALE) {
        if (const auto transform = ColorTransform::toSrgb(profile, SampleLayout::gray8)) {
            profile.clear();
            return readGray(reader, image, *transform);
        }
    }
    return readRgb(reader, image);
}

std::optional<QImage> decodePicture(JpegReader &reader, const DecodeRequest &request, JpegTolerance tolerance,
                                    QString &reason)
{
    const QSize box = request.boundedSize(reader.size());
    const QSize size = chooseScale(reader, box);
    if (!DecodeLimits::admits(size.width(), size.height(), DecodeLimits::maximumPixelsInMemory, reason))
        return std::nullopt;
    QImage image(size, QImage::Format_RGB32);
    if (image.isNull()) {
        reason = QStringLiteral("out of memory");
        return std::nullopt;
    }
    QByteArray profile = reader.iccProfile();
    if (!readPixels(reader, image, profile)) {
        reason = reader.reason();
        return std::nullopt;
    }
    if (reader.isPictureMissing() || (tolerance == JpegTolerance::none && reader.isDamaged())) {
        reason = QStringLiteral("the JPEG ends before its picture does");
        return std::nullopt;
    }
    QImage bounded = scaledImage(image, box);
    convertToSrgb(bounded, profile);
    return bounded;
}

std::optional<QImage> decodePreview(const QByteArray &exifBlock, const DecodeRequest &request)
{
    const QByteArray thumbnail = exifThumbnail(exifBlock);
    if (thumbnail.isEmpty())
        return std::nullopt;
    DecodeRequest inner = request;
    inner.isPreviewAllowed = false; // a thumbnail of the thumbnail is no preview of the picture
    QString unused;
    return decodeJpeg(MemoryBytes(thumbnail), inner, JpegTolerance::none, unused);
}

} // namespace

std::optional<QImage> decodeJpeg(const ByteSource &bytes, const DecodeRequest &request,
                                 JpegTolerance tolerance, QString &reason)
{
    JpegReader reader(bytes, request.deadline);
    if (!reader.readHeader()) {
        reason = reader.reason();
        return std::nullopt;
    }
    if (request.isPreviewAllowed) {
        if (const auto preview = decodePreview(reader.exifBlock(), request))
            return preview;
    }
    return decodePicture(reader, request, tolerance, reason);
}

std::optional<QSize> jpegSize(const ByteSource &bytes, const QDeadlineTimer &deadline)
{
    JpegReader reader(bytes, deadline);
    if (!reader.readHeader())
        return std::nullopt;
    return reader.size();
}

} // namespace Qorvane
