#include "views/DesktopSettings.h"
#include "views/GridFixture.h"

#include <QAccessible>
#include <QFile>

using namespace Qorvane;

namespace {

/// The keys over the grid: what they move, and where they show that they are.
class GridKeysTest : public GridFixture
{
protected:
    void goToGridByTab()
    {
        click(item("searchField"));
        QTest::keyClick(window.get(), Qt::Key_Tab);
        ASSERT_TRUE(item("photoGrid")->hasActiveFocus());
    }

    // The cell that the ring lies on, as far as cells exist; -1 for none.
    int ringed() { return rowWith("focusRing"); }
};

} // namespace

TEST_F(GridKeysTest, returnAndSpaceOpenNothing)
{
    showFolder(3);
    clickPicture("photoGrid", 1);
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space, Qt::Key_PageDown, Qt::Key_End})
        QTest::keyClick(window.get(), key);
    EXPECT_EQ(selected(), QSet<FileUrl>{picture(1)});
    EXPECT_FALSE(state.isDetailViewActive());
}

TEST_F(GridKeysTest, downFromTheLineBeforeAShorterOneLandsOnTheLastCell)
{
    showFolder(12);
    const int inLine = columns();
    ASSERT_GT(inLine, 1);
    const int last = 2 * inLine; // alone in the third line
    for (int i = last + 1; i < 12; ++i)
        ASSERT_TRUE(QFile::remove(picture(i).path()));
    library.loadImages();
    ASSERT_TRUE(
        waitUntil([&] { return state.pages()->photos()->count() == last + 1 && cell("photoGrid", last); }));
    waitForFrame();
    clickPicture("photoGrid", last - 1);
    QTest::keyClick(window.get(), Qt::Key_Down);
    EXPECT_EQ(selected(), QSet<FileUrl>{picture(last)});
}

TEST_F(GridKeysTest, anArrowStartsFromTheFirstOfSeveral)
{
    showFolder(8);
    clickPicture("photoGrid", 3);
    clickPicture("photoGrid", 1, Qt::ControlModifier);
    QTest::keyClick(window.get(), Qt::Key_Right);
    EXPECT_EQ(selected(), QSet<FileUrl>{picture(2)});
}

TEST_F(GridKeysTest, arrowsStayAtTheEdgesAndRepeatWhileHeld)
{
    showFolder(5);
    clickPicture("photoGrid", 1);
    clickPicture("photoGrid", 0, Qt::ControlModifier);
    for (const Qt::Key key : {Qt::Key_Left, Qt::Key_Up}) {
        QTest::keyClick(window.get(), key);
        EXPECT_EQ(selected(), QSet<FileUrl>{picture(0)});
    }
    for (int i = 0; i < 9; ++i) {
        QKeyEvent repeat(QEvent::KeyPress, Qt::Key_Right, {}, QString(), i > 0);
        QCoreApplication::sendEvent(window.get(), &repeat);
    }
    EXPECT_EQ(selected(), QSet<FileUrl>{picture(4)});
}

TEST_F(GridKeysTest, anArrowBringsItsCellIntoViewInAMotion)
{
    showFolder(60);
    clickPicture("photoGrid", 0);
    // Sent past the event loop, without which no motion gets on.
    for (int i = 0; i < 5; ++i) {
        QKeyEvent press(QEvent::KeyPress, Qt::Key_Down, {});
        QCoreApplication::sendEvent(window.get(), &press);
    }
    const int row = state.pages()->photos()->firstSelectedRow();
    ASSERT_EQ(row, 5 * columns());
    EXPECT_FALSE(isInView("photoGrid", row));
    EXPECT_TRUE(waitUntil([&] { return isInView("photoGrid", row); }));
}

TEST_F(GridKeysTest, withoutMotionAnArrowBringsItsCellIntoViewAtOnce)
{
    const WithoutMotion withoutMotion;
    showFolder(60);
    clickPicture("photoGrid", 0);
    for (int i = 0; i < 5; ++i)
        QTest::keyClick(window.get(), Qt::Key_Down);
    const double place = position("photoGrid");
    EXPECT_GT(place, 100);
    waitForFrame();
    EXPECT_EQ(position("photoGrid"), place);
    EXPECT_TRUE(isInView("photoGrid", state.pages()->photos()->firstSelectedRow()));
}

TEST_F(GridKeysTest, theCellThatArrowsStartFromShowsToWhoeverCameByKeyboard)
{
    showFolder(8);
    goToGridByTab();
    EXPECT_EQ(ringed(), 0);
    QTest::keyClick(window.get(), Qt::Key_Right);
    EXPECT_EQ(ringed(), 1);
    clickPicture("photoGrid", 3);
    EXPECT_EQ(ringed(), -1) << "the pointer is there already";
    clickPicture("photoGrid", 2, Qt::ControlModifier);
    click(item("searchField"));
    QTest::keyClick(window.get(), Qt::Key_Return);
    EXPECT_EQ(ringed(), 2) << "the first of several";
    QTest::keyClick(window.get(), Qt::Key_Backtab);
    EXPECT_EQ(ringed(), -1);
}

