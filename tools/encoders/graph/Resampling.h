#pragma once

#include <vector>

namespace Qorvane::Encoders {

/// How pictures are brought to another size, with the numbers that published preprocessing files use.
enum class ResamplingFilter { lanczos = 1, bilinear = 2, bicubic = 3 };

/// The matrix, `to` x `from`, that brings a line of `from` pixels to `to` pixels when multiplied from the
/// left. Pixels are compared by their middles; when the line becomes shorter the filter becomes wider by as
/// much, so that nothing is passed over. Each row adds up to 1. `isMirrored` takes the line from its other
/// end.
std::vector<float> resamplingMatrix(int from, int to, ResamplingFilter filter, bool isMirrored);

} // namespace Qorvane::Encoders
