#include "semantic/SearchRanking.h"

#include "semantic/RankingRows.h"
#include "semantic/VectorScorer.h"
#include "support/LogCapture.h"
#include "support/Printing.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <limits>
#include <numeric>
#include <random>
#include <string>

using namespace Qorvane;

namespace {

const QString heading = QStringLiteral("🔍 搜索结果按排名显示:");

SearchCandidates candidatesOf(const std::vector<float> &similarities)
{
    SearchCandidates candidates;
    for (std::size_t i = 0; i < similarities.size(); ++i)
        candidates.append("/p/" + std::to_string(i) + ".jpg", similarities[i]);
    return candidates;
}

QStringList names(const SearchRanking &ranking)
{
    QStringList found;
    for (const SearchResult &result : ranking.results)
        found.append(result.url.lastPathComponent());
    return found;
}

template <int decimals>
std::string fixedText(float value)
{
    char text[longestFixedText];
    return {text, writeFixed<decimals>(text, value)};
}

std::string printedText(float value, int decimals)
{
    char text[64];
    const int length = std::snprintf(text, sizeof text, "%.*f", decimals, double(value));
    return {text, std::size_t(length)};
}

class SearchRankingTest : public testing::Test
{
protected:
    LogCapture log;
};

} // namespace

TEST_F(SearchRankingTest, thresholdIsInclusive)
{
    EXPECT_TRUE(rankCandidates(candidatesOf({0.1499F}), 20, CandidateOrigin::database).results.empty());
    const SearchRanking ranking = rankCandidates(candidatesOf({0.15F}), 20, CandidateOrigin::database);
    EXPECT_EQ(names(ranking), QStringList({QStringLiteral("0.jpg")}));
    EXPECT_EQ(ranking.countAboveThreshold, 1U);
    EXPECT_TRUE(rankCandidates(candidatesOf({std::nextafter(0.15F, 0.0F)}), 20, CandidateOrigin::database)
                    .results.empty());
}

TEST_F(SearchRankingTest, limitKeepsTheBestWhoseSharesAddUpToLessThanOne)
{
    std::vector<float> similarities(30);
    for (std::size_t i = 0; i < similarities.size(); ++i)
        similarities[i] = 0.2F + float((i * 7) % 30) / 10000;
    const SearchRanking ranking = rankCandidates(candidatesOf(similarities), 20, CandidateOrigin::database);
    ASSERT_EQ(ranking.results.size(), 20U);
    EXPECT_EQ(ranking.countAboveThreshold, 30U);
    double sum = 0;
    for (std::size_t i = 0; i < ranking.results.size(); ++i) {
        EXPECT_FLOAT_EQ(ranking.results[i].similarity, 0.2F + float(29 - i) / 10000);
        ASSERT_TRUE(ranking.results[i].probability);
        sum += double(*ranking.results[i].probability);
    }
    EXPECT_LT(sum, 0.999);
    EXPECT_GT(sum, 0.5);
}

TEST_F(SearchRankingTest, thresholdComesBeforeTheLimit)
{
    const SearchRanking ranking =
        rankCandidates(candidatesOf({0.1F, 0.3F, 0.14F, 0.2F}), 3, CandidateOrigin::database);
    EXPECT_EQ(names(ranking), QStringList({QStringLiteral("1.jpg"), QStringLiteral("3.jpg")}));
}

TEST_F(SearchRankingTest, aLimitOfZeroKeepsNothing)
{
    const SearchRanking ranking = rankCandidates(candidatesOf({0.5F}), 0, CandidateOrigin::database);
    EXPECT_TRUE(ranking.results.empty());
    EXPECT_EQ(ranking.countAboveThreshold, 1U);
}

TEST_F(SearchRankingTest, equalSimilaritiesKeepTheOrderGathered)
{
    std::vector<float> similarities(200, 0.3F);
    similarities[150] = 0.4F;
    const SearchRanking ranking = rankCandidates(candidatesOf(similarities), 200, CandidateOrigin::database);
    QStringList expected{QStringLiteral("150.jpg")};
    for (int i = 0; i < 200; ++i) {
        if (i != 150)
            expected.append(QStringLiteral("%1.jpg").arg(i));
    }
    EXPECT_EQ(names(ranking), expected);
}

TEST_F(SearchRankingTest, zeroAndNegativeZeroAreEqual)
{
    rankCandidates(candidatesOf({-0.0F, 0.0F, -0.0F}), 20, CandidateOrigin::database);
    EXPECT_EQ(log.lines(),
              QStringList({heading, QStringLiteral("🧮[DB] #1 sim=-0.0000 (0%) p=0.333 -> 0.jpg"),
                           QStringLiteral("🧮[DB] #2 sim=0.0000 (0%) p=0.333 -> 1.jpg"),
                           QStringLiteral("🧮[DB] #3 sim=-0.0000 (0%) p=0.333 -> 2.jpg")}));
}

