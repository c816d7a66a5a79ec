#include "library/FolderTree.h"

#include "library/DirectoryListing.h"
#include "platform/FileAttributes.h"
#include "platform/Log.h"

#include <QHash>

#include <algorithm>
#include <vector>

namespace Qorvane::FolderTree {

namespace {

// Symbolic links may lead back up. Left alone, the kernel would end such a path after 40 links, which two
// links in one folder turn into 2^40 folders: a program that hangs until its memory is gone. So a folder that
// is one of its own ancestors is shown and not entered.
// That alone still lets n folders that all link to each other make n! paths, so no folder is entered more
// often than this in one reading; more links to the same place than that are no honest tree.
constexpr int mostReadingsOfOneFolder = 64;

class Builder
{
public:
    Folder build(const FileUrl &url)
    {
        Folder folder{url, std::nullopt};
        QString error;
        const std::optional<DirectoryListing> listing = listDirectory(url.path(), &error);
        if (!listing) {
            Log::line(QStringLiteral("Error building folder hierarchy: ") + error);
            return folder;
        }
        if (!isWorthEntering(listing->identity))
            return folder;
        m_ancestors.push_back(listing->identity);
        QList<Folder> children;
        for (const DirectoryEntry &entry : listing->entries) {
            if (!entry.name)
                continue;
            const QString path = childPath(url.path(), *entry.name);
            if (isDirectory(entry, path))
                children.append(build(FileUrl::directory(path)));
        }
        m_ancestors.pop_back();
        if (!children.isEmpty())
            folder.children = std::move(children);
        return folder;
    }

private:
    bool isWorthEntering(const DirectoryIdentity &identity)
    {
        const bool isItsOwnAncestor = std::ranges::find(m_ancestors, identity) != m_ancestors.end();
        return !isItsOwnAncestor && ++m_readings[identity] <= mostReadingsOfOneFolder;
    }

    static bool isDirectory(const DirectoryEntry &entry, const QString &path)
    {
        switch (entry.kind) {
        case EntryKind::directory:
            return true;
        case EntryKind::symbolicLink:
            return directoryExists(path);
        case EntryKind::other:
            return false;
        }
        return false;
    }

    std::vector<DirectoryIdentity> m_ancestors;
    QHash<DirectoryIdentity, int> m_readings;
};

template <typename Matches>
std::optional<Folder> firstMatch(const QList<Folder> &folders, const Matches &matches)
{
    for (const Folder &folder : folders) {
        if (matches(folder))
            return folder;
        if (folder.children) {
            if (const std::optional<Folder> found = firstMatch(*folder.children, matches))
                return found;
        }
    }
    return std::nullopt;
}

} // namespace

Folder buildFolderHierarchy(const FileUrl &url)
{
    return Builder().build(url);
}

std::optional<Folder> findFolder(const FileUrl &url, const QList<Folder> &folders)
{
    return firstMatch(folders, [&url](const Folder &folder) { return folder.url == url; });
}

std::optional<Folder> findFolder(const QString &absoluteString, const QList<Folder> &folders)
{
    return firstMatch(folders,
                      [&](const Folder &folder) { return folder.url.absoluteString() == absoluteString; });
}

} // namespace Qorvane::FolderTree
