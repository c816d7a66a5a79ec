#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace Qorvane {

/// The indices of `values` from the largest value to the smallest; equal values, zeros of either sign among
/// them, keep their order. What isn't a number has a fixed place, too: at one end or the other by its sign.
/// Sorts by digits instead of comparing, in time proportional to the count. At most 2^32 values. Any thread.
std::vector<std::uint32_t> descendingOrder(std::span<const float> values);

} // namespace Qorvane
