#include "library/BusyStore.h"
#include "library/DeferredWrites.h"
#include "library/LibraryFixture.h"
#include "store/EmbeddingStore.h"
#include "support/Waiting.h"

#include <thread>

using namespace Qorvane;

class TagsAndRatingsTest : public LibraryFixture
{
protected:
    int announcements() const { return m_announcements; }

    void SetUp() override
    {
        QObject::connect(qorManager.get(), &QorManage::objectWillChange, qorManager.get(),
                         [this] { ++m_announcements; });
    }

    bool waitForList(const QStringList &expected)
    {
        return waitUntil(
            [&] { return names(qorManager->imageURLs()) == expected && !qorManager->isLoading(); });
    }

    std::optional<int> storedRating() const
    {
        DeferredWrites::waitUntilIdle();
        return store.getRating(picture.path());
    }

    EmbeddingStore &store = EmbeddingStore::shared();
    const FileUrl picture = home.writePicture(QStringLiteral("1.png"));
    const QString cat = QStringLiteral("cat");
    const QString dog = QStringLiteral("dog");

private:
    int m_announcements = 0;
};

TEST_F(TagsAndRatingsTest, aTagIsStoredAndThenListed)
{
    qorManager->addTag(cat, picture);
    DeferredWrites::waitUntilIdle();
    EXPECT_EQ(store.getTags(picture.path()), QStringList{cat});
    EXPECT_TRUE(qorManager->allTags().isEmpty());
    ASSERT_TRUE(waitUntil([&] { return qorManager->allTags() == QStringList{cat}; }));
}

TEST_F(TagsAndRatingsTest, aTagAddedWhileItIsShownReloadsTheList)
{
    store.addTag(home.writePicture(QStringLiteral("2.png")).path(), cat);
    qorManager->refreshAllTags();
    qorManager->setSelectedTag(cat);
    ASSERT_TRUE(waitForList({QStringLiteral("2.png")}));
    qorManager->addTag(cat, picture);
    EXPECT_TRUE(waitForList({QStringLiteral("1.png"), QStringLiteral("2.png")}));
}

TEST_F(TagsAndRatingsTest, removingTheLastUseOfTheSelectedTagDeselectsItAndReloads)
{
    store.addTag(picture.path(), cat);
    qorManager->setSelectedTag(cat);
    ASSERT_TRUE(waitForList({QStringLiteral("1.png")}));
    settle();
    home.log().clear();

    qorManager->removeTag(cat, picture);
    EXPECT_EQ(qorManager->selectedTag(), cat); // until the tags have been read again

    ASSERT_TRUE(waitUntil([&] { return !qorManager->selectedTag(); }));
    EXPECT_TRUE(home.log().contains(QStringLiteral("🏷️ selectedTag changed from cat to nil")));
    settle();
    EXPECT_TRUE(qorManager->imageURLs().isEmpty());
    EXPECT_TRUE(qorManager->allTags().isEmpty());
}

TEST_F(TagsAndRatingsTest, removingTheLastUseOfTheSelectedTagGoesBackToTheSelectedFolder)
{
    home.writePicture(QStringLiteral("2.png"));
    addRoot(home.folder());
    qorManager->setSelectedFolder(qorManager->libraryFolders().first());
    ASSERT_TRUE(waitForList({QStringLiteral("1.png"), QStringLiteral("2.png")}));
    store.addTag(picture.path(), cat);
    qorManager->setSelectedTag(cat);
    ASSERT_TRUE(waitForList({QStringLiteral("1.png")}));
    settle();
    home.log().clear();

    qorManager->removeTag(cat, picture);
    ASSERT_TRUE(waitUntil([&] { return !qorManager->selectedTag(); }));
    EXPECT_TRUE(waitForList({QStringLiteral("1.png"), QStringLiteral("2.png")}));
}

TEST_F(TagsAndRatingsTest, aRenameReloadsTheListOfTheOldAndOfTheNewTag)
{
    store.addTag(picture.path(), cat);
    const FileUrl second = home.writePicture(QStringLiteral("2.png"));
    store.addTag(second.path(), dog);
    qorManager->setSelectedTag(dog);
    ASSERT_TRUE(waitForList({QStringLiteral("2.png")}));
    qorManager->renameTag(cat, dog, picture);
    ASSERT_TRUE(waitForList({QStringLiteral("1.png"), QStringLiteral("2.png")}));
    qorManager->renameTag(dog, cat, picture);
    ASSERT_TRUE(waitForList({QStringLiteral("2.png")}));
    EXPECT_EQ(store.getTags(picture.path()), QStringList{cat});
}

TEST_F(TagsAndRatingsTest, aTagDeletedEverywhereIsDeselected)
{
    store.addTag(picture.path(), cat);
    qorManager->setSelectedTag(cat);
    QStringList left{QStringLiteral("not asked")};
    QObject::connect(qorManager.get(), &QorManage::selectedTagChanged, qorManager.get(),
                     [&] { left = store.listAllTags(); });
    qorManager->deleteTagGlobally(cat);
    ASSERT_TRUE(waitUntil([&] { return !qorManager->selectedTag(); }));
    EXPECT_EQ(left, QStringList()); // gone before anybody hears of it
}

