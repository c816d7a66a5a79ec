#include "library/ProcessingRun.h"

#include "library/FakeEncoder.h"
#include "library/LibraryHome.h"
#include "library/PipelineStage.h"
#include "media/ThumbnailPaths.h"
#include "platform/FileAttributes.h"
#include "platform/Languages.h"
#include "platform/Localization.h"
#include "platform/Log.h"
#include "store/EmbeddingStore.h"
#include "support/Waiting.h"

#include <QFile>
#include <QImage>

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <atomic>
#include <mutex>

using namespace Qorvane;

namespace {

using State = FolderProcessingState;

/// The log, with something done on the logging thread when a line appears: the run stands still meanwhile.
class SteppedLog
{
public:
    SteppedLog(QString line, std::function<void()> step)
        : m_line(std::move(line))
        , m_step(std::move(step))
    {
        Log::setSink([this](const QString &text) {
            const std::scoped_lock lock(m_mutex);
            m_lines.append(text);
            if (text == m_line)
                m_step();
        });
    }
    ~SteppedLog() { Log::setSink({}); }
    SteppedLog(const SteppedLog &) = delete;
    SteppedLog &operator=(const SteppedLog &) = delete;

    QStringList lines() const
    {
        const std::scoped_lock lock(m_mutex);
        return m_lines;
    }

private:
    const QString m_line;
    const std::function<void()> m_step;
    mutable std::mutex m_mutex;
    QStringList m_lines;
};

class ProcessingRunTest : public testing::Test
{
protected:
    QList<FileUrl> pictures(int count) const
    {
        QList<FileUrl> urls;
        for (int i = 1; i <= count; ++i)
            urls.append(
                home.writePicture(QStringLiteral("%1.png").arg(i), QColor::fromHsv(i * 20 % 360, 200, 200)));
        return urls;
    }

    /// Runs in the background while the event loop runs here, and returns when the last report is published.
    void run(PipelineStage &surroundingStage, const QList<FileUrl> &files) const
    {
        std::atomic_bool isDone = false;
        const auto body = [&, surroundings = surroundingStage.surroundings](const TaskHandle &) {
            ProcessingRun(surroundings, task, path, files).execute();
            isDone = true;
        };
        DetachedTask::start(QualityOfService::background, body);
        ASSERT_TRUE(waitUntil([&] { return isDone.load(); }, std::chrono::seconds(60)));
        drainMainQueue();
    }

    QString setProcessing(const char *state, const QString &progress, const QString &detail) const
    {
        return QStringLiteral("🔄 setProcessing: ") + path + QStringLiteral(" -> state: ") +
               QLatin1String(state) + QStringLiteral(", progress: ") + progress +
               QStringLiteral(", detail: ") + detail;
    }

    std::vector<ImageVectorRow> rows() const { return EmbeddingStore::shared().fetchAll(); }

    LibraryHome home;
    const QString path = home.path();
    const TaskHandle task;
    PipelineStage stage{{home.folder()}};
    FakeEncoder encoder;
};

} // namespace

TEST_F(ProcessingRunTest, logsAWholeRunToTheLetterAndInOrder)
{
    const QList<FileUrl> files = pictures(2);
    run(stage, files);
    EXPECT_EQ(home.log().lines(),
              (QStringList{
                  QStringLiteral("🔄 开始生成缩略图: ") + path,
                  QStringLiteral("✅ 缩略图生成完成: 1.png"),
                  setProcessing("thumbnails", QStringLiteral("0.5"), QStringLiteral("thumb_progress")),
                  QStringLiteral("✅ 缩略图生成完成: 2.png"),
                  setProcessing("thumbnails", QStringLiteral("1.0"), QStringLiteral("thumb_progress")),
                  QStringLiteral("🎯 缩略图生成完成，共 2 张图片"),
                  setProcessing("vectors", QStringLiteral("0.0"), QStringLiteral("准备生成向量...")),
                  QStringLiteral("🔄 状态更新为向量生成中: ") + path,
                  QStringLiteral("🔄 开始生成向量: ") + path,
                  QStringLiteral("✅ 向量生成完成: 1.png"),
                  setProcessing("vectors", QStringLiteral("0.5"), QStringLiteral("向量: 1/2")),
                  QStringLiteral("✅ 向量生成完成: 2.png"),
                  setProcessing("vectors", QStringLiteral("1.0"), QStringLiteral("向量: 2/2")),
                  QStringLiteral("🎯 向量生成完成: ") + path,
                  setProcessing("completed", QStringLiteral("1.0"), QStringLiteral("处理完成")),
                  QStringLiteral("✅ 状态更新为完成: ") + path,
              }));
}

