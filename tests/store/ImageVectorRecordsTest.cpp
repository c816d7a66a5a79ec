#include "store/CheckedInteger.h"
#include "store/EmbeddingStore.h"
#include "store/StoreFixture.h"

#include <sqlite3.h>

#include <algorithm>
#include <cmath>

using namespace Qorvane;

namespace {

class ImageVectorRecordsTest : public StoreFixture
{
protected:
    QStringList images() { return RawDatabase(databasePath()).rows("SELECT * FROM images ORDER BY path"); }

    StatementTrace trace;
    EmbeddingStore store;
    const QString path = QStringLiteral("/p/a.jpg");
};

} // namespace

TEST_F(ImageVectorRecordsTest, upsertWritesTheRowAsRawLittleEndianFloats)
{
    store.upsert(path, QStringLiteral("/t/a.jpg"), {1.0F, -2.0F}, 2, 1700000000.25);
    EXPECT_EQ(images(), QStringList({QStringLiteral("/p/a.jpg|/t/a.jpg|0000803f000000c0|2|1700000000.25")}));
}

TEST_F(ImageVectorRecordsTest, secondUpsertReplacesTheRowAndLeavesTagsAndRatings)
{
    store.addTag(path, QStringLiteral("sea"));
    store.setRating(path, 4);
    store.upsert(path, QStringLiteral("/t/1.jpg"), {1.0F}, 1, 1);
    store.upsert(path, QStringLiteral("/t/2.jpg"), {2.0F, 3.0F}, 2, 2.5);
    EXPECT_EQ(images(), QStringList({QStringLiteral("/p/a.jpg|/t/2.jpg|0000004000004040|2|2.5")}));
    EXPECT_EQ(store.getTags(path), QStringList({QStringLiteral("sea")}));
    EXPECT_EQ(store.getRating(path), 4);
}

TEST_F(ImageVectorRecordsTest, upsertIsOneStatementOnFourLines)
{
    trace.clear();
    store.upsert(path, std::nullopt, {1.0F}, 1, 1);
    ASSERT_EQ(trace.statements().size(), 1);
    const QStringList lines = trace.statements().first().split(u'\n');
    ASSERT_EQ(lines.size(), 4);
    EXPECT_EQ(lines[0], QStringLiteral("INSERT INTO images(path, thumbnail_path, vector, dim, mtime)"));
    EXPECT_EQ(lines[1], QStringLiteral("VALUES(?, ?, ?, ?, ?)"));
    EXPECT_EQ(lines[2], QStringLiteral("ON CONFLICT(path) DO UPDATE SET"));
    EXPECT_EQ(lines[3], QStringLiteral("thumbnail_path = excluded.thumbnail_path, vector = excluded.vector, "
                                       "dim = excluded.dim, mtime = excluded.mtime"));
}

TEST_F(ImageVectorRecordsTest, thumbnailIsNullUntilOneIsGiven)
{
    store.upsert(path, std::nullopt, {1.0F}, 1, 1);
    EXPECT_EQ(images(), QStringList({QStringLiteral("/p/a.jpg|NULL|0000803f|1|1.0")}));
    store.upsert(path, QStringLiteral("/t/a.jpg"), {1.0F}, 1, 1);
    EXPECT_EQ(images(), QStringList({QStringLiteral("/p/a.jpg|/t/a.jpg|0000803f|1|1.0")}));
}

TEST_F(ImageVectorRecordsTest, isUpToDateComparesTheTimeExactly)
{
    const double mtime = 1700000000.123456;
    store.upsert(path, std::nullopt, {1.0F}, 1, mtime);
    EXPECT_TRUE(store.isUpToDate(path, mtime));
    EXPECT_FALSE(store.isUpToDate(path, std::nextafter(mtime, 0)));
    EXPECT_FALSE(store.isUpToDate(path, std::nextafter(mtime, 1e300)));
    EXPECT_FALSE(store.isUpToDate(QStringLiteral("/p/b.jpg"), mtime));
}

