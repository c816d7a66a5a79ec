#pragma once

#include "semantic/SearchCandidates.h"
#include "semantic/SearchRanking.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace Qorvane {

/// Logs the heading and a row for every candidate, in the order that the indices in `order` give; `shares` go
/// by the candidates' own index. The rows are written by hand and in blocks, since there is one for each
/// image of the library at every keystroke in the search field. Any thread.
void logRankingRows(const SearchCandidates &candidates, std::span<const std::uint32_t> order,
                    std::span<const float> shares, CandidateOrigin origin);

/// Writes `value` with exactly `decimals` (3 or 4) digits behind the ".", as printf does, and gives the end
/// of what was written: at most `longestFixedText` bytes.
template <int decimals>
char *writeFixed(char *target, float value);

/// A sign, the 39 digits of the largest 32-bit float, the point and four decimals.
inline constexpr std::size_t longestFixedText = 45;

/// `similarity` times 100 in 32-bit floats, truncated towards zero. A result that is no 64-bit integer ends
/// the program.
std::int64_t truncatedPercentage(float similarity);

/// Whether `truncatedPercentage` has a result.
bool hasPercentage(float similarity);

} // namespace Qorvane
