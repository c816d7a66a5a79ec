#include "library/MediaListing.h"

#include "library/BoundByPermissions.h"
#include "library/LibraryHome.h"

#include <QFile>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

using namespace Qorvane;

namespace {

class MediaListingTest : public testing::Test
{
protected:
    QStringList listed(const QString &folder = {}) const
    {
        QStringList paths;
        const QString prefix = home.path() + u'/';
        for (const FileUrl &url : MediaListing::collectMediaFiles(home.folder(folder)))
            paths.append(url.path().mid(prefix.size()));
        paths.sort();
        return paths;
    }

    LibraryHome home;
};

} // namespace

TEST_F(MediaListingTest, takesImagesAndVideosOfEveryDepthWhateverTheCase)
{
    for (const char *name : {"1.jpg", "2.PNG", "a/3.Cr3", "a/b/c/4.MOV", "5.txt", "noextension", "jpg"})
        home.writeFile(QString::fromLatin1(name));
    EXPECT_EQ(listed(), (QStringList{QStringLiteral("1.jpg"), QStringLiteral("2.PNG"),
                                     QStringLiteral("a/3.Cr3"), QStringLiteral("a/b/c/4.MOV")}));
}

TEST_F(MediaListingTest, leavesOutHiddenFilesAndWhatHiddenFoldersHold)
{
    home.writeFile(QStringLiteral(".1.jpg"));
    home.writeFile(QStringLiteral(".git/2.jpg"));
    home.writeFile(QStringLiteral("3.jpg"));
    EXPECT_EQ(listed(), QStringList{QStringLiteral("3.jpg")});
}

TEST_F(MediaListingTest, leavesOutTheInsideOfPackages)
{
    home.writeFile(QStringLiteral("Old.photoslibrary/originals/1.jpg"));
    home.writeFile(QStringLiteral("Tool.APP/icon.png"));
    home.writeFile(QStringLiteral("plain/2.jpg"));
    EXPECT_EQ(listed(), QStringList{QStringLiteral("plain/2.jpg")});
}

TEST_F(MediaListingTest, takesAFolderNamedLikeAFileAndWhatIsInside)
{
    home.writeFile(QStringLiteral("a.jpg/inside.png"));
    EXPECT_EQ(listed(), (QStringList{QStringLiteral("a.jpg"), QStringLiteral("a.jpg/inside.png")}));
}

TEST_F(MediaListingTest, givesNothingForAFolderThatIsGone)
{
    EXPECT_TRUE(MediaListing::collectMediaFiles(home.folder(QStringLiteral("gone"))).isEmpty());
    EXPECT_EQ(home.log().lines(), QStringList());
}

TEST_F(MediaListingTest, aFolderThatCannotBeReadCostsOnlyWhatItHolds)
{
    home.writeFile(QStringLiteral("locked/1.jpg"));
    home.writeFile(QStringLiteral("open/2.jpg"));
    ASSERT_EQ(::chmod(QFile::encodeName(home.path(QStringLiteral("locked"))).constData(), 0), 0);
    const QStringList found = [this] {
        const BoundByPermissions bound;
        return listed();
    }();
    ::chmod(QFile::encodeName(home.path(QStringLiteral("locked"))).constData(), 0700);
    EXPECT_EQ(found, QStringList{QStringLiteral("open/2.jpg")});
}

TEST_F(MediaListingTest, linksToFilesCountAndLinksToFoldersAreNotEntered)
{
    home.writeFile(QStringLiteral("real/1.jpg"));
    ASSERT_EQ(::symlink(QFile::encodeName(home.path(QStringLiteral("real/1.jpg"))).constData(),
                        QFile::encodeName(home.path(QStringLiteral("link.jpg"))).constData()),
              0);
    ASSERT_EQ(::symlink(QFile::encodeName(home.path()).constData(),
                        QFile::encodeName(home.path(QStringLiteral("real/up"))).constData()),
              0);
    EXPECT_EQ(listed(), (QStringList{QStringLiteral("link.jpg"), QStringLiteral("real/1.jpg")}));
}

TEST_F(MediaListingTest, entersALinkThatIsItselfListed)
{
    home.writeFile(QStringLiteral("real/1.jpg"));
    ASSERT_EQ(::symlink(QFile::encodeName(home.path(QStringLiteral("real"))).constData(),
                        QFile::encodeName(home.path(QStringLiteral("link"))).constData()),
              0);
    EXPECT_EQ(listed(QStringLiteral("link")), QStringList{QStringLiteral("link/1.jpg")});
}

TEST_F(MediaListingTest, aNameThatIsNotUtf8LeavesALineAndNothingElseIsLost)
{
    home.writeFile(QStringLiteral("good.jpg"));
    const QByteArray folder = QFile::encodeName(home.path()) + '/';
    for (const QByteArray &name :
         {QByteArray("bad\xff.jpg"), QByteArray("bad\xff.txt"), QByteArray("cut\xe4\xb8")}) {
        FILE *file = std::fopen((folder + name).constData(), "w");
        ASSERT_NE(file, nullptr);
        std::fclose(file);
    }
    ASSERT_EQ(::mkdir((folder + "dir\xff").constData(), 0700), 0);

    EXPECT_EQ(listed(), QStringList{QStringLiteral("good.jpg")});

    QStringList lines = home.log().lines();
    lines.sort();
    const QString skipped =
        QStringLiteral("⚠️ 文件名不是有效的 UTF-8，已跳过: ") + home.path() + u'/';
    EXPECT_EQ(lines, (QStringList{skipped + QStringLiteral("bad\uFFFD.jpg"),
                                  skipped + QStringLiteral("dir\uFFFD")}));
}

TEST_F(MediaListingTest, aNameThatBeginsLikeAByteOrderMarkIsKeptWhole)
{
    home.writeFile(QStringLiteral("\uFEFFmark.jpg"));
    EXPECT_EQ(listed(), QStringList{QStringLiteral("\uFEFFmark.jpg")});
}
