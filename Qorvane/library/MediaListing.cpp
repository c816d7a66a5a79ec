#include "library/MediaListing.h"

#include "library/DirectoryListing.h"
#include "media/SupportedExtensions.h"
#include "platform/FileAttributes.h"
#include "platform/Log.h"

#include <QSet>

namespace Qorvane::MediaListing {

namespace {

// Folders that the platform they come from shows as one document, as far as they end up on disks with
// pictures: photo and video libraries, documents with pictures inside, programs.
bool isPackage(const QString &name)
{
    static const QSet<QString> extensions{
        QStringLiteral("app"),       QStringLiteral("appex"),        QStringLiteral("aplibrary"),
        QStringLiteral("band"),      QStringLiteral("bundle"),       QStringLiteral("cocatalog"),
        QStringLiteral("component"), QStringLiteral("fcpbundle"),    QStringLiteral("imovielibrary"),
        QStringLiteral("kext"),      QStringLiteral("key"),          QStringLiteral("logicx"),
        QStringLiteral("lrdata"),    QStringLiteral("mdimporter"),   QStringLiteral("migratedphotolibrary"),
        QStringLiteral("mpkg"),      QStringLiteral("musiclibrary"), QStringLiteral("numbers"),
        QStringLiteral("pages"),     QStringLiteral("photolibrary"), QStringLiteral("photoslibrary"),
        QStringLiteral("pkg"),       QStringLiteral("playground"),   QStringLiteral("plugin"),
        QStringLiteral("prefpane"),  QStringLiteral("qlgenerator"),  QStringLiteral("rtfd"),
        QStringLiteral("saver"),     QStringLiteral("sparsebundle"), QStringLiteral("theater"),
        QStringLiteral("tvlibrary"), QStringLiteral("wdgt"),         QStringLiteral("workflow"),
        QStringLiteral("xcodeproj"), QStringLiteral("xcworkspace"),  QStringLiteral("xpc"),
    };
    return extensions.contains(FileUrl::directory(u'/' + name).pathExtension().toLower());
}

// A name that isn't UTF-8 has no faithful text, and the text is the key of everything the library keeps. The
// line shows what can be shown of it.
void reportUnnameable(const QString &folder, const DirectoryEntry &entry)
{
    const QString path = childPath(folder, QString::fromUtf8(entry.undecodedName));
    if (entry.kind == EntryKind::directory || isMediaFile(FileUrl::file(path)))
        Log::line(QStringLiteral("⚠️ 文件名不是有效的 UTF-8，已跳过: ") + path);
}

void collect(const QString &folder, QList<FileUrl> &files)
{
    const std::optional<DirectoryListing> listing = listDirectory(folder);
    if (!listing)
        return;
    for (const DirectoryEntry &entry : listing->entries) {
        if (!entry.name) {
            reportUnnameable(folder, entry);
            continue;
        }
        const FileUrl url = FileUrl::file(childPath(folder, *entry.name));
        if (isMediaFile(url))
            files.append(url);
        if (entry.kind == EntryKind::directory && !isPackage(*entry.name))
            collect(url.path(), files);
    }
}

} // namespace

QList<FileUrl> collectMediaFiles(const FileUrl &url)
{
    QList<FileUrl> files;
    collect(url.path(), files);
    return files;
}

QList<FileUrl> existingFiles(const QStringList &paths)
{
    QList<FileUrl> urls;
    for (const QString &path : paths) {
        if (fileExists(path))
            urls.append(FileUrl::file(path));
    }
    return urls;
}

} // namespace Qorvane::MediaListing
