#include "store/EmbeddingStore.h"
#include "store/StoreFixture.h"

#include <QFile>
#include <QFileInfo>

using namespace Qorvane;

namespace {

constexpr qint64 pageSize = 4096; // SQLite's default, which the store doesn't change

class StoreRecoveryTest : public StoreFixture
{
protected:
    // A database with rows whose `images` table and index have lost their root pages, while the schema is
    // whole: statements on it can be prepared and fail at their first step.
    void leaveCorruptDatabase()
    {
        {
            EmbeddingStore store;
            for (int i = 0; i < 20; ++i)
                store.upsert(QStringLiteral("/p/%1.jpg").arg(i), std::nullopt, someVector(512, i), 512, i);
            store.addTag(QStringLiteral("/p/1.jpg"), QStringLiteral("sea"));
        }
        const QStringList roots =
            RawDatabase(databasePath()).rows("SELECT rootpage FROM sqlite_master WHERE tbl_name = 'images'");
        ASSERT_EQ(roots.size(), 3);
        for (const QString &root : roots)
            overwrite(databasePath(), (root.toLongLong() - 1) * pageSize, QByteArray(pageSize, '\xA5'));
    }

    // The lines of a recovery that begins a new database.
    QStringList recoveryLines() const
    {
        return {QStringLiteral("🔄 开始数据库恢复流程..."),
                QStringLiteral("📦 已备份损坏的数据库到: ") + backupPath(),
                QStringLiteral("🆕 重新创建数据库..."),
                QStringLiteral("🗄️ SQLite 数据库路径: ") + databasePath(),
                QStringLiteral("✅ SQLite 数据库打开成功"),
                QStringLiteral("📊 数据库文件大小: 0.00 MB"),
                QStringLiteral("✅ 数据库表结构检查/创建完成"),
                QStringLiteral("📈 当前数据库中的图片记录数: 0"),
                QStringLiteral("🏷️ 当前数据库中的标签向量数: 0"),
                QStringLiteral("✅ 数据库恢复完成")};
    }

    bool hasRecovered() const { return log.contains(QStringLiteral("🔄 开始数据库恢复流程...")); }

    const QString path = QStringLiteral("/p/a.jpg");
    const QString announcement = QStringLiteral("🚨 检测到数据库损坏，尝试恢复...");
    const QString malformed = QStringLiteral("database disk image is malformed");
};

// A trigger lets one table's writes fail with any text, which is all that recovery looks at.
QByteArray failing(const char *event, const char *table, const char *text)
{
    return QByteArray("CREATE TRIGGER failing_") + table + " BEFORE " + event + " ON " + table +
           " BEGIN SELECT RAISE(ABORT, '" + text + "'); END;";
}

} // namespace

TEST_F(StoreRecoveryTest, corruptionAtUpsertMovesTheFileAsideAndBeginsANewOne)
{
    leaveCorruptDatabase();
    const QByteArray corrupt = contents(databasePath());
    EmbeddingStore store;
    log.clear();
    store.upsert(path, std::nullopt, {1.0F}, 1, 1);

    EXPECT_EQ(log.lines(), QStringList({QStringLiteral("❌ upsert step error: ") + malformed, announcement}) +
                               recoveryLines());
    EXPECT_EQ(contents(backupPath()), corrupt);
    // The write that failed isn't made up for, and no row of the old file is taken over.
    EXPECT_EQ(store.getImageCount(), 0);
    EXPECT_EQ(store.listAllTags(), QStringList());
}

TEST_F(StoreRecoveryTest, theStoreWorksOnAfterwards)
{
    leaveCorruptDatabase();
    EmbeddingStore store;
    store.upsert(path, std::nullopt, {1.0F}, 1, 1);
    store.upsert(path, std::nullopt, {2.0F}, 1, 1);
    EXPECT_EQ(store.fetchAll(), std::vector<ImageVectorRow>({{path, {2.0F}, 1}}));
}

TEST_F(StoreRecoveryTest, noConnectionToTheCorruptFileStaysOpen)
{
    leaveCorruptDatabase();
    EmbeddingStore store;
    store.upsert(path, std::nullopt, {1.0F}, 1, 1);
    EXPECT_EQ(openDescriptors(backupPath()), 0);
    EXPECT_EQ(openDescriptors(databasePath()), 1);
}

