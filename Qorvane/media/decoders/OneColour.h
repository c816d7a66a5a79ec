#pragma once

#include <QImage>

namespace Qorvane {

/// Whether all pixels of `image` (a format of 32 bits) are the same: what decoders leave of a picture whose
/// data they couldn't read.
bool isOneColour(const QImage &image);

} // namespace Qorvane
