#include "platform/Log.h"

#include "support/LogCapture.h"

#include <QByteArray>
#include <QList>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <thread>
#include <vector>

using namespace Qorvane;

namespace {

// Stands in for standard output while it lives.
class OutputPipe
{
public:
    OutputPipe()
        : m_original(::dup(STDOUT_FILENO))
    {
        std::array<int, 2> ends{};
        EXPECT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
        m_reader = ends[0];
        ::dup2(ends[1], STDOUT_FILENO);
        ::close(ends[1]);
    }
    ~OutputPipe()
    {
        restore();
        closeReader();
    }
    OutputPipe(const OutputPipe &) = delete;
    OutputPipe &operator=(const OutputPipe &) = delete;

    // From here on the reader comes to an end.
    void restore()
    {
        if (m_original < 0)
            return;
        ::dup2(m_original, STDOUT_FILENO);
        ::close(m_original);
        m_original = -1;
    }
    void closeReader()
    {
        if (m_reader >= 0)
            ::close(m_reader);
        m_reader = -1;
    }
    QByteArray readSome() const
    {
        QByteArray bytes(4096, Qt::Uninitialized);
        bytes.resize(std::max<ssize_t>(::read(m_reader, bytes.data(), size_t(bytes.size())), 0));
        return bytes;
    }
    QByteArray readAll() const
    {
        QByteArray all;
        for (QByteArray some = readSome(); !some.isEmpty(); some = readSome())
            all += some;
        return all;
    }

private:
    int m_original;
    int m_reader = -1;
};

TEST(Log, aLineIsOutAsUtf8BeforeTheCallReturns)
{
    QByteArray written;
    {
        const OutputPipe output;
        Log::line(QStringLiteral("🔄 开始 é %1 \\n"));
        written = output.readSome();
    }
    EXPECT_EQ(written, QByteArray("🔄 开始 é %1 \\n\n"));
}

TEST(Log, anEmptyLineIsALine)
{
    QByteArray written;
    {
        const OutputPipe output;
        Log::line(QString());
        written = output.readSome();
    }
    EXPECT_EQ(written, QByteArray("\n"));
}

TEST(Log, linesOfManyThreadsStayWhole)
{
    // Longer than what a pipe takes in one piece.
    const QString tail = QStringLiteral("照").repeated(5000);
    QList<QByteArray> lines;
    {
        OutputPipe output;
        std::vector<std::thread> threads;
        for (int t = 0; t < 4; ++t) {
            threads.emplace_back([&tail, t] {
                for (int i = 0; i < 50; ++i)
                    Log::line(QString::number(t) + tail);
            });
        }
        std::thread reader([&] { lines = output.readAll().split('\n'); });
        for (std::thread &thread : threads)
            thread.join();
        output.restore();
        reader.join();
    }
    ASSERT_EQ(lines.size(), 201);
    EXPECT_TRUE(lines.takeLast().isEmpty());
    std::array<int, 4> counts{};
    for (const QByteArray &line : lines) {
        ASSERT_EQ(line.mid(1), tail.toUtf8());
        ++counts[size_t(line[0] - '0')];
    }
    EXPECT_EQ(counts, (std::array<int, 4>{50, 50, 50, 50}));
}

TEST(LogDeathTest, aReaderThatHasGoneDoesNotEndTheProgram)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            OutputPipe output;
            output.closeReader();
            Log::line(QStringLiteral("to nobody"));
            std::_Exit(7);
        },
        testing::ExitedWithCode(7), "");
}

TEST(Log, anOutputThatDoesNotWaitLosesNothing)
{
    const QString text = QStringLiteral("x").repeated(300'000);
    QByteArray all;
    {
        OutputPipe output;
        ASSERT_EQ(::fcntl(STDOUT_FILENO, F_SETFL, O_NONBLOCK), 0);
        std::thread reader([&] { all = output.readAll(); });
        Log::line(text);
        output.restore();
        reader.join();
    }
    EXPECT_EQ(all, text.toUtf8() + '\n');
}

TEST(Log, aSinkReceivesTheLinesInsteadUntilItIsTakenOut)
{
    OutputPipe output;
    {
        const LogCapture log;
        Log::line(QStringLiteral("✅ captured"));
        EXPECT_EQ(log.lines(), QStringList{QStringLiteral("✅ captured")});
    }
    Log::line(QStringLiteral("written"));
    output.restore();
    EXPECT_EQ(output.readAll(), QByteArray("written\n"));
}

} // namespace
