#include "library/BusyStore.h"
#include "library/LibraryFixture.h"
#include "platform/DetachedTask.h"
#include "platform/GlobalQueue.h"
#include "store/EmbeddingStore.h"
#include "support/Waiting.h"

#include <thread>

using namespace Qorvane;

class MediaListTest : public LibraryFixture
{
protected:
    Folder folderOf(const QString &name) const { return {home.folder(name), std::nullopt}; }

    bool waitForList(const QStringList &expected)
    {
        return waitUntil(
            [&] { return names(qorManager->imageURLs()) == expected && !qorManager->isLoading(); });
    }

    /// Lets the background, and the main queue after it, do as much as a load of the folder by names takes.
    void giveBackgroundTimeFor(const QString &name)
    {
        std::atomic_bool isDone = false;
        GlobalQueue::async(QualityOfService::userInitiated, [this, name, &isDone] {
            QorManage::sortURLs(QorManage::collectMediaFiles(home.folder(name)), SortCriterion::filename,
                                SortOrder::ascending);
            isDone = true;
        });
        EXPECT_TRUE(waitUntil([&] { return isDone.load(); }));
        drainMainQueue();
    }

    QStringList publishedLists;

    void recordLists()
    {
        QObject::connect(qorManager.get(), &QorManage::imageURLsChanged, qorManager.get(),
                         [this] { publishedLists.append(names(qorManager->imageURLs()).join(u' ')); });
    }
};

TEST_F(MediaListTest, aFolderShowsItsFilesOfEveryDepthSortedAndStartsItsRun)
{
    for (const char *name : {"a/img10.png", "a/sub/img2.png", "a/IMG1.png"})
        home.writePicture(QString::fromLatin1(name));
    addRoot(home.folder());
    qorManager->setSelectedFolder(folderOf(QStringLiteral("a")));
    EXPECT_TRUE(qorManager->isLoading());
    EXPECT_TRUE(qorManager->imageURLs().isEmpty());
    ASSERT_TRUE(
        waitForList({QStringLiteral("IMG1.png"), QStringLiteral("img2.png"), QStringLiteral("img10.png")}));
    EXPECT_TRUE(waitForRun(home.folder(QStringLiteral("a"))));
    const QStringList made =
        home.log().linesStartingWith(QStringLiteral("🔄 setProcessing: ") + home.path(QStringLiteral("a")));
    EXPECT_FALSE(made.isEmpty());
}

TEST_F(MediaListTest, aLoadPublishesItsStatesInTheirOrder)
{
    home.writePicture(QStringLiteral("a/1.png"));
    qorManager->setSelectedRating(5);
    settle();
    QStringList steps;
    const QorManage *library = qorManager.get();
    QObject::connect(library, &QorManage::selectedFolderChanged, library,
                     [&] { steps.append(QStringLiteral("folder")); });
    QObject::connect(library, &QorManage::selectedRatingChanged, library,
                     [&] { steps.append(QStringLiteral("rating")); });
    QObject::connect(library, &QorManage::imageURLsChanged, library,
                     [&] { steps.append(QStringLiteral("list of %1").arg(library->imageURLs().size())); });
    QObject::connect(library, &QorManage::isLoadingChanged, library, [&] {
        steps.append(library->isLoading() ? QStringLiteral("loading") : QStringLiteral("loaded"));
    });
    qorManager->setSelectedFolder(folderOf(QStringLiteral("a")));
    settle();
    // The folder takes the rating's place, which loads too; both loads are this folder's.
    EXPECT_EQ(steps.mid(0, 6), (QStringList{QStringLiteral("folder"), QStringLiteral("rating"),
                                            QStringLiteral("list of 0"), QStringLiteral("loading"),
                                            QStringLiteral("list of 0"), QStringLiteral("loading")}));
    EXPECT_EQ(steps.mid(6), (QStringList{QStringLiteral("list of 1"), QStringLiteral("loaded"),
                                         QStringLiteral("list of 1"), QStringLiteral("loaded")}));
}

