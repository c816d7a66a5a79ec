#pragma once

#include "library/Folder.h"
#include "library/SortCriterion.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <mutex>

namespace Qorvane {

/// What background work may know of the library's state, as it was last published. Written on the GUI thread,
/// read from any.
///
/// The façade owns it, and background blocks hold it weakly: that it is gone tells them that the library is.
class LibrarySnapshot
{
public:
    void setRoots(const QList<Folder> &roots);
    QList<Folder> roots() const;

    /// Whether a root's path is a plain text prefix of `path`. No "/" is asked for after it: "/a/b" counts
    /// "/a/b2/x.jpg" in, by design.
    bool containsPath(const QString &path) const;

    void setSortSettings(const SortSettings &settings);
    SortSettings sortSettings() const;

    /// `path` has an entry in the status dictionary from now on.
    void addProcessedPath(const QString &path);
    /// The keys of that dictionary, in the order they came.
    QStringList processedPaths() const;

private:
    mutable std::mutex m_mutex;
    QList<Folder> m_roots;
    SortSettings m_sortSettings;
    QStringList m_processedPaths;
};

} // namespace Qorvane
