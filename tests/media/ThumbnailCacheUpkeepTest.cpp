#include "media/ThumbnailCache.h"
#include "media/ThumbnailPaths.h"
#include "support/LogCapture.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

using namespace Qorvane;

namespace {

class ThumbnailCacheUpkeepTest : public testing::Test
{
protected:
    void SetUp() override { QDir(base()).removeRecursively(); }

    static QString base() { return thumbnailCacheDirectory()->path(); }

    /// A file of so many bytes at `name` below the base.
    static QString write(const QString &name, int bytes)
    {
        const QString path = base() + u'/' + name;
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(QByteArray(bytes, 'x'));
        return path;
    }
};

constexpr double megabytes(int bytes)
{
    return bytes * 9.5367431640625e-07;
}

} // namespace

TEST_F(ThumbnailCacheUpkeepTest, isZeroWithoutACache)
{
    EXPECT_EQ(ThumbnailCache::measureCacheSizeInMB(), 0.0);
    EXPECT_FALSE(QFileInfo::exists(base())) << "measuring doesn't create it";
}

TEST_F(ThumbnailCacheUpkeepTest, countsBytesIn1048576s)
{
    write(QStringLiteral("a/b.jpg"), 1048576);
    EXPECT_EQ(ThumbnailCache::measureCacheSizeInMB(), 1.0);
}

TEST_F(ThumbnailCacheUpkeepTest, addsUpThumbnailsAtEveryDepthInEitherCase)
{
    write(QStringLiteral("a/b.jpg"), 1000);
    write(QStringLiteral("a/c.JPG"), 200);
    write(QStringLiteral("d.jpg"), 30);
    write(QStringLiteral("e/f/g/.hidden.jpg"), 4);
    EXPECT_EQ(ThumbnailCache::measureCacheSizeInMB(), megabytes(1234));
}

TEST_F(ThumbnailCacheUpkeepTest, countsNothingElse)
{
    write(QStringLiteral("a/b.jpg"), 1);
    write(QStringLiteral("a/preview.jpg"), 1000);
    write(QStringLiteral("a/b.jpeg"), 1000);
    write(QStringLiteral("a/b.png"), 1000);
    write(QStringLiteral("a/jpg"), 1000);
    write(QStringLiteral("a/.jpg"), 1000);
    write(QStringLiteral("a/b.jpg.4711-3.partial"), 1000);
    QDir(base()).mkpath(QStringLiteral("a/folder.jpg"));
    EXPECT_EQ(ThumbnailCache::measureCacheSizeInMB(), megabytes(1));
}

TEST_F(ThumbnailCacheUpkeepTest, countsAPreviewOfAnotherCase)
{
    // Only that exact name is left out.
    write(QStringLiteral("a/Preview.jpg"), 1000);
    EXPECT_EQ(ThumbnailCache::measureCacheSizeInMB(), megabytes(1000));
}

TEST_F(ThumbnailCacheUpkeepTest, doesNotFollowLinksToFolders)
{
    write(QStringLiteral("a/b.jpg"), 1000);
    ASSERT_TRUE(QFile::link(base(), base() + QStringLiteral("/a/loop")));
    EXPECT_EQ(ThumbnailCache::measureCacheSizeInMB(), megabytes(1000));
}

TEST_F(ThumbnailCacheUpkeepTest, sweepsWhatACrashLeftHalfWrittenButNothingInWork)
{
    const QString fresh = write(QStringLiteral("a/b.jpg.4711-3.partial"), 10);
    const QString old = write(QStringLiteral("a/c.jpg.4711-4.partial"), 10);
    const QString thumbnail = write(QStringLiteral("a/d.jpg"), 10);
    for (const QString &path : {old, thumbnail}) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_TRUE(
            file.setFileTime(QDateTime::currentDateTime().addDays(-1), QFileDevice::FileModificationTime));
    }
    ThumbnailCache::measureCacheSizeInMB();
    EXPECT_TRUE(QFileInfo::exists(fresh));
    EXPECT_FALSE(QFileInfo::exists(old));
    EXPECT_TRUE(QFileInfo::exists(thumbnail));
}

TEST_F(ThumbnailCacheUpkeepTest, leavesAnEmptyBaseAfterClearing)
{
    write(QStringLiteral("a/b.jpg"), 1000);
    write(QStringLiteral("a/.hidden"), 1000);
    write(QStringLiteral("c/d/e"), 1000);
    const LogCapture log;
    EXPECT_TRUE(ThumbnailCache::clearCache());
    EXPECT_TRUE(QFileInfo(base()).isDir());
    EXPECT_TRUE(QDir(base()).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot));
    EXPECT_EQ(ThumbnailCache::measureCacheSizeInMB(), 0.0);
    EXPECT_TRUE(log.lines().isEmpty());
}

TEST_F(ThumbnailCacheUpkeepTest, saysSoWhenThereIsNoCacheToClear)
{
    const LogCapture log;
    EXPECT_FALSE(ThumbnailCache::clearCache());
    EXPECT_EQ(log.lines(), QStringList(QStringLiteral("Error clearing cache: No such file or directory")));
    EXPECT_FALSE(QFileInfo::exists(base())) << "the second step isn't tried";
}

TEST_F(ThumbnailCacheUpkeepTest, isNothingWithoutACachesFolder)
{
    const QByteArray caches = qgetenv("XDG_CACHE_HOME");
    const QByteArray home = qgetenv("HOME");
    qunsetenv("XDG_CACHE_HOME");
    qunsetenv("HOME");
    EXPECT_FALSE(ThumbnailCache::measureCacheSizeInMB());
    EXPECT_FALSE(ThumbnailCache::clearCache());
    qputenv("XDG_CACHE_HOME", caches);
    qputenv("HOME", home);
}
