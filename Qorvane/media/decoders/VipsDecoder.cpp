#include "media/decoders/VipsDecoder.h"

#include "media/decoders/ColorTransform.h"
#include "media/decoders/MediaLibraries.h"
#include "media/decoders/OneColour.h"
#include "media/decoders/ToneMapping.h"
#include "media/decoders/VipsHandles.h"

#include <QColorSpace>
#include <QStringList>

#include <memory>
#include <vector>

namespace Qorvane {

namespace {

/// libvips keeps its messages for the whole process; another thread's may stand in between, or be taken from
/// under a reader who doesn't ask for a copy. The last line is ours nearly always, and only ever read by
/// people.
QString takeVipsReason()
{
    const std::unique_ptr<char, void (*)(void *)> messages(vips_error_buffer_copy(), g_free); // and clears
    const QStringList lines = QString::fromUtf8(messages.get()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (auto line = lines.crbegin(); line != lines.crend(); ++line) {
        if (line->contains(QLatin1Char(':')))
            return line->trimmed();
    }
    return QStringLiteral("its data is damaged");
}

/// How much of a file may be missing.
enum class Damage {
    refused,
    filledIn, ///< what isn't there stays black
};

const char *loaderName(ContentType type)
{
    switch (type) {
    case ContentType::png:
        return "pngload_source";
    case ContentType::gif:
        return "gifload_source";
    case ContentType::webp:
        return "webpload_source";
    case ContentType::tiff:
        return "tiffload_source";
    case ContentType::pnm:
        return "ppmload_source";
    case ContentType::radianceHdr:
        return "radload_source";
    case ContentType::jpeg:
    case ContentType::jpeg2000:
    case ContentType::raw:
    case ContentType::x3f:
    case ContentType::heif:
    case ContentType::bmp:
    case ContentType::dib:
    case ContentType::icns:
    case ContentType::ico:
    case ContentType::cur:
    case ContentType::psd:
    case ContentType::xbm:
    case ContentType::pict:
    case ContentType::softimagePic:
    case ContentType::qtif:
    case ContentType::sgi:
    case ContentType::tga:
    case ContentType::flashPix:
        return nullptr;
    }
    return nullptr;
}

VipsFailOn failOn(Damage damage)
{
    return damage == Damage::refused ? VIPS_FAIL_ON_TRUNCATED : VIPS_FAIL_ON_NONE;
}

/// Reads the header; the pixels follow when they are asked for.
VipsImageHandle load(VipsSource *source, const char *loader, Damage damage)
{
    VipsImage *image = nullptr;
    vips_call(loader, source, &image, "access", VIPS_ACCESS_SEQUENTIAL, "fail_on", failOn(damage), nullptr);
    return VipsImageHandle(image);
}

/// WebP shrinks while it decodes.
VipsImageHandle loadScaledWebP(VipsSource *source, double scale, Damage damage)
{
    VipsImage *image = nullptr;
    vips_webpload_source(source, &image, "access", VIPS_ACCESS_SEQUENTIAL, "fail_on", failOn(damage), "scale",
                         scale, nullptr);
    return VipsImageHandle(image);
}

QSize sizeOf(const VipsImage *image)
{
    return {vips_image_get_width(image), vips_image_get_height(image)};
}

/// Loads again at the smallest size that the file itself offers and that still covers `box`.
VipsImageHandle reload(VipsImageHandle whole, const VipsBytes &bytes, ContentType type, QSize box,
                       Damage damage)
{
    const QSize size = sizeOf(whole.get());
    const double shrink = qMin(double(size.width()) / box.width(), double(size.height()) / box.height());
    if (type != ContentType::webp || shrink < 2)
        return whole;
    // Twice the size wanted leaves the last step to the better filter.
    VipsImageHandle reduced = loadScaledWebP(bytes.source(), 2 / shrink, damage);
    // Whatever the loader made of the wish: never less than the box.
    const bool isFit = reduced && sizeOf(reduced.get()).width() >= box.width() &&
                       sizeOf(reduced.get()).height() >= box.height();
    if (isFit)
        return reduced;
    vips_error_clear();
    return whole;
}

/// Pictures of some measuring device, with channels that are no colours: their first three stand for red,
/// green and blue, or the first for all.
VipsImageHandle asColours(VipsImageHandle image)
{
    const bool isPlain = image->Type != VIPS_INTERPRETATION_MULTIBAND && image->Bands <= 5;
    if (isPlain)
        return image;
    const int bands = image->Bands >= 3 ? 3 : 1;
    VipsImage *colours = nullptr;
    if (vips_extract_band(image.get(), &colours, 0, "n", bands, nullptr) != 0)
        return {};
    const VipsImageHandle extracted(colours);
    VipsImage *named = nullptr;
    const auto interpretation =
        bands == 3
            ? (image->BandFmt == VIPS_FORMAT_USHORT ? VIPS_INTERPRETATION_RGB16 : VIPS_INTERPRETATION_sRGB)
            : (image->BandFmt == VIPS_FORMAT_USHORT ? VIPS_INTERPRETATION_GREY16 : VIPS_INTERPRETATION_B_W);
    vips_copy(extracted.get(), &named, "interpretation", interpretation, nullptr);
    return VipsImageHandle(named);
}

/// Signed bytes reach from black at -128 to white at 127; libvips would cut off the half below zero.
VipsImageHandle asUnsigned(VipsImageHandle image)
{
    if (!image || image->BandFmt != VIPS_FORMAT_CHAR)
        return image;
    VipsImage *raised = nullptr;
    vips_linear1(image.get(), &raised, 1, 128, "uchar", TRUE, nullptr);
    return VipsImageHandle(raised);
}

/// Whether the samples have no fixed white, so that an exposure must be found for them.
bool isSceneReferred(const VipsImage *image)
{
    switch (image->BandFmt) {
    case VIPS_FORMAT_FLOAT:
    case VIPS_FORMAT_DOUBLE:
    case VIPS_FORMAT_INT:
    case VIPS_FORMAT_UINT:
        return image->Type != VIPS_INTERPRETATION_LAB && image->Type != VIPS_INTERPRETATION_XYZ;
    default:
        return image->Coding == VIPS_CODING_RAD;
    }
}

/// What the loader keeps of each pixel of the whole picture, though it is asked for strips.
qint64 heldBytesPerPixel(const VipsImage *image, ContentType type)
{
    constexpr qint64 canvas = 4;
    if (type == ContentType::gif)
        return canvas * 3; // as drawn, as it was before the last frame, and the frame handed on
    if (type == ContentType::webp)
        return canvas * 2; // as decoded, and the frame handed on
    const bool isInterlaced = vips_image_get_typeof(image, "interlaced") != 0;
    return isInterlaced ? qint64(VIPS_IMAGE_SIZEOF_PEL(image)) : 0;
}

/// All that is held at once on the way from `image` to a picture that fills `box`.
qint64 expectedMemory(const VipsImage *image, ContentType type, QSize box)
{
    // Samples and picture; with light to be mapped three floats twice and the picture.
    const qint64 resultBytesPerPixel = isSceneReferred(image) ? 28 : 8;
    return heldBytesPerPixel(image, type) * image->Xsize * image->Ysize +
           resultBytesPerPixel * box.width() * box.height();
}

void stopWhenLate(VipsImage *image, VipsProgress *, const QDeadlineTimer *deadline)
{
    if (deadline->hasExpired())
        vips_image_set_kill(image, TRUE);
}

struct FreeVips
{
    void operator()(void *memory) const { g_free(memory); }
};
using VipsMemory = std::unique_ptr<void, FreeVips>;

/// Runs the whole pipeline up to `image`.
VipsMemory computePixels(VipsImage *image, const QDeadlineTimer &deadline, size_t &size)
{
    vips_image_set_progress(image, TRUE);
    g_signal_connect(image, "eval", G_CALLBACK(stopWhenLate), const_cast<QDeadlineTimer *>(&deadline));
    return VipsMemory(vips_image_write_to_memory(image, &size));
}

QImage fromSamples(const uchar *samples, QSize size, int bands)
{
    const bool hasAlpha = bands == 2 || bands == 4;
    QImage image(size, hasAlpha ? QImage::Format_ARGB32 : QImage::Format_RGB32);
    if (image.isNull())
        return image;
    for (int y = 0; y < size.height(); ++y) {
        auto *row = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < size.width(); ++x, samples += bands) {
            const uchar green = bands >= 3 ? samples[1] : samples[0];
            const uchar blue = bands >= 3 ? samples[2] : samples[0];
            row[x] = qRgba(samples[0], green, blue, hasAlpha ? samples[bands - 1] : 255);
        }
    }
    if (hasAlpha)
        image.convertTo(QImage::Format_ARGB32_Premultiplied);
    return image;
}

/// The picture's own profile, taken out of it: libvips would send pictures without one through a profile too,
/// and change them. Printing colours alone are left to it, profile and all.
QByteArray takeProfile(VipsImageHandle &image)
{
    const void *data = nullptr;
    size_t size = 0;
    if (image->Type == VIPS_INTERPRETATION_CMYK ||
        vips_image_get_typeof(image.get(), VIPS_META_ICC_NAME) == 0 ||
        vips_image_get_blob(image.get(), VIPS_META_ICC_NAME, &data, &size) != 0)
        return {};
    const QByteArray profile(static_cast<const char *>(data), qsizetype(size));
    VipsImage *copy = nullptr;
    if (vips_copy(image.get(), &copy, nullptr) == 0) {
        image.reset(copy);
        vips_image_remove(copy, VIPS_META_ICC_NAME);
    }
    return profile;
}

/// Asked for exact sides, libvips reduces and never looks for a smaller picture in the file by itself.
VipsImageHandle resized(VipsImage *image, QSize box)
{
    VipsImage *result = nullptr;
    if (image->Type == VIPS_INTERPRETATION_CMYK) {
        vips_thumbnail_image(image, &result, box.width(), "height", box.height(), "size", VIPS_SIZE_FORCE,
                             "no_rotate", TRUE, "export_profile", "srgb", nullptr);
    } else {
        vips_thumbnail_image(image, &result, box.width(), "height", box.height(), "size", VIPS_SIZE_FORCE,
                             "no_rotate", TRUE, nullptr);
    }
    return VipsImageHandle(result);
}

std::optional<QImage> displayReferred(VipsImageHandle image, QSize box, const DecodeRequest &request)
{
    const QByteArray profile = takeProfile(image);
    const VipsImageHandle small = resized(image.get(), box);
    if (!small)
        return std::nullopt;
    VipsImage *colours = nullptr;
    if (vips_colourspace(small.get(), &colours, VIPS_INTERPRETATION_sRGB, nullptr) != 0)
        return std::nullopt;
    const VipsImageHandle inSrgb(colours);
    VipsImage *bytes = nullptr;
    if (vips_cast_uchar(inSrgb.get(), &bytes, nullptr) != 0)
        return std::nullopt;
    const VipsImageHandle eightBit(bytes);
    size_t size = 0;
    const VipsMemory samples = computePixels(eightBit.get(), request.deadline, size);
    const int bands = qMin(eightBit->Bands, 4);
    if (!samples || bands != eightBit->Bands)
        return std::nullopt;
    QImage result = fromSamples(static_cast<const uchar *>(samples.get()), sizeOf(eightBit.get()), bands);
    convertToSrgb(result, profile);
    return result;
}

std::optional<QImage> sceneReferred(VipsImageHandle image, QSize box, const DecodeRequest &request)
{
    VipsImage *unpacked = nullptr;
    const int unpacking = image->Coding == VIPS_CODING_RAD ? vips_rad2float(image.get(), &unpacked, nullptr)
                                                           : vips_cast_float(image.get(), &unpacked, nullptr);
    if (unpacking != 0)
        return std::nullopt;
    const VipsImageHandle floats(unpacked);
    VipsImage *reduced = nullptr;
    const double horizontal = double(box.width()) / floats->Xsize;
    const double vertical = double(box.height()) / floats->Ysize;
    // A linear filter: a sharper one rings far below zero beside the sun.
    if (vips_resize(floats.get(), &reduced, horizontal, "vscale", vertical, "kernel", VIPS_KERNEL_LINEAR,
                    nullptr) != 0)
        return std::nullopt;
    const VipsImageHandle small(reduced);
    size_t size = 0;
    const VipsMemory samples = computePixels(small.get(), request.deadline, size);
    if (!samples)
        return std::nullopt;

    const auto *values = static_cast<const float *>(samples.get());
    const QSize smallSize = sizeOf(small.get());
    const size_t count = size_t(smallSize.width()) * size_t(smallSize.height());
    const auto bands = size_t(small->Bands);
    std::vector<float> rgb(count * 3);
    for (size_t i = 0; i < count; ++i) {
        for (size_t channel = 0; channel < 3; ++channel)
            rgb[i * 3 + channel] = values[i * bands + (bands >= 3 ? channel : 0)];
    }
    QImage result = toneMapped(rgb, smallSize);
    result.setColorSpace(QColorSpace(QColorSpace::SRgb));
    return result;
}

std::optional<QImage> decode(const ByteSource &source, ContentType type, const DecodeRequest &request,
                             Damage damage, QString &reason)
{
    const char *loader = loaderName(type);
    if (!loader) {
        reason = QStringLiteral("no decoder for it");
        return std::nullopt;
    }
    const VipsBytes bytes(source);
    VipsImageHandle image = load(bytes.source(), loader, damage);
    if (!image) {
        reason = takeVipsReason();
        return std::nullopt;
    }
    const QSize size = sizeOf(image.get());
    if (!DecodeLimits::admits(size.width(), size.height(), DecodeLimits::maximumPixelsInMemory, reason))
        return std::nullopt;
    const QSize box = request.boundedSize(size);
    image = reload(std::move(image), bytes, type, box, damage);
    if (qint64(VIPS_IMAGE_SIZEOF_IMAGE(image.get())) > DecodeLimits::maximumMemory ||
        expectedMemory(image.get(), type, box) > DecodeLimits::maximumMemory) {
        reason = QStringLiteral("its pixels take too much memory");
        return std::nullopt;
    }
    image = asUnsigned(asColours(std::move(image)));
    std::optional<QImage> result;
    if (image)
        result = isSceneReferred(image.get()) ? sceneReferred(std::move(image), box, request)
                                              : displayReferred(std::move(image), box, request);
    if (!result)
        reason = request.deadline.hasExpired() ? QStringLiteral("decoding took too long") : takeVipsReason();
    return result;
}

} // namespace

std::optional<QImage> decodeWithVips(const ByteSource &bytes, ContentType type, const DecodeRequest &request,
                                     QString &reason)
{
    MediaLibraries::ensureReady();
    const auto whole = decode(bytes, type, request, Damage::refused, reason);
    if (whole)
        return whole;
    // Part of a cut picture is worth showing; a black one, all of it filled in, is not.
    QString unused;
    auto cut = decode(bytes, type, request, Damage::filledIn, unused);
    if (!cut || cut->isNull() || isOneColour(*cut))
        return std::nullopt;
    return cut;
}

} // namespace Qorvane
