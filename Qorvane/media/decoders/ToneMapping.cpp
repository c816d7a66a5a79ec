#include "media/decoders/ToneMapping.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace Qorvane {

namespace {

constexpr float middleGrey = 0.18F;
// Stands in for black where a logarithm is taken.
constexpr float darkest = 1e-6F;
// Lets lamps and the sun's disc burn out without darkening everything else.
constexpr double whitePercentile = 0.995;

// A picture whose brightest parts stay below is one of a scene measured in some other unit.
constexpr float leastExposed = 0.25F;

float cleaned(float value)
{
    return std::isfinite(value) && value > 0 ? value : 0;
}

float luminance(const float *pixel)
{
    return 0.2126F * cleaned(pixel[0]) + 0.7152F * cleaned(pixel[1]) + 0.0722F * cleaned(pixel[2]);
}

int encoded(float linear)
{
    const float value = std::clamp(linear, 0.0F, 1.0F);
    const float gamma = value <= 0.0031308F ? 12.92F * value : 1.055F * std::pow(value, 1 / 2.4F) - 0.055F;
    return int(std::lround(gamma * 255));
}

} // namespace

QImage toneMapped(const std::vector<float> &rgb, QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    const size_t count = rgb.size() / 3;
    if (image.isNull() || count == 0 || count != size_t(size.width()) * size_t(size.height()))
        return {};

    std::vector<float> luminances(count);
    double logarithms = 0;
    for (size_t i = 0; i < count; ++i) {
        luminances[i] = luminance(&rgb[i * 3]);
        logarithms += std::log(double(luminances[i] + darkest));
    }
    const float mean = float(std::exp(logarithms / double(count)));
    const float exposure = middleGrey / mean;
    const auto rank = std::min(count - 1, size_t(double(count) * whitePercentile));
    std::vector<float> sorted = luminances;
    std::nth_element(sorted.begin(), sorted.begin() + ptrdiff_t(rank), sorted.end());
    // Pictures that fill the range of a display and don't leave it were made for one; they stay as they are.
    const bool isExposed = sorted[rank] <= 1 && sorted[rank] >= leastExposed;
    const float white = std::max(sorted[rank] * exposure, 1.0F);

    for (size_t i = 0; i < count; ++i) {
        const float scaled = luminances[i] * exposure;
        const float mapped = scaled * (1 + scaled / (white * white)) / (1 + scaled);
        const float gain = isExposed ? 1 : luminances[i] > 0 ? mapped / luminances[i] : 0;
        const auto channel = [&](size_t c) { return encoded(cleaned(rgb[i * 3 + c]) * gain); };
        const auto x = int(i % size_t(size.width()));
        const auto y = int(i / size_t(size.width()));
        reinterpret_cast<QRgb *>(image.scanLine(y))[x] = qRgb(channel(0), channel(1), channel(2));
    }
    return image;
}

} // namespace Qorvane
