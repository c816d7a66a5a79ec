#include "media/decoders/PsdLayout.h"

#include <QList>
#include <QtEndian>

namespace Qorvane {

namespace {

// Photoshop writes some dozens of each; a forged file could hold millions of empty ones.
constexpr int maximumResources = 4096;
constexpr int maximumLayerBlocks = 256;
// The largest printer profiles have 8 MB.
constexpr qint64 maximumProfileSize = 16 << 20;
constexpr qint64 paletteSize = 768;
// Before a thumbnail's JPEG stand its kind, sizes and depth.
constexpr qint64 thumbnailHeaderSize = 28;
constexpr quint32 thumbnailKindJpeg = 1;

enum Resource : quint16 {
    alphaNames = 1006,
    thumbnail = 1036,
    profile = 1039,
    versionInfo = 1057,
};

/// Reads big-endian numbers in order; zeros beyond the end.
class Cursor
{
public:
    Cursor(const ByteSource &bytes, qint64 position)
        : m_bytes(bytes)
        , m_position(position)
    {
    }
    template <typename Number>
    Number next()
    {
        Number number = 0;
        const qint64 done = m_bytes.readAt(m_position, &number, sizeof number);
        m_position += qint64(sizeof number);
        return done == qint64(sizeof number) ? qFromBigEndian(number) : Number(0);
    }
    QByteArray nextBytes(qint64 count)
    {
        const QByteArray result = m_bytes.bytes(m_position, count);
        m_position += count;
        return result;
    }
    /// A length of four bytes, or of eight when `isWide`; never more than what is left.
    qint64 nextLength(bool isWide)
    {
        const quint64 length = isWide ? next<quint64>() : next<quint32>();
        return qint64(qMin(length, quint64(qMax(qint64(0), m_bytes.size() - m_position))));
    }
    qint64 position() const { return m_position; }
    void goTo(qint64 position) { m_position = position; }
    void skip(qint64 count) { m_position += count; }

private:
    const ByteSource &m_bytes;
    qint64 m_position;
};

struct Findings
{
    bool hasAlphaNames = false;
    std::optional<int> layerCount; ///< negative when the merged picture has an alpha of its own
    bool hasMergedAlpha = false;
};

void takeResource(quint16 id, Cursor content, qint64 size, PsdLayout &layout, Findings &findings)
{
    if (id == Resource::alphaNames) {
        findings.hasAlphaNames = size > 0;
    } else if (id == Resource::profile && size <= maximumProfileSize) {
        layout.profile = content.nextBytes(size);
    } else if (id == Resource::versionInfo) {
        content.skip(4);
        layout.hasMergedPicture = content.next<quint8>() != 0;
    } else if (id == Resource::thumbnail && size > thumbnailHeaderSize &&
               content.next<quint32>() == thumbnailKindJpeg) {
        layout.thumbnailOffset = content.position() - 4 + thumbnailHeaderSize;
        layout.thumbnailSize = size - thumbnailHeaderSize;
    }
}

void readResources(Cursor cursor, qint64 end, const ByteSource &bytes, PsdLayout &layout, Findings &findings)
{
    for (int i = 0; i < maximumResources && cursor.position() < end; ++i) {
        cursor.skip(4); // "8BIM", or another program's mark
        const auto id = cursor.next<quint16>();
        const int nameLength = cursor.next<quint8>();
        cursor.skip(nameLength | 1); // the name and its length byte fill an even number of bytes
        const qint64 size = cursor.nextLength(false);
        takeResource(id, Cursor(bytes, cursor.position()), size, layout, findings);
        cursor.skip((size + 1) & ~qint64(1));
    }
}

/// Which of the blocks behind the layers have a length of eight bytes in a PSB.
bool isWideBlock(const QByteArray &key)
{
    static const QList<QByteArray> keys = {"LMsk", "Lr16", "Lr32", "Layr", "Mt16", "Mt32", "Mtrn",
                                           "Alph", "FMsk", "lnk2", "FEid", "FXid", "PxSD"};
    return keys.contains(key);
}

/// Pictures of more than 8 bits have their layers in a block of their own.
void readLayerBlocks(Cursor cursor, qint64 end, bool isLarge, Findings &findings)
{
    for (int i = 0; i < maximumLayerBlocks && cursor.position() + 12 <= end; ++i) {
        const QByteArray mark = cursor.nextBytes(4);
        if (mark != "8BIM" && mark != "8B64")
            return;
        const QByteArray key = cursor.nextBytes(4);
        const qint64 size = cursor.nextLength(isLarge && isWideBlock(key));
        const qint64 next = cursor.position() + ((size + 3) & ~qint64(3));
        if ((key == "Lr16" || key == "Lr32" || key == "Layr") && size >= 2)
            findings.layerCount = cursor.next<qint16>();
        if (key == "Mt16" || key == "Mt32" || key == "Mtrn")
            findings.hasMergedAlpha = true;
        cursor.goTo(next);
    }
}

void readLayers(Cursor cursor, qint64 end, bool isLarge, Findings &findings)
{
    const qint64 layersSize = cursor.nextLength(isLarge);
    const qint64 behindLayers = cursor.position() + layersSize;
    if (layersSize >= 2)
        findings.layerCount = cursor.next<qint16>();
    cursor.goTo(behindLayers);
    const qint64 maskSize = cursor.nextLength(false);
    cursor.skip(maskSize);
    readLayerBlocks(cursor, end, isLarge, findings);
}

/// Without layers a further channel is a stored selection if it has a name, and transparency where other
/// programs than Photoshop wrote it.
bool isTransparent(const PsdLayout &layout, const Findings &findings)
{
    if (layout.channels <= psdColourCount(layout.mode, layout.channels))
        return false;
    if (findings.layerCount)
        return *findings.layerCount < 0 || findings.hasMergedAlpha;
    return findings.hasMergedAlpha || !findings.hasAlphaNames;
}

} // namespace

int psdColourCount(PsdMode mode, int channels)
{
    switch (mode) {
    case PsdMode::bitmap:
    case PsdMode::gray:
    case PsdMode::indexed:
    case PsdMode::duotone:
        return 1;
    case PsdMode::rgb:
    case PsdMode::lab:
        return 3;
    case PsdMode::cmyk:
        return 4;
    case PsdMode::multichannel:
        return channels;
    }
    return channels;
}

std::optional<PsdLayout> readPsdLayout(const ByteSource &bytes, QString &reason)
{
    Cursor cursor(bytes, 4);
    const auto version = cursor.next<quint16>();
    PsdLayout layout;
    layout.isLarge = version == 2;
    cursor.skip(6);
    layout.channels = cursor.next<quint16>();
    const auto height = cursor.next<quint32>();
    const auto width = cursor.next<quint32>();
    layout.size = QSize(int(qMin(width, quint32(INT_MAX))), int(qMin(height, quint32(INT_MAX))));
    layout.bitsPerSample = cursor.next<quint16>();
    layout.mode = PsdMode(cursor.next<quint16>());
    const qint64 colourDataSize = cursor.nextLength(false);
    if (version < 1 || version > 2 || layout.channels == 0) {
        reason = QStringLiteral("its header is damaged");
        return std::nullopt;
    }
    Findings findings;
    const qint64 resources = cursor.position() + colourDataSize;
    if (colourDataSize >= paletteSize && layout.mode == PsdMode::indexed)
        layout.palette = cursor.nextBytes(paletteSize);
    cursor.goTo(resources);
    const qint64 resourcesSize = cursor.nextLength(false);
    const qint64 layers = cursor.position() + resourcesSize;
    readResources(cursor, layers, bytes, layout, findings);
    cursor.goTo(layers);
    const qint64 layersSize = cursor.nextLength(layout.isLarge);
    layout.picture = cursor.position() + layersSize;
    readLayers(cursor, layout.picture, layout.isLarge, findings);
    layout.hasTransparency = isTransparent(layout, findings);
    return layout;
}

} // namespace Qorvane
