#include "library/LibraryHome.h"
#include "library/PipelineStage.h"
#include "support/Waiting.h"

#include <gtest/gtest.h>

#include <limits>
#include <thread>

using namespace Qorvane;

namespace {

using State = FolderProcessingState;

class ProcessingReportsTest : public testing::Test
{
protected:
    void report(std::optional<State> state, std::optional<double> progress,
                const std::optional<QString> &detail)
    {
        stage.reports->setProcessing(path, state, progress, detail);
    }

    LibraryHome home;
    PipelineStage stage{{}};
    const QString path = QStringLiteral("/a");
};

} // namespace

TEST_F(ProcessingReportsTest, logsEveryReportInFullAndAbsentPartsAsNil)
{
    report(State::thumbnails, 0, QStringLiteral("准备生成缩略图..."));
    report(State::vectors, 1.0 / 12, std::nullopt);
    report(State::completed, 1, QString());
    report(State::idle, 0.5, QStringLiteral("x"));
    report(std::nullopt, std::nullopt, std::nullopt);
    EXPECT_EQ(home.log().lines(),
              (QStringList{
                  QStringLiteral(
                      "🔄 setProcessing: /a -> state: thumbnails, progress: 0.0, detail: 准备生成缩略图..."),
                  QStringLiteral(
                      "🔄 setProcessing: /a -> state: vectors, progress: 0.08333333333333333, detail: nil"),
                  QStringLiteral("🔄 setProcessing: /a -> state: completed, progress: 1.0, detail: "),
                  QStringLiteral("🔄 setProcessing: /a -> state: idle, progress: 0.5, detail: x"),
                  QStringLiteral("🔄 setProcessing: /a -> state: nil, progress: nil, detail: nil"),
              }));
}

TEST_F(ProcessingReportsTest, numbersThatAreNoneAreShownAsTheyAre)
{
    report(std::nullopt, std::numeric_limits<double>::quiet_NaN(), std::nullopt);
    report(std::nullopt, 1e-5, std::nullopt);
    EXPECT_EQ(
        home.log().lines(),
        (QStringList{QStringLiteral("🔄 setProcessing: /a -> state: nil, progress: nan, detail: nil"),
                     QStringLiteral("🔄 setProcessing: /a -> state: nil, progress: 1e-05, detail: nil")}));
}

TEST_F(ProcessingReportsTest, returnsBeforeAnythingIsPublished)
{
    report(State::vectors, 0.5, QStringLiteral("x"));
    EXPECT_TRUE(stage.state.folderProcessingStatus().isEmpty());
    drainMainQueue();
    EXPECT_EQ(stage.state.folderProcessingStatus().value(path), State::vectors);
}

TEST_F(ProcessingReportsTest, anAbsentDetailLeavesTheEarlierOneInPlace)
{
    report(State::thumbnails, 0.25, QStringLiteral("before"));
    report(State::vectors, 0.5, std::nullopt);
    drainMainQueue();
    EXPECT_EQ(stage.state.folderProcessingStatus().value(path), State::vectors);
    EXPECT_EQ(stage.state.folderProcessingProgress().value(path), 0.5);
    EXPECT_EQ(stage.state.folderProcessingDetails().value(path), QStringLiteral("before"));
}

TEST_F(ProcessingReportsTest, anIdleFolderKeepsItsThreeEntries)
{
    report(State::idle, 0, QString());
    drainMainQueue();
    EXPECT_EQ(stage.state.folderProcessingStatus(), (QHash<QString, State>{{path, State::idle}}));
    EXPECT_EQ(stage.state.folderProcessingProgress(), (QHash<QString, double>{{path, 0.0}}));
    EXPECT_EQ(stage.state.folderProcessingDetails(), (QHash<QString, QString>{{path, QString()}}));
}

