#include "views/ContentViewFixture.h"
#include "views/folders/FolderBrowser.h"

#include <QSignalSpy>

using namespace Qorvane;

namespace {

/// The dialog over the real window; it begins in the test's home.
class FallbackFolderDialogTest : public ContentViewFixture
{
protected:
    ~FallbackFolderDialogTest() override { qputenv("HOME", homeBefore); }

    void openDialog(const QStringList &folders, const char *button = "firstFolderButton")
    {
        for (const QString &name : folders)
            makeFolder(name, 0);
        qputenv("HOME", home.path().toLocal8Bit());
        ASSERT_TRUE(waitUntil([&] { return item(button)->isVisible(); }));
        waitForFrame();
        click(item(button));
        ASSERT_TRUE(waitUntil([&] { return popupItem("folderBrowserList") != nullptr; }));
        list = popupItem("folderBrowserList");
        browser = list->property("browser").value<FolderBrowser *>();
        ASSERT_TRUE(browser);
        ASSERT_TRUE(waitUntil([&] { return browser->path() == home.path() && list->hasActiveFocus(); }));
    }

    // More than the list has room for.
    static QStringList manyFolders(const QString &above = {})
    {
        QStringList names;
        for (int i = 0; i < 40; ++i)
            names.append(QStringLiteral("%1Folder %2").arg(above).arg(i));
        return names;
    }

    void press(Qt::Key key, int times = 1, Qt::KeyboardModifiers modifiers = {})
    {
        for (int i = 0; i < times; ++i)
            QTest::keyClick(window.get(), key, modifiers);
    }

    void waitForPath(const QString &path)
    {
        ASSERT_TRUE(waitUntil([&] { return browser->path() == path; })) << qPrintable(browser->path());
        EXPECT_EQ(popupItem("folderDialogPath")->property("text").toString(), path);
    }

    QQuickItem *row(int index) const { return cellOf(list, index); }

    bool isInView(int index) const
    {
        const QQuickItem *const delegate = row(index);
        if (!delegate)
            return false;
        const qreal y = delegate->mapToItem(list, QPointF()).y();
        return y >= 0 && y + delegate->height() <= list->height();
    }

    QList<int> selectedRows() const
    {
        QList<int> rows;
        for (int i = 0; i < browser->count(); ++i) {
            if (browser->index(i).data(FolderBrowser::IsSelectedRole).toBool())
                rows.append(i);
        }
        return rows;
    }

    QString hint() const { return popupItem("folderDialogHint")->property("text").toString(); }

    const QByteArray homeBefore = qgetenv("HOME");
    QQuickItem *list = nullptr;
    FolderBrowser *browser = nullptr;
};

} // namespace