TEST_F(StoreRecoveryTest, corruptionOfTheSchemaShowsAtPreparation)
{
    {
        EmbeddingStore store;
    }
    RawDatabase(databasePath())
        .run(
            "PRAGMA writable_schema = ON; UPDATE sqlite_master SET sql = 'CREATE TABLE images(' WHERE name = "
            "'images';");
    EmbeddingStore store;
    EXPECT_EQ(
        log.linesStartingWith(QStringLiteral("❌ Failed to create tables: malformed database schema")).size(),
        1);
    log.clear();
    store.upsert(path, std::nullopt, {1.0F}, 1, 1);
    EXPECT_EQ(
        log.linesStartingWith(QStringLiteral("❌ upsert prepare error: malformed database schema (images)"))
            .size(),
        1);
    EXPECT_EQ(log.lines().mid(1), QStringList({announcement}) + recoveryLines());
    EXPECT_EQ(openDescriptors(backupPath()), 0);
    store.upsert(path, std::nullopt, {1.0F}, 1, 1);
    EXPECT_EQ(store.getImageCount(), 1);
}

TEST_F(StoreRecoveryTest, errorTextsWithTheWordCorruptCount)
{
    EmbeddingStore store;
    changeSchema(store, failing("INSERT", "images", "the index is corrupt here"));
    store.upsert(path, std::nullopt, {1.0F}, 1, 1);
    EXPECT_EQ(log.lines(),
              QStringList({QStringLiteral("❌ upsert step error: the index is corrupt here"), announcement}) +
                  recoveryLines());
    EXPECT_TRUE(QFileInfo::exists(backupPath()));
}

TEST_F(StoreRecoveryTest, otherErrorsDoNot)
{
    EmbeddingStore store;
    for (const char *text : {"Corrupt and MALFORMED", "disk I/O error", "file is not a database"}) {
        changeSchema(store, failing("INSERT", "images", text));
        store.upsert(path, std::nullopt, {1.0F}, 1, 1);
        EXPECT_EQ(log.lines(), QStringList({QStringLiteral("❌ upsert step error: ") + QLatin1String(text)}));
        changeSchema(store, "DROP TRIGGER failing_images");
    }
    EXPECT_FALSE(QFileInfo::exists(backupPath()));
}

TEST_F(StoreRecoveryTest, secondCorruptionLeavesBackupAndFileWhereTheyAre)
{
    leaveCorruptDatabase();
    const QByteArray corrupt = contents(databasePath());
    overwrite(backupPath(), 0, "the first backup");
    EmbeddingStore store;
    log.clear();
    store.upsert(path, std::nullopt, {1.0F}, 1, 1);

    const QStringList lines = log.lines();
    ASSERT_EQ(lines.size(), 12);
    EXPECT_EQ(lines[1], announcement);
    EXPECT_EQ(lines[2], QStringLiteral("🔄 开始数据库恢复流程..."));
    EXPECT_TRUE(lines[3].startsWith(QStringLiteral("⚠️ 备份损坏数据库失败: ")))
        << qPrintable(lines[3]);
    EXPECT_EQ(lines[4], QStringLiteral("🆕 重新创建数据库..."));
    EXPECT_EQ(lines[5], QStringLiteral("🗄️ SQLite 数据库路径: ") + databasePath());
    EXPECT_EQ(lines[11], QStringLiteral("✅ 数据库恢复完成"));
    EXPECT_EQ(contents(backupPath()), QByteArray("the first backup"));
    EXPECT_EQ(contents(databasePath()), corrupt);
    EXPECT_EQ(openDescriptors(databasePath()), 1);
    // What the damage hasn't reached is still there.
    EXPECT_EQ(store.listAllTags(), QStringList({QStringLiteral("sea")}));
}

TEST_F(StoreRecoveryTest, everyWriteOnAFileThatStaysCorruptTriesAgain)
{
    leaveCorruptDatabase();
    overwrite(backupPath(), 0, "the first backup");
    EmbeddingStore store;
    for (int i = 0; i < 3; ++i) {
        log.clear();
        store.upsert(path, std::nullopt, {1.0F}, 1, 1);
        EXPECT_TRUE(hasRecovered());
        EXPECT_EQ(openDescriptors(databasePath()), 1);
    }
}

TEST_F(StoreRecoveryTest, aFailingReadNeverStartsOne)
{
    leaveCorruptDatabase();
    const QByteArray corrupt = contents(databasePath());
    EmbeddingStore store;
    EXPECT_TRUE(log.contains(QStringLiteral("📈 当前数据库中的图片记录数: 0")));
    EXPECT_EQ(store.getImageCount(), 0);
    EXPECT_TRUE(store.fetchAll().empty());
    EXPECT_TRUE(store.fetch({QStringLiteral("/p/1.jpg")}).empty());
    EXPECT_TRUE(store.fetchPathsWithPrefix(QStringLiteral("/p")).isEmpty());
    EXPECT_FALSE(store.isUpToDate(QStringLiteral("/p/1.jpg"), 1));
    store.verifyFolderDeletion(QStringLiteral("/p"));
    store.printStatistics();
    EXPECT_FALSE(hasRecovered());
    EXPECT_FALSE(QFileInfo::exists(backupPath()));
    EXPECT_EQ(contents(databasePath()), corrupt);
}

