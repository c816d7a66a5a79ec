#include "store/EmbeddingStore.h"
#include "store/StoreFixture.h"

#include <sqlite3.h>

using namespace Qorvane;

namespace {

class ImageRemovalTest : public StoreFixture
{
protected:
    void SetUp() override { log.clear(); }

    // A row of `path` in all three tables.
    void put(const char *path)
    {
        const QString text = QString::fromUtf8(path);
        store.upsert(text, std::nullopt, {1.0F}, 1, 1);
        store.addTag(text, QStringLiteral("tag"));
        store.setRating(text, 3);
    }

    QStringList paths(const QByteArray &table)
    {
        return RawDatabase(databasePath()).rows("SELECT path FROM " + table + " ORDER BY path");
    }

    void expectEverywhere(const QStringList &expected)
    {
        EXPECT_EQ(paths("images"), expected);
        EXPECT_EQ(paths("image_tags"), expected);
        EXPECT_EQ(paths("image_ratings"), expected);
    }

    StatementTrace trace;
    EmbeddingStore store;
};

} // namespace

TEST_F(ImageRemovalTest, deletingPathsClearsAllThreeTables)
{
    for (const char *path : {"/p/a.jpg", "/p/b.jpg", "/p/c.jpg"})
        put(path);
    trace.clear();
    store.deletePaths(
        {QStringLiteral("/p/a.jpg"), QStringLiteral("/p/c.jpg"), QStringLiteral("/p/none.jpg")});
    EXPECT_EQ(trace.statements(),
              QStringList({QStringLiteral("DELETE FROM images WHERE path IN (?,?,?)"),
                           QStringLiteral("DELETE FROM image_tags WHERE path IN (?,?,?)"),
                           QStringLiteral("DELETE FROM image_ratings WHERE path IN (?,?,?)")}));
    expectEverywhere({QStringLiteral("/p/b.jpg")});
    EXPECT_EQ(log.lines(), QStringList());
}

TEST_F(ImageRemovalTest, deletingNoPathsTouchesNothing)
{
    put("/p/a.jpg");
    trace.clear();
    store.deletePaths({});
    EXPECT_EQ(trace.statements(), QStringList());
    expectEverywhere({QStringLiteral("/p/a.jpg")});
}

TEST_F(ImageRemovalTest, deletingNoPathsDoesNotEnterTheQueue)
{
    // From inside the queue any operation that enters it ends the program.
    put("/p/a.jpg");
    bool isReached = false;
    store.scanVectors({}, [this, &isReached](const ImageVectorView &) {
        store.deletePaths({});
        EXPECT_TRUE(store.fetch({}).empty());
        isReached = true;
    });
    EXPECT_TRUE(isReached);
}

TEST_F(ImageRemovalTest, aFailedFirstPreparationLeavesTheOtherTables)
{
    put("/p/a.jpg");
    changeSchema(store, "DROP TABLE images");
    store.deletePaths({QStringLiteral("/p/a.jpg")});
    EXPECT_EQ(log.lines(), QStringList({QStringLiteral("❌ delete prepare error: no such table: images")}));
    EXPECT_EQ(paths("image_tags").size(), 1);
    EXPECT_EQ(paths("image_ratings").size(), 1);
}

TEST_F(ImageRemovalTest, aFailedSecondPreparationLeavesTheThirdTable)
{
    put("/p/a.jpg");
    changeSchema(store, "DROP TABLE image_tags");
    store.deletePaths({QStringLiteral("/p/a.jpg")});
    EXPECT_EQ(log.lines(),
              QStringList({QStringLiteral("❌ delete tags prepare error: no such table: image_tags")}));
    EXPECT_EQ(paths("images").size(), 0);
    EXPECT_EQ(paths("image_ratings").size(), 1);
}

TEST_F(ImageRemovalTest, aFailedThirdPreparationIsLogged)
{
    put("/p/a.jpg");
    changeSchema(store, "DROP TABLE image_ratings");
    store.deletePaths({QStringLiteral("/p/a.jpg")});
    EXPECT_EQ(log.lines(),
              QStringList({QStringLiteral("❌ delete ratings prepare error: no such table: image_ratings")}));
    EXPECT_EQ(paths("image_tags").size(), 0);
}

