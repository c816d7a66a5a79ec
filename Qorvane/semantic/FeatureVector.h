#pragma once

#include <QString>

#include <vector>

namespace Qorvane {

/// An encoder's output made ready for comparison.
struct FeatureVector
{
    std::vector<float> values; ///< unit length, or all zero
    float normBefore = 0;      ///< length before the division

    friend bool operator==(const FeatureVector &, const FeatureVector &) = default;
};

/// Square root of the sum of squares, added up in index order in 32-bit floats. Any thread.
float l2Norm(const std::vector<float> &values);

/// Replaces every element that isn't finite by 0, then divides by the norm unless that is 0. Any thread.
FeatureVector normalised(std::vector<float> features);

/// The log line that goes with a fresh vector: norm before, and of the values after the division the
/// smallest, the largest and the first five.
QString normLine(const FeatureVector &vector);

} // namespace Qorvane
