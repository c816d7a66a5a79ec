#include "views/GridFixture.h"

using namespace Qorvane;

namespace {

/// What the pointer reaches of a grid's cells.
class CellPointerTest : public GridFixture
{
protected:
    int hovered() { return rowWith("hoverVeil"); }

    // The middle of what lies between the pictures of the first two cells.
    QPoint gap() const
    {
        const QPointF left = thumbnail(0)->mapToScene(QPointF(thumbnail(0)->width(), 60));
        const QPointF right = thumbnail(1)->mapToScene(QPointF(0, 60));
        return ((left + right) / 2).toPoint();
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
    tap(place, 200'000);
    EXPECT_FALSE(state.isDetailViewActive());
    tap(place, 200'100);
    EXPECT_TRUE(state.isDetailViewActive());
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