TEST_F(ProcessingRunTest, twelveFilesReportTwelveTwelfthsInBothStages)
{
    QList<QPair<State, double>> reports;
    QObject::connect(&stage.state, &LibraryState::folderProcessingProgressChanged, &stage.state, [&] {
        reports.append({stage.state.folderProcessingStatus().value(path),
                        stage.state.folderProcessingProgress().value(path)});
    });
    run(stage, pictures(12));

    QList<QPair<State, double>> expected;
    for (int i = 1; i <= 12; ++i)
        expected.append({State::thumbnails, i / 12.0});
    for (int i = 0; i <= 12; ++i)
        expected.append({State::vectors, i / 12.0});
    expected.append({State::completed, 1.0});
    EXPECT_EQ(reports, expected);
}

TEST_F(ProcessingRunTest, leavesThumbnailsAndRowsBehind)
{
    const QList<FileUrl> files = pictures(2);
    LibraryHome::setModificationTime(files[0], 1234.5);
    run(stage, files);
    for (const FileUrl &file : files)
        EXPECT_TRUE(fileExists(thumbnailURL(file)->path()));
    const auto stored = EmbeddingStore::shared().fetch({files[0].path()});
    ASSERT_EQ(stored.size(), 1u);
    EXPECT_EQ(stored[0].vector, FakeEncoder::vectorOf(Image::fromFile(thumbnailURL(files[0])->path())));
    EXPECT_EQ(stored[0].dim, 3);
    EXPECT_TRUE(EmbeddingStore::shared().isUpToDate(files[0].path(), 1234.5));
    EXPECT_EQ(encoder.filenames(), (QStringList{QStringLiteral("1.png"), QStringLiteral("2.png")}));
}

TEST_F(ProcessingRunTest, filesThatAreCurrentAreSkippedWithoutARequest)
{
    const QList<FileUrl> files = pictures(3);
    run(stage, files);
    home.log().clear();
    run(stage, files);
    EXPECT_EQ(encoder.filenames().size(), 3);
    EXPECT_EQ(
        home.log().lines().mid(11),
        (QStringList{
            QStringLiteral("⏭️ 向量已是最新，跳过: 1.png"),
            setProcessing("vectors", QStringLiteral("0.3333333333333333"), QStringLiteral("embed_progress")),
            QStringLiteral("⏭️ 向量已是最新，跳过: 2.png"),
            setProcessing("vectors", QStringLiteral("0.6666666666666666"), QStringLiteral("embed_progress")),
            QStringLiteral("⏭️ 向量已是最新，跳过: 3.png"),
            setProcessing("vectors", QStringLiteral("1.0"), QStringLiteral("embed_progress")),
            QStringLiteral("🎯 向量生成完成: ") + path,
            setProcessing("completed", QStringLiteral("1.0"), QStringLiteral("处理完成")),
            QStringLiteral("✅ 状态更新为完成: ") + path,
        }));
}

TEST_F(ProcessingRunTest, theUserReadsHowFarItHasComeInTheirLanguage)
{
    Languages::overrideForTests({QStringLiteral("en-US")}, QStringLiteral("en"));
    Localization::install();
    const QList<FileUrl> files = pictures(3);
    run(stage, files.first(2));
    home.log().clear();
    run(stage, files);
    QStringList details;
    for (const QString &line : home.log().linesStartingWith(QStringLiteral("🔄 setProcessing: ")))
        details.append(line.section(QStringLiteral(", detail: "), 1));
    // The first two have their vectors. Only what is skipped is told in the user's language; the text of a
    // file that was computed is the same everywhere.
    EXPECT_EQ(details, QStringList({QStringLiteral("Previews: 1/3"), QStringLiteral("Previews: 2/3"),
                                    QStringLiteral("Previews: 3/3"), QStringLiteral("Preparing AI analysis…"),
                                    QStringLiteral("AI analysis: 1/3"), QStringLiteral("AI analysis: 2/3"),
                                    QStringLiteral("向量: 3/3"), QStringLiteral("Done")}));
    Languages::endOverrideForTests();
    Localization::remove();
}

