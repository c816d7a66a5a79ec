#include "encoders/graph/Resampling.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace Qorvane::Encoders {

namespace {

// Of the usual cubic kernels the one that the published models' own preprocessing has.
constexpr double cubicSharpness = -0.5;
constexpr double lanczosLobes = 3;

double sinc(double x)
{
    return x == 0 ? 1 : std::sin(std::numbers::pi * x) / (std::numbers::pi * x);
}

double reach(ResamplingFilter filter)
{
    switch (filter) {
    case ResamplingFilter::lanczos:
        return lanczosLobes;
    case ResamplingFilter::bilinear:
        return 1;
    case ResamplingFilter::bicubic:
        return 2;
    }
    return 1;
}

double weight(ResamplingFilter filter, double distance)
{
    const double x = std::abs(distance);
    if (x >= reach(filter))
        return 0;
    switch (filter) {
    case ResamplingFilter::lanczos:
        return sinc(x) * sinc(x / lanczosLobes);
    case ResamplingFilter::bilinear:
        return 1 - x;
    case ResamplingFilter::bicubic:
        // Keys, 1981.
        return x < 1 ? ((cubicSharpness + 2) * x - (cubicSharpness + 3)) * x * x + 1
                     : ((cubicSharpness * x - 5 * cubicSharpness) * x + 8 * cubicSharpness) * x -
                           4 * cubicSharpness;
    }
    return 0;
}

} // namespace

std::vector<float> resamplingMatrix(int from, int to, ResamplingFilter filter, bool isMirrored)
{
    const double ratio = double(from) / to;
    const double widening = std::max(ratio, 1.0);
    std::vector<float> matrix(size_t(from) * size_t(to));
    for (int row = 0; row < to; ++row) {
        const double middle = (row + 0.5) * ratio;
        const int first = std::max(0, int(std::floor(middle - reach(filter) * widening)));
        const int end = std::min(from, int(std::ceil(middle + reach(filter) * widening)) + 1);
        double sum = 0;
        for (int column = first; column < end; ++column)
            sum += weight(filter, (column + 0.5 - middle) / widening);
        for (int column = first; column < end; ++column) {
            const int place = isMirrored ? from - 1 - column : column;
            matrix[size_t(row) * size_t(from) + size_t(place)] =
                float(weight(filter, (column + 0.5 - middle) / widening) / sum);
        }
    }
    return matrix;
}

} // namespace Qorvane::Encoders
