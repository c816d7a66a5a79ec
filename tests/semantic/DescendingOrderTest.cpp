#include "semantic/DescendingOrder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <numeric>
#include <random>

using namespace Qorvane;
using testing::ElementsAre;

namespace {

std::vector<std::uint32_t> sortedByComparing(const std::vector<float> &values)
{
    std::vector<std::uint32_t> order(values.size());
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(),
                     [&](std::uint32_t left, std::uint32_t right) { return values[left] > values[right]; });
    return order;
}

} // namespace

TEST(DescendingOrder, largestComesFirst)
{
    EXPECT_THAT(descendingOrder(std::vector{0.1F, -0.5F, 0.9F, 0.0F}), ElementsAre(2, 0, 3, 1));
}

TEST(DescendingOrder, equalValuesKeepTheirOrder)
{
    EXPECT_THAT(descendingOrder(std::vector{0.3F, 0.5F, 0.3F, 0.5F, 0.3F}), ElementsAre(1, 3, 0, 2, 4));
    EXPECT_THAT(descendingOrder(std::vector{-0.0F, 0.0F, -0.0F}), ElementsAre(0, 1, 2));
}

TEST(DescendingOrder, nothingAndOne)
{
    EXPECT_TRUE(descendingOrder({}).empty());
    EXPECT_THAT(descendingOrder(std::vector{0.5F}), ElementsAre(0));
}

TEST(DescendingOrder, infinitiesStandAtTheEnds)
{
    const float infinity = std::numeric_limits<float>::infinity();
    EXPECT_THAT(descendingOrder(std::vector{-infinity, 1.0F, infinity, -1.0F}), ElementsAre(2, 1, 3, 0));
}

TEST(DescendingOrder, agreesWithAStableSortByComparing)
{
    std::mt19937 random(17);
    std::uniform_int_distribution<std::uint32_t> bits;
    std::uniform_int_distribution<int> coarse(-20, 20);
    for (const std::size_t count : {2U, 100U, 5000U, 100'000U}) {
        std::vector<float> any(count);
        std::vector<float> many(count);
        for (std::size_t i = 0; i < count; ++i) {
            do
                any[i] = std::bit_cast<float>(bits(random));
            while (std::isnan(any[i]));
            many[i] = float(coarse(random)) / 20;
        }
        EXPECT_EQ(descendingOrder(any), sortedByComparing(any));
        EXPECT_EQ(descendingOrder(many), sortedByComparing(many));
    }
}

TEST(DescendingOrder, whatIsNotANumberLosesNobody)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    std::vector<std::uint32_t> order = descendingOrder(std::vector{0.1F, nan, 0.3F, -nan});
    std::sort(order.begin(), order.end());
    EXPECT_THAT(order, ElementsAre(0, 1, 2, 3));
}
