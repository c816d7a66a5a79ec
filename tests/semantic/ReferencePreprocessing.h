#pragma once

#include <QImage>

#include <vector>

namespace Qorvane {

/// What the encoder should see of `picture`, worked out the slow and plain way in double precision: bytes 0
/// to 255, not rounded, in the tensor's order (channel, mirrored row, column).
std::vector<double> referenceBytes(const QImage &picture);

} // namespace Qorvane
