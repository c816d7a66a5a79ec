#include "media/decoders/PsdDecoder.h"

#include "media/decoders/ColorTransform.h"
#include "media/decoders/JpegDecoder.h"
#include "media/decoders/MagickDecoder.h"
#include "media/decoders/PixelScaler.h"
#include "media/decoders/PsdLayout.h"

#include <QtEndian>

#include <array>
#include <cmath>
#include <vector>

namespace Qorvane {

namespace {

enum class Compression : quint16 { none = 0, packBits = 1 };

// Four for the samples as they are read, four for the picture made of them.
constexpr qint64 bytesPerPixel = 8;
constexpr size_t samplesPerPixel = 4;
// One of another shape than the picture was left behind by an edit; rounding moves small ones a little.
constexpr double shapeTolerance = 0.05;

/// Unpacks runs until `row` is full; false when they end before or go beyond it.
bool unpackBits(const QByteArray &packed, std::vector<uchar> &row)
{
    size_t at = 0;
    qsizetype i = 0;
    while (i < packed.size() && at < row.size()) {
        const int count = qint8(packed[i++]);
        if (count == -128)
            continue;
        const auto length = size_t(count < 0 ? 1 - count : 1 + count);
        const qsizetype taken = count < 0 ? 1 : qsizetype(length);
        if (length > row.size() - at || taken > packed.size() - i)
            return false;
        for (size_t k = 0; k < length; ++k)
            row[at + k] = uchar(packed[i + (count < 0 ? 0 : qsizetype(k))]);
        i += taken;
        at += length;
    }
    return at == row.size();
}

/// The rows of the merged picture's channels, in the order of the file.
class RowReader
{
public:
    RowReader(const ByteSource &bytes, const PsdLayout &layout, Compression compression)
        : m_bytes(bytes)
        , m_layout(layout)
        , m_compression(compression)
        , m_packed(packedSize(layout))
        , m_table(layout.picture + 2)
        , m_position(m_table)
    {
        if (compression == Compression::packBits)
            m_position += qint64(layout.channels) * layout.size.height() * countSize();
    }

    /// Stands before the first row of a channel.
    bool startChannel(int channel)
    {
        const int rows = m_layout.size.height();
        m_counts.clear();
        if (m_compression == Compression::none) {
            m_position = m_table + qint64(channel) * rows * qint64(m_packed.size());
            return true;
        }
        m_counts = m_bytes.bytes(m_table + qint64(channel) * rows * countSize(), rows * countSize());
        return m_counts.size() == rows * countSize();
    }

    /// One sample a byte, whatever the file has; false where the data end or are damaged.
    bool read(int y, std::vector<uchar> &samples)
    {
        const auto size = qint64(m_packed.size());
        if (m_compression == Compression::none) {
            if (m_bytes.readAt(m_position, m_packed.data(), size) != size)
                return false;
            m_position += size;
        } else {
            const qint64 count = countOf(y);
            // Packing never makes a row much longer than it was.
            if (count > 2 * size + 2 || !unpackBits(m_bytes.bytes(m_position, count), m_packed))
                return false;
            m_position += count;
        }
        spread(samples);
        return true;
    }

private:
    static size_t packedSize(const PsdLayout &layout)
    {
        return size_t((qint64(layout.size.width()) * layout.bitsPerSample + 7) / 8);
    }
    qint64 countSize() const { return m_layout.isLarge ? 4 : 2; }
    qint64 countOf(int y) const
    {
        const char *count = m_counts.constData() + y * countSize();
        return m_layout.isLarge ? qint64(qFromBigEndian<quint32>(count)) : qFromBigEndian<quint16>(count);
    }
    void spread(std::vector<uchar> &samples) const
    {
        switch (m_layout.bitsPerSample) {
        case 1:
            for (size_t x = 0; x < samples.size(); ++x)
                samples[x] = m_packed[x / 8] & (0x80 >> (x % 8)) ? 0 : 255; // 1 is black
            break;
        case 16:
            for (size_t x = 0; x < samples.size(); ++x)
                samples[x] = uchar((qFromBigEndian<quint16>(&m_packed[x * 2]) + 128) / 257);
            break;
        default:
            std::copy_n(m_packed.begin(), samples.size(), samples.begin());
        }
    }

    const ByteSource &m_bytes;
    const PsdLayout &m_layout;
    Compression m_compression;
    std::vector<uchar> m_packed;
    qint64 m_table;
    qint64 m_position;
    QByteArray m_counts;
};

/// The picture at a whole fraction of its size: each of its pixels is the mean of a block.
class ReducedPicture
{
public:
    ReducedPicture(QSize full, int divisor)
        : m_full(full)
        , m_divisor(divisor)
        , m_size((full.width() + divisor - 1) / divisor, (full.height() + divisor - 1) / divisor)
        , m_samples(size_t(m_size.width()) * size_t(m_size.height()) * samplesPerPixel)
        , m_sums(size_t(m_size.width()))
    {
    }

