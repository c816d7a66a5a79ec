#include "store/EmbeddingStore.h"
#include "store/StoreFixture.h"

using namespace Qorvane;

namespace {

class StoreReportsTest : public StoreFixture
{
protected:
    void put(int count)
    {
        for (int i = 0; i < count; ++i)
            store.upsert(QStringLiteral("/a/b/%1.jpg").arg(i, 2, 10, QLatin1Char('0')), std::nullopt, {1.0F},
                         1, 1);
        log.clear();
    }

    EmbeddingStore store;
};

} // namespace

TEST_F(StoreReportsTest, anEmptyFolderIsVerified)
{
    put(0);
    store.verifyFolderDeletion(QStringLiteral("/a/b"));
    EXPECT_EQ(log.lines(), QStringList({QStringLiteral("✅ 验证成功：文件夹 /a/b 下的所有记录已完全删除")}));
}

TEST_F(StoreReportsTest, leftRowsAreListedUpToTen)
{
    put(12);
    store.verifyFolderDeletion(QStringLiteral("/a/b"));
    QStringList expected{QStringLiteral("⚠️ 验证失败：文件夹 /a/b 下仍有 12 条记录"),
                         QStringLiteral("📋 剩余记录示例（最多10条）:")};
    for (int i = 0; i < 10; ++i)
        expected.append(QStringLiteral("   • /a/b/%1.jpg").arg(i, 2, 10, QLatin1Char('0')));
    EXPECT_EQ(log.lines(), expected);
}

TEST_F(StoreReportsTest, aFailedVerificationIsLogged)
{
    changeSchema(store, "DROP TABLE images");
    store.verifyFolderDeletion(QStringLiteral("/a/b"));
    EXPECT_EQ(log.lines(),
              QStringList({QStringLiteral("❌ verifyFolderDeletion prepare error: no such table: images")}));
}

TEST_F(StoreReportsTest, absolutePathsAllFallIntoTheGroupWithoutAName)
{
    put(3);
    store.upsert(QStringLiteral("/other/x.jpg"), std::nullopt, {1.0F}, 1, 1);
    store.printStatistics();
    EXPECT_EQ(log.lines(), QStringList({QStringLiteral("📊 数据库统计信息:"), QStringLiteral("   总记录数: 4"),
                                        QStringLiteral("   按文件夹分组的记录数（前10）:"),
                                        QStringLiteral("     : 4 条")}));
}

TEST_F(StoreReportsTest, anEmptyTableHasNoGroups)
{
    put(0);
    store.printStatistics();
    EXPECT_EQ(log.lines(), QStringList({QStringLiteral("📊 数据库统计信息:"), QStringLiteral("   总记录数: 0"),
                                        QStringLiteral("   按文件夹分组的记录数（前10）:")}));
}

TEST_F(StoreReportsTest, failedStatisticsAreSilent)
{
    changeSchema(store, "DROP TABLE images");
    store.printStatistics();
    EXPECT_EQ(log.lines(), QStringList({QStringLiteral("📊 数据库统计信息:")}));
}
