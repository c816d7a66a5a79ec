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
    /// The stored bookmarks; nothing when there is no list or it holds anything else.
    std::optional<QList<QByteArray>> stored() const;
    /// The folders behind `bookmarks`, in order. One that can't be resolved is left out with a line, one that
    /// may not be read without. Asks the disk.
    QList<FileUrl> resolve(const QList<QByteArray> &bookmarks) const;

private:
    FolderBookmarks(QString key, QString saveFailure, QString resolveFailure);

    QString m_key;
    QString m_saveFailure;
    QString m_resolveFailure;
};

} // namespace Qorvane
