#include "encoders/compare/Comparison.h"

#include "encoders/compare/ComparisonReport.h"

#include <QHash>
#include <QJsonDocument>
#include <QJsonObject>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

using namespace Qorvane::Encoders;
using testing::DoubleNear;

namespace {

using Vectors = QHash<QString, std::vector<float>>;

EmbedText textsFrom(const Vectors &vectors)
{
    return [vectors](const QString &text) -> Outcome<std::vector<float>> {
        if (!vectors.contains(text))
            return problem(QStringLiteral("a known text"), text, QStringLiteral("-"));
        return vectors[text];
    };
}

std::vector<float> atAngle(double degrees)
{
    const double radians = degrees * 3.14159265358979323846 / 180;
    return {float(std::cos(radians)), float(std::sin(radians))};
}

QStringList texts(std::initializer_list<const char *> list)
{
    QStringList result;
    for (const char *text : list)
        result.append(QString::fromUtf8(text));
    return result;
}

// An answer worked out the slow way, in double precision, by sorting.
std::vector<std::size_t> bruteOrder(const std::vector<EmbeddedPicture> &pictures,
                                    const std::vector<float> &text, std::vector<double> &similarities)
{
    for (const EmbeddedPicture &picture : pictures) {
        double dot = 0;
        double left = 0;
        double right = 0;
        for (std::size_t axis = 0; axis < text.size(); ++axis) {
            dot += double(text[axis]) * double(picture.vector[axis]);
            left += double(text[axis]) * double(text[axis]);
            right += double(picture.vector[axis]) * double(picture.vector[axis]);
        }
        similarities.push_back(dot / std::sqrt(left * right));
    }
    std::vector<std::size_t> order(pictures.size());
    for (std::size_t index = 0; index < order.size(); ++index)
        order[index] = index;
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return similarities[a] > similarities[b]; });
    return order;
}

} // namespace

TEST(Comparison, categoriesOfASmallCaseByHand)
{
    // Seen from "dog" at 0 degrees the order is dog 10, cat 20, dog 40, dog 85 (beyond the cut), plain 100.
    const std::vector<EmbeddedPicture> pictures{
        {texts({"dog"}), {}, atAngle(10)},  {texts({"dog"}), {}, atAngle(40)},
        {texts({"dog"}), {}, atAngle(85)},  {texts({"cat"}), {}, atAngle(20)},
        {texts({"cat"}), {}, atAngle(100)}, {{}, texts({"a dog"}), atAngle(0)},
    };
    const auto result =
        compareSet(pictures, {},
                   textsFrom({{QStringLiteral("dog"), atAngle(0)}, {QStringLiteral("a dog"), atAngle(0)}}));
    ASSERT_TRUE(result);
    const CategoryScores &scores = result->categories;
    EXPECT_EQ(scores.pictures, 5U);          // the one without labels is no candidate
    ASSERT_EQ(scores.categories.size(), 1U); // two cats make no category
    EXPECT_EQ(scores.categories.front().name, QStringLiteral("dog"));
    EXPECT_NEAR(scores.meanAveragePrecision, (1 + 2.0 / 3 + 3.0 / 4) / 3, 1e-12);
    EXPECT_EQ(scores.cut, (CutScore{.queries = 1, .hits = 3, .relevantHits = 2, .reachable = 3}));
}

TEST(Comparison, captionsOfASmallCaseByHand)
{
    const std::vector<EmbeddedPicture> pictures{
        {{}, texts({"near", "far"}), atAngle(0)},
        {{}, texts({"far"}), atAngle(60)},
        {texts({"dog"}), {}, atAngle(1)},
    };
    const auto result =
        compareSet(pictures, {},
                   textsFrom({{QStringLiteral("near"), atAngle(5)}, {QStringLiteral("far"), atAngle(50)}}));
    ASSERT_TRUE(result);
    // First captions: "near" finds its picture first, "far" the second one first. All: the first one's "far"
    // finds it second. The picture without a caption stands in nobody's way.
    EXPECT_EQ(result->firstCaptions.captions, 2U);
    EXPECT_DOUBLE_EQ(result->firstCaptions.recallAt1, 1);
    EXPECT_DOUBLE_EQ(result->firstCaptions.medianRank, 1);
    EXPECT_EQ(result->allCaptions.captions, 3U);
    EXPECT_NEAR(result->allCaptions.recallAt1, 2.0 / 3, 1e-12);
    EXPECT_DOUBLE_EQ(result->allCaptions.recallAt5, 1);
    EXPECT_EQ(result->allCaptions.pictures, 2U);
}

TEST(Comparison, nonsenseIsSearchedForAmongAllPicturesWithCutAndLimit)
{
    std::vector<EmbeddedPicture> pictures(30, {texts({"dog"}), {}, atAngle(10)});
    pictures.push_back({{}, {}, atAngle(90)});
    const auto result = compareSet(pictures, texts({"near", "opposite"}),
                                   textsFrom({{QStringLiteral("dog"), atAngle(0)},
                                              {QStringLiteral("near"), atAngle(60)},
                                              {QStringLiteral("opposite"), atAngle(170)}}));
    ASSERT_TRUE(result);
    ASSERT_EQ(result->nonsense.size(), 2U);
    EXPECT_EQ(result->nonsense[0].hits, searchLimit);
    // cos 80 is 0.174, cos 160 far below.
    EXPECT_EQ(result->nonsense[1].hits, 1U);
}