TEST_F(ImageRemovalTest, failedStepsGoOnWithTheNextTable)
{
    put("/p/a.jpg");
    changeSchema(store,
                 "CREATE TRIGGER t1 BEFORE DELETE ON images BEGIN SELECT RAISE(ABORT, 'no'); END;"
                 "CREATE TRIGGER t2 BEFORE DELETE ON image_tags BEGIN SELECT RAISE(ABORT, 'no'); END;"
                 "CREATE TRIGGER t3 BEFORE DELETE ON image_ratings BEGIN SELECT RAISE(ABORT, 'no'); END;");
    store.deletePaths({QStringLiteral("/p/a.jpg")});
    EXPECT_EQ(log.lines(), QStringList({QStringLiteral("❌ delete step error: no"),
                                        QStringLiteral("❌ delete tags step error: no"),
                                        QStringLiteral("❌ delete ratings step error: no")}));
}

TEST_F(ImageRemovalTest, aListBeyondSqlitesVariablesFailsAndDeletesNothing)
{
    put("/p/a.jpg");
    int most = 0;
    {
        RawDatabase raw(databasePath());
        most = sqlite3_limit(raw.handle(), SQLITE_LIMIT_VARIABLE_NUMBER, -1);
    }
    store.deletePaths(QStringList(most + 1, QStringLiteral("/p/a.jpg")));
    EXPECT_EQ(log.lines(), QStringList({QStringLiteral("❌ delete prepare error: too many SQL variables")}));
    expectEverywhere({QStringLiteral("/p/a.jpg")});
}

TEST_F(ImageRemovalTest, deletingAFolderTakesEveryDepthButNoNeighbour)
{
    for (const char *path : {"/a/b/x.jpg", "/a/b/c/y.jpg", "/a/bc/x.jpg"})
        put(path);
    store.deleteFolder(QStringLiteral("/a/b"));
    expectEverywhere({QStringLiteral("/a/bc/x.jpg")});
    EXPECT_EQ(
        log.lines(),
        QStringList({QStringLiteral("🗑️ 开始删除文件夹记录: /a/b"),
                     QStringLiteral("📊 找到 2 条记录需要删除"), QStringLiteral("✅ 成功删除 2 条记录"),
                     QStringLiteral("✅ 成功删除 2 条标签记录"), QStringLiteral("✅ 成功删除 2 条评级记录")}));
}

TEST_F(ImageRemovalTest, aTrailingSlashMakesNoDifference)
{
    for (const char *path : {"/a/b/x.jpg", "/a/bc/x.jpg"})
        put(path);
    store.deleteFolder(QStringLiteral("/a/b/"));
    expectEverywhere({QStringLiteral("/a/bc/x.jpg")});
}

TEST_F(ImageRemovalTest, deletingAFolderWithoutImagesStillClearsTagsAndRatings)
{
    store.addTag(QStringLiteral("/a/b/x.mov"), QStringLiteral("tag"));
    store.setRating(QStringLiteral("/a/b/x.mov"), 5);
    store.deleteFolder(QStringLiteral("/a/b"));
    expectEverywhere({});
    EXPECT_EQ(log.lines(), QStringList({QStringLiteral("🗑️ 开始删除文件夹记录: /a/b"),
                                        QStringLiteral("📊 找到 0 条记录需要删除"),
                                        QStringLiteral("ℹ️ 没有找到需要删除的记录"),
                                        QStringLiteral("✅ 成功删除 1 条标签记录"),
                                        QStringLiteral("✅ 成功删除 1 条评级记录")}));
}

TEST_F(ImageRemovalTest, wildcardsInAFoldersNameAreNotEscaped)
{
    for (const char *path : {"/a/b_c/x.jpg", "/a/bXc/x.jpg", "/a/bc/x.jpg"})
        put(path);
    store.deleteFolder(QStringLiteral("/a/b_c"));
    expectEverywhere({QStringLiteral("/a/bc/x.jpg")});
}

TEST_F(ImageRemovalTest, aBackslashInAFoldersNameEscapes)
{
    for (const char *path : {"/a/b%c/x.jpg", "/a/bXc/x.jpg"})
        put(path);
    store.deleteFolder(QStringLiteral("/a/b\\%c"));
    expectEverywhere({QStringLiteral("/a/bXc/x.jpg")});
}