TEST_F(SearchRankingTest, sameCandidatesGiveTheSameOrderAgain)
{
    std::mt19937 random(3);
    std::uniform_int_distribution<int> distribution(0, 20);
    std::vector<float> similarities(1000);
    for (float &similarity : similarities)
        similarity = float(distribution(random)) / 40;
    const SearchRanking first = rankCandidates(candidatesOf(similarities), 20, CandidateOrigin::database);
    EXPECT_EQ(first, rankCandidates(candidatesOf(similarities), 20, CandidateOrigin::database));
}

TEST_F(SearchRankingTest, logsARowForEveryCandidateAlsoBelowTheThreshold)
{
    SearchCandidates candidates;
    candidates.append("/bilder/山.jpg", 0.2599F);
    candidates.append(FileUrl::file(QStringLiteral("/bilder/a b.heic")), 0.75F);
    candidates.append("/x.jpg", -0.0311F);
    rankCandidates(candidates, 1, CandidateOrigin::database);
    EXPECT_EQ(log.lines(),
              QStringList({heading, QStringLiteral("🧮[DB] #1 sim=0.7500 (75%) p=1.000 -> a b.heic"),
                           QStringLiteral("🧮[DB] #2 sim=0.2599 (25%) p=0.000 -> 山.jpg"),
                           QStringLiteral("🧮[DB] #3 sim=-0.0311 (-3%) p=0.000 -> x.jpg")}));
}

TEST_F(SearchRankingTest, rowsOfTheMemorySearchBeginOtherwise)
{
    rankCandidates(candidatesOf({0.5F}), 1, CandidateOrigin::memory);
    EXPECT_EQ(log.lines(),
              QStringList({heading, QStringLiteral("🧮 #1 sim=0.5000 (50%) p=1.000 -> 0.jpg")}));
}

TEST_F(SearchRankingTest, rowsWithNamesOfAnyLengthAreWhole)
{
    // The rows are gathered into blocks of text; these fill them to all lengths, and some are longer.
    SearchCandidates candidates;
    QStringList expected{heading};
    for (int i = 0; i < 60; ++i) {
        const QString name(i % 20 == 7 ? 200'000 + i : 5'000 + 37 * i, QChar(u'a' + i % 26));
        candidates.append(FileUrl::file(QStringLiteral("/p/") + name), 1 - float(i) / 64);
        expected.append(QStringLiteral("-> ") + name);
    }
    rankCandidates(candidates, 1, CandidateOrigin::database);
    const QStringList lines = log.lines();
    ASSERT_EQ(lines.size(), expected.size());
    EXPECT_EQ(lines[0], heading);
    for (qsizetype i = 1; i < lines.size(); ++i) {
        EXPECT_TRUE(lines[i].startsWith(QStringLiteral("🧮[DB] #%1 sim=").arg(i)));
        EXPECT_TRUE(lines[i].endsWith(expected[i])) << "row " << i;
    }
}

TEST_F(SearchRankingTest, withoutCandidatesOnlyTheHeadingIsLogged)
{
    EXPECT_EQ(rankCandidates({}, 20, CandidateOrigin::database), SearchRanking());
    EXPECT_EQ(log.lines(), QStringList({heading}));
}

TEST_F(SearchRankingTest, aVectorWithoutLengthNeverPasses)
{
    const std::vector<float> zero(4, 0.0F);
    VectorScorer scorer({1, 0, 0, 0});
    scorer.add("/zero.jpg", std::as_bytes(std::span(zero)));
    EXPECT_TRUE(rankCandidates(scorer.finish(), 20, CandidateOrigin::database).results.empty());
    EXPECT_TRUE(log.contains(QStringLiteral("🧮[DB] #1 sim=0.0000 (0%) p=1.000 -> zero.jpg")));
}

TEST_F(SearchRankingTest, rowsOfAHundredThousandCandidatesStandInRank)
{
    constexpr std::size_t count = 100'000;
    std::mt19937 random(11);
    std::normal_distribution<float> distribution(0.1F, 0.1F);
    std::vector<float> similarities(count);
    for (float &similarity : similarities)
        similarity = distribution(random);
    const SearchCandidates candidates = candidatesOf(similarities);
    rankCandidates(candidates, 20, CandidateOrigin::database);

    const std::vector<float> shares = softmaxShares(similarities, defaultLogitScale);
    std::vector<std::size_t> order(count);
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(), [&](std::size_t left, std::size_t right) {
        return similarities[left] > similarities[right];
    });
    const QStringList lines = log.lines();
    ASSERT_EQ(lines.size(), qsizetype(count + 1));
    for (std::size_t rank = 1; rank <= count; ++rank) {
        const std::size_t index = order[rank - 1];
        char text[200];
        std::snprintf(text, sizeof text, "🧮[DB] #%zu sim=%.4f (%d%%) p=%.3f -> %zu.jpg", rank,
                      double(similarities[index]), int(similarities[index] * 100.0F), double(shares[index]),
                      index);
        ASSERT_EQ(lines[qsizetype(rank)], QString::fromUtf8(text));
    }
}

