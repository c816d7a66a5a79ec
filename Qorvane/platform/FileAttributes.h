#pragma once

#include <QString>

#include <optional>

namespace Qorvane {

/// What the file system says of a file; symbolic links are followed.
struct FileAttributes
{
    qint64 size = 0; ///< bytes
    double modificationTime =
        0; ///< seconds since 1970-01-01, nanoseconds included as far as a double holds them
    std::optional<double> creationTime; ///< the same for the birth time, where the file system keeps one
    bool isDirectory = false;

    friend bool operator==(const FileAttributes &, const FileAttributes &) = default;
};

/// Nothing when the file isn't there or can't be asked; the reason is then put into `error`, in the system's
/// words. Any thread.
std::optional<FileAttributes> fileAttributes(const QString &path, QString *error = nullptr);

/// Whether something exists at `path`; a dangling symbolic link doesn't. Any thread.
bool fileExists(const QString &path);

/// Whether a folder, or a symbolic link to one, exists at `path`. Any thread.
bool directoryExists(const QString &path);

} // namespace Qorvane
