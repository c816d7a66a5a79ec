#include "platform/Localization.h"
#include "views/GridFixture.h"

using namespace Qorvane;

namespace {

const QColor white(Qt::white);

/// Where the parts of a cell lie, how large they are and what colours they have.
class CellGeometryTest : public GridFixture
{
protected:
    // A folder with a video, whose cell is the first, before so many pictures.
    void showFolderWithVideo(int pictureCount)
    {
        folder = makeFolder(QStringLiteral("Photos"), pictureCount);
        QFile video(videoPath());
        ASSERT_TRUE(video.open(QIODevice::WriteOnly));
        video.write("not a video");
        video.close();
        state.folderAdding()->add({QUrl::fromLocalFile(folder)});
        ASSERT_TRUE(waitUntil([&] { return state.pages()->photos()->count() == pictureCount + 1; }));
        ASSERT_TRUE(waitUntil([this] { return cell("photoGrid", 0) != nullptr; }));
        waitForFrame();
    }

    QString videoPath() const { return folder + QStringLiteral("/clip.mp4"); }

    QQuickItem *thumbnail(const char *grid, int index) const
    {
        return cell(grid, index)->findChild<QQuickItem *>(QStringLiteral("thumbnail"));
    }
    // In the window.
    QRectF frame(const char *grid, int index) const
    {
        QQuickItem *const body = thumbnail(grid, index);
        return body->mapRectToScene(body->boundingRect());
    }
    static QRectF within(QQuickItem *outer, QQuickItem *inner)
    {
        return inner->mapRectToItem(outer, inner->boundingRect());
    }
    // The first cell of the second line.
    int below(const char *grid) const
    {
        int index = 1;
        while (cell(grid, index) && cell(grid, index)->y() == cell(grid, 0)->y())
            ++index;
        return index;
    }

    static bool isNear(const QColor &a, const QColor &b)
    {
        constexpr int rounding = 2;
        return std::abs(a.red() - b.red()) <= rounding && std::abs(a.green() - b.green()) <= rounding &&
               std::abs(a.blue() - b.blue()) <= rounding;
    }

    // On the cell of a video.
    void checkBadges(const char *grid, int index)
    {
        QQuickItem *const body = thumbnail(grid, index);
        QQuickItem *const badge = itemBelow(cell(grid, index), "videoWord");
        ASSERT_TRUE(badge);
        QQuickItem *const word = badge->childItems().constFirst();
        EXPECT_EQ(word->property("text").toString(), localized("VIDEO"));
        const QFont font = word->property("font").value<QFont>();
        EXPECT_EQ(font.pixelSize(), 10);
        EXPECT_EQ(font.weight(), QFont::Bold);
        EXPECT_EQ(word->property("color").value<QColor>(), white);
        EXPECT_EQ(within(body, badge).topLeft(), QPointF(6, 6));
        EXPECT_EQ(within(badge, word), QRectF(6, 2, badge->width() - 12, badge->height() - 4));
        EXPECT_EQ(badge->property("radius").toInt(), 4);
        const QColor red = badge->property("color").value<QColor>();
        EXPECT_GT(red.hsvSaturation(), 180);
        EXPECT_TRUE(red.hsvHue() < 10 || red.hsvHue() > 350);

        QQuickItem *const disc = itemBelow(cell(grid, index), "videoDisc");
        ASSERT_TRUE(disc);
        EXPECT_EQ(within(body, disc), QRectF(body->width() - 48, body->height() - 48, 40, 40));
        EXPECT_EQ(disc->property("radius").toInt(), 20);
        EXPECT_EQ(disc->property("color").value<QColor>(), QColor(0, 0, 0, 153));
        QQuickItem *const symbol = itemBelow(disc, "playSymbol");
        ASSERT_TRUE(symbol);
        EXPECT_EQ(symbol->property("name").toString(), QStringLiteral("play.circle.fill"));
        EXPECT_EQ(symbol->property("color").value<QColor>(), white);
        EXPECT_EQ(within(disc, symbol), QRectF(9, 9, 22, 22)); // in the size of a title, in the middle
    }
};

} // namespace

TEST_F(CellGeometryTest, photographsAreSquaresOfTwoHundredWithGapsOfTenBetweenTheLines)
{
    showFolder(12);
    EXPECT_EQ(frame("photoGrid", 0).size(), QSizeF(200, 200));
    const QRectF second = frame("photoGrid", below("photoGrid"));
    EXPECT_EQ(second.left(), frame("photoGrid", 0).left());
    EXPECT_EQ(second.top(), frame("photoGrid", 0).bottom() + 10);
    EXPECT_GE(frame("photoGrid", 1).left(), frame("photoGrid", 0).right() + 16);
}

