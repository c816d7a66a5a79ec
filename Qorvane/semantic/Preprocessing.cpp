#include "semantic/Preprocessing.h"

#include "semantic/PlanarResampling.h"

#include <QColorSpace>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <new>

namespace Qorvane {

namespace {

constexpr size_t channelCount = PlanarImage<uint8_t>::channelCount;
constexpr size_t byteValues = 256;
constexpr size_t planeLength = size_t(encoderSide) * encoderSide;

// The per-channel means and standard deviations of the CLIP training pictures (Radford et al., 2021):
// 0.48145467, 0.4578275, 0.40821072 and 0.26862955, 0.2613026, 0.2757771. Given as bits, so that no reading
// of a decimal can move them: every stored vector depends on them.
constexpr std::array<uint32_t, channelCount> meanBits{0x3EF6813A, 0x3EEA685E, 0x3ED100FF};
constexpr std::array<uint32_t, channelCount> deviationBits{0x3E8989D0, 0x3E85C974, 0x3E8D32A8};

using NormalisationTable = std::array<float, byteValues>;

NormalisationTable makeTable(size_t channel)
{
    const auto mean = std::bit_cast<float>(meanBits[channel]);
    const auto deviation = std::bit_cast<float>(deviationBits[channel]);
    NormalisationTable table;
    for (size_t value = 0; value < byteValues; ++value)
        table[value] = (static_cast<float>(value) / 255.0f - mean) / deviation;
    return table;
}

/// The rectangle of the source that the encoder sees: as large as fits into a picture of `size` with the
/// encoder's shape, in the middle.
QRectF visibleRegion(QSize size)
{
    const double width = size.width();
    const double height = size.height();
    const double scale = std::max(encoderSide / width, encoderSide / height);
    const double x = (encoderSide - width * scale) / 2;
    const double y = (encoderSide - height * scale) / 2;
    const double side = encoderSide / scale;
    // Rounding may put an edge a hair outside, where the resampler has no source.
    return QRectF(std::max(0.0, -x / scale), std::max(0.0, -y / scale), std::min(side, width),
                  std::min(side, height));
}

/// What the filter can reach from `region`, in whole pixels: the far ends of a panorama needn't be converted.
QRect reachableRegion(const QRectF &region, QSize size)
{
    const double reach = resamplingReach(encoderSide / region.width()) + 1;
    return region.adjusted(-reach, -reach, reach, reach).toAlignedRect() & QRect(QPoint(0, 0), size);
}

QImage premultipliedSrgb(QImage image)
{
    if (image.colorSpace().isValid() && image.colorSpace() != QColorSpace(QColorSpace::SRgb))
        image.convertToColorSpace(QColorSpace::SRgb);
    return std::move(image).convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

std::optional<PlanarImage<uint8_t>> separated(const QImage &image)
{
    auto planes = PlanarImage<uint8_t>::create(image.size());
    if (!planes)
        return std::nullopt;
    for (int y = 0; y < image.height(); ++y) {
        const auto *pixels = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        uint8_t *red = planes->row(0, y);
        uint8_t *green = planes->row(1, y);
        uint8_t *blue = planes->row(2, y);
        for (int x = 0; x < image.width(); ++x) {
            red[x] = static_cast<uint8_t>(qRed(pixels[x]));
            green[x] = static_cast<uint8_t>(qGreen(pixels[x]));
            blue[x] = static_cast<uint8_t>(qBlue(pixels[x]));
        }
    }
    return planes;
}

std::vector<float> mirroredTensor(const PlanarImage<uint8_t> &picture)
{
    static const std::array<NormalisationTable, channelCount> tables{makeTable(0), makeTable(1),
                                                                     makeTable(2)};
    std::vector<float> tensor(channelCount * planeLength);
    float *next = tensor.data();
    for (size_t channel = 0; channel < channelCount; ++channel) {
        for (int y = encoderSide - 1; y >= 0; --y) {
            const uint8_t *row = picture.row(channel, y);
            next = std::transform(row, row + encoderSide, next,
                                  [&table = tables[channel]](uint8_t value) { return table[value]; });
        }
    }
    return tensor;
}

} // namespace

std::optional<std::vector<float>> preprocessImage(const QImage &image)
{
    if (image.isNull())
        return std::nullopt;
    const QRectF region = visibleRegion(image.size());
    const QRect reachable = reachableRegion(region, image.size());
    try {
        const QImage source = premultipliedSrgb(reachable == image.rect() ? image : image.copy(reachable));
        if (source.isNull())
            return std::nullopt;
        const auto planes = separated(source);
        if (!planes)
            return std::nullopt;
        const auto picture =
            resampled(*planes, region.translated(-reachable.topLeft()), {encoderSide, encoderSide});
        if (!picture)
            return std::nullopt;
        return mirroredTensor(*picture);
    } catch (const std::bad_alloc &) {
        return std::nullopt;
    }
}

} // namespace Qorvane
