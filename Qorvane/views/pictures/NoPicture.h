#pragma once

#include <QImage>

namespace Qorvane {

/// What the providers answer for a file without a picture, where an error would be a line on the console for
/// every broken file of the user's. `ProviderImage` knows it by its size. Any thread.
inline QImage clearPixel()
{
    QImage pixel(1, 1, QImage::Format_ARGB32_Premultiplied);
    pixel.fill(Qt::transparent);
    return pixel;
}

} // namespace Qorvane