TEST_F(MediaListTest, aRunStartsAfterTheListItIsFor)
{
    home.writePicture(QStringLiteral("a/1.png"));
    const QorManage *library = qorManager.get();
    const QString path = home.path(QStringLiteral("a"));
    QString seen;
    QObject::connect(library, &QorManage::folderProcessingStatusChanged, library, [&] {
        if (seen.isEmpty())
            seen = QStringLiteral("%1 shown, %2").arg(library->imageURLs().size()).arg(library->isLoading());
    });
    qorManager->setSelectedFolder(folderOf(QStringLiteral("a")));
    ASSERT_TRUE(waitUntil([&] { return library->folderProcessingStatus().contains(path); }));
    EXPECT_EQ(seen, QStringLiteral("1 shown, 0"));
}

TEST_F(MediaListTest, withATagAndAFolderSetTheTagsFilesAreListedAndNoRunStarts)
{
    const FileUrl tagged = home.writePicture(QStringLiteral("other/t.png"));
    home.writePicture(QStringLiteral("a/1.png"));
    EmbeddingStore::shared().addTag(tagged.path(), QStringLiteral("cat"));
    EmbeddingStore::shared().addTag(home.path(QStringLiteral("gone.png")), QStringLiteral("cat"));
    qorManager->setSelectedFolder(folderOf(QStringLiteral("a")));
    qorManager->setSelectedTag(QStringLiteral("cat"));
    ASSERT_TRUE(waitForList({QStringLiteral("t.png")}));
    settle();
    EXPECT_EQ(names(qorManager->imageURLs()), QStringList{QStringLiteral("t.png")});
    EXPECT_TRUE(home.log().linesStartingWith(QStringLiteral("🔄")).isEmpty());
}

TEST_F(MediaListTest, aFoldersListThatArrivesAfterATagWasSelectedIsDropped)
{
    home.writePicture(QStringLiteral("a/1.png"));
    recordLists();
    qorManager->setSelectedFolder(folderOf(QStringLiteral("a")));
    qorManager->setSelectedTag(QStringLiteral("nobody's"));
    settle();
    EXPECT_EQ(publishedLists.join(QString()), QString());
    EXPECT_EQ(startedRuns(home.folder(QStringLiteral("a"))), 0);
    EXPECT_FALSE(qorManager->isLoading());
}

TEST_F(MediaListTest, aFoldersListThatArrivesAfterARatingWasSelectedIsPublished)
{
    home.writePicture(QStringLiteral("a/1.png"));
    recordLists();
    qorManager->setSelectedFolder(folderOf(QStringLiteral("a")));
    qorManager->setSelectedRating(5);
    settle();
    EXPECT_TRUE(publishedLists.contains(QStringLiteral("1.png")));
    EXPECT_FALSE(home.log().linesStartingWith(QStringLiteral("🔄 setProcessing: ")).isEmpty());
}

TEST_F(MediaListTest, anotherFoldersListIsDropped)
{
    home.writePicture(QStringLiteral("a/1.png"));
    home.writePicture(QStringLiteral("b/2.png"));
    recordLists();
    qorManager->setSelectedFolder(folderOf(QStringLiteral("a")));
    qorManager->setSelectedFolder(folderOf(QStringLiteral("b")));
    ASSERT_TRUE(waitForList({QStringLiteral("2.png")}));
    settle();
    EXPECT_FALSE(publishedLists.contains(QStringLiteral("1.png")));
}

TEST_F(MediaListTest, aFolderSelectedTwiceQuicklyStartsItsRunTwiceAndTheSecondCancelsTheFirst)
{
    home.writePicture(QStringLiteral("a/1.png"));
    const FileUrl a = home.folder(QStringLiteral("a"));
    qorManager->setSelectedFolder(folderOf(QStringLiteral("a")));
    qorManager->setSelectedFolder(folderOf(QStringLiteral("a")));
    const auto starts = [&] {
        const QString line =
            QStringLiteral("🔄 setProcessing: ") + a.path() +
            QStringLiteral(" -> state: thumbnails, progress: 0.0, detail: 准备生成缩略图...");
        return home.log().linesStartingWith(line).size();
    };
    ASSERT_TRUE(waitUntil([&] {
        return starts() == 2 &&
               home.log().contains(QStringLiteral("🔄 静默取消文件夹的后台任务: ") + a.path());
    }));
    EXPECT_TRUE(home.log().linesStartingWith(QStringLiteral("🔄 已取消文件夹的后台任务: ")).isEmpty());
}

