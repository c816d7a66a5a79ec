#include "app/FirstSearch.h"
#include "platform/Log.h"
#include "support/OrderlyEnd.h"

#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <chrono>

// How long the first search after a start keeps its user waiting, with the starter encoders. Without them
// nothing is measured.

namespace Qorvane {

namespace {

constexpr int pictureCount = 100;
constexpr double millisecondsPerSecond = 1e3;

void firstSearch(benchmark::State &state)
{
    for (auto step : state) {
        QString error;
        const auto times = measureFirstSearch(pictureCount, &error);
        if (!times) {
            state.SkipWithError(qPrintable(error));
            return;
        }
        state.SetIterationTime(times->untilAnswered);
        state.counters["answered_ms"] = times->untilAnswered * millisecondsPerSecond;
        state.counters["answered_ms_cpu"] = times->processorTime * millisecondsPerSecond;
        state.counters["loaded_ms"] = times->untilLoaded * millisecondsPerSecond;
    }
}

// A process has one first search.
BENCHMARK(firstSearch)->Unit(benchmark::kMillisecond)->Iterations(1)->UseManualTime();

} // namespace

} // namespace Qorvane

int main(int argc, char **argv)
{
    const QTemporaryDir home;
    for (const char *variable :
         {"HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_CONFIG_HOME", "XDG_RUNTIME_DIR"})
        qputenv(variable, home.path().toLocal8Bit());
    qputenv("DBUS_SESSION_BUS_ADDRESS", "disabled:");
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
    qputenv("LC_ALL", "C.UTF-8");
    qputenv("ORT_DISABLE_TELEMETRY", "1");
    const QGuiApplication application(argc, argv);
    Qorvane::Log::setSink([](const QString &) {});
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    // Pictures and tags that were asked for may be in work yet.
    Qorvane::finishAllWork();
    return 0;
}
