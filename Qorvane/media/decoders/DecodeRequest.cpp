#include "media/decoders/DecodeRequest.h"

#include <cmath>

namespace Qorvane {

QSize DecodeRequest::boundedSize(QSize size) const
{
    const int largest = qMax(size.width(), size.height());
    if (maxPixelSize <= 0 || largest <= maxPixelSize)
        return size;
    const double scale = double(maxPixelSize) / largest;
    const auto side = [scale](int length) { return qMax(1, int(std::lround(length * scale))); };
    return {side(size.width()), side(size.height())};
}

} // namespace Qorvane