TEST_F(MediaListTest, withNothingSelectedEveryRootIsProcessedByPlainPrefix)
{
    home.writePicture(QStringLiteral("b/1.png"));
    home.writePicture(QStringLiteral("bc/x.png"));
    addRoot(home.folder(QStringLiteral("b")));
    addRoot(home.folder(QStringLiteral("bc")));
    qorManager->setSelectedFolder(std::nullopt);
    settle();
    DetachedTask::waitUntilIdle();
    settle();
    home.log().clear();

    qorManager->loadImages();

    ASSERT_TRUE(waitForRun(home.folder(QStringLiteral("b"))));
    ASSERT_TRUE(waitForRun(home.folder(QStringLiteral("bc"))));
    // The root "b" counts the file of "bc" as its own too.
    const QString made = QStringLiteral("✅ 缩略图生成完成: ");
    EXPECT_EQ(home.log().linesStartingWith(made + QStringLiteral("x.png")).size(), 2);
    EXPECT_EQ(home.log().linesStartingWith(made + QStringLiteral("1.png")).size(), 1);
    EXPECT_TRUE(qorManager->imageURLs().isEmpty());
}

TEST_F(MediaListTest, withAnEmptyLibraryLoadingGoesTrueAndFalseAndNoRunStarts)
{
    QList<bool> loading;
    QObject::connect(qorManager.get(), &QorManage::isLoadingChanged, qorManager.get(),
                     [&] { loading.append(qorManager->isLoading()); });
    qorManager->loadImages();
    settle();
    EXPECT_EQ(loading, (QList<bool>{true, false}));
    EXPECT_EQ(home.log().lines(), QStringList());
}

TEST_F(MediaListTest, aFolderThatIsGoneGivesAnEmptyList)
{
    qorManager->setSelectedFolder(folderOf(QStringLiteral("gone")));
    settle();
    EXPECT_FALSE(qorManager->isLoading());
    EXPECT_TRUE(qorManager->imageURLs().isEmpty());
    EXPECT_EQ(home.log().lines(), QStringList());
}

TEST_F(MediaListTest, aSortChangeFollowsWhenTheEventLoopComesRound)
{
    home.writePicture(QStringLiteral("a/1.png"));
    home.writePicture(QStringLiteral("a/2.png"));
    qorManager->setSelectedFolder(folderOf(QStringLiteral("a")));
    const QStringList ascending{QStringLiteral("1.png"), QStringLiteral("2.png")};
    ASSERT_TRUE(waitForList(ascending));
    DetachedTask::waitUntilIdle();
    settle();
    home.log().clear();

    qorManager->setSortOrder(SortOrder::descending);

    EXPECT_EQ(names(qorManager->imageURLs()), ascending);
    ASSERT_TRUE(waitForList({QStringLiteral("2.png"), QStringLiteral("1.png")}));
    settle();
    EXPECT_EQ(home.log().lines(), QStringList()); // no run starts
}

TEST_F(MediaListTest, aSortChangeWithNothingShownAndNothingSelectedDoesNothing)
{
    int writes = 0;
    qorManager->setSortCriterion(SortCriterion::rating);
    QObject::connect(qorManager.get(), &QorManage::objectWillChange, qorManager.get(), [&] { ++writes; });
    settle();
    EXPECT_EQ(writes, 0);
    EXPECT_EQ(home.log().lines(), QStringList());
}

TEST_F(MediaListTest, aSortChangeWithNothingShownLoadsForTheSelection)
{
    qorManager->setSelectedRating(5);
    settle();
    EmbeddingStore::shared().setRating(home.writePicture(QStringLiteral("1.png")).path(), 5);
    qorManager->setSortCriterion(SortCriterion::modificationDate);
    EXPECT_TRUE(waitForList({QStringLiteral("1.png")}));
}