TEST_F(GridKeysTest, theRingIsDrawnAroundThePictureOfASelectedOneToo)
{
    showFolder(3);
    ASSERT_TRUE(waitUntil([&] { return thumbnail(0)->property("isLoaded").toBool(); }));
    const QColor accent(QStringLiteral("#0A6CFF"));
    const auto colourBeside = [&](int distance) {
        waitForFrame();
        return shownAt(thumbnail(0)->mapToScene(QPointF(-distance, 100)));
    };
    EXPECT_EQ(colourBeside(3), QColor(Qt::white));
    goToGridByTab();
    EXPECT_EQ(colourBeside(3), accent);
    EXPECT_EQ(colourBeside(2), QColor(Qt::white));
    EXPECT_EQ(colourBeside(5), QColor(Qt::white));
    QTest::keyClick(window.get(), Qt::Key_Left);
    EXPECT_EQ(colourBeside(3), accent);
    EXPECT_EQ(colourBeside(2), QColor(Qt::white));
    EXPECT_EQ(colourBeside(-1), accent);
}

TEST_F(GridKeysTest, whoeverComesByKeyboardSeesWhereTheKeysAre)
{
    showFolder(60);
    setPosition("photoGrid", 1500);
    goToGridByTab();
    EXPECT_TRUE(waitUntil([&] { return isInView("photoGrid", 0); }));
    EXPECT_EQ(ringed(), 0);

    setPosition("photoGrid", 1500);
    int row = 0;
    while (!isInView("photoGrid", row))
        ++row;
    clickPicture("photoGrid", row);
    setPosition("photoGrid", 0);
    goToGridByTab();
    EXPECT_TRUE(waitUntil([&] { return isInView("photoGrid", row); }));
    EXPECT_EQ(ringed(), row);
}

TEST_F(GridKeysTest, comingBackToTheWindowLeavesTheGridAsItWas)
{
    showFolder(60);
    goToGridByTab();
    ASSERT_TRUE(waitUntil([&] { return isInView("photoGrid", 0); }));
    const auto leaveAndComeBack = [this] {
        QQuickWindow other;
        other.show();
        other.requestActivate();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
        window->requestActivate();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
        waitForFrame();
        waitForFrame();
    };
    setPosition("photoGrid", 1500);
    leaveAndComeBack();
    EXPECT_EQ(position("photoGrid"), 1500);
    EXPECT_TRUE(item("photoGrid")->hasActiveFocus());
    setPosition("photoGrid", 0);
    clickPicture("photoGrid", 0);
    leaveAndComeBack();
    EXPECT_TRUE(item("photoGrid")->hasActiveFocus());
    EXPECT_EQ(ringed(), -1);
}

TEST_F(GridKeysTest, theSidebarsSelectedRowStandsOutWhereverTheKeysAre)
{
    showFolder(3);
    QQuickItem *const row = cell("sidebarList", state.sidebar()->rows()->selectedRow());
    ASSERT_TRUE(row);
    const QPoint ground = row->mapToScene(QPointF(row->width() - 14, row->height() / 2)).toPoint();
    const auto hue = [&] {
        QTest::mouseMove(window.get(), QPoint(600, 780));
        waitForFrame();
        return shownAt(ground).hsvHue();
    };
    const int accent = QColor(QStringLiteral("#0A6CFF")).hsvHue();
    click(row);
    EXPECT_EQ(hue(), accent);
    clickPicture("photoGrid", 1);
    EXPECT_EQ(hue(), accent);
    click(item("searchField"));
    EXPECT_EQ(hue(), accent);
}

TEST_F(GridKeysTest, screenReadersFollowTheKeys)
{
    showFolder(8);
    clickPicture("photoGrid", 2);
    QTest::keyClick(window.get(), Qt::Key_Right);
    QTest::keyClick(window.get(), Qt::Key_Right);
    EXPECT_EQ(window->activeFocusItem(), cell("photoGrid", 4));
    for (int row = 0; row < 8; ++row) {
        const QAccessible::State told =
            QAccessible::queryAccessibleInterface(cell("photoGrid", row))->state();
        EXPECT_EQ(bool(told.focused), row == 4) << row;
        EXPECT_EQ(bool(told.selected), row == 4) << row;
    }
    click(item("searchField"));
    EXPECT_FALSE(QAccessible::queryAccessibleInterface(cell("photoGrid", 4))->state().focused);
}

TEST_F(GridKeysTest, theCurrentCellStaysTheFirstSelectedWhenOthersGo)
{
    showFolder(8);
    const auto current = [this] { return item("photoGrid")->property("currentIndex").toInt(); };
    EXPECT_EQ(current(), 0);
    clickPicture("photoGrid", 5);
    EXPECT_EQ(current(), 5);
    for (const int gone : {1, 3})
        ASSERT_TRUE(QFile::remove(picture(gone).path()));
    library.loadImages();
    ASSERT_TRUE(waitUntil([&] { return state.pages()->photos()->count() == 6; }));
    EXPECT_EQ(current(), 3);
    EXPECT_TRUE(cell("photoGrid", 3)->hasActiveFocus());
    library.setSortOrder(SortOrder::descending);
    ASSERT_TRUE(waitUntil([&] { return state.pages()->photos()->urls().constFirst() == picture(7); }));
    EXPECT_EQ(current(), 2);
    ASSERT_TRUE(QFile::remove(picture(5).path()));
    library.loadImages();
    ASSERT_TRUE(waitUntil([&] { return state.pages()->photos()->count() == 5; }));
    EXPECT_EQ(current(), 0);
}
