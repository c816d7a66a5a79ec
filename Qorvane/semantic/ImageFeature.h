#pragma once

#include "platform/FileUrl.h"

#include <QHash>

#include <vector>

namespace Qorvane {

/// A picture's embedding as it is kept in memory.
struct ImageFeature
{
    std::vector<float> features; ///< the normalised vector
    float l2Norm = 0;            ///< of `features`: close to 1, or 0 for a zero vector

    friend bool operator==(const ImageFeature &, const ImageFeature &) = default;
};

using ImageFeatures = QHash<FileUrl, ImageFeature>;

} // namespace Qorvane
