#pragma once

#include "semantic/SearchCandidates.h"
#include "semantic/SearchResult.h"

#include <QtGlobal>

#include <cstddef>
#include <vector>

namespace Qorvane {

/// Hits are at least this similar. Unit vectors of text and image that have nothing to do with each other lie
/// below.
inline constexpr float similarityThreshold = 0.15F;

/// What a similarity is multiplied by before the softmax, where no model says otherwise.
inline constexpr float defaultLogitScale = 100.00296F;

/// Where the candidates of a search came from, as its log rows tell.
enum class CandidateOrigin { database, memory };

struct SearchRanking
{
    std::vector<SearchResult> results;   ///< best first
    std::size_t countAboveThreshold = 0; ///< before the limit was applied

    friend bool operator==(const SearchRanking &, const SearchRanking &) = default;
};

/// The common end of every search: gives each candidate its share of the softmax over all of them, orders
/// them by similarity (equal ones stay in the order gathered), logs a row for every one, and keeps the first
/// `limit` that reach the threshold. A similarity whose percentage is no 64-bit integer ends the program at
/// its row. Any thread.
SearchRanking rankCandidates(const SearchCandidates &candidates, qsizetype limit, CandidateOrigin origin,
                             float logitScale = defaultLogitScale);

/// The softmax shares of `similarities` scaled by `logitScale`: logits in 32-bit floats, the exponential of
/// their distance from the largest in double precision. All 0 when the weights don't add up to anything.
std::vector<float> softmaxShares(std::span<const float> similarities, float logitScale);

} // namespace Qorvane
