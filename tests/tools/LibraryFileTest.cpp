#include "headless/LibraryFile.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qorvane;

namespace {

class LibraryFileTest : public testing::Test
{
protected:
    LibraryFileTest()
    {
        QDir(m_place.path()).mkpath(QStringLiteral("real/sub"));
        QFile file(path("real/sub/a.jpg"));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        EXPECT_TRUE(QFile::link(path("real"), path("link")));
    }

    QString path(const char *name) const { return m_place.filePath(QString::fromLatin1(name)); }
    FileUrl folder(const char *name) const { return FileUrl::directory(path(name)); }

private:
    QTemporaryDir m_place;
};

} // namespace

TEST_F(LibraryFileTest, AFileBelowARootKeepsItsPath)
{
    EXPECT_EQ(pathInLibrary(path("real/sub/a.jpg"), {folder("real")}), path("real/sub/a.jpg"));
    EXPECT_EQ(pathInLibrary(path("real/gone.jpg"), {folder("real")}), path("real/gone.jpg"));
    EXPECT_EQ(pathInLibrary(QStringLiteral("/a.jpg"), {FileUrl::directory(QStringLiteral("/"))}),
              QStringLiteral("/a.jpg"));
}

TEST_F(LibraryFileTest, AFileReachedByAnotherWayHasTheLibrarysPath)
{
    EXPECT_EQ(pathInLibrary(path("real/sub/a.jpg"), {folder("link")}), path("link/sub/a.jpg"));
    EXPECT_EQ(pathInLibrary(path("link/sub/a.jpg"), {folder("real")}), path("real/sub/a.jpg"));
}

TEST_F(LibraryFileTest, AFileOfNoRootHasNone)
{
    EXPECT_EQ(pathInLibrary(path("real/sub/a.jpg"), {}), std::nullopt);
    EXPECT_EQ(pathInLibrary(path("real/sub/a.jpg"), {folder("real/su"), folder("gone")}), std::nullopt);
    EXPECT_EQ(pathInLibrary(path("gone/a.jpg"), {folder("real")}), std::nullopt);
}
