// The window with a folder of 50,000 photographs: how long a frame takes while the whole list scrolls by, and
// what memory that leaves; how soon a folder shows its first thumbnails; how long a key in the search field,
// or an arrow key held in the grid, holds the frames up. On the software scene graph, in a window of 1440 by
// 900.

#include "encoders/TestEncoders.h"
#include "library/QorManage.h"
#include "platform/Log.h"
#include "support/ProcessMemory.h"
#include "views/window/ContentView.h"
#include "window/FrameClock.h"
#include "window/WindowLibrary.h"

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QQuickItem>
#include <QTemporaryDir>
#include <QTest>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <memory>

namespace Qorvane {

namespace {

constexpr int largeCount = 50'000;
constexpr int mediumCount = 2'000;
constexpr int framesPerSecond = 60;
constexpr double kibibytesPerMebibyte = 1024;

/// The window over a library of two folders whose runs are over.
class Stage
{
public:
    static Stage &shared()
    {
        static Stage stage;
        return stage;
    }

    QorManage &library() { return m_library; }
    ContentViewState &state() { return m_view.state(); }
    QQuickWindow &window() { return *m_view.window(); }
    FrameClock &frames() { return *m_frames; }

    QQuickItem *item(const char *name) const
    {
        return m_view.window()->findChild<QQuickItem *>(QString::fromLatin1(name));
    }

    void show(int fileCount)
    {
        m_library.setSelectedFolder(folder(fileCount));
        m_frames->runUntil(
            [&] { return state().pages()->photos()->count() == fileCount && areThumbnailsShown(allOf); });
        // Its run looks at every file again.
        m_frames->runUntil([&] { return isRunOver(fileCount); });
    }

    enum Share { anyOf, allOf };
    /// Whether the cells in view have their pictures, any of them or all.
    bool areThumbnailsShown(Share share) const
    {
        QQuickItem *const grid = item("photoGrid");
        if (!grid->isVisible())
            return false;
        int loaded = 0;
        int visible = 0;
        for (QQuickItem *const cell : grid->property("contentItem").value<QQuickItem *>()->childItems()) {
            auto *const thumbnail = cell->findChild<QQuickItem *>(QStringLiteral("thumbnail"));
            const double top = cell->mapToItem(grid, QPointF()).y();
            if (!thumbnail || !cell->isVisible() || top + cell->height() <= 0 || top >= grid->height())
                continue;
            ++visible;
            loaded += thumbnail->property("isLoaded").toBool() ? 1 : 0;
        }
        return visible > 0 && (share == anyOf ? loaded > 0 : loaded == visible);
    }

    Folder folder(int fileCount) const
    {
        const auto folders = m_library.libraryFolders();
        return *std::ranges::find_if(folders, [&](const Folder &folder) {
            return folder.url.lastPathComponent() == QString::number(fileCount);
        });
    }

private:
    Stage()
    {
        installTestFamily(QStringLiteral("openai"));
        for (const int count : {largeCount, mediumCount}) {
            const QString path = qEnvironmentVariable("HOME") + u'/' + QString::number(count);
            makeFinishedFolder(path, count);
            m_library.addFolder(FileUrl::directory(path));
        }
        m_view.show();
        m_view.window()->resize(1440, 900);
        if (!QTest::qWaitForWindowActive(m_view.window()))
            qFatal("the window does not open");
        m_frames = std::make_unique<FrameClock>(*m_view.window());
        m_frames->runUntil(
            [&] { return m_library.libraryFolders().size() == 2 && m_view.clipService().modelsLoaded(); });
        m_frames->runUntil([&] { return isRunOver(largeCount) && isRunOver(mediumCount); });
    }

    bool isRunOver(int fileCount) const
    {
        return m_library.processingState(folder(fileCount).url) == FolderProcessingState::completed;
    }

