#include "library/BusyStore.h"
#include "library/FolderLibraryFixture.h"
#include "library/SidebarItem.h"
#include "media/ThumbnailPaths.h"
#include "platform/DetachedTask.h"
#include "platform/MainQueue.h"
#include "store/EmbeddingStore.h"
#include "support/Waiting.h"

#include <QDir>
#include <QFile>

using namespace Qorvane;

using State = FolderProcessingState;

class FolderLibraryTest : public FolderLibraryFixture
{
};

TEST_F(FolderLibraryTest, theFirstFolderIsSelectedAndALaterOneIsNot)
{
    addRoot(one);
    ASSERT_TRUE(qorManager->selectedFolder());
    EXPECT_EQ(qorManager->selectedFolder()->url, one);
    addRoot(two);
    EXPECT_EQ(qorManager->selectedFolder()->url, one);
    EXPECT_EQ(stored("libraryFolders"),
              (QList<QByteArray>{bookmark(QStringLiteral("one")), bookmark(QStringLiteral("two"))}));
}

TEST_F(FolderLibraryTest, foldersChosenTogetherBecomeRootsInTheirOrderAndOnlyTheFirstIsSelected)
{
    for (const FileUrl &url : {three, one, two})
        qorManager->addFolder(url);
    ASSERT_TRUE(waitUntil([&] { return qorManager->libraryFolders().size() == 3; }));
    settle();
    EXPECT_EQ(rootNames(),
              (QStringList{QStringLiteral("three"), QStringLiteral("one"), QStringLiteral("two")}));
    EXPECT_EQ(qorManager->selectedFolder()->url, three);
    QStringList prepared;
    for (const QString &line : home.log().linesStartingWith(QStringLiteral("🔄 setProcessing: "))) {
        if (line.endsWith(QStringLiteral("准备生成缩略图...")))
            prepared.append(line.section(u' ', 2, 2));
    }
    EXPECT_EQ(prepared, (QStringList{three.path(), one.path(), two.path()}));
}

TEST_F(FolderLibraryTest, aFolderAddedTwiceChangesNothingTheSecondTime)
{
    home.writePicture(QStringLiteral("one/1.png"));
    addRoot(one);
    ASSERT_TRUE(waitForRun(one));
    DetachedTask::waitUntilIdle();
    settle();
    home.log().clear();
    qorManager->setSelectedFolder(std::nullopt);
    settle();
    DetachedTask::waitUntilIdle();
    settle();
    home.log().clear();
    int writes = 0;
    QObject::connect(qorManager.get(), &QorManage::objectWillChange, qorManager.get(), [&] { ++writes; });

    qorManager->addFolder(one);
    settle();

    EXPECT_EQ(writes, 0);
    EXPECT_EQ(home.log().lines(), QStringList());
    EXPECT_EQ(rootNames(), QStringList{QStringLiteral("one")});
}

TEST_F(FolderLibraryTest, aFolderAddedTwiceAtOnceIsOneRoot)
{
    qorManager->addFolder(one);
    qorManager->addFolder(one);
    qorManager->addFolder(two);
    ASSERT_TRUE(waitUntil([&] { return qorManager->libraryFolders().size() == 2; }));
    settle();
    EXPECT_EQ(rootNames(), (QStringList{QStringLiteral("one"), QStringLiteral("two")}));
}

TEST_F(FolderLibraryTest, aPlaceWithoutAPathIsNoFolder)
{
    qorManager->addFolder(FileUrl::directory(QString()));
    qorManager->addFolder(FileUrl::directory(QStringLiteral("relative/folder")));
    addRoot(one);
    EXPECT_EQ(rootNames(), QStringList{QStringLiteral("one")});
    EXPECT_FALSE(qorManager->isPathInLibrary(two.path()));
}

TEST_F(FolderLibraryTest, aFolderInsideARootBecomesARootOfItsOwn)
{
    const FileUrl inner = home.makeFolder(QStringLiteral("one/inner"));
    addRoot(one);
    qorManager->addFolder(inner);
    ASSERT_TRUE(waitUntil([&] { return qorManager->libraryFolders().size() == 2; }));
    EXPECT_EQ(rootNames(), (QStringList{QStringLiteral("one"), QStringLiteral("inner")}));
}

