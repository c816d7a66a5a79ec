#pragma once

#include <QSize>
#include <QString>

#include <chrono>

namespace Qorvane::DecodeLimits {

/// More than a 20 000 x 20 000 panorama or the largest pixel-shift camera file; a header that claims more is
/// taken for a bomb.
constexpr qint64 maximumPixels = 400'000'000;

/// What one decode may hold at once. Two runs side by side then still fit a 4 GB machine.
constexpr qint64 maximumMemory = qint64(1) << 30;

/// Pixels for decoders that hold the whole picture, at four bytes each.
constexpr qint64 maximumPixelsInMemory = maximumMemory / 4;

/// Pixels for decoders that can't be stopped at every point. The slowest of them makes some 5 million a
/// second, so that this many still end in time.
constexpr qint64 maximumPixelsUnstoppable = 100'000'000;

/// No side of a picture is longer in any of the formats that matter; it keeps products of two sides and a
/// channel count within 64 bits with room to spare.
constexpr int maximumSide = 1'000'000;

/// The longest that one file may keep a run of thumbnails waiting.
constexpr std::chrono::seconds maximumTime{20};

/// Whether a picture of `width` by `height` is within `pixels`; false and the reason otherwise.
bool admits(qint64 width, qint64 height, qint64 pixels, QString &reason);

} // namespace Qorvane::DecodeLimits
