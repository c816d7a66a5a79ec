#include "views/sidebar/SidebarMenu.h"

#include "library/QorManage.h"
#include "platform/UserDefaults.h"
#include "store/EmbeddingStore.h"
#include "support/LogCapture.h"
#include "support/Waiting.h"

#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qorvane;

namespace {

class SidebarMenuTest : public testing::Test
{
protected:
    ~SidebarMenuTest() override
    {
        library.cancelAllTasks();
        UserDefaults::standard().remove(QStringLiteral("libraryFolders"));
    }

    static SidebarRow rowOf(SidebarRow::Kind kind, const QString &path = QStringLiteral("/p/Photos"))
    {
        SidebarRow row;
        row.kind = kind;
        row.name = QStringLiteral("Photos");
        row.url = FileUrl::directory(path);
        return row;
    }

    const QTemporaryDir place;
    const LogCapture log;
    QorManage library;
    QList<FileUrl> opened;
    SidebarMenu menu{library, [this](const FileUrl &folder) { opened.append(folder); }};
};

} // namespace

TEST_F(SidebarMenuTest, aFolderOfTheLibraryCanBecomeAFavouriteAndLeave)
{
    ASSERT_TRUE(menu.openFor(rowOf(SidebarRow::Kind::folder)));
    EXPECT_TRUE(menu.isFolder());
    EXPECT_TRUE(menu.offersAddToFavorites());
    EXPECT_FALSE(menu.offersRemoveFromFavorites());
    EXPECT_TRUE(menu.offersDelete());
}

TEST_F(SidebarMenuTest, aFavouriteInTheLibraryCanStopBeingOneAndLeave)
{
    SidebarRow row = rowOf(SidebarRow::Kind::folder);
    row.isFavorite = true;
    ASSERT_TRUE(menu.openFor(row));
    EXPECT_FALSE(menu.offersAddToFavorites());
    EXPECT_TRUE(menu.offersRemoveFromFavorites());
    EXPECT_TRUE(menu.offersDelete());
}

TEST_F(SidebarMenuTest, aFavouriteAmongTheFavouritesCanOnlyStopBeingOne)
{
    ASSERT_TRUE(menu.openFor(rowOf(SidebarRow::Kind::favorite)));
    EXPECT_TRUE(menu.isFolder());
    EXPECT_FALSE(menu.offersAddToFavorites());
    EXPECT_TRUE(menu.offersRemoveFromFavorites());
    EXPECT_FALSE(menu.offersDelete());
}

TEST_F(SidebarMenuTest, aTagCanOnlyBeDeleted)
{
    ASSERT_TRUE(menu.openFor(rowOf(SidebarRow::Kind::tag)));
    EXPECT_FALSE(menu.isFolder());
    EXPECT_FALSE(menu.offersAddToFavorites());
    EXPECT_FALSE(menu.offersRemoveFromFavorites());
    EXPECT_TRUE(menu.offersDelete());
}

TEST_F(SidebarMenuTest, otherRowsHaveNone)
{
    QSignalSpy turns(&menu, &SidebarMenu::rowChanged);
    for (const SidebarRow::Kind kind :
         {SidebarRow::Kind::header, SidebarRow::Kind::rating, SidebarRow::Kind::noTags})
        EXPECT_FALSE(menu.openFor(rowOf(kind)));
    EXPECT_EQ(turns.count(), 0);
}

TEST_F(SidebarMenuTest, theFolderItselfIsOpenedInTheFileManager)
{
    menu.openFor(rowOf(SidebarRow::Kind::favorite));
    menu.openInFinder();
    EXPECT_EQ(opened, QList{FileUrl::directory(QStringLiteral("/p/Photos"))});
}

TEST_F(SidebarMenuTest, aSubFolderBecomesAFavouriteWithItsTree)
{
    QDir(place.path()).mkpath(QStringLiteral("Photos/2024/Summer"));
    library.addFolder(FileUrl::directory(place.filePath(QStringLiteral("Photos"))));
    ASSERT_TRUE(waitUntil([this] { return library.libraryFolders().size() == 1; }));
    menu.openFor(rowOf(SidebarRow::Kind::folder, place.filePath(QStringLiteral("Photos/2024"))));
    menu.addToFavorites();
    ASSERT_TRUE(waitUntil([this] { return library.favoriteFolders().size() == 1; }));
    EXPECT_EQ(library.favoriteFolders().constFirst(),
              library.libraryFolders().constFirst().children->constFirst());
    menu.removeFromFavorites();
    EXPECT_TRUE(waitUntil([this] { return library.favoriteFolders().isEmpty(); }));
}

TEST_F(SidebarMenuTest, aFolderThatIsGoneByThenIsLeftAlone)
{
    menu.openFor(rowOf(SidebarRow::Kind::folder));
    QSignalSpy changes(&library, &QorManage::libraryFoldersChanged);
    menu.addToFavorites();
    menu.remove();
    drainMainQueue();
    EXPECT_EQ(changes.count(), 0);
    EXPECT_TRUE(library.favoriteFolders().isEmpty());
}

TEST_F(SidebarMenuTest, aDeletedTagLeavesAllFiles)
{
    EmbeddingStore::shared().addTag(QStringLiteral("/p/a.jpg"), QStringLiteral("Photos"));
    menu.openFor(rowOf(SidebarRow::Kind::tag));
    menu.remove();
    EXPECT_TRUE(waitUntil([] { return EmbeddingStore::shared().listAllTags().isEmpty(); }));
}