TEST_F(FolderLibraryTest, anEmptyFolderGoesFromThumbnailsToCompletedWithoutARun)
{
    addRoot(two); // so that "one" isn't selected, which would load its list too
    QList<State> states;
    QObject::connect(qorManager.get(), &QorManage::folderProcessingStatusChanged, qorManager.get(), [&] {
        if (qorManager->folderProcessingStatus().contains(one.path()))
            states.append(qorManager->folderProcessingStatus().value(one.path()));
    });
    addRoot(one);
    settle();
    EXPECT_EQ(states, (QList<State>{State::thumbnails, State::completed}));
    EXPECT_EQ(qorManager->folderProcessingProgress().value(one.path()), 1.0);
    EXPECT_EQ(qorManager->folderProcessingDetails().value(one.path()), QStringLiteral("处理完成"));
    EXPECT_EQ(startedRuns(one), 0);
}

TEST_F(FolderLibraryTest, rowsOfBothSectionsLeadToTheSameFolder)
{
    addRoot(one);
    const Folder root = qorManager->libraryFolders().first();
    qorManager->addToFavorites(root);
    for (const auto type : {SidebarItem::ItemType::favorite, SidebarItem::ItemType::library})
        EXPECT_EQ(qorManager->folderForSidebarSelection(SidebarItem{root, type}.id()), root);
}

TEST_F(FolderLibraryTest, aFolderWithADashInItsNameIsNeverFoundBySelection)
{
    const FileUrl dashed = home.makeFolder(QStringLiteral("my-photos"));
    addRoot(dashed);
    const Folder root = qorManager->libraryFolders().first();
    EXPECT_EQ(qorManager->folderForSidebarSelection(SidebarItem{root, SidebarItem::ItemType::library}.id()),
              std::nullopt);
    EXPECT_EQ(qorManager->folderWithAbsoluteString(dashed.absoluteString()), root);
}

TEST_F(FolderLibraryTest, noSelectionOrOneOfDashesFindsNothing)
{
    addRoot(one);
    EXPECT_EQ(qorManager->folderForSidebarSelection(std::nullopt), std::nullopt);
    EXPECT_EQ(qorManager->folderForSidebarSelection(QStringLiteral("---")), std::nullopt);
    EXPECT_EQ(qorManager->folderForSidebarSelection(QString()), std::nullopt);
}

TEST_F(FolderLibraryTest, favouritesAreFoundAtTheirTopLevelOnly)
{
    const FileUrl inner = home.makeFolder(QStringLiteral("one/inner"));
    qorManager->addToFavorites(QorManage::buildFolderHierarchy(one));
    EXPECT_TRUE(qorManager->folderWithAbsoluteString(one.absoluteString()));
    EXPECT_EQ(qorManager->folderWithAbsoluteString(inner.absoluteString()), std::nullopt);
}

TEST_F(FolderLibraryTest, favouritesAreStoredInOrderAndOnlyOnce)
{
    qorManager->addToFavorites({two, std::nullopt});
    qorManager->addToFavorites({one, std::nullopt});
    qorManager->addToFavorites({two, std::nullopt});
    EXPECT_EQ(stored("favoriteFolders"),
              (QList<QByteArray>{bookmark(QStringLiteral("two")), bookmark(QStringLiteral("one"))}));
    qorManager->removeFromFavorites({two, std::nullopt});
    EXPECT_EQ(stored("favoriteFolders"), QList<QByteArray>{bookmark(QStringLiteral("one"))});
}

TEST_F(FolderLibraryTest, aBookmarkThatCannotBeMadeLeavesTheStoredListAsItWas)
{
    qorManager->addToFavorites({one, std::nullopt});
    qorManager->addToFavorites({home.folder(QStringLiteral("gone")), std::nullopt});
    EXPECT_EQ(stored("favoriteFolders"), QList<QByteArray>{bookmark(QStringLiteral("one"))});
    EXPECT_EQ(qorManager->favoriteFolders().size(), 2);
    EXPECT_FALSE(home.log().linesStartingWith(QStringLiteral("Error saving favorite bookmarks: ")).isEmpty());
}

