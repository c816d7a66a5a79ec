#include "library/LibrarySnapshot.h"

#include <algorithm>

namespace Qorvane {

void LibrarySnapshot::setRoots(const QList<Folder> &roots)
{
    const std::scoped_lock lock(m_mutex);
    m_roots = roots;
}

QList<Folder> LibrarySnapshot::roots() const
{
    const std::scoped_lock lock(m_mutex);
    return m_roots;
}

bool LibrarySnapshot::containsPath(const QString &path) const
{
    return std::ranges::any_of(roots(),
                               [&path](const Folder &root) { return path.startsWith(root.url.path()); });
}

void LibrarySnapshot::setSortSettings(const SortSettings &settings)
{
    const std::scoped_lock lock(m_mutex);
    m_sortSettings = settings;
}

SortSettings LibrarySnapshot::sortSettings() const
{
    const std::scoped_lock lock(m_mutex);
    return m_sortSettings;
}

void LibrarySnapshot::addProcessedPath(const QString &path)
{
    const std::scoped_lock lock(m_mutex);
    m_processedPaths.append(path);
}

QStringList LibrarySnapshot::processedPaths() const
{
    const std::scoped_lock lock(m_mutex);
    return m_processedPaths;
}

} // namespace Qorvane
