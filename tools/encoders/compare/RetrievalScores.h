#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

// The figures by which retrieval is judged, as pure functions. `order` lists candidates best first, all of
// them, each once, as indices into what else is given.

namespace Qorvane::Encoders {

/// The mean, over the relevant candidates, of the share of relevant ones among all that come no later
/// (average precision without interpolation, as in the TREC evaluations). Nothing without a relevant
/// candidate.
std::optional<double> averagePrecision(std::span<const std::size_t> order,
                                       const std::vector<bool> &isRelevant);

/// The place of `wanted` in `order`, from 1. Nothing when it isn't there.
std::optional<std::size_t> rankOf(std::span<const std::size_t> order, std::size_t wanted);

/// The share of ranks that are at most `limit`; 0 without ranks.
double recallAt(std::size_t limit, std::span<const std::size_t> ranks);

/// The middle one, or the mean of the middle two; 0 without ranks.
double medianRank(std::vector<std::size_t> ranks);

/// The mean; 0 without values.
double mean(std::span<const double> values);

/// What a search with a cut and a limit brought, added up over queries.
struct CutScore
{
    std::size_t queries = 0;
    std::size_t hits = 0;         ///< shown
    std::size_t relevantHits = 0; ///< shown and right
    std::size_t reachable = 0;    ///< right ones that the limit has room for

    /// Adds one query that showed `shown`, with room for `limit`.
    void add(std::span<const std::size_t> shown, const std::vector<bool> &isRelevant, std::size_t limit);

    /// The share of the shown that are right; 0 when nothing was shown.
    double precision() const;
    /// The share shown of the right ones that there is room for; 0 when there are none.
    double recall() const;

    friend bool operator==(const CutScore &, const CutScore &) = default;
};

} // namespace Qorvane::Encoders