TEST_F(FolderLibraryTest, aRootWhoseBookmarkCannotBeMadeLeavesTheStoredRootsAsTheyWere)
{
    addRoot(one);
    addRoot(two);
    QDir(one.path()).removeRecursively();
    home.log().clear();
    addRoot(three);
    EXPECT_EQ(stored("libraryFolders"),
              (QList<QByteArray>{bookmark(QStringLiteral("one")), bookmark(QStringLiteral("two"))}));
    EXPECT_EQ(rootNames().size(), 3);
    // Said before the run of the new folder is prepared.
    const QStringList lines = home.log().lines();
    ASSERT_GE(lines.size(), 2);
    EXPECT_TRUE(lines[0].startsWith(QStringLiteral("Error saving bookmarks: "))) << qPrintable(lines[0]);
    EXPECT_GT(lines[0].size(), QStringLiteral("Error saving bookmarks: ").size());
    EXPECT_TRUE(lines[1].startsWith(QStringLiteral("🔄 setProcessing: ") + three.path()))
        << qPrintable(lines[1]);
    EXPECT_EQ(home.log().linesStartingWith(QStringLiteral("Error saving bookmarks: ")).size(), 1);
}

TEST_F(FolderLibraryTest, aFavouriteIsSavedTwiceAroundItsAnnouncement)
{
    qorManager->addToFavorites({home.folder(QStringLiteral("gone")), std::nullopt});
    settle();
    EXPECT_EQ(home.log().linesStartingWith(QStringLiteral("Error saving favorite bookmarks: ")).size(), 2);
}

TEST_F(FolderLibraryTest, rootsComeBackAtTheNextStartWithoutThoseThatAreGone)
{
    addRoot(one);
    addRoot(two);
    DetachedTask::waitUntilIdle();
    QDir(one.path()).removeRecursively();
    qorManager.reset();
    home.log().clear();
    qorManager = std::make_unique<QorManage>(nullptr, LibraryTimings{0.01, 0.01, 0.01, 0.01});
    EXPECT_TRUE(qorManager->libraryFolders().isEmpty());
    ASSERT_TRUE(waitUntil([&] { return !qorManager->libraryFolders().isEmpty(); }));
    EXPECT_EQ(rootNames(), QStringList{QStringLiteral("two")});
    settle();
    EXPECT_EQ(
        home.log().linesStartingWith(QStringLiteral("Could not resolve bookmark, skipping. Error: ")).size(),
        1);
    EXPECT_EQ(stored("libraryFolders"), QList<QByteArray>{bookmark(QStringLiteral("two"))});
    EXPECT_EQ(qorManager->selectedFolder(), std::nullopt);
}

TEST_F(FolderLibraryTest, aFolderAddedWhileTheStoredOnesAreReadComesAfterThem)
{
    UserDefaults::standard().setDataArray(
        QStringLiteral("libraryFolders"),
        {bookmark(QStringLiteral("two")), bookmark(QStringLiteral("three"))});
    qorManager = std::make_unique<QorManage>(nullptr, LibraryTimings{0.01, 0.01, 0.01, 0.01});
    qorManager->addFolder(one);
    ASSERT_TRUE(waitUntil([&] { return qorManager->libraryFolders().size() == 3; }));
    settle();
    EXPECT_EQ(rootNames(),
              (QStringList{QStringLiteral("two"), QStringLiteral("three"), QStringLiteral("one")}));
    EXPECT_EQ(qorManager->selectedFolder(), std::nullopt);
}

TEST_F(FolderLibraryTest, loadingCallsBackOnlyWhenAListWasEverStored)
{
    int calls = 0;
    UserDefaults::standard().remove(QStringLiteral("libraryFolders"));
    qorManager->loadBookmarks([&] { ++calls; });
    settle();
    EXPECT_EQ(calls, 0);
    UserDefaults::standard().setString(QStringLiteral("libraryFolders"), QStringLiteral("no array"));
    qorManager->loadBookmarks([&] { ++calls; });
    settle();
    EXPECT_EQ(calls, 0);
    UserDefaults::standard().setDataArray(QStringLiteral("libraryFolders"), {});
    qorManager->loadBookmarks([&] { ++calls; });
    settle();
    EXPECT_EQ(calls, 1);
}

