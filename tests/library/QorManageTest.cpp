#include "library/DeferredWrites.h"
#include "library/FakeEncoder.h"
#include "library/LibraryFixture.h"
#include "platform/DetachedTask.h"
#include "platform/UserDefaults.h"
#include "store/EmbeddingStore.h"
#include "support/Waiting.h"

#include <QElapsedTimer>
#include <QMetaProperty>

#include <thread>

using namespace Qorvane;

namespace {

const QString syncLine = QStringLiteral("🔄 启动时检查文件夹同步状态...");

} // namespace

class QorManageTest : public LibraryFixture
{
};

TEST_F(QorManageTest, beginsWithItsInitialValues)
{
    const QorManage fresh;
    EXPECT_FALSE(fresh.isLoading());
    EXPECT_EQ(fresh.selectedFolder(), std::nullopt);
    EXPECT_EQ(fresh.selectedTag(), std::nullopt);
    EXPECT_EQ(fresh.selectedRating(), std::nullopt);
    EXPECT_TRUE(fresh.imageURLs().isEmpty());
    EXPECT_TRUE(fresh.libraryFolders().isEmpty());
    EXPECT_EQ(fresh.sortCriterion(), SortCriterion::filename);
    EXPECT_EQ(fresh.sortOrder(), SortOrder::ascending);
    EXPECT_EQ(fresh.cacheSizeInMB(), 0);
    EXPECT_TRUE(fresh.folderProcessingStatus().isEmpty());
}

TEST_F(QorManageTest, favouritesOfAnEarlierRunAreForgottenAtTheStart)
{
    const QString key = QStringLiteral("favoriteFolders");
    UserDefaults::standard().setDataArray(key, {home.path().toUtf8()});
    UserDefaults::standard().setDataArray(QStringLiteral("libraryFolders"), {home.path().toUtf8()});
    const QorManage library(nullptr, {0.01, 0.01, 0.01, 0.01});
    ASSERT_TRUE(waitUntil([&] { return home.log().contains(syncLine); }));
    EXPECT_EQ(UserDefaults::standard().dataArray(key), QList<QByteArray>());
    EXPECT_EQ(library.libraryFolders().size(), 1);
    EXPECT_TRUE(library.favoriteFolders().isEmpty());
}

TEST_F(QorManageTest, favouritesOfAnEarlierRunAreForgottenWithoutRootsToo)
{
    const QString key = QStringLiteral("favoriteFolders");
    UserDefaults::standard().setDataArray(key, {home.path().toUtf8()});
    const QorManage library;
    DeferredWrites::waitUntilIdle();
    EXPECT_EQ(UserDefaults::standard().dataArray(key), QList<QByteArray>());
}

TEST_F(QorManageTest, aStartPublishesTheRootsThenTheFavouritesAndThenChecks)
{
    UserDefaults::standard().setDataArray(QStringLiteral("libraryFolders"), {home.path().toUtf8()});
    QorManage library(nullptr, {0.01, 0.01, 0.01, 0.01});
    QStringList steps;
    QObject::connect(&library, &QorManage::libraryFoldersChanged, &library,
                     [&] { steps.append(QStringLiteral("roots %1").arg(library.libraryFolders().size())); });
    QObject::connect(&library, &QorManage::favoriteFoldersChanged, &library, [&] {
        steps.append(QStringLiteral("favourites %1").arg(library.favoriteFolders().size()));
        if (home.log().contains(syncLine))
            steps.append(QStringLiteral("too late"));
    });
    ASSERT_TRUE(waitUntil([&] { return home.log().contains(syncLine); }));
    EXPECT_EQ(steps, (QStringList{QStringLiteral("roots 1"), QStringLiteral("favourites 0")}));
}

TEST_F(QorManageTest, theCheckAtTheStartComesASecondAfterTheFolders)
{
    UserDefaults::standard().setDataArray(QStringLiteral("libraryFolders"), {home.path().toUtf8()});
    const QorManage library;
    QElapsedTimer sincePublished;
    QObject::connect(&library, &QorManage::libraryFoldersChanged, [&] { sincePublished.start(); });
    ASSERT_TRUE(waitUntil([&] { return home.log().contains(syncLine); }));
    ASSERT_TRUE(sincePublished.isValid());
    EXPECT_GE(sincePublished.elapsed(), 1000);
    // A busy machine may take longer, so the other side is held by the number itself.
    EXPECT_EQ(LibraryTimings().untilStartupSync, 1.0);
}

TEST_F(QorManageTest, aFirstStartChecksNothing)
{
    UserDefaults::standard().remove(QStringLiteral("libraryFolders"));
    const QorManage library(nullptr, {0, 0.01, 0.01, 0.01});
    settle();
    EXPECT_FALSE(home.log().contains(syncLine));
}

TEST_F(QorManageTest, aStartWithAnEmptyStoredListIsAStartAllTheSame)
{
    UserDefaults::standard().setDataArray(QStringLiteral("libraryFolders"), {});
    const QorManage library(nullptr, {0.01, 0.01, 0.01, 0.01});
    EXPECT_TRUE(waitUntil([&] { return home.log().contains(syncLine); }));
}