TEST_F(ProcessingRunTest, aTouchedFileGetsANewVectorAndKeepsItsThumbnail)
{
    const QList<FileUrl> files = pictures(1);
    run(stage, files);
    const FileUrl thumbnail = *thumbnailURL(files[0]);
    LibraryHome::setModificationTime(thumbnail, 5);
    LibraryHome::setModificationTime(files[0], 2000.25);
    run(stage, files);
    EXPECT_EQ(encoder.filenames().size(), 2);
    EXPECT_TRUE(EmbeddingStore::shared().isUpToDate(files[0].path(), 2000.25));
    EXPECT_EQ(fileAttributes(thumbnail.path())->modificationTime, 5);
}

TEST_F(ProcessingRunTest, withNobodyListeningEveryFileCountsAsFailedAndTheRunCompletes)
{
    PipelineStage deaf({home.folder()}, 0.02);
    encoder.isHolding = true;
    run(deaf, pictures(2));
    EXPECT_EQ(
        home.log().linesStartingWith(QStringLiteral("❌ 向量生成失败: ")),
        (QStringList{QStringLiteral("❌ 向量生成失败: 1.png"), QStringLiteral("❌ 向量生成失败: 2.png")}));
    EXPECT_TRUE(
        home.log().contains(setProcessing("vectors", QStringLiteral("1.0"), QStringLiteral("向量: 2/2"))));
    EXPECT_TRUE(rows().empty());
    EXPECT_EQ(deaf.state.folderProcessingStatus().value(path), State::completed);

    encoder.release(); // too late: nobody is there to take it
    drainMainQueue();
    EXPECT_TRUE(rows().empty());
}

TEST_F(ProcessingRunTest, anEmptyVectorCountsAsFailedAndIsTriedAgainNextTime)
{
    encoder.answer = [](const Image &) { return QVariant::fromValue(EmbeddingMessages::EmbeddingVector()); };
    const QList<FileUrl> files = pictures(1);
    run(stage, files);
    EXPECT_TRUE(home.log().contains(QStringLiteral("❌ 向量生成失败: 1.png")));
    EXPECT_TRUE(rows().empty());
    run(stage, files);
    EXPECT_EQ(encoder.filenames().size(), 2);
}

TEST_F(ProcessingRunTest, aFileThatIsNoPictureCountsInBothStagesAndAsksNobody)
{
    const QList<FileUrl> files{home.writeFile(QStringLiteral("broken.jpg"))};
    run(stage, files);
    EXPECT_TRUE(home.log().contains(QStringLiteral("✅ 缩略图生成完成: broken.jpg")));
    EXPECT_TRUE(home.log().contains(QStringLiteral("❌ 向量生成失败: broken.jpg")));
    EXPECT_TRUE(
        home.log().contains(setProcessing("vectors", QStringLiteral("1.0"), QStringLiteral("向量: 1/1"))));
    EXPECT_TRUE(encoder.filenames().isEmpty());
}

TEST_F(ProcessingRunTest, aPictureThatCannotBeReadSaysSoOnceARun)
{
    const QList<FileUrl> files{home.writeFile(QStringLiteral("broken.jpg"))};
    const QString line = QStringLiteral("❌ 缩略图生成失败: broken.jpg: ");
    run(stage, files);
    EXPECT_EQ(home.log().linesStartingWith(line).size(), 1);
    run(stage, files);
    EXPECT_EQ(home.log().linesStartingWith(line).size(), 2);
}

