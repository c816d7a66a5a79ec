#include "platform/Bundle.h"

#include "platform/Directories.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qorvane;

namespace {

void writeFile(const QString &path)
{
    ASSERT_TRUE(QDir().mkpath(QFileInfo(path).path()));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
}

TEST(Bundle, theFirstFolderThatHoldsTheFileWins)
{
    const QTemporaryDir folder;
    const QString first = folder.filePath(QStringLiteral("first"));
    const QString second = folder.filePath(QStringLiteral("second"));
    writeFile(second + QStringLiteral("/vocab.json"));
    EXPECT_EQ(Bundle::urlForResource(QStringLiteral("vocab"), QStringLiteral("json"), {first, second}),
              second + QStringLiteral("/vocab.json"));

    writeFile(first + QStringLiteral("/vocab.json"));
    EXPECT_EQ(Bundle::urlForResource(QStringLiteral("vocab"), QStringLiteral("json"), {first, second}),
              first + QStringLiteral("/vocab.json"));
}

TEST(Bundle, nothingIsFoundWhereNothingIs)
{
    const QTemporaryDir folder;
    EXPECT_FALSE(
        Bundle::urlForResource(QStringLiteral("vocab"), QStringLiteral("json"), {folder.path()}).has_value());
    EXPECT_FALSE(
        Bundle::urlForResource(QStringLiteral("no such resource"), QStringLiteral("json")).has_value());
}

TEST(Bundle, theUsersModelsAreSearchedLastAndOnlyWhenTheFolderIsThere)
{
    const QString models = Directories::applicationSupport().value() + QStringLiteral("/Qorvane/models");
    EXPECT_FALSE(Bundle::resourceDirectories().contains(models));

    writeFile(models + QStringLiteral("/only_mine.json"));
    ASSERT_FALSE(Bundle::resourceDirectories().isEmpty());
    EXPECT_EQ(Bundle::resourceDirectories().constLast(), models);
    EXPECT_EQ(Bundle::resourcePath(), Bundle::resourceDirectories().constFirst());
    EXPECT_EQ(Bundle::urlForResource(QStringLiteral("only_mine"), QStringLiteral("json")),
              models + QStringLiteral("/only_mine.json"));
}

} // namespace
