#include "headless/LogOutput.h"

#include "platform/Log.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qorvane;

namespace {

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

TEST(LogOutputTest, WritesLinesIntoTheFileAtOnce)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("log"));
    const LogOutput output(path, false);
    Log::line(QStringLiteral("✅ one"));
    Log::line(QStringLiteral("two"));
    EXPECT_EQ(contentOf(path), QStringLiteral("✅ one\ntwo\n").toUtf8());
    EXPECT_TRUE(output.error().isEmpty());
}

TEST(LogOutputTest, GoesOnBehindAnEarlierRun)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("log"));
    for (const char *line : {"one", "two"}) {
        const LogOutput output(path, false);
        Log::line(QString::fromLatin1(line));
    }
    EXPECT_EQ(contentOf(path), QByteArray("one\ntwo\n"));
}

TEST(LogOutputTest, TellsWhyAFileCannotBeWritten)
{
    const LogOutput output(QStringLiteral("/nowhere/at/all/log"), false);
    EXPECT_TRUE(output.error().startsWith(QStringLiteral("/nowhere/at/all/log: ")));
}

TEST(LogOutputTest, KeepsStandardOutputQuietUnlessVerbose)
{
    testing::internal::CaptureStdout();
    {
        const LogOutput quiet(QString(), false);
        Log::line(QStringLiteral("unheard"));
    }
    {
        const LogOutput verbose(QString(), true);
        Log::line(QStringLiteral("heard"));
    }
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "heard\n");
}
