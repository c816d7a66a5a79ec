#include "platform/FileUrl.h"

#include <QUrl>

#include <gtest/gtest.h>

#include <unordered_set>

using namespace Qorvane;

namespace {

QStringList oddNames()
{
    return {QStringLiteral("plain.jpg"),         QStringLiteral("two words.jpg"),
            QStringLiteral("100%.jpg"),          QStringLiteral("%20.jpg"),
            QStringLiteral("#1?x=y&z.jpg"),      QStringLiteral("a;b=c,d'e(f)!g*h$i@j+k~l.jpg"),
            QStringLiteral("[CLS]\\|^`<>{}\"."), QStringLiteral("照片.jpg"),
            QStringLiteral("🏖️ été.jpg"), QStringLiteral("e\u0301te\u0301.jpg"),
            QStringLiteral("line\nbreak\t.jpg"), QStringLiteral("my-photos_1.0.jpg"),
            QStringLiteral("a:b.jpg"),           QStringLiteral("\u00A0.jpg")};
}

TEST(FileUrl, keepsThePathExactlyAsGiven)
{
    for (const QString &name : oddNames()) {
        const QString path = QStringLiteral("/library/../library/./") + name;
        EXPECT_EQ(FileUrl::file(path).path(), path);
        EXPECT_EQ(FileUrl::directory(path).path(), path);
    }
}

TEST(FileUrl, theAbsoluteTextIsAnAddressThatLeadsBackToThePath)
{
    for (const QString &name : oddNames()) {
        const QString path = QStringLiteral("/library/") + name;
        const QUrl url(FileUrl::file(path).absoluteString(), QUrl::StrictMode);
        EXPECT_TRUE(url.isValid()) << name.toStdString();
        EXPECT_EQ(url.toLocalFile(), path) << name.toStdString();
        EXPECT_FALSE(url.hasQuery() || url.hasFragment()) << name.toStdString();
    }
}

TEST(FileUrl, theAbsoluteTextIsPlainAsciiWithOnlyWhatMustBeEscaped)
{
    EXPECT_EQ(FileUrl::file(QStringLiteral("/a b/100%#?é猫.jpg")).absoluteString(),
              QStringLiteral("file:///a%20b/100%25%23%3F%C3%A9%E7%8C%AB.jpg"));
    EXPECT_EQ(FileUrl::file(QStringLiteral("/x-y_z.~/!$&'()*+,;=:@")).absoluteString(),
              QStringLiteral("file:///x-y_z.~/!$&'()*+,;=:@"));
    EXPECT_EQ(FileUrl::file(QStringLiteral("/[a]\\^`{|}\"<>")).absoluteString(),
              QStringLiteral("file:///%5Ba%5D%5C%5E%60%7B%7C%7D%22%3C%3E"));
}

TEST(FileUrl, aFolderHasATrailingSlashInItsAbsoluteTextOnly)
{
    const FileUrl folder = FileUrl::directory(QStringLiteral("/Users/me/Pictures"));
    EXPECT_EQ(folder.absoluteString(), QStringLiteral("file:///Users/me/Pictures/"));
    EXPECT_EQ(folder.path(), QStringLiteral("/Users/me/Pictures"));
    EXPECT_TRUE(folder.hasDirectoryPath());
    EXPECT_EQ(FileUrl::file(QStringLiteral("/Users/me/Pictures")).absoluteString(),
              QStringLiteral("file:///Users/me/Pictures"));
}

TEST(FileUrl, trailingSlashesComeOffAFolderButNotOffTheRoot)
{
    EXPECT_EQ(FileUrl::directory(QStringLiteral("/a/b//")), FileUrl::directory(QStringLiteral("/a/b")));
    EXPECT_EQ(FileUrl::directory(QStringLiteral("/")).path(), QStringLiteral("/"));
    EXPECT_EQ(FileUrl::directory(QStringLiteral("///")).path(), QStringLiteral("/"));
    EXPECT_EQ(FileUrl::directory(QStringLiteral("/")).absoluteString(), QStringLiteral("file:///"));
}

TEST(FileUrl, namesTheLastComponent)
{
    EXPECT_EQ(FileUrl::file(QStringLiteral("/a/b c.jpg")).lastPathComponent(), QStringLiteral("b c.jpg"));
    EXPECT_EQ(FileUrl::directory(QStringLiteral("/a/b/")).lastPathComponent(), QStringLiteral("b"));
    EXPECT_EQ(FileUrl::directory(QStringLiteral("/")).lastPathComponent(), QStringLiteral("/"));
}

TEST(FileUrl, theExtensionIsWhatFollowsTheLastDotOfTheName)
{
    const auto extension = [](const char *path) {
        return FileUrl::file(QString::fromUtf8(path)).pathExtension();
    };
    EXPECT_EQ(extension("/a/b.jpg"), QStringLiteral("jpg"));
    EXPECT_EQ(extension("/a/b.tar.GZ"), QStringLiteral("GZ"));
    EXPECT_EQ(extension("/a.b/c"), QString());
    EXPECT_EQ(extension("/a/.jpg"), QString());
    EXPECT_EQ(extension("/a/b."), QString());
    EXPECT_EQ(extension("/a/b"), QString());
    EXPECT_EQ(extension("/a/Mr. Smith"), QString());
    EXPECT_EQ(extension("/a/照片.照片"), QStringLiteral("照片"));
    EXPECT_EQ(extension("/a/__b.jpg.bak"), QStringLiteral("bak"));
}

TEST(FileUrl, theContainingFolderIsOneLevelUp)
{
    EXPECT_EQ(FileUrl::file(QStringLiteral("/a/b/c.jpg")).deletingLastPathComponent(),
              FileUrl::directory(QStringLiteral("/a/b")));
    EXPECT_EQ(FileUrl::file(QStringLiteral("/c.jpg")).deletingLastPathComponent(),
              FileUrl::directory(QStringLiteral("/")));
    EXPECT_EQ(FileUrl::directory(QStringLiteral("/")).deletingLastPathComponent(),
              FileUrl::directory(QStringLiteral("/")));
}

TEST(FileUrl, equalityLooksAtPathAndKindWithoutAnyNormalisation)
{
    EXPECT_EQ(FileUrl::file(QStringLiteral("/a")), FileUrl::file(QStringLiteral("/a")));
    EXPECT_NE(FileUrl::file(QStringLiteral("/a")), FileUrl::directory(QStringLiteral("/a")));
    EXPECT_NE(FileUrl::file(QStringLiteral("/é")), FileUrl::file(QStringLiteral("/e\u0301")));
    EXPECT_NE(FileUrl::file(QStringLiteral("/A")), FileUrl::file(QStringLiteral("/a")));
    EXPECT_NE(FileUrl::file(QStringLiteral("/a/./b")), FileUrl::file(QStringLiteral("/a/b")));
}

TEST(FileUrl, equalAddressesAreOneKey)
{
    std::unordered_set<FileUrl> keys;
    for (const QString &name : oddNames()) {
        keys.insert(FileUrl::file(name));
        keys.insert(FileUrl::file(QString(name)));
    }
    EXPECT_EQ(keys.size(), size_t(oddNames().size()));
}

TEST(FileUrl, anEmptyOneIsEmpty)
{
    EXPECT_TRUE(FileUrl().isEmpty());
    EXPECT_EQ(FileUrl(), FileUrl::file(QString()));
}

} // namespace
