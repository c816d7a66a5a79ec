#include "store/TagRecords.h"

#include "store/Statement.h"
#include "store/StoreConnection.h"
#include "store/TagSpelling.h"

namespace Qorvane {

namespace {

using Phase = StoreConnection::Phase;

constexpr char insertStatement[] = "INSERT OR IGNORE INTO image_tags(path, tag) VALUES(?, ?)";
constexpr char deleteStatement[] = "DELETE FROM image_tags WHERE path = ? AND tag = ?";

// The write of one path and tag, with the failure lines of `operation`, or none without one.
void write(const StoreConnection &connection, const char *sql, const QString &path, const QString &tag,
           const char *operation = nullptr)
{
    Statement statement(connection.handle(), sql);
    if (!statement.isPrepared()) {
        if (operation)
            connection.logFailure(operation, Phase::prepare);
        return;
    }
    statement.bindText(1, path);
    statement.bindText(2, tag);
    if (!statement.stepToEnd() && operation)
        connection.logFailure(operation, Phase::step);
}

} // namespace

void TagRecords::addTag(const QString &path, const QString &tag)
{
    write(m_connection, insertStatement, path, tag, "addTag");
}

void TagRecords::removeTag(const QString &path, const QString &tag)
{
    write(m_connection, deleteStatement, path, tag, "removeTag");
}

void TagRecords::replaceTag(const QString &path, const QString &oldTag, const QString &newTag)
{
    // A change of case alone isn't made here; the stored text stays.
    if (differOnlyInSpelling(oldTag, newTag))
        return;
    write(m_connection, deleteStatement, path, oldTag);
    write(m_connection, insertStatement, path, newTag);
}

void TagRecords::deleteTagGlobally(const QString &tag)
{
    Statement statement(m_connection.handle(), "DELETE FROM image_tags WHERE tag = ?");
    if (!statement.isPrepared()) {
        m_connection.logFailure("deleteTagGlobally", Phase::prepare);
        return;
    }
    statement.bindText(1, tag);
    if (!statement.stepToEnd())
        m_connection.logFailure("deleteTagGlobally", Phase::step);
}

QStringList TagRecords::getTags(const QString &path) const
{
    Statement statement(m_connection.handle(),
                        "SELECT tag FROM image_tags WHERE path = ? ORDER BY LOWER(tag)");
    if (!statement.isPrepared()) {
        m_connection.logFailure("getTags", Phase::prepare);
        return {};
    }
    statement.bindText(1, path);
    return statement.remainingTexts();
}

QStringList TagRecords::listAllTags() const
{
    Statement statement(m_connection.handle(), "SELECT DISTINCT tag FROM image_tags ORDER BY LOWER(tag)");
    if (!statement.isPrepared()) {
        m_connection.logFailure("listAllTags", Phase::prepare);
        return {};
    }
    return statement.remainingTexts();
}

QStringList TagRecords::searchTags(const QString &prefix, int most) const
{
    Statement statement(m_connection.handle(), "SELECT DISTINCT tag FROM image_tags "
                                               "WHERE LOWER(tag) LIKE LOWER(?) ORDER BY LOWER(tag) LIMIT ?");
    if (!statement.isPrepared()) {
        m_connection.logFailure("searchTags", Phase::prepare);
        return {};
    }
    statement.bindText(1, prefix + u'%');
    statement.bindInt(2, most);
    return statement.remainingTexts();
}

int TagRecords::getTagCount(const QString &tag) const
{
    Statement statement(m_connection.handle(), "SELECT COUNT(*) FROM image_tags WHERE tag = ?");
    if (!statement.isPrepared()) {
        m_connection.logFailure("getTagCount", Phase::prepare);
        return 0;
    }
    statement.bindText(1, tag);
    return statement.stepToRow() ? statement.integer(0) : 0;
}

QHash<QString, int> TagRecords::getAllTagCounts() const
{
    Statement statement(m_connection.handle(), "SELECT tag, COUNT(*) FROM image_tags GROUP BY tag");
    if (!statement.isPrepared()) {
        m_connection.logFailure("getAllTagCounts", Phase::prepare);
        return {};
    }
    QHash<QString, int> counts;
    while (statement.stepToRow()) {
        if (const std::optional<QString> tag = statement.text(0))
            counts.insert(*tag, statement.integer(1));
    }
    return counts;
}

QStringList TagRecords::fetchPathsByTag(const QString &tag) const
{
    Statement statement(m_connection.handle(), "SELECT path FROM image_tags WHERE tag = ?");
    if (!statement.isPrepared()) {
        m_connection.logFailure("fetchPathsByTag", Phase::prepare);
        return {};
    }
    statement.bindText(1, tag);
    return statement.remainingTexts();
}

} // namespace Qorvane
