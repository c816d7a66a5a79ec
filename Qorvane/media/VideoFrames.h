#pragma once

#include <QImage>
#include <QString>

#include <optional>

namespace Qorvane {

/// Where in a video of `durationSeconds` its picture is taken: at a tenth of the length, but no later than
/// one second, in whole 600ths. 0 for a video without a known length.
double videoFrameSeconds(double durationSeconds);

/// The key frame nearest to `videoFrameSeconds` of the video's first picture track (covers and other attached
/// pictures don't count), upright as the track says, with square pixels, in sRGB, reduced to fit `maxSize` by
/// `maxSize` pixels and never enlarged.
///
/// Files are taken as hostile: pixels and time are bounded, no other file or address is opened on the
/// video's say-so, and pipes and devices are refused. Nothing on failure; the reason is put into `error`,
/// empty when there is none to tell. Blocks for up to 20 seconds; any thread but the GUI's, where it refuses.
std::optional<QImage> generateVideoFrame(const QString &path, int maxSize, QString *error = nullptr);

} // namespace Qorvane
