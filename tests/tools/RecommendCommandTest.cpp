#include "encoders/TestEncoders.h"
#include "tools/DriverHome.h"

#include <QColor>
#include <QFile>
#include <QImage>
#include <QStringList>

#include <gtest/gtest.h>

using namespace Qorvane;

namespace {

/// The driver, over a blue and a red picture.
class RecommendCommandTest : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(plainPicture(Qt::blue).save(picture("blue.png")));
        ASSERT_TRUE(plainPicture(Qt::red).save(picture("red.png")));
    }

    QString picture(const char *name) const { return home.photographs() + u'/' + QString::fromLatin1(name); }

    DriverOutcome recommend(const QStringList &arguments) const
    {
        return home.run(QStringList(QStringLiteral("recommend")) + arguments);
    }

    const DriverHome home;
};

/// The tags that the output names, without rank and similarity.
QStringList tagsIn(const QString &output)
{
    QStringList tags;
    for (const QString &line : output.split(u'\n')) {
        if (line.contains(QStringLiteral(".  similarity ")))
            tags.append(line.section(QStringLiteral("  "), -1));
    }
    return tags;
}

} // namespace

TEST_F(RecommendCommandTest, namesFiveTagsForEachPicture)
{
    ASSERT_TRUE(home.installEncoders());
    const DriverOutcome outcome = recommend({picture("blue.png"), picture("red.png")});
    EXPECT_EQ(outcome.code, 0) << qPrintable(outcome.errors);
    EXPECT_EQ(outcome.errors,
              QStringLiteral("qorvane-headless: preparing 928 predefined tags, which the library "
                             "keeps...\n"));
    const QStringList lines = outcome.output.split(u'\n');
    ASSERT_EQ(lines.size(), 13) << qPrintable(outcome.output);
    EXPECT_EQ(lines[0], picture("blue.png"));
    EXPECT_EQ(lines[6], picture("red.png"));
    EXPECT_TRUE(lines[1].startsWith(QStringLiteral("   1.  similarity 0.9"))) << qPrintable(lines[1]);
    EXPECT_EQ(tagsIn(outcome.output).value(0), QStringLiteral("Blue"));
    EXPECT_EQ(tagsIn(outcome.output).value(5), QStringLiteral("Red"));
}

TEST_F(RecommendCommandTest, countsTheLibrarysOwnTagsAndLeavesOutThePicturesOwn)
{
    ASSERT_TRUE(home.installEncoders());
    EXPECT_EQ(home.run({QStringLiteral("add"), home.photographs()}).code, 0);
    EXPECT_EQ(home.run({QStringLiteral("tag"), QStringLiteral("add"), QStringLiteral("a very blue day"),
                        picture("red.png")})
                  .code,
              0);
    EXPECT_EQ(
        home.run({QStringLiteral("tag"), QStringLiteral("add"), QStringLiteral("Blue"), picture("blue.png")})
            .code,
        0);
    const QStringList tags = tagsIn(recommend({QStringLiteral("--limit=2"), picture("blue.png")}).output);
    EXPECT_EQ(tags, QStringList({QStringLiteral("Blue Jay"), QStringLiteral("a very blue day")}));
}

TEST_F(RecommendCommandTest, saysNothingOfTagsThatTheLibraryKeepsAndPrintsNoneRaw)
{
    ASSERT_TRUE(home.installEncoders());
    EXPECT_EQ(home.run({QStringLiteral("add"), home.photographs()}).code, 0);
    EXPECT_EQ(home.run({QStringLiteral("tag"), QStringLiteral("add"), QStringLiteral("blue\u202e\nblue"),
                        picture("red.png")})
                  .code,
              0);
    const QStringList arguments{QStringLiteral("--limit=2000"), picture("blue.png")};
    const QStringList first = tagsIn(recommend(arguments).output);
    EXPECT_TRUE(first.contains(QStringLiteral("blue\uFFFD\uFFFDblue")));
    const DriverOutcome second = recommend(arguments);
    EXPECT_EQ(second.errors, QString());
    EXPECT_EQ(tagsIn(second.output), first);
}

TEST_F(RecommendCommandTest, failsForAFileThatIsNoPictureAndGoesOn)
{
    ASSERT_TRUE(home.installEncoders());
    QFile text(picture("text.png"));
    ASSERT_TRUE(text.open(QIODevice::WriteOnly));
    text.write("This is no picture.");
    text.close();
    const DriverOutcome outcome = recommend({text.fileName(), picture("blue.png")});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_TRUE(outcome.errors.endsWith(
        QStringLiteral("no tags to recommend, --log FILE tells why: %1\n").arg(text.fileName())))
        << qPrintable(outcome.errors);
    EXPECT_EQ(tagsIn(outcome.output).size(), 5);
}

TEST_F(RecommendCommandTest, needsEncoders)
{
    const DriverOutcome outcome = recommend({picture("blue.png")});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_TRUE(outcome.errors.contains(QStringLiteral("no encoders"))) << qPrintable(outcome.errors);
}
