#pragma once

#include <QImage>
#include <QSize>

#include <vector>

namespace Qorvane {

/// Makes an 8-bit sRGB picture of linear light of any range: the picture's geometric mean luminance goes to
/// middle grey and the brightest half per cent to white, along Reinhard's curve ("Photographic Tone
/// Reproduction for Digital Images", 2002, equation 4). A picture whose light stays within
/// a display's range, 0 to 1, is only encoded. `rgb` holds three floats a pixel, row by row, sRGB
/// primaries; what is no number or negative counts as black.
QImage toneMapped(const std::vector<float> &rgb, QSize size);

} // namespace Qorvane
