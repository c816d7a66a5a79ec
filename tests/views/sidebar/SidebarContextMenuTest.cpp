#include "platform/GlobalQueue.h"
#include "support/RecordingApplication.h"
#include "views/InLanguage.h"
#include "views/SidebarFixture.h"

using namespace Qorvane;

namespace {

/// The menus of the sidebar's rows.
class SidebarContextMenuTest : public SidebarFixture
{
protected:
    void rightClick(QQuickItem *target)
    {
        const QPointF middle(target->width() / 2, target->height() / 2);
        QTest::mouseClick(window.get(), Qt::RightButton, {}, target->mapToScene(middle).toPoint());
    }

    /// The entries that the open menu shows, by the names of the items.
    QStringList entries()
    {
        QStringList names;
        for (const char *name : {"removeFromFavorites", "addToFavorites", "openInFinder", "delete"}) {
            if (popupItem(name))
                names.append(QLatin1String(name));
        }
        return names;
    }

    bool isOpen() { return popupItem("openInFinder") || popupItem("delete"); }

    QStringList openMenuOf(QQuickItem *target)
    {
        rightClick(target);
        EXPECT_TRUE(waitUntil([this] { return isOpen(); }));
        waitForFrame();
        return entries();
    }

    void choose(const char *entry)
    {
        ASSERT_TRUE(waitUntil([&] { return popupItem(entry) != nullptr; }));
        waitForFrame();
        click(popupItem(entry));
        ASSERT_TRUE(waitUntil([this] { return !isOpen(); }));
    }

    QObject *menu() const { return window->findChild<QObject *>(QStringLiteral("sidebarMenu")); }

    /// What the menu of a row shows.
    QStringList shownFor(QQuickItem *target)
    {
        openMenuOf(target);
        const QStringList shown = shownBy(menu());
        press(Qt::Key_Escape);
        EXPECT_TRUE(waitUntil([this] { return !isOpen(); }));
        return shown;
    }
};

/// The same for an English reader.
class EnglishSidebarContextMenuTest : private InLanguage, public SidebarContextMenuTest
{
protected:
    EnglishSidebarContextMenuTest()
        : InLanguage(QStringLiteral("en-US"))
    {
    }
};

/// The same on a desktop whose file manager is the test's.
class SidebarFolderOpeningTest : public SidebarContextMenuTest
{
protected:
    // Once for all: the library that reads the desktop entries notices new ones only after a while.
    static void SetUpTestSuite()
    {
        s_folder = std::make_unique<QTemporaryDir>();
        s_fileManager = std::make_unique<RecordingApplication>(s_folder->path());
        writeFile(applications() + QStringLiteral("/org.example.Files.desktop"),
                  s_fileManager->entry("inode/directory;"));
        writeFile(applications() + QStringLiteral("/mimeapps.list"),
                  "[Default Applications]\ninode/directory=org.example.Files.desktop\n");
    }
    static void TearDownTestSuite()
    {
        s_fileManager.reset();
        s_folder.reset();
    }

    ~SidebarFolderOpeningTest() override
    {
        GlobalQueue::waitUntilIdle();
        s_fileManager->forget();
    }

    /// What the file manager was asked to open.
    QStringList openedFrom(QQuickItem *target)
    {
        s_fileManager->forget();
        openMenuOf(target);
        choose("openInFinder");
        EXPECT_TRUE(s_fileManager->waitUntilStarted());
        QStringList paths;
        for (const QString &argument : s_fileManager->arguments())
            paths.append(localPath(argument));
        return paths;
    }

    static inline std::unique_ptr<QTemporaryDir> s_folder;
    static inline std::unique_ptr<RecordingApplication> s_fileManager;
};

} // namespace

// First in this program, so that no desktop entry has been looked for yet.
TEST_F(SidebarFolderOpeningTest, theFileManagerIsAskedForTheRowsOwnFolder)
{
    const QString path = addEmptyFolder(QStringLiteral("Été #1 100%"), {QStringLiteral("2024")});
    click(itemBelow(row(QStringLiteral("Été #1 100%")), "disclosure"));
    ASSERT_EQ(openedFrom(row(QStringLiteral("Été #1 100%"))), QStringList{path});
    const QString child = path + QStringLiteral("/2024");
    ASSERT_EQ(openedFrom(row(QStringLiteral("2024"))), QStringList{child});
    addFavorite(child);
    ASSERT_EQ(openedFrom(row(QStringLiteral("2024"), SidebarRow::Kind::favorite)), QStringList{child});
}

