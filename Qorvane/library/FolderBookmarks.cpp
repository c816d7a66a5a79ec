#include "library/FolderBookmarks.h"

#include "platform/Bookmark.h"
#include "platform/Log.h"
#include "platform/UserDefaults.h"

#include <utility>

namespace Qorvane {

FolderBookmarks::FolderBookmarks(QString key, QString saveFailure, QString resolveFailure)
    : m_key(std::move(key))
    , m_saveFailure(std::move(saveFailure))
    , m_resolveFailure(std::move(resolveFailure))
{
}

FolderBookmarks FolderBookmarks::library()
{
    return {QStringLiteral("libraryFolders"), QStringLiteral("Error saving bookmarks: "),
            QStringLiteral("Could not resolve bookmark, skipping. Error: ")};
}

FolderBookmarks FolderBookmarks::favorites()
{
    return {QStringLiteral("favoriteFolders"), QStringLiteral("Error saving favorite bookmarks: "),
            QStringLiteral("Could not resolve favorite bookmark, skipping. Error: ")};
}

void FolderBookmarks::save(const QList<Folder> &folders) const
{
    QList<QByteArray> bookmarks;
    for (const Folder &folder : folders) {
        const std::optional<QByteArray> bookmark = bookmarkOf(folder.url);
        if (!bookmark)
            return;
        bookmarks.append(*bookmark);
    }
    UserDefaults::standard().setDataArray(m_key, bookmarks);
}

void FolderBookmarks::append(const QList<FileUrl> &urls) const
{
    QList<QByteArray> bookmarks = stored().value_or(QList<QByteArray>());
    for (const FileUrl &url : urls) {
        const std::optional<QByteArray> bookmark = bookmarkOf(url);
        if (!bookmark)
            return;
        if (!bookmarks.contains(*bookmark))
            bookmarks.append(*bookmark);
    }
    UserDefaults::standard().setDataArray(m_key, bookmarks);
}

std::optional<QByteArray> FolderBookmarks::bookmarkOf(const FileUrl &url) const
{
    QString error;
    std::optional<QByteArray> bookmark = Bookmark::create(url, &error);
    if (!bookmark)
        Log::line(m_saveFailure + error);
    return bookmark;
}

std::optional<QList<QByteArray>> FolderBookmarks::stored() const
{
    return UserDefaults::standard().dataArray(m_key);
}

std::optional<FileUrl> FolderBookmarks::resolve(const QByteArray &bookmark) const
{
    QString error;
    const std::optional<FileUrl> url = Bookmark::resolve(bookmark, &error);
    if (!url)
        Log::line(m_resolveFailure + error);
    return url && Bookmark::startAccessing(*url) ? url : std::nullopt;
}

std::optional<QList<FileUrl>> FolderBookmarks::resolveStored() const
{
    const std::optional<QList<QByteArray>> bookmarks = stored();
    if (!bookmarks)
        return std::nullopt;
    QList<FileUrl> urls;
    for (const QByteArray &bookmark : *bookmarks) {
        if (const std::optional<FileUrl> url = resolve(bookmark))
            urls.append(*url);
    }
    return urls;
}

} // namespace Qorvane
