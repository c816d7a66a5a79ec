#include "media/decoders/TiffDirectory.h"

#include <QList>
#include <QtEndian>

namespace Qorvane::TiffDirectory {

namespace {

constexpr quint16 newSubfileTypeTag = 0x00fe;
constexpr quint16 photometricTag = 0x0106;
constexpr quint16 makeTag = 0x010f;
constexpr quint16 subDirectoriesTag = 0x014a;
constexpr quint16 dngVersionTag = 0xc612;
constexpr quint16 stripOffsetsTag = 0x0111;
constexpr quint16 stripSizesTag = 0x0117;
constexpr quint16 tileOffsetsTag = 0x0144;
constexpr quint16 tileSizesTag = 0x0145;

constexpr quint16 shortType = 3;
// A strip for each row of the tallest picture.
constexpr quint32 maximumParts = 1'000'000;

constexpr quint16 colorFilterArray = 32803;
constexpr quint16 linearRaw = 34892;
constexpr quint32 reducedResolution = 1;

constexpr qsizetype entrySize = 12;

class Reader
{
public:
    explicit Reader(bool isBigEndian)
        : m_isBigEndian(isBigEndian)
    {
    }
    template <typename Number>
    Number number(const QByteArray &bytes, qsizetype offset) const
    {
        if (offset + qsizetype(sizeof(Number)) > bytes.size())
            return 0;
        const char *at = bytes.constData() + offset;
        return m_isBigEndian ? qFromBigEndian<Number>(at) : qFromLittleEndian<Number>(at);
    }

private:
    bool m_isBigEndian;
};

constexpr quint16 classicVersion = 42; // BigTIFF has 43

/// The entries of the first directory of a classic TIFF; nothing where there is none.
QByteArray firstEntries(const ByteSource &bytes, const Reader &reader, const QByteArray &header)
{
    const qint64 start = reader.number<quint32>(header, 4);
    const quint16 count = reader.number<quint16>(bytes.bytes(start, 2), 0);
    return bytes.bytes(start + 2, count * entrySize);
}

/// The numbers of the entry at `offset`, wherever they stand; fewer than it says where the file ends.
QList<qint64> numbersOf(const ByteSource &bytes, const Reader &reader, const QByteArray &entries,
                        qsizetype offset)
{
    const bool isShort = reader.number<quint16>(entries, offset + 2) == shortType;
    const qsizetype size = isShort ? 2 : 4;
    const auto count = qsizetype(qMin(reader.number<quint32>(entries, offset + 4), maximumParts));
    const QByteArray data = count * size <= 4
                                ? entries.mid(offset + 8, 4)
                                : bytes.bytes(reader.number<quint32>(entries, offset + 8), count * size);
    QList<qint64> numbers;
    for (qsizetype i = 0; i < count && (i + 1) * size <= data.size(); ++i)
        numbers += isShort ? qint64(reader.number<quint16>(data, i * size))
                           : qint64(reader.number<quint32>(data, i * size));
    return numbers;
}

} // namespace

bool describesRawFile(const ByteSource &bytes)
{
    const QByteArray header = bytes.bytes(0, 8);
    if (header.size() < 8)
        return false;
    const Reader reader(header[0] == 'M');
    if (reader.number<quint16>(header, 2) != classicVersion)
        return false;
    const QByteArray entries = firstEntries(bytes, reader, header);

    bool isReduced = false;
    bool hasMake = false;
    bool hasSubDirectories = false;
    for (qsizetype offset = 0; offset + entrySize <= entries.size(); offset += entrySize) {
        const quint16 tag = reader.number<quint16>(entries, offset);
        const quint16 shortValue = reader.number<quint16>(entries, offset + 8);
        if (tag == dngVersionTag ||
            (tag == photometricTag && (shortValue == colorFilterArray || shortValue == linearRaw)))
            return true;
        isReduced |=
            tag == newSubfileTypeTag && reader.number<quint32>(entries, offset + 8) == reducedResolution;
        hasMake |= tag == makeTag;
        hasSubDirectories |= tag == subDirectoriesTag;
    }
    return isReduced && hasMake && hasSubDirectories;
}

bool holdsItsData(const ByteSource &bytes)
{
    const QByteArray header = bytes.bytes(0, 8);
    const Reader reader(header.startsWith('M'));
    if (reader.number<quint16>(header, 2) != classicVersion)
        return true;
    const QByteArray entries = firstEntries(bytes, reader, header);
    QList<qint64> offsets;
    QList<qint64> sizes;
    for (qsizetype offset = 0; offset + entrySize <= entries.size(); offset += entrySize) {
        const quint16 tag = reader.number<quint16>(entries, offset);
        if (tag == stripOffsetsTag || tag == tileOffsetsTag)
            offsets = numbersOf(bytes, reader, entries, offset);
        else if (tag == stripSizesTag || tag == tileSizesTag)
            sizes = numbersOf(bytes, reader, entries, offset);
    }
    if (offsets.isEmpty() || offsets.size() != sizes.size())
        return false;
    for (qsizetype i = 0; i < offsets.size(); ++i) {
        if (offsets[i] + sizes[i] > bytes.size())
            return false;
    }
    return true;
}

} // namespace Qorvane::TiffDirectory
