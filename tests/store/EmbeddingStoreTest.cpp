#include "store/EmbeddingStore.h"

#include "store/StoreFixture.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

using namespace Qorvane;

namespace {

class EmbeddingStoreTest : public StoreFixture
{
};

} // namespace

TEST_F(EmbeddingStoreTest, firstStartCreatesFolderFileTablesAndIndices)
{
    ASSERT_FALSE(QFileInfo::exists(dataFolder() + QStringLiteral("/Qorvane")));
    {
        EmbeddingStore store;
    }
    RawDatabase raw(databasePath());
    EXPECT_EQ(
        raw.rows("SELECT name FROM sqlite_master WHERE type = 'table' ORDER BY rowid"),
        QStringList({QStringLiteral("images"), QStringLiteral("image_tags"), QStringLiteral("image_ratings"),
                     QStringLiteral("app_settings"), QStringLiteral("tag_vectors")}));
    EXPECT_EQ(
        raw.rows("SELECT name || ' ' || tbl_name FROM sqlite_master WHERE type = 'index' AND sql IS NOT NULL "
                 "ORDER BY rowid"),
        QStringList({QStringLiteral("idx_images_mtime images"),
                     QStringLiteral("idx_image_tags_tag image_tags"),
                     QStringLiteral("idx_image_tags_path image_tags"),
                     QStringLiteral("idx_image_ratings_rating image_ratings"),
                     QStringLiteral("idx_tag_vectors_created_time tag_vectors")}));
}

TEST_F(EmbeddingStoreTest, columnsCarryTheirTypesAndConstraints)
{
    {
        EmbeddingStore store;
    }
    RawDatabase raw(databasePath());
    const auto columns = [&raw](const QByteArray &table) {
        return raw.rows("SELECT name, type, \"notnull\", pk FROM pragma_table_info('" + table + "')");
    };
    EXPECT_EQ(columns("images"),
              QStringList({QStringLiteral("path|TEXT|0|1"), QStringLiteral("thumbnail_path|TEXT|0|0"),
                           QStringLiteral("vector|BLOB|1|0"), QStringLiteral("dim|INTEGER|1|0"),
                           QStringLiteral("mtime|REAL|1|0")}));
    EXPECT_EQ(columns("image_tags"),
              QStringList({QStringLiteral("path|TEXT|1|1"), QStringLiteral("tag|TEXT|1|2")}));
    EXPECT_EQ(columns("image_ratings"),
              QStringList({QStringLiteral("path|TEXT|0|1"), QStringLiteral("rating|INTEGER|1|0")}));
    EXPECT_EQ(columns("app_settings"),
              QStringList({QStringLiteral("key|TEXT|0|1"), QStringLiteral("value|TEXT|0|0")}));
    EXPECT_EQ(columns("tag_vectors"),
              QStringList({QStringLiteral("tag|TEXT|0|1"), QStringLiteral("vector|BLOB|1|0"),
                           QStringLiteral("dim|INTEGER|1|0"), QStringLiteral("created_time|REAL|1|0")}));
}

TEST_F(EmbeddingStoreTest, firstStartLogsWhereTheDatabaseLiesAndThatItIsEmpty)
{
    EmbeddingStore store;
    EXPECT_EQ(log.lines(), QStringList({QStringLiteral("🗄️ SQLite 数据库路径: ") + databasePath(),
                                        QStringLiteral("✅ SQLite 数据库打开成功"),
                                        QStringLiteral("📊 数据库文件大小: 0.00 MB"),
                                        QStringLiteral("✅ 数据库表结构检查/创建完成"),
                                        QStringLiteral("📈 当前数据库中的图片记录数: 0"),
                                        QStringLiteral("🏷️ 当前数据库中的标签向量数: 0")}));
}

TEST_F(EmbeddingStoreTest, logsTheCountsAndTheSizeOfAnExistingDatabase)
{
    {
        EmbeddingStore store;
        for (int i = 0; i < 3; ++i)
            store.upsert(QStringLiteral("/p/%1.jpg").arg(i), std::nullopt, someVector(512, i), 512, i);
    }
    {
        RawDatabase raw(databasePath());
        raw.run("INSERT INTO tag_vectors VALUES('a', x'00000000', 1, 0), ('b', x'00000000', 1, 0)");
        raw.run("CREATE TABLE filler(b); INSERT INTO filler VALUES(zeroblob(2000000))");
    }
    log.clear();
    EmbeddingStore store;
    const double megabytes = double(QFileInfo(databasePath()).size()) / 1048576;
    char text[32];
    std::snprintf(text, sizeof text, "%.2f", megabytes);
    EXPECT_TRUE(
        log.contains(QStringLiteral("📊 数据库文件大小: ") + QLatin1String(text) + QStringLiteral(" MB")));
    EXPECT_TRUE(log.contains(QStringLiteral("📈 当前数据库中的图片记录数: 3")));
    EXPECT_TRUE(log.contains(QStringLiteral("🏷️ 当前数据库中的标签向量数: 2")));
    EXPECT_EQ(store.getTagVectorCount(), 2);
}