TEST_F(FolderLibraryTest, loadedFavouritesTakeTheirTreesFromTheLibrary)
{
    home.makeFolder(QStringLiteral("one/inner"));
    home.makeFolder(QStringLiteral("two/inner"));
    addRoot(one);
    UserDefaults::standard().setDataArray(QStringLiteral("favoriteFolders"),
                                          {bookmark(QStringLiteral("two")), "relative",
                                           bookmark(QStringLiteral("one/inner")),
                                           bookmark(QStringLiteral("one"))});
    home.log().clear();
    qorManager->loadFavoriteBookmarks();
    settle();
    EXPECT_EQ(qorManager->favoriteFolders(),
              (QList<Folder>{{two, std::nullopt},
                             {home.folder(QStringLiteral("one/inner")), std::nullopt},
                             qorManager->libraryFolders().first()}));
    EXPECT_EQ(home.log()
                  .linesStartingWith(QStringLiteral("Could not resolve favorite bookmark, skipping. Error: "))
                  .size(),
              1);
}

TEST_F(FolderLibraryTest, removingTheSelectedRootEmptiesTheListAndRestartsTheOthers)
{
    home.writePicture(QStringLiteral("one/1.png"));
    home.writePicture(QStringLiteral("two/2.png"));
    addRoot(one);
    addRoot(two);
    ASSERT_TRUE(waitUntil([&] { return qorManager->imageURLs().size() == 1; }));
    ASSERT_TRUE(waitForRun(one));
    ASSERT_TRUE(waitForRun(two));
    DetachedTask::waitUntilIdle();
    settle();
    home.log().clear();

    qorManager->removeFolderFromLibrary(qorManager->libraryFolders().first());

    EXPECT_TRUE(qorManager->imageURLs().isEmpty());
    EXPECT_EQ(qorManager->selectedFolder(), std::nullopt);
    EXPECT_EQ(rootNames(), QStringList{QStringLiteral("two")});
    EXPECT_EQ(stored("libraryFolders"), QList<QByteArray>{bookmark(QStringLiteral("two"))});
    EXPECT_TRUE(waitForRun(two));
    EXPECT_TRUE(home.log().contains(QStringLiteral("🔄 已取消文件夹的后台任务: ") + one.path()));
}

TEST_F(FolderLibraryTest, aRemovedRootsRecordsGoALittleLaterAndAreCheckedAfterThat)
{
    const FileUrl picture = home.writePicture(QStringLiteral("one/1.png"));
    addRoot(one);
    EmbeddingStore &store = EmbeddingStore::shared();
    store.upsert(picture.path(), std::nullopt, {1.0F}, 1, 0);
    store.addTag(picture.path(), QStringLiteral("cat"));
    home.log().clear();
    // Whoever shows how many files a tag has asks again then.
    bool isAnnounced = false;
    const auto connection =
        QObject::connect(qorManager.get(), &QorManage::objectWillChange, qorManager.get(),
                         [&] { isAnnounced = isAnnounced || store.getTags(picture.path()).isEmpty(); });

    qorManager->removeFolderFromLibrary(qorManager->libraryFolders().first());
    EXPECT_TRUE(home.log().linesStartingWith(QStringLiteral("🗑️")).isEmpty());

    const QString deletion = QStringLiteral("🗑️ 开始删除文件夹记录: ") + one.path();
    const QString check =
        QStringLiteral("✅ 验证成功：文件夹 ") + one.path() + QStringLiteral(" 下的所有记录已完全删除");
    // The statistics don't name the folder: those of another removal may come first.
    EXPECT_TRUE(waitUntil([&] {
        const QStringList lines = home.log().lines();
        return lines.lastIndexOf(QStringLiteral("📊 数据库统计信息:")) > lines.indexOf(check) &&
               lines.contains(check);
    }));
    const QStringList lines = home.log().lines();
    EXPECT_TRUE(lines.contains(deletion));
    EXPECT_GT(lines.indexOf(check), lines.indexOf(deletion));
    EXPECT_TRUE(isAnnounced);
    QObject::disconnect(connection);
    settle();
    EXPECT_TRUE(store.fetch({picture.path()}).empty());
    EXPECT_TRUE(store.getTags(picture.path()).isEmpty());
    EXPECT_TRUE(QFile::exists(picture.path()));
}

