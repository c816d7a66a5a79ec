#include "platform/desktop/DesktopAppearance.h"
#include "views/ContentViewFixture.h"

#include <QAccessible>

using namespace Qorvane;

namespace {

/// The three columns of the window: their widths, the toolbar over the middle one, and who has the keys.
class ContentColumnsTest : public ContentViewFixture
{
protected:
    void drag(const char *splitter, int distance)
    {
        QQuickItem *const edge = item(splitter);
        const QPoint start = edge->mapToScene(QPointF(4, 300)).toPoint();
        QTest::mousePress(window.get(), Qt::LeftButton, {}, start);
        constexpr int steps = 10;
        for (int step = 1; step <= steps; ++step)
            QTest::mouseMove(window.get(), start + QPoint(distance * step / steps, 0));
        QTest::mouseRelease(window.get(), Qt::LeftButton, {}, start + QPoint(distance, 0));
    }

    double width(const char *name) const { return item(name)->width(); }
    bool hasKeys(const char *name) const { return item(name)->hasActiveFocus(); }

    void select(const QString &folder, const QList<int> &indices)
    {
        QSet<FileUrl> urls;
        for (const int index : indices)
            urls.insert(FileUrl::file(fileUrl(folder, index)));
        state.selection().setUrls(urls);
    }

    // Opens a picture as the grid does, and waits until it is drawn.
    void open(const QString &folder, int index)
    {
        select(folder, {index});
        state.setDetailViewActive(true);
        ASSERT_TRUE(waitUntil([this] { return item("fullPicture")->isVisible(); }));
    }

    // So wide that the middle column is wider than its content may be.
    void widenWindow()
    {
        window->resize(2600, 900);
        ASSERT_TRUE(waitUntil([this] { return width("contentColumn") == 2600 - 530; }));
    }
    void expectInTheMiddle(const char *name) const
    {
        QQuickItem *const content = item(name);
        EXPECT_TRUE(content->isVisible());
        EXPECT_EQ(content->width(), 1200);
        EXPECT_EQ(content->mapToScene(QPointF(600, 0)).x(), 230 + (2600 - 530) / 2);
    }

    QString text(const char *name) const { return item(name)->property("text").toString(); }

    QObject *sortMenu() const { return window->findChild<QObject *>(QStringLiteral("sortMenu")); }

    void choose(const char *entry)
    {
        click(item("sortButton"));
        ASSERT_TRUE(waitUntil([this] { return sortMenu()->property("opened").toBool(); }));
        click(popupItem(entry));
        ASSERT_TRUE(waitUntil([this] { return !sortMenu()->property("visible").toBool(); }));
    }
};

} // namespace

TEST_F(ContentColumnsTest, beginAtTheirIdealWidths)
{
    EXPECT_EQ(width("sidebar"), 230);
    EXPECT_EQ(width("contentColumn"), 750);
    EXPECT_EQ(width("inspectorColumn"), 300);
}

TEST_F(ContentColumnsTest, thePointerOverAnEdgeMovesNothing)
{
    QQuickItem *const splitter = item("sidebarSplitter");
    for (int x = 0; x < int(splitter->width()); ++x)
        QTest::mouseMove(window.get(), splitter->mapToScene(QPointF(x, 300)).toPoint());
    EXPECT_EQ(width("sidebar"), 230);
}

TEST_F(ContentColumnsTest, eachEdgeCanBeDrawnToEitherSideAndGoesBackAtADoubleClick)
{
    drag("sidebarSplitter", 60);
    EXPECT_EQ(width("sidebar"), 290);
    drag("sidebarSplitter", -200);
    EXPECT_EQ(width("sidebar"), 200);
    drag("inspectorSplitter", -100);
    EXPECT_EQ(width("inspectorColumn"), 400);
    EXPECT_EQ(width("contentColumn"), 680);

    for (const char *splitter : {"sidebarSplitter", "inspectorSplitter"})
        QTest::mouseDClick(window.get(), Qt::LeftButton, {},
                           item(splitter)->mapToScene(QPointF(4, 400)).toPoint());
    EXPECT_EQ(width("sidebar"), 230);
    EXPECT_EQ(width("inspectorColumn"), 300);
}

