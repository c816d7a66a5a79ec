#pragma once

#include "media/decoders/DecodeLimits.h"

#include <QDeadlineTimer>
#include <QSize>

namespace Qorvane {

/// What is wanted of a decoder.
struct DecodeRequest
{
    int maxPixelSize = 0;          ///< largest side in pixels; 0: the full size
    bool isPreviewAllowed = false; ///< a preview embedded in the file may stand for the picture
    QDeadlineTimer deadline = QDeadlineTimer(DecodeLimits::maximumTime);

    /// The size that a picture of `size` comes out with: its shape kept, never enlarged, no side below 1.
    QSize boundedSize(QSize size) const;
};

} // namespace Qorvane
