#include "library/TolerantSort.h"

#include <gtest/gtest.h>

#include <cmath>
#include <optional>
#include <random>

using namespace Qorvane;

namespace {

using Dated = std::pair<int, std::optional<double>>; // identity, date

bool isEarlier(const Dated &a, const Dated &b)
{
    return a.second && b.second && *a.second < *b.second;
}

} // namespace

TEST(TolerantSort, agreesWithTheStandardSortWhereTheOrderIsSound)
{
    std::mt19937 random(7); // any seed will do; a fixed one makes a failure come back
    for (int size = 0; size < 70; ++size) {
        std::vector<Dated> items;
        for (int i = 0; i < size; ++i)
            items.emplace_back(i, double(random() % 9)); // few dates, so that ties show stability
        std::vector<Dated> expected = items;
        std::stable_sort(expected.begin(), expected.end(), isEarlier);
        tolerantSort(items, isEarlier);
        EXPECT_EQ(items, expected) << size;
    }
}

TEST(TolerantSort, losesNothingWhereTheOrderContradictsItself)
{
    std::mt19937 random(11);
    for (int size = 0; size < 200; ++size) {
        std::vector<Dated> items;
        for (int i = 0; i < size; ++i)
            items.emplace_back(i, random() % 3 ? std::optional(double(random() % 50)) : std::nullopt);
        tolerantSort(items, isEarlier);
        std::vector<bool> isSeen(size_t(size), false);
        for (const Dated &item : items)
            isSeen[size_t(item.first)] = true;
        EXPECT_EQ(std::count(isSeen.begin(), isSeen.end(), true), size);
    }
}

TEST(TolerantSort, survivesAComparisonThatIsAlwaysTrue)
{
    std::vector<int> items(1000, 1);
    tolerantSort(items, [](int, int) { return true; });
    EXPECT_EQ(items, std::vector<int>(1000, 1));
}

TEST(TolerantSort, itemsThatCompareWithNothingStayInPlace)
{
    std::vector<Dated> items{{0, std::nullopt}, {1, std::nullopt}, {2, std::nullopt}};
    const std::vector<Dated> before = items;
    tolerantSort(items, isEarlier);
    EXPECT_EQ(items, before);
}

TEST(TolerantSort, comparesNoMoreThanTheTheoreticalNumber)
{
    constexpr int size = 1 << 12;
    std::mt19937 random(3);
    std::vector<unsigned> items(size);
    std::generate(items.begin(), items.end(), [&] { return unsigned(random()); });
    long comparisons = 0;
    tolerantSort(items, [&](unsigned a, unsigned b) {
        ++comparisons;
        return a < b;
    });
    EXPECT_LE(comparisons, long(size) * 12); // n log2 n
}