TEST_F(ContentColumnsTest, eachEdgeCanBeMovedByKeysAndGoesBackAtHome)
{
    for (const auto &[splitter, column, ideal, step] :
         {std::tuple("sidebarSplitter", "sidebar", 230, 8),
          std::tuple("inspectorSplitter", "inspectorColumn", 300, -8)}) {
        QQuickItem *const edge = item(splitter);
        EXPECT_TRUE(edge->activeFocusOnTab());
        QAccessibleInterface *const accessible = QAccessible::queryAccessibleInterface(edge);
        EXPECT_EQ(accessible->role(), QAccessible::Splitter);
        EXPECT_FALSE(accessible->text(QAccessible::Name).isEmpty());
        QQuickItem *const line = itemBelow(edge, "splitterLine");
        const QColor unfocused = line->property("color").value<QColor>();
        edge->forceActiveFocus(Qt::TabFocusReason);
        EXPECT_NE(line->property("color").value<QColor>(), unfocused);
        QTest::keyClick(window.get(), Qt::Key_Right);
        EXPECT_EQ(width(column), ideal + step);
        QTest::keyClick(window.get(), Qt::Key_Left);
        QTest::keyClick(window.get(), Qt::Key_Left);
        EXPECT_EQ(width(column), ideal - step);
        QTest::keyClick(window.get(), Qt::Key_Home);
        EXPECT_EQ(width(column), ideal);
        QAccessibleActionInterface *const actions = accessible->actionInterface();
        actions->doAction(QAccessibleActionInterface::increaseAction());
        EXPECT_EQ(width(column), ideal + step);
        actions->doAction(QAccessibleActionInterface::decreaseAction());
        EXPECT_EQ(width(column), ideal);
    }
}

TEST_F(ContentColumnsTest, theShortcutsRestWhileAMenuIsOpen)
{
    addFolder(QStringLiteral("Photos"), 2);
    waitForFrame();
    click(item("sortButton"));
    ASSERT_TRUE(waitUntil([this] { return sortMenu()->property("opened").toBool(); }));
    QTest::keyClick(window.get(), Qt::Key_I, Qt::ControlModifier);
    QTest::keyClick(window.get(), Qt::Key_F, Qt::ControlModifier);
    EXPECT_FALSE(state.isInspectorCollapsed());
    EXPECT_FALSE(hasKeys("searchField"));
    QTest::keyClick(window.get(), Qt::Key_Escape);
    ASSERT_TRUE(waitUntil([this] { return !sortMenu()->property("visible").toBool(); }));
    QTest::keyClick(window.get(), Qt::Key_F, Qt::ControlModifier);
    EXPECT_TRUE(hasKeys("searchField"));
}

TEST_F(ContentColumnsTest, thePhotographsOfAVeryWideWindowStayInTheMiddle)
{
    widenWindow();
    addFolder(QStringLiteral("Photos"), 2);
    expectInTheMiddle("photoGrid");
}

TEST_F(ContentColumnsTest, theHitsOfAVeryWideWindowStayInTheMiddle)
{
    widenWindow();
    const QString folder = addFolder(QStringLiteral("Photos"), 2);
    found = {{FileUrl::file(fileUrl(folder, 1)), 0.4f, 0.1f}};
    click(item("searchField"));
    type(QStringLiteral("x"));
    ASSERT_TRUE(waitUntil([this] { return item("resultsGrid")->isVisible(); }));
    expectInTheMiddle("resultsGrid");
}

TEST_F(ContentColumnsTest, anOpenPictureOfAVeryWideWindowStaysInTheMiddle)
{
    widenWindow();
    open(addFolder(QStringLiteral("Photos"), 2), 1);
    expectInTheMiddle("inlineDetailView");
    EXPECT_LT(width("fullPicture"), 1200);
}

