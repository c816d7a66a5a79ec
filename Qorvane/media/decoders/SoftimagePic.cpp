#include "media/decoders/SoftimagePic.h"

#include "media/decoders/PixelScaler.h"

#include <QColorSpace>
#include <QList>
#include <QtEndian>

#include <array>
#include <vector>

namespace Qorvane {

namespace {

// Mark, version and an 80-character comment lie before it, then "PICT".
constexpr qint64 identifierOffset = 88;
constexpr qint64 widthOffset = 92;
constexpr qint64 heightOffset = 94;
constexpr qint64 packetsOffset = 104;
constexpr qint64 packetSize = 4;
// Colour and alpha make two; a chain is told by a byte each and could go on to the end of the file.
constexpr int maximumPackets = 8;

constexpr uchar pureRuns = 1;
constexpr uchar mixedRuns = 2;
constexpr uchar longRun = 128;

struct Packet
{
    uchar coding = 0;
    QList<int> channels; ///< 0 red, 1 green, 2 blue, 3 alpha
};

/// Bytes one after the other, through a buffer; zeros beyond the end.
class ByteStream
{
public:
    ByteStream(const ByteSource &bytes, qint64 offset)
        : m_bytes(bytes)
        , m_offset(offset)
    {
    }
    uchar next()
    {
        if (m_at == m_buffer.size()) {
            m_buffer = m_bytes.bytes(m_offset, bufferSize);
            m_offset += m_buffer.size();
            m_at = 0;
            if (m_buffer.isEmpty()) {
                m_isAtEnd = true;
                return 0;
            }
        }
        return uchar(m_buffer[m_at++]);
    }
    bool isAtEnd() const { return m_isAtEnd; }

private:
    static constexpr qint64 bufferSize = 64 * 1024;

    const ByteSource &m_bytes;
    qint64 m_offset;
    QByteArray m_buffer;
    qsizetype m_at = 0;
    bool m_isAtEnd = false;
};

// Four for the picture as it is read, and as much again for the channels and the result of reducing it.
constexpr qint64 bytesPerPixel = 8;

using Row = std::vector<std::array<uchar, 4>>;

QList<Packet> readPackets(ByteStream &stream)
{
    QList<Packet> packets;
    bool isChained = true;
    while (isChained && packets.size() < maximumPackets && !stream.isAtEnd()) {
        isChained = stream.next() != 0;
        const uchar bitsPerChannel = stream.next();
        Packet packet;
        packet.coding = stream.next();
        const uchar mask = stream.next();
        for (int channel = 0; channel < 4; ++channel) {
            if (mask & (0x80 >> channel))
                packet.channels.append(channel);
        }
        if (bitsPerChannel != 8 || packet.channels.isEmpty())
            return {};
        packets.append(packet);
    }
    return packets;
}

std::array<uchar, 4> readPixel(ByteStream &stream, const Packet &packet)
{
    std::array<uchar, 4> pixel = {};
    for (const int channel : packet.channels)
        pixel[size_t(channel)] = stream.next();
    return pixel;
}

void store(const Packet &packet, const std::array<uchar, 4> &pixel, std::array<uchar, 4> &target)
{
    for (const int channel : packet.channels)
        target[size_t(channel)] = pixel[size_t(channel)];
}

/// One row of one packet's channels; false when a run leaves the row or the data ends.
bool readRow(ByteStream &stream, const Packet &packet, Row &row)
{
    size_t x = 0;
    while (x < row.size()) {
        size_t run = 1;
        bool isRepeated = packet.coding != 0;
        if (packet.coding == pureRuns) {
            run = stream.next();
        } else if (packet.coding == mixedRuns) {
            const uchar count = stream.next();
            isRepeated = count >= longRun;
            if (count == longRun)
                run = size_t(stream.next()) << 8 | stream.next();
            else
                run = count > longRun ? count - size_t(127) : count + size_t(1);
        }
        if (stream.isAtEnd() || run == 0 || run > row.size() - x)
            return false;
        std::array<uchar, 4> pixel = {};
        for (size_t i = 0; i < run; ++i, ++x) {
            if (i == 0 || !isRepeated)
                pixel = readPixel(stream, packet);
            store(packet, pixel, row[x]);
        }
    }
    return !stream.isAtEnd();
}

} // namespace

std::optional<QImage> decodeSoftimagePic(const ByteSource &bytes, const DecodeRequest &request,
                                         QString &reason)
{
    const QByteArray header = bytes.bytes(0, packetsOffset);
    if (header.size() < packetsOffset || header.mid(identifierOffset, 4) != "PICT") {
        reason = QStringLiteral("its header is damaged");
        return std::nullopt;
    }
    const int width = qFromBigEndian<quint16>(header.constData() + widthOffset);
    const int height = qFromBigEndian<quint16>(header.constData() + heightOffset);
    if (!DecodeLimits::admits(width, height, DecodeLimits::maximumMemory / bytesPerPixel, reason))
        return std::nullopt;
    ByteStream stream(bytes, packetsOffset);
    const QList<Packet> packets = readPackets(stream);
    bool hasAlpha = false;
    for (const Packet &packet : packets)
        hasAlpha = hasAlpha || packet.channels.contains(3);
    QImage image(width, height, hasAlpha ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32);
    Row row(static_cast<size_t>(width));
    bool isWhole = !packets.isEmpty() && !image.isNull();
    for (int y = 0; y < height && isWhole; ++y) {
        if (request.deadline.hasExpired()) {
            reason = QStringLiteral("decoding took too long");
            return std::nullopt;
        }
        for (const Packet &packet : packets)
            isWhole = isWhole && readRow(stream, packet, row);
        auto *pixels = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (size_t x = 0; x < row.size(); ++x)
            pixels[x] = hasAlpha ? qPremultiply(qRgba(row[x][0], row[x][1], row[x][2], row[x][3]))
                                 : qRgb(row[x][0], row[x][1], row[x][2]);
    }
    if (!isWhole) {
        reason = QStringLiteral("its data is damaged");
        return std::nullopt;
    }
    QImage bounded = scaledImage(image, request.boundedSize(image.size()));
    bounded.setColorSpace(QColorSpace(QColorSpace::SRgb));
    return bounded;
}

} // namespace Qorvane