TEST_F(ProcessingReportsTest, everyReportAnnouncesThreeChangesInOrderEvenWhenItChangesNothing)
{
    QStringList signalNames;
    const auto note = [&signalNames](const char *name) {
        return [&signalNames, name] { signalNames.append(QString::fromLatin1(name)); };
    };
    const LibraryState *state = &stage.state;
    QObject::connect(state, &LibraryState::objectWillChange, state, note("will"));
    QObject::connect(state, &LibraryState::folderProcessingStatusChanged, state, note("status"));
    QObject::connect(state, &LibraryState::folderProcessingProgressChanged, state, note("progress"));
    QObject::connect(state, &LibraryState::folderProcessingDetailsChanged, state, note("details"));
    report(std::nullopt, std::nullopt, std::nullopt);
    drainMainQueue();
    EXPECT_EQ(signalNames.join(u' '), QStringLiteral("will status will progress will details"));
}

TEST_F(ProcessingReportsTest, aChangeIsAnnouncedBeforeTheValueIsWritten)
{
    report(State::thumbnails, std::nullopt, std::nullopt);
    drainMainQueue();
    QList<State> seen;
    const auto look = [&] { seen.append(stage.state.folderProcessingStatus().value(path)); };
    QObject::connect(&stage.state, &LibraryState::objectWillChange, &stage.state, look);
    QObject::connect(&stage.state, &LibraryState::folderProcessingStatusChanged, &stage.state, look);
    report(State::vectors, std::nullopt, std::nullopt);
    drainMainQueue();
    EXPECT_EQ(seen.mid(0, 2), (QList<State>{State::thumbnails, State::vectors}));
}

TEST_F(ProcessingReportsTest, everyReportOfAThreadArrivesInOrder)
{
    QList<double> seen;
    QObject::connect(&stage.state, &LibraryState::folderProcessingProgressChanged, &stage.state,
                     [&] { seen.append(stage.state.folderProcessingProgress().value(path)); });
    QList<double> sent;
    for (int i = 0; i < 1000; ++i)
        sent.append(i);
    std::thread([&] {
        for (const double progress : sent)
            report(State::vectors, progress, std::nullopt);
    }).join();
    ASSERT_TRUE(waitUntil([&] { return seen.size() == sent.size(); }));
    EXPECT_EQ(seen, sent);
}

TEST_F(ProcessingReportsTest, manyEntriesMakeAReportNoDearer)
{
    // Views keep reading the dictionaries, by reference, while they grow.
    for (int i = 0; i < 50'000; ++i)
        stage.state.publishProcessing(QStringLiteral("/%1").arg(i), State::completed, 1, QStringLiteral("x"));
    const void *storage = &*stage.state.folderProcessingStatus().constFind(QStringLiteral("/7"));
    stage.state.publishProcessing(path, State::vectors, 0.5, QStringLiteral("y"));
    EXPECT_EQ(storage, &*stage.state.folderProcessingStatus().constFind(QStringLiteral("/7")));
    EXPECT_EQ(stage.snapshot->processedPaths().size(), 50'001);
}

TEST_F(ProcessingReportsTest, outlivesWhatItReportsTo)
{
    auto state = std::make_unique<LibraryState>(stage.snapshot);
    const ProcessingReports reports(*state);
    reports.setProcessing(path, State::vectors, 0, std::nullopt);
    state.reset();
    reports.setProcessing(path, State::vectors, 0.5, std::nullopt);
    drainMainQueue();
    EXPECT_EQ(home.log().lines().size(), 2);
    EXPECT_EQ(reports.processingState(FileUrl::directory(path)), State::idle);
}

TEST_F(ProcessingReportsTest, aFolderBelowACompletedRootShowsNoMarkOfItsOwn)
{
    const FileUrl root = FileUrl::directory(QStringLiteral("/a"));
    const FileUrl below = FileUrl::directory(QStringLiteral("/a/b"));
    stage.state.publishLibraryFolders({Folder{root, std::nullopt}});
    const auto shown = [&](const FileUrl &url) { return stage.reports->processingState(url); };

    EXPECT_EQ(shown(below), State::idle);
    stage.state.publishProcessing(below.path(), State::vectors, 0, QString());
    EXPECT_EQ(shown(below), State::vectors);
    stage.state.publishProcessing(below.path(), State::completed, 1, QString());
    EXPECT_EQ(shown(below), State::completed);
    stage.state.publishProcessing(root.path(), State::completed, 1, QString());
    EXPECT_EQ(shown(below), State::idle);
    EXPECT_EQ(shown(root), State::completed);
}
