#pragma once

#include <QImage>

#include <optional>
#include <vector>

namespace Qorvane {

/// Side of the square picture that the vision encoders take, in pixels.
constexpr int encoderSide = 224;

/// The vision encoder's input for `image`: 1 x 3 x 224 x 224 floats (red, green and blue planes, 224 rows
/// each), normalised with the CLIP means and deviations.
///
/// The short side becomes 224, the long side is cropped equally at both ends, all in one Lanczos resample of
/// the exact source rectangle into an 8-bit buffer of premultiplied sRGB; transparent areas are black. Row 0
/// is the picture's bottom row: the tensor is vertically mirrored, since that is how all stored vectors were
/// made, and encoders expect it.
///
/// Nothing for an image without pixels or when memory runs out. Any thread; a few milliseconds.
std::optional<std::vector<float>> preprocessImage(const QImage &image);

} // namespace Qorvane
