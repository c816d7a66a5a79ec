#pragma once

#include <QString>

#include <optional>

namespace Qorvane {

class StoreConnection;

/// The number of rows in `images`; 0 after a failure, which is logged when the statement couldn't be
/// prepared.
int countImages(const StoreConnection &connection);

/// The number of rows in `tag_vectors`; 0 after a failure, without a line.
int countTagVectors(const StoreConnection &connection);

/// The number of rows in `images` whose path is LIKE `pattern`; nothing when the statement couldn't be
/// prepared, 0 when it gave no row. No line is logged.
std::optional<int> countImagesLike(const StoreConnection &connection, const QString &pattern);

} // namespace Qorvane
