#include "library/BusyStore.h"
#include "library/LibraryFixture.h"
#include "store/EmbeddingStore.h"
#include "support/Waiting.h"

#include <QFile>

using namespace Qorvane;

/// The lists of files that have a tag or a rating, from the selection to the last line of the log.
class TagAndRatingListsTest : public LibraryFixture
{
protected:
    Folder folderOf(const QString &name) const { return {home.folder(name), std::nullopt}; }

    bool waitForList(const QStringList &expected)
    {
        return waitUntil(
            [&] { return names(qorManager->imageURLs()) == expected && !qorManager->isLoading(); });
    }

    void recordLists()
    {
        QObject::connect(qorManager.get(), &QorManage::imageURLsChanged, qorManager.get(),
                         [this] { publishedLists.append(names(qorManager->imageURLs()).join(u' ')); });
    }

    QStringList publishedLists;
};

TEST_F(TagAndRatingListsTest, aTagsListThatArrivesAfterAnotherTagWasSelectedIsDropped)
{
    const FileUrl cat = home.writePicture(QStringLiteral("cat.png"));
    const FileUrl dog = home.writePicture(QStringLiteral("dog.png"));
    EmbeddingStore::shared().addTag(cat.path(), QStringLiteral("cat"));
    EmbeddingStore::shared().addTag(dog.path(), QStringLiteral("dog"));
    home.log().clear();
    qorManager->setSelectedTag(QStringLiteral("cat"));
    qorManager->setSelectedTag(QStringLiteral("dog"));
    ASSERT_TRUE(waitForList({QStringLiteral("dog.png")}));
    settle();
    EXPECT_EQ(names(qorManager->imageURLs()), QStringList{QStringLiteral("dog.png")});
    EXPECT_EQ(home.log().linesStartingWith(QStringLiteral("🏷️ Setting imageURLs with ")).size(), 1);
}

TEST_F(TagAndRatingListsTest, aRatingsListThatArrivesAfterAnotherRatingWasSelectedIsDropped)
{
    const FileUrl good = home.writePicture(QStringLiteral("good.png"));
    const FileUrl best = home.writePicture(QStringLiteral("best.png"));
    EmbeddingStore::shared().setRating(good.path(), 4);
    EmbeddingStore::shared().setRating(best.path(), 5);
    qorManager->setSelectedRating(4);
    qorManager->setSelectedRating(5);
    QList<QStringList> published;
    QObject::connect(qorManager.get(), &QorManage::imageURLsChanged, qorManager.get(),
                     [&] { published.append(names(qorManager->imageURLs())); });
    ASSERT_TRUE(waitForList({QStringLiteral("best.png")}));
    settle();
    EXPECT_EQ(published, QList<QStringList>{{QStringLiteral("best.png")}});
}

TEST_F(TagAndRatingListsTest, aDroppedListOfATagOrARatingLeavesTheLoadingToTheNext)
{
    const FileUrl picture = home.writePicture(QStringLiteral("1.png"));
    EmbeddingStore::shared().addTag(picture.path(), QStringLiteral("cat"));
    EmbeddingStore::shared().setRating(picture.path(), 4);
    recordLists();
    QList<bool> loading;
    QObject::connect(qorManager.get(), &QorManage::isLoadingChanged, qorManager.get(),
                     [&] { loading.append(qorManager->isLoading()); });
    qorManager->setSelectedTag(QStringLiteral("cat"));
    qorManager->setSelectedTag(QStringLiteral("dog"));
    settle();
    EXPECT_EQ(loading, (QList<bool>{true, true, false}));
    qorManager->setSelectedTag(std::nullopt);
    settle();
    loading.clear();
    qorManager->setSelectedRating(4);
    qorManager->setSelectedRating(5);
    settle();
    EXPECT_EQ(loading, (QList<bool>{true, true, false}));
    EXPECT_EQ(publishedLists.join(QString()), QString());
}

TEST_F(TagAndRatingListsTest, theTagGoesBeforeTheRatingAndTheRatingBeforeTheFolder)
{
    EmbeddingStore::shared().addTag(home.writePicture(QStringLiteral("tagged.png")).path(),
                                    QStringLiteral("cat"));
    EmbeddingStore::shared().setRating(home.writePicture(QStringLiteral("rated.png")).path(), 3);
    home.writePicture(QStringLiteral("a/1.png"));
    qorManager->setSelectedFolder(folderOf(QStringLiteral("a")));
    ASSERT_TRUE(waitForList({QStringLiteral("1.png")}));
    qorManager->setSelectedRating(3);
    ASSERT_TRUE(waitForList({QStringLiteral("rated.png")}));
    qorManager->setSelectedTag(QStringLiteral("cat"));
    ASSERT_TRUE(waitForList({QStringLiteral("tagged.png")}));
    settle();
    qorManager->loadImages();
    ASSERT_TRUE(waitForList({QStringLiteral("tagged.png")}));
    qorManager->setSelectedTag(std::nullopt);
    ASSERT_TRUE(waitForList({QStringLiteral("rated.png")}));
    qorManager->setSelectedRating(std::nullopt);
    ASSERT_TRUE(waitForList({QStringLiteral("1.png")}));
}

TEST_F(TagAndRatingListsTest, tagsAndRatingsAreSortedAsAskedForWhenTheStoreHasAnswered)
{
    for (const char *name : {"1.png", "2.png"}) {
        const QString path = home.writePicture(QString::fromLatin1(name)).path();
        EmbeddingStore::shared().addTag(path, QStringLiteral("cat"));
        EmbeddingStore::shared().setRating(path, 4);
    }
    for (const bool isTag : {true, false}) {
        qorManager->setSortOrder(SortOrder::ascending);
        settle();
        recordLists();
        BusyStore busy;
        if (isTag)
            qorManager->setSelectedTag(QStringLiteral("cat"));
        else
            qorManager->setSelectedRating(4);
        qorManager->setSortOrder(SortOrder::descending);
        busy.end();
        settle();
        publishedLists.removeAll(QString());
        EXPECT_EQ(publishedLists.value(0), QStringLiteral("2.png 1.png")) << isTag;
        qorManager->setSelectedTag(std::nullopt);
        settle();
        publishedLists.clear();
    }
}

