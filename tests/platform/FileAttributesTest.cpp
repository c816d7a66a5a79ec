#include "platform/FileAttributes.h"

#include "AsOrdinaryUser.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qorvane;

namespace {

class FileAttributesTest : public testing::Test
{
protected:
    QString path(const QString &name) const { return m_folder.filePath(name); }

    QString write(const QString &name, const QByteArray &content = "12345") const
    {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return file.fileName();
    }

    static void setModificationTime(const QString &file, time_t seconds, long nanoseconds)
    {
        const timespec times[2]{{0, UTIME_OMIT}, {seconds, nanoseconds}};
        ASSERT_EQ(::utimensat(AT_FDCWD, QFile::encodeName(file).constData(), times, 0), 0);
    }

    QTemporaryDir m_folder;
};

TEST_F(FileAttributesTest, tellsSizeAndKind)
{
    const std::optional<FileAttributes> file = fileAttributes(write(QStringLiteral("a")));
    ASSERT_TRUE(file.has_value());
    EXPECT_EQ(file->size, 5);
    EXPECT_FALSE(file->isDirectory);
    EXPECT_TRUE(fileAttributes(m_folder.path())->isDirectory);
}

TEST_F(FileAttributesTest, keepsTheFractionOfTheModificationTime)
{
    const QString file = write(QStringLiteral("a"));
    setModificationTime(file, 1'714'575'845, 123'456'789);
    EXPECT_EQ(fileAttributes(file)->modificationTime, 1714575845.123456789);
}

TEST_F(FileAttributesTest, anUntouchedFileHasExactlyTheSameTimeAtEveryReading)
{
    const QString file = write(QStringLiteral("a"));
    for (const long nanoseconds : {0L, 1L, 1'000L, 499'999'999L, 500'000'000L, 999'999'999L}) {
        setModificationTime(file, 1'714'575'845, nanoseconds);
        EXPECT_EQ(fileAttributes(file)->modificationTime, fileAttributes(file)->modificationTime);
    }
}

TEST_F(FileAttributesTest, aChangeOfAMicrosecondIsAChange)
{
    const QString file = write(QStringLiteral("a"));
    setModificationTime(file, 1'714'575'845, 100'000'000);
    const double before = fileAttributes(file)->modificationTime;
    setModificationTime(file, 1'714'575'845, 100'001'000);
    EXPECT_GT(fileAttributes(file)->modificationTime, before);
}

TEST_F(FileAttributesTest, timesBeforeTheEpochAreNegative)
{
    const QString file = write(QStringLiteral("a"));
    setModificationTime(file, -1, 500'000'000);
    EXPECT_EQ(fileAttributes(file)->modificationTime, -0.5);
}

TEST_F(FileAttributesTest, theBirthTimeIsNotTheModificationTime)
{
    const QString file = write(QStringLiteral("a"));
    setModificationTime(file, 86'400, 0);
    const std::optional<FileAttributes> attributes = fileAttributes(file);
    ASSERT_TRUE(attributes.has_value());
    EXPECT_EQ(attributes->modificationTime, 86'400);
    // Not every file system keeps one; where it is told, it is that of this test.
    const double now = double(QDateTime::currentSecsSinceEpoch());
    EXPECT_NEAR(attributes->creationTime.value_or(now), now, 60);
}

TEST_F(FileAttributesTest, aSymbolicLinkIsFollowed)
{
    const QString file = write(QStringLiteral("a"));
    ASSERT_TRUE(QFile::link(file, path(QStringLiteral("link"))));
    ASSERT_TRUE(QFile::link(m_folder.path(), path(QStringLiteral("folder link"))));
    EXPECT_EQ(fileAttributes(path(QStringLiteral("link"))), fileAttributes(file));
    EXPECT_TRUE(directoryExists(path(QStringLiteral("folder link"))));
}

TEST_F(FileAttributesTest, aDanglingLinkIsNotThere)
{
    ASSERT_TRUE(QFile::link(path(QStringLiteral("gone")), path(QStringLiteral("link"))));
    EXPECT_FALSE(fileExists(path(QStringLiteral("link"))));
    EXPECT_FALSE(fileAttributes(path(QStringLiteral("link"))).has_value());
}

TEST_F(FileAttributesTest, whatIsNotThereHasNoneAndAReason)
{
    QString error;
    EXPECT_FALSE(fileAttributes(path(QStringLiteral("gone")), &error).has_value());
    EXPECT_EQ(error, QStringLiteral("No such file or directory"));
    EXPECT_FALSE(fileAttributes(write(QStringLiteral("a")) + QStringLiteral("/b"), &error).has_value());
    EXPECT_EQ(error, QStringLiteral("Not a directory"));
    EXPECT_FALSE(fileExists(path(QStringLiteral("gone"))));
    EXPECT_FALSE(directoryExists(path(QStringLiteral("gone"))));
    EXPECT_FALSE(fileAttributes(QString()).has_value());
    EXPECT_FALSE(fileExists(QString()));
}

TEST_F(FileAttributesTest, aFileIsNoFolder)
{
    EXPECT_FALSE(directoryExists(write(QStringLiteral("a"))));
    EXPECT_TRUE(directoryExists(m_folder.path()));
}

TEST_F(FileAttributesTest, oddNamesAreNames)
{
    for (const QString &name :
         {QStringLiteral("two words"), QStringLiteral("%20#1?"), QStringLiteral("照片"),
          QStringLiteral("🏖️"), QStringLiteral("e\u0301"), QStringLiteral("line\nbreak"),
          QStringLiteral("-rf"), QStringLiteral("\uFFFD")}) {
        write(name);
        EXPECT_TRUE(fileExists(path(name))) << name.toStdString();
        EXPECT_TRUE(fileAttributes(path(name)).has_value()) << name.toStdString();
    }
}

TEST_F(FileAttributesTest, aComposedNameDoesNotNameItsDecomposedTwin)
{
    write(QStringLiteral("e\u0301"));
    EXPECT_FALSE(fileExists(path(QStringLiteral("\u00E9"))));
}

TEST_F(FileAttributesTest, aNameThatNoFileCanHaveIsNotTakenForAnother)
{
    const QString file = write(QStringLiteral("a"));
    write(QStringLiteral("?"));
    EXPECT_FALSE(fileExists(file + QChar::Null + QStringLiteral("b")));
    EXPECT_FALSE(fileAttributes(file + QChar::Null).has_value());
    // Half a surrogate pair would be written as a question mark.
    EXPECT_FALSE(fileExists(path(QString(QChar(0xD800)))));
    EXPECT_FALSE(fileAttributes(path(QString(QChar(0xD800)))).has_value());
}

TEST_F(FileAttributesTest, aFileWhoseNameIsNoUtf8IsSimplyNotThere)
{
    const QByteArray name = QFile::encodeName(m_folder.path()) + "/caf\xE9.jpg";
    const int file = ::open(name.constData(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600);
    ASSERT_GE(file, 0);
    ::close(file);

    // The text that a listing gives for it can't be turned back into its bytes.
    const QStringList listed = QDir(m_folder.path()).entryList(QDir::Files | QDir::System);
    for (const QString &entry : listed + QStringList{QString::fromLatin1("caf\xE9.jpg")}) {
        EXPECT_FALSE(fileExists(path(entry))) << entry.toStdString();
        EXPECT_FALSE(fileAttributes(path(entry)).has_value()) << entry.toStdString();
    }
    ::unlink(name.constData());
}

TEST_F(FileAttributesTest, aFileBehindAClosedFolderCannotBeAsked)
{
    const QString folder = path(QStringLiteral("closed"));
    ASSERT_TRUE(QDir().mkdir(folder));
    const QString file = write(QStringLiteral("closed/a"));
    const AsOrdinaryUser user({m_folder.path(), folder, file});
    ASSERT_TRUE(user.worked());
    ASSERT_TRUE(QFile::setPermissions(folder, QFile::Permissions()));

    QString error;
    EXPECT_FALSE(fileAttributes(file, &error).has_value());
    EXPECT_EQ(error, QStringLiteral("Permission denied"));
    EXPECT_FALSE(fileExists(file));
    QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

} // namespace
