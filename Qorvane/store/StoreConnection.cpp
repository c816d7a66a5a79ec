#include "store/StoreConnection.h"

#include "platform/Directories.h"
#include "platform/FileAttributes.h"
#include "platform/FileSystemKind.h"
#include "platform/FixedDecimal.h"
#include "platform/Log.h"
#include "store/RowCounts.h"
#include "store/StoreSchema.h"

#include <QFile>

#include <sqlite3.h>

namespace Qorvane {

namespace {

// The most that SQLite maps of one file unless it was built for more. Pages of a mapped file are read in
// place, which more than halves the time of a full scan (100,000 rows of 512 floats: 57 ms instead of 135)
// and changes no statement.
//
// The price: where the file ends before the mapping does, a read ends the program. No writer of SQLite's
// makes that happen, since none shortens the file under a reader's lock and readers map anew what has
// changed. What remains is a foreign program that cuts the open file short, and a disk that can't be read;
// what was stored by then stays.
constexpr sqlite3_int64 mappedBytes = 0x7fff0000;

constexpr double bytesPerMegabyte = 1048576;

// Not where another machine may shorten the file, or go away, without a lock that would stop it.
sqlite3_int64 bytesToMap(const QString &directory)
{
    return isOnRemoteFileSystem(directory) ? 0 : mappedBytes;
}

// Counts only before SQLite's first use in the process; when somebody came first, reads are slower and
// nothing else differs.
void configureOnce(const QString &directory)
{
    [[maybe_unused]] static const int result =
        sqlite3_config(SQLITE_CONFIG_MMAP_SIZE, bytesToMap(directory), mappedBytes);
}

QString databasePath(const QString &directory, const char *name)
{
    return directory + u'/' + QLatin1String(name);
}

void logFileSize(const QString &path)
{
    if (!fileExists(path))
        return;
    QString error;
    const std::optional<FileAttributes> attributes = fileAttributes(path, &error);
    if (!attributes) {
        Log::line(QStringLiteral("⚠️ 无法获取数据库文件信息: ") + error);
        return;
    }
    Log::line(QStringLiteral("📊 数据库文件大小: ") +
              fixedDecimal(double(attributes->size) * (1 / bytesPerMegabyte), 2) + QStringLiteral(" MB"));
}

void moveToBackup(const QString &directory)
{
    QFile file(databasePath(directory, StoreSchema::databaseName));
    if (!fileExists(file.fileName()))
        return;
    const QString backup = databasePath(directory, StoreSchema::backupName);
    // Refuses when there is a backup already, and that is wanted: the first one may hold the user's rows, a
    // later one only what was gathered since.
    if (file.rename(backup))
        Log::line(QStringLiteral("📦 已备份损坏的数据库到: ") + backup);
    else
        Log::line(QStringLiteral("⚠️ 备份损坏数据库失败: ") + file.errorString());
}

// SQLite's words, not its result code: what the texts name is what counts as corrupt.
bool isCorruption(const QString &errorText)
{
    return errorText.contains(QLatin1String("malformed")) || errorText.contains(QLatin1String("corrupt"));
}

} // namespace

void StoreConnection::Closer::operator()(sqlite3 *database) const
{
    sqlite3_close(database);
}

StoreConnection::StoreConnection() = default;
StoreConnection::~StoreConnection() = default;

void StoreConnection::openDatabase()
{
    const std::optional<QString> directory = databaseDirectory();
    if (!directory)
        return;
    const QString path = databasePath(*directory, StoreSchema::databaseName);
    Log::line(QStringLiteral("🗄️ SQLite 数据库路径: ") + path);
    configureOnce(*directory);
    sqlite3 *database = nullptr;
    const int result = sqlite3_open(path.toUtf8().constData(), &database);
    m_db.reset(database);
    if (result != SQLITE_OK) {
        Log::line(QStringLiteral("❌ Failed to open embeddings DB: ") + errorText());
        return;
    }
    Log::line(QStringLiteral("✅ SQLite 数据库打开成功"));
    logFileSize(path);
}

void StoreConnection::createTables()
{
    if (sqlite3_exec(handle(), StoreSchema::script(), nullptr, nullptr, nullptr) != SQLITE_OK) {
        Log::line(QStringLiteral("❌ Failed to create tables: ") + errorText());
        return;
    }
    Log::line(QStringLiteral("✅ 数据库表结构检查/创建完成"));
    // Counted here and not through the store's operations: within a recovery the queue is held already.
    const int images = countImages(*this);
    const int tagVectors = countTagVectors(*this);
    Log::line(QStringLiteral("📈 当前数据库中的图片记录数: ") + QString::number(images));
    Log::line(QStringLiteral("🏷️ 当前数据库中的标签向量数: ") + QString::number(tagVectors));
}

void StoreConnection::recoverDatabase()
{
    Log::line(QStringLiteral("🔄 开始数据库恢复流程..."));
    closeDatabase();
    if (const std::optional<QString> directory = databaseDirectory())
        moveToBackup(*directory);
    Log::line(QStringLiteral("🆕 重新创建数据库..."));
    openDatabase();
    createTables();
    Log::line(QStringLiteral("✅ 数据库恢复完成"));
}

void StoreConnection::recoverIfCorrupt(const QString &errorText, Announcement announcement)
{
    if (!isCorruption(errorText))
        return;
    if (announcement == Announcement::spoken)
        Log::line(QStringLiteral("🚨 检测到数据库损坏，尝试恢复..."));
    recoverDatabase();
}

void StoreConnection::closeRetired()
{
    m_retired.clear();
}

// The statement whose step failed is still alive when recovery runs, and SQLite refuses to close under it.
// Its transaction is over by then, so the open handle holds no lock on the file that is moved away; it is
// kept and closed when the operation has finalized the statement.
void StoreConnection::closeDatabase()
{
    if (!m_db)
        return;
    sqlite3 *database = m_db.release();
    if (sqlite3_close(database) != SQLITE_OK)
        m_retired.emplace_back(database);
}

QString StoreConnection::errorText() const
{
    return QString::fromUtf8(sqlite3_errmsg(handle()));
}

int StoreConnection::changes() const
{
    return sqlite3_changes(handle());
}

QString StoreConnection::logFailure(const char *operation, Phase phase) const
{
    const QString text = errorText();
    const QLatin1String phaseName = [phase] {
        switch (phase) {
        case Phase::prepare:
            return QLatin1String(" prepare error: ");
        case Phase::step:
            return QLatin1String(" step error: ");
        }
        Q_UNREACHABLE();
    }();
    Log::line(QStringLiteral("❌ ") + QLatin1String(operation) + phaseName + text);
    return text;
}

std::optional<QString> StoreConnection::databaseDirectory()
{
    const std::optional<QString> support = Directories::applicationSupport();
    if (!support)
        return std::nullopt;
    const QString directory = *support + u'/' + QLatin1String(StoreSchema::directoryName);
    // A failure shows itself at the open, with SQLite's own words.
    Directories::create(directory);
    return directory;
}

} // namespace Qorvane