TEST_F(EnglishSidebarContextMenuTest, eachKindOfRowHasItsEntries)
{
    const QString path = addEmptyFolder(QStringLiteral("Photos"), {QStringLiteral("2024")});
    giveTags({QStringLiteral("Beach")});
    click(itemBelow(row(QStringLiteral("Photos")), "disclosure"));
    const QStringList ofAFolder{"Add to Favorites", "-", "Open in File Manager", "-", "Delete"};
    EXPECT_EQ(shownFor(row(QStringLiteral("Photos"))), ofAFolder);
    EXPECT_EQ(shownFor(row(QStringLiteral("2024"))), ofAFolder) << "a sub-folder";
    EXPECT_EQ(shownFor(row(QStringLiteral("Beach"), SidebarRow::Kind::tag)), QStringList{"Delete"});

    addFavorite(path);
    addFavorite(path + QStringLiteral("/2024"));
    const QStringList ofAFavouriteFolder{"Remove from Favorites", "-", "Open in File Manager", "-", "Delete"};
    const QStringList ofAFavourite{"Remove from Favorites", "-", "Open in File Manager"};
    for (const char *name : {"Photos", "2024"}) {
        EXPECT_EQ(shownFor(row(QString::fromLatin1(name))), ofAFavouriteFolder) << name;
        EXPECT_EQ(shownFor(row(QString::fromLatin1(name), SidebarRow::Kind::favorite)), ofAFavourite) << name;
    }
}

TEST_F(SidebarContextMenuTest, deleteAloneIsDrawnAsWhatTakesSomethingAway)
{
    addEmptyFolder(QStringLiteral("Photos"));
    openMenuOf(row(QStringLiteral("Photos")));
    const QColor red = themedColor("destructive");
    const QColor ink = themedColor("text");
    for (const auto &[entry, colour] :
         {std::pair("addToFavorites", ink), std::pair("openInFinder", ink), std::pair("delete", red)})
        EXPECT_EQ(labelsOf(popupItem(entry)).value(0)->property("color").value<QColor>(), colour) << entry;
    press(Qt::Key_Escape);
    EXPECT_TRUE(waitUntil([this] { return !isOpen(); }));
}

TEST_F(SidebarContextMenuTest, theMenuOfAFolderAddsItToTheFavouritesAndTakesItOut)
{
    addEmptyFolder(QStringLiteral("Photos"));
    click(row(QStringLiteral("★"), SidebarRow::Kind::rating));
    EXPECT_EQ(openMenuOf(row(QStringLiteral("Photos"))),
              QStringList({"addToFavorites", "openInFinder", "delete"}));
    EXPECT_EQ(selected(), QStringLiteral("★")) << "a right click selects nothing";
    choose("addToFavorites");
    ASSERT_TRUE(waitUntil([this] { return library.favoriteFolders().size() == 1; }));
    EXPECT_EQ(openMenuOf(row(QStringLiteral("Photos"))),
              QStringList({"removeFromFavorites", "openInFinder", "delete"}));
    choose("removeFromFavorites");
    EXPECT_TRUE(waitUntil([this] { return library.favoriteFolders().isEmpty(); }));
}

TEST_F(SidebarContextMenuTest, aFavouriteOffersNoDeleteAndNoChildren)
{
    const QString path = addEmptyFolder(QStringLiteral("Photos"), {QStringLiteral("2024")});
    addFavorite(path);
    EXPECT_EQ(openMenuOf(row(QStringLiteral("Photos"), SidebarRow::Kind::favorite)),
              QStringList({"removeFromFavorites", "openInFinder"}));
    press(Qt::Key_Escape);
    ASSERT_TRUE(waitUntil([this] { return !isOpen(); }));
    EXPECT_FALSE(row(QStringLiteral("Photos"), SidebarRow::Kind::favorite)->property("hasChildren").toBool());
    EXPECT_TRUE(row(QStringLiteral("Photos"))->property("hasChildren").toBool());
}

TEST_F(SidebarContextMenuTest, deleteTakesAFolderOutOfTheLibraryUnasked)
{
    const QString path = addEmptyFolder(QStringLiteral("Photos"));
    openMenuOf(row(QStringLiteral("Photos")));
    choose("delete");
    EXPECT_TRUE(waitUntil([this] { return library.libraryFolders().isEmpty(); }));
    EXPECT_TRUE(QDir(path).exists());
}