TEST_F(ImageRemovalTest, runsFiveStatementsForAFolder)
{
    put("/a/b/x.jpg");
    trace.clear();
    store.deleteFolder(QStringLiteral("/a/b"));
    EXPECT_EQ(trace.statements(),
              QStringList({QStringLiteral("SELECT COUNT(*) FROM images WHERE path LIKE ? ESCAPE '\\'"),
                           QStringLiteral("DELETE FROM images WHERE path LIKE ? ESCAPE '\\'"),
                           QStringLiteral("DELETE FROM image_tags WHERE path LIKE ? ESCAPE '\\'"),
                           QStringLiteral("DELETE FROM image_ratings WHERE path LIKE ? ESCAPE '\\'")}));
}

TEST_F(ImageRemovalTest, aCountThatDiffersFromWhatWasDeletedIsReported)
{
    put("/a/b/x.jpg");
    put("/a/b/y.jpg");
    // The trigger takes one row away before the statement comes to it, so that it deletes one fewer itself.
    changeSchema(
        store,
        "CREATE TRIGGER t BEFORE DELETE ON images BEGIN DELETE FROM images WHERE path > old.path; END;");
    store.deleteFolder(QStringLiteral("/a/b"));
    EXPECT_TRUE(log.contains(QStringLiteral("✅ 成功删除 1 条记录")));
    EXPECT_TRUE(log.contains(QStringLiteral("⚠️ 警告：预期删除 2 条，实际删除 1 条")));
    EXPECT_TRUE(log.contains(QStringLiteral("✅ 成功删除 2 条标签记录")));
}

TEST_F(ImageRemovalTest, aFailedStepOnAFoldersImagesGoesOn)
{
    put("/a/b/x.jpg");
    changeSchema(store,
                 "CREATE TRIGGER t BEFORE DELETE ON images BEGIN SELECT RAISE(ABORT, 'no'); END;"
                 "CREATE TRIGGER t2 BEFORE DELETE ON image_tags BEGIN SELECT RAISE(ABORT, 'no'); END;"
                 "CREATE TRIGGER t3 BEFORE DELETE ON image_ratings BEGIN SELECT RAISE(ABORT, 'no'); END;");
    store.deleteFolder(QStringLiteral("/a/b"));
    EXPECT_EQ(log.lines(), QStringList({QStringLiteral("🗑️ 开始删除文件夹记录: /a/b"),
                                        QStringLiteral("📊 找到 1 条记录需要删除"),
                                        QStringLiteral("❌ deleteFolder step error: no"),
                                        QStringLiteral("❌ delete tags step error: no"),
                                        QStringLiteral("❌ delete ratings step error: no")}));
}

TEST_F(ImageRemovalTest, aFailedPreparationOnAFoldersImagesLeavesTagsAndRatings)
{
    put("/a/b/x.jpg");
    // The count still works; the trigger makes the preparation of the deletion fail.
    changeSchema(store, "CREATE TRIGGER t BEFORE DELETE ON images BEGIN INSERT INTO absent VALUES(1); END;");
    store.deleteFolder(QStringLiteral("/a/b"));
    EXPECT_EQ(log.lines(),
              QStringList({QStringLiteral("🗑️ 开始删除文件夹记录: /a/b"),
                           QStringLiteral("📊 找到 1 条记录需要删除"),
                           QStringLiteral("❌ deleteFolder prepare error: no such table: main.absent")}));
    EXPECT_EQ(paths("image_tags").size(), 1);
    EXPECT_EQ(paths("image_ratings").size(), 1);
}

TEST_F(ImageRemovalTest, failedPreparationsOnTagsAndRatingsOfAFolderAreSilent)
{
    put("/a/b/x.jpg");
    changeSchema(store, "DROP TABLE image_tags");
    store.deleteFolder(QStringLiteral("/a/b"));
    EXPECT_EQ(log.lines(),
              QStringList({QStringLiteral("🗑️ 开始删除文件夹记录: /a/b"),
                           QStringLiteral("📊 找到 1 条记录需要删除"), QStringLiteral("✅ 成功删除 1 条记录"),
                           QStringLiteral("✅ 成功删除 1 条评级记录")}));
}
