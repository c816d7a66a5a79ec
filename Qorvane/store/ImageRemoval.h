#pragma once

#include <QString>
#include <QStringList>

namespace Qorvane {

class StoreConnection;

/// Removing files from the database: their vectors, tags and ratings, one statement a table and no
/// transaction around them. The bodies of the store's operations of the same names, which document them; to
/// be called on the store's queue.
class ImageRemoval
{
public:
    explicit ImageRemoval(StoreConnection &connection)
        : m_connection(connection)
    {
    }

    /// `paths` isn't empty.
    void deletePaths(const QStringList &paths);
    void deleteFolder(const QString &folderPath);

private:
    bool deletePathsFrom(const char *table, const char *operation, const QByteArray &list,
                         const QStringList &paths);
    bool deleteImagesBelow(const QString &pattern, int expected);
    void deleteAttachedBelow(const QString &pattern, const char *sql, const char *operation,
                             const QString &recordsText);

    StoreConnection &m_connection;
};

} // namespace Qorvane
