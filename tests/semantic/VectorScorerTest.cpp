#include "semantic/VectorScorer.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

using namespace Qorvane;

namespace {

std::vector<float> randomVector(std::mt19937 &random, std::size_t length)
{
    std::normal_distribution<float> distribution;
    std::vector<float> values(length);
    for (float &value : values)
        value = distribution(random);
    return values;
}

} // namespace

TEST(VectorScorer, givesEveryRowItsCosineInTheOrderAdded)
{
    std::mt19937 random(7);
    for (const std::size_t rowCount : {0U, 1U, 15U, 16U, 17U, 32U, 45U}) {
        const std::vector<float> query = randomVector(random, 512);
        VectorScorer scorer(query);
        std::vector<float> expected;
        for (std::size_t row = 0; row < rowCount; ++row) {
            const std::vector<float> vector = randomVector(random, 512);
            expected.push_back(cosineSimilarity(vector, query));
            scorer.add("/p/" + std::to_string(row), std::as_bytes(std::span(vector)));
        }
        const SearchCandidates candidates = scorer.finish();
        ASSERT_EQ(candidates.size(), rowCount);
        for (std::size_t row = 0; row < rowCount; ++row) {
            EXPECT_EQ(candidates.name(row), std::to_string(row));
            EXPECT_EQ(candidates.similarity(row), expected[row]);
        }
    }
}

TEST(VectorScorer, passesOverRowsOfAnotherLength)
{
    const std::vector<float> two{1, 0};
    const std::vector<float> three{1, 0, 0};
    VectorScorer scorer(two);
    scorer.add("/a", std::as_bytes(std::span(three)));
    scorer.add("/b", std::as_bytes(std::span(two)));
    scorer.add("/c", {});
    const SearchCandidates candidates = scorer.finish();
    ASSERT_EQ(candidates.size(), 1U);
    EXPECT_EQ(candidates.url(0), FileUrl::file(QStringLiteral("/b")));
}

TEST(VectorScorer, rowsOfAnotherLengthInsideABlockLeaveItsOtherRowsAlone)
{
    std::mt19937 random(9);
    const std::vector<float> query = randomVector(random, 512);
    constexpr std::size_t added = 3 * CosineBlock::rowCount;
    // At the beginning of a block, in its middle, at its end, and where the block would be full with it.
    for (const std::size_t strange : {std::size_t(0), CosineBlock::rowCount / 2, CosineBlock::rowCount - 1,
                                      CosineBlock::rowCount, added - 1}) {
        for (const std::size_t length : {0U, 511U, 513U, 1024U}) {
            VectorScorer scorer(query);
            std::vector<float> expected;
            std::vector<std::string> names;
            for (std::size_t row = 0; row < added; ++row) {
                const std::vector<float> vector = randomVector(random, row == strange ? length : 512);
                scorer.add("/p/" + std::to_string(row), std::as_bytes(std::span(vector)));
                if (row == strange)
                    continue;
                expected.push_back(cosineSimilarity(vector, query));
                names.push_back(std::to_string(row));
            }
            const SearchCandidates candidates = scorer.finish();
            ASSERT_EQ(candidates.size(), added - 1);
            for (std::size_t i = 0; i < candidates.size(); ++i) {
                EXPECT_EQ(candidates.name(i), names[i]);
                EXPECT_EQ(candidates.similarity(i), expected[i]);
            }
        }
    }
}

TEST(VectorScorer, countsWholeFloatsOnly)
{
    std::byte bytes[10]{};
    const float one = 1;
    std::memcpy(bytes, &one, sizeof one);
    VectorScorer scorer({1, 0});
    scorer.add("/a", bytes);
    const SearchCandidates candidates = scorer.finish();
    ASSERT_EQ(candidates.size(), 1U);
    EXPECT_EQ(candidates.similarity(0), 1);
}

TEST(VectorScorer, readsRowsThatAreNotAligned)
{
    const std::vector<float> query{3, 4};
    std::byte bytes[9]{};
    std::memcpy(bytes + 1, query.data(), 8);
    VectorScorer scorer(query);
    scorer.add("/a", std::span(bytes).subspan(1));
    EXPECT_EQ(scorer.finish().similarity(0), 1);
}

TEST(VectorScorer, isEmptyAfterFinishing)
{
    const std::vector<float> query{1};
    VectorScorer scorer(query);
    scorer.add("/a", std::as_bytes(std::span(query)));
    EXPECT_EQ(scorer.finish().size(), 1U);
    EXPECT_EQ(scorer.finish().size(), 0U);
}
