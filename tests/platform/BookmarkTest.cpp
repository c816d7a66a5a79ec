#include "platform/Bookmark.h"

#include "AsOrdinaryUser.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>
using namespace Qorvane;

namespace {

class BookmarkTest : public testing::Test
{
protected:
    FileUrl makeFolder(const QString &name) const
    {
        const QString path = m_folder.filePath(name);
        EXPECT_TRUE(QDir().mkpath(path));
        return FileUrl::directory(path);
    }

    QTemporaryDir m_folder;
};

TEST_F(BookmarkTest, isThePathAsUtf8AndResolvesToTheSameFolder)
{
    for (const QString &name :
         {QStringLiteral("plain"), QStringLiteral("with blank %20 #1?"), QStringLiteral("照片"),
          QStringLiteral("🏖️ été"), QStringLiteral("e\u0301te\u0301")}) {
        const FileUrl folder = makeFolder(name);
        const std::optional<QByteArray> bookmark = Bookmark::create(folder);
        ASSERT_TRUE(bookmark.has_value());
        EXPECT_EQ(*bookmark, folder.path().toUtf8());
        EXPECT_EQ(Bookmark::resolve(*bookmark), folder);
    }
}

TEST_F(BookmarkTest, cannotBeMadeOfWhatIsNotThere)
{
    QString error;
    EXPECT_FALSE(
        Bookmark::create(FileUrl::directory(m_folder.filePath(QStringLiteral("gone"))), &error).has_value());
    EXPECT_EQ(error, QStringLiteral("No such file or directory"));
}

TEST_F(BookmarkTest, doesNotResolveOnceTheFolderIsGone)
{
    const FileUrl folder = makeFolder(QStringLiteral("volume"));
    const QByteArray bookmark = Bookmark::create(folder).value();
    QDir().rmdir(folder.path());

    QString error;
    EXPECT_FALSE(Bookmark::resolve(bookmark, &error).has_value());
    EXPECT_EQ(error, QStringLiteral("No such file or directory"));
}

TEST_F(BookmarkTest, doesNotResolveBytesThatAreNoPath)
{
    for (const QByteArray &bytes : {QByteArray(), QByteArray("relative/path"), QByteArray("/\xFF\xFE"),
                                    QByteArray("bookmark of another system")}) {
        QString error;
        EXPECT_FALSE(Bookmark::resolve(bytes, &error).has_value());
        EXPECT_FALSE(error.isEmpty());
    }
}

TEST_F(BookmarkTest, aPathCutByANulByteIsNotTakenForItsBeginning)
{
    QByteArray bytes = makeFolder(QStringLiteral("a")).path().toUtf8();
    bytes.append('\0').append("b");
    EXPECT_FALSE(Bookmark::resolve(bytes).has_value());
    EXPECT_FALSE(Bookmark::startAccessing(FileUrl::directory(QString::fromUtf8(bytes))));
}

TEST_F(BookmarkTest, aFolderThatMayNotBeReadCannotBeAccessed)
{
    const FileUrl folder = makeFolder(QStringLiteral("closed"));
    EXPECT_TRUE(Bookmark::startAccessing(folder));
    EXPECT_FALSE(
        Bookmark::startAccessing(FileUrl::directory(m_folder.filePath(QStringLiteral("not there")))));

    const AsOrdinaryUser user({m_folder.path(), folder.path()});
    ASSERT_TRUE(user.worked());
    ASSERT_TRUE(QFile::setPermissions(folder.path(), QFile::WriteOwner));
    EXPECT_FALSE(Bookmark::startAccessing(folder));
    ASSERT_TRUE(QFile::setPermissions(folder.path(), QFile::ReadOwner | QFile::ExeOwner));
    EXPECT_TRUE(Bookmark::startAccessing(folder));
}

} // namespace
