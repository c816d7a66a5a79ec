#include "decode-report/Attempt.h"
#include "decode-report/DecodeTable.h"
#include "decode-report/Decoding.h"
#include "media/OffMainThread.h"
#include "media/PictureFiles.h"
#include "media/TestVideo.h"

#include <QFileInfo>
#include <QProcess>
#include <QTextStream>

#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>

using namespace Qorvane;

namespace {

constexpr TimeAllowed ample = {std::chrono::seconds(60), std::chrono::seconds(30)};

} // namespace

TEST(DecodeReportTest, AnAttemptTellsWhatItDecodedAndWhatItRefused)
{
    const Attempt decoded = attemptInChild([] { return QByteArray("+PNG 3x2"); }, ample);
    EXPECT_EQ(decoded.outcome, Outcome::decoded);
    EXPECT_EQ(decoded.detail, QStringLiteral("PNG 3x2"));
    EXPECT_GT(decoded.peakKilobytes, 0);

    const Attempt refused = attemptInChild([] { return QByteArray("-no picture"); }, ample);
    EXPECT_EQ(refused.outcome, Outcome::refused);
    EXPECT_EQ(refused.detail, QStringLiteral("no picture"));
}

TEST(DecodeReportTest, ACrashHarmsNothingElse)
{
    const auto crash = [] {
        std::signal(SIGABRT, SIG_DFL);
        std::raise(SIGABRT);
        return QByteArray();
    };
    const Attempt attempt = attemptInChild(crash, ample);
    EXPECT_EQ(attempt.outcome, Outcome::crashed);
    EXPECT_EQ(attempt.detail, QStringLiteral("ended by signal %1").arg(SIGABRT));
}

TEST(DecodeReportTest, AHangIsEnded)
{
    const auto hang = []() -> QByteArray {
        for (;;)
            pause();
    };
    const Attempt attempt =
        attemptInChild(hang, {std::chrono::milliseconds(10), std::chrono::milliseconds(10)});
    EXPECT_EQ(attempt.outcome, Outcome::timedOut);
    EXPECT_EQ(attempt.detail, QStringLiteral("didn't end by itself"));
}

TEST(DecodeReportTest, AVideoIsDecodedAsAVideo)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("a.mp4"));
    writeTestVideo(path, TestVideo());
    EXPECT_EQ(offMainThread([&] { return decodeFile(path, {}, 0); }), "+video 64x48");
    EXPECT_TRUE(QFile::rename(path, folder.filePath(QStringLiteral("a.png"))));
    EXPECT_EQ(decodeFile(folder.filePath(QStringLiteral("a.png")), {}, 0),
              "-the content is of no known image format");
}

TEST(DecodeReportTest, TheTableCountsByExtension)
{
    DecodeTable table;
    table.add(QStringLiteral("mp4"), {Outcome::crashed, {}, 7, 3 << 10});
    table.add(QStringLiteral("jpg"), {Outcome::decoded, {}, 5, 1 << 10});
    table.add(QStringLiteral("jpg"), {Outcome::decoded, {}, 9, 2 << 10});
    QString text;
    QTextStream out(&text);
    table.print(out);
    EXPECT_EQ(text.simplified().remove(QLatin1Char('\n')),
              QStringLiteral("extension decoded refused timed out crashed slowest ms peak MB "
                             "jpg 2 0 0 0 9 2 mp4 0 0 0 1 7 3 (all) 2 0 0 1 9 3"));
}

TEST(DecodeReportTest, TheProgramReportsOnSeveralFolders)
{
    const QTemporaryDir pictures;
    const QTemporaryDir videos;
    PictureFiles::write(pictures, QStringLiteral("a.jpg"),
                        PictureFiles::jpeg(PictureFiles::testPicture(30, 20)));
    PictureFiles::write(pictures, QStringLiteral("b.png"), "no PNG");
    PictureFiles::write(pictures, QStringLiteral("c.txt"), "a text");
    writeTestVideo(videos.filePath(QStringLiteral("d.mov")), TestVideo());
    QProcess program;
    program.setWorkingDirectory(QFileInfo(pictures.path()).path());
    const QString name = QFileInfo(pictures.path()).fileName();
    program.start(QStringLiteral(QORVANE_DECODE_REPORT), {name, videos.path()});
    ASSERT_TRUE(program.waitForFinished());
    EXPECT_EQ(program.exitCode(), 0);
    const QString text = QString::fromUtf8(program.readAllStandardOutput());
    EXPECT_TRUE(text.startsWith(
        QStringLiteral("refused %1/b.png: the content is of no known image format\n").arg(name)))
        << qPrintable(text);
    const QString table = text.simplified();
    EXPECT_TRUE(table.contains(QStringLiteral("jpg 1 0 0 0 "))) << qPrintable(text);
    EXPECT_TRUE(table.contains(QStringLiteral("png 0 1 0 0 "))) << qPrintable(text);
    EXPECT_TRUE(table.contains(QStringLiteral("mov 1 0 0 0 "))) << qPrintable(text);
    EXPECT_TRUE(table.contains(QStringLiteral("(all) 2 1 0 0 "))) << qPrintable(text);
    EXPECT_TRUE(table.endsWith(QStringLiteral(" 1 files with other extensions were not tried")))
        << qPrintable(text);
}
