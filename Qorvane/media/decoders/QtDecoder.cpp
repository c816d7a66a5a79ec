#include "media/decoders/QtDecoder.h"

#include "media/decoders/ColorTransform.h"
#include "media/decoders/MediaLibraries.h"
#include "media/decoders/PixelScaler.h"

#include <QColorSpace>
#include <QIODevice>
#include <QImageReader>

#include <algorithm>

namespace Qorvane {

namespace {

/// A ByteSource as Qt's readers want it. It ends with the deadline, since a reader at work can be stopped in
/// no other way.
class SourceDevice : public QIODevice
{
public:
    SourceDevice(const ByteSource &bytes, const QDeadlineTimer &deadline)
        : m_bytes(bytes)
        , m_deadline(deadline)
    {
        open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    }
    qint64 size() const override { return m_bytes.size(); }

protected:
    qint64 readData(char *data, qint64 count) override
    {
        return m_deadline.hasExpired() ? -1 : m_bytes.readAt(pos(), data, count);
    }
    qint64 writeData(const char *, qint64) override { return -1; }

private:
    const ByteSource &m_bytes;
    const QDeadlineTimer &m_deadline;
};

// As read, of 16 bits a channel at worst, and as converted.
constexpr qint64 bytesPerPixel = 12;
constexpr qint64 maximumPixels =
    std::min(DecodeLimits::maximumPixelsUnstoppable, DecodeLimits::maximumMemory / bytesPerPixel);

// No icon has more sizes; a forged directory may claim 65535.
constexpr int maximumPictures = 256;

/// Leaves the reader at the picture with the most pixels.
void jumpToLargest(QImageReader &reader)
{
    const int count = qMin(reader.imageCount(), maximumPictures);
    int largest = 0;
    qint64 largestArea = -1;
    for (int i = 0; i < count && count > 1; ++i) {
        if (!reader.jumpToImage(i))
            continue;
        const QSize size = reader.size();
        const qint64 area = qint64(size.width()) * size.height();
        if (area > largestArea) {
            largestArea = area;
            largest = i;
        }
    }
    if (count > 1)
        reader.jumpToImage(largest);
}

} // namespace

std::optional<QImage> decodeWithQt(const ByteSource &bytes, const QByteArray &format,
                                   const DecodeRequest &request, QString &reason)
{
    MediaLibraries::ensureReady();
    SourceDevice device(bytes, request.deadline);
    QImageReader reader(&device, format);
    reader.setAutoDetectImageFormat(false);
    reader.setAutoTransform(false);
    jumpToLargest(reader);
    const QSize size = reader.size();
    if (size.isValid() && !DecodeLimits::admits(size.width(), size.height(), maximumPixels, reason))
        return std::nullopt;
    QImage image = reader.read();
    if (image.isNull()) {
        reason =
            request.deadline.hasExpired() ? QStringLiteral("decoding took too long") : reader.errorString();
        return std::nullopt;
    }
    image.convertTo(image.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32);
    const QByteArray profile = image.colorSpace().iccProfile();
    QImage bounded = scaledImage(image, request.boundedSize(image.size()));
    convertToSrgb(bounded, profile);
    return bounded;
}

} // namespace Qorvane