TEST_F(TagAndRatingListsTest, ratingsSortTheListOfATagAndAreReadAnewAtEachSort)
{
    EmbeddingStore &store = EmbeddingStore::shared();
    QStringList paths;
    for (const char *name : {"img10.png", "img2.png", "img1.png"}) {
        paths.append(home.writePicture(QString::fromLatin1(name)).path());
        store.addTag(paths.last(), QStringLiteral("cat"));
    }
    store.setRating(paths[2], 3);
    qorManager->setSortCriterion(SortCriterion::rating);
    drainMainQueue();
    qorManager->setSelectedTag(QStringLiteral("cat"));
    ASSERT_TRUE(
        waitForList({QStringLiteral("img2.png"), QStringLiteral("img10.png"), QStringLiteral("img1.png")}));
    qorManager->setRating(5, FileUrl::file(paths[1]));
    qorManager->resortImagesIfChanged();
    ASSERT_TRUE(
        waitForList({QStringLiteral("img10.png"), QStringLiteral("img1.png"), QStringLiteral("img2.png")}));
    qorManager->setSortOrder(SortOrder::descending);
    ASSERT_TRUE(
        waitForList({QStringLiteral("img2.png"), QStringLiteral("img1.png"), QStringLiteral("img10.png")}));
}

TEST_F(TagAndRatingListsTest, aTagsLoadLogsEveryStepToTheLetter)
{
    for (int i = 1; i <= 4; ++i)
        EmbeddingStore::shared().addTag(home.writePicture(QStringLiteral("%1.png").arg(i)).path(),
                                        QStringLiteral("猫"));
    QFile::remove(home.path(QStringLiteral("4.png")));
    home.log().clear();
    qorManager->setSelectedTag(QStringLiteral("猫"));
    ASSERT_TRUE(waitUntil([&] { return qorManager->imageURLs().size() == 3; }));

    QStringList paths = EmbeddingStore::shared().fetchPathsByTag(QStringLiteral("猫")).mid(0, 3);
    const QString firstThree =
        QStringLiteral("[\"") + paths.join(QStringLiteral("\", \"")) + QStringLiteral("\"]");
    QStringList own;
    for (const QString &line : home.log().lines()) {
        if (!line.startsWith(QStringLiteral("🏷️ EmbeddingStore:")))
            own.append(line);
    }
    EXPECT_EQ(own, (QStringList{
                       QStringLiteral("🏷️ selectedTag changed from nil to 猫"),
                       QStringLiteral("🏷️ Loading images for tag: 猫"),
                       QStringLiteral("🏷️ Found 4 paths for tag '猫': ") + firstThree,
                       QStringLiteral("⚠️ File not found: ") + home.path(QStringLiteral("4.png")),
                       QStringLiteral("🏷️ Valid URLs: 3"),
                       QStringLiteral("🏷️ Setting imageURLs with 3 images for tag '猫'"),
                   }));
}

TEST_F(TagAndRatingListsTest, aTagOfNoFileLogsThatToo)
{
    qorManager->setSelectedTag(QStringLiteral("猫"));
    settle();
    EXPECT_EQ(home.log().linesStartingWith(QStringLiteral("🏷️ Found")),
              QStringList{QStringLiteral("🏷️ Found 0 paths for tag '猫': []")});
    EXPECT_TRUE(home.log().contains(QStringLiteral("🏷️ Setting imageURLs with 0 images for tag '猫'")));
    EXPECT_FALSE(qorManager->isLoading());
}

TEST_F(TagAndRatingListsTest, aRatingShowsItsFilesAndPassesOverTheMissingWithoutALine)
{
    EmbeddingStore::shared().setRating(home.writePicture(QStringLiteral("img10.png")).path(), 4);
    EmbeddingStore::shared().setRating(home.writePicture(QStringLiteral("img2.png")).path(), 4);
    EmbeddingStore::shared().setRating(home.writePicture(QStringLiteral("three.png")).path(), 3);
    EmbeddingStore::shared().setRating(home.path(QStringLiteral("gone.png")), 4);
    home.log().clear();
    qorManager->setSelectedRating(4);
    ASSERT_TRUE(waitForList({QStringLiteral("img2.png"), QStringLiteral("img10.png")}));
    EXPECT_EQ(home.log().lines(), (QStringList{QStringLiteral("⭐️ selectedRating changed from nil to 4"),
                                               QStringLiteral("⭐️ Loading images for rating: 4")}));
}

TEST_F(TagAndRatingListsTest, aTagsListIsNotReplacedByThatOfARatingChosenBeforeIt)
{
    const FileUrl both = home.writePicture(QStringLiteral("both.png"));
    const FileUrl tagged = home.writePicture(QStringLiteral("tagged.png"));
    EmbeddingStore::shared().setRating(both.path(), 5);
    EmbeddingStore::shared().addTag(tagged.path(), QStringLiteral("cat"));
    for (int i = 0; i < 10; ++i) {
        qorManager->setSelectedRating(5);
        qorManager->setSelectedTag(QStringLiteral("cat"));
        settle();
        EXPECT_EQ(names(qorManager->imageURLs()), QStringList{QStringLiteral("tagged.png")});
        qorManager->setSelectedTag(std::nullopt);
        settle();
    }
}