TEST_F(ProcessingRunTest, aVideoThatCannotBeReadSaysSoWheneverItIsAsked)
{
    run(stage, {home.writeFile(QStringLiteral("broken.mp4"))});
    EXPECT_EQ(home.log()
                  .linesStartingWith(QStringLiteral("Failed to generate video thumbnail for broken.mp4: "))
                  .size(),
              2);
}

TEST_F(ProcessingRunTest, aPictureThatBecomesReadableBetweenTheStagesGetsItsVector)
{
    const FileUrl file = home.writeFile(QStringLiteral("1.png")); // still being copied, say
    const SteppedLog log(QStringLiteral("✅ 缩略图生成完成: 1.png"),
                         [&] { home.writePicture(QStringLiteral("1.png")); });
    run(stage, {file});
    EXPECT_EQ(encoder.filenames(), QStringList{QStringLiteral("1.png")});
    EXPECT_EQ(rows().size(), 1u);
}

TEST_F(ProcessingRunTest, aThumbnailThatAnotherRunMadeBetweenTheStagesIsUsed)
{
    const FileUrl file = home.writeFile(QStringLiteral("1.png"));
    const FileUrl picture = home.writePicture(QStringLiteral("other.png"));
    const SteppedLog log(QStringLiteral("✅ 缩略图生成完成: 1.png"),
                         [&] { QFile::copy(picture.path(), thumbnailURL(file)->path()); });
    run(stage, {file});
    EXPECT_EQ(encoder.filenames(), QStringList{QStringLiteral("1.png")});
}

TEST_F(ProcessingRunTest, aBrokenCacheFileGivesNoVectorAndIsNotMadeAnew)
{
    const QList<FileUrl> files = pictures(1);
    QFile thumbnail(thumbnailURL(files[0])->path());
    ASSERT_TRUE(thumbnail.open(QIODevice::WriteOnly));
    thumbnail.write("no jpeg");
    thumbnail.close();
    run(stage, files);
    EXPECT_TRUE(home.log().contains(QStringLiteral("❌ 向量生成失败: 1.png")));
    EXPECT_TRUE(encoder.filenames().isEmpty());
    EXPECT_EQ(thumbnail.size(), 7);
}

TEST_F(ProcessingRunTest, aFileGoneBeforeItsThumbnailIsPassedOverUncounted)
{
    const QList<FileUrl> files = pictures(3);
    QFile::remove(files[1].path());
    run(stage, files);
    EXPECT_TRUE(home.log().contains(QStringLiteral("⚠️ 文件已不存在，跳过缩略图生成: ") +
                                    files[1].path()));
    EXPECT_EQ(home.log().linesStartingWith(setProcessing("thumbnails", QString(), QString()).chopped(10)),
              (QStringList{
                  setProcessing("thumbnails", QStringLiteral("0.3333333333333333"),
                                QStringLiteral("thumb_progress")),
                  setProcessing("thumbnails", QStringLiteral("0.6666666666666666"),
                                QStringLiteral("thumb_progress")),
              }));
    EXPECT_TRUE(home.log().contains(QStringLiteral("🎯 缩略图生成完成，共 2 张图片")));
    EXPECT_EQ(rows().size(), 2u);
}

TEST_F(ProcessingRunTest, aFileDeletedDuringTheFirstStageIsPassedOver)
{
    const QList<FileUrl> files = pictures(2);
    const SteppedLog log(QStringLiteral("✅ 缩略图生成完成: 1.png"), [&] { QFile::remove(files[1].path()); });
    run(stage, files);
    EXPECT_TRUE(log.lines().contains(QStringLiteral("⚠️ 文件已不存在，跳过缩略图生成: ") +
                                     files[1].path()));
    EXPECT_EQ(stage.state.folderProcessingStatus().value(path), State::completed);
}

TEST_F(ProcessingRunTest, aFileDeletedBetweenTheStagesIsPassedOverUncounted)
{
    const QList<FileUrl> files = pictures(2);
    encoder.onRequest = [&](const QString &) { QFile::remove(files[1].path()); };
    run(stage, files);
    EXPECT_TRUE(home.log().contains(QStringLiteral("⚠️ 文件在向量生成阶段被删除，跳过: ") +
                                    files[1].path()));
    EXPECT_FALSE(
        home.log().contains(setProcessing("vectors", QStringLiteral("1.0"), QStringLiteral("向量: 2/2"))));
    EXPECT_EQ(stage.state.folderProcessingProgress().value(path), 1.0);
    EXPECT_EQ(rows().size(), 1u);
}

