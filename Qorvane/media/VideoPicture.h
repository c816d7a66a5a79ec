#pragma once

#include <QImage>
#include <QString>
#include <QTransform>

#include <optional>

struct AVFrame;
struct AVRational;

namespace Qorvane {

/// The size in pixels, before it is turned upright, at which a frame of `coded` pixels of the shape `aspect`
/// (width to height) fits into `maxSize` by `maxSize`. The frame's height is never enlarged; its width only
/// as the pixels' shape asks.
QSize fittedFrameSize(QSize coded, double aspect, int maxSize);

/// A decoded frame as an opaque sRGB picture: by the frame's own colour matrix and range, with square pixels,
/// turned by `upright`, fitted into `maxSize` by `maxSize`. Nothing on failure, with the reason in `error`.
/// Any thread.
std::optional<QImage> pictureFromFrame(const AVFrame &frame, const AVRational &pixelAspect,
                                       const QTransform &upright, int maxSize, QString *error);

} // namespace Qorvane
