#pragma once

#include <QByteArray>
#include <QImage>
#include <QString>

#include <optional>

namespace Qorvane {

/// `image` as a baseline JPEG without metadata, transparency laid over white, in sRGB. `compressionFactor`
/// runs from 0 (smallest) to 1 (best). Nothing for a null image, one over 65,500 pixels a side, or without
/// the memory; the reason is then put into `error`. Any thread.
std::optional<QByteArray> jpegRepresentation(const QImage &image, double compressionFactor,
                                             QString *error = nullptr);

} // namespace Qorvane
