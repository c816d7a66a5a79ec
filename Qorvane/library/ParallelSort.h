#pragma once

#include <algorithm>
#include <cstddef>
#include <future>
#include <system_error>
#include <vector>

namespace Qorvane {

/// Where `partCount` parts (at least one) of `itemCount` items begin, which are about equally long, and where
/// the last ends.
inline std::vector<std::ptrdiff_t> partBounds(std::ptrdiff_t itemCount, std::ptrdiff_t partCount)
{
    std::vector<std::ptrdiff_t> bounds;
    for (std::ptrdiff_t part = 0; part <= partCount; ++part)
        bounds.push_back(itemCount * part / partCount);
    return bounds;
}

/// Calls `work` with the begin and the end of each part, each on a thread of its own where there is one to be
/// had, and waits for all of them. Passes on what one of them throws.
template <typename Work>
void onEachPart(const std::vector<std::ptrdiff_t> &bounds, const Work &work)
{
    std::vector<std::future<void>> others;
    for (std::size_t part = 1; part + 1 < bounds.size(); ++part) {
        const auto onThisPart = [&work, begin = bounds[part], end = bounds[part + 1]] { work(begin, end); };
        try {
            others.push_back(std::async(std::launch::async, onThisPart));
        } catch (const std::system_error &) {
            onThisPart();
        }
    }
    work(bounds[0], bounds[1]);
    for (std::future<void> &other : others)
        other.get();
}

/// A stable sort whose `partCount` parts are sorted side by side. `isBefore` is called on several threads at
/// once.
template <typename Item, typename IsBefore>
void parallelSort(std::vector<Item> &items, std::ptrdiff_t partCount, const IsBefore &isBefore)
{
    const std::vector<std::ptrdiff_t> bounds = partBounds(std::ptrdiff_t(items.size()), partCount);
    const auto at = [&](std::size_t part) { return items.begin() + bounds[part]; };
    onEachPart(bounds, [&](std::ptrdiff_t begin, std::ptrdiff_t end) {
        std::stable_sort(items.begin() + begin, items.begin() + end, isBefore);
    });
    const auto count = std::size_t(partCount);
    for (std::size_t width = 1; width < count; width *= 2) {
        for (std::size_t part = 0; part + width < count; part += 2 * width)
            std::inplace_merge(at(part), at(part + width), at(std::min(part + 2 * width, count)), isBefore);
    }
}

} // namespace Qorvane
