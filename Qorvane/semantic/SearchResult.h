#pragma once

#include "platform/FileUrl.h"

#include <optional>

namespace Qorvane {

/// One hit of a search.
struct SearchResult
{
    FileUrl url;
    float similarity = 0; ///< cosine similarity, -1 to 1
    std::optional<float>
        probability; ///< share of the softmax among all candidates, also those not among the hits

    friend bool operator==(const SearchResult &, const SearchResult &) = default;
};

} // namespace Qorvane