TEST_F(ImageVectorRecordsTest, fetchGivesTheRowsThatAreThere)
{
    store.upsert(QStringLiteral("/p/a.jpg"), std::nullopt, {1.0F, 2.0F}, 2, 1);
    store.upsert(QStringLiteral("/p/b.jpg"), std::nullopt, {3.0F}, 9, 1);
    const std::vector<ImageVectorRow> rows =
        store.fetch({QStringLiteral("/p/b.jpg"), QStringLiteral("/p/none.jpg")});
    EXPECT_EQ(rows, std::vector<ImageVectorRow>({{QStringLiteral("/p/b.jpg"), {3.0F}, 9}}));
    EXPECT_EQ(store.fetchAll().size(), 2U);
}

TEST_F(ImageVectorRecordsTest, fetchOfNothingRunsNoStatement)
{
    store.upsert(path, std::nullopt, {1.0F}, 1, 1);
    trace.clear();
    EXPECT_TRUE(store.fetch({}).empty());
    EXPECT_EQ(trace.statements(), QStringList());
}

TEST_F(ImageVectorRecordsTest, fetchBindsAllPathsIntoOneStatement)
{
    trace.clear();
    store.fetch({QStringLiteral("/1"), QStringLiteral("/2"), QStringLiteral("/3")});
    EXPECT_EQ(trace.statements(),
              QStringList({QStringLiteral("SELECT path, vector, dim FROM images WHERE path IN (?,?,?)")}));
    trace.clear();
    store.fetchAll();
    EXPECT_EQ(trace.statements(), QStringList({QStringLiteral("SELECT path, vector, dim FROM images")}));
}

TEST_F(ImageVectorRecordsTest, scanShowsTheSameRowsInTheSameOrder)
{
    QStringList scope;
    for (int i = 0; i < 50; ++i) {
        const QString name = QStringLiteral("/p/%1.jpg").arg((i * 37) % 50);
        store.upsert(name, std::nullopt, someVector(8, i), 8, i);
        if (i % 3 == 0)
            scope.append(name);
    }
    const auto scanned = [this](const QStringList &paths) {
        std::vector<ImageVectorRow> rows;
        store.scanVectors(paths, [&rows](const ImageVectorView &row) { rows.push_back(row.copy()); });
        return rows;
    };
    EXPECT_EQ(scanned({}), store.fetchAll());
    EXPECT_EQ(scanned({}).size(), 50U);
    EXPECT_EQ(scanned(scope), store.fetch(scope));
    EXPECT_EQ(scanned(scope).size(), 17U);
}

TEST_F(ImageVectorRecordsTest, bytesBeyondTheLastWholeFloatAreDropped)
{
    RawDatabase(databasePath())
        .run("INSERT INTO images VALUES('/p/a.jpg', NULL, x'0000803f000000400000', 7, 0)");
    EXPECT_EQ(store.fetchAll(), std::vector<ImageVectorRow>({{path, {1.0F, 2.0F}, 7}}));
}

TEST_F(ImageVectorRecordsTest, rowsWithoutPathOrBytesAreSkipped)
{
    RawDatabase(databasePath())
        .run("INSERT INTO images VALUES(NULL, NULL, x'0000803f', 1, 0);"
             "INSERT INTO images VALUES('/p/empty.jpg', NULL, x'', 0, 0);"
             "INSERT INTO images VALUES('/p/a.jpg', NULL, x'0000803f', 1, 0);");
    EXPECT_EQ(store.fetchAll(), std::vector<ImageVectorRow>({{path, {1.0F}, 1}}));
    EXPECT_EQ(store.getImageCount(), 3);
}

TEST_F(ImageVectorRecordsTest, anEmptyVectorIsABlobOfNoBytes)
{
    store.upsert(path, std::nullopt, {}, 0, 1);
    EXPECT_EQ(images(), QStringList({QStringLiteral("/p/a.jpg|NULL||0|1.0")}));
    EXPECT_TRUE(store.fetchAll().empty());
}

