#pragma once

#include "store/ImageVectorRow.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <optional>
#include <vector>

namespace Qorvane {

class StoreConnection;

/// The rows of `images`: one vector per file, with its thumbnail path and modification time. The bodies of
/// the store's operations of the same names, which document them; to be called on the store's queue.
class ImageVectorRecords
{
public:
    using Visitor = std::function<void(const ImageVectorView &row)>;

    explicit ImageVectorRecords(StoreConnection &connection)
        : m_connection(connection)
    {
    }

    void upsert(const QString &path, const std::optional<QString> &thumbnailPath,
                const std::vector<float> &vector, int dim, double mtime);
    bool isUpToDate(const QString &path, double mtime) const;
    /// The rows of `paths`, which isn't empty, in SQLite's order.
    void visit(const QStringList &paths, const Visitor &visitor) const;
    /// All rows, in SQLite's order.
    void visitAll(const Visitor &visitor) const;
    QStringList fetchPathsWithPrefix(const QString &prefix) const;

private:
    void recoverFromFailure(const QString &errorText);

    StoreConnection &m_connection;
};

} // namespace Qorvane