TEST_F(ContentColumnsTest, controlICollapsesTheInspectorAndBringsItBack)
{
    QTest::keyClick(window.get(), Qt::Key_I, Qt::ControlModifier);
    EXPECT_TRUE(state.isInspectorCollapsed());
    EXPECT_TRUE(waitUntil([this] { return width("inspectorColumn") == 0; }));
    EXPECT_EQ(width("contentColumn"), 1050);
    EXPECT_FALSE(item("inspectorColumn")->isVisible());
    QTest::keyClick(window.get(), Qt::Key_I, Qt::ControlModifier);
    EXPECT_TRUE(waitUntil([this] { return width("inspectorColumn") == 300; }));
    EXPECT_EQ(width("contentColumn"), 750);
}

TEST_F(ContentColumnsTest, aCollapsedInspectorsEdgeHasNoKeys)
{
    item("inspectorSplitter")->forceActiveFocus(Qt::TabFocusReason);
    QTest::keyClick(window.get(), Qt::Key_I, Qt::ControlModifier);
    ASSERT_TRUE(waitUntil([this] { return width("inspectorColumn") == 0; }));
    EXPECT_FALSE(hasKeys("inspectorSplitter"));
    QTest::keyClick(window.get(), Qt::Key_Left);
    QTest::keyClick(window.get(), Qt::Key_I, Qt::ControlModifier);
    EXPECT_TRUE(waitUntil([this] { return width("inspectorColumn") == 300; }));
}

TEST_F(ContentColumnsTest, theToolbarsButtonDoesTheSameAndSaysWhatItWillDo)
{
    const auto name = [this] {
        return QAccessible::queryAccessibleInterface(item("inspectorButton"))->text(QAccessible::Name);
    };
    EXPECT_EQ(name(), QStringLiteral("Hide Info Panel"));
    EXPECT_TRUE(item("inspectorButton")->property("isOn").toBool());
    click(item("inspectorButton"));
    EXPECT_EQ(name(), QStringLiteral("Show Info Panel"));
    EXPECT_FALSE(item("inspectorButton")->property("isOn").toBool());
    EXPECT_TRUE(waitUntil([this] { return width("inspectorColumn") == 0; }));
}

TEST_F(ContentColumnsTest, theSortMenuSetsCriterionAndOrderAndMarksThem)
{
    addFolder(QStringLiteral("Photos"), 3);
    waitForFrame();
    choose("sortDescending");
    EXPECT_EQ(library.sortOrder(), SortOrder::descending);
    EXPECT_TRUE(waitUntil([this] {
        return state.pages()->photos()->urls().constFirst().lastPathComponent() == QStringLiteral("img2.jpg");
    }));
    choose("sortByModificationDate");
    EXPECT_EQ(library.sortCriterion(), SortCriterion::modificationDate);

    click(item("sortButton"));
    ASSERT_TRUE(waitUntil([this] { return sortMenu()->property("opened").toBool(); }));
    const auto isMarked = [this](const char *entry) {
        return popupItem(entry)->property("isChosen").toBool();
    };
    EXPECT_TRUE(isMarked("sortDescending"));
    EXPECT_FALSE(isMarked("sortAscending"));
    EXPECT_TRUE(isMarked("sortByModificationDate"));
    EXPECT_FALSE(isMarked("sortByFileName"));
    QTest::keyClick(window.get(), Qt::Key_Escape);
    EXPECT_TRUE(waitUntil([this] { return !sortMenu()->property("visible").toBool(); }));
}

