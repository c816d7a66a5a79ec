#include "store/RowCounts.h"

#include "store/Statement.h"
#include "store/StoreConnection.h"

namespace Qorvane {

int countImages(const StoreConnection &connection)
{
    Statement statement(connection.handle(), "SELECT COUNT(*) FROM images");
    if (!statement.isPrepared()) {
        connection.logFailure("getImageCount", StoreConnection::Phase::prepare);
        return 0;
    }
    return statement.stepToRow() ? statement.integer(0) : 0;
}

int countTagVectors(const StoreConnection &connection)
{
    Statement statement(connection.handle(), "SELECT COUNT(*) FROM tag_vectors");
    return statement.isPrepared() && statement.stepToRow() ? statement.integer(0) : 0;
}

std::optional<int> countImagesLike(const StoreConnection &connection, const QString &pattern)
{
    Statement statement(connection.handle(), "SELECT COUNT(*) FROM images WHERE path LIKE ? ESCAPE '\\'");
    if (!statement.isPrepared())
        return std::nullopt;
    statement.bindText(1, pattern);
    return statement.stepToRow() ? statement.integer(0) : 0;
}

} // namespace Qorvane
