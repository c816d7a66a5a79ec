#pragma once

#include <QString>

namespace Qorvane {

class StoreConnection;

/// Logs whether any image record below `folderPath` is left, with up to ten of them. On the store's queue.
void reportFolderDeletion(const StoreConnection &connection, const QString &folderPath);

/// Logs the number of image records, whole and by folder. On the store's queue.
void reportStatistics(const StoreConnection &connection);

} // namespace Qorvane
