#include "library/LibraryFixture.h"
#include "store/EmbeddingStore.h"
#include "support/Waiting.h"

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

    EmbeddingStore &store = EmbeddingStore::shared();
    const FileUrl picture = home.writePicture(QStringLiteral("1.png"));
    const QString cat = QStringLiteral("cat");
    const QString dog = QStringLiteral("dog");

private:
    int m_announcements = 0;
};

TEST_F(TagsAndRatingsTest, aTagIsStoredAtOnceAndListedSoonAfter)
{
    qorManager->addTag(cat, picture);
    EXPECT_EQ(store.getTags(picture.path()), QStringList{cat});
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

TEST_F(TagsAndRatingsTest, aTagDeletedEverywhereIsDeselectedAtOnce)
{
    store.addTag(picture.path(), cat);
    qorManager->setSelectedTag(cat);
    qorManager->deleteTagGlobally(cat);
    EXPECT_EQ(qorManager->selectedTag(), std::nullopt);
    EXPECT_TRUE(store.listAllTags().isEmpty());
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
    EXPECT_EQ(store.getRating(picture.path()), 1);
    qorManager->setRating(7, picture);
    EXPECT_EQ(store.getRating(picture.path()), 5);
    qorManager->setRating(-100, picture);
    EXPECT_EQ(store.getRating(picture.path()), 1);
    qorManager->setRating(4, picture);
    EXPECT_EQ(store.getRating(picture.path()), 4);
}

TEST_F(TagsAndRatingsTest, aRatingWithNoneSelectedIsAnnounced)
{
    qorManager->setRating(3, picture);
    EXPECT_EQ(announcements(), 1);
    qorManager->clearRating(picture);
    EXPECT_EQ(announcements(), 2);
    EXPECT_EQ(store.getRating(picture.path()), std::nullopt);
}

TEST_F(TagsAndRatingsTest, aPictureRatedOutOfTheListShownReloadsIt)
{
    store.setRating(picture.path(), 3);
    qorManager->setSelectedRating(3);
    ASSERT_TRUE(waitForList({QStringLiteral("1.png")}));
    qorManager->setRating(4, picture);
    EXPECT_TRUE(qorManager->isLoading());
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
    EXPECT_FALSE(qorManager->isLoading());
    EXPECT_EQ(announcements(), before + 1);
}

TEST_F(TagsAndRatingsTest, clearingARatingWhileOneIsShownReloads)
{
    store.setRating(picture.path(), 3);
    qorManager->setSelectedRating(3);
    ASSERT_TRUE(waitForList({QStringLiteral("1.png")}));
    qorManager->clearRating(picture);
    EXPECT_TRUE(waitForList({}));
}
