#pragma once

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>
#include <vector>

namespace Qorvane {

/// A stable merge sort that stays within its bounds whatever `isBefore` answers. The standard sorts may read
/// past the end when a comparison contradicts itself, as one by date does where some dates are missing; here
/// an item moves ahead of another only when the two were compared and that came out true. Compares at most
/// n log2 n times.
template <typename Item, typename IsBefore>
void tolerantSort(std::vector<Item> &items, const IsBefore &isBefore)
{
    const std::size_t count = items.size();
    std::vector<Item> merged;
    merged.reserve(count);
    for (std::size_t width = 1; width < count; width *= 2) {
        merged.clear();
        for (std::size_t start = 0; start < count; start += 2 * width) {
            const std::size_t middle = std::min(start + width, count);
            const std::size_t end = std::min(start + 2 * width, count);
            std::size_t left = start;
            std::size_t right = middle;
            while (left < middle && right < end) {
                const bool isRightFirst = isBefore(items[right], items[left]);
                merged.push_back(std::move(items[isRightFirst ? right++ : left++]));
            }
            std::move(items.begin() + std::ptrdiff_t(left), items.begin() + std::ptrdiff_t(middle),
                      std::back_inserter(merged));
            std::move(items.begin() + std::ptrdiff_t(right), items.begin() + std::ptrdiff_t(end),
                      std::back_inserter(merged));
        }
        std::swap(items, merged);
    }
}

} // namespace Qorvane
