#pragma once

#include <QByteArray>
#include <QHashFunctions>
#include <QString>

#include <sys/types.h>

#include <optional>
#include <vector>

namespace Qorvane {

/// A directory as the file system knows it, whatever path led there.
struct DirectoryIdentity
{
    dev_t device = 0;
    ino_t inode = 0;

    friend bool operator==(const DirectoryIdentity &, const DirectoryIdentity &) = default;
    friend size_t qHash(const DirectoryIdentity &identity, size_t seed = 0)
    {
        return qHashMulti(seed, quint64(identity.device), quint64(identity.inode));
    }
};

enum class EntryKind { directory, symbolicLink, other };

struct DirectoryEntry
{
    /// Nothing when the bytes are no UTF-8: such a name can't be a key of the library.
    std::optional<QString> name;
    /// The bytes of a name that is no UTF-8; empty for all others.
    QByteArray undecodedName;
    EntryKind kind = EntryKind::other;
};

struct DirectoryListing
{
    DirectoryIdentity identity;
    /// In the order of the disk; names with a leading "." are left out.
    std::vector<DirectoryEntry> entries;
};

/// Lists the directory, or the one that a symbolic link leads to. Nothing when it can't be read; the reason
/// is then put into `error`, in the system's words. Any thread; blocks on the disk.
std::optional<DirectoryListing> listDirectory(const QString &path, QString *error = nullptr);

/// `directory` and `name` with one "/" between them.
QString childPath(const QString &directory, const QString &name);

} // namespace Qorvane
