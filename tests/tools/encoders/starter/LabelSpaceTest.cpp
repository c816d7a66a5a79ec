#include "encoders/starter/LabelSpace.h"

#include "encoders/graph/GraphRun.h"
#include "encoders/starter/LabelTexts.h"

#include <QSet>

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <numeric>

namespace Qorvane::Encoders {
namespace {

using LabelSpace::Rows;

std::vector<float> runOn(const std::vector<double> &input,
                         const std::function<std::string(GraphBuilder &)> &append)
{
    onnx::ModelProto model = GraphBuilder::emptyModel(17, "space");
    GraphBuilder builder(*model.mutable_graph());
    builder.input("x", onnx::TensorProto::FLOAT, {1, std::int64_t(input.size())});
    const std::string output = append(builder);
    builder.output(output, onnx::TensorProto::FLOAT, {1, -1});
    auto run = GraphRun::fromBytes(model.SerializeAsString());
    EXPECT_TRUE(run) << (run ? "" : run.error().text().toStdString());
    if (!run)
        return {};
    const auto result = run->run(
        {{QStringLiteral("x"), Tensor::of(onnx::TensorProto::FLOAT, {1, std::int64_t(input.size())}, input)}},
        output);
    EXPECT_TRUE(result) << (result ? "" : result.error().text().toStdString());
    return result ? result->values : std::vector<float>();
}

std::vector<float> picture(const std::vector<double> &probabilities)
{
    return runOn(probabilities,
                 [](GraphBuilder &builder) { return LabelSpace::appendPicture(builder, "x"); });
}

std::vector<float> textAt(const std::vector<double> &sentence, const Rows &labels)
{
    return runOn(sentence,
                 [&](GraphBuilder &builder) { return LabelSpace::appendText(builder, "x", labels); });
}

double cosine(const std::vector<float> &a, const std::vector<float> &b)
{
    const double product = std::inner_product(a.begin(), a.end(), b.begin(), 0.0);
    const double lengths = std::inner_product(a.begin(), a.end(), a.begin(), 0.0) *
                           std::inner_product(b.begin(), b.end(), b.begin(), 0.0);
    return product / std::sqrt(lengths);
}

// Four labels at right angles, and what their texts have in common.
Rows someLabels()
{
    return {.width = 6, .values = {1, 0, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 0, 1, 0, 1, 0, 0, 0, 0, 1, 1, 0}};
}

TEST(LabelSpace, APictureLiesAroundTheMeanOfItsRoots)
{
    const std::vector<float> vector = picture({0.64, 0.32, 0.02, 0.02});
    const std::vector<double> roots{0.8, std::sqrt(0.32), std::sqrt(0.02), std::sqrt(0.02)};
    const double mean = std::accumulate(roots.begin(), roots.end(), 0.0) / 4;
    double squares = 0;
    for (const double root : roots)
        squares += (root - mean) * (root - mean);
    ASSERT_EQ(vector.size(), 5U);
    for (size_t label = 0; label < 4; ++label)
        EXPECT_NEAR(double(vector[label]), (roots[label] - mean) / std::sqrt(squares), 1e-5);
    EXPECT_EQ(vector[4], 0.0f);
}

TEST(LabelSpace, ATextFindsPicturesOfItsLabelFirst)
{
    const std::vector<float> text = textAt({0, 1, 0, 0, 1, 0}, someLabels());
    const double right = cosine(text, picture({0.1, 0.7, 0.1, 0.1}));
    EXPECT_GT(right, 0.5);
    EXPECT_LT(cosine(text, picture({0.7, 0.1, 0.1, 0.1})), 0.15);
    EXPECT_GT(right, cosine(text, picture({0.4, 0.3, 0.2, 0.1})));
}

TEST(LabelSpace, WhatAllLabelsHaveInCommonSaysNothing)
{
    // Longer or shorter along the common axis, the text means the same label.
    const Rows labels = someLabels();
    const std::vector<float> near = textAt({1, 0, 0, 0, 1, 0}, labels);
    const std::vector<float> far = textAt({1, 0, 0, 0, 0.5, 0}, labels);
    EXPECT_GT(cosine(near, far), 0.95);
}

TEST(LabelSpace, AStrangeTextFindsNothing)
{
    // Nearly all of it lies on an axis that no label knows.
    const std::vector<float> text = textAt({0, 0.1, 0, 0, 0, 5}, someLabels());
    EXPECT_LT(std::abs(cosine(text, picture({0.01, 0.97, 0.01, 0.01}))), 0.15);
    EXPECT_GT(text.back(), 0.9f);
}

TEST(LabelSpace, ALabelsMixLiesBetweenItsTexts)
{
    const std::vector<float> mix = LabelSpace::mixed({2, 0}, {0, 5}, 0.5f);
    ASSERT_EQ(mix.size(), 2U);
    EXPECT_NEAR(double(mix[0]), std::sqrt(0.5), 1e-6);
    EXPECT_NEAR(double(mix[1]), std::sqrt(0.5), 1e-6);
    EXPECT_EQ(LabelSpace::mixed({2, 0}, {0, 5}, 0.0f), (std::vector<float>{1, 0}));
}

TEST(LabelTexts, DescribeEachOfTheThousandClasses)
{
    const std::vector<LabelText> texts = labelTexts();
    ASSERT_EQ(texts.size(), 1000U);
    QSet<QString> phrases;
    for (const LabelText &label : texts) {
        for (const QString &words :
             {label.englishName, label.englishPhrase, label.chineseName, label.chinesePhrase}) {
            EXPECT_FALSE(words.isEmpty()) << label.englishName.toStdString();
            EXPECT_EQ(words, words.trimmed());
        }
        phrases.insert(label.englishPhrase);
    }
    EXPECT_GT(phrases.size(), 990);
    EXPECT_TRUE(texts[207].englishName.contains(QStringLiteral("golden retriever")));
    EXPECT_TRUE(texts[134].chineseName.contains(QStringLiteral("鹤")));
    EXPECT_TRUE(texts[999].englishName.contains(QStringLiteral("toilet")));
}

} // namespace
} // namespace Qorvane::Encoders