TEST_F(ProcessingRunTest, aFileDeletedWhileItsVectorIsComputedGetsNoRow)
{
    const QList<FileUrl> files = pictures(1);
    encoder.onRequest = [&](const QString &) { QFile::remove(files[0].path()); };
    run(stage, files);
    EXPECT_TRUE(home.log().contains(
        QStringLiteral("⚠️ 文件在向量计算后被删除，跳过数据库插入: ") +
        files[0].path()));
    EXPECT_TRUE(home.log().linesStartingWith(QStringLiteral("✅ 向量生成完成")).isEmpty());
    EXPECT_FALSE(
        home.log().contains(setProcessing("vectors", QStringLiteral("1.0"), QStringLiteral("向量: 1/1"))));
    EXPECT_TRUE(rows().empty());
}

TEST_F(ProcessingRunTest, aFileChangedWhileItsVectorIsComputedIsStaleAtTheNextRun)
{
    const QList<FileUrl> files = pictures(1);
    LibraryHome::setModificationTime(files[0], 100);
    encoder.onRequest = [&](const QString &) { LibraryHome::setModificationTime(files[0], 200); };
    run(stage, files);
    EXPECT_TRUE(EmbeddingStore::shared().isUpToDate(files[0].path(), 100));
    EXPECT_FALSE(EmbeddingStore::shared().isUpToDate(files[0].path(), 200));
}

TEST_F(ProcessingRunTest, aCancelDuringTheFirstStageEndsItAtTheNextFile)
{
    const QList<FileUrl> files = pictures(4);
    const SteppedLog log(QStringLiteral("✅ 缩略图生成完成: 2.png"), [this] { task.cancel(); });
    run(stage, files);
    EXPECT_EQ(log.lines().mid(log.lines().size() - 4),
              (QStringList{
                  QStringLiteral("✅ 缩略图生成完成: 2.png"),
                  setProcessing("thumbnails", QStringLiteral("0.5"), QStringLiteral("thumb_progress")),
                  QStringLiteral("🔄 缩略图生成任务已取消: ") + path,
                  setProcessing("idle", QStringLiteral("0.0"), QString()),
              }));
    EXPECT_FALSE(fileExists(thumbnailURL(files[2])->path()));
    EXPECT_EQ(stage.state.folderProcessingStatus().value(path), State::idle);
}

TEST_F(ProcessingRunTest, aCancelDuringTheSecondStageLetsTheFileInWorkFinish)
{
    encoder.onRequest = [this](const QString &filename) {
        if (filename == QStringLiteral("2.png"))
            task.cancel();
    };
    run(stage, pictures(4));
    EXPECT_EQ(home.log().lines().mid(home.log().lines().size() - 4),
              (QStringList{
                  QStringLiteral("✅ 向量生成完成: 2.png"),
                  setProcessing("vectors", QStringLiteral("0.5"), QStringLiteral("向量: 2/4")),
                  QStringLiteral("🔄 向量生成任务已取消: ") + path,
                  setProcessing("idle", QStringLiteral("0.0"), QString()),
              }));
    EXPECT_EQ(rows().size(), 2u);
}

TEST_F(ProcessingRunTest, aFolderTakenOutDuringTheFirstStageEndsTheRun)
{
    const SteppedLog log(QStringLiteral("✅ 缩略图生成完成: 2.png"), [this] { stage.snapshot->setRoots({}); });
    run(stage, pictures(4));
    EXPECT_EQ(
        log.lines().mid(log.lines().size() - 2),
        (QStringList{QStringLiteral("⚠️ 文件夹已从库中移除，取消缩略图生成: ") + path,
                     setProcessing("idle", QStringLiteral("0.0"), QString())}));
}