TEST_F(SidebarContextMenuTest, ratingsAndHeadersHaveNoMenu)
{
    rightClick(row(QStringLiteral("★"), SidebarRow::Kind::rating));
    rightClick(row(QStringLiteral("Tags"), SidebarRow::Kind::header));
    waitForFrame();
    EXPECT_FALSE(isOpen());
}

TEST_F(SidebarContextMenuTest, theMenuKeysOpenTheMenuOfTheCurrentRow)
{
    addEmptyFolder(QStringLiteral("Photos"));
    click(row(QStringLiteral("Photos")));
    press(Qt::Key_Menu);
    EXPECT_TRUE(waitUntil([this] { return isOpen(); }));
    press(Qt::Key_Escape);
    ASSERT_TRUE(waitUntil([this] { return !isOpen(); }));
    press(Qt::Key_F10, Qt::ShiftModifier);
    EXPECT_TRUE(waitUntil([this] { return isOpen(); }));
}

TEST_F(SidebarContextMenuTest, theMenuKeyBringsTheCurrentRowIntoViewFirst)
{
    addEmptyFolder(QStringLiteral("Photos"));
    QStringList tags;
    for (int i = 0; i < 50; ++i)
        tags.append(QStringLiteral("tag %1").arg(i));
    giveTags(tags);
    click(row(QStringLiteral("Photos")));
    QQuickItem *const list = item("sidebarList");
    const auto position = [list] { return list->property("contentY").toDouble(); };
    const double top = position();
    turnWheel(list, -120 * 3);
    ASSERT_TRUE(waitUntil([&] { return position() > top + 100; }));
    const auto isInView = [&] { return row(QStringLiteral("Photos"))->mapToItem(list, QPointF()).y() >= 0; };
    ASSERT_FALSE(isInView());
    press(Qt::Key_Menu);
    EXPECT_TRUE(isInView());
    EXPECT_TRUE(waitUntil([this] { return isOpen(); }));
}

TEST_F(SidebarContextMenuTest, aKeyRightAfterTheMenuIsTheLists)
{
    addEmptyFolder(QStringLiteral("Photos"));
    click(row(QStringLiteral("Photos")));
    openMenuOf(row(QStringLiteral("Photos")));
    press(Qt::Key_Escape);
    press(Qt::Key_End);
    EXPECT_EQ(library.selectedRating(), 5);
    ASSERT_TRUE(waitUntil([this] { return !isOpen(); }));
    press(Qt::Key_Up);
    EXPECT_EQ(library.selectedRating(), 4);
}

TEST_F(SidebarContextMenuTest, deletingTheSelectedTagLeavesNoRowSelected)
{
    giveTags({QStringLiteral("Beach"), QStringLiteral("Food")});
    click(row(QStringLiteral("Beach"), SidebarRow::Kind::tag));
    EXPECT_EQ(openMenuOf(row(QStringLiteral("Beach"), SidebarRow::Kind::tag)), QStringList{"delete"});
    choose("delete");
    ASSERT_TRUE(waitUntil([this] { return library.allTags() == QStringList{"Food"}; }));
    EXPECT_EQ(library.selectedTag(), std::nullopt);
    EXPECT_EQ(selected(), QString());
}

TEST_F(SidebarContextMenuTest, isThatOfTheRowUnderThePointerInAScrolledList)
{
    QStringList tags;
    for (int i = 0; i < 50; ++i)
        tags.append(QStringLiteral("tag %1").arg(i, 2, 10, QLatin1Char('0')));
    giveTags(tags);
    waitForFrame();
    QQuickItem *const list = item("sidebarList");
    turnWheel(list, -120 * 100);
    QQuickItem *last = nullptr;
    ASSERT_TRUE(waitUntil([&] {
        last = cell("sidebarList", int(rows().size()) - 1);
        return last && last->mapToItem(list, QPointF(0, last->height())).y() <= list->height();
    }));
    EXPECT_EQ(openMenuOf(last), QStringList{"delete"});
    choose("delete");
    EXPECT_TRUE(waitUntil([&] { return library.allTags().size() == tags.size() - 1; }));
    EXPECT_FALSE(library.allTags().contains(tags.constLast()));
}
