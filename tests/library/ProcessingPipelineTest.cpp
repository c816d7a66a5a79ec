#include "library/ProcessingPipeline.h"

#include "library/FakeEncoder.h"
#include "library/LibraryHome.h"
#include "library/PipelineStage.h"
#include "platform/DetachedTask.h"
#include "store/EmbeddingStore.h"
#include "support/Waiting.h"

#include <gtest/gtest.h>

using namespace Qorvane;

namespace {

using State = FolderProcessingState;

class ProcessingPipelineTest : public testing::Test
{
protected:
    QList<FileUrl> pictures(const QString &folder, int count) const
    {
        QList<FileUrl> urls;
        for (int i = 1; i <= count; ++i)
            urls.append(home.writePicture(folder + QStringLiteral("/%1%2.png").arg(folder).arg(i)));
        return urls;
    }

    bool waitForLine(const QString &line)
    {
        return waitUntil([&] { return home.log().contains(line); });
    }

    bool waitForEnd(const QString &path) { return waitForLine(QStringLiteral("✅ 状态更新为完成: ") + path); }

    State status(const QString &path)
    {
        drainMainQueue();
        return stage.state.folderProcessingStatus().value(path, State::idle);
    }

    LibraryHome home;
    FakeEncoder encoder;
    PipelineStage stage{{home.folder()}};
    const QString a = home.path(QStringLiteral("a"));
    const QString b = home.path(QStringLiteral("b"));
};

} // namespace

TEST_F(ProcessingPipelineTest, anEmptyListChangesNothing)
{
    stage.pipeline.startProcessing({}, a);
    settle();
    EXPECT_EQ(home.log().lines(), QStringList());
    EXPECT_TRUE(stage.state.folderProcessingStatus().isEmpty());
}

TEST_F(ProcessingPipelineTest, aStartShowsTheFirstStageBeforeTheRunBegins)
{
    stage.pipeline.startProcessing(pictures(QStringLiteral("a"), 1), a);
    EXPECT_EQ(home.log().lines().value(0),
              QStringLiteral("🔄 setProcessing: ") + a +
                  QStringLiteral(" -> state: thumbnails, progress: 0.0, detail: 准备生成缩略图..."));
    ASSERT_TRUE(waitForEnd(a));
    EXPECT_EQ(status(a), State::completed);
    EXPECT_EQ(stage.state.folderProcessingDetails().value(a), QStringLiteral("处理完成"));
}

TEST_F(ProcessingPipelineTest, aCancelMidRunEndsItIdleAndKeepsWhatWasDone)
{
    encoder.onRequest = [this](const QString &filename) {
        if (filename == QStringLiteral("a2.png")) {
            stage.pipeline.cancelFolderTasks(a);
            EXPECT_TRUE(waitForLine(QStringLiteral("🔄 已取消文件夹的后台任务: ") + a));
        }
    };
    stage.pipeline.startProcessing(pictures(QStringLiteral("a"), 4), a);
    ASSERT_TRUE(waitForLine(QStringLiteral("🔄 向量生成任务已取消: ") + a));
    DetachedTask::waitUntilIdle();
    EXPECT_EQ(status(a), State::idle);
    EXPECT_EQ(stage.state.folderProcessingProgress().value(a), 0);
    EXPECT_EQ(EmbeddingStore::shared().getImageCount(), 2);
}

TEST_F(ProcessingPipelineTest, aCancelMakesAFinishedRunIdle)
{
    stage.pipeline.startProcessing(pictures(QStringLiteral("a"), 1), a);
    ASSERT_TRUE(waitForEnd(a));
    stage.pipeline.cancelFolderTasks(a);
    ASSERT_TRUE(waitForLine(QStringLiteral("🔄 已取消文件夹的后台任务: ") + a));
    ASSERT_TRUE(waitUntil([&] { return status(a) == State::idle; }));

    home.log().clear(); // the entry is gone now
    stage.pipeline.cancelFolderTasks(a);
    stage.pipeline.cancelFolderTasksSilently(a);
    stage.pipeline.cancelFolderTasks(b);
    stage.pipeline.startProcessing(pictures(QStringLiteral("b"), 1), b); // runs behind them on the queue
    ASSERT_TRUE(waitForEnd(b));
    EXPECT_TRUE(home.log().linesStartingWith(QStringLiteral("🔄 已取消")).isEmpty());
    EXPECT_TRUE(home.log().linesStartingWith(QStringLiteral("🔄 静默")).isEmpty());
}

