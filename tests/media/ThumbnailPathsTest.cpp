#include "media/ThumbnailPaths.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

using namespace Qorvane;

namespace {

/// Sets an environment variable for one test.
class ScopedVariable
{
public:
    ScopedVariable(const char *name, const QByteArray &value)
        : m_name(name)
        , m_old(qgetenv(name))
    {
        qputenv(m_name, value);
    }
    ~ScopedVariable() { qputenv(m_name, m_old); }
    ScopedVariable(const ScopedVariable &) = delete;
    ScopedVariable &operator=(const ScopedVariable &) = delete;

private:
    const char *m_name;
    QByteArray m_old;
};

} // namespace

// The digests were computed with coreutils' sha256sum.
TEST(Sha256Hex, isTheLowerCaseDigestOfTheTextsUtf8)
{
    EXPECT_EQ(sha256Hex(QString()),
              QStringLiteral("e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"));
    EXPECT_EQ(sha256Hex(QStringLiteral("abc")),
              QStringLiteral("ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"));
    EXPECT_EQ(sha256Hex(QStringLiteral("/照片/é.jpg")),
              QStringLiteral("073cea405f746090fd8b970162137d225e7141ee29e3953092cc3ca04c72c981"));
}

TEST(Sha256Hex, doesNotNormaliseUnicode)
{
    // The same name with its accent as a combining character: other bytes, another digest.
    EXPECT_EQ(sha256Hex(QStringLiteral("/照片/e\u0301.jpg")),
              QStringLiteral("6f9aed20f04370a3a49d071415a4b3b67fed45583941d0aafcde14bde171cf5a"));
}

TEST(ThumbnailPaths, placeTheBaseDirectlyBelowTheCachesFolderWithoutCreatingIt)
{
    const ScopedVariable caches("XDG_CACHE_HOME", QFile::encodeName(QDir::homePath()) + "/untouched");
    const std::optional<FileUrl> base = thumbnailCacheDirectory();
    ASSERT_TRUE(base);
    EXPECT_EQ(base->path(),
              QFile::decodeName(qgetenv("XDG_CACHE_HOME")) + QStringLiteral("/com.qorvane.thumbnails"));
    EXPECT_FALSE(QFileInfo::exists(base->path()));
}

TEST(ThumbnailPaths, joinTheHashOfTheFoldersPathAndTheHashOfTheFilesPath)
{
    const std::optional<FileUrl> url = thumbnailURL(FileUrl::file(QStringLiteral("/照片/é.jpg")));
    ASSERT_TRUE(url);
    EXPECT_EQ(url->path(), thumbnailCacheDirectory()->path() + u'/' + sha256Hex(QStringLiteral("/照片")) +
                               u'/' + sha256Hex(QStringLiteral("/照片/é.jpg")) + QStringLiteral(".jpg"));
}

TEST(ThumbnailPaths, createTheFoldersDirectoryWhenAskedForAPath)
{
    const std::optional<FileUrl> url =
        thumbnailURL(FileUrl::file(QStringLiteral("/created/by/asking/a.jpg")));
    ASSERT_TRUE(url);
    EXPECT_TRUE(QFileInfo(url->deletingLastPathComponent().path()).isDir());
    EXPECT_FALSE(QFileInfo::exists(url->path()));
}

TEST(ThumbnailPaths, areFlatSoThatASubfolderHasAFirstLevelDirectoryOfItsOwn)
{
    const std::optional<FileUrl> outer = thumbnailDirectory(FileUrl::directory(QStringLiteral("/photos")));
    const std::optional<FileUrl> inner =
        thumbnailDirectory(FileUrl::directory(QStringLiteral("/photos/2024")));
    ASSERT_TRUE(outer && inner);
    EXPECT_EQ(inner->deletingLastPathComponent(), *thumbnailCacheDirectory());
    EXPECT_NE(outer, inner);
}

TEST(ThumbnailPaths, tellTwinsInTwoFoldersApartByBothHashes)
{
    const FileUrl one = *thumbnailURL(FileUrl::file(QStringLiteral("/a/twin.jpg")));
    const FileUrl other = *thumbnailURL(FileUrl::file(QStringLiteral("/b/twin.jpg")));
    EXPECT_NE(one.lastPathComponent(), other.lastPathComponent());
    EXPECT_NE(one.deletingLastPathComponent(), other.deletingLastPathComponent());
}

TEST(ThumbnailPaths, giveTwoSpellingsOfOnePathTwoEntries)
{
    EXPECT_NE(thumbnailURL(FileUrl::file(QStringLiteral("/a/b/../c.jpg"))),
              thumbnailURL(FileUrl::file(QStringLiteral("/a/c.jpg"))));
    EXPECT_NE(thumbnailURL(FileUrl::file(QStringLiteral("/a/C.jpg"))),
              thumbnailURL(FileUrl::file(QStringLiteral("/a/c.jpg"))));
}

TEST(ThumbnailPaths, areNothingWithoutACachesFolder)
{
    const ScopedVariable noCaches("XDG_CACHE_HOME", QByteArray());
    const ScopedVariable noHome("HOME", QByteArray());
    EXPECT_FALSE(thumbnailCacheDirectory());
    EXPECT_FALSE(thumbnailDirectory(FileUrl::directory(QStringLiteral("/a"))));
    EXPECT_FALSE(thumbnailURL(FileUrl::file(QStringLiteral("/a/b.jpg"))));
}

TEST(ThumbnailPaths, areAnsweredAlsoWhenTheFolderCannotBeCreated)
{
    // A file where the caches folder should be: whoever runs the tests, nothing can be made below it.
    const QString inTheWay = QDir::homePath() + QStringLiteral("/in-the-way");
    QFile file(inTheWay);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();
    const ScopedVariable caches("XDG_CACHE_HOME", QFile::encodeName(inTheWay));

    const std::optional<FileUrl> directory = thumbnailDirectory(FileUrl::directory(QStringLiteral("/a")));
    ASSERT_TRUE(directory);
    EXPECT_TRUE(directory->path().startsWith(inTheWay));
    EXPECT_FALSE(QFileInfo::exists(directory->path()));
}
