#include "encoders/TestEncoders.h"
#include "platform/InstanceMessage.h"
#include "platform/SingleInstance.h"
#include "support/Waiting.h"
#include "tools/DriverHome.h"

#include <QDir>
#include <QFile>
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

    // Where the driver looks for others that work on the library of this home.
    SingleInstance::Place instancePlace() const
    {
        const QByteArray before = qgetenv("XDG_DATA_HOME");
        qputenv("XDG_DATA_HOME", m_home.path("data").toLocal8Bit());
        const SingleInstance::Place place = SingleInstance::libraryPlace();
        qputenv("XDG_DATA_HOME", before);
        return place;
    }

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

TEST_F(HeadlessDriverTest, TellsOfAFolderThatItCannotStore)
{
    ASSERT_TRUE(QDir().mkpath(m_home.path("config/Qorvane/Qorvane.ini"))); // a folder where a file belongs
    const DriverOutcome add = run({QStringLiteral("add"), photographs()});
    EXPECT_EQ(add.code, 1);
    EXPECT_EQ(add.output, QString());
    EXPECT_TRUE(add.errors.contains(QStringLiteral("can't be stored in the library: ") + photographs()))
        << qPrintable(add.errors);
}

TEST_F(HeadlessDriverTest, HandsFoldersToTheRunningApplication)
{
    SingleInstance application(instancePlace());
    ASSERT_EQ(application.claim(std::nullopt, std::chrono::seconds(0)), SingleInstance::Claim::first);
    ASSERT_TRUE(application.listen());
    QStringList received;
    QObject::connect(&application, &SingleInstance::messageReceived,
                     [&received](const QStringList &message) { received = message; });

    const auto driver = m_home.start({QStringLiteral("add"), photographs()});
    ASSERT_TRUE(waitUntil([&driver] { return driver->state() == QProcess::NotRunning; }));
    EXPECT_EQ(driver->exitCode(), 0);
    EXPECT_EQ(InstanceMessage::added(received), QStringList{photographs()});
    EXPECT_TRUE(driver->readAllStandardOutput().startsWith("handed to the running application: "));
    EXPECT_FALSE(QFile::exists(m_home.databasePath()));
}

TEST_F(HeadlessDriverTest, LeavesALibraryAloneThatAnotherProcessWorksOn)
{
    SingleInstance other(instancePlace());
    ASSERT_EQ(other.claim(std::nullopt, std::chrono::seconds(0)), SingleInstance::Claim::first);
    const DriverOutcome status = run({QStringLiteral("status")});
    EXPECT_EQ(status.code, 1);
    EXPECT_TRUE(status.errors.contains(QStringLiteral("another process works on the library")))
        << qPrintable(status.errors);
    EXPECT_FALSE(QFile::exists(m_home.databasePath()));
}

TEST_F(HeadlessDriverTest, RefusesWrongArgumentsWithAnExitCodeOfTheirOwn)
{
    EXPECT_EQ(run({QStringLiteral("paint")}).code, 2);
    EXPECT_EQ(
        run({QStringLiteral("sheet"), QStringLiteral("--all"), QStringLiteral("/nowhere/at/all.png")}).code,
        1);
}
