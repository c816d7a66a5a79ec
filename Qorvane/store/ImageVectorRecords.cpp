#include "store/ImageVectorRecords.h"

#include "store/PathPattern.h"
#include "store/Statement.h"
#include "store/StoreConnection.h"

namespace Qorvane {

namespace {

using Phase = StoreConnection::Phase;

constexpr char upsertStatement[] =
    "INSERT INTO images(path, thumbnail_path, vector, dim, mtime)\n"
    "VALUES(?, ?, ?, ?, ?)\n"
    "ON CONFLICT(path) DO UPDATE SET\n"
    "thumbnail_path = excluded.thumbnail_path, vector = excluded.vector, dim = excluded.dim, "
    "mtime = excluded.mtime";

// A row without a path or without a vector is of no use to anybody and is passed over.
void visitRows(Statement &statement, const ImageVectorRecords::Visitor &visitor)
{
    while (statement.stepToRow()) {
        const auto path = statement.utf8(0);
        const auto blob = statement.blob(1);
        if (path && blob)
            visitor({*path, *blob, statement});
    }
}

} // namespace

void ImageVectorRecords::upsert(const QString &path, const std::optional<QString> &thumbnailPath,
                                const std::vector<float> &vector, int dim, double mtime)
{
    Statement statement(m_connection.handle(), upsertStatement);
    if (!statement.isPrepared()) {
        recoverFromFailure(m_connection.logFailure("upsert", Phase::prepare));
        return;
    }
    statement.bindText(1, path);
    if (thumbnailPath)
        statement.bindText(2, *thumbnailPath);
    else
        statement.bindNull(2);
    statement.bindFloats(3, vector);
    statement.bindInt(4, dim);
    statement.bindDouble(5, mtime);
    // The vector isn't written again after a recovery: the next run over the folder finds it missing.
    if (!statement.stepToEnd())
        recoverFromFailure(m_connection.logFailure("upsert", Phase::step));
}

void ImageVectorRecords::recoverFromFailure(const QString &errorText)
{
    m_connection.recoverIfCorrupt(errorText, StoreConnection::Announcement::spoken);
}

bool ImageVectorRecords::isUpToDate(const QString &path, double mtime) const
{
    Statement statement(m_connection.handle(), "SELECT 1 FROM images WHERE path = ? AND mtime = ? LIMIT 1");
    if (!statement.isPrepared())
        return false;
    statement.bindText(1, path);
    statement.bindDouble(2, mtime);
    return statement.stepToRow();
}

void ImageVectorRecords::visit(const QStringList &paths, const Visitor &visitor) const
{
    const QByteArray sql =
        "SELECT path, vector, dim FROM images WHERE path IN (" + placeholders(paths.size()) + ")";
    Statement statement(m_connection.handle(), sql.constData());
    if (!statement.isPrepared()) {
        m_connection.logFailure("fetch", Phase::prepare);
        return;
    }
    statement.bindTexts(paths);
    visitRows(statement, visitor);
}

void ImageVectorRecords::visitAll(const Visitor &visitor) const
{
    Statement statement(m_connection.handle(), "SELECT path, vector, dim FROM images");
    if (!statement.isPrepared()) {
        m_connection.logFailure("fetchAll", Phase::prepare);
        return;
    }
    visitRows(statement, visitor);
}

QStringList ImageVectorRecords::fetchPathsWithPrefix(const QString &prefix) const
{
    Statement statement(m_connection.handle(), "SELECT path FROM images WHERE path LIKE ? ESCAPE '\\'");
    if (!statement.isPrepared()) {
        m_connection.logFailure("fetchPathsWithPrefix", Phase::prepare);
        return {};
    }
    statement.bindText(1, everythingBelow(prefix));
    return statement.remainingTexts();
}

} // namespace Qorvane
