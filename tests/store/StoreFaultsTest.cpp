#include "store/EmbeddingStore.h"
#include "store/StoreFixture.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <linux/capability.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <random>
#include <thread>

using namespace Qorvane;

namespace {

class StoreFaultsTest : public StoreFixture
{
protected:
    void leaveDatabase(int rows)
    {
        EmbeddingStore store;
        for (int i = 0; i < rows; ++i)
            store.upsert(QStringLiteral("/p/%1.jpg").arg(i), std::nullopt, someVector(512, i), 512, i);
        store.addTag(path, QStringLiteral("sea"));
        store.setRating(path, 3);
    }

    QString folder() const { return QFileInfo(databasePath()).path(); }

    const QString path = QStringLiteral("/p/1.jpg");
};

// Everything the store can be asked; nothing of it may end the program.
void askEverything(EmbeddingStore &store)
{
    const QString path = QStringLiteral("/p/1.jpg");
    store.fetchAll();
    store.fetch({path, QStringLiteral("/p/2.jpg")});
    store.isUpToDate(path, 1);
    store.getImageCount();
    store.getTagVectorCount();
    store.fetchPathsWithPrefix(QStringLiteral("/p"));
    store.verifyFolderDeletion(QStringLiteral("/p"));
    store.printStatistics();
    store.addTag(path, QStringLiteral("hill"));
    store.replaceTag(path, QStringLiteral("hill"), QStringLiteral("lake"));
    store.removeTag(path, QStringLiteral("lake"));
    store.deleteTagGlobally(QStringLiteral("sea"));
    store.getTags(path);
    store.listAllTags();
    store.fetchPathsByTag(QStringLiteral("sea"));
    store.setRating(path, 5);
    store.getRating(path);
    store.fetchPathsByRating(5);
    store.clearRating(path);
    store.upsert(path, std::nullopt, {1.0F}, 1, 1);
    store.deletePaths({path});
    store.deleteFolder(QStringLiteral("/p"));
}

// Bounds the size of every file the process writes, as a full disk would, while it lives.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(qint64 bytes)
        : m_formerHandler(std::signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &m_former);
        rlimit limit = m_former;
        limit.rlim_cur = rlim_t(bytes);
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &m_former);
        std::signal(SIGXFSZ, m_formerHandler);
    }
    FileSizeLimit(const FileSizeLimit &) = delete;
    FileSizeLimit &operator=(const FileSizeLimit &) = delete;

private:
    rlimit m_former{};
    void (*m_formerHandler)(int);
};

// The super user may write anywhere. A thread can lay that right down for itself and the threads it starts.
void obeyFilePermissions()
{
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct data[2]{};
    ASSERT_EQ(::syscall(SYS_capget, &header, data), 0);
    data[0].effective &= ~((1U << CAP_DAC_OVERRIDE) | (1U << CAP_DAC_READ_SEARCH));
    ASSERT_EQ(::syscall(SYS_capset, &header, data), 0);
}

// Another process that holds `databasePath` locked for itself while this lives.
class LockingProcess
{
public:
    explicit LockingProcess(const QString &databasePath)
    {
        int ready[2];
        int done[2];
        EXPECT_EQ(::pipe(ready), 0);
        EXPECT_EQ(::pipe(done), 0);
        m_process = ::fork();
        if (m_process == 0) {
            ::close(done[1]);
            {
                RawDatabase database(databasePath);
                database.run("BEGIN EXCLUSIVE");
                char byte = 'r';
                if (::write(ready[1], &byte, 1) == 1) [[maybe_unused]]
                    const ssize_t end = ::read(done[0], &byte, 1);
            }
            ::_exit(0);
        }
        ::close(ready[1]);
        ::close(done[0]);
        m_done = done[1];
        char byte = 0;
        EXPECT_EQ(::read(ready[0], &byte, 1), 1);
        ::close(ready[0]);
    }
    ~LockingProcess()
    {
        ::close(m_done);
        ::waitpid(m_process, nullptr, 0);
    }
    LockingProcess(const LockingProcess &) = delete;
    LockingProcess &operator=(const LockingProcess &) = delete;

private:
    pid_t m_process = -1;
    int m_done = -1;
};

} // namespace

