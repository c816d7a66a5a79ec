#include "media/WholeFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

using namespace Qorvane;

namespace {

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

TEST(WholeFile, writesWhatItIsGivenForTheOwnerAlone)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("照片.jpg"));
    const QByteArray data = QByteArray("data").repeated(100000);
    ASSERT_TRUE(writeWholeFile(path, data));
    EXPECT_EQ(contentOf(path), data);
    EXPECT_EQ(QFileInfo(path).permissions() &
                  (QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther),
              QFile::Permissions());
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden).size(), 1)
        << "no temporary file is left";
}

TEST(WholeFile, replacesWhatWasThere)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("a"));
    ASSERT_TRUE(writeWholeFile(path, "older and longer"));
    ASSERT_TRUE(writeWholeFile(path, "newer"));
    EXPECT_EQ(contentOf(path), QByteArray("newer"));
}

TEST(WholeFile, neverShowsHalfOfIt)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("a"));
    const QByteArray one = QByteArray(300000, '1');
    const QByteArray two = QByteArray(300000, '2');
    ASSERT_TRUE(writeWholeFile(path, one));

    std::atomic_int failures = 0;
    std::vector<std::thread> writers;
    for (const QByteArray &data : {one, two}) {
        writers.emplace_back([&path, data, &failures] {
            for (int i = 0; i < 25; ++i) {
                if (!writeWholeFile(path, data))
                    ++failures;
            }
        });
    }
    for (int i = 0; i < 200; ++i) {
        const QByteArray seen = contentOf(path);
        ASSERT_TRUE(seen == one || seen == two) << seen.size();
    }
    for (std::thread &writer : writers)
        writer.join();
    EXPECT_EQ(failures, 0);
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden).size(), 1);
}

TEST(WholeFile, saysWhyItCannotWrite)
{
    const QTemporaryDir folder;
    QString error;
    EXPECT_FALSE(writeWholeFile(folder.filePath(QStringLiteral("missing/a")), "data", &error));
    EXPECT_EQ(error, QStringLiteral("No such file or directory"));
    // A folder in the place of the file: only the rename fails, and the temporary file must go all the same.
    ASSERT_TRUE(QDir(folder.path()).mkpath(QStringLiteral("folder/inside")));
    EXPECT_FALSE(writeWholeFile(folder.filePath(QStringLiteral("folder")), "data", &error));
    EXPECT_EQ(error, QStringLiteral("Is a directory"));
    EXPECT_TRUE(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden).isEmpty());
}

TEST(WholeFile, knowsItsTemporaryNames)
{
    EXPECT_TRUE(isTemporaryOfWholeFile(QStringLiteral("abc.jpg.4711-3.partial")));
    EXPECT_FALSE(isTemporaryOfWholeFile(QStringLiteral("abc.jpg")));
}