    QSize size() const { return m_size; }
    const uchar *row(int y) const { return &m_samples[size_t(y) * size_t(m_size.width()) * samplesPerPixel]; }

    /// `row` of the full picture goes into the samples of `slot`, 0 to 3. Rows come in order.
    void add(size_t slot, int y, const std::vector<uchar> &row)
    {
        for (size_t x = 0; x < row.size(); ++x)
            m_sums[x / size_t(m_divisor)] += row[x];
        ++m_rows;
        if ((y + 1) % m_divisor != 0 && y + 1 != m_full.height())
            return;
        const size_t first = size_t(y / m_divisor) * m_sums.size();
        for (size_t x = 0; x < m_sums.size(); ++x) {
            const size_t columns = qMin(size_t(m_divisor), row.size() - x * size_t(m_divisor));
            const quint64 count = columns * m_rows;
            m_samples[(first + x) * samplesPerPixel + slot] = uchar((m_sums[x] + count / 2) / count);
            m_sums[x] = 0;
        }
        m_rows = 0;
    }

private:
    QSize m_full;
    int m_divisor;
    QSize m_size;
    std::vector<uchar> m_samples;
    std::vector<quint64> m_sums;
    quint64 m_rows = 0;
};

/// Which colours are read, so that no more than four samples make a pixel with its alpha.
int usedColours(const PsdLayout &layout)
{
    const int colours = psdColourCount(layout.mode, layout.channels);
    return layout.mode == PsdMode::multichannel ? (colours >= 3 ? 3 : 1) : colours;
}

bool readSamples(const ByteSource &bytes, const PsdLayout &layout, const DecodeRequest &request,
                 ReducedPicture &picture, QString &reason)
{
    const auto compression = Compression(qFromBigEndian<quint16>(bytes.bytes(layout.picture, 2).constData()));
    RowReader rows(bytes, layout, compression);
    std::vector<uchar> samples(size_t(layout.size.width()));
    const int colours = usedColours(layout);
    const int channels = colours + (layout.hasTransparency && colours < 4 ? 1 : 0);
    for (int channel = 0; channel < channels; ++channel) {
        bool isWhole = channel < layout.channels && rows.startChannel(channel);
        for (int y = 0; isWhole && y < layout.size.height(); ++y) {
            if (request.deadline.hasExpired()) {
                reason = QStringLiteral("decoding took too long");
                return false;
            }
            isWhole = rows.read(y, samples);
            if (isWhole)
                picture.add(size_t(channel), y, samples);
        }
        if (!isWhole) {
            reason = QStringLiteral("its data is damaged");
            return false;
        }
    }
    return true;
}

/// A pixel before its profile is applied. The merged picture is painted on white wherever it isn't opaque;
/// without the white it is what multiplication by its alpha gives.
QRgb pixelOf(const PsdLayout &layout, const uchar *samples, int colours)
{
    std::array<int, 3> colour = {samples[0], samples[0], samples[0]};
    if (layout.mode == PsdMode::indexed && layout.palette.size() == 768) {
        for (size_t i = 0; i < colour.size(); ++i)
            colour[i] = uchar(layout.palette[qsizetype(i) * 256 + samples[0]]);
    } else if (colours >= 3) {
        colour = {samples[0], samples[1], samples[2]};
    }
    if (!layout.hasTransparency)
        return qRgb(colour[0], colour[1], colour[2]);
    const int alpha = samples[colours];
    for (int &value : colour)
        value = qBound(0, value - (255 - alpha), alpha);
    return qRgba(colour[0], colour[1], colour[2], alpha);
}

QImage toQImage(const PsdLayout &layout, const ReducedPicture &picture)
{
    const int colours = usedColours(layout);
    const bool isCmyk = layout.mode == PsdMode::cmyk;
    const bool isTransparent = layout.hasTransparency && !isCmyk;
    const bool isGray = colours == 1 && layout.mode != PsdMode::indexed;
    const SampleLayout samples = isCmyk   ? SampleLayout::cmyk8Inverted
                                 : isGray ? SampleLayout::gray8
                                          : SampleLayout::rgb32;
    // What is of three colours is converted later, when it has become smaller.
    const auto transform = samples == SampleLayout::rgb32 || isTransparent
                               ? nullptr
                               : ColorTransform::toSrgb(layout.profile, samples);
    QImage image(picture.size(), isTransparent ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32);
    if (image.isNull())
        return image;
    std::vector<uchar> grays(size_t(image.width()));
    for (int y = 0; y < image.height(); ++y) {
        auto *row = reinterpret_cast<QRgb *>(image.scanLine(y));
        const uchar *from = picture.row(y);
        if (transform && isCmyk) {
            transform->apply(from, row, image.width());
        } else if (transform) {
            for (size_t x = 0; x < grays.size(); ++x)
                grays[x] = from[x * samplesPerPixel];
            transform->apply(grays.data(), row, image.width());
        } else if (isCmyk) {
            plainCmykToSrgb(from, row, image.width(), true);
        } else {
            for (int x = 0; x < image.width(); ++x, from += samplesPerPixel)
                row[x] = pixelOf(layout, from, colours);
        }
    }
    return image;
}

/// The largest divisor that leaves at least twice the size wanted for the better filter.
int usefulDivisor(QSize size, QSize box)
{
    return qMax(1, qMin(size.width() / box.width(), size.height() / box.height()) / 2);
}

std::optional<QImage> decodeMerged(const ByteSource &bytes, const PsdLayout &layout,
                                   const DecodeRequest &request, QString &reason)
{
    if (!DecodeLimits::admits(layout.size.width(), layout.size.height(), DecodeLimits::maximumPixels, reason))
        return std::nullopt;
    const QSize box = request.boundedSize(layout.size);
    // The colours of a palette have no mean among its numbers.
    const int divisor = layout.mode == PsdMode::indexed ? 1 : usefulDivisor(layout.size, box);
    const QSize reduced = layout.size / divisor;
    if (!DecodeLimits::admits(reduced.width(), reduced.height(), DecodeLimits::maximumMemory / bytesPerPixel,
                              reason))
        return std::nullopt;
    ReducedPicture picture(layout.size, divisor);
    if (!readSamples(bytes, layout, request, picture, reason))
        return std::nullopt;
    const QImage image = toQImage(layout, picture);
    if (image.isNull()) {
        reason = QStringLiteral("out of memory");
        return std::nullopt;
    }
    QImage bounded = scaledImage(image, box);
    convertToSrgb(bounded, layout.mode == PsdMode::cmyk ? QByteArray() : layout.profile);
    return bounded;
}

std::optional<QImage> decodeThumbnail(const ByteSource &bytes, const PsdLayout &layout,
                                      const DecodeRequest &request)
{
    if (layout.thumbnailSize == 0 || layout.size.isEmpty())
        return std::nullopt;
    QString unused;
    const ByteRange jpeg(bytes, layout.thumbnailOffset, layout.thumbnailSize);
    auto image = decodeJpeg(jpeg, request, JpegTolerance::none, unused);
    if (!image || image->isNull())
        return std::nullopt;
    const double shape = double(image->width()) / image->height();
    const double mainShape = double(layout.size.width()) / layout.size.height();
    // A side of a few pixels rounds by more.
    const double tolerance = qMax(shapeTolerance, 1.0 / qMin(image->width(), image->height()));
    if (std::abs(shape / mainShape - 1) > tolerance)
        return std::nullopt;
    return image;
}

bool isReadHere(const ByteSource &bytes, const PsdLayout &layout)
{
    const QByteArray compression = bytes.bytes(layout.picture, 2);
    if (!layout.hasMergedPicture || compression.size() < 2 || compression[0] != 0 || compression[1] > 1)
        return false;
    switch (layout.mode) {
    case PsdMode::bitmap:
        return layout.bitsPerSample == 1;
    case PsdMode::indexed:
        return layout.bitsPerSample == 8;
    case PsdMode::gray:
    case PsdMode::rgb:
    case PsdMode::cmyk:
    case PsdMode::multichannel:
    case PsdMode::duotone:
        return layout.bitsPerSample == 8 || layout.bitsPerSample == 16;
    case PsdMode::lab:
        return false;
    }
    return false;
}

} // namespace

std::optional<QImage> decodePsd(const ByteSource &bytes, const DecodeRequest &request, QString &reason)
{
    const std::optional<PsdLayout> layout = readPsdLayout(bytes, reason);
    if (!layout)
        return std::nullopt;
    if (request.isPreviewAllowed) {
        if (const auto thumbnail = decodeThumbnail(bytes, *layout, request))
            return thumbnail;
    }
    const auto merged = isReadHere(bytes, *layout) ? decodeMerged(bytes, *layout, request, reason)
                                                   : decodeWithMagick(bytes, "PSD", request, reason);
    return merged ? merged : decodeThumbnail(bytes, *layout, request);
}

} // namespace Qorvane