TEST_F(ProcessingPipelineTest, aCancelTouchesNoRunAboveOrBelow)
{
    encoder.isHolding = true;
    const QString below = a + QStringLiteral("/sub");
    stage.pipeline.startProcessing(pictures(QStringLiteral("a"), 2), below);
    ASSERT_TRUE(waitUntil([&] { return encoder.held().size() == 1; }));
    stage.pipeline.cancelFolderTasks(a);
    encoder.isHolding = false;
    encoder.release();
    ASSERT_TRUE(waitForEnd(below));
}

TEST_F(ProcessingPipelineTest, aSilentCancelLeavesTheStateToTheRunItself)
{
    encoder.isHolding = true;
    stage.pipeline.startProcessing(pictures(QStringLiteral("a"), 2), a);
    ASSERT_TRUE(waitUntil([&] { return encoder.held().size() == 1; }));
    stage.pipeline.cancelFolderTasksSilently(a);
    ASSERT_TRUE(waitForLine(QStringLiteral("🔄 静默取消文件夹的后台任务: ") + a));
    EXPECT_EQ(status(a), State::vectors);
    encoder.release();
    ASSERT_TRUE(waitUntil([&] { return status(a) == State::idle; }));
}

TEST_F(ProcessingPipelineTest, aSupersededRunWritesIdleOverTheNewOnesStateUntilThatReportsAgain)
{
    encoder.isHolding = true;
    const QList<FileUrl> files = pictures(QStringLiteral("a"), 2);
    stage.pipeline.startProcessing(files, a);
    ASSERT_TRUE(waitUntil([&] { return encoder.held().size() == 1; }));
    stage.pipeline.startProcessing(files, a);
    ASSERT_TRUE(waitForLine(QStringLiteral("🔄 静默取消文件夹的后台任务: ") + a));
    ASSERT_TRUE(waitUntil([&] { return encoder.held().size() == 2; }));
    EXPECT_EQ(status(a), State::vectors); // the new run's

    encoder.release(); // the old one's file in work finishes, and the next look at its flag ends it
    ASSERT_TRUE(waitForLine(QStringLiteral("🔄 向量生成任务已取消: ") + a));
    ASSERT_TRUE(waitUntil([&] { return status(a) == State::idle; }));

    encoder.isHolding = false;
    encoder.release();
    ASSERT_TRUE(waitForEnd(a));
    EXPECT_EQ(status(a), State::completed);
}

TEST_F(ProcessingPipelineTest, runsOfTwoPathsGoOnSideBySideOverTheSameFilesToo)
{
    encoder.isHolding = true;
    const QList<FileUrl> files = pictures(QStringLiteral("a"), 1);
    stage.pipeline.startProcessing(files, a);
    stage.pipeline.startProcessing(files, b);
    ASSERT_TRUE(waitUntil([&] { return encoder.held().size() == 2; }));
    EXPECT_EQ(status(a), State::vectors);
    EXPECT_EQ(status(b), State::vectors);
    encoder.release();
    encoder.release();
    ASSERT_TRUE(waitForEnd(a));
    ASSERT_TRUE(waitForEnd(b));
    EXPECT_EQ(EmbeddingStore::shared().getImageCount(), 1);
}

TEST_F(ProcessingPipelineTest, cancellingAllMakesEveryFolderIdleThatEverHadAState)
{
    encoder.isHolding = true;
    stage.pipeline.startProcessing(pictures(QStringLiteral("a"), 2), a);
    ASSERT_TRUE(waitUntil([&] { return encoder.held().size() == 1; }));
    stage.reports->setProcessing(b, State::completed, 1, QStringLiteral("处理完成"));
    EXPECT_EQ(status(b), State::completed);

    stage.pipeline.cancelAllTasks();
    ASSERT_TRUE(waitForLine(QStringLiteral("🔄 已取消后台任务: ") + a));
    ASSERT_TRUE(waitUntil([&] { return status(a) == State::idle && status(b) == State::idle; }));
    EXPECT_EQ(stage.state.folderProcessingDetails().value(b), QString());
    encoder.release();
    ASSERT_TRUE(waitForLine(QStringLiteral("🔄 向量生成任务已取消: ") + a));
}

TEST_F(ProcessingPipelineTest, aFolderOpenedAgainGoesThroughAllItsStatesAgain)
{
    const QList<FileUrl> files = pictures(QStringLiteral("a"), 1);
    stage.pipeline.startProcessing(files, a);
    ASSERT_TRUE(waitForEnd(a));
    drainMainQueue();
    QList<State> states;
    QObject::connect(&stage.state, &LibraryState::folderProcessingStatusChanged, &stage.state, [&] {
        const State state = stage.state.folderProcessingStatus().value(a);
        if (states.isEmpty() || states.last() != state)
            states.append(state);
    });
    home.log().clear();
    stage.pipeline.startProcessing(files, a);
    ASSERT_TRUE(waitForEnd(a));
    drainMainQueue();
    EXPECT_EQ(states, (QList<State>{State::thumbnails, State::vectors, State::completed}));
}