TEST_F(StoreRecoveryTest, tagsAndRatingsNeverStartOne)
{
    EmbeddingStore store;
    store.addTag(path, QStringLiteral("sea"));
    store.setRating(path, 1);
    changeSchema(store, failing("INSERT", "image_tags", "malformed") +
                            failing("INSERT", "image_ratings", "malformed"));
    store.addTag(path, QStringLiteral("hill"));
    store.setRating(path, 3);
    EXPECT_EQ(log.lines(), QStringList({QStringLiteral("❌ addTag step error: malformed"),
                                        QStringLiteral("❌ setRating step error: malformed")}));
}

TEST_F(StoreRecoveryTest, deletingPathsRecoversWithoutAnnouncement)
{
    leaveCorruptDatabase();
    EmbeddingStore store;
    log.clear();
    store.deletePaths({QStringLiteral("/p/1.jpg")});
    EXPECT_EQ(log.lines(),
              QStringList({QStringLiteral("❌ delete step error: ") + malformed}) + recoveryLines());
    EXPECT_EQ(openDescriptors(backupPath()), 0);
}

TEST_F(StoreRecoveryTest, deletingPathsEndsWhenAPreparationRecovers)
{
    EmbeddingStore store;
    store.addTag(path, QStringLiteral("sea"));
    changeSchema(store,
                 "CREATE TRIGGER t BEFORE DELETE ON images BEGIN INSERT INTO malformed VALUES(1); END;");
    store.deletePaths({path});
    EXPECT_EQ(log.lines(),
              QStringList({QStringLiteral("❌ delete prepare error: no such table: main.malformed")}) +
                  recoveryLines());
}

TEST_F(StoreRecoveryTest, deletingPathsRecoversWhenTheTagsOrRatingsCannotBePrepared)
{
    EmbeddingStore store;
    store.setRating(path, 1);
    changeSchema(store,
                 "CREATE TRIGGER t BEFORE DELETE ON image_tags BEGIN INSERT INTO malformed VALUES(1); END;");
    store.deletePaths({path});
    // The ratings aren't come to any more: the new database has none, nor has it a line.
    EXPECT_EQ(log.lines(),
              QStringList({QStringLiteral("❌ delete tags prepare error: no such table: main.malformed")}) +
                  recoveryLines());

    QFile::remove(backupPath());
    changeSchema(
        store, "CREATE TRIGGER t BEFORE DELETE ON image_ratings BEGIN INSERT INTO malformed VALUES(1); END;");
    store.deletePaths({path});
    EXPECT_EQ(log.lines(),
              QStringList({QStringLiteral("❌ delete ratings prepare error: no such table: main.malformed")}) +
                  recoveryLines());
}

TEST_F(StoreRecoveryTest, deletingPathsRecoversForTagsAndRatingsToo)
{
    EmbeddingStore store;
    store.addTag(path, QStringLiteral("sea"));
    store.setRating(path, 1);
    changeSchema(store, failing("DELETE", "image_tags", "malformed"));
    store.deletePaths({path});
    EXPECT_EQ(log.lines(),
              QStringList({QStringLiteral("❌ delete tags step error: malformed")}) + recoveryLines());

    QFile::remove(backupPath());
    store.setRating(path, 1);
    changeSchema(store, failing("DELETE", "image_ratings", "malformed"));
    store.deletePaths({path});
    EXPECT_EQ(log.lines(),
              QStringList({QStringLiteral("❌ delete ratings step error: malformed")}) + recoveryLines());
}

TEST_F(StoreRecoveryTest, deletingAFolderAnnouncesAndGoesOnInTheNewDatabase)
{
    EmbeddingStore store;
    store.upsert(path, std::nullopt, {1.0F}, 1, 1);
    store.addTag(path, QStringLiteral("sea"));
    changeSchema(store, failing("DELETE", "images", "malformed"));
    store.deleteFolder(QStringLiteral("/p"));
    EXPECT_EQ(log.lines(),
              QStringList({QStringLiteral("🗑️ 开始删除文件夹记录: /p"),
                           QStringLiteral("📊 找到 1 条记录需要删除"),
                           QStringLiteral("❌ deleteFolder step error: malformed"), announcement}) +
                  recoveryLines() +
                  QStringList({QStringLiteral("✅ 成功删除 0 条标签记录"),
                               QStringLiteral("✅ 成功删除 0 条评级记录")}));
}

