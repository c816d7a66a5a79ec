#include "media/decoders/HeifDecoder.h"

#include "media/decoders/ColorTransform.h"
#include "media/decoders/PixelScaler.h"

#include <libheif/heif.h>

#include <cmath>
#include <memory>

namespace Qorvane {

namespace {

struct FreeContext
{
    void operator()(heif_context *context) const { heif_context_free(context); }
};
struct ReleaseHandle
{
    void operator()(const heif_image_handle *handle) const { heif_image_handle_release(handle); }
};
struct ReleaseImage
{
    void operator()(const heif_image *image) const { heif_image_release(image); }
};
struct FreeOptions
{
    void operator()(heif_decoding_options *options) const { heif_decoding_options_free(options); }
};
using Context = std::unique_ptr<heif_context, FreeContext>;
using Handle = std::unique_ptr<heif_image_handle, ReleaseHandle>;
using Picture = std::unique_ptr<heif_image, ReleaseImage>;
using Options = std::unique_ptr<heif_decoding_options, FreeOptions>;

// HEVC's largest level has 8192 x 4320; grids of tiles reach further. A side beyond this is a bomb.
constexpr int maximumHeifSide = 32768;
// Rounding to even sizes while encoding moves a thumbnail's shape a little; a stale or turned one is further
// off.
constexpr double shapeTolerance = 0.05;

/// libheif's view of a ByteSource: a file that is there as a whole, until the deadline. It reads the tiles of
/// a picture one by one, so that releases that can't be stopped otherwise give up between two of them.
struct Input
{
    Input(const ByteSource &source, const QDeadlineTimer &limit)
        : bytes(source)
        , deadline(limit)
    {
    }
    const ByteSource &bytes;
    const QDeadlineTimer &deadline;
    int64_t position = 0;
};

const heif_reader &inputReader()
{
    static const heif_reader reader = [] {
        heif_reader result = {};
        result.reader_api_version = 1;
        result.get_position = [](void *input) { return static_cast<Input *>(input)->position; };
        result.read = [](void *buffer, size_t size, void *data) {
            auto *input = static_cast<Input *>(data);
            const bool isRead = !input->deadline.hasExpired() &&
                                input->bytes.readAt(input->position, buffer, qint64(size)) == qint64(size);
            input->position += int64_t(size);
            return isRead ? 0 : 1;
        };
        result.seek = [](int64_t position, void *input) {
            static_cast<Input *>(input)->position = position;
            return 0;
        };
        result.wait_for_file_size = [](int64_t size, void *input) {
            return size <= static_cast<Input *>(input)->bytes.size()
                       ? heif_reader_grow_status_size_reached
                       : heif_reader_grow_status_size_beyond_eof;
        };
        return result;
    }();
    return reader;
}

/// Has `options` stop the decode when the deadline has passed, where the release can.
template <typename DecodingOptions>
void stopWhenLate(DecodingOptions &options, const QDeadlineTimer &deadline)
{
    if constexpr (requires { options.cancel_decoding; }) {
        constexpr int firstVersionThatStops = 6;
        if (options.version < firstVersionThatStops)
            return;
        options.progress_user_data = const_cast<QDeadlineTimer *>(&deadline);
        options.cancel_decoding = [](void *limit) {
            return static_cast<const QDeadlineTimer *>(limit)->hasExpired() ? 1 : 0;
        };
    }
}

/// What a pixel takes in all: the decoder's planes, libheif's copy of them, the colours made of them (first
/// in their own depth), and the picture.
qint64 bytesPerPixel(const heif_image_handle *handle)
{
    constexpr qint64 eightBits = 3 + 3 + 4 + 4;
    constexpr qint64 moreBits = 6 + 6 + 8 + 4;
    return heif_image_handle_get_luma_bits_per_pixel(handle) > 8 ? moreBits : eightBits;
}

QSize sizeOf(const heif_image_handle *handle)
{
    return {heif_image_handle_get_width(handle), heif_image_handle_get_height(handle)};
}

QByteArray iccProfile(const heif_image_handle *handle)
{
    const size_t size = heif_image_handle_get_raw_color_profile_size(handle);
    QByteArray profile(qsizetype(size), Qt::Uninitialized);
    if (size == 0 || heif_image_handle_get_raw_color_profile(handle, profile.data()).code != heif_error_Ok)
        return {};
    return profile;
}

QImage toQImage(const heif_image *picture, bool hasAlpha, bool isPremultiplied)
{
    const int width = heif_image_get_width(picture, heif_channel_interleaved);
    const int height = heif_image_get_height(picture, heif_channel_interleaved);
    int stride = 0;
    const uint8_t *samples = heif_image_get_plane_readonly(picture, heif_channel_interleaved, &stride);
    if (!samples || width <= 0 || height <= 0)
        return {};
    const QImage::Format format = !hasAlpha         ? QImage::Format_RGB888
                                  : isPremultiplied ? QImage::Format_RGBA8888_Premultiplied
                                                    : QImage::Format_RGBA8888;
    return QImage(samples, width, height, stride, format)
        .convertToFormat(hasAlpha ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32);
}

std::optional<QImage> decodeHandle(const heif_image_handle *handle, const DecodeRequest &request,
                                   QString &reason)
{
    const QSize size = sizeOf(handle);
    const qint64 pixels =
        qMin(DecodeLimits::maximumPixelsUnstoppable, DecodeLimits::maximumMemory / bytesPerPixel(handle));
    if (!DecodeLimits::admits(size.width(), size.height(), pixels, reason))
        return std::nullopt;
    const Options options(heif_decoding_options_alloc());
    options->convert_hdr_to_8bit = 1;
    stopWhenLate(*options, request.deadline);
    const bool hasAlpha = heif_image_handle_has_alpha_channel(handle);
    heif_image *decoded = nullptr;
    const heif_error error = heif_decode_image(
        handle, &decoded, heif_colorspace_RGB,
        hasAlpha ? heif_chroma_interleaved_RGBA : heif_chroma_interleaved_RGB, options.get());
    const Picture picture(decoded);
    if (error.code != heif_error_Ok || !picture) {
        reason = request.deadline.hasExpired() ? QStringLiteral("decoding took too long")
                                               : QString::fromUtf8(error.message);
        return std::nullopt;
    }
    const QImage image = toQImage(picture.get(), hasAlpha, heif_image_handle_is_premultiplied_alpha(handle));
    if (image.isNull()) {
        reason = QStringLiteral("out of memory");
        return std::nullopt;
    }
    QImage bounded = scaledImage(image, request.boundedSize(image.size()));
    convertToSrgb(bounded, iccProfile(handle));
    return bounded;
}

/// The thumbnails of phones are 160 to 512 pixels large. They are used all the same, small as they look
/// beside a reduced main picture: an embedded thumbnail goes first whatever its size, and it saves the 0.4
/// seconds of a 12-megapixel HEVC decode. One of another shape than the picture was left behind by an edit,
/// or its rotation forgotten; it is passed over.
std::optional<QImage> decodeThumbnail(const heif_image_handle *main, const DecodeRequest &request)
{
    heif_item_id id = 0;
    if (heif_image_handle_get_list_of_thumbnail_IDs(main, &id, 1) < 1)
        return std::nullopt;
    heif_image_handle *found = nullptr;
    if (heif_image_handle_get_thumbnail(main, id, &found).code != heif_error_Ok || !found)
        return std::nullopt;
    const Handle thumbnail(found);
    QString unused;
    auto image = decodeHandle(thumbnail.get(), request, unused);
    const QSize size = sizeOf(main);
    if (!image || image->isNull() || size.isEmpty())
        return std::nullopt;
    const double shape = double(image->width()) / image->height();
    const double mainShape = double(size.width()) / size.height();
    if (std::abs(shape / mainShape - 1) > shapeTolerance)
        return std::nullopt;
    return image;
}

} // namespace

std::optional<QImage> decodeHeif(const ByteSource &bytes, const DecodeRequest &request, QString &reason)
{
    Input input(bytes, request.deadline);
    const Context context(heif_context_alloc());
    heif_context_set_maximum_image_size_limit(context.get(), maximumHeifSide);
    const heif_error opening = heif_context_read_from_reader(context.get(), &inputReader(), &input, nullptr);
    if (opening.code != heif_error_Ok) {
        reason = request.deadline.hasExpired() ? QStringLiteral("decoding took too long")
                                               : QString::fromUtf8(opening.message);
        return std::nullopt;
    }
    heif_image_handle *found = nullptr;
    const heif_error finding = heif_context_get_primary_image_handle(context.get(), &found);
    if (finding.code != heif_error_Ok || !found) {
        reason = QString::fromUtf8(finding.message);
        return std::nullopt;
    }
    const Handle main(found);
    if (request.isPreviewAllowed) {
        if (const auto thumbnail = decodeThumbnail(main.get(), request))
            return thumbnail;
    }
    return decodeHandle(main.get(), request, reason);
}

} // namespace Qorvane
