#include "semantic/FeatureVector.h"

#include "semantic/NumberText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace Qorvane;
using testing::Each;
using testing::ElementsAre;

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();

TEST(FeatureVector, hasUnitLengthAndRemembersTheNormBefore)
{
    const FeatureVector vector = normalised({3, 0, -4});
    EXPECT_EQ(vector.normBefore, 5);
    EXPECT_THAT(vector.values, ElementsAre(3 / 5.0f, 0, -4 / 5.0f));
}

TEST(FeatureVector, takesElementsThatAreNotFiniteAsZeroBeforeItIsNormalised)
{
    const FeatureVector vector = normalised({3, notANumber, 4, infinity, -infinity});
    EXPECT_EQ(vector.normBefore, 5);
    EXPECT_THAT(vector.values, ElementsAre(3 / 5.0f, 0, 4 / 5.0f, 0, 0));
}

TEST(FeatureVector, staysZeroWhenAllElementsAre)
{
    const FeatureVector vector = normalised({0, 0, 0});
    EXPECT_EQ(vector.normBefore, 0);
    EXPECT_THAT(vector.values, Each(0.0f));
}

TEST(FeatureVector, computesItsNormInSinglePrecisionAndIndexOrder)
{
    // In single precision the small ones vanish behind the large one, and add up before it.
    const std::vector<float> largeFirst{4096, 1, 1};
    const std::vector<float> smallFirst{1, 1, 4096};
    EXPECT_EQ(l2Norm(largeFirst), std::sqrt(4096.0f * 4096.0f));
    EXPECT_EQ(l2Norm(smallFirst), std::sqrt(2.0f + 4096.0f * 4096.0f));
    EXPECT_EQ(l2Norm({}), 0);
}

TEST(FeatureVector, isDescribedInOneLine)
{
    EXPECT_EQ(normLine(normalised({3, 0, -4})),
              QStringLiteral("📏 特征向量L2范数: 5.0, min=-0.8, max=0.6, head=[0.6, 0.0, -0.8]"));
    EXPECT_EQ(normLine(normalised({0, 2, 0, 0, 0, 0, 0})),
              QStringLiteral("📏 特征向量L2范数: 2.0, min=0.0, max=1.0, head=[0.0, 1.0, 0.0, 0.0, 0.0]"));
    EXPECT_EQ(normLine(normalised({})), QStringLiteral("📏 特征向量L2范数: 0.0"));
}

TEST(NumberText, isTheShortestThatReadsBackTheSame)
{
    EXPECT_EQ(numberText(100.00296f), QStringLiteral("100.00296"));
    EXPECT_EQ(numberText(0.1f), QStringLiteral("0.1"));
    EXPECT_EQ(numberText(1.0f), QStringLiteral("1.0"));
    EXPECT_EQ(numberText(-2.5e-20f), QStringLiteral("-2.5e-20"));
    EXPECT_EQ(numberText(0.0f), QStringLiteral("0.0"));
    EXPECT_EQ(numberText(0.0001f), QStringLiteral("0.0001"));
    EXPECT_EQ(numberText(-0.00012345678f), QStringLiteral("-0.00012345678"));
    EXPECT_EQ(numberText(0.00001f), QStringLiteral("1e-05"));
    EXPECT_EQ(numberText(100000.0f), QStringLiteral("100000.0"));
    EXPECT_EQ(numberText(-16777216.0f), QStringLiteral("-16777216.0"));
    EXPECT_EQ(numberText(16777218.0f), QStringLiteral("1.6777218e+07"));
    EXPECT_EQ(numberText(1e16f), QStringLiteral("1e+16"));
    EXPECT_EQ(numberText(notANumber), QStringLiteral("nan"));
    EXPECT_EQ(numberText(infinity), QStringLiteral("inf"));
    EXPECT_EQ(numberText(7), QStringLiteral("7"));
}

TEST(NumberText, listsNumbersInBrackets)
{
    const std::vector<qint32> ids{101, 5, 102};
    EXPECT_EQ(listText(head(ids, 2)), QStringLiteral("[101, 5]"));
    EXPECT_EQ(listText(head(ids, 10)), QStringLiteral("[101, 5, 102]"));
    EXPECT_EQ(listText(head(std::vector<float>{}, 3)), QStringLiteral("[]"));
}