TEST_F(StoreFaultsTest, aFileThatCannotBeOpenedLeavesTheStoreRunning)
{
    QDir().mkpath(databasePath()); // a folder stands where the file should
    EmbeddingStore store;
    EXPECT_EQ(log.lines(),
              QStringList({QStringLiteral("🗄️ SQLite 数据库路径: ") + databasePath(),
                           QStringLiteral("❌ Failed to open embeddings DB: unable to open database file"),
                           QStringLiteral("❌ Failed to create tables: unable to open database file")}));
    log.clear();
    store.upsert(path, std::nullopt, {1.0F}, 1, 1);
    EXPECT_TRUE(store.fetchAll().empty());
    EXPECT_EQ(store.getImageCount(), 0);
    EXPECT_EQ(store.getRating(path), std::nullopt);
    store.deletePaths({path});
    ASSERT_EQ(log.lines().size(), 5);
    EXPECT_EQ(log.linesStartingWith(QStringLiteral("❌ upsert prepare error: ")).size(), 1);
    EXPECT_EQ(log.linesStartingWith(QStringLiteral("❌ fetchAll prepare error: ")).size(), 1);
    EXPECT_EQ(log.linesStartingWith(QStringLiteral("❌ getImageCount prepare error: ")).size(), 1);
    EXPECT_EQ(log.linesStartingWith(QStringLiteral("❌ getRating prepare error: ")).size(), 1);
    EXPECT_EQ(log.linesStartingWith(QStringLiteral("❌ delete prepare error: ")).size(), 1);
}

TEST_F(StoreFaultsTest, withoutADatabaseEveryOperationIsNeutral)
{
    QDir().mkpath(databasePath());
    EmbeddingStore store;
    const QString tag = QStringLiteral("cat");
    store.upsert(path, std::nullopt, {1.0F}, 1, 1);
    store.addTag(path, tag);
    store.removeTag(path, tag);
    store.replaceTag(path, tag, QStringLiteral("dog"));
    store.deleteTagGlobally(tag);
    store.setRating(path, 3);
    store.clearRating(path);
    store.deletePaths({path});
    store.deleteFolder(folder());
    store.verifyFolderDeletion(folder());
    store.printStatistics();
    int visited = 0;
    store.scanVectors({}, [&visited](auto &&...) { ++visited; });

    EXPECT_EQ(visited, 0);
    EXPECT_FALSE(store.isUpToDate(path, 1));
    EXPECT_TRUE(store.fetch({path}).empty());
    EXPECT_TRUE(store.fetchAll().empty());
    EXPECT_EQ(store.getImageCount(), 0);
    EXPECT_EQ(store.getTagVectorCount(), 0);
    EXPECT_TRUE(store.fetchPathsWithPrefix(folder()).isEmpty());
    EXPECT_TRUE(store.listAllTags().isEmpty());
    EXPECT_TRUE(store.getTags(path).isEmpty());
    EXPECT_TRUE(store.fetchPathsByTag(tag).isEmpty());
    EXPECT_EQ(store.getRating(path), std::nullopt);
    EXPECT_TRUE(store.fetchPathsByRating(3).isEmpty());
}

TEST_F(StoreFaultsTest, aFolderThatCannotBeCreatedIsPassedOver)
{
    QFile file(folder());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();
    EmbeddingStore store;
    EXPECT_TRUE(log.contains(QStringLiteral("❌ Failed to open embeddings DB: unable to open database file")));
    EXPECT_EQ(store.getImageCount(), 0);
}

TEST_F(StoreFaultsTest, aFileThatIsNoDatabaseIsNotRecovered)
{
    leaveDatabase(5);
    overwrite(databasePath(), 0, QByteArray(100, '!'));
    const QByteArray before = contents(databasePath());
    log.clear();
    EmbeddingStore store;
    EXPECT_TRUE(log.contains(QStringLiteral("❌ Failed to create tables: file is not a database")));
    log.clear();
    store.upsert(path, std::nullopt, {1.0F}, 1, 1);
    store.deletePaths({path});
    EXPECT_EQ(log.lines(), QStringList({QStringLiteral("❌ upsert prepare error: file is not a database"),
                                        QStringLiteral("❌ delete prepare error: file is not a database")}));
    EXPECT_EQ(contents(databasePath()), before);
    EXPECT_FALSE(QFileInfo::exists(backupPath()));
}

