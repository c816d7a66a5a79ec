#include "encoders/TestEncoders.h"
#include "tools/DriverHome.h"

#include <QImage>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qorvane;

namespace {

/// The driver as its users start it, over three pictures of one colour each.
class HeadlessDriverTest : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(plainPicture(Qt::red).save(photograph("red.png")));
        ASSERT_TRUE(plainPicture(Qt::blue).save(photograph("blue.png")));
        ASSERT_TRUE(plainPicture(Qt::green).save(photograph("green.png")));
    }

    QString photographs() const { return m_home.photographs(); }
    QString photograph(const char *name) const { return photographs() + u'/' + QString::fromLatin1(name); }
    DriverOutcome run(const QStringList &arguments) const { return m_home.run(arguments); }

    DriverHome m_home;
};

} // namespace

TEST_F(HeadlessDriverTest, IndexesAndFindsWhatItIndexed)
{
    ASSERT_TRUE(m_home.installEncoders());
    const DriverOutcome index = run({QStringLiteral("index"), photographs()});
    EXPECT_EQ(index.code, 0) << qPrintable(index.errors);
    EXPECT_TRUE(index.output.contains(QStringLiteral("3 files, 3 thumbnails (3 new), 3 vectors (3 new)")))
        << qPrintable(index.output);

    const DriverOutcome search = run({QStringLiteral("search"), QStringLiteral("red")});
    EXPECT_EQ(search.code, 0) << qPrintable(search.errors);
    const QStringList lines = search.output.split(u'\n');
    ASSERT_GE(lines.size(), 2) << qPrintable(search.output);
    EXPECT_TRUE(lines.at(1).endsWith(photograph("red.png"))) << qPrintable(search.output);
}

TEST_F(HeadlessDriverTest, HasNothingNewTheSecondTime)
{
    ASSERT_TRUE(m_home.installEncoders());
    run({QStringLiteral("index"), photographs()});
    const DriverOutcome index = run({QStringLiteral("index"), photographs()});
    EXPECT_TRUE(index.output.contains(QStringLiteral("3 files, 3 thumbnails (0 new), 3 vectors (0 new)")))
        << qPrintable(index.output);
}

TEST_F(HeadlessDriverTest, DrawsTheLibraryAndItsMatches)
{
    ASSERT_TRUE(m_home.installEncoders());
    run({QStringLiteral("index"), photographs()});
    QTemporaryDir out;
    const QString all = out.filePath(QStringLiteral("all.png"));
    const QString matches = out.filePath(QStringLiteral("matches.png"));
    EXPECT_EQ(run({QStringLiteral("sheet"), QStringLiteral("--all"), all}).code, 0);
    EXPECT_EQ(run({QStringLiteral("sheet"), QStringLiteral("blue"), matches}).code, 0);
    EXPECT_FALSE(QImage(all).isNull());
    EXPECT_FALSE(QImage(matches).isNull());
    EXPECT_NE(QImage(all), QImage(matches));
}

TEST_F(HeadlessDriverTest, SaysThatThereIsNothingToSearchWith)
{
    const DriverOutcome index = run({QStringLiteral("index"), photographs()});
    EXPECT_EQ(index.code, 0);
    EXPECT_TRUE(index.output.contains(QStringLiteral("No encoders are installed")))
        << qPrintable(index.output);
    EXPECT_TRUE(index.output.contains(QStringLiteral("3 thumbnails (3 new), 0 vectors")))
        << qPrintable(index.output);
    const DriverOutcome search = run({QStringLiteral("search"), QStringLiteral("red")});
    EXPECT_EQ(search.code, 1);
    EXPECT_TRUE(search.errors.contains(QStringLiteral("no encoders"))) << qPrintable(search.errors);
}

TEST_F(HeadlessDriverTest, AddsAFolderOnceAndTellsOfIt)
{
    EXPECT_TRUE(run({QStringLiteral("add"), photographs()}).output.startsWith(QStringLiteral("added: ")));
    EXPECT_TRUE(run({QStringLiteral("add"), photographs()}).output.startsWith(QStringLiteral("already in ")));
    const DriverOutcome status = run({QStringLiteral("status")});
    EXPECT_EQ(status.code, 0);
    EXPECT_TRUE(status.output.contains(photographs())) << qPrintable(status.output);
    EXPECT_TRUE(status.output.contains(QStringLiteral("3 media files"))) << qPrintable(status.output);
    EXPECT_TRUE(status.output.contains(QStringLiteral("encoders: none"))) << qPrintable(status.output);
}

TEST_F(HeadlessDriverTest, RefusesWrongArgumentsWithAnExitCodeOfTheirOwn)
{
    EXPECT_EQ(run({QStringLiteral("paint")}).code, 2);
    EXPECT_EQ(
        run({QStringLiteral("sheet"), QStringLiteral("--all"), QStringLiteral("/nowhere/at/all.png")}).code,
        1);
}