TEST_F(CellGeometryTest, hitsAreAHundredAndEightyWideWithGapsOfSixteenBetweenTheLines)
{
    showFolder(12);
    showResults({0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11});
    EXPECT_EQ(frame("resultsGrid", 0).size(), QSizeF(180, 120));
    QQuickItem *const first = cell("resultsGrid", 0);
    QQuickItem *const caption = itemBelow(first, "caption");
    EXPECT_EQ(caption->width(), 180);
    EXPECT_EQ(caption->property("font").value<QFont>().pixelSize(), 11);
    EXPECT_GE(within(first, caption).top(), 120);
    const int second = below("resultsGrid");
    EXPECT_EQ(cell("resultsGrid", second)->y(), first->y() + first->height() + 16);
    // Room on all sides.
    const QRectF grid = item("resultsGrid")->mapRectToScene(item("resultsGrid")->boundingRect());
    EXPECT_GE(frame("resultsGrid", 0).left() - grid.left(), 16);
    EXPECT_EQ(frame("resultsGrid", 0).top() - grid.top(), 16);
}

TEST_F(CellGeometryTest, picturesAreRoundAtTheCorners)
{
    showFolder(1);
    showResults({0});
    for (const char *grid : {"photoGrid", "resultsGrid"}) {
        if (grid == std::string("photoGrid"))
            QTest::keyClick(window.get(), Qt::Key_Escape);
        else
            type(QStringLiteral("y"));
        ASSERT_TRUE(waitUntil([&] { return item(grid)->isVisible() && cell(grid, 0); }));
        QTest::mouseMove(window.get(), QPoint(5, 5));
        ASSERT_TRUE(waitUntil([&] { return thumbnail(grid, 0)->property("isLoaded").toBool(); }));
        const QPointF corner = frame(grid, 0).topLeft();
        const QColor ground = shownAt(corner - QPointF(4, 4));
        ASSERT_TRUE(waitUntil([&] { return !isNear(shownAt(corner + QPointF(60, 60)), ground); }));
        EXPECT_TRUE(isNear(shownAt(corner + QPointF(1, 1)), ground)) << grid;
        EXPECT_FALSE(isNear(shownAt(corner + QPointF(3, 3)), ground)) << grid;
        EXPECT_FALSE(isNear(shownAt(corner + QPointF(12, 0)), ground)) << grid;
    }
}

TEST_F(CellGeometryTest, anEmptyCellIsAGroundOfItsOwn)
{
    holdThumbnails();
    showFolder(2);
    EXPECT_TRUE(isNear(shownAt(frame("photoGrid", 0).center()), QColor(0xEC, 0xEC, 0xEF)));
    showResults({0});
    // Gray at an opacity of 0.3, on white.
    const QColor gray(0x8E, 0x8E, 0x93);
    const auto mixed = [](int channel) { return int(255 * 0.7 + channel * 0.3); };
    EXPECT_TRUE(isNear(shownAt(frame("resultsGrid", 0).center() + QPointF(40, 0)),
                       QColor(mixed(gray.red()), mixed(gray.green()), mixed(gray.blue()))));
}

TEST_F(CellGeometryTest, theMarkOfAnEmptyHitIsWhite)
{
    holdThumbnails();
    showFolder(1);
    const auto markColour = [this](const char *grid) {
        QQuickItem *mark = nullptr;
        EXPECT_TRUE(waitUntil([&] { return (mark = itemBelow(cell(grid, 0), "progress")) != nullptr; }))
            << grid;
        return mark ? mark->property("color").value<QColor>() : QColor();
    };
    EXPECT_EQ(markColour("photoGrid"), QColor(0x62, 0x62, 0x67));
    showResults({0});
    EXPECT_EQ(markColour("resultsGrid"), white);
}

TEST_F(CellGeometryTest, aVideoHasItsTwoBadgesInBothGrids)
{
    showFolderWithVideo(1);
    checkBadges("photoGrid", 0);
    EXPECT_FALSE(itemBelow(cell("photoGrid", 1), "videoWord"));
    found = {{FileUrl::file(videoPath()), 0.5F, 0.2F}};
    showResults({0});
    checkBadges("resultsGrid", 0);
    EXPECT_FALSE(itemBelow(cell("resultsGrid", 1), "videoDisc"));
}

TEST_F(CellGeometryTest, thePlaySymbolCastsAShadowAroundItsDisc)
{
    holdThumbnails();
    showFolderWithVideo(0);
    QTest::mouseMove(window.get(), QPoint(5, 5));
    waitForFrame();
    QQuickItem *const disc = itemBelow(cell("photoGrid", 0), "videoDisc");
    const QPointF left = disc->mapToScene(QPointF(0, disc->height() / 2));
    const auto lightness = [&](int distance) {
        return shownAt(left - QPointF(distance + 0.5, 0)).lightness();
    };
    const int ground = lightness(12);
    EXPECT_EQ(lightness(5), ground);
    EXPECT_LT(lightness(1), ground - 20);
    EXPECT_LT(lightness(0), lightness(1) - 20);
}
