#pragma once

namespace Qorvane::StoreSchema {

/// The folder of the database inside the user's application data, and the two files in it. There is one
/// backup slot: the first corrupt database that was put aside is the one that stays.
inline constexpr char directoryName[] = "Qorvane";
inline constexpr char databaseName[] = "embeddings.sqlite3";
inline constexpr char backupName[] = "embeddings_corrupt_backup.sqlite3";

/// All tables and indices, for one call of sqlite3_exec. Whatever exists already is left as it is; that is
/// the only evolution the schema knows.
const char *script();

} // namespace Qorvane::StoreSchema
