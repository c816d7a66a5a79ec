#include "views/ContentViewFixture.h"
#include "views/DesktopSettings.h"

#include <QAccessible>
#include <QDropEvent>
#include <QMimeData>

using namespace Qorvane;

namespace {

using ContentViewTest = ContentViewFixture;

} // namespace

TEST_F(ContentViewTest, isNeverSmallerThanItsColumnsNeed)
{
    EXPECT_EQ(window->minimumSize(), QSize(1200, 800));
}

TEST_F(ContentViewTest, anEmptyLibraryLeadsToItsFirstFolder)
{
    EXPECT_TRUE(item("nothingSelectedPage")->isVisible());
    EXPECT_TRUE(waitUntil([this] { return item("firstFolderButton")->isVisible(); }));
    EXPECT_TRUE(item("firstFolderHint")->isVisible());
}

TEST_F(ContentViewTest, aLibraryOfEarlierRunsIsNotGreetedAsEmpty)
{
    addFolder(QStringLiteral("Photos"), 1);
    QorManage later;
    ContentViewState laterState(
        later, [this](const QString &text, const QList<FileUrl> &, int) { return search(text); }, thumbnails);
    const std::unique_ptr<QQuickWindow> laterWindow = makeContentWindow(engine, laterState);
    laterWindow->show();
    const auto isGreeted = [&laterWindow](const char *name) {
        return laterWindow->findChild<QQuickItem *>(QString::fromLatin1(name))->isVisible();
    };
    EXPECT_TRUE(isGreeted("nothingSelectedPage"));
    EXPECT_FALSE(isGreeted("firstFolderButton"));
    EXPECT_FALSE(isGreeted("firstFolderHint"));
    bool wasGreeted = false;
    QObject::connect(laterState.sidebar(), &Sidebar::isLibraryEmptyChanged, &later,
                     [&] { wasGreeted = wasGreeted || isGreeted("firstFolderButton"); });
    EXPECT_TRUE(waitUntil([&later] { return later.libraryFolders().size() == 1; }));
    EXPECT_FALSE(wasGreeted);
    later.cancelAllTasks();
}

TEST_F(ContentViewTest, anAddedFolderGetsARowAndShowsItsPhotographs)
{
    addFolder(QStringLiteral("Photos"), 6);
    EXPECT_EQ(state.sidebar()->rows()->selectedRow(), 2);
    EXPECT_EQ(item("photoGrid")->property("count").toInt(), 6);
    EXPECT_EQ(state.pages()->title(), QStringLiteral("Photos"));
    EXPECT_FALSE(item("nothingSelectedPage")->isVisible());
}

TEST_F(ContentViewTest, cellsFillWithTheirThumbnails)
{
    addFolder(QStringLiteral("Photos"), 3);
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(waitUntil([&] { return cell("photoGrid", i) != nullptr; }));
        auto *const thumbnail = cell("photoGrid", i)->findChild<QQuickItem *>(QStringLiteral("thumbnail"));
        ASSERT_TRUE(thumbnail);
        EXPECT_TRUE(waitUntil([&] { return thumbnail->property("isLoaded").toBool(); }));
    }
    waitForFrame();
    const QPointF middle = cell("photoGrid", 0)->mapToScene(QPointF(100, 100));
    EXPECT_TRUE(waitUntil([&] {
        const QColor shown = window->grabWindow().pixelColor(middle.toPoint());
        return shown.hsvHue() < 20 || shown.hsvHue() > 340;
    }));
}

