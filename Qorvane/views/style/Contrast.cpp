#include "views/style/Contrast.h"

#include <algorithm>
#include <cmath>

namespace Qorvane {

namespace {

constexpr QColor white(0xFF, 0xFF, 0xFF);
// The text colour of the light look.
constexpr QColor darkInk(0x1D, 0x1D, 0x1F);

// Desktops draw white on their medium accents, blue, green or orange, though it is a little faint there:
// darkened, they stay what they are. Below this the accent is a light one, which darkening would turn into
// another colour.
constexpr double mediumContrast = 3.0;

double luminance(const QColor &color)
{
    const auto linear = [](double channel) {
        return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

} // namespace

double contrastRatio(const QColor &a, const QColor &b)
{
    const auto [darker, lighter] = std::minmax({luminance(a), luminance(b)});
    return (lighter + 0.05) / (darker + 0.05);
}

QColor readableFill(const QColor &accent)
{
    if (contrastRatio(white, accent) < mediumContrast)
        return accent;
    QColor fill = accent.toRgb();
    const auto darker = [](int channel) { return channel * 49 / 50; }; // steps too small to be seen
    while (contrastRatio(white, fill) < readableContrast)
        fill.setRgb(darker(fill.red()), darker(fill.green()), darker(fill.blue()));
    return fill;
}

QColor inkOn(const QColor &fill)
{
    return contrastRatio(white, fill) < mediumContrast ? darkInk : white;
}

} // namespace Qorvane
