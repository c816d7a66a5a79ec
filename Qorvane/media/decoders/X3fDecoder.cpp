#include "media/decoders/X3fDecoder.h"

#include "media/decoders/JpegDecoder.h"

#include <QList>
#include <QtEndian>

#include <algorithm>

namespace Qorvane {

namespace {

struct Candidate
{
    qint64 offset = 0;
    QSize size;

    int side() const { return qMax(size.width(), size.height()); }
};

// The files hold two or three; compressed sensor data looks like the start of a JPEG once in 16 million
// bytes.
constexpr qsizetype maximumCandidates = 32;
// Each mark may lead through a header as long as the rest of the file, and a file can be made of marks.
// Chance makes 32 of them in the longest scan.
constexpr int maximumAttempts = 128;
// Larger than any such file.
constexpr qint64 maximumScan = qint64(512) << 20;
constexpr qint64 chunkSize = 1 << 20;
// A camera's header gives the turn in degrees, behind the mark, version, identifier, mark bits and size.
constexpr qint64 rotationOffset = 36;

QList<Candidate> embeddedJpegs(const ByteSource &bytes, const QDeadlineTimer &deadline)
{
    static const QByteArray mark("\xff\xd8\xff", 3);
    QList<Candidate> found;
    int attempts = 0;
    const qint64 end = qMin(bytes.size(), maximumScan);
    for (qint64 start = 0; start < end; start += chunkSize) {
        // Two bytes further than the chunk, for a mark across the border.
        const QByteArray chunk = bytes.bytes(start, chunkSize + mark.size() - 1);
        for (qsizetype at = chunk.indexOf(mark); at >= 0; at = chunk.indexOf(mark, at + 1)) {
            if (deadline.hasExpired() || ++attempts > maximumAttempts)
                return found;
            const qint64 offset = start + at;
            if (const auto size = jpegSize(ByteRange(bytes, offset, bytes.size() - offset), deadline))
                found.append({offset, *size});
            if (found.size() == maximumCandidates)
                return found;
        }
        if (deadline.hasExpired())
            return found;
    }
    return found;
}

/// Best first: those that cover from the smallest up, then the others from the largest down.
void sortByUse(QList<Candidate> &candidates, int wanted)
{
    const auto covers = [wanted](const Candidate &candidate) {
        return wanted > 0 && candidate.side() >= wanted;
    };
    std::stable_sort(candidates.begin(), candidates.end(), [&](const Candidate &a, const Candidate &b) {
        if (covers(a) != covers(b))
            return covers(a);
        return covers(a) ? a.side() < b.side() : a.side() > b.side();
    });
}

} // namespace

std::optional<QImage> decodeX3f(const ByteSource &bytes, const DecodeRequest &request, QString &reason)
{
    QList<Candidate> candidates = embeddedJpegs(bytes, request.deadline);
    sortByUse(candidates, request.maxPixelSize);
    DecodeRequest inner = request;
    inner.isPreviewAllowed = false;
    for (const Candidate &candidate : std::as_const(candidates)) {
        const ByteRange jpeg(bytes, candidate.offset, bytes.size() - candidate.offset);
        if (const auto image = decodeJpeg(jpeg, inner, JpegTolerance::none, reason))
            return image;
    }
    reason = QStringLiteral("it embeds no JPEG that decodes, and there is no decoder for its sensor data");
    return std::nullopt;
}

int x3fOrientation(const ByteSource &bytes)
{
    const QByteArray field = bytes.bytes(rotationOffset, 4);
    if (field.size() < 4)
        return 1;
    switch (qFromLittleEndian<quint32>(field.constData())) {
    case 90:
        return 6;
    case 180:
        return 3;
    case 270:
        return 8;
    default:
        return 1;
    }
}

} // namespace Qorvane