TEST_F(ContentViewTest, aFolderDroppedOnTheWindowIsAddedAndAFileIsNot)
{
    const QString path = makeFolder(QStringLiteral("Dropped"), 2);
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(fileUrl(path, 0)), QUrl::fromLocalFile(path)});
    const QPoint position(700, 400);
    QDragEnterEvent enter(position, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(window.get(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    EXPECT_TRUE(waitUntil([this] { return item("dropVeil")->opacity() == 1; }));
    QDropEvent drop(position, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(window.get(), &drop);
    EXPECT_TRUE(waitUntil([&] { return state.pages()->photos()->count() == 2; }));
    EXPECT_EQ(library.libraryFolders().size(), 1);
    EXPECT_TRUE(waitUntil([this] { return !item("dropVeil")->isVisible(); }));
}

TEST_F(ContentViewTest, aDropIsNeverAMove)
{
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(makeFolder(QStringLiteral("Moved"), 1))});
    const QPoint position(700, 400);
    const Qt::DropActions either = Qt::CopyAction | Qt::MoveAction;
    QDragEnterEvent enter(position, either, &data, Qt::LeftButton, Qt::ShiftModifier);
    enter.setDropAction(Qt::MoveAction);
    QCoreApplication::sendEvent(window.get(), &enter);
    QDropEvent drop(position, either, &data, Qt::LeftButton, Qt::ShiftModifier);
    drop.setDropAction(Qt::MoveAction);
    QCoreApplication::sendEvent(window.get(), &drop);
    EXPECT_TRUE(drop.isAccepted());
    EXPECT_EQ(drop.dropAction(), Qt::CopyAction);
    EXPECT_TRUE(waitUntil([&] { return state.pages()->photos()->count() == 1; }));
}

TEST_F(ContentViewTest, addressesOfOtherMachinesAreNotTakenFromADrag)
{
    QMimeData data;
    data.setUrls({QUrl(QStringLiteral("https://example.org/picture.jpg"))});
    QDragEnterEvent enter(QPoint(700, 400), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(window.get(), &enter);
    EXPECT_FALSE(enter.isAccepted());
    EXPECT_FALSE(item("dropOverlay")->property("containsDrag").toBool());
}

TEST_F(ContentViewTest, typingSearchesAtEveryKeyAndShowsTheHits)
{
    const QString folder = addFolder(QStringLiteral("Photos"), 6);
    found = {{FileUrl::file(fileUrl(folder, 4)), 0.4f, 0.1f},
             {FileUrl::file(fileUrl(folder, 1)), 0.3f, 0.1f}};
    click(item("searchField"));
    type(QStringLiteral("dog"));
    ASSERT_TRUE(waitUntil([&] { return queries.size() == 3; }));
    EXPECT_EQ(queries, (QStringList{QStringLiteral("d"), QStringLiteral("do"), QStringLiteral("dog")}));
    ASSERT_TRUE(waitUntil([&] { return item("resultsGrid")->isVisible(); }));
    EXPECT_EQ(item("resultsGrid")->property("count").toInt(), 2);
    EXPECT_FALSE(item("photoGrid")->isVisible());
    ASSERT_TRUE(waitUntil([&] { return cell("resultsGrid", 0) != nullptr; }));
    EXPECT_EQ(cell("resultsGrid", 0)->property("name").toString(), QStringLiteral("img4.jpg"));
}

TEST_F(ContentViewTest, escapeEmptiesTheFieldAndBringsTheGridBack)
{
    addFolder(QStringLiteral("Photos"), 2);
    click(item("searchField"));
    type(QStringLiteral("x"));
    ASSERT_TRUE(waitUntil([&] { return item("noResultsPage")->isVisible(); }));
    QTest::keyClick(window.get(), Qt::Key_Escape);
    EXPECT_TRUE(item("photoGrid")->isVisible());
    EXPECT_EQ(item("searchField")->property("text").toString(), QString());
}

TEST_F(ContentViewTest, theFieldsOwnButtonBringsTheGridBack)
{
    addFolder(QStringLiteral("Photos"), 2);
    click(item("searchField"));
    type(QStringLiteral("x"));
    ASSERT_TRUE(waitUntil([&] { return item("noResultsPage")->isVisible(); }));
    waitForFrame();
    click(item("clearSearchButton"));
    EXPECT_TRUE(item("photoGrid")->isVisible());
}

TEST_F(ContentViewTest, theFieldKeepsTheKeysThatItsOwnButtonHad)
{
    addFolder(QStringLiteral("Photos"), 2);
    click(item("searchField"));
    type(QStringLiteral("x"));
    item("clearSearchButton")->forceActiveFocus(Qt::TabFocusReason);
    QTest::keyClick(window.get(), Qt::Key_Space);
    EXPECT_EQ(item("searchField")->property("text").toString(), QString());
    EXPECT_TRUE(item("searchField")->hasActiveFocus());
}

TEST_F(ContentViewTest, controlFGoesToTheSearchField)
{
    addFolder(QStringLiteral("Photos"), 2);
    waitForFrame();
    click(cell("photoGrid", 0));
    EXPECT_FALSE(item("searchField")->hasActiveFocus());
    QTest::keyClick(window.get(), Qt::Key_F, Qt::ControlModifier);
    EXPECT_TRUE(item("searchField")->hasActiveFocus());
}

TEST_F(ContentViewTest, choosingAnotherFolderEndsTheSearch)
{
    addFolder(QStringLiteral("One"), 2);
    makeFolder(QStringLiteral("Two"), 3);
    state.folderAdding()->add({QUrl::fromLocalFile(home.filePath(QStringLiteral("Two")))});
    ASSERT_TRUE(waitUntil([&] { return library.libraryFolders().size() == 2; }));
    click(item("searchField"));
    type(QStringLiteral("x"));
    ASSERT_TRUE(waitUntil([&] { return item("noResultsPage")->isVisible(); }));
    waitForFrame();
    click(cell("sidebarList", 3));
    EXPECT_EQ(item("searchField")->property("text").toString(), QString());
    EXPECT_TRUE(waitUntil([&] { return state.pages()->photos()->count() == 3; }));
    EXPECT_EQ(state.pages()->title(), QStringLiteral("Two"));
}

TEST_F(ContentViewTest, anEmptyFolderSaysSo)
{
    makeFolder(QStringLiteral("Empty"), 0);
    state.folderAdding()->add({QUrl::fromLocalFile(home.filePath(QStringLiteral("Empty")))});
    EXPECT_TRUE(waitUntil([&] { return item("emptyPage")->isVisible(); }));
}

TEST_F(ContentViewTest, followsTheDesktopsColoursLive)
{
    WithColorScheme scheme(ColorScheme::light);
    const QColor light = window->color();
    scheme.set(ColorScheme::dark);
    EXPECT_LT(window->color().lightness(), 60);
    EXPECT_GT(light.lightness(), 200);
}

TEST_F(ContentViewTest, cellsAndControlsHaveNamesForScreenReaders)
{
    addFolder(QStringLiteral("Photos"), 1);
    ASSERT_TRUE(waitUntil([&] { return cell("photoGrid", 0) != nullptr; }));
    const auto nameOf = [](QQuickItem *target) {
        QAccessibleInterface *const interface = QAccessible::queryAccessibleInterface(target);
        return interface ? interface->text(QAccessible::Name) : QString();
    };
    EXPECT_EQ(nameOf(cell("photoGrid", 0)), QStringLiteral("img0.jpg"));
    EXPECT_EQ(nameOf(cell("sidebarList", 2)), QStringLiteral("Photos"));
    EXPECT_FALSE(nameOf(item("searchField")).isEmpty());
    EXPECT_FALSE(nameOf(item("addFolderButton")).isEmpty());
}
