#include "semantic/ReferencePreprocessing.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace Qorvane {

namespace {

constexpr int side = 224;
constexpr double lobes = 3;

double lanczos(double x)
{
    if (x == 0)
        return 1;
    if (std::abs(x) >= lobes)
        return 0;
    const double angle = std::numbers::pi * x;
    return lobes * std::sin(angle) * std::sin(angle / lobes) / (angle * angle);
}

int mirroredIndex(int index, int length)
{
    if (index < 0)
        index = -index - 1;
    if (index >= length)
        index = 2 * length - index - 1;
    return std::clamp(index, 0, length - 1);
}

struct Tap
{
    int index;
    double weight;
};

/// The source samples of one target sample, along one axis of `length` samples drawn at `origin` with
/// `scale`.
std::vector<Tap> tapsFor(int target, double origin, double scale, int length)
{
    const double centre = (target + 0.5 - origin) / scale;
    const double widening = std::max(1.0, 1.0 / scale);
    std::vector<Tap> taps;
    double total = 0;
    const int first = int(std::floor(centre - lobes * widening)) - 1;
    const int last = int(std::ceil(centre + lobes * widening)) + 1;
    for (int index = first; index <= last; ++index) {
        const double weight = lanczos((index + 0.5 - centre) / widening);
        if (weight != 0) {
            taps.push_back({mirroredIndex(index, length), weight});
            total += weight;
        }
    }
    for (Tap &tap : taps)
        tap.weight /= total;
    return taps;
}

/// One channel of a pixel with its colour multiplied by its alpha, rounded to a byte.
double premultiplied(QRgb pixel, size_t channel)
{
    const int value = channel == 0 ? qRed(pixel) : channel == 1 ? qGreen(pixel) : qBlue(pixel);
    return std::round(value * qAlpha(pixel) / 255.0);
}

} // namespace

std::vector<double> referenceBytes(const QImage &picture)
{
    const QImage pixels = picture.convertToFormat(QImage::Format_ARGB32);
    const int width = pixels.width();
    const int height = pixels.height();
    const double scale = std::max(double(side) / width, double(side) / height);
    const double left = (side - width * scale) / 2;
    const double top = (side - height * scale) / 2;

    std::vector<std::vector<Tap>> columns;
    std::vector<std::vector<Tap>> rows;
    for (int index = 0; index < side; ++index) {
        columns.push_back(tapsFor(index, left, scale, width));
        rows.push_back(tapsFor(index, top, scale, height));
    }

    std::vector<double> bytes;
    for (size_t channel = 0; channel < 3; ++channel) {
        // Rows first, and only those columns that are seen, kept as they come: nothing is rounded in between.
        const std::vector<double> empty(side);
        std::vector<std::vector<double>> narrowed(static_cast<size_t>(height), empty);
        for (int y = 0; y < height; ++y) {
            const auto *line = reinterpret_cast<const QRgb *>(pixels.constScanLine(y));
            for (size_t x = 0; x < side; ++x) {
                for (const Tap &tap : columns[x])
                    narrowed[size_t(y)][x] += tap.weight * premultiplied(line[tap.index], channel);
            }
        }
        for (int y = side - 1; y >= 0; --y) {
            for (size_t x = 0; x < side; ++x) {
                double value = 0;
                for (const Tap &tap : rows[size_t(y)])
                    value += tap.weight * narrowed[size_t(tap.index)][x];
                bytes.push_back(std::clamp(value, 0.0, 255.0));
            }
        }
    }
    return bytes;
}

} // namespace Qorvane
