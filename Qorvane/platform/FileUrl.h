#pragma once

#include <QHashFunctions>
#include <QList>
#include <QMetaType>
#include <QString>

#include <functional>

namespace Qorvane {

/// The address of a file or folder. Its path is kept exactly as given (no standardising, no symbolic links
/// resolved, no Unicode normalisation), since it is the key of everything the library knows about the file.
/// Folders are told from files by a trailing "/" in the absolute text, never in the path.
class FileUrl
{
public:
    FileUrl() = default;
    /// `path` is absolute.
    static FileUrl file(const QString &path) { return FileUrl(path, false); }
    /// Trailing "/" are taken off the path, but for the root's own.
    static FileUrl directory(const QString &path);

    bool isEmpty() const { return m_path.isEmpty(); }
    const QString &path() const { return m_path; }
    bool hasDirectoryPath() const { return m_isDirectory; }

    /// "file://" and the percent-encoded path, with a trailing "/" for a folder.
    QString absoluteString() const;
    /// What follows the last "/"; "/" for the root.
    QString lastPathComponent() const;
    /// What follows the last "." of the last component, case as it stands; empty when nothing precedes the
    /// dot (".jpg"), nothing follows it, or a blank stands in it.
    QString pathExtension() const;
    /// The folder that directly contains this one; the root contains itself.
    FileUrl deletingLastPathComponent() const;

    /// Same path, and both folders or both files.
    friend bool operator==(const FileUrl &, const FileUrl &) = default;
    friend size_t qHash(const FileUrl &url, size_t seed = 0) { return qHash(url.m_path, seed); }

private:
    FileUrl(QString path, bool isDirectory)
        : m_path(std::move(path))
        , m_isDirectory(isDirectory)
    {
    }

    QString m_path;
    bool m_isDirectory = false;
};

} // namespace Qorvane

template <>
struct std::hash<Qorvane::FileUrl>
{
    size_t operator()(const Qorvane::FileUrl &url) const noexcept { return qHash(url); }
};

Q_DECLARE_METATYPE(Qorvane::FileUrl)