TEST_F(FolderLibraryTest, tagsGivenRightBeforeARemovalGoWithTheOtherRecords)
{
    constexpr int edits = 300;
    addRoot(one);
    BusyStore busy;
    for (int i = 0; i < edits; ++i)
        qorManager->addTag(QStringLiteral("cat"),
                           FileUrl::file(one.path() + QStringLiteral("/%1.png").arg(i)));
    home.log().clear();
    qorManager->removeFolderFromLibrary(qorManager->libraryFolders().first());
    // By then the deletion has been sent off, and would be next in the store.
    bool isSent = false;
    MainQueue::after(0.1, [&isSent] { isSent = true; });
    ASSERT_TRUE(waitUntil([&isSent] { return isSent; }));
    busy.end();
    ASSERT_TRUE(waitUntil([&] { return home.log().contains(QStringLiteral("📊 数据库统计信息:")); }));
    DeferredWrites::waitUntilIdle();
    EXPECT_EQ(EmbeddingStore::shared().fetchPathsByTag(QStringLiteral("cat")), QStringList());
}

TEST_F(FolderLibraryTest, theWaitsOfARemovalAreOneSecondAndHalfASecond)
{
    const LibraryTimings timings;
    EXPECT_EQ(timings.untilRecordDeletion, 1.0);
    EXPECT_EQ(timings.untilDeletionCheck, 0.5);
    EXPECT_EQ(timings.untilStartupSync, 1.0);
    EXPECT_EQ(timings.embeddingTimeout, 10.0);
    EXPECT_EQ(timings.bookmarkPatience, 2.0);
}

TEST_F(FolderLibraryTest, aFavouriteOfARemovedRootStays)
{
    addRoot(one);
    const Folder root = qorManager->libraryFolders().first();
    qorManager->addToFavorites(root);
    qorManager->removeFolderFromLibrary(root);
    EXPECT_EQ(qorManager->favoriteFolders(), QList<Folder>{root});
}

TEST_F(FolderLibraryTest, removingASubFolderLeavesItInTheTree)
{
    const FileUrl inner = home.makeFolder(QStringLiteral("one/inner"));
    addRoot(one);
    const QList<Folder> before = qorManager->libraryFolders();
    int writes = 0;
    QObject::connect(qorManager.get(), &QorManage::libraryFoldersChanged, qorManager.get(),
                     [&] { ++writes; });
    home.log().clear();

    qorManager->removeFolderFromLibrary(*QorManage::findFolder(inner, before));

    ASSERT_TRUE(waitUntil([&] {
        return home.log().contains(QStringLiteral("🗑️ 开始删除文件夹记录: ") + inner.path());
    }));
    EXPECT_EQ(qorManager->libraryFolders(), before);
    EXPECT_EQ(writes, 0);
}

TEST_F(FolderLibraryTest, aRemovalAskedForWhileAFolderIsBeingAddedComesAfterIt)
{
    qorManager->addFolder(one);
    qorManager->removeFolderFromLibrary({one, std::nullopt});
    qorManager->addFolder(two);
    ASSERT_TRUE(waitUntil([&] { return rootNames() == QStringList{QStringLiteral("two")}; }));
    settle();
    ASSERT_TRUE(qorManager->selectedFolder());
    EXPECT_EQ(qorManager->selectedFolder()->url, two); // the library was empty again by then
}

TEST_F(FolderLibraryTest, aFavouriteAddedWhileTheStoredOnesAreReadComesAfterThem)
{
    UserDefaults::standard().setDataArray(QStringLiteral("favoriteFolders"),
                                          {bookmark(QStringLiteral("two"))});
    qorManager->loadFavoriteBookmarks();
    qorManager->addToFavorites({one, std::nullopt});
    settle();
    EXPECT_EQ(qorManager->favoriteFolders(), (QList<Folder>{{two, std::nullopt}, {one, std::nullopt}}));
    EXPECT_EQ(stored("favoriteFolders"),
              (QList<QByteArray>{bookmark(QStringLiteral("two")), bookmark(QStringLiteral("one"))}));
}

TEST_F(FolderLibraryTest, aFavouriteAddedRightBeforeTheStoredOnesAreReadIsAmongThem)
{
    qorManager->addToFavorites({one, std::nullopt});
    qorManager->loadFavoriteBookmarks();
    settle();
    EXPECT_EQ(qorManager->favoriteFolders(), (QList<Folder>{{one, std::nullopt}}));
}
