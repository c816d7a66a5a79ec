#include "store/StoreReports.h"

#include "platform/Log.h"
#include "store/PathPattern.h"
#include "store/RowCounts.h"
#include "store/Statement.h"
#include "store/StoreConnection.h"

namespace Qorvane {

namespace {

void listSomeBelow(const StoreConnection &connection, const QString &pattern)
{
    Statement statement(connection.handle(),
                        "SELECT path FROM images WHERE path LIKE ? ESCAPE '\\' LIMIT 10");
    if (!statement.isPrepared())
        return;
    statement.bindText(1, pattern);
    Log::line(QStringLiteral("📋 剩余记录示例（最多10条）:"));
    for (const QString &path : statement.remainingTexts())
        Log::line(QStringLiteral("   • ") + path);
}

void reportTotal(const StoreConnection &connection)
{
    Statement statement(connection.handle(), "SELECT COUNT(*) FROM images");
    if (statement.isPrepared() && statement.stepToRow())
        Log::line(QStringLiteral("   总记录数: ") + QString::number(statement.integer(0)));
}

// The paths are absolute, so every one of them falls into the group of the empty name before its first "/".
// That is how the line is wanted.
void reportByFolder(const StoreConnection &connection)
{
    Statement statement(connection.handle(),
                        "SELECT substr(path, 1, instr(path, '/') - 1) as folder, COUNT(*) as count "
                        "FROM images GROUP BY substr(path, 1, instr(path, '/') - 1) "
                        "ORDER BY count DESC LIMIT 10");
    if (!statement.isPrepared())
        return;
    Log::line(QStringLiteral("   按文件夹分组的记录数（前10）:"));
    while (statement.stepToRow()) {
        if (const std::optional<QString> folder = statement.text(0))
            Log::line(QStringLiteral("     ") + *folder + QStringLiteral(": ") +
                      QString::number(statement.integer(1)) + QStringLiteral(" 条"));
    }
}

} // namespace

void reportFolderDeletion(const StoreConnection &connection, const QString &folderPath)
{
    const QString pattern = everythingBelow(folderPath);
    const std::optional<int> count = countImagesLike(connection, pattern);
    if (!count) {
        connection.logFailure("verifyFolderDeletion", StoreConnection::Phase::prepare);
        return;
    }
    if (*count == 0) {
        Log::line(QStringLiteral("✅ 验证成功：文件夹 ") + folderPath +
                  QStringLiteral(" 下的所有记录已完全删除"));
        return;
    }
    Log::line(QStringLiteral("⚠️ 验证失败：文件夹 ") + folderPath + QStringLiteral(" 下仍有 ") +
              QString::number(*count) + QStringLiteral(" 条记录"));
    listSomeBelow(connection, pattern);
}

void reportStatistics(const StoreConnection &connection)
{
    Log::line(QStringLiteral("📊 数据库统计信息:"));
    reportTotal(connection);
    reportByFolder(connection);
}

} // namespace Qorvane