TEST_F(MediaListTest, sortChangesInARowAreEachAppliedToTheResultOfTheOneBefore)
{
    // Equal ratings and equal names in two folders: only the order they had decides.
    const FileUrl first = home.writePicture(QStringLiteral("a/1/x.png"));
    const FileUrl second = home.writePicture(QStringLiteral("a/2/x.png"));
    qorManager->setSelectedFolder(folderOf(QStringLiteral("a")));
    ASSERT_TRUE(waitUntil([&] { return qorManager->imageURLs().size() == 2; }));
    const QList<FileUrl> before = qorManager->imageURLs();
    recordLists();
    qorManager->setSortOrder(SortOrder::descending);
    qorManager->setSortCriterion(SortCriterion::rating);
    ASSERT_TRUE(waitUntil([&] { return publishedLists.size() == 2; }));
    EXPECT_EQ(qorManager->imageURLs(), before); // turned twice
}

TEST_F(MediaListTest, aResortOfAListThatALoadReplacedIsVoid)
{
    home.writePicture(QStringLiteral("a/1.png"));
    home.writePicture(QStringLiteral("b/2.png"));
    qorManager->setSelectedFolder(folderOf(QStringLiteral("a")));
    ASSERT_TRUE(waitForList({QStringLiteral("1.png")}));
    recordLists();
    qorManager->resortImages();
    qorManager->setSelectedFolder(folderOf(QStringLiteral("b")));
    ASSERT_TRUE(waitForList({QStringLiteral("2.png")}));
    settle();
    EXPECT_EQ(publishedLists, (QStringList{QString(), QStringLiteral("2.png")}));
}

TEST_F(MediaListTest, aResortFromTheBackgroundIsPublishedWhenItReturns)
{
    LibraryHome::setModificationTime(home.writePicture(QStringLiteral("a/1.png")), 100);
    const FileUrl second = home.writePicture(QStringLiteral("a/2.png"));
    LibraryHome::setModificationTime(second, 200);
    qorManager->setSortCriterion(SortCriterion::modificationDate);
    qorManager->setSelectedFolder(folderOf(QStringLiteral("a")));
    ASSERT_TRUE(waitForList({QStringLiteral("1.png"), QStringLiteral("2.png")}));
    settle(); // a load that was begun before the change of time would undo what comes of it
    LibraryHome::setModificationTime(second, 50);

    std::atomic_bool isDone = false;
    std::thread resort([&] {
        qorManager->resortImages();
        isDone = true;
    });
    ASSERT_TRUE(waitUntil([&] { return isDone.load(); }));
    resort.join();
    EXPECT_EQ(names(qorManager->imageURLs()),
              (QStringList{QStringLiteral("2.png"), QStringLiteral("1.png")}));
}

TEST_F(MediaListTest, aResortIfChangedPublishesOnlyWhatCameOutDifferent)
{
    LibraryHome::setModificationTime(home.writePicture(QStringLiteral("a/1.png")), 100);
    const FileUrl second = home.writePicture(QStringLiteral("a/2.png"));
    LibraryHome::setModificationTime(second, 200);
    qorManager->setSortCriterion(SortCriterion::modificationDate);
    qorManager->setSelectedFolder(folderOf(QStringLiteral("a")));
    ASSERT_TRUE(waitForList({QStringLiteral("1.png"), QStringLiteral("2.png")}));
    settle();
    recordLists();

    qorManager->resortImagesIfChanged();
    settle();
    EXPECT_TRUE(publishedLists.isEmpty());

    LibraryHome::setModificationTime(second, 50);
    qorManager->resortImagesIfChanged();
    settle();
    EXPECT_EQ(publishedLists, QStringList{QStringLiteral("2.png 1.png")});
}