TEST_F(ImageVectorRecordsTest, pathsComeBackExactlyAsTheyWere)
{
    // Composed and decomposed accents, text beyond the first plane, the wildcards of LIKE.
    const QStringList paths{QStringLiteral("/p/\u00e9.jpg"), QStringLiteral("/p/e\u0301.jpg"),
                            QStringLiteral("/p/山 🏔.jpg"), QStringLiteral("/p/100%_\\'\".jpg")};
    for (const QString &one : paths)
        store.upsert(one, std::nullopt, {1.0F}, 1, 1);
    QStringList found = store.fetchPathsWithPrefix(QStringLiteral("/p"));
    EXPECT_EQ(found.size(), 4);
    for (const QString &one : paths) {
        EXPECT_TRUE(found.contains(one)) << qPrintable(one);
        EXPECT_EQ(store.fetch({one}).size(), 1U);
    }
}

TEST_F(ImageVectorRecordsTest, prefixEndsAtAFolder)
{
    for (const char *name : {"/a/b/x.jpg", "/a/b/c/y.jpg", "/a/bc/x.jpg", "/a/b"})
        store.upsert(QString::fromLatin1(name), std::nullopt, {1.0F}, 1, 1);
    for (const char *prefix : {"/a/b", "/a/b/"}) {
        QStringList found = store.fetchPathsWithPrefix(QString::fromLatin1(prefix));
        found.sort();
        EXPECT_EQ(found, QStringList({QStringLiteral("/a/b/c/y.jpg"), QStringLiteral("/a/b/x.jpg")}));
    }
}

TEST_F(ImageVectorRecordsTest, countsAreZeroAfterAFailedRead)
{
    store.upsert(path, std::nullopt, {1.0F}, 1, 1);
    EXPECT_EQ(store.getImageCount(), 1);
    changeSchema(store, "DROP TABLE images; DROP TABLE tag_vectors");
    EXPECT_EQ(store.getImageCount(), 0);
    EXPECT_EQ(store.getTagVectorCount(), 0);
    EXPECT_EQ(log.lines(),
              QStringList({QStringLiteral("❌ getImageCount prepare error: no such table: images")}));
}

TEST_F(ImageVectorRecordsTest, failedPreparationsGiveNeutralResults)
{
    changeSchema(store, "DROP TABLE images");
    store.upsert(path, std::nullopt, {1.0F}, 1, 1);
    EXPECT_TRUE(store.fetch({path}).empty());
    EXPECT_TRUE(store.fetchAll().empty());
    EXPECT_TRUE(store.fetchPathsWithPrefix(QStringLiteral("/p")).isEmpty());
    EXPECT_FALSE(store.isUpToDate(path, 1));
    EXPECT_EQ(log.lines(), QStringList({
                               QStringLiteral("❌ upsert prepare error: no such table: images"),
                               QStringLiteral("❌ fetch prepare error: no such table: images"),
                               QStringLiteral("❌ fetchAll prepare error: no such table: images"),
                               QStringLiteral("❌ fetchPathsWithPrefix prepare error: no such table: images"),
                           }));
}

TEST_F(ImageVectorRecordsTest, morePathsThanSqliteTakesFailAtPreparation)
{
    int most = 0;
    {
        RawDatabase raw(databasePath());
        most = sqlite3_limit(raw.handle(), SQLITE_LIMIT_VARIABLE_NUMBER, -1);
    }
    const QStringList paths(most + 1, path);
    log.clear();
    EXPECT_TRUE(store.fetch(paths).empty());
    EXPECT_EQ(log.lines(), QStringList({QStringLiteral("❌ fetch prepare error: too many SQL variables")}));
}

TEST(CheckedIntegerDeathTest, lengthsBeyond32BitsEndTheProgram)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EQ(floatByteCount(512), 2048);
    EXPECT_EQ(floatByteCount((std::size_t(1) << 29) - 1), 2147483644);
    EXPECT_DEATH(floatByteCount(std::size_t(1) << 29), "signed 32-bit");
}