TEST(SoftmaxShares, addUpToOneOverAllCandidates)
{
    const std::vector<float> shares =
        softmaxShares(std::vector{0.30F, 0.29F, 0.10F, -0.5F}, defaultLogitScale);
    EXPECT_NEAR(std::accumulate(shares.begin(), shares.end(), 0.0), 1, 1e-6);
    // Logits that differ by one: shares that differ by a factor of e.
    EXPECT_NEAR(shares[0] / shares[1], std::exp(1.0), 1e-3);
    EXPECT_NEAR(std::log(double(shares[3]) / double(shares[0])), -80, 1e-2);
}

TEST(SoftmaxShares, areOneOverTheCountForEqualCandidates)
{
    EXPECT_EQ(softmaxShares(std::vector{0.2F, 0.2F, 0.2F, 0.2F}, defaultLogitScale),
              std::vector<float>(4, 0.25F));
}

TEST(SoftmaxShares, areZeroWhenTheWeightsAddUpToNothing)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(softmaxShares(std::vector{0.2F, nan, 0.3F}, defaultLogitScale), std::vector<float>(3, 0.0F));
    EXPECT_TRUE(softmaxShares({}, defaultLogitScale).empty());
}

TEST(RankingRows, fixedNumbersAreThoseOfPrintf)
{
    std::vector<float> values{0.0F,       -0.0F,
                              1.0F,       -1.0F,
                              0.15F,      0.1499F,
                              0.2599F,    0.99995F,
                              0.999949F,  9.9995F,
                              0.00005F,   -0.00005F,
                              0.00004F,   -0.00004F,
                              1e-30F,     -1e-45F,
                              123.456F,   8192.5F,
                              1e6F,       1.5e9F,
                              9e11F,      1e15F,
                              1e20F,      3.4e38F,
                              -3.4e38F,   std::numeric_limits<float>::denorm_min(),
                              429496.7F,  429496.75F,
                              4294967.0F, 4294967.5F};
    // Numbers that lie exactly between two results: odd multiples of 1/32 and 1/16, up to both rounding
    // directions.
    for (int i = -4096; i <= 4096; ++i) {
        values.push_back(float(i) / 32);
        values.push_back(float(i) / 16);
        values.push_back(float(i) / 20000);
        values.push_back(float(i) / 2000);
    }
    std::mt19937 random(5);
    std::uniform_real_distribution<float> unit(-1, 1);
    std::uniform_int_distribution<std::uint32_t> bits;
    for (int i = 0; i < 200'000; ++i) {
        values.push_back(unit(random));
        const float any = std::bit_cast<float>(bits(random));
        if (std::isfinite(any))
            values.push_back(any);
    }
    for (const float value : values) {
        ASSERT_EQ(fixedText<4>(value), printedText(value, 4)) << value;
        ASSERT_EQ(fixedText<3>(value), printedText(value, 3)) << value;
    }
}

TEST(RankingRows, percentagesAreTruncatedTowardsZero)
{
    EXPECT_EQ(truncatedPercentage(0.2599F), 25);
    EXPECT_EQ(truncatedPercentage(-0.2599F), -25);
    EXPECT_EQ(truncatedPercentage(0.0099F), 0);
    EXPECT_EQ(truncatedPercentage(-0.0099F), 0);
    EXPECT_EQ(truncatedPercentage(1.0F), 100);
}

TEST(RankingRows, onlyWhatFitsA64BitIntegerHasAPercentage)
{
    EXPECT_TRUE(hasPercentage(9e16F));
    EXPECT_FALSE(hasPercentage(1e17F));
    EXPECT_TRUE(hasPercentage(-9e16F));
    EXPECT_FALSE(hasPercentage(-1e17F));
    EXPECT_FALSE(hasPercentage(std::numeric_limits<float>::infinity()));
    EXPECT_FALSE(hasPercentage(std::numeric_limits<float>::quiet_NaN()));
}

TEST(SearchRankingDeathTest, aSimilarityWithoutPercentageEndsTheProgram)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    for (const float similarity :
         {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(), 1e20F, -1e20F})
        EXPECT_DEATH(rankCandidates(candidatesOf({0.5F, similarity}), 20, CandidateOrigin::database),
                     "is no integer");
}
