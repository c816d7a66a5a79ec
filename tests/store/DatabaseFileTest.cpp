#include "platform/FileSystemKind.h"
#include "store/EmbeddingStore.h"
#include "store/StoreFixture.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstring>

using namespace Qorvane;

namespace {

std::atomic_bool isDiskFailing = false;

} // namespace

/// The system's call, in its place for this program: a disk that fails when it is asked about the database.
extern "C" int statx(int folder, const char *path, int flags, unsigned mask, struct statx *buffer) noexcept
{
    if (isDiskFailing && std::strstr(path, "embeddings.sqlite3")) {
        errno = EIO;
        return -1;
    }
    return int(::syscall(SYS_statx, folder, path, flags, mask, buffer));
}

class DatabaseFileTest : public StoreFixture
{
};

TEST_F(DatabaseFileTest, aSizeThatCannotBeHadIsReportedAndTheStoreGoesOn)
{
    isDiskFailing = true;
    EmbeddingStore store;
    isDiskFailing = false;
    EXPECT_EQ(log.lines(), (QStringList{
                               QStringLiteral("🗄️ SQLite 数据库路径: ") + databasePath(),
                               QStringLiteral("✅ SQLite 数据库打开成功"),
                               QStringLiteral("⚠️ 无法获取数据库文件信息: ") +
                                   QString::fromLocal8Bit(std::strerror(EIO)),
                               QStringLiteral("✅ 数据库表结构检查/创建完成"),
                               QStringLiteral("📈 当前数据库中的图片记录数: 0"),
                               QStringLiteral("🏷️ 当前数据库中的标签向量数: 0"),
                           }));
    store.upsert(QStringLiteral("/p/1.jpg"), std::nullopt, {1.0F}, 1, 0);
    EXPECT_EQ(store.getImageCount(), 1);
}

TEST_F(DatabaseFileTest, theSizeIsReportedOtherwise)
{
    const EmbeddingStore store;
    EXPECT_EQ(log.linesStartingWith(QStringLiteral("📊 数据库文件大小: ")),
              QStringList{QStringLiteral("📊 数据库文件大小: 0.00 MB")});
}

TEST_F(DatabaseFileTest, isReadThroughAMappingUnlessItLiesOnAnotherMachine)
{
    const EmbeddingStore store; // SQLite's first use in this program is a store's
    const bool isRemote = isOnRemoteFileSystem(dataFolder());
    EXPECT_EQ(RawDatabase(databasePath()).rows("PRAGMA mmap_size"),
              QStringList{isRemote ? QStringLiteral("0") : QStringLiteral("2147418112")});
}