TEST_F(ContentColumnsTest, theSortMenuIsReachedByKeysAlone)
{
    addFolder(QStringLiteral("Photos"), 2);
    item("sortButton")->forceActiveFocus(Qt::TabFocusReason);
    QTest::keyClick(window.get(), Qt::Key_Space);
    ASSERT_TRUE(waitUntil([this] { return sortMenu()->property("opened").toBool(); }));
    for (int i = 0; i < 6; ++i)
        QTest::keyClick(window.get(), Qt::Key_Down);
    QTest::keyClick(window.get(), Qt::Key_Return);
    EXPECT_EQ(library.sortOrder(), SortOrder::descending);
    ASSERT_TRUE(waitUntil([this] { return !sortMenu()->property("visible").toBool(); }));
    EXPECT_TRUE(hasKeys("sortButton"));
}

TEST_F(ContentColumnsTest, tabGoesThroughTheToolbarToThePhotographs)
{
    addFolder(QStringLiteral("Photos"), 2);
    item("sortButton")->forceActiveFocus(Qt::TabFocusReason);
    for (const char *next : {"inspectorButton", "searchField", "contentColumn"}) {
        QTest::keyClick(window.get(), Qt::Key_Tab);
        EXPECT_TRUE(hasKeys(next)) << next;
    }
    EXPECT_TRUE(state.focus()->isOnDetail());
}

TEST_F(ContentColumnsTest, theInspectorFollowsTheSelection)
{
    const QString folder = addFolder(QStringLiteral("Photos"), 3);
    EXPECT_TRUE(item("inspectorEmptyState")->isVisible());
    select(folder, {1});
    EXPECT_FALSE(item("inspectorEmptyState")->isVisible());
    EXPECT_TRUE(item("inspectorFileName")->isVisible());
    EXPECT_EQ(text("inspectorFileName"), QStringLiteral("img1.jpg"));
    select(folder, {0, 1, 2});
    EXPECT_FALSE(item("inspectorFileName")->isVisible());
    EXPECT_TRUE(item("inspectorCount")->isVisible());
    select(folder, {});
    EXPECT_TRUE(item("inspectorEmptyState")->isVisible());
    EXPECT_FALSE(item("inspectorCount")->isVisible());
}

TEST_F(ContentColumnsTest, anOpenFileTakesThePlaceOfTheGridAndOfItsTitle)
{
    const QString folder = addFolder(QStringLiteral("Photos"), 3);
    open(folder, 1);
    EXPECT_FALSE(item("photoGrid")->isVisible());
    EXPECT_EQ(text("contentTitle"), QStringLiteral("img1.jpg"));
    EXPECT_TRUE(hasKeys("inlineDetailView"));
    // The whole picture, fitted: its hue reaches to the column's edges.
    const QPointF edge = item("fullPicture")->mapToScene(QPointF(4, item("fullPicture")->height() / 2));
    EXPECT_TRUE(waitUntil([&] {
        const QColor shown = window->grabWindow().pixelColor(edge.toPoint());
        return shown.hsvHue() > 30 && shown.hsvHue() < 50 && shown.hsvSaturation() > 150;
    }));
    EXPECT_FALSE(item("playBadge")->isVisible());
}

TEST_F(ContentColumnsTest, escapeLeadsBackToTheGridAndTheKeysToTheSidebar)
{
    const QString folder = addFolder(QStringLiteral("Photos"), 3);
    open(folder, 1);
    QTest::keyClick(window.get(), Qt::Key_Escape);
    EXPECT_TRUE(item("photoGrid")->isVisible());
    EXPECT_FALSE(item("inlineDetailView")->isVisible());
    EXPECT_TRUE(state.selection().urls().isEmpty());
    EXPECT_TRUE(state.focus()->isOnSidebar());
    EXPECT_TRUE(hasKeys("sidebarList"));
}

TEST_F(ContentColumnsTest, theBackButtonLeadsBackToo)
{
    const QString folder = addFolder(QStringLiteral("Photos"), 3);
    EXPECT_FALSE(item("backButton")->isVisible());
    open(folder, 0);
    waitForFrame();
    click(item("backButton"));
    EXPECT_TRUE(item("photoGrid")->isVisible());
    EXPECT_FALSE(state.isDetailViewActive());
}

