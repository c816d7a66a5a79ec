#include "store/ImageRemoval.h"

#include "platform/Log.h"
#include "store/PathPattern.h"
#include "store/RowCounts.h"
#include "store/Statement.h"
#include "store/StoreConnection.h"

namespace Qorvane {

namespace {

using Announcement = StoreConnection::Announcement;
using Phase = StoreConnection::Phase;

} // namespace

void ImageRemoval::deletePaths(const QStringList &paths)
{
    const QByteArray list = "(" + placeholders(paths.size()) + ")";
    if (!deletePathsFrom("images", "delete", list, paths))
        return;
    if (!deletePathsFrom("image_tags", "delete tags", list, paths))
        return;
    deletePathsFrom("image_ratings", "delete ratings", list, paths);
}

// False when the statement couldn't be prepared, which ends the whole operation; a failed step doesn't.
bool ImageRemoval::deletePathsFrom(const char *table, const char *operation, const QByteArray &list,
                                   const QStringList &paths)
{
    const QByteArray sql = QByteArray("DELETE FROM ") + table + " WHERE path IN " + list;
    Statement statement(m_connection.handle(), sql.constData());
    if (!statement.isPrepared()) {
        m_connection.recoverIfCorrupt(m_connection.logFailure(operation, Phase::prepare),
                                      Announcement::silent);
        return false;
    }
    statement.bindTexts(paths);
    if (!statement.stepToEnd())
        m_connection.recoverIfCorrupt(m_connection.logFailure(operation, Phase::step), Announcement::silent);
    return true;
}

void ImageRemoval::deleteFolder(const QString &folderPath)
{
    const QString pattern = everythingBelow(folderPath);
    const int expected = countImagesLike(m_connection, pattern).value_or(0);
    Log::line(QStringLiteral("📊 找到 ") + QString::number(expected) + QStringLiteral(" 条记录需要删除"));
    if (expected < 1)
        Log::line(QStringLiteral("ℹ️ 没有找到需要删除的记录"));
    else if (!deleteImagesBelow(pattern, expected))
        return;
    // Also without any image: files may be tagged and rated before they have a vector.
    deleteAttachedBelow(pattern, "DELETE FROM image_tags WHERE path LIKE ? ESCAPE '\\'", "delete tags",
                        QStringLiteral(" 条标签记录"));
    deleteAttachedBelow(pattern, "DELETE FROM image_ratings WHERE path LIKE ? ESCAPE '\\'", "delete ratings",
                        QStringLiteral(" 条评级记录"));
}

// False when the statement couldn't be prepared, which leaves tags and ratings alone.
bool ImageRemoval::deleteImagesBelow(const QString &pattern, int expected)
{
    Statement statement(m_connection.handle(), "DELETE FROM images WHERE path LIKE ? ESCAPE '\\'");
    if (!statement.isPrepared()) {
        m_connection.recoverIfCorrupt(m_connection.logFailure("deleteFolder", Phase::prepare),
                                      Announcement::spoken);
        return false;
    }
    statement.bindText(1, pattern);
    if (!statement.stepToEnd()) {
        m_connection.recoverIfCorrupt(m_connection.logFailure("deleteFolder", Phase::step),
                                      Announcement::spoken);
        return true;
    }
    const int removed = m_connection.changes();
    Log::line(QStringLiteral("✅ 成功删除 ") + QString::number(removed) + QStringLiteral(" 条记录"));
    if (removed != expected)
        Log::line(QStringLiteral("⚠️ 警告：预期删除 ") + QString::number(expected) +
                  QStringLiteral(" 条，实际删除 ") + QString::number(removed) + QStringLiteral(" 条"));
    return true;
}

void ImageRemoval::deleteAttachedBelow(const QString &pattern, const char *sql, const char *operation,
                                       const QString &recordsText)
{
    Statement statement(m_connection.handle(), sql);
    if (!statement.isPrepared())
        return;
    statement.bindText(1, pattern);
    if (statement.stepToEnd())
        Log::line(QStringLiteral("✅ 成功删除 ") + QString::number(m_connection.changes()) + recordsText);
    else
        m_connection.recoverIfCorrupt(m_connection.logFailure(operation, Phase::step), Announcement::silent);
}

} // namespace Qorvane
