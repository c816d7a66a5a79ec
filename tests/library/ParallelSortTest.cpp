#include "library/ParallelSort.h"

#include <gtest/gtest.h>

#include <random>
#include <stdexcept>
#include <utility>

using namespace Qorvane;

namespace {

using Item = std::pair<int, int>; // what decides, and the place from before

std::vector<Item> manyEqualItems(int count)
{
    std::mt19937 random(7);
    std::vector<Item> items;
    for (int i = 0; i < count; ++i)
        items.emplace_back(int(random() % 20), i);
    return items;
}

bool isBefore(const Item &a, const Item &b)
{
    return a.first < b.first;
}

} // namespace

TEST(ParallelSort, isTheStableSortWhateverThePartsAre)
{
    for (const int count : {0, 1, 2, 7, 1'000}) {
        std::vector<Item> expected = manyEqualItems(count);
        std::stable_sort(expected.begin(), expected.end(), isBefore);
        for (const int parts : {1, 2, 3, 5, 8}) {
            std::vector<Item> items = manyEqualItems(count);
            parallelSort(items, parts, isBefore);
            EXPECT_EQ(items, expected) << count << " items in " << parts << " parts";
        }
    }
}

TEST(ParallelSort, passesOnWhatAPartThrows)
{
    for (const int culprit : {0, 250, 500, 999}) {
        std::vector<Item> items = manyEqualItems(1'000);
        EXPECT_THROW(parallelSort(items, 4,
                                  [culprit](const Item &a, const Item &b) {
                                      if (a.second == culprit || b.second == culprit)
                                          throw std::runtime_error("incomparable");
                                      return isBefore(a, b);
                                  }),
                     std::runtime_error);
    }
}

TEST(ParallelSort, aPartIsDealtWithOnce)
{
    std::vector<int> visits(1'003, 0);
    onEachPart(partBounds(std::ptrdiff_t(visits.size()), 5),
               [&visits](std::ptrdiff_t begin, std::ptrdiff_t end) {
                   for (std::ptrdiff_t i = begin; i < end; ++i)
                       ++visits[std::size_t(i)];
               });
    EXPECT_EQ(visits, std::vector<int>(1'003, 1));
}
