#include "encoders/compare/LabelledSet.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qorvane::Encoders;

namespace {

Outcome<std::vector<LabelledPicture>> read(const char *table, Language language = Language::english)
{
    return readLabelledSet(QByteArray(table), language);
}

// What is said about a table that can't be read.
QString complaint(const QByteArray &table)
{
    const auto rows = readLabelledSet(table, Language::english);
    return rows ? QString() : rows.error().found;
}

void touch(const QString &path)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
}

} // namespace

TEST(LabelledSet, readsTheColumnsOfTheLanguageByTheirNames)
{
    const char table[] = "captions_zh\tpath\tlicence\tlabels_en\tset\tcaptions_en\tlabels_zh\n"
                         "一只狗 | 狗在跑\ta/1.jpg\tfree\tdog, grass\tfirst\tA dog . | A running dog .\t狗\n";
    const auto english = read(table);
    ASSERT_TRUE(english);
    EXPECT_EQ(*english, (std::vector<LabelledPicture>{
                            {.path = QStringLiteral("a/1.jpg"),
                             .set = QStringLiteral("first"),
                             .labels = {QStringLiteral("dog"), QStringLiteral("grass")},
                             .captions = {QStringLiteral("A dog ."), QStringLiteral("A running dog .")},
                             .line = 2}}));
    const auto chinese = read(table, Language::chinese);
    ASSERT_TRUE(chinese);
    EXPECT_EQ(chinese->front().labels, QStringList{QStringLiteral("狗")});
    EXPECT_EQ(chinese->front().captions, (QStringList{QStringLiteral("一只狗"), QStringLiteral("狗在跑")}));
}

TEST(LabelledSet, takesOtherLineEndsEmptyLinesAndMissingColumns)
{
    const auto rows = read("\xEF\xBB\xBFpath\tlabels_en\r\n\r\n1.jpg\tdog,,  dog , cat,\r\n");
    ASSERT_TRUE(rows);
    ASSERT_EQ(rows->size(), 1U);
    EXPECT_EQ(rows->front().line, 3);
    EXPECT_EQ(rows->front().labels, (QStringList{QStringLiteral("dog"), QStringLiteral("cat")}));
    EXPECT_EQ(rows->front().captions, QStringList());
}

TEST(LabelledSet, saysWhichLineHasAnotherNumberOfCells)
{
    EXPECT_EQ(complaint("path\tset\na\tx\nb\n"), QStringLiteral("in line 3 1"));
    EXPECT_EQ(complaint("path\tset\na\tx\ty\n"), QStringLiteral("in line 2 3"));
}

TEST(LabelledSet, saysWhichLineHasNoPath)
{
    EXPECT_EQ(complaint("path\tset\na\tx\n \tx\n"), QStringLiteral("in line 3 none"));
}

TEST(LabelledSet, saysWhichLinesHaveTheSamePath)
{
    EXPECT_EQ(complaint("path\tset\na\tx\nb\tx\na\ty\n"), QStringLiteral("in line 4 a, which line 2 has"));
}

TEST(LabelledSet, saysWhichLineIsNotInUtf8)
{
    EXPECT_EQ(complaint("path\tset\na\t\xFF\n"), QStringLiteral("in line 2 other bytes"));
}

TEST(LabelledSet, refusesATableWithoutPathsOrWithoutAnything)
{
    EXPECT_EQ(complaint("name\tset\n"), QStringLiteral("in line 1 \"name\tset\""));
    EXPECT_EQ(complaint("\n\n"), QStringLiteral("nothing"));
}

TEST(LabelledSet, findsPicturesFromTheFolderAndFromThoseAboveIt)
{
    const QTemporaryDir top;
    const QString picture = top.filePath(QStringLiteral("labelled/dogs/1.jpg"));
    touch(picture);
    const QString path = QStringLiteral("labelled/dogs/1.jpg");
    EXPECT_EQ(labelledFile(top.path(), path), picture);
    EXPECT_EQ(labelledFile(top.filePath(QStringLiteral("labelled")), path), picture);
    EXPECT_EQ(labelledFile(top.filePath(QStringLiteral("labelled/dogs")), path), picture);
    EXPECT_EQ(labelledFile(top.path(), picture), picture);
}

TEST(LabelledSet, findsPicturesThatWereCopiedOutOfTheirTree)
{
    const QTemporaryDir top;
    touch(top.filePath(QStringLiteral("1.jpg")));
    EXPECT_EQ(labelledFile(top.path(), QStringLiteral("labelled/dogs/1.jpg")),
              top.filePath(QStringLiteral("1.jpg")));
}

TEST(LabelledSet, picturesOutsideTheFolderDoNotCount)
{
    const QTemporaryDir top;
    touch(top.filePath(QStringLiteral("cats/1.jpg")));
    touch(top.filePath(QStringLiteral("dogs/2.jpg")));
    const QString dogs = top.filePath(QStringLiteral("dogs"));
    EXPECT_EQ(labelledFile(dogs, QStringLiteral("cats/1.jpg")), QString());
    EXPECT_EQ(labelledFile(dogs, QStringLiteral("../cats/1.jpg")), QString());
    EXPECT_EQ(labelledFile(dogs, top.filePath(QStringLiteral("cats/1.jpg"))), QString());
}
