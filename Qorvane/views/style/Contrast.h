#pragma once

#include <QColor>

namespace Qorvane {

/// What small text needs to be read by everybody, by WCAG 2.1.
constexpr double readableContrast = 4.5;

/// The contrast ratio of two opaque colours as WCAG 2.1 defines it: 1 of equals to 21 of black and white.
double contrastRatio(const QColor &a, const QColor &b);

/// The fill nearest to `accent` on which words can be read in `inkOn` of it. Keeps the hue.
QColor readableFill(const QColor &accent);

/// White, or a dark ink on a light `fill`; keeps `readableContrast` on every `readableFill`.
QColor inkOn(const QColor &fill);

} // namespace Qorvane
