#include "library/QorManage.h"
#include "media/ThumbnailCache.h"
#include "platform/desktop/DesktopAppearance.h"
#include "support/Waiting.h"
#include "views/ContentViewState.h"
#include "views/ContentWindow.h"
#include "views/ThumbnailProvider.h"
#include "views/ThumbnailQueue.h"

#include <QAccessible>
#include <QCoroFuture>
#include <QDir>
#include <QDropEvent>
#include <QFile>
#include <QImage>
#include <QMimeData>
#include <QPromise>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <mutex>

using namespace Qorvane;

namespace {

// Every line on the console is a mistake of ours.
std::mutex messageMutex;
QStringList messages;

void collectMessage(QtMsgType, const QMessageLogContext &, const QString &text)
{
    const std::scoped_lock lock(messageMutex);
    messages.append(text);
}

QImage loadThumbnail(const QString &path)
{
    const std::optional<Image> thumbnail = ThumbnailCache::getThumbnail(FileUrl::file(path));
    return thumbnail ? thumbnail->pixels() : QImage();
}

/// The real window over a real library in a home of its own; only the search is the test's.
class ContentViewTest : public testing::Test
{
protected:
    ContentViewTest()
    {
        messages.clear();
        qInstallMessageHandler(collectMessage);
        setUpEngine(engine, std::make_unique<ThumbnailProvider>(thumbnails, loadThumbnail));
        window = makeContentWindow(engine, state);
    }

    ~ContentViewTest() override
    {
        window.reset();
        qInstallMessageHandler(nullptr);
        const std::scoped_lock lock(messageMutex);
        EXPECT_TRUE(messages.isEmpty()) << messages.join(QLatin1Char('\n')).toStdString();
        library.cancelAllTasks();
    }

    void SetUp() override
    {
        ASSERT_TRUE(window);
        window->show();
        window->requestActivate();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    }

    QCoro::Task<QList<SearchResult>> search(QString text)
    {
        queries.append(text);
        const QList<SearchResult> hits = found; // GCC 12 would move the member itself out
        co_return hits;
    }

    // A folder of small pictures, each in a colour of its own.
    QString makeFolder(const QString &name, int pictureCount)
    {
        const QString path = home.filePath(name);
        QDir().mkpath(path);
        for (int i = 0; i < pictureCount; ++i) {
            QImage picture(320, 240, QImage::Format_RGB32);
            picture.fill(QColor::fromHsv(i * 40 % 360, 200, 220));
            picture.save(QStringLiteral("%1/img%2.jpg").arg(path).arg(i));
        }
        return path;
    }

    // Adds it and waits until its photographs are in the grid.
    QString addFolder(const QString &name, int pictureCount)
    {
        const QString path = makeFolder(name, pictureCount);
        state.addFolders({QUrl::fromLocalFile(path)});
        EXPECT_TRUE(waitUntil([&] { return state.photos()->count() == pictureCount; }));
        EXPECT_TRUE(waitUntil([&] { return item("photoGrid")->isVisible(); }));
        return path;
    }

    QQuickItem *item(const char *name) const
    {
        return window->findChild<QQuickItem *>(QString::fromLatin1(name));
    }

    // What is in a popup lies under the window's overlay.
    QQuickItem *popupItem(const char *name) const { return itemBelow(window->contentItem(), name); }

    static QQuickItem *itemBelow(QQuickItem *top, const char *name)
    {
        if (top->objectName() == QLatin1String(name) && top->isVisible())
            return top;
        for (QQuickItem *const child : top->childItems()) {
            if (QQuickItem *const found = itemBelow(child, name))
                return found;
        }
        return nullptr;
    }

    QQuickItem *cell(const char *grid, int index) const
    {
        QQuickItem *delegate = nullptr;
        QMetaObject::invokeMethod(item(grid), "itemAtIndex", Q_RETURN_ARG(QQuickItem *, delegate),
                                  Q_ARG(int, index));
        return delegate;
    }

    void click(QQuickItem *target, Qt::KeyboardModifiers modifiers = {})
    {
        const QPointF middle(target->width() / 2, target->height() / 2);
        QTest::mouseClick(window.get(), Qt::LeftButton, modifiers, target->mapToScene(middle).toPoint());
    }

