#include "media/OffMainThread.h"
#include "media/TestVideo.h"
#include "media/ThumbnailCache.h"
#include "media/ThumbnailPaths.h"
#include "media/WholeFile.h"
#include "support/LogCapture.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

using namespace Qorvane;

namespace {

/// Lets no file grow beyond so many bytes: the write that would comes up short and the next one fails, which
/// is how a full disk shows itself, and it needs no rights and no disk of its own.
class FullDisk
{
public:
    explicit FullDisk(rlim_t bytes)
        : m_oldAction(std::signal(SIGXFSZ, SIG_IGN))
    {
        ::getrlimit(RLIMIT_FSIZE, &m_oldLimit);
        rlimit limit = m_oldLimit;
        limit.rlim_cur = bytes;
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk()
    {
        ::setrlimit(RLIMIT_FSIZE, &m_oldLimit);
        std::signal(SIGXFSZ, m_oldAction);
    }
    FullDisk(const FullDisk &) = delete;
    FullDisk &operator=(const FullDisk &) = delete;

private:
    rlimit m_oldLimit = {};
    void (*m_oldAction)(int);
};

/// A cache folder that nobody can write to, not even the superuser: its place is taken by a file.
class UnwritableCache
{
public:
    UnwritableCache()
        : m_old(qgetenv("XDG_CACHE_HOME"))
    {
        QFile file(m_folder.filePath(QStringLiteral("taken")));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        qputenv("XDG_CACHE_HOME", QFile::encodeName(file.fileName()));
    }
    ~UnwritableCache() { qputenv("XDG_CACHE_HOME", m_old); }
    UnwritableCache(const UnwritableCache &) = delete;
    UnwritableCache &operator=(const UnwritableCache &) = delete;

private:
    QTemporaryDir m_folder;
    QByteArray m_old;
};

class ThumbnailFaults : public testing::Test
{
protected:
    void SetUp() override
    {
        QDir(base()).removeRecursively();
        // Noise, so that the thumbnail is larger than the limits set below.
        QImage picture(320, 240, QImage::Format_RGB32);
        QRandomGenerator random(1);
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x)
                picture.setPixel(x, y, random.generate());
        }
        m_picture = FileUrl::file(m_folder.filePath(QStringLiteral("a.png")));
        ASSERT_TRUE(picture.save(m_picture.path()));
        TestVideo video;
        video.size = picture.size();
        video.frameCount = 1;
        video.picture = [picture](int) { return picture; };
        m_video = FileUrl::file(m_folder.filePath(QStringLiteral("a.mp4")));
        writeTestVideo(m_video.path(), video);
    }

    static QString base() { return thumbnailCacheDirectory()->path(); }

    static int filesInCache()
    {
        int count = 0;
        for (QDirIterator file(base(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
             file.hasNext(); ++count)
            file.next();
        return count;
    }

    static std::optional<Image> thumbnailOf(const FileUrl &file)
    {
        return offMainThread([&] { return ThumbnailCache::getThumbnail(file); });
    }

    QTemporaryDir m_folder;
    FileUrl m_picture;
    FileUrl m_video;
};

} // namespace

TEST_F(ThumbnailFaults, stillGiveThePictureWhenTheDiskIsFullAndLeaveNothingBehind)
{
    for (const rlim_t bytes : {rlim_t(0), rlim_t(4096)}) {
        const FullDisk fullDisk(bytes);
        const LogCapture log;
        const std::optional<Image> thumbnail = thumbnailOf(m_picture);
        ASSERT_TRUE(thumbnail);
        EXPECT_EQ(thumbnail->size(), QSize(320, 240));
        EXPECT_EQ(filesInCache(), 0);
        EXPECT_TRUE(log.lines().isEmpty()) << "a failing write is swallowed";
    }
    ASSERT_TRUE(thumbnailOf(m_picture));
    EXPECT_EQ(filesInCache(), 1) << "with room again the thumbnail is stored";
}

TEST_F(ThumbnailFaults, loseAVideosThumbnailWhenTheDiskIsFullAndLeaveNothingBehind)
{
    {
        const FullDisk fullDisk(4096);
        const LogCapture log;
        EXPECT_FALSE(thumbnailOf(m_video));
        EXPECT_EQ(filesInCache(), 0);
        EXPECT_TRUE(log.lines().isEmpty());
    }
    EXPECT_TRUE(thumbnailOf(m_video));
}

TEST_F(ThumbnailFaults, stillGiveThePictureWhenTheCacheCannotBeWritten)
{
    const UnwritableCache cache;
    const std::optional<Image> thumbnail = thumbnailOf(m_picture);
    ASSERT_TRUE(thumbnail);
    EXPECT_EQ(thumbnail->size(), QSize(320, 240));
    EXPECT_FALSE(thumbnailOf(m_video));
    EXPECT_TRUE(offMainThread([&] { return ThumbnailCache::generateVideoPreview(m_video); }))
        << "a preview needs no cache";
}

TEST_F(ThumbnailFaults, stillGiveThePictureWithoutAnyCachesFolder)
{
    const QByteArray caches = qgetenv("XDG_CACHE_HOME");
    const QByteArray home = qgetenv("HOME");
    qunsetenv("XDG_CACHE_HOME");
    qunsetenv("HOME");
    const std::optional<Image> thumbnail = thumbnailOf(m_picture);
    const std::optional<Image> ofVideo = thumbnailOf(m_video);
    qputenv("XDG_CACHE_HOME", caches);
    qputenv("HOME", home);
    ASSERT_TRUE(thumbnail);
    EXPECT_EQ(thumbnail->size(), QSize(320, 240));
    EXPECT_FALSE(ofVideo);
}

TEST_F(ThumbnailFaults, sayWhyTheCacheCannotBeCleared)
{
    const UnwritableCache cache;
    const LogCapture log;
    EXPECT_FALSE(ThumbnailCache::clearCache());
    EXPECT_EQ(log.lines(), QStringList(QStringLiteral("Error clearing cache: Not a directory")));
    EXPECT_EQ(ThumbnailCache::measureCacheSizeInMB(), 0.0);
}

// A process killed at any moment of its writing leaves the good name with nothing or with the whole.
TEST_F(ThumbnailFaults, leaveNoHalfThumbnailWhenTheProcessIsKilled)
{
    const QString path = m_folder.filePath(QStringLiteral("killed.jpg"));
    const QByteArray data(4'000'000, 'x');
    for (int round = 0; round < 20; ++round) {
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            for (;;)
                writeWholeFile(path, data);
        }
        ::usleep(useconds_t(1000 * (1 + round)));
        ::kill(child, SIGKILL);
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        const QFileInfo info(path);
        EXPECT_TRUE(!info.exists() || info.size() == data.size()) << info.size();
    }
    QStringList left = QDir(m_folder.path()).entryList({QStringLiteral("killed*")}, QDir::Files);
    left.removeAll(QStringLiteral("killed.jpg"));
    for (const QString &name : left)
        EXPECT_TRUE(isTemporaryOfWholeFile(name)) << name.toStdString() << " would never be swept";
}