TEST_F(FallbackFolderDialogTest, withoutAPanelOfTheDesktopItAddsSeveralFolders)
{
    openDialog({QStringLiteral("One"), QStringLiteral("Two"), QStringLiteral("Three")});
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

TEST_F(FallbackFolderDialogTest, theSidebarsButtonOpensItToo)
{
    openDialog({QStringLiteral("One")}, "addFolderButton");
    ASSERT_TRUE(waitUntil([&] { return row(0) != nullptr; }));
    waitForFrame();
    click(row(0));
    click(popupItem("addChosenFoldersButton"));
    ASSERT_TRUE(waitUntil([&] { return library.libraryFolders().size() == 1; }));
    EXPECT_EQ(library.libraryFolders().constFirst().url.lastPathComponent(), QStringLiteral("One"));
}

TEST_F(FallbackFolderDialogTest, escapeClosesItAndAddsNothing)
{
    openDialog({QStringLiteral("One")});
    press(Qt::Key_Down);
    press(Qt::Key_Escape);
    EXPECT_TRUE(waitUntil([&] { return !list->isVisible(); }));
    EXPECT_TRUE(library.libraryFolders().isEmpty());
}

TEST_F(FallbackFolderDialogTest, theFirstArrowSelectsTheFirstRowAndShiftSelectsMore)
{
    openDialog(manyFolders());
    EXPECT_EQ(selectedRows(), QList<int>());
    press(Qt::Key_Down);
    EXPECT_EQ(selectedRows(), QList<int>{0});
    press(Qt::Key_Down, 2, Qt::ShiftModifier);
    EXPECT_EQ(selectedRows(), (QList<int>{0, 1, 2}));
    press(Qt::Key_Up);
    EXPECT_EQ(selectedRows(), QList<int>{1});
}

TEST_F(FallbackFolderDialogTest, arrowsScrollTheirRowIntoView)
{
    openDialog(manyFolders());
    press(Qt::Key_Down, 31);
    EXPECT_TRUE(isInView(30));
    press(Qt::Key_Up, 30);
    EXPECT_TRUE(isInView(0));
}

TEST_F(FallbackFolderDialogTest, theListScrollsLikeThePhotographs)
{
    openDialog(manyFolders());
    const auto position = [this] { return list->property("contentY").toDouble(); };
    ASSERT_TRUE(waitUntil([&] { return row(4) != nullptr; }));
    QSignalSpy steps(list, SIGNAL(contentYChanged()));
    turnWheel(list, -120);
    turnWheel(list, -120);
    EXPECT_TRUE(waitUntil([&] { return position() == 240; }));
    EXPECT_GT(steps.count(), 2) << "in a motion";
    dragUp(list, 100);
    EXPECT_EQ(position(), 240) << "a mouse draws nothing";
    turnWheel(list, -120 * 100);
    EXPECT_TRUE(waitUntil([&] { return isInView(39); }));
    EXPECT_EQ(selectedRows(), QList<int>());
    turnWheel(list, 120 * 100);
    press(Qt::Key_Down);
    EXPECT_TRUE(isInView(0)) << "the keys don't wait for the wheel";
}

TEST_F(FallbackFolderDialogTest, leftSelectsAndShowsTheFolderThatWasOpenAndKeysGoOnFromThere)
{
    openDialog(manyFolders() + manyFolders(QStringLiteral("Folder 30/")));
    press(Qt::Key_Down, 31);
    press(Qt::Key_Right);
    waitForPath(home.filePath(QStringLiteral("Folder 30")));
    EXPECT_TRUE(isInView(0)) << "another folder begins at its top";
    press(Qt::Key_Down, 4);
    EXPECT_EQ(selectedRows(), QList<int>{3});

    press(Qt::Key_Left);
    waitForPath(home.path());
    EXPECT_EQ(selectedRows(), QList<int>{30});
    EXPECT_TRUE(isInView(30));
    press(Qt::Key_Space);
    EXPECT_EQ(selectedRows(), QList<int>());
    press(Qt::Key_Space);
    EXPECT_EQ(selectedRows(), QList<int>{30});
    press(Qt::Key_Down);
    EXPECT_EQ(selectedRows(), QList<int>{31});
    press(Qt::Key_Up);
    press(Qt::Key_Right);
    waitForPath(home.filePath(QStringLiteral("Folder 30")));
}

TEST_F(FallbackFolderDialogTest, rightOpensNothingThatIsNotSelected)
{
    openDialog({QStringLiteral("One/Inner/Innermost"), QStringLiteral("Two")});
    press(Qt::Key_Right);
    EXPECT_EQ(browser->state(), FolderBrowser::Listed);
    press(Qt::Key_Down);
    press(Qt::Key_Right);
    waitForPath(home.filePath(QStringLiteral("One")));
    press(Qt::Key_Right);
    EXPECT_EQ(browser->state(), FolderBrowser::Listed) << "reading begins at once, where it does";
    press(Qt::Key_Down);
    press(Qt::Key_Space);
    press(Qt::Key_Right);
    EXPECT_EQ(browser->state(), FolderBrowser::Listed);
}

TEST_F(FallbackFolderDialogTest, keysGoOnFromARowThatWasClicked)
{
    openDialog(manyFolders());
    ASSERT_TRUE(waitUntil([&] { return row(4) != nullptr; }));
    waitForFrame();
    click(row(4));
    press(Qt::Key_Down);
    EXPECT_EQ(selectedRows(), QList<int>{5});
}

TEST_F(FallbackFolderDialogTest, aFolderWithoutFoldersSaysSo)
{
    openDialog({QStringLiteral("One")});
    EXPECT_FALSE(popupItem("noFoldersPage"));
    press(Qt::Key_Down);
    press(Qt::Key_Right);
    waitForPath(home.filePath(QStringLiteral("One")));
    EXPECT_TRUE(popupItem("noFoldersPage"));
    press(Qt::Key_Down);
    EXPECT_EQ(browser->currentRow(), -1);
}

TEST_F(FallbackFolderDialogTest, aFolderThatCannotBeReadIsToldBelowTheListAndNotAcrossIt)
{
    openDialog({QStringLiteral("One"), QStringLiteral("Two")});
    const QString hintBefore = hint();
    ASSERT_TRUE(QDir().rmdir(home.filePath(QStringLiteral("Two"))));
    press(Qt::Key_Down, 2);
    press(Qt::Key_Right);
    ASSERT_TRUE(waitUntil([&] { return browser->state() == FolderBrowser::Unreadable; }));
    EXPECT_EQ(hint(), QStringLiteral("This folder can't be read."));
    EXPECT_FALSE(popupItem("noFoldersPage"));
    EXPECT_EQ(list->property("count").toInt(), 2);
    EXPECT_EQ(selectedRows(), QList<int>{1});

    press(Qt::Key_Up);
    EXPECT_EQ(selectedRows(), QList<int>{0});
    EXPECT_EQ(hint(), hintBefore) << "it was said of the other folder";
}