TEST_F(ProcessingRunTest, aFolderTakenOutDuringTheSecondStageEndsTheRun)
{
    encoder.onRequest = [this](const QString &) { stage.state.publishLibraryFolders({}); };
    run(stage, pictures(3));
    EXPECT_EQ(home.log().lines().mid(home.log().lines().size() - 4),
              (QStringList{
                  QStringLiteral("✅ 向量生成完成: 1.png"),
                  setProcessing("vectors", QStringLiteral("0.3333333333333333"), QStringLiteral("向量: 1/3")),
                  QStringLiteral("⚠️ 文件夹已从库中移除，取消向量生成: ") + path,
                  setProcessing("idle", QStringLiteral("0.0"), QString()),
              }));
}

TEST_F(ProcessingRunTest, filesThatAreAllGoneCompleteTheRunWithoutAReport)
{
    const QList<FileUrl> files{home.file(QStringLiteral("a.jpg")), home.file(QStringLiteral("b.jpg"))};
    run(stage, files);
    EXPECT_EQ(home.log().lines().mid(3),
              (QStringList{
                  QStringLiteral("🎯 缩略图生成完成，共 0 张图片"),
                  setProcessing("vectors", QStringLiteral("0.0"), QStringLiteral("准备生成向量...")),
                  QStringLiteral("🔄 状态更新为向量生成中: ") + path,
                  QStringLiteral("🔄 开始生成向量: ") + path,
                  QStringLiteral("🎯 向量生成完成: ") + path,
                  setProcessing("completed", QStringLiteral("1.0"), QStringLiteral("处理完成")),
                  QStringLiteral("✅ 状态更新为完成: ") + path,
              }));
}

TEST_F(ProcessingRunTest, aStoreThatRefusesToWriteDoesNotStopTheRun)
{
    sqlite3 *database = nullptr;
    const QByteArray file = qgetenv("XDG_DATA_HOME") + "/Qorvane/embeddings.sqlite3";
    ASSERT_EQ(sqlite3_open(file.constData(), &database), SQLITE_OK);
    const auto execute = [database](const char *sql) {
        return sqlite3_exec(database, sql, nullptr, nullptr, nullptr);
    };
    ASSERT_EQ(execute("CREATE TRIGGER refusal BEFORE INSERT ON images "
                      "BEGIN SELECT RAISE(ABORT, 'attempt to write a readonly database'); END"),
              SQLITE_OK);
    run(stage, pictures(2));
    execute("DROP TRIGGER refusal");
    sqlite3_close(database);

    EXPECT_EQ(home.log().linesStartingWith(QStringLiteral("❌ upsert step error: ")).size(), 2);
    EXPECT_TRUE(rows().empty());
    EXPECT_EQ(stage.state.folderProcessingStatus().value(path), State::completed);
}

TEST_F(ProcessingRunTest, aCacheThatCannotBeWrittenStillGivesVectors)
{
    const QByteArray before = qgetenv("XDG_CACHE_HOME");
    home.writeFile(QStringLiteral("plug"));
    qputenv("XDG_CACHE_HOME", QFile::encodeName(home.path(QStringLiteral("plug")))); // a file, not a folder
    run(stage, pictures(2));
    qputenv("XDG_CACHE_HOME", before);
    EXPECT_EQ(rows().size(), 2u);
    EXPECT_EQ(stage.state.folderProcessingStatus().value(path), State::completed);
}

TEST_F(ProcessingRunTest, withoutACacheFolderAtAllNothingIsCounted)
{
    const QByteArray cache = qgetenv("XDG_CACHE_HOME");
    const QByteArray userHome = qgetenv("HOME");
    qunsetenv("XDG_CACHE_HOME");
    qunsetenv("HOME");
    run(stage, pictures(2));
    qputenv("XDG_CACHE_HOME", cache);
    qputenv("HOME", userHome);
    EXPECT_TRUE(home.log().contains(QStringLiteral("🎯 缩略图生成完成，共 0 张图片")));
    EXPECT_TRUE(home.log()
                    .linesStartingWith(setProcessing("thumbnails", QString(), QString()).chopped(10))
                    .isEmpty());
    EXPECT_EQ(stage.state.folderProcessingStatus().value(path), State::completed);
}