TEST_F(EmbeddingStoreTest, existingDatabaseOpensWithoutAnyChange)
{
    QDir().mkpath(dataFolder() + QStringLiteral("/Qorvane"));
    {
        // As an earlier program may have left it: other spacing, a table more, rows in every table.
        RawDatabase raw(databasePath());
        raw.run("CREATE TABLE images (path TEXT PRIMARY KEY, thumbnail_path TEXT, vector BLOB NOT NULL, dim "
                "INTEGER "
                "NOT NULL, mtime REAL NOT NULL);"
                "CREATE INDEX idx_images_mtime ON images(mtime);"
                "CREATE TABLE image_tags (path TEXT NOT NULL, tag TEXT NOT NULL, PRIMARY KEY(path, tag));"
                "CREATE INDEX idx_image_tags_tag ON image_tags(tag);"
                "CREATE INDEX idx_image_tags_path ON image_tags(path);"
                "CREATE TABLE image_ratings (path TEXT PRIMARY KEY, rating INTEGER NOT NULL CHECK(rating >= "
                "1 AND "
                "rating <= 5));"
                "CREATE INDEX idx_image_ratings_rating ON image_ratings(rating);"
                "CREATE TABLE app_settings (key TEXT PRIMARY KEY, value TEXT);"
                "CREATE TABLE tag_vectors (tag TEXT PRIMARY KEY, vector BLOB NOT NULL, dim INTEGER NOT NULL, "
                "created_time REAL NOT NULL);"
                "CREATE INDEX idx_tag_vectors_created_time ON tag_vectors(created_time);"
                "CREATE TABLE older(x);"
                "INSERT INTO images VALUES('/p/a.jpg', '/t/a.jpg', x'0000803f00000040', 2, 1700000000.25);"
                "INSERT INTO images VALUES('/p/é.jpg', NULL, x'0000803f', 7, 0.0);"
                "INSERT INTO image_tags VALUES('/p/a.jpg', 'Cat'), ('/p/a.jpg', 'cat');"
                "INSERT INTO image_ratings VALUES('/p/b.jpg', 5);"
                "INSERT INTO app_settings VALUES('k', NULL);"
                "INSERT INTO tag_vectors VALUES('sea', x'0000803f', 1, 694224000.5);");
    }
    const QByteArray before = contents(databasePath());

    EmbeddingStore store;
    EXPECT_EQ(contents(databasePath()), before);
    EXPECT_EQ(store.getImageCount(), 2);
    EXPECT_EQ(store.fetch({QStringLiteral("/p/a.jpg")}),
              std::vector<ImageVectorRow>({{QStringLiteral("/p/a.jpg"), {1.0F, 2.0F}, 2}}));
    EXPECT_EQ(store.fetch({QStringLiteral("/p/é.jpg")}),
              std::vector<ImageVectorRow>({{QStringLiteral("/p/é.jpg"), {1.0F}, 7}}));
    EXPECT_TRUE(store.isUpToDate(QStringLiteral("/p/a.jpg"), 1700000000.25));
    EXPECT_EQ(store.getTags(QStringLiteral("/p/a.jpg")).size(), 2);
    EXPECT_EQ(store.getRating(QStringLiteral("/p/b.jpg")), 5);
    EXPECT_EQ(contents(databasePath()), before);
}

TEST_F(EmbeddingStoreTest, missingTablesAreCreatedAtEveryStart)
{
    {
        EmbeddingStore store;
    }
    RawDatabase(databasePath()).run("DROP TABLE image_tags");
    EmbeddingStore store;
    store.addTag(QStringLiteral("/p/a.jpg"), QStringLiteral("sea"));
    EXPECT_EQ(store.getTags(QStringLiteral("/p/a.jpg")), QStringList({QStringLiteral("sea")}));
}

TEST_F(EmbeddingStoreTest, closesItsConnectionWhenItEnds)
{
    {
        EmbeddingStore store;
        EXPECT_EQ(openDescriptors(databasePath()), 1);
    }
    EXPECT_EQ(openDescriptors(databasePath()), 0);
}

TEST_F(EmbeddingStoreTest, issuesNoPragmaAndNoTransactionOfItsOwn)
{
    const StatementTrace trace;
    EmbeddingStore store;
    const QString path = QStringLiteral("/p/a.jpg");
    store.upsert(path, std::nullopt, {1.0F}, 1, 0);
    store.replaceTag(path, QStringLiteral("a"), QStringLiteral("b"));
    store.setRating(path, 3);
    store.deletePaths({path});
    store.deleteFolder(QStringLiteral("/p"));
    ASSERT_FALSE(trace.statements().isEmpty());
    for (const QString &statement : trace.statements()) {
        EXPECT_FALSE(statement.contains(QLatin1String("PRAGMA"), Qt::CaseInsensitive))
            << qPrintable(statement);
        EXPECT_FALSE(statement.contains(QLatin1String("BEGIN"), Qt::CaseInsensitive))
            << qPrintable(statement);
        EXPECT_FALSE(statement.contains(QLatin1String("COMMIT"), Qt::CaseInsensitive))
            << qPrintable(statement);
    }
}

TEST_F(EmbeddingStoreTest, sharedIsOneStore)
{
    EmbeddingStore *const first = &EmbeddingStore::shared();
    EXPECT_EQ(first, &EmbeddingStore::shared());
    EXPECT_EQ(first->getImageCount(), 0);
}

TEST_F(EmbeddingStoreTest, withoutADataFolderEveryOperationFailsQuietly)
{
    const QByteArray home = qgetenv("HOME");
    qunsetenv("XDG_DATA_HOME");
    qunsetenv("HOME");
    {
        EmbeddingStore store;
        EXPECT_EQ(log.lines(), QStringList({QStringLiteral("❌ Failed to create tables: out of memory")}));
        log.clear();
        store.upsert(QStringLiteral("/p/a.jpg"), std::nullopt, {1.0F}, 1, 0);
        EXPECT_EQ(store.getImageCount(), 0);
        EXPECT_TRUE(store.fetchAll().empty());
        EXPECT_EQ(log.lines(), QStringList({QStringLiteral("❌ upsert prepare error: out of memory"),
                                            QStringLiteral("❌ getImageCount prepare error: out of memory"),
                                            QStringLiteral("❌ fetchAll prepare error: out of memory")}));
    }
    qputenv("HOME", home);
}
