#include "store/RatingRecords.h"

#include "store/Statement.h"
#include "store/StoreConnection.h"

namespace Qorvane {

namespace {

using Phase = StoreConnection::Phase;

// The stars there are; the table's own check says the same.
constexpr int fewestStars = 1;
constexpr int mostStars = 5;

} // namespace

void RatingRecords::setRating(const QString &path, std::optional<int> rating)
{
    if (rating && *rating >= fewestStars && *rating <= mostStars)
        writeRating(path, *rating);
    else
        removeRating(path);
}

void RatingRecords::writeRating(const QString &path, int rating)
{
    Statement statement(m_connection.handle(), "INSERT INTO image_ratings(path, rating) VALUES(?, ?) "
                                               "ON CONFLICT(path) DO UPDATE SET rating = excluded.rating");
    if (!statement.isPrepared()) {
        m_connection.logFailure("setRating", Phase::prepare);
        return;
    }
    statement.bindText(1, path);
    statement.bindInt(2, rating);
    if (!statement.stepToEnd())
        m_connection.logFailure("setRating", Phase::step);
}

void RatingRecords::removeRating(const QString &path)
{
    Statement statement(m_connection.handle(), "DELETE FROM image_ratings WHERE path = ?");
    if (!statement.isPrepared()) {
        m_connection.logFailure("clearRating", Phase::prepare);
        return;
    }
    statement.bindText(1, path);
    if (!statement.stepToEnd())
        m_connection.logFailure("clearRating", Phase::step);
}

std::optional<int> RatingRecords::getRating(const QString &path) const
{
    Statement statement(m_connection.handle(), "SELECT rating FROM image_ratings WHERE path = ?");
    if (!statement.isPrepared()) {
        m_connection.logFailure("getRating", Phase::prepare);
        return std::nullopt;
    }
    statement.bindText(1, path);
    if (!statement.stepToRow())
        return std::nullopt;
    return statement.integer(0);
}

int RatingRecords::getRatingCount(int rating) const
{
    Statement statement(m_connection.handle(), "SELECT COUNT(*) FROM image_ratings WHERE rating = ?");
    if (!statement.isPrepared()) {
        m_connection.logFailure("getRatingCount", Phase::prepare);
        return 0;
    }
    statement.bindInt(1, rating);
    return statement.stepToRow() ? statement.integer(0) : 0;
}

QHash<int, int> RatingRecords::getAllRatingCounts() const
{
    Statement statement(m_connection.handle(), "SELECT rating, COUNT(*) FROM image_ratings GROUP BY rating");
    if (!statement.isPrepared()) {
        m_connection.logFailure("getAllRatingCounts", Phase::prepare);
        return {};
    }
    QHash<int, int> counts;
    while (statement.stepToRow())
        counts.insert(statement.integer(0), statement.integer(1));
    return counts;
}

QStringList RatingRecords::fetchPathsByRating(int rating) const
{
    Statement statement(m_connection.handle(), "SELECT path FROM image_ratings WHERE rating = ?");
    if (!statement.isPrepared()) {
        m_connection.logFailure("fetchPathsByRating", Phase::prepare);
        return {};
    }
    statement.bindInt(1, rating);
    return statement.remainingTexts();
}

} // namespace Qorvane
