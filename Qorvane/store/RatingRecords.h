#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

#include <optional>

namespace Qorvane {

class StoreConnection;

/// The rows of `image_ratings`: at most one per path. The bodies of the store's operations of the same names,
/// which document them; to be called on the store's queue.
class RatingRecords
{
public:
    explicit RatingRecords(const StoreConnection &connection)
        : m_connection(connection)
    {
    }

    void setRating(const QString &path, std::optional<int> rating);
    std::optional<int> getRating(const QString &path) const;
    int getRatingCount(int rating) const;
    QHash<int, int> getAllRatingCounts() const;
    QStringList fetchPathsByRating(int rating) const;

private:
    void writeRating(const QString &path, int rating);
    void removeRating(const QString &path);

    const StoreConnection &m_connection;
};

} // namespace Qorvane