    void type(const QString &text)
    {
        for (const QChar character : text)
            QTest::keyClick(window.get(), character.toLatin1());
    }

    void waitForFrame()
    {
        bool isSwapped = false;
        const auto connection = QObject::connect(window.get(), &QQuickWindow::frameSwapped, window.get(),
                                                 [&isSwapped] { isSwapped = true; });
        window->update();
        EXPECT_TRUE(waitUntil([&isSwapped] { return isSwapped; }));
        QObject::disconnect(connection);
    }

    QString fileUrl(const QString &folder, int index) const
    {
        return QStringLiteral("%1/img%2.jpg").arg(folder).arg(index);
    }

    // Without a "-", which would keep the sidebar from opening the folders in it.
    const QTemporaryDir home{QDir::temp().filePath(QStringLiteral("QorvaneViewsXXXXXX"))};
    QorManage library;
    QStringList queries;
    QList<SearchResult> found;
    std::shared_ptr<ThumbnailQueue> thumbnails = std::make_shared<ThumbnailQueue>(2);
    ContentViewState state{library,
                           [this](const QString &text, const QList<FileUrl> &, int) { return search(text); },
                           thumbnails};
    QQmlEngine engine;
    std::unique_ptr<QQuickWindow> window;
};

} // namespace

TEST_F(ContentViewTest, isNeverSmallerThanItsColumnsNeed)
{
    EXPECT_EQ(window->minimumSize(), QSize(1200, 800));
}

TEST_F(ContentViewTest, anEmptyLibraryLeadsToItsFirstFolder)
{
    EXPECT_TRUE(item("nothingSelectedPage")->isVisible());
    EXPECT_TRUE(item("firstFolderButton")->isVisible());
}

TEST_F(ContentViewTest, withoutAPanelOfTheDesktopItsOwnDialogAddsSeveralFolders)
{
    for (const char *name : {"One", "Two", "Three"})
        makeFolder(QString::fromLatin1(name), 0);
    qputenv("HOME", home.path().toLocal8Bit());
    click(item("firstFolderButton"));
    ASSERT_TRUE(waitUntil([&] { return popupItem("folderBrowserList") != nullptr; }));
    QQuickItem *const list = popupItem("folderBrowserList");
    ASSERT_TRUE(waitUntil([&] { return list->property("count").toInt() == 3; }));
    const auto row = [&](int index) {
        QQuickItem *delegate = nullptr;
        QMetaObject::invokeMethod(list, "itemAtIndex", Q_RETURN_ARG(QQuickItem *, delegate),
                                  Q_ARG(int, index));
        return delegate;
    };
    ASSERT_TRUE(waitUntil([&] { return row(2) != nullptr; }));
    waitForFrame();
    click(row(0));                      // One
    click(row(2), Qt::ControlModifier); // Two
    waitForFrame();
    EXPECT_EQ(popupItem("addChosenFoldersButton")->property("text").toString(),
              QStringLiteral("Add 2 Folders"));
    click(popupItem("addChosenFoldersButton"));
    ASSERT_TRUE(waitUntil([&] { return library.libraryFolders().size() == 2; }));
    EXPECT_EQ(library.libraryFolders().at(0).url.lastPathComponent(), QStringLiteral("One"));
    EXPECT_EQ(library.libraryFolders().at(1).url.lastPathComponent(), QStringLiteral("Two"));
    EXPECT_TRUE(waitUntil([&] { return !list->isVisible(); }));
}

TEST_F(ContentViewTest, theDialogForFoldersTakesKeysAndEscapeClosesIt)
{
    for (const char *name : {"One/Inner", "Two"})
        makeFolder(QString::fromLatin1(name), 0);
    qputenv("HOME", home.path().toLocal8Bit());
    click(item("firstFolderButton"));
    ASSERT_TRUE(waitUntil([&] { return popupItem("folderBrowserList") != nullptr; }));
    QQuickItem *const list = popupItem("folderBrowserList");
    ASSERT_TRUE(waitUntil([&] { return list->property("count").toInt() == 2 && list->hasActiveFocus(); }));
    QTest::keyClick(window.get(), Qt::Key_Down);
    QTest::keyClick(window.get(), Qt::Key_Right);
    ASSERT_TRUE(waitUntil([&] {
        return popupItem("folderDialogPath")->property("text").toString().endsWith(QStringLiteral("/One"));
    }));
    QTest::keyClick(window.get(), Qt::Key_Escape);
    EXPECT_TRUE(waitUntil([&] { return !list->isVisible(); }));
    EXPECT_TRUE(library.libraryFolders().isEmpty());
}

