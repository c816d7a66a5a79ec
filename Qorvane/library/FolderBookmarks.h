#pragma once

#include "library/Folder.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <optional>

namespace Qorvane {

/// How a list of folders outlives a run: one bookmark per folder, in list order, under a key of the user's
/// defaults. Only addresses are stored; trees are read from disk again. Any thread.
class FolderBookmarks
{
public:
    /// The library's roots.
    static FolderBookmarks library();
    static FolderBookmarks favorites();

    /// Stores the list, an empty one too. When one bookmark can't be made, a line says so and what is stored
    /// stays as it was. Asks the disk.
    void save(const QList<Folder> &folders) const;
    /// Adds those of `urls` that aren't stored yet to the stored list, which isn't resolved. Otherwise as
    /// `save`.
    void append(const QList<FileUrl> &urls) const;
    /// The stored bookmarks; nothing when there is no list or it holds anything else.
    std::optional<QList<QByteArray>> stored() const;
    /// The folder behind `bookmark`. Nothing, with a line, when it can't be resolved, and without one when it
    /// may not be read. Asks the disk.
    std::optional<FileUrl> resolve(const QByteArray &bookmark) const;
    /// The folders behind all stored bookmarks, without those that `resolve` to nothing; nothing when there
    /// is no list. Asks the disk.
    std::optional<QList<FileUrl>> resolveStored() const;

private:
    std::optional<QByteArray> bookmarkOf(const FileUrl &url) const;
    FolderBookmarks(QString key, QString saveFailure, QString resolveFailure);

    QString m_key;
    QString m_saveFailure;
    QString m_resolveFailure;
};

} // namespace Qorvane