TEST_F(TagsAndRatingsTest, anotherTagStaysSelectedWhenOneIsDeleted)
{
    store.addTag(picture.path(), cat);
    store.addTag(picture.path(), dog);
    qorManager->setSelectedTag(cat);
    qorManager->deleteTagGlobally(dog);
    settle();
    EXPECT_EQ(qorManager->selectedTag(), cat);
    EXPECT_EQ(qorManager->allTags(), QStringList{cat});
}

TEST_F(TagsAndRatingsTest, ratingsOutOfRangeAreStoredAsTheNearest)
{
    qorManager->setRating(0, picture);
    EXPECT_EQ(storedRating(), 1);
    qorManager->setRating(7, picture);
    EXPECT_EQ(storedRating(), 5);
    qorManager->setRating(-100, picture);
    EXPECT_EQ(storedRating(), 1);
    qorManager->setRating(4, picture);
    EXPECT_EQ(storedRating(), 4);
}

TEST_F(TagsAndRatingsTest, aRatingWithNoneSelectedIsAnnounced)
{
    std::optional<int> seen;
    QObject::connect(qorManager.get(), &QorManage::objectWillChange, qorManager.get(),
                     [&] { seen = store.getRating(picture.path()); });
    settle();
    const int before = announcements();
    qorManager->setRating(3, picture);
    settle();
    EXPECT_EQ(announcements(), before + 1);
    EXPECT_EQ(seen, 3);
    qorManager->clearRating(picture);
    settle();
    EXPECT_EQ(announcements(), before + 2);
    EXPECT_EQ(seen, std::nullopt);
}

TEST_F(TagsAndRatingsTest, aPictureRatedOutOfTheListShownReloadsIt)
{
    store.setRating(picture.path(), 3);
    qorManager->setSelectedRating(3);
    ASSERT_TRUE(waitForList({QStringLiteral("1.png")}));
    qorManager->setRating(4, picture);
    ASSERT_TRUE(waitUntil([&] { return qorManager->isLoading(); }));
    EXPECT_TRUE(waitForList({}));
}

TEST_F(TagsAndRatingsTest, aPictureOutsideTheListShownIsRatedInSilence)
{
    qorManager->setSelectedRating(3);
    settle();
    const int before = announcements();
    qorManager->setRating(4, picture);
    settle();
    EXPECT_EQ(announcements(), before);
}

TEST_F(TagsAndRatingsTest, theSelectedRatingGivenAgainIsAnnouncedWithoutALoad)
{
    qorManager->setSelectedRating(3);
    settle();
    const int before = announcements();
    qorManager->setRating(3, picture);
    settle();
    EXPECT_EQ(announcements(), before + 1); // a load would have written four properties
}

TEST_F(TagsAndRatingsTest, clearingARatingWhileOneIsShownReloads)
{
    store.setRating(picture.path(), 3);
    qorManager->setSelectedRating(3);
    ASSERT_TRUE(waitForList({QStringLiteral("1.png")}));
    qorManager->clearRating(picture);
    EXPECT_TRUE(waitForList({}));
}

TEST_F(TagsAndRatingsTest, aBusyStoreDoesNotKeepTheWindowWaiting)
{
    settle();
    const int before = announcements();
    BusyStore busy;
    qorManager->setRating(3, picture);
    qorManager->setRating(4, picture);
    qorManager->addTag(cat, picture);
    qorManager->renameTag(cat, dog, picture);
    drainMainQueue();
    EXPECT_EQ(announcements(), before); // nobody hears of what isn't written
    busy.end();
    settle();
    EXPECT_EQ(store.getRating(picture.path()), 4);
    EXPECT_EQ(store.getTags(picture.path()), QStringList{dog});
    EXPECT_EQ(qorManager->allTags(), QStringList{dog});
}

TEST_F(TagsAndRatingsTest, aListLoadedWhileEditsWaitForTheStoreHoldsThem)
{
    QStringList rated;
    BusyStore busy;
    for (int i = 1; i <= 8; ++i) {
        const QString name = QStringLiteral("r%1.png").arg(i);
        qorManager->setRating(5, home.writePicture(name));
        rated.append(name);
    }
    qorManager->setSelectedRating(5);
    busy.end();
    EXPECT_TRUE(waitForList(rated));
}

TEST_F(TagsAndRatingsTest, theLibrarysEndWaitsForWhatIsToBeWritten)
{
    BusyStore busy;
    qorManager->setRating(3, picture);
    qorManager->addTag(cat, picture);
    std::thread release([&busy] { busy.end(); });
    qorManager.reset();
    release.join();
    EXPECT_EQ(store.getRating(picture.path()), 3);
    EXPECT_EQ(store.getTags(picture.path()), QStringList{cat});
}
