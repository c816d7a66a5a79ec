#include "tools/DriverHome.h"

#include <QBuffer>
#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QImage>
#include <QImageReader>

#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/resource.h>

#include <chrono>
#include <ctime>
#include <memory>
#include <optional>
#include <random>

using namespace Qorvane;

namespace {

/// A count that the environment may set, for longer looks than every test run can afford.
int countFrom(const char *variable, int fallback)
{
    bool isNumber = false;
    const int count = qEnvironmentVariableIntValue(variable, &isNumber);
    return isNumber && count > 0 ? count : fallback;
}

// Moments of a run are told in the processor time that it has used: on a busy machine the clock on the wall
// says nothing of how far it has come.
using ProcessorTime = std::chrono::nanoseconds;

ProcessorTime processorTimeOf(const timespec &time)
{
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

/// Of a process that is running; none once it is gone.
std::optional<ProcessorTime> processorTimeOf(const QProcess &process)
{
    clockid_t clock = 0;
    timespec time = {};
    if (clock_getcpuclockid(pid_t(process.processId()), &clock) != 0 || clock_gettime(clock, &time) != 0)
        return {};
    return processorTimeOf(time);
}

/// Of all the processes that this one has started and seen the end of.
ProcessorTime processorTimeOfChildren()
{
    rusage usage = {};
    getrusage(RUSAGE_CHILDREN, &usage);
    return std::chrono::seconds(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
           std::chrono::microseconds(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec);
}

struct DatabaseCloser
{
    void operator()(sqlite3 *database) const { sqlite3_close(database); }
};

/// The first column of the first row, as a stranger to the program reads it; the error's text on failure.
std::string askDatabase(const QString &path, const char *sql)
{
    sqlite3 *opened = nullptr;
    const int code = sqlite3_open_v2(path.toUtf8().constData(), &opened, SQLITE_OPEN_READWRITE, nullptr);
    const std::unique_ptr<sqlite3, DatabaseCloser> database(opened);
    if (code != SQLITE_OK)
        return sqlite3_errmsg(opened);
    std::string answer;
    const auto keepFirst = [](void *target, int, char **values, char **) {
        auto &kept = *static_cast<std::string *>(target);
        if (kept.empty() && values[0] != nullptr)
            kept = values[0];
        return 0;
    };
    if (sqlite3_exec(opened, sql, keepFirst, &answer, nullptr) != SQLITE_OK)
        return sqlite3_errmsg(opened);
    return answer;
}

/// Whether the file is a JPEG to its very end: decoders are content with one that was cut short.
bool isWholeJpeg(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray bytes = file.readAll();
    return bytes.endsWith(QByteArray::fromHex("ffd9")) && !QImage::fromData(bytes, "JPEG").isNull();
}

/// Small pictures that differ, with enough grain that a thumbnail is more than one block of bytes.
void makePictures(const QString &folder, int count)
{
    std::mt19937 random(1);
    std::uniform_int_distribution<int> grain(0, 63);
    for (int index = 0; index < count; ++index) {
        QImage picture(160, 120, QImage::Format_RGB32);
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x)
                picture.setPixel(x, y,
                                 qRgb((x + index) % 192 + grain(random), y + grain(random), grain(random)));
        }
        ASSERT_TRUE(picture.save(folder + QStringLiteral("/%1.png").arg(index)));
    }
}

class KillTest : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_home.installEncoders());
        makePictures(m_home.photographs(), m_files);
    }

    QStringList indexing() const { return {QStringLiteral("index"), m_home.photographs()}; }

    /// What an undisturbed run costs.
    ProcessorTime measureRun() const
    {
        const ProcessorTime before = processorTimeOfChildren();
        expectCompleteRun();
        return processorTimeOfChildren() - before;
    }

    /// Whether the run was still at work when it had used as much as `moment`.
    bool runAndKillAfter(ProcessorTime moment) const
    {
        const std::unique_ptr<QProcess> process = m_home.start(indexing());
        while (processorTimeOf(*process).value_or(moment) < moment) {
            if (process->waitForFinished(1))
                return false;
        }
        process->kill(); // SIGKILL: nothing in the process hears of it
        process->waitForFinished();
        return process->exitStatus() == QProcess::CrashExit;
    }

    void expectNothingBroken() const
    {
        if (QFileInfo::exists(m_home.databasePath())) {
            EXPECT_EQ(askDatabase(m_home.databasePath(), "PRAGMA integrity_check"), "ok");
        }
        QDirIterator thumbnails(m_home.thumbnailCache(), {QStringLiteral("*.jpg")}, QDir::Files,
                                QDirIterator::Subdirectories);
        while (thumbnails.hasNext()) {
            const QString path = thumbnails.next();
            EXPECT_TRUE(isWholeJpeg(path)) << qPrintable(path);
        }
    }

    void expectCompleteRun() const
    {
        const DriverOutcome outcome = m_home.run(indexing());
        EXPECT_EQ(outcome.code, 0) << qPrintable(outcome.errors);
        EXPECT_EQ(askDatabase(m_home.databasePath(), "SELECT COUNT(*) FROM images"), std::to_string(m_files));
        EXPECT_EQ(
            askDatabase(m_home.databasePath(), "SELECT COUNT(*) FROM images WHERE length(vector) <> dim * 4"),
            "0");
        EXPECT_EQ(thumbnailCount(), m_files);
    }

    int thumbnailCount() const
    {
        int count = 0;
        QDirIterator thumbnails(m_home.thumbnailCache(), {QStringLiteral("*.jpg")}, QDir::Files,
                                QDirIterator::Subdirectories);
        for (; thumbnails.hasNext(); thumbnails.next())
            ++count;
        return count;
    }

    const int m_kills = countFrom("QORVANE_KILLS", 8);
    const int m_files = countFrom("QORVANE_KILL_FILES", 40);
    DriverHome m_home;
};

} // namespace

TEST_F(KillTest, LosesNothingButTheWorkInHand)
{
    const ProcessorTime wholeRun = measureRun();
    expectNothingBroken();

    // One moment in each of as many equal parts of the run: spread for certain, yet none chosen by us.
    std::mt19937 random(20);
    std::uniform_real_distribution<double> within(0.0, 1.0);
    int killed = 0;
    for (int round = 0; round < m_kills; ++round) {
        SCOPED_TRACE(testing::Message() << "round " << round);
        m_home.forgetLibrary();
        const double share = (round + within(random)) / m_kills;
        killed += runAndKillAfter(std::chrono::duration_cast<ProcessorTime>(share * wholeRun)) ? 1 : 0;
        expectNothingBroken();
        expectCompleteRun();
        expectNothingBroken();
    }
    // Runs differ in what they cost, so that a late moment may come too late; most must not.
    EXPECT_GE(killed, m_kills / 2);
    RecordProperty("killed", killed);
}