    QorManage m_library;
    ContentView m_view{m_library};
    std::unique_ptr<FrameClock> m_frames;
};

void wholeListScrolls(benchmark::State &state)
{
    Stage &stage = Stage::shared();
    stage.show(largeCount);
    QQuickItem *const grid = stage.item("photoGrid");
    const double top = grid->property("contentY").toDouble();
    const double way = grid->property("contentHeight").toDouble() - grid->height();
    for (auto step : state) {
        const int seconds = int(state.range(0));
        const int frameCount = seconds * framesPerSecond;
        grid->setProperty("contentY", top);
        stage.frames().runUntil([&] { return stage.areThumbnailsShown(Stage::allOf); });
        stage.frames().clear();
        const double before = ProcessMemory::resident();
        double highest = before;
        stage.frames().run(frameCount, [&](int frame) {
            grid->setProperty("contentY", top + way * frame / frameCount);
            highest = std::max(highest, ProcessMemory::resident());
        });
        const double p95 = stage.frames().percentile(0.95);
        const double longest = stage.frames().longest();
        state.SetIterationTime(p95 / 1e3);
        const std::string name = "scroll_" + std::to_string(seconds) + "s_";
        state.counters[name + "p50_ms"] = stage.frames().percentile(0.5);
        state.counters[name + "p95_ms"] = p95;
        state.counters[name + "p95_ms_cpu"] = stage.frames().processorPercentile(0.95);
        state.counters[name + "p50_ms_cpu"] = stage.frames().processorPercentile(0.5);
        state.counters[name + "longest_ms"] = longest;
        state.counters[name + "longest_ms_cpu"] = stage.frames().longestOnProcessor();
        state.counters[name + "growth_mb"] = (highest - before) / kibibytesPerMebibyte;
    }
}

void folderShowsThumbnails(benchmark::State &state)
{
    Stage &stage = Stage::shared();
    const int count = int(state.range(0));
    std::vector<double> first;
    std::vector<double> all;
    stage.frames().clear();
    const int other = count == largeCount ? mediumCount : largeCount;
    for (auto step : state) {
        // Another folder's pictures are in the cells: the same ones would be there at once.
        stage.show(other);
        QElapsedTimer timer;
        timer.start();
        stage.library().setSelectedFolder(stage.folder(count));
        const auto shows = [&](Stage::Share share) {
            return stage.state().pages()->photos()->count() == count && stage.areThumbnailsShown(share);
        };
        stage.frames().runUntil([&] { return shows(Stage::anyOf); });
        first.push_back(double(timer.elapsed()));
        stage.frames().runUntil([&] { return shows(Stage::allOf); });
        all.push_back(double(timer.elapsed()));
        state.SetIterationTime(first.back() / 1e3);
    }
    std::ranges::sort(first);
    std::ranges::sort(all);
    const std::string name = "folder_" + std::to_string(count);
    state.counters[name + "_first_ms"] = first.at(first.size() / 2);
    state.counters[name + "_first_ms_least"] = first.front();
    state.counters[name + "_all_ms"] = all.at(all.size() / 2);
    state.counters[name + "_all_ms_least"] = all.front();
}

void keyHoldsFramesUp(benchmark::State &state)
{
    Stage &stage = Stage::shared();
    stage.show(largeCount);
    QQuickItem *const field = stage.item("searchField");
    field->forceActiveFocus();
    for (auto step : state) {
        stage.frames().clear();
        for (const QChar letter : QStringLiteral("dogs on the beach")) {
            stage.frames().run(1, [&](int) { QTest::keyClick(&stage.window(), letter.toLatin1()); });
            // As quick a typist as there is.
            stage.frames().run(4, [](int) {});
        }
        stage.frames().runUntil([&] { return !stage.state().search()->isSearching(); });
        const double typing = stage.frames().longest();
        state.counters["typing_longest_ms_cpu"] = stage.frames().longestOnProcessor();
        stage.frames().clear();
        stage.frames().run(1, [&](int) { QTest::keyClick(&stage.window(), Qt::Key_Escape); });
        stage.frames().run(10, [](int) {});
        state.SetIterationTime(typing / 1e3);
        state.counters["typing_longest_ms"] = typing;
        state.counters["emptying_longest_ms"] = stage.frames().longest();
        state.counters["emptying_longest_ms_cpu"] = stage.frames().longestOnProcessor();
    }
}

void heldArrowHoldsFramesUp(benchmark::State &state)
{
    constexpr int farRow = 49'000;
    constexpr int keyCount = 60; // two seconds of a keyboard's repetition
    Stage &stage = Stage::shared();
    stage.show(mediumCount);
    stage.show(largeCount);
    stage.item("photoGrid")->forceActiveFocus();
    for (auto step : state) {
        // Sent rather than clicked by the test library, which would draw frames of its own in between.
        const auto press = [&](int) {
            QKeyEvent key(QEvent::KeyPress, Qt::Key_Down, Qt::NoModifier);
            QCoreApplication::sendEvent(&stage.window(), &key);
        };
        stage.frames().clear();
        // The first one looks the list up.
        stage.frames().run(1, press);
        state.counters["first_arrow_ms"] = stage.frames().longest();
        state.counters["first_arrow_ms_cpu"] = stage.frames().longestOnProcessor();
        stage.state().pages()->photos()->selectAlone(farRow);
        stage.frames().run(1, press);
        stage.frames().runUntil([&] { return stage.areThumbnailsShown(Stage::allOf); });
        stage.frames().clear();
        for (int key = 0; key < keyCount; ++key) {
            stage.frames().run(1, press);
            stage.frames().run(1, [](int) {});
        }
        const double longest = stage.frames().longest();
        state.SetIterationTime(longest / 1e3);
        state.counters["arrows_longest_ms"] = longest;
        state.counters["arrows_longest_ms_cpu"] = stage.frames().longestOnProcessor();
    }
}

BENCHMARK(wholeListScrolls)->Unit(benchmark::kMillisecond)->Iterations(1)->UseManualTime()->Arg(5)->Arg(60);
BENCHMARK(folderShowsThumbnails)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(7)
    ->UseManualTime()
    ->Arg(mediumCount)
    ->Arg(largeCount);
BENCHMARK(keyHoldsFramesUp)->Unit(benchmark::kMillisecond)->Iterations(1)->UseManualTime();
BENCHMARK(heldArrowHoldsFramesUp)->Unit(benchmark::kMillisecond)->Iterations(1)->UseManualTime();

} // namespace

} // namespace Qorvane

int main(int argc, char **argv)
{
    const QTemporaryDir home;
    Qorvane::leaveTheDesktop(home.path());
    // The platform would wait for more to draw; a screen doesn't.
    qputenv("QT_QPA_UPDATE_IDLE_TIME", "0");
    const QGuiApplication application(argc, argv);
    Qorvane::Log::setSink([](const QString &) {});
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    std::fflush(nullptr);
    std::_Exit(0); // as the program ends: there is no orderly stop
}
