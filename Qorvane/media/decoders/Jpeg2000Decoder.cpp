#include "media/decoders/Jpeg2000Decoder.h"

#include "media/decoders/ColorTransform.h"
#include "media/decoders/PixelScaler.h"

#include <openjpeg.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>
#include <vector>

namespace Qorvane {

namespace {

struct DestroyCodec
{
    void operator()(opj_codec_t *codec) const { opj_destroy_codec(codec); }
};
struct DestroyStream
{
    void operator()(opj_stream_t *stream) const { opj_stream_destroy(stream); }
};
struct DestroyImage
{
    void operator()(opj_image_t *image) const { opj_image_destroy(image); }
};
using Codec = std::unique_ptr<opj_codec_t, DestroyCodec>;
using Stream = std::unique_ptr<opj_stream_t, DestroyStream>;
using Picture = std::unique_ptr<opj_image_t, DestroyImage>;

// OpenJPEG holds each sample in four bytes; decoding takes about as much again.
constexpr qint64 bytesPerSample = 8;
// Four inks and an alpha. The format allows 16384, each as large as the picture.
constexpr quint32 maximumChannels = 5;
// What grey and colour alike are reckoned with, as the picture made of them takes memory too.
constexpr qint64 minimumSamples = 4;
// What the standard allows; a file says how many it really has only deep inside.
constexpr int maximumHalvings = 32;
constexpr char codestreamMark = '\xff';

/// The file ends with the deadline: OpenJPEG reads tile after tile and can be stopped in no other way.
struct Input
{
    const ByteSource &bytes;
    const QDeadlineTimer &deadline;
    qint64 position = 0;
};

Stream makeStream(Input &input)
{
    Stream stream(opj_stream_default_create(OPJ_TRUE));
    opj_stream_set_user_data(stream.get(), &input, nullptr);
    opj_stream_set_user_data_length(stream.get(), OPJ_UINT64(input.bytes.size()));
    opj_stream_set_read_function(stream.get(), [](void *buffer, OPJ_SIZE_T count, void *data) {
        auto *from = static_cast<Input *>(data);
        if (from->deadline.hasExpired())
            return OPJ_SIZE_T(-1);
        const qint64 done = from->bytes.readAt(from->position, buffer, qint64(count));
        from->position += done;
        return done > 0 ? OPJ_SIZE_T(done) : OPJ_SIZE_T(-1);
    });
    opj_stream_set_skip_function(stream.get(), [](OPJ_OFF_T count, void *data) {
        auto *from = static_cast<Input *>(data);
        const qint64 target = std::clamp<qint64>(from->position + count, 0, from->bytes.size());
        return OPJ_OFF_T(target - std::exchange(from->position, target));
    });
    opj_stream_set_seek_function(stream.get(), [](OPJ_OFF_T position, void *data) {
        auto *from = static_cast<Input *>(data);
        from->position = position;
        return position <= from->bytes.size() ? OPJ_TRUE : OPJ_FALSE;
    });
    return stream;
}

/// The library's last word, in `reason`.
void keepMessage(const char *message, void *reason)
{
    *static_cast<QString *>(reason) = QString::fromUtf8(message).trimmed();
}

/// The size after `halvings` halvings, rounded up as the standard does.
QSize halved(QSize size, int halvings)
{
    const auto side = [halvings](int length) {
        return int((qint64(length) + (1LL << halvings) - 1) >> halvings);
    };
    return {side(size.width()), side(size.height())};
}

int usefulHalvings(QSize size, QSize box)
{
    int halvings = 0;
    while (halvings < maximumHalvings) {
        const QSize next = halved(size, halvings + 1);
        if (next.width() < box.width() || next.height() < box.height())
            break;
        ++halvings;
    }
    return halvings;
}

/// One channel's samples as bytes, whatever their depth, sign and sampling.
class Channel
{
public:
    Channel(const opj_image_comp_t &component, int width, int height)
        : m_data(component.data)
        , m_width(component.w)
        , m_height(component.h)
        , m_offset(component.sgnd ? 1LL << (component.prec - 1) : 0)
        , m_maximum((1LL << component.prec) - 1)
        , m_pictureWidth(width)
        , m_pictureHeight(height)
    {
    }
    bool isUsable() const { return m_data && m_width > 0 && m_height > 0; }
    int at(int x, int y) const
    {
        const qint64 column = qint64(x) * m_width / m_pictureWidth;
        const qint64 row = qint64(y) * m_height / m_pictureHeight;
        const qint64 value = std::clamp<qint64>(m_data[row * m_width + column] + m_offset, 0, m_maximum);
        return int((value * 255 + m_maximum / 2) / m_maximum);
    }

private:
    const OPJ_INT32 *m_data;
    qint64 m_width;
    qint64 m_height;
    qint64 m_offset;
    qint64 m_maximum;
    qint64 m_pictureWidth;
    qint64 m_pictureHeight;
};

QRgb fromYcc(int y, int cb, int cr, int alpha)
{
    const double blue = cb - 128;
    const double red = cr - 128;
    const auto channel = [](double value) { return std::clamp(int(std::lround(value)), 0, 255); };
    return qRgba(channel(y + 1.402 * red), channel(y - 0.344136 * blue - 0.714136 * red),
                 channel(y + 1.772 * blue), alpha);
}

QImage toQImage(const opj_image_t &picture)
{
    const bool isColour = picture.numcomps >= 3;
    const quint32 colours = isColour ? 3 : 1;
    const opj_image_comp_t &first = picture.comps[0];
    const bool hasAlpha = picture.numcomps > colours && picture.comps[colours].alpha != 0;
    const int width = int(first.w);
    const int height = int(first.h);
    QImage image(width, height, hasAlpha ? QImage::Format_ARGB32 : QImage::Format_RGB32);
    std::vector<Channel> channels;
    for (quint32 i = 0; i < colours + (hasAlpha ? 1 : 0); ++i) {
        if (picture.comps[i].prec < 1 || picture.comps[i].prec > 31)
            return {};
        channels.emplace_back(picture.comps[i], width, height);
        if (!channels.back().isUsable())
            return {};
    }
    // Chroma of lower resolution is never RGB, whatever the file forgot to say.
    const bool isYcc =
        isColour && (picture.color_space == OPJ_CLRSPC_SYCC || picture.color_space == OPJ_CLRSPC_EYCC ||
                     picture.comps[1].dx != first.dx);
    for (int y = 0; y < image.height(); ++y) {
        auto *row = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < width; ++x) {
            const int alpha = hasAlpha ? channels[colours].at(x, y) : 255;
            const int a = channels[0].at(x, y);
            const int b = isColour ? channels[1].at(x, y) : a;
            const int c = isColour ? channels[2].at(x, y) : a;
            row[x] = isYcc ? fromYcc(a, b, c, alpha) : qRgba(a, b, c, alpha);
        }
    }
    if (hasAlpha)
        image.convertTo(QImage::Format_ARGB32_Premultiplied);
    return image;
}

/// Reads the header and, unless that asks for too much, the pixels after `halvings`; -1 for as many as fit.
Picture decode(const ByteSource &bytes, const DecodeRequest &request, int halvings, QString &reason)
{
    Input input{bytes, request.deadline};
    const Stream stream = makeStream(input);
    const bool isCodestream = bytes.bytes(0, 1) == QByteArray(1, codestreamMark);
    const Codec codec(opj_create_decompress(isCodestream ? OPJ_CODEC_J2K : OPJ_CODEC_JP2));
    opj_set_error_handler(codec.get(), keepMessage, &reason);
    opj_dparameters_t parameters;
    opj_set_default_decoder_parameters(&parameters);
    opj_setup_decoder(codec.get(), &parameters);
    opj_decoder_set_strict_mode(codec.get(), OPJ_FALSE); // part of a cut picture is worth showing
    opj_image_t *read = nullptr;
    const bool hasHeader = opj_read_header(stream.get(), codec.get(), &read);
    Picture picture(read);
    if (!hasHeader || !picture || picture->numcomps == 0)
        return {};
    if (picture->numcomps > maximumChannels) {
        reason = QStringLiteral("%1 channels are too many").arg(picture->numcomps);
        return {};
    }

    const QSize size(int(picture->x1 - picture->x0), int(picture->y1 - picture->y0));
    if (!DecodeLimits::admits(size.width(), size.height(), DecodeLimits::maximumPixelsUnstoppable, reason))
        return {};
    const int useful = halvings < 0 ? usefulHalvings(size, request.boundedSize(size)) : halvings;
    const QSize reduced = halved(size, useful);
    const qint64 bytesPerPixel = qMax(minimumSamples, qint64(picture->numcomps)) * bytesPerSample;
    if (!DecodeLimits::admits(reduced.width(), reduced.height(), DecodeLimits::maximumMemory / bytesPerPixel,
                              reason))
        return {};
    if (useful > 0 && !opj_set_decoded_resolution_factor(codec.get(), OPJ_UINT32(useful)))
        return {};
    if (!opj_decode(codec.get(), stream.get(), picture.get()))
        return {};
    opj_end_decompress(codec.get(),
                       stream.get()); // fails on what follows the picture, which is of no interest
    return picture;
}

} // namespace

std::optional<QImage> decodeJpeg2000(const ByteSource &bytes, const DecodeRequest &request, QString &reason)
{
    Picture picture = decode(bytes, request, -1, reason);
    // The file may hold fewer halvings than would be useful; it doesn't say how many before it fails.
    if (!picture && request.maxPixelSize > 0 && !request.deadline.hasExpired())
        picture = decode(bytes, request, 0, reason);
    if (!picture) {
        if (request.deadline.hasExpired())
            reason = QStringLiteral("decoding took too long");
        else if (reason.isEmpty())
            reason = QStringLiteral("its data is damaged");
        return std::nullopt;
    }
    const QImage image = toQImage(*picture);
    if (image.isNull()) {
        reason = QStringLiteral("its channels are damaged");
        return std::nullopt;
    }
    const QByteArray profile(reinterpret_cast<const char *>(picture->icc_profile_buf),
                             qsizetype(picture->icc_profile_len));
    picture.reset();
    QImage bounded = scaledImage(image, request.boundedSize(image.size()));
    convertToSrgb(bounded, profile);
    return bounded;
}

} // namespace Qorvane