TEST_F(ProcessingPipelineTest, itsEndCancelsTheRunInWorkAndWaitsForNone)
{
    encoder.isHolding = true;
    {
        PipelineStage brief({home.folder()});
        brief.pipeline.startProcessing(pictures(QStringLiteral("a"), 2), a);
        ASSERT_TRUE(waitUntil([&] { return encoder.held().size() == 1; }));
    }
    EXPECT_TRUE(home.log().contains(QStringLiteral("🔄 已取消后台任务: ") + a));
    encoder.release();
    EXPECT_TRUE(waitForLine(QStringLiteral("🔄 向量生成任务已取消: ") + a));
}

TEST_F(ProcessingPipelineTest, onlyACancelEndsTheRunOfARemovedRootWhosePathAnotherRootBegins)
{
    const FileUrl ab = home.makeFolder(QStringLiteral("a/b"));
    const FileUrl ab2 = home.makeFolder(QStringLiteral("a/b2"));
    QList<FileUrl> files;
    for (int i = 1; i <= 4; ++i)
        files.append(home.writePicture(QStringLiteral("a/b2/%1.png").arg(i)));
    const QList<Folder> both{{ab, std::nullopt}, {ab2, std::nullopt}};
    stage.state.publishLibraryFolders(both);

    // Taken out with its first vector, and not cancelled: it goes on to its end.
    encoder.onRequest = [&](const QString &) { stage.state.publishLibraryFolders({both.first()}); };
    stage.pipeline.startProcessing(files, ab2.path());
    ASSERT_TRUE(waitForEnd(ab2.path()));
    EXPECT_EQ(EmbeddingStore::shared().getImageCount(), 4);

    // The same and cancelled: the file in work is the last.
    EmbeddingStore::shared().deleteFolder(ab2.path());
    home.log().clear();
    encoder.onRequest = [&](const QString &) {
        stage.pipeline.cancelFolderTasks(ab2.path());
        EXPECT_TRUE(waitForLine(QStringLiteral("🔄 已取消文件夹的后台任务: ") + ab2.path()));
    };
    stage.pipeline.startProcessing(files, ab2.path());
    ASSERT_TRUE(waitForLine(QStringLiteral("🔄 向量生成任务已取消: ") + ab2.path()));
    EXPECT_EQ(EmbeddingStore::shared().getImageCount(), 1);
    EXPECT_TRUE(home.log().linesStartingWith(QStringLiteral("⚠️ 文件夹已从库中移除")).isEmpty());
}

TEST_F(ProcessingPipelineTest, theRunOfARemovedRootThatNoOtherBeginsEndsByItself)
{
    const FileUrl ab = home.makeFolder(QStringLiteral("a/b"));
    const FileUrl other = home.makeFolder(QStringLiteral("a/c"));
    QList<FileUrl> files;
    for (int i = 1; i <= 3; ++i)
        files.append(home.writePicture(QStringLiteral("a/c/%1.png").arg(i)));
    stage.state.publishLibraryFolders({{ab, std::nullopt}, {other, std::nullopt}});
    encoder.onRequest = [&](const QString &) { stage.state.publishLibraryFolders({{ab, std::nullopt}}); };
    stage.pipeline.startProcessing(files, other.path());
    ASSERT_TRUE(waitForLine(QStringLiteral("⚠️ 文件夹已从库中移除，取消向量生成: ") +
                            other.path()));
    EXPECT_EQ(EmbeddingStore::shared().getImageCount(), 1);
}

TEST(LibrarySnapshot, aRootStillCountsInTheFilesOfARemovedOneThatItsPathBegins)
{
    LibrarySnapshot snapshot;
    const Folder ab{FileUrl::directory(QStringLiteral("/a/b")), std::nullopt};
    const Folder ab2{FileUrl::directory(QStringLiteral("/a/b2")), std::nullopt};
    snapshot.setRoots({ab, ab2});
    snapshot.setRoots({ab});
    EXPECT_TRUE(snapshot.containsPath(QStringLiteral("/a/b2/x.jpg")));
    EXPECT_FALSE(snapshot.containsPath(QStringLiteral("/a/x.jpg")));
}
