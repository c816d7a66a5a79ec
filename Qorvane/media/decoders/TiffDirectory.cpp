#include "media/decoders/TiffDirectory.h"

#include <QtEndian>

namespace Qorvane::TiffDirectory {

namespace {

constexpr quint16 newSubfileTypeTag = 0x00fe;
constexpr quint16 photometricTag = 0x0106;
constexpr quint16 makeTag = 0x010f;
constexpr quint16 subDirectoriesTag = 0x014a;
constexpr quint16 dngVersionTag = 0xc612;

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

} // namespace

bool describesRawFile(const ByteSource &bytes)
{
    const QByteArray header = bytes.bytes(0, 8);
    if (header.size() < 8)
        return false;
    const Reader reader(header[0] == 'M');
    constexpr quint16 classicVersion = 42; // BigTIFF, 43, is no camera's
    if (reader.number<quint16>(header, 2) != classicVersion)
        return false;
    const qint64 start = reader.number<quint32>(header, 4);
    const quint16 count = reader.number<quint16>(bytes.bytes(start, 2), 0);
    const QByteArray entries = bytes.bytes(start + 2, count * entrySize);

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

} // namespace Qorvane::TiffDirectory
