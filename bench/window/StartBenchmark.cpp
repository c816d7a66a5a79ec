// A start of the program with a library of 50,000 rows: from the process's start until its window is painted
// for the first time, and until the encoders are loaded behind it. Each start is a process of its own, which
// does what the program's main() does.

#include "ApplicationSetup.h"
#include "QorvaneApp.h"
#include "encoders/StarterEncoders.h"
#include "encoders/TestEncoders.h"
#include "library/QorManage.h"
#include "platform/InstanceMessage.h"
#include "platform/Log.h"
#include "platform/SingleInstance.h"
#include "views/window/ContentView.h"
#include "window/WindowLibrary.h"

#include <QGuiApplication>
#include <QProcess>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <vector>

namespace Qorvane {

namespace {

constexpr int rowCount = 50'000;
constexpr double nanosecondsPerMillisecond = 1e6;

qint64 now()
{
    return std::chrono::steady_clock::now().time_since_epoch().count();
}

/// Prepares the library and ends when its folder is stored.
int fill()
{
    if (!installStarter())
        installTestFamily(QStringLiteral("openai"));
    const QString path = qEnvironmentVariable("HOME") + QStringLiteral("/Pictures");
    makeFinishedFolder(path, rowCount);
    QorManage library;
    QObject::connect(&library, &QorManage::folderProcessingStatusChanged, &library, [&library] {
        if (!library.libraryFolders().isEmpty() &&
            library.processingState(library.libraryFolders().constFirst().url) ==
                FolderProcessingState::completed)
            QCoreApplication::exit();
    });
    library.addFolder(FileUrl::directory(path));
    QCoreApplication::exec();
    std::_Exit(0);
}

/// A start that tells when it was where, in milliseconds since `begun`, and ends.
int open(qint64 begun)
{
    const auto tell = [begun](const char *what) {
        std::printf("%s %f\n", what, double(now() - begun) / nanosecondsPerMillisecond);
        std::fflush(stdout);
    };
    tell("main");
    SingleInstance instance(SingleInstance::libraryPlace());
    instance.claim(InstanceMessage::show(), std::chrono::seconds(10));
    QorvaneApp app;
    instance.listen();
    tell("ready");
    if (!app.openMainWindow())
        return 1;
    tell("made");
    QObject::connect(app.contentView(), &ContentView::appeared, &app, [&tell] { tell("painted"); });
    QObject::connect(&app.contentView()->clipService(), &ChineseClipService::modelsLoadedChanged, &app,
                     [&tell] {
                         tell("loaded");
                         std::_Exit(0);
                     });
    QCoreApplication::exec();
    return 1;
}

void start(benchmark::State &state)
{
    QProcess::execute(QCoreApplication::applicationFilePath(), {QStringLiteral("--fill")});
    QMap<QByteArray, std::vector<double>> times;
    for (auto step : state) {
        QProcess process;
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process.start(QCoreApplication::applicationFilePath(),
                      {QStringLiteral("--open"), QString::number(now())});
        if (!process.waitForFinished(60'000) || process.exitCode() != 0) {
            state.SkipWithError("the window doesn't open");
            return;
        }
        const QByteArray output = process.readAllStandardOutput();
        for (const QByteArray &line : output.split('\n')) {
            const QList<QByteArray> words = line.split(' ');
            if (words.size() == 2)
                times[words.at(0)].push_back(words.at(1).toDouble());
        }
        state.SetIterationTime(times["painted"].back() / 1e3);
    }
    for (auto time = times.begin(); time != times.end(); ++time) {
        std::ranges::sort(time.value());
        const std::string name = "start_" + time.key().toStdString() + "_ms";
        state.counters[name] = time.value().at(time.value().size() / 2);
        state.counters[name + "_least"] = time.value().front();
    }
}

BENCHMARK(start)->Unit(benchmark::kMillisecond)->Iterations(9)->UseManualTime();

} // namespace

} // namespace Qorvane

int main(int argc, char **argv)
{
    using namespace Qorvane;
    const bool isStart = argc > 2 && std::strcmp(argv[1], "--open") == 0;
    const bool isFilling = argc > 1 && std::strcmp(argv[1], "--fill") == 0;
    std::unique_ptr<QTemporaryDir> home;
    if (!isStart && !isFilling) {
        home = std::make_unique<QTemporaryDir>();
        leaveTheDesktop(home->path());
    }
    QGuiApplication application(argc, argv);
    setUpApplication(application);
    Log::setSink([](const QString &) {});
    if (isFilling)
        return fill();
    if (isStart)
        return open(QByteArray(argv[2]).toLongLong());
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
