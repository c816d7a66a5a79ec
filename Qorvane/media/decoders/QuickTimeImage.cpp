#include "media/decoders/QuickTimeImage.h"

#include "media/ContentType.h"
#include "media/decoders/DecoderDispatch.h"
#include "media/decoders/PixelScaler.h"

#include <QColorSpace>
#include <QtEndian>

namespace Qorvane {

namespace {

constexpr qint64 atomHeaderSize = 8;
// A file has two or three; more is a file made to keep its readers busy.
constexpr int maximumAtoms = 64;
// Fields of an image description, in bytes from its start ("QuickTime File Format", image description).
constexpr qint64 codecOffset = 4;
constexpr qint64 widthOffset = 32;
constexpr qint64 heightOffset = 34;
constexpr qint64 depthOffset = 82;
constexpr qint64 descriptionSize = 86;

struct Atoms
{
    QByteArray description;
    qint64 dataOffset = -1;
    qint64 dataSize = 0;
};

Atoms findAtoms(const ByteSource &bytes)
{
    Atoms atoms;
    qint64 offset = 0;
    for (int i = 0; i < maximumAtoms; ++i) {
        const QByteArray header = bytes.bytes(offset, atomHeaderSize);
        if (header.size() < atomHeaderSize)
            break;
        const qint64 size = qFromBigEndian<quint32>(header.constData());
        const qint64 there = size == 0 ? bytes.size() - offset : size; // 0: up to the end of the file
        if (there < atomHeaderSize)
            break;
        const QByteArray kind = header.mid(4, 4);
        if (kind == "idsc") {
            atoms.description =
                bytes.bytes(offset + atomHeaderSize, qMin(there - atomHeaderSize, descriptionSize));
        } else if (kind == "idat") {
            atoms.dataOffset = offset + atomHeaderSize;
            atoms.dataSize = there - atomHeaderSize;
        }
        offset += there;
    }
    return atoms;
}

/// Rows of RGB, or of a byte to spare or alpha and then RGB, without padding.
std::optional<QImage> decodeUncompressed(const ByteSource &data, const QByteArray &description,
                                         const DecodeRequest &request, QString &reason)
{
    const auto field = [&description](qint64 offset) {
        return int(qFromBigEndian<quint16>(description.constData() + offset));
    };
    const int width = field(widthOffset);
    const int height = field(heightOffset);
    const int depth = field(depthOffset);
    if ((depth != 24 && depth != 32) ||
        !DecodeLimits::admits(width, height, DecodeLimits::maximumPixelsInMemory, reason) ||
        qint64(width) * height * (depth / 8) > data.size()) {
        reason = QStringLiteral("its uncompressed data is of no known layout");
        return std::nullopt;
    }
    QImage image(width, height, QImage::Format_RGB32);
    const int step = depth / 8;
    for (int y = 0; y < image.height(); ++y) {
        const QByteArray row = data.bytes(qint64(y) * width * step, qint64(width) * step);
        const auto *samples = reinterpret_cast<const uchar *>(row.constData()) + (step - 3);
        auto *pixels = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < width && qint64(x + 1) * step <= row.size(); ++x, samples += step)
            pixels[x] = qRgb(samples[0], samples[1], samples[2]);
    }
    QImage bounded = scaledImage(image, request.boundedSize(image.size()));
    bounded.setColorSpace(QColorSpace(QColorSpace::SRgb));
    return bounded;
}

} // namespace

std::optional<QImage> decodeQuickTimeImage(const ByteSource &bytes, const DecodeRequest &request,
                                           QString &reason)
{
    const Atoms atoms = findAtoms(bytes);
    if (atoms.dataOffset < 0) {
        reason = QStringLiteral("it holds no image data");
        return std::nullopt;
    }
    const ByteRange data(bytes, atoms.dataOffset, atoms.dataSize);
    const QByteArray codec = atoms.description.mid(codecOffset, 4);
    if (codec == "raw " && atoms.description.size() >= descriptionSize)
        return decodeUncompressed(data, atoms.description, request, reason);
    const auto type = contentType(data, {});
    // One inside the other could go on for ever.
    if (!type || *type == ContentType::qtif) {
        reason = QStringLiteral("its codec \"%1\" is not supported").arg(QString::fromLatin1(codec));
        return std::nullopt;
    }
    return decodeContent(data, *type, request, reason);
}

} // namespace Qorvane
