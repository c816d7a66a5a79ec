#include "media/decoders/JpegReader.h"

#include "media/decoders/DecodeLimits.h"

#include <cstdlib>
#include <cstring>

namespace Qorvane {

namespace {

constexpr int exifMarker = JPEG_APP0 + 1;
constexpr int iccMarker = JPEG_APP0 + 2;
constexpr unsigned wholeMarker = 0xffff;
constexpr char exifSignature[] = "Exif\0"; // and the literal's own zero: six bytes

} // namespace

/// Runs `step`, which may call libjpeg. A longjmp out of it skips destructors, so it must hold nothing that
/// has one.
template <typename Step>
bool JpegReader::guarded(Step step)
{
    if (setjmp(m_failure)) {
        m_reason = QString::fromLatin1(m_message.data());
        return false;
    }
    step();
    return true;
}

JpegReader::JpegReader(const ByteSource &bytes, const QDeadlineTimer &deadline)
    : m_bytes(bytes)
    , m_deadline(deadline)
{
    m_decompress.err = jpeg_std_error(&m_errors);
    m_decompress.client_data = this;
    m_errors.error_exit = failLibrary;
    m_errors.output_message = [](j_common_ptr) {};
    m_source.init_source = [](j_decompress_ptr) {};
    m_source.fill_input_buffer = fillBuffer;
    m_source.skip_input_data = skipBytes;
    m_source.resync_to_restart = jpeg_resync_to_restart;
    m_source.term_source = [](j_decompress_ptr) {};
    m_progress.progress_monitor = watchProgress;
}

JpegReader::~JpegReader()
{
    jpeg_destroy_decompress(&m_decompress); // harmless before it was created: the state is zero then
}

bool JpegReader::readHeader()
{
    const bool isRead = guarded([this] {
        jpeg_create_decompress(&m_decompress);
        m_decompress.src = &m_source;
        m_decompress.progress = &m_progress;
        m_decompress.mem->max_memory_to_use = DecodeLimits::maximumMemory;
        jpeg_save_markers(&m_decompress, exifMarker, wholeMarker);
        jpeg_save_markers(&m_decompress, iccMarker, wholeMarker);
        jpeg_read_header(&m_decompress, TRUE);
    });
    return isRead && DecodeLimits::admits(m_decompress.image_width, m_decompress.image_height,
                                          DecodeLimits::maximumPixels, m_reason);
}

QSize JpegReader::scaledSize(int denominator)
{
    m_decompress.scale_num = 1;
    m_decompress.scale_denom = unsigned(denominator);
    if (!guarded([this] { jpeg_calc_output_dimensions(&m_decompress); }))
        return {};
    return {int(m_decompress.output_width), int(m_decompress.output_height)};
}

QByteArray JpegReader::exifBlock() const
{
    constexpr size_t signatureSize = sizeof exifSignature;
    for (jpeg_saved_marker_ptr marker = m_decompress.marker_list; marker; marker = marker->next) {
        if (marker->marker == exifMarker && marker->data_length > signatureSize &&
            std::memcmp(marker->data, exifSignature, signatureSize) == 0)
            return QByteArray(reinterpret_cast<const char *>(marker->data) + signatureSize,
                              qsizetype(marker->data_length - signatureSize));
    }
    return {};
}

QByteArray JpegReader::iccProfile()
{
    JOCTET *profile = nullptr;
    unsigned size = 0;
    const bool isFound = guarded([this, &profile, &size] {
        if (!jpeg_read_icc_profile(&m_decompress, &profile, &size))
            profile = nullptr;
    });
    const QByteArray result = isFound && profile
                                  ? QByteArray(reinterpret_cast<const char *>(profile), qsizetype(size))
                                  : QByteArray();
    std::free(profile);
    return result;
}

bool JpegReader::start(J_COLOR_SPACE outputColorSpace)
{
    return guarded([this, outputColorSpace] {
        m_decompress.out_color_space = outputColorSpace;
        jpeg_start_decompress(&m_decompress);
    });
}

bool JpegReader::readRow(uchar *row)
{
    return guarded([this, row] {
        JSAMPROW rows[] = {row};
        jpeg_read_scanlines(&m_decompress, rows, 1);
    });
}

void JpegReader::failLibrary(j_common_ptr state)
{
    JpegReader &reader = of(state);
    state->err->format_message(state, reader.m_message.data());
    std::longjmp(reader.m_failure, 1);
}

void JpegReader::fail(const char *reason)
{
    std::strncpy(m_message.data(), reason, m_message.size() - 1);
    std::longjmp(m_failure, 1);
}

/// At the end of the data an end-of-image marker is made up, so that what there is of a cut picture still
/// shows.
boolean JpegReader::fillBuffer(j_decompress_ptr state)
{
    JpegReader &reader = of(reinterpret_cast<j_common_ptr>(state));
    const qint64 count = reader.m_bytes.readAt(reader.m_offset, reader.m_buffer.data(), bufferSize);
    reader.m_offset += count;
    reader.m_source.next_input_byte = reader.m_buffer.data();
    reader.m_source.bytes_in_buffer = size_t(count);
    if (count == 0) {
        if (!reader.m_isExhausted) {
            reader.m_isExhausted = true;
            reader.m_hadPictureData = state->input_scan_number > 1 || state->input_iMCU_row > 0;
        }
        reader.m_buffer[0] = 0xff;
        reader.m_buffer[1] = JPEG_EOI;
        reader.m_source.bytes_in_buffer = 2;
    }
    return TRUE;
}

void JpegReader::skipBytes(j_decompress_ptr state, long count)
{
    JpegReader &reader = of(reinterpret_cast<j_common_ptr>(state));
    if (count <= 0)
        return;
    const size_t inBuffer = reader.m_source.bytes_in_buffer;
    if (size_t(count) <= inBuffer) {
        reader.m_source.next_input_byte += count;
        reader.m_source.bytes_in_buffer -= size_t(count);
        return;
    }
    reader.m_offset += count - qint64(inBuffer);
    reader.m_source.bytes_in_buffer = 0;
}

void JpegReader::watchProgress(j_common_ptr state)
{
    JpegReader &reader = of(state);
    if (reader.m_decompress.input_scan_number > maximumScans)
        reader.fail("the JPEG has too many scans");
    if (reader.m_deadline.hasExpired())
        reader.fail("decoding took too long");
}

} // namespace Qorvane
