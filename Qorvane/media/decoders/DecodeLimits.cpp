#include "media/decoders/DecodeLimits.h"

namespace Qorvane::DecodeLimits {

bool admits(qint64 width, qint64 height, qint64 pixels, QString &reason)
{
    if (width <= 0 || height <= 0) {
        reason = QStringLiteral("the picture has no size");
        return false;
    }
    if (width > maximumSide || height > maximumSide || width * height > pixels) {
        reason = QStringLiteral("%1 x %2 pixels are too many").arg(width).arg(height);
        return false;
    }
    return true;
}

} // namespace Qorvane::DecodeLimits