TEST_F(MediaListTest, aLoadBegunWithEarlierSettingsIsShownBeforeTheLaterOneWhicheverEndsFirst)
{
    EmbeddingStore::shared().setRating(home.writePicture(QStringLiteral("a/1.png")).path(), 5);
    home.writePicture(QStringLiteral("a/2.png"));
    qorManager->setSortCriterion(SortCriterion::rating);
    drainMainQueue();
    BusyStore busy;
    recordLists();
    qorManager->setSelectedFolder(folderOf(QStringLiteral("a"))); // asks the store for ratings
    qorManager->setSortCriterion(SortCriterion::filename);
    qorManager->handleSortChange(); // nothing is shown yet, so this loads anew, and needs no store
    giveBackgroundTimeFor(QStringLiteral("a"));
    busy.end();
    settle();
    publishedLists.removeAll(QString());
    EXPECT_EQ(publishedLists.value(0), QStringLiteral("2.png 1.png"));
    EXPECT_EQ(publishedLists.value(1), QStringLiteral("1.png 2.png"));
    EXPECT_EQ(names(qorManager->imageURLs()),
              (QStringList{QStringLiteral("1.png"), QStringLiteral("2.png")}));
}

TEST_F(MediaListTest, aLoadThatEndsAfterTheListWasSortedAnewIsSortedAnewToo)
{
    EmbeddingStore::shared().setRating(home.writePicture(QStringLiteral("a/1.png")).path(), 5);
    home.writePicture(QStringLiteral("a/2.png"));
    BusyStore busy;
    qorManager->setSelectedFolder(folderOf(QStringLiteral("a")));
    qorManager->setSortCriterion(SortCriterion::rating);
    qorManager->handleSortChange(); // nothing is shown yet: a second load, which has to wait for the store
    ASSERT_TRUE(waitForList({QStringLiteral("1.png"), QStringLiteral("2.png")})); // the first
    qorManager->setSortCriterion(SortCriterion::filename);
    recordLists();
    drainMainQueue();
    busy.end();
    settle();
    EXPECT_EQ(publishedLists.value(publishedLists.size() - 1), QStringLiteral("1.png 2.png"));
}

TEST_F(MediaListTest, aFoldersListByNameDoesNotWaitForTagsBeingWritten)
{
    const FileUrl picture = home.writePicture(QStringLiteral("a/1.png"));
    BusyStore busy;
    qorManager->addTag(QStringLiteral("cat"), picture);
    qorManager->setSelectedFolder(folderOf(QStringLiteral("a")));
    EXPECT_TRUE(waitForList({QStringLiteral("1.png")}));
    busy.end();
}

TEST_F(MediaListTest, aResortFromTheBackgroundTakesItsTurnAmongTheOthers)
{
    EmbeddingStore::shared().setRating(home.writePicture(QStringLiteral("a/1.png")).path(), 5);
    home.writePicture(QStringLiteral("a/2.png"));
    qorManager->setSortCriterion(SortCriterion::rating);
    qorManager->setSelectedFolder(folderOf(QStringLiteral("a")));
    ASSERT_TRUE(waitForList({QStringLiteral("2.png"), QStringLiteral("1.png")}));
    DetachedTask::waitUntilIdle();
    settle();
    BusyStore busy;
    recordLists();
    std::atomic_bool isDone = false;
    std::thread resort([&] {
        qorManager->resortImages(); // by ratings
        isDone = true;
    });
    giveBackgroundTimeFor(QStringLiteral("a"));
    qorManager->setSortCriterion(SortCriterion::filename);
    drainMainQueue();
    EXPECT_FALSE(isDone);
    busy.end();
    ASSERT_TRUE(waitUntil([&] { return isDone.load(); }));
    resort.join();
    settle();
    EXPECT_EQ(names(qorManager->imageURLs()),
              (QStringList{QStringLiteral("1.png"), QStringLiteral("2.png")}));
}

TEST_F(MediaListTest, aResortFromTheBackgroundOfAnEmptyListReturns)
{
    std::atomic_bool isDone = false;
    std::thread resort([&] {
        qorManager->resortImages();
        isDone = true;
    });
    EXPECT_TRUE(waitUntil([&] { return isDone.load(); }));
    resort.join();
}