TEST(Comparison, allFiguresAreThoseOfAnIndependentComputation)
{
    std::mt19937 random(11);
    std::normal_distribution<float> normal;
    const auto randomVector = [&] {
        std::vector<float> vector(8);
        std::ranges::generate(vector, [&] { return normal(random); });
        return vector;
    };
    const QStringList names = texts({"a", "b", "c", "d"});
    Vectors vectors;
    for (const QString &name : names)
        vectors[name] = randomVector();
    std::vector<EmbeddedPicture> pictures;
    for (int index = 0; index < 60; ++index) {
        EmbeddedPicture picture{{names[qsizetype(random() % 4)]}, {}, randomVector()};
        const QString caption = QStringLiteral("caption %1").arg(index);
        picture.captions.append(caption);
        vectors[caption] = randomVector();
        pictures.push_back(picture);
    }
    const auto result = compareSet(pictures, {}, textsFrom(vectors));
    ASSERT_TRUE(result);

    double precisions = 0;
    CutScore cut;
    for (const QString &name : names) {
        std::vector<double> similarities;
        const auto order = bruteOrder(pictures, vectors[name], similarities);
        double sum = 0;
        int found = 0;
        int shown = 0;
        for (std::size_t place = 0; place < order.size(); ++place) {
            const bool isRight = pictures[order[place]].labels.contains(name);
            if (isRight)
                sum += double(++found) / double(place + 1);
            if (similarities[order[place]] >= 0.15 && shown < 20) {
                ++shown;
                ++cut.hits;
                cut.relevantHits += isRight ? 1 : 0;
            }
        }
        ++cut.queries;
        cut.reachable += std::size_t(std::min(found, 20));
        precisions += sum / found;
    }
    EXPECT_NEAR(result->categories.meanAveragePrecision, precisions / 4, 1e-9);
    EXPECT_EQ(result->categories.cut, cut);

    std::vector<std::size_t> ranks;
    for (std::size_t index = 0; index < pictures.size(); ++index) {
        std::vector<double> similarities;
        const auto order = bruteOrder(pictures, vectors[pictures[index].captions.first()], similarities);
        ranks.push_back(std::size_t(std::ranges::find(order, index) - order.begin()) + 1);
    }
    const auto within = [&ranks](std::size_t limit) {
        return double(std::ranges::count_if(ranks, [limit](std::size_t rank) { return rank <= limit; })) / 60;
    };
    std::ranges::sort(ranks);
    EXPECT_NEAR(result->firstCaptions.recallAt1, within(1), 1e-12);
    EXPECT_NEAR(result->firstCaptions.recallAt5, within(5), 1e-12);
    EXPECT_NEAR(result->firstCaptions.recallAt10, within(10), 1e-12);
    EXPECT_NEAR(result->firstCaptions.medianRank, double(ranks[29] + ranks[30]) / 2, 1e-12);
}

TEST(Comparison, aTextWithoutAVectorEndsItWithItsProblem)
{
    const std::vector<EmbeddedPicture> pictures{{{}, texts({"unknown"}), atAngle(0)}};
    const auto result = compareSet(pictures, {}, textsFrom({}));
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error().found, QStringLiteral("unknown"));
}

TEST(Comparison, progressEndsAtOne)
{
    const std::vector<EmbeddedPicture> pictures{{{}, texts({"one", "two"}), atAngle(0)}};
    std::vector<double> shown;
    const auto result = compareSet(
        pictures, texts({"nonsense", "more"}),
        [](const QString &) -> Outcome<std::vector<float>> { return atAngle(0); },
        [&shown](double done) { shown.push_back(done); });
    ASSERT_TRUE(result);
    EXPECT_THAT(shown, testing::ElementsAre(0.25, 0.5, 0.75, 1.0));
}

TEST(Comparison, theReportSaysWhatWasScoredAndWhatNothingEntered)
{
    ComparisonResult result;
    EXPECT_EQ(comparisonLines(result),
              texts({"categories: no label is shared by 3 pictures", "captions: no picture has one"}));
    result.categories = {
        .pictures = 9,
        .categories = {{.name = QStringLiteral("dog"), .pictures = 4, .averagePrecision = 0.5, .cut = {}}},
        .meanAveragePrecision = 0.5,
        .cut = {.queries = 1, .hits = 4, .relevantHits = 3, .reachable = 4}};
    result.nonsense = {{QStringLiteral("xx"), 2}};
    const QStringList lines = comparisonLines(result);
    EXPECT_EQ(lines.value(0),
              QStringLiteral("categories: mAP 0.500 (1 categories of 3 or more, among 9 pictures)"));
    EXPECT_EQ(lines.value(1),
              QStringLiteral("categories, as searched (cut at 0.15, at most 20): precision 0.750, "
                             "recall 0.750 (3 right of 4 shown, 4 within reach)"));
    EXPECT_EQ(lines.last(), QStringLiteral("nonsense \"xx\": 2 hits"));
    const QJsonObject json = QJsonDocument::fromJson(comparisonJson(result)).object();
    EXPECT_EQ(
        json[QStringLiteral("categories")][QStringLiteral("cut")][QStringLiteral("precision")].toDouble(),
        0.75);
    EXPECT_EQ(
        json[QStringLiteral("categories")][QStringLiteral("each")][0][QStringLiteral("name")].toString(),
        QStringLiteral("dog"));
}
