#include "media/decoders/JpegReader.h"

#include "media/decoders/DecodeLimits.h"

#include <algorithm>
#include <cstring>

namespace Qorvane {

namespace {

constexpr int exifMarker = JPEG_APP0 + 1;
constexpr int iccMarker = JPEG_APP0 + 2;
constexpr char exifSignature[] = "Exif\0"; // and the literal's own zero: six bytes
constexpr char iccSignature[] = "ICC_PROFILE";
// Behind the signature: the part's number and how many there are, a byte each.
constexpr qsizetype iccHeaderSize = sizeof iccSignature + 2;

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
        jpeg_set_marker_processor(&m_decompress, exifMarker, keepSegment);
        jpeg_set_marker_processor(&m_decompress, iccMarker, keepSegment);
        jpeg_read_header(&m_decompress, TRUE);
        m_isHeaderRead = true;
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

QByteArray JpegReader::iccProfile() const
{
    QByteArray profile;
    for (int number = 1; number <= m_iccPartCount; ++number) {
        const auto part = m_iccParts.constFind(number);
        if (part == m_iccParts.cend())
            return {};
        profile.append(*part);
    }
    return profile;
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
    reader.checkLimits();
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
    reader.checkLimits();
    const size_t inBuffer = reader.m_source.bytes_in_buffer;
    if (size_t(count) <= inBuffer) {
        reader.m_source.next_input_byte += count;
        reader.m_source.bytes_in_buffer -= size_t(count);
        return;
    }
    reader.m_offset += count - qint64(inBuffer);
    reader.m_source.bytes_in_buffer = 0;
}

/// Takes a segment of application data off the stream, kept or not; the library's own way would be to keep
/// every one of them.
boolean JpegReader::keepSegment(j_decompress_ptr state)
{
    JpegReader &reader = of(reinterpret_cast<j_common_ptr>(state));
    std::array<JOCTET, 2> length;
    reader.take(length.data(), length.size());
    const int size = std::max(0, (length[0] << 8 | length[1]) - 2);
    reader.take(reader.m_segment.data(), size_t(size));

    constexpr int signatureSize = sizeof exifSignature;
    const auto *segment = reinterpret_cast<const char *>(reader.m_segment.data());
    if (state->unread_marker == iccMarker)
        reader.keepIccPart(segment, size);
    else if (reader.m_exif.isEmpty() && size > signatureSize &&
             std::memcmp(segment, exifSignature, signatureSize) == 0)
        reader.m_exif = QByteArray(segment + signatureSize, size - signatureSize);
    return TRUE;
}

void JpegReader::keepIccPart(const char *segment, qsizetype size)
{
    if (size <= iccHeaderSize || std::memcmp(segment, iccSignature, sizeof iccSignature) != 0)
        return;
    const int number = uchar(segment[iccHeaderSize - 2]);
    const int count = uchar(segment[iccHeaderSize - 1]);
    if (m_iccParts.isEmpty())
        m_iccPartCount = count;
    if (count == m_iccPartCount && number >= 1 && number <= count && !m_iccParts.contains(number))
        m_iccParts.insert(number, QByteArray(segment + iccHeaderSize, size - iccHeaderSize));
}

void JpegReader::take(JOCTET *target, size_t count)
{
    while (count > 0) {
        if (m_source.bytes_in_buffer == 0)
            fillBuffer(&m_decompress);
        const size_t step = std::min(count, m_source.bytes_in_buffer);
        std::memcpy(target, m_source.next_input_byte, step);
        m_source.next_input_byte += step;
        m_source.bytes_in_buffer -= step;
        target += step;
        count -= step;
    }
}

void JpegReader::checkLimits()
{
    if (m_deadline.hasExpired())
        fail("decoding took too long");
    if (!m_isHeaderRead && m_offset > maximumHeader)
        fail("the JPEG's header is too long");
}

void JpegReader::watchProgress(j_common_ptr state)
{
    JpegReader &reader = of(state);
    if (reader.m_decompress.input_scan_number > maximumScans)
        reader.fail("the JPEG has too many scans");
    reader.checkLimits();
}

} // namespace Qorvane
