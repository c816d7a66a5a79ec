#include "views/style/Scrolling.h"

#include <gtest/gtest.h>

using Qorvane::Scrolling;

namespace {

constexpr double pitch = 210;
constexpr double margin = 16;
constexpr double view = 600;
const Scrolling scrolling;

} // namespace

TEST(Scrolling, aNotchDownLeadsDownByThreeLines)
{
    EXPECT_DOUBLE_EQ(scrolling.wheelDistance({}, {0, -120}), 120);
    EXPECT_DOUBLE_EQ(scrolling.wheelDistance({}, {0, 240}), -240);
    EXPECT_TRUE(scrolling.isNotch({}, {0, -120}));
}

TEST(Scrolling, aTouchpadLeadsAsFarAsTheFingers)
{
    EXPECT_DOUBLE_EQ(scrolling.wheelDistance({0, -7}, {0, -120}), 7);
    EXPECT_FALSE(scrolling.isNotch({0, -7}, {0, -120}));
    EXPECT_FALSE(scrolling.isNotch({}, {0, -15}));
}

TEST(Scrolling, aLineInViewStaysWhereItIs)
{
    EXPECT_DOUBLE_EQ(scrolling.showing(5, 4, pitch, margin, 100, view), 100);
}

TEST(Scrolling, aLineBelowComesUpToTheLowerEdge)
{
    // Line 3 ends at 840.
    EXPECT_DOUBLE_EQ(scrolling.showing(12, 4, pitch, margin, 0, view), 840 + margin - view);
}

TEST(Scrolling, aLineAboveComesDownToTheUpperEdge)
{
    EXPECT_DOUBLE_EQ(scrolling.showing(7, 4, pitch, margin, 5000, view), 210 - margin);
    EXPECT_DOUBLE_EQ(scrolling.showing(0, 4, pitch, margin, 5000, view), -margin);
}

TEST(Scrolling, inAViewLowerThanALineItsTopShows)
{
    EXPECT_DOUBLE_EQ(scrolling.showing(12, 4, pitch, margin, 0, 100), 630 - margin);
}

TEST(Scrolling, endsWithinTheBoundsOnAPhysicalPixel)
{
    EXPECT_DOUBLE_EQ(scrolling.settled(10.3, -16, 500, 1), 10);
    EXPECT_DOUBLE_EQ(scrolling.settled(10.3, -16, 500, 1.5), 15.0 / 1.5);
    EXPECT_DOUBLE_EQ(scrolling.settled(-90, -16, 500, 1), -16);
    EXPECT_DOUBLE_EQ(scrolling.settled(900, -16, 500, 2), 500);
    // Everything fits: there is nothing below the top.
    EXPECT_DOUBLE_EQ(scrolling.settled(90, -16, -300, 1), -16);
}
