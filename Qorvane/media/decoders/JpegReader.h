#pragma once

#include "media/decoders/ByteSource.h"

#include <QByteArray>
#include <QDeadlineTimer>
#include <QMap>
#include <QSize>
#include <QString>

#include <jpeglib.h>

#include <array>
#include <csetjmp>
#include <cstdio>

namespace Qorvane {

/// libjpeg's decompressor as an object: reads from a ByteSource, ends with the deadline, and turns the
/// library's way of failing (a function that must not return) into false and reason(). After a failure only
/// the destructor is of use. Of the segments before the picture no more is kept than the first Exif block and
/// each part of the colour profile once, so that no header takes much memory. One thread.
class JpegReader
{
public:
    /// `bytes` must outlive the reader.
    JpegReader(const ByteSource &bytes, const QDeadlineTimer &deadline);
    ~JpegReader();
    JpegReader(const JpegReader &) = delete;
    JpegReader &operator=(const JpegReader &) = delete;

    /// To be called first; checks the size against the limits.
    bool readHeader();
    QSize size() const { return {int(m_decompress.image_width), int(m_decompress.image_height)}; }
    /// The size with 1/`denominator` of the resolution (1, 2, 4 or 8).
    QSize scaledSize(int denominator);
    J_COLOR_SPACE colorSpace() const { return m_decompress.jpeg_color_space; }
    /// Whether an Adobe program wrote it; its CMYK is then stored inverted.
    bool hasAdobeMarker() const { return m_decompress.saw_Adobe_marker; }
    /// The EXIF block, beginning with its TIFF header; empty when there is none.
    QByteArray exifBlock() const { return m_exif; }
    /// The colour profile, its parts put together; empty when there is none or a part is missing.
    QByteArray iccProfile() const;

    /// Starts decoding at the scale asked of scaledSize() last.
    bool start(J_COLOR_SPACE outputColorSpace);
    /// Decodes the next row into `row`, of as many bytes as the scaled width and the colour space make.
    bool readRow(uchar *row);

    /// Whether the data ended early or was damaged, so that some of the picture is made up.
    bool isDamaged() const { return m_isExhausted || m_errors.num_warnings > 0; }
    /// Whether it ended so early that nothing of the picture was there.
    bool isPictureMissing() const { return m_isExhausted && !m_hadPictureData; }
    const QString &reason() const { return m_reason; }

private:
    // Far above what a scan of 64 coefficients, three channels and 13 refinements can usefully be split into,
    // far below the thousands of empty scans of a file made to keep its readers busy.
    static constexpr int maximumScans = 500;
    static constexpr size_t bufferSize = 64 * 1024;
    // Cameras put previews and depth maps of several megabytes before the picture; more than this is a file
    // made to keep its readers busy.
    static constexpr qint64 maximumHeader = 64 << 20;
    // A segment gives its size in 16 bits, those two bytes included.
    static constexpr size_t maximumSegment = 65533;

    template <typename Step>
    bool guarded(Step step);
    [[noreturn]] static void failLibrary(j_common_ptr state);
    [[noreturn]] void fail(const char *reason);
    static JpegReader &of(j_common_ptr state) { return *static_cast<JpegReader *>(state->client_data); }
    static boolean fillBuffer(j_decompress_ptr state);
    static void skipBytes(j_decompress_ptr state, long count);
    static boolean keepSegment(j_decompress_ptr state);
    static void watchProgress(j_common_ptr state);
    /// Ends a read that takes too long, or a header that has no end.
    void checkLimits();
    /// The next `count` bytes, out of the library's buffer.
    void take(JOCTET *target, size_t count);
    void keepIccPart(const char *segment, qsizetype size);

    const ByteSource &m_bytes;
    const QDeadlineTimer &m_deadline;
    jpeg_decompress_struct m_decompress = {};
    jpeg_error_mgr m_errors = {};
    jpeg_source_mgr m_source = {};
    jpeg_progress_mgr m_progress = {};
    std::jmp_buf m_failure = {};
    std::array<char, JMSG_LENGTH_MAX> m_message = {}; // plain memory: written on the way to a longjmp
    std::array<JOCTET, bufferSize> m_buffer = {};
    std::array<JOCTET, maximumSegment> m_segment = {};
    qint64 m_offset = 0;
    bool m_isHeaderRead = false;
    QByteArray m_exif;
    QMap<int, QByteArray> m_iccParts; ///< by their numbers, from 1
    int m_iccPartCount = 0;
    bool m_isExhausted = false;
    bool m_hadPictureData = false;
    QString m_reason;
};

} // namespace Qorvane
