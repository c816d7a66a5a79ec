#include "store/EmbeddingStore.h"
#include "store/StoreFixture.h"

using namespace Qorvane;

namespace {

class RatingRecordsTest : public StoreFixture
{
protected:
    EmbeddingStore store;
    const QString path = QStringLiteral("/p/a.jpg");
};

} // namespace

TEST_F(RatingRecordsTest, everyRatingFromOneToFiveIsKept)
{
    for (int rating = 1; rating <= 5; ++rating) {
        store.setRating(path, rating);
        EXPECT_EQ(store.getRating(path), rating);
    }
    EXPECT_EQ(RawDatabase(databasePath()).rows("SELECT * FROM image_ratings"),
              QStringList({QStringLiteral("/p/a.jpg|5")}));
}

TEST_F(RatingRecordsTest, anyOtherValueRemovesTheRating)
{
    log.clear();
    for (const std::optional<int> value :
         {std::optional<int>(0), std::optional<int>(6), std::optional<int>(-1), std::optional<int>(1000000),
          std::optional<int>()}) {
        store.setRating(path, 3);
        store.setRating(path, value);
        EXPECT_EQ(store.getRating(path), std::nullopt);
    }
    store.setRating(path, 3);
    store.clearRating(path);
    EXPECT_EQ(store.getRating(path), std::nullopt);
    EXPECT_EQ(log.lines(), QStringList());
}

TEST_F(RatingRecordsTest, aPathWithoutRatingHasNone)
{
    EXPECT_EQ(store.getRating(path), std::nullopt);
}

TEST_F(RatingRecordsTest, pathsOfARating)
{
    store.setRating(QStringLiteral("/p/a.jpg"), 5);
    store.setRating(QStringLiteral("/p/b.jpg"), 4);
    store.setRating(QStringLiteral("/p/c.jpg"), 5);
    QStringList paths = store.fetchPathsByRating(5);
    paths.sort();
    EXPECT_EQ(paths, QStringList({QStringLiteral("/p/a.jpg"), QStringLiteral("/p/c.jpg")}));
    EXPECT_EQ(store.fetchPathsByRating(1), QStringList());
}

TEST_F(RatingRecordsTest, countsTheFilesOfARating)
{
    EXPECT_EQ(store.getRatingCount(3), 0);
    store.setRating(QStringLiteral("/p/a.jpg"), 5);
    store.setRating(QStringLiteral("/p/b.jpg"), 4);
    store.setRating(QStringLiteral("/p/c.jpg"), 5);
    EXPECT_EQ(store.getRatingCount(5), 2);
    EXPECT_EQ(store.getRatingCount(3), 0);
}

TEST_F(RatingRecordsTest, allCountsAtOnceAreThoseOfTheSingleOnes)
{
    EXPECT_TRUE(store.getAllRatingCounts().isEmpty());
    for (int i = 0; i < 12; ++i)
        store.setRating(QStringLiteral("/p/%1.jpg").arg(i), 2 + i % 4);
    store.setRating(path, 5);
    const QHash<int, int> counts = store.getAllRatingCounts();
    EXPECT_EQ(counts.size(), 4);
    for (int rating = 0; rating <= 6; ++rating)
        EXPECT_EQ(counts.value(rating), store.getRatingCount(rating)) << rating;
}

TEST_F(RatingRecordsTest, failedPreparationsAreLoggedUnderTheOperationsName)
{
    changeSchema(store, "DROP TABLE image_ratings");
    store.setRating(path, 3);
    store.setRating(path, 6);
    store.clearRating(path);
    EXPECT_EQ(store.getRating(path), std::nullopt);
    EXPECT_EQ(store.fetchPathsByRating(3), QStringList());
    EXPECT_EQ(store.getRatingCount(3), 0);
    EXPECT_TRUE(store.getAllRatingCounts().isEmpty());
    const QString reason = QStringLiteral(" prepare error: no such table: image_ratings");
    EXPECT_EQ(log.lines(),
              QStringList({QStringLiteral("❌ setRating") + reason, QStringLiteral("❌ clearRating") + reason,
                           QStringLiteral("❌ clearRating") + reason, QStringLiteral("❌ getRating") + reason,
                           QStringLiteral("❌ fetchPathsByRating") + reason,
                           QStringLiteral("❌ getRatingCount") + reason,
                           QStringLiteral("❌ getAllRatingCounts") + reason}));
}

TEST_F(RatingRecordsTest, failedStepsAreLogged)
{
    store.setRating(path, 3);
    changeSchema(store,
                 "CREATE TRIGGER t1 BEFORE DELETE ON image_ratings BEGIN SELECT RAISE(ABORT, 'no'); END;"
                 "CREATE TRIGGER t2 BEFORE INSERT ON image_ratings BEGIN SELECT RAISE(ABORT, 'no'); END;");
    store.setRating(path, 4);
    store.clearRating(path);
    EXPECT_EQ(log.lines(), QStringList({QStringLiteral("❌ setRating step error: no"),
                                        QStringLiteral("❌ clearRating step error: no")}));
    EXPECT_EQ(store.getRating(path), 3);
}