TEST_F(StoreFaultsTest, aTruncatedFileIsRecoveredByTheNextWrite)
{
    leaveDatabase(50);
    const qint64 half = QFileInfo(databasePath()).size() / 2;
    ASSERT_TRUE(QFile::resize(databasePath(), half));
    EmbeddingStore store;
    log.clear();
    store.upsert(path, std::nullopt, {1.0F}, 1, 1);
    EXPECT_TRUE(log.contains(QStringLiteral("✅ 数据库恢复完成")));
    EXPECT_EQ(QFileInfo(backupPath()).size(), half);
    askEverything(store);
}

TEST_F(StoreFaultsTest, anEmptiedFileBecomesANewDatabase)
{
    leaveDatabase(5);
    ASSERT_TRUE(QFile::resize(databasePath(), 0));
    EmbeddingStore store;
    store.upsert(path, std::nullopt, {1.0F}, 1, 1);
    EXPECT_EQ(store.getImageCount(), 1);
    EXPECT_FALSE(QFileInfo::exists(backupPath()));
}

TEST_F(StoreFaultsTest, noDamageEndsTheProgram)
{
    leaveDatabase(30);
    const QByteArray whole = contents(databasePath());
    std::mt19937 random(99);
    for (int round = 0; round < 40; ++round) {
        QByteArray damaged = whole;
        const int wounds = 1 << (round % 10);
        for (int i = 0; i < wounds; ++i) {
            const qsizetype at = std::uniform_int_distribution<qsizetype>(0, whole.size() - 1)(random);
            damaged[at] = char(std::uniform_int_distribution<int>(0, 255)(random));
        }
        QFile::remove(databasePath());
        QFile::remove(backupPath());
        overwrite(databasePath(), 0, damaged);
        {
            EmbeddingStore store;
            askEverything(store);
        }
        EXPECT_EQ(openDescriptors(databasePath()), 0) << "round " << round;
        EXPECT_EQ(openDescriptors(backupPath()), 0) << "round " << round;
    }
}

