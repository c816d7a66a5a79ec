#include "platform/UserDefaults.h"

#include "AsOrdinaryUser.h"
#include "platform/Directories.h"
#include "support/Waiting.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTimeZone>

#include <gtest/gtest.h>

#include <thread>
#include <vector>

using namespace Qorvane;

namespace {

const QString folders = QStringLiteral("libraryFolders");

class UserDefaultsTest : public testing::Test
{
protected:
    QString path() const { return m_folder.filePath(QStringLiteral("Some/settings.ini")); }

    void writeFile(const QByteArray &content) const
    {
        ASSERT_TRUE(QDir().mkpath(QFileInfo(path()).path()));
        QFile file(path());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }

    QTemporaryDir m_folder;
};

TEST_F(UserDefaultsTest, anArrayOfBlobsReadsBackInOrderAfterARestart)
{
    const QList<QByteArray> blobs{"/home/anna/Bilder", "/media/\xE7\x85\xA7\xE7\x89\x87 %20#1,2;=\\",
                                  QByteArray("\0\x01\xFF\n", 4), ""};
    UserDefaults(path()).setDataArray(folders, blobs);

    EXPECT_EQ(UserDefaults(path()).dataArray(folders), blobs);
}

TEST_F(UserDefaultsTest, anEmptyArrayIsAnArrayAndNotNothing)
{
    UserDefaults(path()).setDataArray(folders, {});

    const auto read = UserDefaults(path()).dataArray(folders);
    ASSERT_TRUE(read.has_value());
    EXPECT_TRUE(read->isEmpty());
}

TEST_F(UserDefaultsTest, nothingIsThereBeforeTheFirstWrite)
{
    const UserDefaults defaults(path());
    EXPECT_FALSE(defaults.dataArray(folders).has_value());
    EXPECT_FALSE(defaults.date(folders).has_value());
    EXPECT_FALSE(defaults.string(folders).has_value());
    EXPECT_FALSE(QFile::exists(path()));
}

TEST_F(UserDefaultsTest, aShorterArrayLeavesNothingOfTheLongerOneBehind)
{
    UserDefaults defaults(path());
    defaults.setDataArray(folders, {"a", "b", "c"});
    defaults.setDataArray(folders, {"d"});

    EXPECT_EQ(UserDefaults(path()).dataArray(folders), QList<QByteArray>{"d"});
    QFile file(path());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_FALSE(file.readAll().contains("(b)"));
}

TEST_F(UserDefaultsTest, anOrdinaryWriteIsOnDisk)
{
    UserDefaults defaults(path());
    defaults.setDataArray(folders, {"/a"});
    EXPECT_TRUE(defaults.isOnDisk());
    EXPECT_TRUE(QFile::exists(path()));
}

TEST_F(UserDefaultsTest, aDateKeepsItsMillisecondsAndItsMoment)
{
    const QDateTime date(QDate(2024, 5, 1), QTime(15, 4, 5, 678), QTimeZone(8 * 3600));
    UserDefaults(path()).setDate(QStringLiteral("LastUpdateCheckDate"), date);

    EXPECT_EQ(UserDefaults(path()).date(QStringLiteral("LastUpdateCheckDate")), date);
}

TEST_F(UserDefaultsTest, aTextReadsBackWhateverItHolds)
{
    for (const QString &text : {QStringLiteral("1.2.0"), QString(QLatin1String("")),
                                QStringLiteral("a, b; c = \"d\" \\ # %20"), QStringLiteral("@ByteArray(x)"),
                                QStringLiteral("图库 🏷️\n2"), QStringLiteral("  blank  ")}) {
        UserDefaults(path()).setString(QStringLiteral("SkipUpdateVersion"), text);
        EXPECT_EQ(UserDefaults(path()).string(QStringLiteral("SkipUpdateVersion")), text)
            << text.toStdString();
    }
}

TEST_F(UserDefaultsTest, aValueOfAnotherTypeCountsAsAbsent)
{
    UserDefaults defaults(path());
    defaults.setString(QStringLiteral("text"), QStringLiteral("2024-05-01T15:04:05"));
    defaults.setDate(QStringLiteral("date"), QDateTime::currentDateTimeUtc());
    defaults.setDataArray(QStringLiteral("array"), {"a", "b"});

    const UserDefaults read(path());
    EXPECT_FALSE(read.date(QStringLiteral("text")).has_value());
    EXPECT_FALSE(read.dataArray(QStringLiteral("text")).has_value());
    EXPECT_FALSE(read.string(QStringLiteral("date")).has_value());
    EXPECT_FALSE(read.dataArray(QStringLiteral("date")).has_value());
    EXPECT_FALSE(read.string(QStringLiteral("array")).has_value());
    EXPECT_FALSE(read.date(QStringLiteral("array")).has_value());
}

TEST_F(UserDefaultsTest, writingAnotherTypeUnderTheSameKeyReplacesTheValue)
{
    UserDefaults defaults(path());
    defaults.setDataArray(folders, {"a"});
    defaults.setString(folders, QStringLiteral("text"));

    EXPECT_FALSE(defaults.dataArray(folders).has_value());
    EXPECT_EQ(UserDefaults(path()).string(folders), QStringLiteral("text"));
}

TEST_F(UserDefaultsTest, anElementThatIsNoBlobSpoilsTheWholeArray)
{
    writeFile("[libraryFolders]\nsize=2\n1=@ByteArray(/a)\n2=/b\n");
    EXPECT_FALSE(UserDefaults(path()).dataArray(folders).has_value());
}

TEST_F(UserDefaultsTest, aMissingElementOrAnImpossibleSizeSpoilsTheWholeArray)
{
    for (const char *size : {"3", "-1", "many", "9223372036854775807", ""}) {
        writeFile("[libraryFolders]\nsize=" + QByteArray(size) + "\n1=@ByteArray(/a)\n");
        EXPECT_FALSE(UserDefaults(path()).dataArray(folders).has_value()) << size;
    }
}

TEST_F(UserDefaultsTest, aFileThatIsNoIniFileReadsAsEmptyAndIsWritableAfterwards)
{
    QByteArray garbage;
    for (int i = 0; i < 5000; ++i)
        garbage.append(char(i * 31 % 256));
    for (const QByteArray &content :
         {garbage, QByteArray("[[[\n]]\n=\nlibraryFolders\n"), QByteArray("\0\0\0", 3)}) {
        writeFile(content);
        UserDefaults defaults(path());
        EXPECT_FALSE(defaults.dataArray(folders).has_value());
        defaults.setDataArray(folders, {"/a"});
        EXPECT_EQ(UserDefaults(path()).dataArray(folders), QList<QByteArray>{"/a"});
    }
}

TEST_F(UserDefaultsTest, aWriteThatCannotReachTheDiskHoldsForThisRun)
{
    // A file where the folder should be stops every user, the administrator too.
    QFile obstacle(m_folder.filePath(QStringLiteral("Some")));
    ASSERT_TRUE(obstacle.open(QIODevice::WriteOnly));

    UserDefaults defaults(path());
    defaults.setDataArray(folders, {"/a"});
    defaults.setString(QStringLiteral("text"), QStringLiteral("kept"));

    EXPECT_EQ(defaults.dataArray(folders), QList<QByteArray>{"/a"});
    EXPECT_EQ(defaults.string(QStringLiteral("text")), QStringLiteral("kept"));
    EXPECT_FALSE(defaults.isOnDisk());
    EXPECT_FALSE(QFile::exists(path()));
}

TEST_F(UserDefaultsTest, aFolderThatForbidsWritingKeepsTheValueForThisRun)
{
    const QString folder = QFileInfo(path()).path();
    ASSERT_TRUE(QDir().mkpath(folder));
    const AsOrdinaryUser user({m_folder.path(), folder});
    ASSERT_TRUE(user.worked());
    ASSERT_TRUE(QFile::setPermissions(folder, QFile::ReadOwner | QFile::ExeOwner));

    UserDefaults defaults(path());
    defaults.setString(QStringLiteral("text"), QStringLiteral("kept"));
    EXPECT_EQ(defaults.string(QStringLiteral("text")), QStringLiteral("kept"));
    EXPECT_FALSE(QFile::exists(path()));

    QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

TEST_F(UserDefaultsTest, withoutAnySettingsFolderValuesHoldForThisRun)
{
    UserDefaults defaults{QString()};
    defaults.setDataArray(folders, {"/a"});
    EXPECT_EQ(defaults.dataArray(folders), QList<QByteArray>{"/a"});
}

TEST_F(UserDefaultsTest, aRemovedValueIsGoneAlsoAfterARestart)
{
    UserDefaults defaults(path());
    defaults.setDataArray(folders, {"/a"});
    defaults.setString(QStringLiteral("text"), QStringLiteral("x"));
    defaults.remove(folders);

    EXPECT_FALSE(UserDefaults(path()).dataArray(folders).has_value());
    EXPECT_EQ(UserDefaults(path()).string(QStringLiteral("text")), QStringLiteral("x"));
}

TEST_F(UserDefaultsTest, manyThreadsMayReadAndWriteAtOnce)
{
    UserDefaults defaults(path());
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&defaults, t] {
            const QString key = QStringLiteral("key%1").arg(t);
            for (int i = 0; i < 25; ++i) {
                defaults.setDataArray(key, QList<QByteArray>(i, QByteArray::number(t)));
                EXPECT_EQ(defaults.dataArray(key).value_or(QList<QByteArray>{"none"}).size(), i);
            }
        });
    }
    // The event loop is where the toolkit would write on its own.
    drainMainQueue();
    for (std::thread &thread : threads)
        thread.join();
    drainMainQueue();
    EXPECT_EQ(defaults.dataArray(QStringLiteral("key3")), QList<QByteArray>(24, "3"));
}

TEST(UserDefaultsStandard, liesInTheUsersSettingsFolder)
{
    UserDefaults::standard().setString(QStringLiteral("where"), QStringLiteral("here"));

    const QString path = Directories::configuration().value() + QStringLiteral("/Qorvane/Qorvane.ini");
    EXPECT_EQ(UserDefaults(path).string(QStringLiteral("where")), QStringLiteral("here"));
}

} // namespace
