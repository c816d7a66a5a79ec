#include "QorvaneApp.h"
#include "platform/SingleInstance.h"
#include "support/ConsoleWatch.h"
#include "support/LogCapture.h"
#include "support/Waiting.h"
#include "views/window/ContentView.h"

#include <QFile>
#include <QProcess>
#include <QQuickWindow>

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <memory>
#include <vector>

using namespace Qorvane;

namespace {

constexpr int longestStart = 60'000;

/// The program as its users start it, beside others of its kind.
class QorvaneProcessTest : public testing::Test
{
protected:
    static std::unique_ptr<QProcess> start()
    {
        auto process = std::make_unique<QProcess>();
        process->setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process->start(QStringLiteral(QORVANE_PROGRAM));
        EXPECT_TRUE(process->waitForStarted()) << qPrintable(process->errorString());
        return process;
    }

    // Until its window is there.
    static bool waitForWindow(QProcess &process)
    {
        QByteArray output;
        while (!output.contains("com.qorvane.thumbnails")) {
            if (!process.waitForReadyRead(longestStart))
                return false;
            output += process.readAllStandardOutput();
        }
        return true;
    }

    static bool waitForEnd(QProcess &process)
    {
        return waitUntil([&process] { return process.state() == QProcess::NotRunning; });
    }

    static void signal(const QProcess &process, int number)
    {
        ASSERT_EQ(::kill(pid_t(process.processId()), number), 0);
    }

    const ConsoleWatch m_console;

    static QString socketPath() { return SingleInstance::libraryPlace().socket; }
};

TEST_F(QorvaneProcessTest, aSecondStartBringsTheClosedWindowBackAndEnds)
{
    const LogCapture log;
    SingleInstance instance(SingleInstance::libraryPlace());
    ASSERT_EQ(instance.claim(std::nullopt, std::chrono::seconds(10)), SingleInstance::Claim::first);
    ASSERT_TRUE(instance.listen());
    QorvaneApp app;
    QObject::connect(&instance, &SingleInstance::messageReceived, &app, &QorvaneApp::obey);
    ASSERT_TRUE(app.openMainWindow());
    app.contentView()->window()->close();
    ASSERT_TRUE(waitUntil([&app] { return app.contentView() == nullptr; }));

    const auto second = start();
    ASSERT_TRUE(waitForEnd(*second));
    EXPECT_EQ(second->exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(second->exitCode(), 0);
    EXPECT_EQ(second->readAllStandardOutput(), QByteArray()); // nothing of the library was touched
    ASSERT_NE(app.contentView(), nullptr);
    EXPECT_TRUE(app.contentView()->isShown());
}

TEST_F(QorvaneProcessTest, aStartAfterAKillFindsTheWayFree)
{
    const auto first = start();
    ASSERT_TRUE(waitForWindow(*first));
    signal(*first, SIGKILL);
    ASSERT_TRUE(first->waitForFinished(longestStart));
    ASSERT_TRUE(QFile::exists(socketPath())) << "the kill left nothing behind that could be in the way";

    const auto second = start();
    EXPECT_TRUE(waitForWindow(*second));
    const auto third = start();
    ASSERT_TRUE(waitForEnd(*third));
    EXPECT_EQ(third->exitCode(), 0);
    signal(*second, SIGTERM);
    EXPECT_TRUE(second->waitForFinished(longestStart));
}

TEST_F(QorvaneProcessTest, endsAtOnceAndCleanlyWhenTheSystemAsksForIt)
{
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
        const auto process = start();
        ASSERT_TRUE(waitForWindow(*process));
        signal(*process, number);
        ASSERT_TRUE(process->waitForFinished(longestStart));
        EXPECT_EQ(process->exitStatus(), QProcess::NormalExit) << number;
        EXPECT_EQ(process->exitCode(), 0) << number;
        EXPECT_FALSE(QFile::exists(socketPath())) << number;
    }
}

TEST_F(QorvaneProcessTest, ofManyStartedAtOnceOneStays)
{
    std::vector<std::unique_ptr<QProcess>> processes;
    for (int i = 0; i < 4; ++i)
        processes.push_back(start());
    const auto running = [&processes] {
        return std::count_if(processes.begin(), processes.end(),
                             [](const auto &process) { return process->state() != QProcess::NotRunning; });
    };
    ASSERT_TRUE(waitUntil([&running] { return running() == 1; }));
    for (const auto &process : processes) {
        if (process->state() == QProcess::NotRunning) {
            EXPECT_EQ(process->exitCode(), 0);
            continue;
        }
        signal(*process, SIGTERM);
        EXPECT_TRUE(process->waitForFinished(longestStart));
        EXPECT_EQ(process->exitCode(), 0);
    }
}

} // namespace