TEST_F(StoreRecoveryTest, deletingAFolderEndsWhenAPreparationRecovers)
{
    EmbeddingStore store;
    store.upsert(path, std::nullopt, {1.0F}, 1, 1);
    changeSchema(store,
                 "CREATE TRIGGER t BEFORE DELETE ON images BEGIN INSERT INTO malformed VALUES(1); END;");
    store.deleteFolder(QStringLiteral("/p"));
    EXPECT_EQ(log.lines(),
              QStringList({QStringLiteral("🗑️ 开始删除文件夹记录: /p"),
                           QStringLiteral("📊 找到 1 条记录需要删除"),
                           QStringLiteral("❌ deleteFolder prepare error: no such table: main.malformed"),
                           announcement}) +
                  recoveryLines());
}

TEST_F(StoreRecoveryTest, deletingAFoldersTagsRecoversWithoutAnnouncement)
{
    EmbeddingStore store;
    store.addTag(path, QStringLiteral("sea"));
    changeSchema(store, failing("DELETE", "image_tags", "malformed"));
    store.deleteFolder(QStringLiteral("/p"));
    EXPECT_EQ(log.lines(), QStringList({QStringLiteral("🗑️ 开始删除文件夹记录: /p"),
                                        QStringLiteral("📊 找到 0 条记录需要删除"),
                                        QStringLiteral("ℹ️ 没有找到需要删除的记录"),
                                        QStringLiteral("❌ delete tags step error: malformed")}) +
                               recoveryLines() + QStringList({QStringLiteral("✅ 成功删除 0 条评级记录")}));
}

TEST_F(StoreRecoveryTest, deletingAFoldersRatingsRecoversWithoutAnnouncement)
{
    EmbeddingStore store;
    store.setRating(path, 1);
    changeSchema(store, failing("DELETE", "image_ratings", "malformed"));
    store.deleteFolder(QStringLiteral("/p"));
    EXPECT_EQ(log.lines(), QStringList({QStringLiteral("🗑️ 开始删除文件夹记录: /p"),
                                        QStringLiteral("📊 找到 0 条记录需要删除"),
                                        QStringLiteral("ℹ️ 没有找到需要删除的记录"),
                                        QStringLiteral("✅ 成功删除 0 条标签记录"),
                                        QStringLiteral("❌ delete ratings step error: malformed")}) +
                               recoveryLines());
}

TEST_F(StoreRecoveryTest, twoRecoveriesInOneOperationLeaveNoConnectionBehind)
{
    EmbeddingStore store;
    store.upsert(path, std::nullopt, {1.0F}, 1, 1);
    store.addTag(path, QStringLiteral("sea"));
    overwrite(backupPath(), 0, "the first backup");
    changeSchema(store,
                 failing("DELETE", "images", "malformed") + failing("DELETE", "image_tags", "malformed"));
    store.deleteFolder(QStringLiteral("/p"));
    EXPECT_EQ(log.linesStartingWith(QStringLiteral("✅ 数据库恢复完成")).size(), 2);
    EXPECT_EQ(openDescriptors(databasePath()), 1);
}

TEST_F(StoreRecoveryTest, aFileThatIsGoneIsSimplyMadeAnew)
{
    EmbeddingStore store;
    changeSchema(store, failing("INSERT", "images", "malformed"));
    QFile::remove(databasePath());
    store.upsert(path, std::nullopt, {1.0F}, 1, 1);
    QStringList expected = recoveryLines();
    expected.removeAt(1);
    EXPECT_EQ(log.lines().mid(2), expected);
    EXPECT_FALSE(QFileInfo::exists(backupPath()));
}

TEST_F(StoreRecoveryTest, withoutADataFolderNothingIsReopened)
{
    EmbeddingStore store;
    changeSchema(store, failing("INSERT", "images", "malformed"));
    const QByteArray home = qgetenv("HOME");
    qunsetenv("XDG_DATA_HOME");
    qunsetenv("HOME");
    store.upsert(path, std::nullopt, {1.0F}, 1, 1);
    EXPECT_EQ(log.lines().mid(2),
              QStringList({QStringLiteral("🔄 开始数据库恢复流程..."), QStringLiteral("🆕 重新创建数据库..."),
                           QStringLiteral("❌ Failed to create tables: out of memory"),
                           QStringLiteral("✅ 数据库恢复完成")}));
    EXPECT_EQ(store.getImageCount(), 0);
    qputenv("HOME", home);
}
