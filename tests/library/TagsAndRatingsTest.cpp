#include "library/BusyStore.h"
#include "library/DeferredWrites.h"
#include "library/LibraryFixture.h"
#include "store/EmbeddingStore.h"
#include "support/Waiting.h"

#include <gmock/gmock.h>
#include <sqlite3.h>

#include <future>
#include <thread>

using namespace Qorvane;

class TagsAndRatingsTest : public LibraryFixture
{
protected:
    int announcements() const { return m_announcements; }
    /// The loads of lists so far.
    int loads() const { return m_loads; }

    void SetUp() override
    {
        QObject::connect(qorManager.get(), &QorManage::objectWillChange, qorManager.get(),
                         [this] { ++m_announcements; });
        QObject::connect(qorManager.get(), &QorManage::isLoadingChanged, qorManager.get(),
                         [this] { m_loads += qorManager->isLoading() ? 1 : 0; });
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
    int m_loads = 0;
};

/// Takes the tables of tags and ratings away while it lives.
class MissingTables
{
public:
    MissingTables()
    {
        const QByteArray file = qgetenv("XDG_DATA_HOME") + "/Qorvane/embeddings.sqlite3";
        EXPECT_EQ(sqlite3_open(file.constData(), &m_database), SQLITE_OK);
        run("ALTER TABLE image_tags RENAME TO away_tags; ALTER TABLE image_ratings RENAME TO away_ratings");
    }
    ~MissingTables()
    {
        run("ALTER TABLE away_tags RENAME TO image_tags; ALTER TABLE away_ratings RENAME TO image_ratings");
        sqlite3_close(m_database);
    }
    MissingTables(const MissingTables &) = delete;
    MissingTables &operator=(const MissingTables &) = delete;

private:
    void run(const char *sql)
    {
        EXPECT_EQ(sqlite3_exec(m_database, sql, nullptr, nullptr, nullptr), SQLITE_OK);
        // The store notices at its next step: SQLite prepares by the schema it knows.
        EmbeddingStore::shared().getImageCount();
    }

