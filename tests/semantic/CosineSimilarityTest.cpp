#include "semantic/CosineSimilarity.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <random>
#include <vector>

using namespace Qorvane;

namespace {

constexpr std::size_t lengths[] = {0, 1, 2, 3, 4, 5, 7, 8, 9, 511, 512, 513, 1024};

std::vector<float> filled(std::size_t count, const std::function<float()> &next)
{
    std::vector<float> values(count);
    for (float &value : values)
        value = next();
    return values;
}

bool haveSameBits(float left, float right)
{
    if (std::isnan(left) || std::isnan(right))
        return std::isnan(left) && std::isnan(right);
    return std::bit_cast<std::uint32_t>(left) == std::bit_cast<std::uint32_t>(right);
}

class CosineBlockTest : public testing::TestWithParam<CosineBlock::Instructions>
{
protected:
    // Every lane against the plain loop, for blocks of rows that `next` makes.
    void compareWithPlainLoop(const std::function<float()> &next, int blocks = 20)
    {
        for (const std::size_t length : lengths) {
            for (int block = 0; block < blocks; ++block) {
                const std::vector<float> query = filled(length, next);
                const CosineBlock scorer(query, GetParam());
                const std::vector<float> rows = filled(CosineBlock::rowCount * scorer.stride(), next);
                const CosineBlock::Similarities scores = scorer.score(rows);
                for (std::size_t row = 0; row < CosineBlock::rowCount; ++row) {
                    const float expected =
                        cosineSimilarity(query, std::span(rows).subspan(row * scorer.stride(), length));
                    ASSERT_TRUE(haveSameBits(scores[row], expected))
                        << "length " << length << " row " << row << ": " << scores[row] << " for "
                        << expected;
                }
            }
        }
    }

    std::mt19937 m_random{20240607};
};

} // namespace

TEST(CosineSimilarity, ofAVectorWithItselfIsOne)
{
    EXPECT_FLOAT_EQ(cosineSimilarity(std::vector{0.6F, 0.8F}, std::vector{0.6F, 0.8F}), 1);
}

TEST(CosineSimilarity, dividesByTheNormsOfVectorsThatAreNotOfUnitLength)
{
    EXPECT_FLOAT_EQ(cosineSimilarity(std::vector{3.0F, 4.0F}, std::vector{4.0F, 3.0F}), 24.0F / 25.0F);
    EXPECT_FLOAT_EQ(cosineSimilarity(std::vector{3.0F, 0.0F}, std::vector{-5.0F, 0.0F}), -1);
}

TEST(CosineSimilarity, isZeroWithoutElements)
{
    EXPECT_EQ(cosineSimilarity({}, {}), 0);
}

TEST(CosineSimilarity, isZeroWhenEitherVectorHasNoLength)
{
    const std::vector<float> zero(3, 0.0F);
    const std::vector<float> some{1, 2, 3};
    EXPECT_EQ(cosineSimilarity(zero, some), 0);
    EXPECT_EQ(cosineSimilarity(some, zero), 0);
    // Squares that vanish below the smallest float count as no length, too.
    EXPECT_EQ(cosineSimilarity(std::vector<float>(3, 1e-30F), some), 0);
}

TEST(CosineSimilarity, isZeroWithNotANumberAmongTheElements)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(cosineSimilarity(std::vector{1.0F, nan}, std::vector{1.0F, 1.0F}), 0);
}

TEST(CosineSimilarity, addsUpInIndexOrderIn32BitFloats)
{
    // 2^24 + 1 + 1 is lost bit by bit in this order and wouldn't be in another, nor in double precision.
    const std::vector<float> row{4096, 1, 1};
    const float squares = 16777216;
    const float expected = squares / (std::sqrt(squares) * std::sqrt(squares));
    EXPECT_TRUE(haveSameBits(cosineSimilarity(row, row), expected));
    const std::vector<float> reversed{1, 1, 4096};
    EXPECT_TRUE(haveSameBits(cosineSimilarity(reversed, row),
                             (4096.0F + 1.0F + 4096.0F) / (std::sqrt(16777218.0F) * std::sqrt(squares))));
}

TEST(CosineSimilarity, comparesTheShorterLength)
{
    EXPECT_FLOAT_EQ(cosineSimilarity(std::vector{3.0F, 4.0F, 100.0F}, std::vector{4.0F, 3.0F}),
                    24.0F / 25.0F);
}

TEST_P(CosineBlockTest, hasTheBitsOfThePlainLoopOnUnitVectors)
{
    std::normal_distribution<float> distribution(0, 0.044F);
    compareWithPlainLoop([&] { return distribution(m_random); });
}

TEST_P(CosineBlockTest, hasTheBitsOfThePlainLoopOnAnyBits)
{
    std::uniform_int_distribution<std::uint32_t> distribution;
    compareWithPlainLoop([&] { return std::bit_cast<float>(distribution(m_random)); });
}

TEST_P(CosineBlockTest, hasTheBitsOfThePlainLoopOnDenormalNumbers)
{
    std::uniform_int_distribution<std::uint32_t> denormal(0, 0x7fffff);
    compareWithPlainLoop([&] { return std::bit_cast<float>(denormal(m_random)); });
    // Around the square root of the smallest numbers it is the squares that are denormal.
    std::uniform_real_distribution<float> small(-1e-19F, 1e-19F);
    compareWithPlainLoop([&] { return small(m_random); });
}

TEST_P(CosineBlockTest, hasTheBitsOfThePlainLoopOnZeros)
{
    std::bernoulli_distribution isNegative;
    compareWithPlainLoop([&] { return isNegative(m_random) ? -0.0F : 0.0F; }, 2);
}

TEST_P(CosineBlockTest, hasTheBitsOfThePlainLoopWithInfinitiesAndNotNumbers)
{
    std::uniform_int_distribution<int> die(0, 400);
    compareWithPlainLoop([&] {
        switch (die(m_random)) {
        case 0:
            return std::numeric_limits<float>::infinity();
        case 1:
            return -std::numeric_limits<float>::infinity();
        case 2:
            return std::numeric_limits<float>::quiet_NaN();
        case 3:
            return 3e38F;
        default:
            return float(die(m_random)) / 400;
        }
    });
}

TEST_P(CosineBlockTest, keepsRowsApart)
{
    const CosineBlock scorer({2, 0}, GetParam());
    std::vector<float> rows(CosineBlock::rowCount * scorer.stride());
    CosineBlock::Similarities expected;
    for (std::size_t row = 0; row < CosineBlock::rowCount; ++row) {
        const float angle = 0.3F * float(row);
        rows[row * scorer.stride()] = std::cos(angle);
        rows[row * scorer.stride() + 1] = std::sin(angle);
        expected[row] = std::cos(angle);
    }
    const CosineBlock::Similarities scores = scorer.score(rows);
    for (std::size_t row = 0; row < CosineBlock::rowCount; ++row)
        EXPECT_NEAR(scores[row], expected[row], 1e-6);
}

INSTANTIATE_TEST_SUITE_P(Instructions, CosineBlockTest,
                         testing::Values(CosineBlock::Instructions::portable,
                                         CosineBlock::Instructions::fastest),
                         [](const auto &parameter) {
                             return parameter.param == CosineBlock::Instructions::portable ? "portable"
                                                                                           : "fastest";
                         });
