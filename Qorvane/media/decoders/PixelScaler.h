#pragma once

#include <QImage>
#include <QSize>

namespace Qorvane {

/// Resamples `image` to `size` with a three-lobed Lanczos filter, both ways separably, in its own encoding,
/// as photo software does. Takes and gives Format_RGB32 and Format_ARGB32_Premultiplied; anything else is
/// converted first. Null when memory runs out. Any thread.
QImage scaledImage(const QImage &image, QSize size);

} // namespace Qorvane
