#include "views/window/ColumnWidths.h"

#include <QSignalSpy>

#include <gtest/gtest.h>

using namespace Qorvane;

namespace {

struct Widths
{
    int sidebar, content, inspector;
    friend bool operator==(const Widths &, const Widths &) = default;
    friend void PrintTo(const Widths &widths, std::ostream *out)
    {
        *out << widths.sidebar << " | " << widths.content << " | " << widths.inspector;
    }
};

class ColumnWidthsTest : public testing::Test
{
protected:
    Widths in(double windowWidth)
    {
        columns.setWindowWidth(windowWidth);
        return {columns.sidebar(), columns.content(), columns.inspector()};
    }

    ColumnWidths columns;
};

} // namespace

TEST_F(ColumnWidthsTest, allAreIdealInAWindowThatJustFitsThem)
{
    EXPECT_EQ(in(230 + 690 + 300), (Widths{230, 690, 300}));
}

TEST_F(ColumnWidthsTest, theContentTakesWhatAWiderWindowAdds)
{
    EXPECT_EQ(in(1280), (Widths{230, 750, 300}));
    EXPECT_EQ(in(1730), (Widths{230, 1200, 300}));
    EXPECT_EQ(columns.contentMargin(), 0);
}

TEST_F(ColumnWidthsTest, contentAtItsWidestStaysInTheMiddleOfItsPlace)
{
    EXPECT_EQ(in(2560), (Widths{230, 1200, 300}));
    EXPECT_EQ(columns.middle(), 2560 - 530);
    EXPECT_EQ(columns.contentMargin(), (2560 - 530 - 1200) / 2);
}

TEST_F(ColumnWidthsTest, aCollapsedInspectorHasNoWidthAndComesBackAsItWas)
{
    in(1280);
    columns.moveInspectorEdge(-50);
    columns.setInspectorShare(0);
    EXPECT_EQ(in(1280), (Widths{230, 1050, 0}));
    EXPECT_EQ(columns.fullInspector(), 350) << "what slides away keeps its layout";
    columns.setInspectorShare(1);
    EXPECT_EQ(in(1280), (Widths{230, 700, 350}));
}

TEST_F(ColumnWidthsTest, onItsWayTheInspectorShowsInPart)
{
    columns.setInspectorShare(0.5);
    EXPECT_EQ(in(1280), (Widths{230, 900, 150}));
    EXPECT_EQ(columns.fullInspector(), 300);
}

TEST_F(ColumnWidthsTest, theSidebarIsNeverBelow200)
{
    in(1280);
    columns.moveSidebarEdge(-300);
    EXPECT_EQ(columns.sidebar(), 200);
    columns.moveSidebarEdge(25);
    EXPECT_EQ(columns.sidebar(), 225);
}

TEST_F(ColumnWidthsTest, theSidebarMayGrowUntilTheContentIsAtItsNarrowest)
{
    in(1280);
    columns.moveSidebarEdge(5000);
    EXPECT_EQ(in(1280), (Widths{580, 400, 300}));
    in(3000);
    columns.moveSidebarEdge(5000);
    EXPECT_EQ(in(3000), (Widths{2300, 400, 300}));
}

TEST_F(ColumnWidthsTest, theInspectorStaysBetween240And500)
{
    in(1600);
    columns.moveInspectorEdge(1000);
    EXPECT_EQ(columns.inspector(), 240);
    columns.moveInspectorEdge(-1000);
    EXPECT_EQ(columns.inspector(), 500);
}

TEST_F(ColumnWidthsTest, theInspectorStopsWhereTheContentIsAtItsNarrowest)
{
    in(1280);
    columns.moveSidebarEdge(220);
    columns.moveInspectorEdge(-1000);
    EXPECT_EQ(in(1280), (Widths{450, 400, 430}));
}

TEST_F(ColumnWidthsTest, anInspectorThatComesBackToAWideSidebarMakesItGiveWay)
{
    in(1280);
    columns.setInspectorShare(0);
    columns.moveSidebarEdge(5000);
    EXPECT_EQ(in(1280), (Widths{880, 400, 0}));
    columns.setInspectorShare(1);
    EXPECT_EQ(in(1280), (Widths{580, 400, 300}));
}

TEST_F(ColumnWidthsTest, aNarrowerWindowTakesFromTheSidebarFirstAndAWiderOneGivesBack)
{
    in(2000);
    columns.moveSidebarEdge(270);
    columns.moveInspectorEdge(-200);
    EXPECT_EQ(in(2000), (Widths{500, 1000, 500}));
    EXPECT_EQ(in(1300), (Widths{400, 400, 500}));
    EXPECT_EQ(in(1000), (Widths{200, 400, 400}));
    EXPECT_EQ(in(2000), (Widths{500, 1000, 500}));
}

TEST_F(ColumnWidthsTest, theColumnsAlwaysFillTheWindow)
{
    for (int width = 840; width < 4000; width += 37) {
        for (const double share : {0.0, 0.3, 1.0}) {
            columns.setInspectorShare(share);
            columns.setWindowWidth(width);
            EXPECT_EQ(columns.sidebar() + columns.middle() + columns.inspector(), width);
            EXPECT_GE(columns.middle(), 400) << width;
        }
    }
}

TEST_F(ColumnWidthsTest, eitherEdgeGoesBackToItsIdeal)
{
    in(1600);
    columns.moveSidebarEdge(100);
    columns.moveInspectorEdge(100);
    columns.resetSidebar();
    columns.resetInspector();
    EXPECT_EQ(in(1600), (Widths{230, 1070, 300}));
}

TEST_F(ColumnWidthsTest, tellsOfEveryChange)
{
    const QSignalSpy changes(&columns, &ColumnWidths::changed);
    columns.setWindowWidth(1500);
    columns.setWindowWidth(1500);
    columns.setInspectorShare(0);
    columns.setInspectorShare(0);
    columns.moveSidebarEdge(5);
    EXPECT_EQ(changes.count(), 3);
}
