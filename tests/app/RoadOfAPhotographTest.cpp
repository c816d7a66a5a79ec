#include "app/ApplicationFixture.h"
#include "app/DrawnPictures.h"
#include "encoders/StarterEncoders.h"
#include "views/style/ProgressRing.h"

#include <algorithm>

using namespace Qorvane;

namespace {

class RoadOfAPhotograph : public ApplicationFixture
{
protected:
    // How far the rings have come that show below an item.
    static QList<double> shownRings(const QQuickItem *top)
    {
        QList<double> rings;
        if (!top->isVisible())
            return rings;
        if (const auto *const ring = qobject_cast<const ProgressRing *>(top))
            rings.append(ring->progress());
        for (const QQuickItem *const child : top->childItems())
            rings += shownRings(child);
        return rings;
    }
};

} // namespace

TEST_F(RoadOfAPhotograph, leadsFromItsFolderOverASearchToTagsAndStars)
{
    if (!installStarter())
        GTEST_SKIP() << noStarter;
    const QString drawings =
        makeFolder(QStringLiteral("Drawings"), {{QStringLiteral("a.png"), drawnTrafficLight()},
                                                {QStringLiteral("b.png"), drawnClock()},
                                                {QStringLiteral("c.png"), drawnHoneycomb()}});
    const QString puzzles =
        makeFolder(QStringLiteral("Puzzles"), {{QStringLiteral("puzzle.png"), drawnCrossword()}});
    open();

    // A folder is dragged onto the window: its run shows a ring that fills, and in the end a check mark.
    QList<double> progress;
    QSet<FolderProcessingState> states;
    const auto note = QObject::connect(&library(), &QorManage::folderProcessingDetailsChanged, [&] {
        states.insert(library().processingState(FileUrl::directory(drawings)));
        progress.append(library().folderProcessingProgress().value(drawings));
    });
    QList<double> drawn;
    const auto look = QObject::connect(state().sidebar()->rows(), &QAbstractItemModel::dataChanged,
                                       [&] { drawn += shownRings(item("sidebarList")); });
    dropFolder(drawings);
    ASSERT_TRUE(waitUntil([&] { return shownNames(state().pages()->photos()).size() == 3; }));
    ASSERT_TRUE(waitUntil([&] { return states.contains(FolderProcessingState::completed); }));
    QObject::disconnect(note);
    EXPECT_TRUE(states.contains(FolderProcessingState::thumbnails));
    EXPECT_TRUE(states.contains(FolderProcessingState::vectors));
    EXPECT_TRUE(std::any_of(progress.cbegin(), progress.cend(), [](double p) { return p > 0 && p < 1; }));
    EXPECT_TRUE(waitUntil([&] {
        return sidebarRow(QStringLiteral("Drawings"))->property("runState").toInt() ==
               SidebarListModel::Completed;
    }));
    QObject::disconnect(look);
    EXPECT_TRUE(std::ranges::any_of(drawn, [](double p) { return p > 0 && p < 1; })) << "no ring was filling";
    EXPECT_TRUE(shownRings(item("sidebarList")).isEmpty());
    EXPECT_TRUE(itemBelow(sidebarRow(QStringLiteral("Drawings")), "checkMark"));

    // Words find the picture that shows what they say.
    click(item("searchField"));
    type(QStringLiteral("clock"));
    ASSERT_TRUE(waitUntil([&] {
        return item("resultsGrid")->isVisible() &&
               shownNames(state().pages()->results()).value(0) == QStringLiteral("b.png") &&
               cell("resultsGrid", 0);
    }));

    // A double click opens it, in the place of the grid; Escape leads back to the hits.
    doubleClick(cell("resultsGrid", 0));
    ASSERT_TRUE(state().isDetailViewActive());
    EXPECT_EQ(state().selected()->name(), QStringLiteral("b.png"));
    ASSERT_TRUE(waitUntil([&] { return item("fullPicture")->isVisible(); }));
    EXPECT_FALSE(item("resultsGrid")->isVisible());
    QTest::keyClick(drivenWindow(), Qt::Key_Escape);
    EXPECT_FALSE(state().isDetailViewActive());
    EXPECT_TRUE(item("resultsGrid")->isVisible());

    // Another folder ends the search.
    dropFolder(puzzles);
    click(sidebarRow(QStringLiteral("Puzzles")));
    EXPECT_TRUE(waitUntil(
        [&] { return shownNames(state().pages()->photos()) == QStringList{QStringLiteral("puzzle.png")}; }));
    EXPECT_EQ(state().search()->text(), QString());
    EXPECT_TRUE(waitUntil([&] { return item("photoGrid")->isVisible(); }));

    EXPECT_TRUE(waitUntil([&] { return isDone(puzzles); }));

    // What was tagged and rated is behind its row in the sidebar.
    const auto picture = [&](const char *name) {
        return FileUrl::file(drawings + QLatin1Char('/') + QLatin1String(name));
    };
    library().addTag(QStringLiteral("时间"), picture("b.png"));
    library().setRating(4, picture("c.png"));
    click(sidebarRow(QStringLiteral("时间")));
    EXPECT_TRUE(waitUntil(
        [&] { return shownNames(state().pages()->photos()) == QStringList{QStringLiteral("b.png")}; }));
    EXPECT_EQ(state().pages()->title(), QStringLiteral("时间"));
    click(sidebarRow(QStringLiteral("★★★★")));
    EXPECT_TRUE(waitUntil(
        [&] { return shownNames(state().pages()->photos()) == QStringList{QStringLiteral("c.png")}; }));
    click(sidebarRow(QStringLiteral("Drawings")));
    EXPECT_TRUE(waitUntil([&] { return shownNames(state().pages()->photos()).size() == 3; }));
}