TEST_F(StoreFaultsTest, aReadOnlyDatabaseCanStillBeRead)
{
    leaveDatabase(5);
    const QByteArray before = contents(databasePath());
    QFile::setPermissions(databasePath(), QFile::ReadOwner);
    QFile::setPermissions(folder(), QFile::ReadOwner | QFile::ExeOwner);
    log.clear();
    std::thread([this] {
        obeyFilePermissions();
        EmbeddingStore store;
        EXPECT_TRUE(log.contains(QStringLiteral("✅ 数据库表结构检查/创建完成")));
        EXPECT_TRUE(log.contains(QStringLiteral("📈 当前数据库中的图片记录数: 5")));
        log.clear();
        EXPECT_EQ(store.fetchAll().size(), 5U);
        EXPECT_EQ(store.getRating(path), 3);
        store.upsert(path, std::nullopt, {1.0F}, 1, 1);
        store.addTag(path, QStringLiteral("hill"));
        store.deletePaths({path});
        const QString reason = QStringLiteral(" step error: attempt to write a readonly database");
        EXPECT_EQ(log.lines(),
                  QStringList({QStringLiteral("❌ upsert") + reason, QStringLiteral("❌ addTag") + reason,
                               QStringLiteral("❌ delete") + reason, QStringLiteral("❌ delete tags") + reason,
                               QStringLiteral("❌ delete ratings") + reason}));
    }).join();
    QFile::setPermissions(folder(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    EXPECT_EQ(contents(databasePath()), before);
}

TEST_F(StoreFaultsTest, aReadOnlyFolderWithoutDatabaseIsAnOpenFailure)
{
    QDir().mkpath(folder());
    QFile::setPermissions(folder(), QFile::ReadOwner | QFile::ExeOwner);
    std::thread([this] {
        obeyFilePermissions();
        EmbeddingStore store;
        EXPECT_TRUE(
            log.contains(QStringLiteral("❌ Failed to open embeddings DB: unable to open database file")));
        EXPECT_EQ(store.getImageCount(), 0);
    }).join();
    QFile::setPermissions(folder(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

TEST_F(StoreFaultsTest, aDatabaseThatAnotherProcessHoldsFailsAtOnceAndLosesNothing)
{
    leaveDatabase(5);
    EmbeddingStore store;
    {
        const LockingProcess other(databasePath());
        log.clear();
        store.upsert(path, std::nullopt, {1.0F}, 1, 1);
        EXPECT_TRUE(store.fetchAll().empty());
        EXPECT_EQ(store.getImageCount(), 0);
        store.deleteFolder(QStringLiteral("/p"));
        EXPECT_EQ(log.lines(),
                  QStringList({QStringLiteral("❌ upsert step error: database is locked"),
                               QStringLiteral("🗑️ 开始删除文件夹记录: /p"),
                               QStringLiteral("📊 找到 0 条记录需要删除"),
                               QStringLiteral("ℹ️ 没有找到需要删除的记录"),
                               QStringLiteral("❌ delete tags step error: database is locked"),
                               QStringLiteral("❌ delete ratings step error: database is locked")}));
    }
    EXPECT_EQ(store.getImageCount(), 5);
    EXPECT_EQ(store.getTags(path), QStringList({QStringLiteral("sea")}));
}

TEST_F(StoreFaultsTest, aStoreThatStartsOnALockedDatabaseWorksOnceItIsFree)
{
    leaveDatabase(5);
    log.clear();
    auto other = std::make_unique<LockingProcess>(databasePath());
    EmbeddingStore store;
    EXPECT_TRUE(log.contains(QStringLiteral("❌ Failed to create tables: database is locked")));
    other.reset();
    EXPECT_EQ(store.getImageCount(), 5);
}

TEST_F(StoreFaultsTest, aFullDiskCostsTheWriteAndNothingElse)
{
    leaveDatabase(20);
    EmbeddingStore store;
    log.clear();
    {
        const FileSizeLimit limit(QFileInfo(databasePath()).size());
        for (int i = 100; i < 110; ++i)
            store.upsert(QStringLiteral("/p/%1.jpg").arg(i), std::nullopt, someVector(4096, i), 4096, i);
        EXPECT_EQ(store.getImageCount(), 20);
    }
    const QStringList lines = log.lines();
    ASSERT_EQ(lines.size(), 10);
    for (const QString &line : lines)
        EXPECT_TRUE(line == QStringLiteral("❌ upsert step error: database or disk is full") ||
                    line == QStringLiteral("❌ upsert step error: disk I/O error"))
            << qPrintable(line);
    store.upsert(QStringLiteral("/p/100.jpg"), std::nullopt, {1.0F}, 1, 1);
    EXPECT_EQ(store.getImageCount(), 21);
    EXPECT_EQ(RawDatabase(databasePath()).rows("SELECT * FROM pragma_integrity_check"),
              QStringList({QStringLiteral("ok")}));
}

TEST_F(StoreFaultsTest, aWriteCutShortByACrashIsRolledBackAtTheNextStart)
{
    leaveDatabase(20);
    // A child that dies in the middle of a transaction, its pages written and its journal hot.
    const pid_t child = ::fork();
    if (child == 0) {
        RawDatabase raw(databasePath());
        raw.run("PRAGMA cache_size = 1; BEGIN; DELETE FROM images; DELETE FROM image_tags;");
        ::_exit(0);
    }
    ::waitpid(child, nullptr, 0);
    ASSERT_TRUE(QFileInfo::exists(databasePath() + QStringLiteral("-journal")));
    EmbeddingStore store;
    EXPECT_EQ(store.fetchAll().size(), 20U);
    EXPECT_EQ(store.getTags(path), QStringList({QStringLiteral("sea")}));
}
