#include "media/decoders/PictContent.h"

#include <QtEndian>

#include <optional>

namespace Qorvane {

namespace {

// Behind 512 bytes of anything come the size and the frame.
constexpr qint64 instructionsAt = 522;
// Drawings of maps have some ten thousands; a forged file could be all instructions without data.
constexpr int maximumInstructions = 1'000'000;
constexpr int endOfPicture = 0xff;

/// The instructions from `position` on, read through a window so that each costs no call to the system.
class Instructions
{
public:
    Instructions(const ByteSource &bytes, qint64 position)
        : m_bytes(bytes)
        , m_position(position)
    {
    }
    int byteAt(qint64 offset)
    {
        const qint64 at = m_position + offset;
        if (at < m_windowStart || at >= m_windowStart + m_window.size()) {
            m_windowStart = at;
            m_window = m_bytes.bytes(at, windowSize);
        }
        return m_window.isEmpty() ? 0 : uchar(m_window[at - m_windowStart]);
    }
    int wordAt(qint64 offset) { return byteAt(offset) << 8 | byteAt(offset + 1); }
    qint64 longAt(qint64 offset) { return qint64(wordAt(offset)) << 16 | wordAt(offset + 2); }
    bool isAtEnd() const { return m_position >= m_bytes.size(); }
    void skip(qint64 count) { m_position += count; }
    /// The instructions of the second version begin at even places.
    void align() { m_position += m_position & 1; }

private:
    static constexpr qint64 windowSize = 4096;

    const ByteSource &m_bytes;
    qint64 m_position;
    qint64 m_windowStart = 0;
    QByteArray m_window;
};

bool isBitmap(int code)
{
    constexpr int compressedPicture = 0x8200;
    constexpr int uncompressedPicture = 0x8201;
    return code == 0x90 || code == 0x91 || (code >= 0x98 && code <= 0x9b) || code == compressedPicture ||
           code == uncompressedPicture;
}

/// The bytes of data of the instructions below 0x30, which share no rule; -1 for those told by a length in
/// the data, -2 for those of unknown length.
constexpr int told = -1;
constexpr int unknown = -2;
constexpr int plainSizes[] = {
    0,    told, 8,       2,       1,       2,    4,    4,
    2,    8,    8,       4,       4,       2,    4,    4, // 0x00: state
    8,    1,    unknown, unknown, unknown, 2,    2,    0,
    0,    0,    6,       6,       0,       6,    0,    6, // 0x10: patterns and colours
    8,    4,    6,       2,       told,    told, told, told,
    told, told, told,    told,    told,    told, told, told, // 0x20: lines, texts
};

/// Of the instructions below 0x30 whose length is in their data.
qint64 toldSize(int code, Instructions &instructions)
{
    switch (code) {
    case 0x01: // a region, whose length counts itself
        return instructions.wordAt(0);
    case 0x28: // texts, from a place or from the one before
        return 5 + instructions.byteAt(4);
    case 0x29:
    case 0x2a:
        return 2 + instructions.byteAt(1);
    case 0x2b:
        return 3 + instructions.byteAt(2);
    default:
        return 2 + instructions.wordAt(0);
    }
}

/// Of rectangles, ovals, arcs, polygons and regions: each has its shape first, then again without data.
qint64 shapeSize(int code, Instructions &instructions)
{
    const bool isSameShape = code & 8;
    switch (code >> 4) {
    case 6: // arcs still have their angles
        return isSameShape ? 4 : 12;
    case 7:
    case 8:
        return isSameShape ? 0 : instructions.wordAt(0);
    default:
        return isSameShape ? 0 : 8;
    }
}

/// The bytes of data that follow the instruction `code`; nothing when they can't be known.
std::optional<qint64> dataSize(int code, bool isFirstVersion, Instructions &instructions)
{
    if (code == 0x11)
        return isFirstVersion ? 1 : 2;
    if (code < 0x30) {
        if (plainSizes[code] == unknown)
            return std::nullopt;
        return plainSizes[code] == told ? toldSize(code, instructions) : plainSizes[code];
    }
    if (code < 0x90)
        return shapeSize(code, instructions);
    if (code == 0xa0)
        return 2;
    if (code == 0xa1)
        return 4 + instructions.wordAt(2);
    if (code < 0xb0)
        return 2 + instructions.wordAt(0);
    if (code < 0xd0 || (code >= 0x8000 && code < 0x8100))
        return 0;
    if (code < 0x100 || code >= 0x8100)
        return 4 + instructions.longAt(0);
    return qint64(code >> 8) * 2;
}

} // namespace

PictContent pictContent(const ByteSource &bytes)
{
    Instructions instructions(bytes, instructionsAt);
    const bool isFirstVersion = instructions.byteAt(0) == 0x11;
    for (int i = 0; i < maximumInstructions && !instructions.isAtEnd(); ++i) {
        const int code = isFirstVersion ? instructions.byteAt(0) : instructions.wordAt(0);
        instructions.skip(isFirstVersion ? 1 : 2);
        if (code == endOfPicture)
            return PictContent::drawingOnly;
        if (isBitmap(code))
            return PictContent::bitmap;
        const std::optional<qint64> size = dataSize(code, isFirstVersion, instructions);
        if (!size)
            return PictContent::unknown;
        instructions.skip(*size);
        if (!isFirstVersion)
            instructions.align();
    }
    return PictContent::unknown;
}

} // namespace Qorvane
