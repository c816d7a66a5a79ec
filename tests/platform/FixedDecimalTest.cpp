#include "platform/FixedDecimal.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <limits>

using namespace Qorvane;

TEST(FixedDecimal, roundsAsPrintfDoes)
{
    for (const double value :
         {0.0, -0.0, 0.125, 0.375, -0.125, 2.675, 0.005, 1.0, 1e15, 123456.789, 1e300,
          std::numeric_limits<double>::max(), std::numeric_limits<double>::denorm_min()}) {
        for (const int decimals : {0, 1, 2, 4}) {
            char expected[400];
            std::snprintf(expected, sizeof expected, "%.*f", decimals, value);
            EXPECT_EQ(fixedDecimal(value, decimals).toStdString(), expected);
        }
    }
}

TEST(FixedDecimal, halvesGoToTheEvenDigit)
{
    EXPECT_EQ(fixedDecimal(0.125, 2), QStringLiteral("0.12"));
    EXPECT_EQ(fixedDecimal(0.375, 2), QStringLiteral("0.38"));
}