    sqlite3 *m_database = nullptr;
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

TEST_F(TagsAndRatingsTest, clearingARatingReloadsTheListShownWhicheverFileItIs)
{
    qorManager->setSelectedRating(3);
    settle();
    const int before = loads();
    qorManager->clearRating(picture);
    settle();
    EXPECT_EQ(loads(), before + 1);
}

TEST_F(TagsAndRatingsTest, whatConcernsNoTagShownLoadsNothing)
{
    store.addTag(picture.path(), cat);
    qorManager->setSelectedTag(cat);
    settle();
    const int before = loads();
    qorManager->addTag(dog, picture);
    qorManager->renameTag(dog, QStringLiteral("bird"), picture);
    qorManager->removeTag(QStringLiteral("bird"), picture);
    qorManager->addTag(QStringLiteral("Cat"), picture);
    qorManager->deleteTagGlobally(QStringLiteral("Cat"));
    qorManager->setRating(2, picture);
    qorManager->clearRating(picture);
    settle();
    EXPECT_EQ(loads(), before);
    EXPECT_EQ(qorManager->selectedTag(), cat);
    EXPECT_EQ(qorManager->allTags(), QStringList{cat});
}

TEST_F(TagsAndRatingsTest, aTagShownLoadsOnceForEachChangeOfIt)
{
    store.addTag(picture.path(), cat);
    const FileUrl second = home.writePicture(QStringLiteral("2.png"));
    qorManager->setSelectedTag(cat);
    settle();
    int before = loads();
    qorManager->addTag(cat, second);
    settle();
    EXPECT_EQ(loads(), before + 1);
    before = loads();
    qorManager->removeTag(cat, second);
    settle();
    EXPECT_EQ(loads(), before + 1);
    EXPECT_TRUE(waitForList({QStringLiteral("1.png")}));
    before = loads();
    qorManager->renameTag(dog, cat, second);
    settle();
    EXPECT_EQ(loads(), before + 1);
    EXPECT_TRUE(waitForList({QStringLiteral("1.png"), QStringLiteral("2.png")}));
}

TEST_F(TagsAndRatingsTest, aRefreshDeselectsATagThatIsThereInAnotherCaseOnly)
{
    store.addTag(picture.path(), QStringLiteral("Cat"));
    qorManager->setSelectedTag(cat);
    settle();
    home.log().clear();
    const int before = loads();
    qorManager->refreshAllTags();
    settle();
    EXPECT_EQ(qorManager->selectedTag(), std::nullopt);
    EXPECT_EQ(qorManager->allTags(), QStringList{QStringLiteral("Cat")});
    EXPECT_EQ(loads(), before + 1);
    EXPECT_TRUE(home.log().contains(QStringLiteral("🏷️ selectedTag changed from cat to nil")));
}

TEST_F(TagsAndRatingsTest, aRefreshLeavesASelectedTagInUseAlone)
{
    store.addTag(picture.path(), cat);
    qorManager->setSelectedTag(cat);
    settle();
    const int before = loads();
    qorManager->refreshAllTags();
    settle();
    EXPECT_EQ(qorManager->selectedTag(), cat);
    EXPECT_EQ(loads(), before);
}

TEST_F(TagsAndRatingsTest, aRefreshThatCannotReadPublishesNoTagsAndDeselects)
{
    store.addTag(picture.path(), cat);
    qorManager->setSelectedTag(cat);
    qorManager->refreshAllTags();
    ASSERT_TRUE(waitUntil([&] { return qorManager->allTags() == QStringList{cat}; }));
    settle();
    {
        const MissingTables missing;
        qorManager->refreshAllTags();
        settle();
        EXPECT_EQ(qorManager->allTags(), QStringList());
        EXPECT_EQ(qorManager->selectedTag(), std::nullopt);
    }
    EXPECT_EQ(home.log().linesStartingWith(QStringLiteral("❌ listAllTags prepare error: ")).size(), 1);
    qorManager->refreshAllTags();
    settle();
    EXPECT_EQ(qorManager->allTags(), QStringList{cat});
}

TEST_F(TagsAndRatingsTest, writesThatFailAreFollowedAsIfTheyHadNot)
{
    settle();
    const int before = announcements();
    {
        const MissingTables missing;
        qorManager->setRating(3, picture);
        settle();
        EXPECT_EQ(announcements(), before + 1);
        qorManager->clearRating(picture);
        settle();
        EXPECT_EQ(announcements(), before + 2);
    }
    EXPECT_EQ(home.log().lines().filter(QStringLiteral("prepare error")).size(), 2);
}

TEST_F(TagsAndRatingsTest, everyStarIsKeptAsItIs)
{
    for (int rating = 1; rating <= 5; ++rating) {
        qorManager->setRating(rating, picture);
        EXPECT_EQ(storedRating(), rating);
    }
}

TEST_F(TagsAndRatingsTest, theListOfATagOfAnyTextIsItsOwn)
{
    const FileUrl other = home.writePicture(QStringLiteral("2.png"));
    const QStringList texts{QStringLiteral("山水画"),
                            QStringLiteral("شاطئ البحر"),
                            QStringLiteral("👩‍👩‍👧‍👦"),
                            QStringLiteral("e\u0301te\u0301"),
                            QStringLiteral("\u00e9t\u00e9"),
                            QStringLiteral("\uFEFFmarked"),
                            QStringLiteral("100%"),
                            QStringLiteral("a_b"),
                            QStringLiteral("'; DROP TABLE image_tags; --"),
                            QStringLiteral("\"quoted\" 'twice'"),
                            QStringLiteral("line\nbreak\x01\x7f"),
                            QStringLiteral("長").repeated(10'000)};
    for (const QString &decoy : {QStringLiteral("100x"), QStringLiteral("axb")})
        store.addTag(other.path(), decoy);
    for (const QString &text : texts) {
        SCOPED_TRACE(qPrintable(text.left(50)));
        qorManager->addTag(text, picture);
        qorManager->setSelectedTag(text);
        ASSERT_TRUE(waitForList({QStringLiteral("1.png")}));
        settle();
        EXPECT_EQ(qorManager->selectedTag(), text); // known to the letter, or it would be deselected
        EXPECT_TRUE(qorManager->allTags().contains(text));
        qorManager->renameTag(text, text + u'!', picture);
        ASSERT_TRUE(waitUntil([&] { return !qorManager->selectedTag(); }));
        settle();
        qorManager->deleteTagGlobally(text + u'!');
        settle();
        EXPECT_EQ(qorManager->allTags(), (QStringList{QStringLiteral("100x"), QStringLiteral("axb")}));
    }
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

TEST_F(TagsAndRatingsTest, refreshesThatABusyStoreKeepsWaitingBecomeOneMore)
{
    store.addTag(picture.path(), cat);
    settle();
    const int before = announcements();
    BusyStore busy;
    for (int i = 0; i < 100; ++i)
        qorManager->refreshAllTags();
    qorManager->addTag(dog, picture);
    busy.end();
    ASSERT_TRUE(waitUntil([this, both = QStringList{cat, dog}] { return qorManager->allTags() == both; }));
    settle();
    EXPECT_EQ(qorManager->allTags(), (QStringList{cat, dog}));
    // The one at work, one for all others, and one for the edit at most.
    EXPECT_LE(announcements() - before, 3);
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

TEST_F(TagsAndRatingsTest, pathsReadWhileEditsWaitForTheStoreHoldThem)
{
    QStringList tagged;
    BusyStore busy;
    for (int i = 1; i <= 8; ++i) {
        tagged.append(home.path(QStringLiteral("t%1.png").arg(i)));
        qorManager->addTag(cat, FileUrl::file(tagged.last()));
    }
    std::future<QStringList> paths =
        std::async(std::launch::async, [read = qorManager->pathsOfTag(), tag = cat] { return read(tag); });
    busy.end();
    EXPECT_THAT(paths.get(), testing::UnorderedElementsAreArray(tagged));
}

TEST_F(TagsAndRatingsTest, withTheLibraryGoneNoPathsAreRead)
{
    store.addTag(picture.path(), cat);
    const auto inBackground = [this, read = qorManager->pathsOfTag()] {
        return std::async(std::launch::async, read, cat).get();
    };
    EXPECT_EQ(inBackground(), QStringList{picture.path()});
    qorManager.reset();
    EXPECT_EQ(inBackground(), QStringList());
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
