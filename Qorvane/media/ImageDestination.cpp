#include "media/ImageDestination.h"

#include <QColorSpace>
#include <QPainter>

#include <jerror.h>
#include <jpeglib.h>

#include <array>
#include <cmath>
#include <csetjmp>
#include <cstdio>
#include <memory>
#include <new>

namespace Qorvane {

namespace {

struct ErrorHandler
{
    jpeg_error_mgr base; // first: the library hands this address back
    std::jmp_buf onError;
    char message[JMSG_LENGTH_MAX];
};

void leave(j_common_ptr state)
{
    auto handler = reinterpret_cast<ErrorHandler *>(state->err);
    handler->base.format_message(state, handler->message);
    std::longjmp(handler->onError, 1);
}

void keepQuiet(j_common_ptr) {}

/// The encoder's state with the memory that it grows for the result. The library's own destination in memory
/// frees it once and leaves it to be freed again when it can't grow further.
class Encoder
{
public:
    Encoder()
    {
        m_destination.init_destination = beginChunk;
        m_destination.empty_output_buffer = keepChunk;
        m_destination.term_destination = keepLastChunk;
        m_state.client_data = this;
        m_state.err = jpeg_std_error(&m_errors.base);
        m_errors.base.error_exit = leave;
        m_errors.base.output_message = keepQuiet;
        m_errors.message[0] = '\0';
    }
    ~Encoder() { jpeg_destroy_compress(&m_state); }
    Encoder(const Encoder &) = delete;
    Encoder &operator=(const Encoder &) = delete;

    // Errors come back here by a long jump, which runs no destructors: nothing on this frame may own
    // anything.
    bool encode(const uchar *pixels, int width, int height, qsizetype bytesPerLine, int quality)
    {
        if (setjmp(m_errors.onError))
            return false;
        jpeg_create_compress(&m_state);
        m_state.dest = &m_destination;
        m_state.image_width = JDIMENSION(width);
        m_state.image_height = JDIMENSION(height);
        m_state.input_components = 4;
        m_state.in_color_space = JCS_EXT_RGBX;
        // The library's defaults are what is wanted: baseline, a JFIF header and nothing else, colour at half
        // the resolution, which no eye misses at this quality and which halves the encoder's work.
        jpeg_set_defaults(&m_state);
        jpeg_set_quality(&m_state, quality, TRUE);
        jpeg_start_compress(&m_state, TRUE);
        while (m_state.next_scanline < m_state.image_height) {
            auto line = const_cast<JSAMPROW>(pixels + qsizetype(m_state.next_scanline) * bytesPerLine);
            jpeg_write_scanlines(&m_state, &line, 1);
        }
        jpeg_finish_compress(&m_state);
        return true;
    }

    QByteArray data() const { return m_data; }
    QString errorText() const { return QString::fromLocal8Bit(m_errors.message); }

private:
    static constexpr size_t chunkSize = 64 * 1024;

    static Encoder &of(j_compress_ptr state) { return *static_cast<Encoder *>(state->client_data); }
    static void beginChunk(j_compress_ptr state)
    {
        Encoder &encoder = of(state);
        encoder.m_destination.next_output_byte = encoder.m_chunk.data();
        encoder.m_destination.free_in_buffer = chunkSize;
    }
    // What the library says is free is not to be trusted here: it asks for the whole chunk to be kept.
    static boolean keepChunk(j_compress_ptr state)
    {
        keep(state, chunkSize);
        beginChunk(state);
        return TRUE;
    }
    static void keepLastChunk(j_compress_ptr state)
    {
        keep(state, chunkSize - of(state).m_destination.free_in_buffer);
    }
    static void keep(j_compress_ptr state, size_t count)
    {
        Encoder &encoder = of(state);
        if (encoder.append(count))
            return;
        encoder.m_errors.base.msg_code = JERR_OUT_OF_MEMORY;
        encoder.m_errors.base.msg_parm.i[0] = 0;
        leave(reinterpret_cast<j_common_ptr>(state));
    }
    // No exception may pass through the library, and no long jump through a handler of one.
    bool append(size_t count) noexcept
    {
        try {
            m_data.append(reinterpret_cast<const char *>(m_chunk.data()), qsizetype(count));
            return true;
        } catch (const std::bad_alloc &) {
            return false;
        }
    }

    jpeg_compress_struct m_state = {};
    ErrorHandler m_errors = {};
    jpeg_destination_mgr m_destination = {};
    std::array<JOCTET, chunkSize> m_chunk = {};
    QByteArray m_data;
};

QImage overWhite(const QImage &image)
{
    if (!image.hasAlphaChannel())
        return image.convertToFormat(QImage::Format_RGBX8888);
    QImage flat(image.size(), QImage::Format_RGBX8888);
    flat.fill(Qt::white);
    QPainter(&flat).drawImage(QPoint(), image);
    return flat;
}

QImage inStandardColours(const QImage &image)
{
    // A file without a profile is read as sRGB by everyone.
    const QColorSpace sRgb(QColorSpace::SRgb);
    return image.colorSpace().isValid() && image.colorSpace() != sRgb ? image.convertedToColorSpace(sRgb)
                                                                      : image;
}

} // namespace

std::optional<QByteArray> jpegRepresentation(const QImage &image, double compressionFactor, QString *error)
{
    const QImage flat = overWhite(inStandardColours(image));
    if (flat.isNull()) {
        if (error)
            *error = QStringLiteral("no pixels to encode");
        return std::nullopt;
    }
    const auto encoder = std::make_unique<Encoder>();
    const int quality = int(std::lround(compressionFactor * 100));
    if (!encoder->encode(flat.constBits(), flat.width(), flat.height(), flat.bytesPerLine(), quality)) {
        if (error)
            *error = encoder->errorText();
        return std::nullopt;
    }
    return encoder->data();
}

} // namespace Qorvane
