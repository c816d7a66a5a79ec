#pragma once

#include <QString>

namespace Qorvane {

/// A tag that may suit a photo.
struct TagRecommendation
{
    QString tag;
    float similarity = 0; ///< of the tag's text to the photo: cosine similarity, -1 to 1, unrounded

    friend bool operator==(const TagRecommendation &, const TagRecommendation &) = default;
};

} // namespace Qorvane
