#include "views/grid/VisibleRows.h"

#include <gtest/gtest.h>

using namespace Qorvane;

TEST(VisibleRows, coversEveryLineThatIsPartlyInView)
{
    EXPECT_EQ(visibleRows(0, 420, 210, 4, 100), (RowRange{0, 7}));
    EXPECT_EQ(visibleRows(1, 420, 210, 4, 100), (RowRange{0, 11}));
    EXPECT_EQ(visibleRows(210, 420, 210, 4, 100), (RowRange{4, 11}));
}

TEST(VisibleRows, endsWithTheList)
{
    EXPECT_EQ(visibleRows(0, 1000, 210, 4, 6), (RowRange{0, 5}));
}

TEST(VisibleRows, countsFromTheFirstLineAboveTheTop)
{
    EXPECT_EQ(visibleRows(-16, 226, 210, 4, 100), (RowRange{0, 3}));
}

TEST(VisibleRows, isEmptyWithoutAViewOrCells)
{
    EXPECT_EQ(visibleRows(0, 0, 210, 4, 10), RowRange());
    EXPECT_EQ(visibleRows(0, 420, 0, 4, 10), RowRange());
    EXPECT_EQ(visibleRows(0, 420, 210, 4, 0), RowRange());
}
