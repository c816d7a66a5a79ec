#include "media/decoders/MagickDecoder.h"

#include "media/decoders/ByteSource.h"
#include "media/decoders/ColorTransform.h"
#include "media/decoders/MediaLibraries.h"
#include "media/decoders/OneColour.h"
#include "media/decoders/PixelScaler.h"

#if __has_include(<MagickCore/MagickCore.h>)
#include <MagickCore/MagickCore.h>
#define QORVANE_MAGICK_7
#else
#include <magick/MagickCore.h>
#endif

#include <QSemaphore>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>

namespace Qorvane {

namespace {

struct DestroyInfo
{
    void operator()(::ImageInfo *info) const { ::DestroyImageInfo(info); }
};
struct DestroyException
{
    void operator()(::ExceptionInfo *exception) const { ::DestroyExceptionInfo(exception); }
};
struct DestroyImages
{
    void operator()(::Image *image) const { ::DestroyImageList(image); }
};
using Info = std::unique_ptr<::ImageInfo, DestroyInfo>;
using Exception = std::unique_ptr<::ExceptionInfo, DestroyException>;
using Images = std::unique_ptr<::Image, DestroyImages>;

// Three colours and an alpha, each as wide as this build of ImageMagick has them.
constexpr qint64 bytesPerPixel = 4 * sizeof(Quantum);
// Larger files of these formats are nothing that could be decoded within the limits.
constexpr qint64 maximumFileSize = DecodeLimits::maximumMemory / 4;

MagickBooleanType stopWhenLate(const char *, const MagickOffsetType, const MagickSizeType, void *deadline)
{
    return static_cast<const QDeadlineTimer *>(deadline)->hasExpired() ? MagickFalse : MagickTrue;
}

Info makeInfo(const char *coder, const DecodeRequest &request)
{
    Info info(::CloneImageInfo(nullptr));
    ::CopyMagickString(info->magick, coder, sizeof info->magick);
    // With a coder's name before it no part of the file is looked at to find another one.
    std::snprintf(info->filename, sizeof info->filename, "%s:", coder);
    // The first scene alone: of layered files that is the flattened picture, and the layers aren't read.
    info->scene = 0;
    info->number_scenes = 1;
    ::SetImageInfoProgressMonitor(info.get(), stopWhenLate, const_cast<QDeadlineTimer *>(&request.deadline));
    return info;
}

QString reasonOf(const ::ExceptionInfo *exception)
{
    // Behind the message ImageMagick names the file, which has no name here, and the place in its own source.
    const QString text =
        QString::fromUtf8(exception->reason ? exception->reason : "").section(QLatin1Char('`'), 0, 0);
    return text.isEmpty() ? QStringLiteral("its data is damaged") : text.trimmed();
}

bool exportPixels(const ::Image *image, int row, int width, const char *channels, void *pixels,
                  ::ExceptionInfo *exception)
{
    return ::ExportImagePixels(image, 0, row, size_t(width), 1, channels, CharPixel, pixels, exception) ==
           MagickTrue;
}

QByteArray iccProfile(const ::Image *image)
{
    const StringInfo *profile = ::GetImageProfile(image, "icc");
    if (!profile)
        return {};
    return QByteArray(reinterpret_cast<const char *>(::GetStringInfoDatum(profile)),
                      qsizetype(::GetStringInfoLength(profile)));
}

bool hasAlpha(const ::Image *image)
{
#ifdef QORVANE_MAGICK_7
    return image->alpha_trait != UndefinedPixelTrait;
#else
    return image->matte != MagickFalse;
#endif
}

bool turnToSrgb(::Image *image, ::ExceptionInfo *exception)
{
#ifdef QORVANE_MAGICK_7
    return ::TransformImageColorspace(image, sRGBColorspace, exception) == MagickTrue;
#else
    static_cast<void>(exception);
    return ::TransformImageColorspace(image, sRGBColorspace) == MagickTrue;
#endif
}

#if Q_BYTE_ORDER == Q_LITTLE_ENDIAN
constexpr char rgb32Channels[] = "BGRA";
#else
constexpr char rgb32Channels[] = "ARGB";
#endif

bool readCmyk(const ::Image *image, QImage &result, const ColorTransform &transform,
              ::ExceptionInfo *exception)
{
    std::vector<uchar> inks(size_t(result.width()) * 4);
    for (int y = 0; y < result.height(); ++y) {
        if (!exportPixels(image, y, result.width(), "CMYK", inks.data(), exception))
            return false;
        transform.apply(inks.data(), reinterpret_cast<QRgb *>(result.scanLine(y)), result.width());
    }
    return true;
}

QImage toQImage(::Image *image, ::ExceptionInfo *exception)
{
    QByteArray profile = iccProfile(image);
    const bool isTransparent = hasAlpha(image);
    QImage result(int(image->columns), int(image->rows),
                  isTransparent ? QImage::Format_ARGB32 : QImage::Format_RGB32);
    if (result.isNull())
        return result;
    if (image->colorspace == CMYKColorspace) {
        const auto transform = ColorTransform::toSrgb(profile, SampleLayout::cmyk8);
        profile.clear();
        if (transform && readCmyk(image, result, *transform, exception)) {
            convertToSrgb(result, {});
            return result;
        }
    }
    if (!turnToSrgb(image, exception))
        return {};
    for (int y = 0; y < result.height(); ++y) {
        if (!exportPixels(image, y, result.width(), rgb32Channels, result.scanLine(y), exception))
            return {};
    }
    convertToSrgb(result, profile);
    return result;
}

/// ImageMagick leaves a TGA's rows and columns in the order of the file and only notes where they begin.
QImage withOriginOfTga(const QImage &image, ::OrientationType origin)
{
    const bool isMirrored = origin == TopRightOrientation || origin == BottomRightOrientation;
    const bool isUpsideDown = origin == BottomLeftOrientation || origin == BottomRightOrientation;
    return image.mirrored(isMirrored, isUpsideDown);
}

/// ImageMagick's limit of memory counts for the whole process. What one picture is expected to take of it is
/// set aside here, so that two large ones decode one after the other instead of failing together.
class MemoryShare
{
public:
    MemoryShare(qint64 bytes, const QDeadlineTimer &deadline)
        : m_units(int(qMin(qint64(allUnits), allUnits * bytes / memoryLimit() + 1)))
        , m_isHeld(units().tryAcquire(m_units, int(deadline.remainingTime())))
    {
    }
    ~MemoryShare()
    {
        if (m_isHeld)
            units().release(m_units);
    }
    MemoryShare(const MemoryShare &) = delete;
    MemoryShare &operator=(const MemoryShare &) = delete;

