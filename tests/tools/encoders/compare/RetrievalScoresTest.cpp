#include "encoders/compare/RetrievalScores.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>

using namespace Qorvane::Encoders;

namespace {

using Order = std::vector<std::size_t>;

// The definition, word for word and in quadratic time: for each relevant candidate, count anew.
double averagePrecisionByDefinition(const Order &order, const std::vector<bool> &isRelevant)
{
    double sum = 0;
    int relevant = 0;
    for (std::size_t candidate = 0; candidate < isRelevant.size(); ++candidate) {
        if (!isRelevant[candidate])
            continue;
        ++relevant;
        const auto end = std::find(order.begin(), order.end(), candidate) + 1;
        const auto right =
            std::count_if(order.begin(), end, [&](std::size_t index) { return isRelevant[index]; });
        sum += double(right) / double(end - order.begin());
    }
    return sum / relevant;
}

} // namespace

TEST(RetrievalScores, averagePrecisionOfASmallCaseByHand)
{
    // Right, wrong, right, wrong: (1/1 + 2/3) / 2.
    EXPECT_DOUBLE_EQ(averagePrecision(Order{2, 0, 1, 3}, {false, true, true, false}).value(),
                     (1 + 2.0 / 3) / 2);
    EXPECT_DOUBLE_EQ(averagePrecision(Order{0, 1}, {true, true}).value(), 1);
    EXPECT_DOUBLE_EQ(averagePrecision(Order{1, 2, 0}, {true, false, false}).value(), 1.0 / 3);
}

TEST(RetrievalScores, withoutARelevantCandidateThereIsNoAveragePrecision)
{
    EXPECT_EQ(averagePrecision(Order{0, 1}, {false, false}), std::nullopt);
    EXPECT_EQ(averagePrecision(Order{}, {}), std::nullopt);
}

TEST(RetrievalScores, averagePrecisionIsThatOfItsDefinition)
{
    std::mt19937 random(7);
    for (int round = 0; round < 200; ++round) {
        Order order(1 + random() % 40);
        std::iota(order.begin(), order.end(), 0);
        std::shuffle(order.begin(), order.end(), random);
        std::vector<bool> isRelevant(order.size());
        for (std::size_t index = 0; index < isRelevant.size(); ++index)
            isRelevant[index] = random() % 3 == 0;
        isRelevant[random() % isRelevant.size()] = true;
        ASSERT_NEAR(averagePrecision(order, isRelevant).value(),
                    averagePrecisionByDefinition(order, isRelevant), 1e-12);
    }
}

TEST(RetrievalScores, ranksBeginWithOne)
{
    EXPECT_EQ(rankOf(Order{2, 0, 1}, 2), 1U);
    EXPECT_EQ(rankOf(Order{2, 0, 1}, 1), 3U);
    EXPECT_EQ(rankOf(Order{2, 0, 1}, 5), std::nullopt);
}

TEST(RetrievalScores, recallCountsRanksUpToTheLimit)
{
    const Order ranks{1, 5, 6, 10, 11};
    EXPECT_DOUBLE_EQ(recallAt(1, ranks), 0.2);
    EXPECT_DOUBLE_EQ(recallAt(5, ranks), 0.4);
    EXPECT_DOUBLE_EQ(recallAt(10, ranks), 0.8);
    EXPECT_DOUBLE_EQ(recallAt(10, Order{}), 0);
}

TEST(RetrievalScores, theMedianIsTheMiddleOrTheMeanOfTheMiddleTwo)
{
    EXPECT_DOUBLE_EQ(medianRank({9, 1, 4}), 4);
    EXPECT_DOUBLE_EQ(medianRank({9, 1, 4, 7}), 5.5);
    EXPECT_DOUBLE_EQ(medianRank({}), 0);
}

TEST(RetrievalScores, theMeanOfNothingIsZero)
{
    EXPECT_DOUBLE_EQ(mean(std::vector{1.0, 2.0, 6.0}), 3);
    EXPECT_DOUBLE_EQ(mean({}), 0);
}

TEST(RetrievalScores, aCutAddsUpOverQueriesAndCountsOnlyWhatTheLimitHasRoomFor)
{
    CutScore cut;
    // Two of three shown are right, and of the four right ones only three have room.
    cut.add(Order{0, 1, 4}, {true, true, true, true, false}, 3);
    EXPECT_DOUBLE_EQ(cut.precision(), 2.0 / 3);
    EXPECT_DOUBLE_EQ(cut.recall(), 2.0 / 3);
    // Nothing shown, one right.
    cut.add(Order{}, {true, false, false, false, false}, 3);
    EXPECT_EQ(cut, (CutScore{.queries = 2, .hits = 3, .relevantHits = 2, .reachable = 4}));
    EXPECT_DOUBLE_EQ(cut.precision(), 2.0 / 3);
    EXPECT_DOUBLE_EQ(cut.recall(), 0.5);
}

TEST(RetrievalScores, aCutWithoutHitsHasNeitherPrecisionNorRecall)
{
    EXPECT_DOUBLE_EQ(CutScore{}.precision(), 0);
    EXPECT_DOUBLE_EQ(CutScore{}.recall(), 0);
}