TEST_F(ContentViewTest, anAddedFolderGetsARowAndShowsItsPhotographs)
{
    addFolder(QStringLiteral("Photos"), 6);
    EXPECT_EQ(item("folderList")->property("count").toInt(), 1);
    EXPECT_EQ(item("photoGrid")->property("count").toInt(), 6);
    EXPECT_EQ(state.title(), QStringLiteral("Photos"));
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
    QDropEvent drop(position, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(window.get(), &drop);
    EXPECT_TRUE(waitUntil([&] { return state.photos()->count() == 2; }));
    EXPECT_EQ(library.libraryFolders().size(), 1);
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
    state.addFolders({QUrl::fromLocalFile(home.filePath(QStringLiteral("Two")))});
    ASSERT_TRUE(waitUntil([&] { return item("folderList")->property("count").toInt() == 2; }));
    click(item("searchField"));
    type(QStringLiteral("x"));
    ASSERT_TRUE(waitUntil([&] { return item("noResultsPage")->isVisible(); }));
    waitForFrame();
    click(cell("folderList", 1));
    EXPECT_EQ(item("searchField")->property("text").toString(), QString());
    EXPECT_TRUE(waitUntil([&] { return state.photos()->count() == 3; }));
    EXPECT_EQ(state.title(), QStringLiteral("Two"));
}

TEST_F(ContentViewTest, clicksAndArrowsMoveTheSelection)
{
    const QString folder = addFolder(QStringLiteral("Photos"), 6);
    waitForFrame();
    click(cell("photoGrid", 0));
    EXPECT_EQ(state.selection().urls(), QSet<FileUrl>{FileUrl::file(fileUrl(folder, 0))});
    click(cell("photoGrid", 2), Qt::ControlModifier);
    EXPECT_EQ(state.selection().urls().size(), 2);
    QTest::keyClick(window.get(), Qt::Key_Right);
    EXPECT_EQ(state.selection().urls(), QSet<FileUrl>{FileUrl::file(fileUrl(folder, 1))});
    QTest::keyClick(window.get(), Qt::Key_Down);
    EXPECT_EQ(state.selection().urls(), QSet<FileUrl>{FileUrl::file(fileUrl(folder, 5))});
    QTest::keyClick(window.get(), Qt::Key_Return);
    EXPECT_EQ(state.selection().urls(), QSet<FileUrl>{FileUrl::file(fileUrl(folder, 5))});
    EXPECT_TRUE(item("photoGrid")->isVisible());
}

TEST_F(ContentViewTest, anArrowScrollsItsCellIntoView)
{
    addFolder(QStringLiteral("Photos"), 40);
    waitForFrame();
    click(cell("photoGrid", 0));
    for (int i = 0; i < 6; ++i)
        QTest::keyClick(window.get(), Qt::Key_Down);
    EXPECT_GT(item("photoGrid")->property("contentY").toDouble(), 100);
}

TEST_F(ContentViewTest, anEmptyFolderSaysSo)
{
    makeFolder(QStringLiteral("Empty"), 0);
    state.addFolders({QUrl::fromLocalFile(home.filePath(QStringLiteral("Empty")))});
    EXPECT_TRUE(waitUntil([&] { return item("emptyPage")->isVisible(); }));
}

TEST_F(ContentViewTest, followsTheDesktopsColoursLive)
{
    DesktopAppearance::shared().setColorSchemeOverride(ColorScheme::light);
    const QColor light = window->color();
    DesktopAppearance::shared().setColorSchemeOverride(ColorScheme::dark);
    EXPECT_LT(window->color().lightness(), 60);
    EXPECT_GT(light.lightness(), 200);
    DesktopAppearance::shared().setColorSchemeOverride(std::nullopt);
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
    EXPECT_EQ(nameOf(cell("folderList", 0)), QStringLiteral("Photos"));
    EXPECT_FALSE(nameOf(item("searchField")).isEmpty());
    EXPECT_FALSE(nameOf(item("addFolderButton")).isEmpty());
}
