#include "platform/Directories.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <array>

using namespace Qorvane;

namespace {

class DirectoriesTest : public testing::Test
{
protected:
    DirectoriesTest()
    {
        for (std::size_t i = 0; i < names.size(); ++i)
            m_before[i] = qgetenv(names[i]);
    }
    ~DirectoriesTest() override
    {
        for (std::size_t i = 0; i < names.size(); ++i) {
            if (m_before[i].isNull())
                qunsetenv(names[i]);
            else
                qputenv(names[i], m_before[i]);
        }
    }

    static constexpr std::array names{
        "HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_CONFIG_HOME", "XDG_RUNTIME_DIR", "TMPDIR"};
    std::array<QByteArray, names.size()> m_before;
};

TEST_F(DirectoriesTest, areWhereTheEnvironmentSays)
{
    qputenv("XDG_DATA_HOME", "/data here");
    qputenv("XDG_CACHE_HOME", "/缓存");
    qputenv("XDG_CONFIG_HOME", "/config/");
    EXPECT_EQ(Directories::applicationSupport(), QStringLiteral("/data here"));
    EXPECT_EQ(Directories::caches(), QStringLiteral("/缓存"));
    EXPECT_EQ(Directories::configuration(), QStringLiteral("/config"));
}

TEST_F(DirectoriesTest, areBelowTheHomeFolderOtherwise)
{
    qputenv("HOME", "/home/anna/");
    // A relative value is to be passed over as if it weren't there.
    qunsetenv("XDG_DATA_HOME");
    qputenv("XDG_CACHE_HOME", "");
    qputenv("XDG_CONFIG_HOME", "relative/config");
    EXPECT_EQ(Directories::applicationSupport(), QStringLiteral("/home/anna/.local/share"));
    EXPECT_EQ(Directories::caches(), QStringLiteral("/home/anna/.cache"));
    EXPECT_EQ(Directories::configuration(), QStringLiteral("/home/anna/.config"));
}

TEST_F(DirectoriesTest, areNothingWithoutAHome)
{
    for (const char *home : {"", "relative"}) {
        qputenv("HOME", home);
        qunsetenv("XDG_DATA_HOME");
        qunsetenv("XDG_CACHE_HOME");
        qunsetenv("XDG_CONFIG_HOME");
        EXPECT_FALSE(Directories::applicationSupport().has_value());
        EXPECT_FALSE(Directories::caches().has_value());
        EXPECT_FALSE(Directories::configuration().has_value());
    }
}

TEST_F(DirectoriesTest, areNotCreatedByAsking)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("data"));
    qputenv("XDG_DATA_HOME", QFile::encodeName(path));
    EXPECT_EQ(Directories::applicationSupport(), path);
    EXPECT_FALSE(QFile::exists(path));
}

TEST_F(DirectoriesTest, theRuntimeFolderIsTheSessions)
{
    EXPECT_EQ(Directories::runtime(), qEnvironmentVariable("XDG_RUNTIME_DIR"));
}

TEST_F(DirectoriesTest, withoutASessionTheRuntimeFolderIsOneOfOurOwn)
{
    const QTemporaryDir temporary;
    qputenv("TMPDIR", QFile::encodeName(temporary.path()));
    for (const char *useless : {"", "relative", "/nowhere/at/all"}) {
        qputenv("XDG_RUNTIME_DIR", useless);
        const std::optional<QString> folder = Directories::runtime();
        ASSERT_TRUE(folder);
        EXPECT_TRUE(folder->startsWith(temporary.path()));
        EXPECT_EQ(QFileInfo(*folder).permissions() & (QFile::ReadGroup | QFile::ReadOther), 0);
        EXPECT_TRUE(QFileInfo(*folder).isDir());
    }
}

TEST_F(DirectoriesTest, aFolderThatOthersMayWriteToIsNoRuntimeFolder)
{
    const QTemporaryDir temporary;
    qputenv("TMPDIR", QFile::encodeName(temporary.path()));
    const QString open = temporary.filePath(QStringLiteral("open"));
    ASSERT_TRUE(QDir().mkpath(open));
    ASSERT_TRUE(QFile::setPermissions(open, QFile::Permissions(0x7777)));
    qputenv("XDG_RUNTIME_DIR", QFile::encodeName(open));
    EXPECT_NE(Directories::runtime(), open);

    qunsetenv("XDG_RUNTIME_DIR");
    const std::optional<QString> own = Directories::runtime();
    ASSERT_TRUE(own);
    ASSERT_TRUE(QFile::setPermissions(*own, QFile::Permissions(0x7777)));
    EXPECT_FALSE(Directories::runtime());
    ASSERT_TRUE(QDir().rmdir(*own));
    ASSERT_TRUE(QFile::link(open, *own));
    EXPECT_FALSE(Directories::runtime());
}

TEST_F(DirectoriesTest, createMakesEveryFolderOnTheWayAndMayBeRepeated)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("a b/照片/%20 #1"));
    EXPECT_TRUE(Directories::create(path));
    EXPECT_TRUE(QDir(path).exists());
    EXPECT_TRUE(Directories::create(path));
}

TEST_F(DirectoriesTest, createFailsWhereAFileStandsInTheWay)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("file")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    EXPECT_FALSE(Directories::create(file.fileName()));
    EXPECT_FALSE(Directories::create(file.fileName() + QStringLiteral("/below")));
}

} // namespace
