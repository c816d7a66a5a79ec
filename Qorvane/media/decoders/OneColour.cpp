#include "media/decoders/OneColour.h"

#include <algorithm>

namespace Qorvane {

bool isOneColour(const QImage &image)
{
    const QRgb first = *reinterpret_cast<const QRgb *>(image.constScanLine(0));
    for (int y = 0; y < image.height(); ++y) {
        const auto *row = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        if (!std::all_of(row, row + image.width(), [first](QRgb pixel) { return pixel == first; }))
            return false;
    }
    return true;
}

} // namespace Qorvane