TEST_F(ContentColumnsTest, aQueryTypedOverAnOpenFileIsTypedToItsEnd)
{
    const QString folder = addFolder(QStringLiteral("Photos"), 3);
    open(folder, 1);
    click(item("searchField"));
    type(QStringLiteral("cat"));
    EXPECT_FALSE(state.isDetailViewActive());
    EXPECT_TRUE(state.selection().urls().isEmpty());
    EXPECT_EQ(text("searchField"), QStringLiteral("cat"));
    EXPECT_TRUE(waitUntil([this] { return item("noResultsPage")->isVisible(); }));
}

TEST_F(ContentColumnsTest, returnInTheSearchFieldGivesTheKeysToTheGrid)
{
    addFolder(QStringLiteral("Photos"), 3);
    click(item("searchField"));
    EXPECT_TRUE(state.focus()->isLentToSearch());
    QTest::keyClick(window.get(), Qt::Key_Return);
    EXPECT_FALSE(state.focus()->isLentToSearch());
    EXPECT_TRUE(state.focus()->isOnDetail());
    EXPECT_TRUE(hasKeys("contentColumn"));
}

TEST_F(ContentColumnsTest, escapeInTheEmptySearchFieldGivesTheKeysBack)
{
    addFolder(QStringLiteral("Photos"), 3);
    for (const char *column : {"sidebarList", "contentColumn"}) {
        item(column)->forceActiveFocus();
        click(item("searchField"));
        type(QStringLiteral("x"));
        QTest::keyClick(window.get(), Qt::Key_Escape);
        EXPECT_TRUE(hasKeys("searchField")) << "it is only emptied";
        QTest::keyClick(window.get(), Qt::Key_Escape);
        EXPECT_TRUE(hasKeys(column)) << column;
    }
}

TEST_F(ContentColumnsTest, aFileThatGivesNoPictureSaysSo)
{
    const QString folder = addFolder(QStringLiteral("Photos"), 1);
    QFile broken(folder + QStringLiteral("/broken.jpg"));
    ASSERT_TRUE(broken.open(QIODevice::WriteOnly));
    broken.write("no picture");
    broken.close();
    state.selection().setUrls({FileUrl::file(broken.fileName())});
    state.setDetailViewActive(true);
    EXPECT_TRUE(waitUntil([this] { return item("noPicturePage")->isVisible(); }));
}

TEST_F(ContentColumnsTest, aPictureOnePixelWideIsShown)
{
    addFolder(QStringLiteral("Photos"), 1);
    QImage strip(1, 10'000, QImage::Format_RGB32);
    strip.fill(Qt::red);
    const QString path = home.filePath(QStringLiteral("strip.png"));
    ASSERT_TRUE(strip.save(path));
    state.selection().setUrls({FileUrl::file(path)});
    state.setDetailViewActive(true);
    EXPECT_TRUE(waitUntil([this] { return item("fullPicture")->isVisible(); }));
    EXPECT_FALSE(item("noPicturePage")->isVisible());
}

TEST_F(ContentColumnsTest, aMovedEdgeIsFollowedByTheOpenPicture)
{
    const QString folder = addFolder(QStringLiteral("Photos"), 1);
    open(folder, 0);
    const double before = item("fullPicture")->width();
    drag("sidebarSplitter", 100);
    EXPECT_EQ(item("fullPicture")->width(), before - 100);
    EXPECT_TRUE(item("fullPicture")->isVisible()) << "it was read from disk again";
}

TEST_F(ContentColumnsTest, aVideoIsOpenedWithThePlayMark)
{
    addFolder(QStringLiteral("Photos"), 1);
    state.selection().setUrls({FileUrl::file(home.filePath(QStringLiteral("absent.mp4")))});
    state.setDetailViewActive(true);
    EXPECT_TRUE(item("playBadge")->isVisible());
    EXPECT_FALSE(item("noPicturePage")->isVisible());
}
