#include "views/grid/GridMovement.h"

#include <gtest/gtest.h>

using namespace Qorvane;

TEST(GridMovement, stepsSidewaysWithoutWrappingAroundTheEnds)
{
    EXPECT_EQ(movedPosition(GridDirection::left, 0, 10, 4), 0);
    EXPECT_EQ(movedPosition(GridDirection::left, 4, 10, 4), 3);
    EXPECT_EQ(movedPosition(GridDirection::right, 3, 10, 4), 4);
    EXPECT_EQ(movedPosition(GridDirection::right, 9, 10, 4), 9);
}

TEST(GridMovement, stepsAWholeRowUpAndDown)
{
    EXPECT_EQ(movedPosition(GridDirection::up, 6, 10, 4), 2);
    EXPECT_EQ(movedPosition(GridDirection::down, 2, 10, 4), 6);
    EXPECT_EQ(movedPosition(GridDirection::up, 2, 10, 4), 0);
}

TEST(GridMovement, downIntoAShorterLastRowLandsOnTheLastCell)
{
    EXPECT_EQ(movedPosition(GridDirection::down, 7, 10, 4), 9);
    EXPECT_EQ(movedPosition(GridDirection::down, 9, 10, 4), 9);
}

TEST(GridMovement, takesNoColumnsForOne)
{
    EXPECT_EQ(movedPosition(GridDirection::down, 2, 10, 0), 3);
}
