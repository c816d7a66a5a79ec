#pragma once

#include <QString>

#include <memory>
#include <optional>
#include <vector>

struct sqlite3;

namespace Qorvane {

/// The one connection to the database: where the file lies, how it is opened, and how a corrupt one is
/// replaced. It has no lock of its own: the store's queue is the only one. Statements commit by themselves in
/// SQLite's default journal mode.
class StoreConnection
{
public:
    /// Where a statement failed, as the log names it.
    enum class Phase { prepare, step };
    /// Whether a recovery is told of by a line before its own.
    enum class Announcement { spoken, silent };

    StoreConnection();
    ~StoreConnection();
    StoreConnection(const StoreConnection &) = delete;
    StoreConnection &operator=(const StoreConnection &) = delete;

    /// Opens the file in the user's application data, creating folder and file when missing. On failure the
    /// handle that SQLite gave stays, and every statement on it fails; without a data folder there is no
    /// handle.
    void openDatabase();
    /// Creates what is missing of the schema and logs the counts of images and tag vectors.
    void createTables();
    /// Moves the database file into the one backup slot and begins a new, empty one. When the slot is taken
    /// the corrupt file stays and is opened again. Nothing is copied from the old file.
    void recoverDatabase();
    /// Runs `recoverDatabase` when `errorText` speaks of corruption. For the writes of image records only: no
    /// read may cost the user the database.
    void recoverIfCorrupt(const QString &errorText, Announcement announcement);
    /// Closes the connections that recovery had to leave open because the failing statement was still alive.
    /// To be called when no statement is.
    void closeRetired();

    /// Null before the open and where no data folder is found.
    sqlite3 *handle() const { return m_db.get(); }
    /// SQLite's text of the last failure.
    QString errorText() const;
    /// The number of rows that the last finished write touched.
    int changes() const;
    /// Logs the failure of `operation` in the store's one form and gives SQLite's text.
    QString logFailure(const char *operation, Phase phase) const;

private:
    struct Closer
    {
        void operator()(sqlite3 *database) const;
    };
    using Handle = std::unique_ptr<sqlite3, Closer>;

    static std::optional<QString> databaseDirectory();
    void closeDatabase();

    Handle m_db;
    std::vector<Handle> m_retired;
};

} // namespace Qorvane
