#include "views/grid/CellTaps.h"

#include <gtest/gtest.h>

using namespace Qorvane;

namespace {

const QString a = QStringLiteral("/p/a.jpg");
const QString b = QStringLiteral("/p/b.jpg");

class CellTapsTest : public testing::Test
{
protected:
    // Pressed and released over one file.
    CellTaps::Tap tap(const QString &path, int tapCount)
    {
        taps.press(path);
        return taps.tap(path, tapCount);
    }

    CellTaps taps;
};

} // namespace

TEST_F(CellTapsTest, twoOnOneFileAreADoubleTap)
{
    EXPECT_EQ(tap(a, 1), CellTaps::Tap::Single);
    EXPECT_EQ(tap(a, 2), CellTaps::Tap::Double);
    EXPECT_EQ(tap(a, 3), CellTaps::Tap::None);
    EXPECT_EQ(tap(a, 4), CellTaps::Tap::None);
    EXPECT_EQ(tap(a, 1), CellTaps::Tap::Single);
}

TEST_F(CellTapsTest, twoSlowOnesAreTwo)
{
    EXPECT_EQ(tap(a, 1), CellTaps::Tap::Single);
    EXPECT_EQ(tap(a, 1), CellTaps::Tap::Single);
}

TEST_F(CellTapsTest, quickOnesOnTwoFilesAreOneOnEach)
{
    EXPECT_EQ(tap(a, 1), CellTaps::Tap::Single);
    EXPECT_EQ(tap(b, 2), CellTaps::Tap::Single);
    EXPECT_EQ(tap(b, 3), CellTaps::Tap::Double);
    EXPECT_EQ(tap(a, 4), CellTaps::Tap::Single);
}

TEST_F(CellTapsTest, aFileThatComesUnderThePointerIsNotMeant)
{
    taps.press(a);
    EXPECT_EQ(taps.tap(b, 1), CellTaps::Tap::None);
    EXPECT_EQ(taps.tap(QString(), 1), CellTaps::Tap::None);
    EXPECT_EQ(taps.tap(a, 1), CellTaps::Tap::Single);
}

TEST_F(CellTapsTest, oneThatMeantNothingEndsTheSuccession)
{
    EXPECT_EQ(tap(a, 1), CellTaps::Tap::Single);
    taps.press(b);
    EXPECT_EQ(taps.tap(a, 2), CellTaps::Tap::None);
    EXPECT_EQ(tap(a, 3), CellTaps::Tap::Single);
}

TEST_F(CellTapsTest, besideTheCellsIsNoTap)
{
    EXPECT_EQ(tap(QString(), 1), CellTaps::Tap::None);
    EXPECT_EQ(tap(QString(), 2), CellTaps::Tap::None);
    EXPECT_EQ(tap(a, 3), CellTaps::Tap::Single);
}
