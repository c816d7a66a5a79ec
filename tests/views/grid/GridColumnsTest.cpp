#include "views/grid/GridColumns.h"

#include <QVariant>

#include <gtest/gtest.h>

#include <cmath>

using Qorvane::GridColumns;

TEST(GridColumns, countsTheCellsThatFitWithTheirGaps)
{
    EXPECT_EQ(GridColumns::countFor(200), 1);
    EXPECT_EQ(GridColumns::countFor(415.9), 1);
    EXPECT_EQ(GridColumns::countFor(416), 2);
    EXPECT_EQ(GridColumns::countFor(847.5), 3);
    EXPECT_EQ(GridColumns::countFor(848), 4);
}

TEST(GridColumns, isOneForAWidthBelowACell)
{
    EXPECT_EQ(GridColumns::countFor(199), 1);
    EXPECT_EQ(GridColumns::countFor(0), 1);
    EXPECT_EQ(GridColumns::countFor(-50), 1);
}

TEST(GridColumns, sharesTheWidthThatIsLeftOver)
{
    GridColumns columns;
    columns.setWidth(900);
    EXPECT_EQ(columns.count(), 4);
    EXPECT_EQ(columns.pitch(), 229);
    EXPECT_EQ(columns.columnWidth(), 213);
}

TEST(GridColumns, pitchFitsExactlyCountTimesAtEveryWidth)
{
    GridColumns columns;
    for (int width = 200; width < 4000; ++width) {
        columns.setWidth(width);
        const int span = width + GridColumns::gap;
        EXPECT_EQ(int(span / columns.pitch()), columns.count()) << width;
        EXPECT_GE(columns.columnWidth(), GridColumns::minimumColumnWidth) << width;
    }
}

TEST(GridColumns, edgesLieOnPhysicalPixelsAtEveryScale)
{
    GridColumns columns;
    columns.setWidth(931);
    for (const double ratio : {1.0, 1.25, 1.5, 2.0}) {
        columns.setProperty("devicePixelRatio", QVariant(ratio));
        for (const double edge : {columns.pitch(), columns.centred(200, columns.columnWidth())})
            EXPECT_NEAR(edge * ratio, std::round(edge * ratio), 1e-9) << ratio;
        EXPECT_EQ(int((931 + GridColumns::gap) / columns.pitch()), columns.count()) << ratio;
    }
}