TEST_F(QorManageTest, theTagsAreReadAtTheStart)
{
    EmbeddingStore::shared().addTag(QStringLiteral("/x.jpg"), QStringLiteral("cat"));
    start();
    EXPECT_EQ(qorManager->allTags(), QStringList{QStringLiteral("cat")});
}

TEST_F(QorManageTest, everyPropertyTellsOfItsChanges)
{
    const QMetaObject &type = QorManage::staticMetaObject;
    ASSERT_GT(type.propertyCount(), type.propertyOffset());
    for (int i = type.propertyOffset(); i < type.propertyCount(); ++i) {
        const QMetaProperty property = type.property(i);
        EXPECT_EQ(property.notifySignal().name(), QByteArray(property.name()) + "Changed");
        EXPECT_TRUE(property.read(qorManager.get()).isValid()) << property.name();
    }
}

TEST_F(QorManageTest, sortSettingsCanBeReadWhenTheyAreAnnouncedAndEqualOnesAreAnnouncedToo)
{
    QList<SortCriterion> seen;
    QObject::connect(qorManager.get(), &QorManage::sortCriterionChanged, qorManager.get(),
                     [&] { seen.append(qorManager->sortCriterion()); });
    qorManager->setSortCriterion(SortCriterion::rating);
    qorManager->setSortCriterion(SortCriterion::rating);
    EXPECT_EQ(seen, (QList<SortCriterion>{SortCriterion::rating, SortCriterion::rating}));
}

TEST_F(QorManageTest, theVectorOfAFileComesFromItsThumbnail)
{
    start({0.01, 0.01, 0.01, 10});
    const FakeEncoder encoder;
    const FileUrl picture = home.writePicture(QStringLiteral("1.png"), Qt::white);
    std::optional<std::vector<float>> vector;
    std::atomic_bool isDone = false;
    std::thread request([&] {
        vector = qorManager->computeImageEmbedding(picture);
        isDone = true;
    });
    ASSERT_TRUE(waitUntil([&] { return isDone.load(); }));
    request.join();
    EXPECT_EQ(vector, (std::vector<float>{1, 1, 1}));
    EXPECT_EQ(encoder.filenames(), QStringList{QStringLiteral("1.png")});
}

TEST_F(QorManageTest, mayEndWhileAVectorIsWaitedFor)
{
    start({0.01, 0.01, 0.01, 60});
    FakeEncoder encoder;
    encoder.isHolding = true;
    const FileUrl picture = home.writePicture(QStringLiteral("1.png"), Qt::white);
    std::optional<std::vector<float>> vector;
    std::atomic_bool isDone = false;
    std::thread request([&] {
        vector = qorManager->computeImageEmbedding(picture);
        isDone = true;
    });
    ASSERT_TRUE(waitUntil([&] { return encoder.held().size() == 1; }));
    qorManager.reset();
    encoder.release();
    ASSERT_TRUE(waitUntil([&] { return isDone.load(); }));
    request.join();
    EXPECT_EQ(vector, (std::vector<float>{1, 1, 1}));
}

TEST_F(QorManageTest, mayEndWhileEverythingIsAtWork)
{
    for (int i = 0; i < 40; ++i)
        home.writePicture(QStringLiteral("a/%1.png").arg(i));
    const FileUrl folder = home.folder(QStringLiteral("a"));
    qorManager->addFolder(folder);
    ASSERT_TRUE(waitUntil([&] { return startedRuns(folder) > 0; }));
    qorManager->loadImages();
    qorManager->resortImages();
    qorManager->refreshAllTags();
    qorManager->updateCacheSize();
    qorManager->addFolder(home.makeFolder(QStringLiteral("b")));
    qorManager->setProcessing(folder.path(), FolderProcessingState::vectors, 0.5, QString());
    qorManager.reset();
    DetachedTask::waitUntilIdle();
    settle();
    const QStringList cancelled = home.log().linesStartingWith(QStringLiteral("🔄 已取消后台任务: "));
    EXPECT_EQ(cancelled, QStringList{QStringLiteral("🔄 已取消后台任务: ") + folder.path()});
    EXPECT_EQ(home.log().linesStartingWith(QStringLiteral("✅ 状态更新为完成: ")).size(), 0);
}

TEST_F(QorManageTest, aWholeLibraryGoesFromFoldersToVectors)
{
    start({0.01, 0.01, 0.01, 10});
    const FakeEncoder encoder;
    for (int i = 0; i < 3; ++i)
        home.writePicture(QStringLiteral("a/%1.png").arg(i), QColor::fromHsv(i * 100, 255, 255));
    const FileUrl folder = home.folder(QStringLiteral("a"));
    addRoot(folder);
    ASSERT_TRUE(waitUntil([&] {
        return EmbeddingStore::shared().getImageCount() == 3 &&
               qorManager->processingState(folder) == FolderProcessingState::completed;
    }));
    EXPECT_EQ(names(qorManager->imageURLs()),
              (QStringList{QStringLiteral("0.png"), QStringLiteral("1.png"), QStringLiteral("2.png")}));
    EXPECT_TRUE(qorManager->isPathInLibrary(folder.path() + QStringLiteral("/0.png")));
}
