#include "library/LibraryHome.h"

#include "library/DeferredWrites.h"
#include "media/ThumbnailPaths.h"
#include "platform/DetachedTask.h"
#include "platform/FileAttributes.h"
#include "platform/GlobalQueue.h"
#include "platform/UserDefaults.h"
#include "store/EmbeddingStore.h"
#include "support/Waiting.h"

#include <QFile>
#include <QFileInfo>
#include <QImage>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cmath>
#include <filesystem>

namespace Qorvane {

LibraryHome::LibraryHome()
{
    EXPECT_TRUE(m_folder.isValid());
    wipe(); // opens the store too, whose own first words are no business of the tests
    m_log = std::make_unique<LogCapture>();
}

LibraryHome::~LibraryHome()
{
    DetachedTask::waitUntilIdle();
    settle();
    m_log.reset();
    wipe();
    // The toolkit can't name, and so can't remove, files whose names aren't UTF-8.
    std::filesystem::remove_all(QFile::encodeName(m_folder.path()).toStdString());
}

void LibraryHome::wipe()
{
    const LogCapture silence;
    UserDefaults::standard().remove(QStringLiteral("libraryFolders"));
    UserDefaults::standard().remove(QStringLiteral("favoriteFolders"));
    EmbeddingStore::shared().deleteFolder(QStringLiteral("/"));
    if (const std::optional<FileUrl> cache = thumbnailCacheDirectory())
        QDir(cache->path()).removeRecursively();
}

QString LibraryHome::path(const QString &name) const
{
    return name.isEmpty() ? m_folder.path() : m_folder.filePath(name);
}

FileUrl LibraryHome::makeFolder(const QString &name) const
{
    EXPECT_TRUE(QDir().mkpath(path(name)));
    return folder(name);
}

FileUrl LibraryHome::writePicture(const QString &name, const QColor &color, QSize size) const
{
    EXPECT_TRUE(QDir().mkpath(QFileInfo(path(name)).path()));
    QImage image(size, QImage::Format_RGB32);
    image.fill(color);
    EXPECT_TRUE(image.save(path(name))) << qPrintable(name);
    return file(name);
}

FileUrl LibraryHome::writeFile(const QString &name, const QByteArray &content) const
{
    EXPECT_TRUE(QDir().mkpath(QFileInfo(path(name)).path()));
    QFile target(path(name));
    EXPECT_TRUE(target.open(QIODevice::WriteOnly));
    target.write(content);
    return file(name);
}

void LibraryHome::setModificationTime(const FileUrl &file, double seconds)
{
    timespec times[2] = {{0, UTIME_OMIT}, {}};
    times[1].tv_sec = time_t(std::floor(seconds));
    times[1].tv_nsec = long((seconds - std::floor(seconds)) * 1e9);
    EXPECT_EQ(::utimensat(AT_FDCWD, QFile::encodeName(file.path()).constData(), times, 0), 0);
}

void settle()
{
    // A block may queue another on the other side; the longest chain here (a load that starts a resort that
    // is published) needs fewer rounds than these.
    constexpr int rounds = 6;
    for (int i = 0; i < rounds; ++i) {
        DeferredWrites::waitUntilIdle();
        GlobalQueue::waitUntilIdle();
        drainMainQueue();
    }
}

QStringList names(const QList<FileUrl> &urls)
{
    QStringList result;
    for (const FileUrl &url : urls)
        result.append(url.lastPathComponent());
    return result;
}

} // namespace Qorvane