    bool isHeld() const { return m_isHeld; }
    static qint64 memoryLimit()
    {
        const MagickSizeType limit = ::GetMagickResourceLimit(MemoryResource);
        return qint64(qBound(MagickSizeType(1), limit, MagickSizeType(DecodeLimits::maximumMemory)));
    }

private:
    static constexpr int allUnits = 1024;
    static QSemaphore &units()
    {
        static QSemaphore semaphore(allUnits);
        return semaphore;
    }

    int m_units;
    bool m_isHeld;
};

/// The size by the header alone; nothing when there is none or it is too large.
std::optional<QSize> admittedSize(const ::ImageInfo *info, const QByteArray &data, ::ExceptionInfo *exception,
                                  QString &reason)
{
    const Images header(::PingBlob(info, data.constData(), size_t(data.size()), exception));
    if (!header) {
        reason = reasonOf(exception);
        return std::nullopt;
    }
    constexpr qint64 bytesOfResult = 4;
    const qint64 pixels =
        std::min({DecodeLimits::maximumPixelsUnstoppable, MemoryShare::memoryLimit() / bytesPerPixel,
                  DecodeLimits::maximumMemory / (bytesPerPixel + bytesOfResult)});
    if (!DecodeLimits::admits(qint64(header->columns), qint64(header->rows), pixels, reason))
        return std::nullopt;
    return QSize(int(header->columns), int(header->rows));
}

} // namespace

std::optional<QImage> decodeWithMagick(const ByteSource &bytes, const char *coder,
                                       const DecodeRequest &request, QString &reason)
{
    MediaLibraries::ensureReady();
    if (bytes.size() > maximumFileSize) {
        reason = QStringLiteral("the file is too large");
        return std::nullopt;
    }
    const Exception exception(::AcquireExceptionInfo());
    const Info info = makeInfo(coder, request);
    const QByteArray data = bytes.bytes(0, bytes.size());
    const std::optional<QSize> size = admittedSize(info.get(), data, exception.get(), reason);
    if (!size)
        return std::nullopt;
    // Some coders hold what they unpack beside the picture.
    const qint64 expected = 2 * bytesPerPixel * size->width() * size->height();
    const MemoryShare share(expected, request.deadline);
    if (!share.isHeld()) {
        reason = QStringLiteral("decoding took too long");
        return std::nullopt;
    }
    const Images images(::BlobToImage(info.get(), data.constData(), size_t(data.size()), exception.get()));
    if (!images) {
        reason = request.deadline.hasExpired() ? QStringLiteral("decoding took too long")
                                               : reasonOf(exception.get());
        return std::nullopt;
    }
    QImage image = toQImage(images.get(), exception.get());
    if (image.isNull()) {
        reason = reasonOf(exception.get());
        return std::nullopt;
    }
    // Some coders go on where the data end. What is left is then worth showing, unless it is nothing; or, of
    // a TIFF, whatever stood in the memory that was to take the data.
    const bool isDamaged = exception->severity >= ErrorException;
    if (isDamaged && (std::strcmp(coder, "TIFF") == 0 || isOneColour(image))) {
        reason = reasonOf(exception.get());
        return std::nullopt;
    }
    if (std::strcmp(coder, "TGA") == 0)
        image = withOriginOfTga(image, images->orientation);
    image.convertTo(image.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32);
    return scaledImage(image, request.boundedSize(image.size()));
}

} // namespace Qorvane
