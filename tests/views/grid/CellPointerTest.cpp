#include "views/GridFixture.h"

#include <QFile>
#include <QGuiApplication>
#include <QStyleHints>

using namespace Qorvane;

namespace {

/// What the pointer reaches of a grid's cells.
class CellPointerTest : public GridFixture
{
protected:
    // Two taps are quick ones however long the frame between them takes on a busy machine. The toolkit asks
    // when the first window is made.
    static void SetUpTestSuite() { QGuiApplication::styleHints()->setMouseDoubleClickInterval(60'000); }

    int hovered() { return rowWith("hoverVeil"); }

    // The middle of what lies between the pictures of the first two cells.
    QPoint gap() const
    {
        const QPointF left = thumbnail(0)->mapToScene(QPointF(thumbnail(0)->width(), 60));
        const QPointF right = thumbnail(1)->mapToScene(QPointF(0, 60));
        return ((left + right) / 2).toPoint();
    }

    // The photograph drawn there; -1 for none.
    int rowUnder(const QPoint &place)
    {
        for (int row = 0; row < state.pages()->photos()->count(); ++row) {
            if (cell("photoGrid", row) &&
                thumbnail(row)->contains(thumbnail(row)->mapFromScene(QPointF(place))))
                return row;
        }
        return -1;
    }

    // Sent with a time of its own: the test library keeps clicks apart by more than a double click takes.
    void tap(const QPoint &place, quint64 time)
    {
        for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
            QMouseEvent event(type, place, window->mapToGlobal(place), Qt::LeftButton,
                              type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton, {});
            event.setTimestamp(time);
            QCoreApplication::sendEvent(window.get(), &event);
            time += 20;
        }
    }
};

} // namespace

TEST_F(CellPointerTest, thePictureUnderThePointerIsMarked)
{
    showFolder(8);
    EXPECT_EQ(hovered(), -1);
    QTest::mouseMove(window.get(), middleOf(cell("photoGrid", 2)));
    EXPECT_EQ(hovered(), 2);
    QTest::mouseMove(window.get(), middleOf(cell("photoGrid", 1)));
    EXPECT_EQ(hovered(), 1);
    QTest::mouseMove(window.get(), gap());
    EXPECT_EQ(hovered(), -1);
    QTest::mouseMove(window.get(), middleOf(cell("photoGrid", 0)));
    QTest::mouseMove(window.get(), WindowDriver::middleOf(item("searchField")));
    EXPECT_EQ(hovered(), -1);
}

TEST_F(CellPointerTest, theMarkStaysUnderThePointerWhileTheGridScrolls)
{
    showFolder(60);
    const int next = 1 + columns();
    QTest::mouseMove(window.get(), middleOf(cell("photoGrid", 1)));
    ASSERT_EQ(hovered(), 1);
    const double pitch = cell("photoGrid", next)->y() - cell("photoGrid", 1)->y();
    setPosition("photoGrid", position("photoGrid") + pitch);
    EXPECT_TRUE(waitUntil([&] { return hovered() == next; }));
}

TEST_F(CellPointerTest, betweenThePicturesThereIsNothingToClick)
{
    showFolder(8);
    clickPicture("photoGrid", 4);
    QTest::mouseClick(window.get(), Qt::LeftButton, {}, gap());
    QTest::mouseClick(window.get(), Qt::RightButton, {}, gap());
    QTest::mouseDClick(window.get(), Qt::LeftButton, {}, gap());
    drainMainQueue();
    EXPECT_EQ(selected(), QSet<FileUrl>{picture(4)});
    EXPECT_FALSE(popupItem("openInFinder"));
    EXPECT_FALSE(state.isDetailViewActive());
}

TEST_F(CellPointerTest, twoTapsAreADoubleTapOnOneCellOnly)
{
    showFolder(60);
    const int next = 1 + columns();
    const QPoint place = middleOf(cell("photoGrid", 1));
    tap(place, 100'000);
    EXPECT_EQ(selected(), QSet<FileUrl>{picture(1)});
    // The next line comes to lie under the pointer.
    const double pitch = cell("photoGrid", next)->y() - cell("photoGrid", 1)->y();
    setPosition("photoGrid", position("photoGrid") + pitch);
    tap(place, 100'100);
    EXPECT_EQ(selected(), QSet<FileUrl>{picture(next)});
    EXPECT_FALSE(state.isDetailViewActive());
    tap(place, 100'200);
    EXPECT_TRUE(state.isDetailViewActive());
}

TEST_F(CellPointerTest, aFileThatTakesAnothersPlaceUnderThePressIsNotMeant)
{
    showFolder(8);
    const QPoint place = middleOf(cell("photoGrid", 1));
    QTest::mousePress(window.get(), Qt::LeftButton, {}, place);
    library.setSortOrder(SortOrder::descending);
    ASSERT_TRUE(waitUntil([&] { return state.pages()->photos()->path(1) == picture(6).path(); }));
    QTest::mouseRelease(window.get(), Qt::LeftButton, {}, place);
    EXPECT_EQ(selected(), QSet<FileUrl>());
}

TEST_F(CellPointerTest, theNameUnderAHitBelongsToIt)
{
    showFolder(8);
    showResults({2, 5});
    QQuickItem *const caption = itemBelow(cell("resultsGrid", 1), "caption");
    ASSERT_TRUE(caption);
    QTest::mouseClick(window.get(), Qt::LeftButton, {}, WindowDriver::middleOf(caption));
    EXPECT_EQ(selected(), QSet<FileUrl>{picture(5)});
}

TEST_F(CellPointerTest, theNameUnderAHitCountsAsHovered)
{
    showFolder(8);
    showResults({2, 5});
    QQuickItem *const caption = itemBelow(cell("resultsGrid", 1), "caption");
    ASSERT_TRUE(caption);
    QTest::mouseMove(window.get(), WindowDriver::middleOf(caption));
    EXPECT_TRUE(itemBelow(cell("resultsGrid", 1), "hoverVeil"));
    EXPECT_FALSE(itemBelow(cell("resultsGrid", 0), "hoverVeil"));
}

TEST_F(CellPointerTest, aTapOfAFingerSelectsAndTwoOpen)
{
    showFolder(8);
    const QPoint place = middleOf(cell("photoGrid", 2));
    const auto tapWithFinger = [&] {
        QTest::touchEvent(window.get(), touchScreen()).press(0, place);
        QTest::touchEvent(window.get(), touchScreen()).release(0, place);
    };
    tapWithFinger();
    EXPECT_EQ(selected(), QSet<FileUrl>{picture(2)});
    EXPECT_EQ(hovered(), -1);
    waitForFrame();
    EXPECT_FALSE(popupItem("openInFinder"));
    EXPECT_FALSE(state.isDetailViewActive());
    tapWithFinger();
    EXPECT_TRUE(state.isDetailViewActive());
}

TEST_F(CellPointerTest, afterFilesAboveHaveGoneTheLastOnesAnswer)
{
    showFolder(60);
    const int gone = 2 * columns();
    setPosition("photoGrid", 1000);
    for (int i = 0; i < gone; ++i)
        ASSERT_TRUE(QFile::remove(picture(i).path()));
    library.loadImages();
    const int last = 60 - gone - 1;
    ASSERT_TRUE(waitUntil([&] { return state.pages()->photos()->count() == last + 1; }));
    waitForFrame();
    turnWheel(item("photoGrid"), -120 * 500);
    ASSERT_TRUE(waitUntil([&] { return isInView("photoGrid", last); }));
    const QPoint place = middleOf(cell("photoGrid", last));
    QTest::mouseMove(window.get(), place);
    EXPECT_TRUE(waitUntil([&] { return hovered() == last; }));
    QTest::mouseClick(window.get(), Qt::LeftButton, {}, place);
    EXPECT_EQ(selected(), QSet<FileUrl>{picture(59)});
    QTest::mouseClick(window.get(), Qt::RightButton, {}, place);
    EXPECT_TRUE(waitUntil([&] { return popupItem("openInFinder") != nullptr; }));
}

TEST_F(CellPointerTest, theMarkIsUnderThePointerAfterFilesHaveGoneAndColumnsHaveChanged)
{
    showFolder(60);
    const QPoint place = middleOf(cell("photoGrid", 1));
    const auto isRight = [&] { return hovered() == rowUnder(place); };
    QTest::mouseMove(window.get(), place);
    ASSERT_EQ(hovered(), 1);
    for (const int gone : {0, 5})
        ASSERT_TRUE(QFile::remove(picture(gone).path()));
    library.loadImages();
    ASSERT_TRUE(waitUntil([&] { return state.pages()->photos()->count() == 58; }));
    EXPECT_TRUE(waitUntil([&] { return hovered() >= 0 && isRight(); }));
    const int before = columns();
    window->resize(window->width() + 230, window->height());
    ASSERT_TRUE(waitUntil([&] { return columns() > before; }));
    EXPECT_TRUE(waitUntil(isRight));
}

TEST_F(CellPointerTest, whatComesUnderThePointerAfterThePressIsNotMeant)
{
    showFolder(60);
    const QPoint place = middleOf(cell("photoGrid", 1));
    QTest::mousePress(window.get(), Qt::LeftButton, {}, place);
    const double pitch = cell("photoGrid", 1 + columns())->y() - cell("photoGrid", 1)->y();
    setPosition("photoGrid", position("photoGrid") + pitch);
    QTest::mouseRelease(window.get(), Qt::LeftButton, {}, place);
    EXPECT_TRUE(selected().isEmpty());
}

TEST_F(CellPointerTest, cellsUsedAgainCarryNoMarkOfTheOneBefore)
{
    showFolder(200);
    clickPicture("photoGrid", 0);
    clickPicture("photoGrid", 3, Qt::ControlModifier);
    QTest::mouseMove(window.get(), QPoint(5, 5));
    setPosition("photoGrid", 5000);
    int inView = 0;
    for (int row = 0; row < 200; ++row) {
        if (!isInView("photoGrid", row))
            continue;
        ++inView;
        for (const char *mark : {"selectionRing", "hoverVeil", "focusRing"})
            EXPECT_FALSE(itemBelow(cell("photoGrid", row), mark)) << mark << " on " << row;
    }
    EXPECT_GT(inView, 4);
    setPosition("photoGrid", 0);
    EXPECT_EQ(rowWith("selectionRing"), 0);
}
