#include "ChineseClipService.h"
#include "platform/Log.h"
#include "store/EmbeddingStore.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTimer>

#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <algorithm>
#include <random>
#include <vector>

// A search over a large library through the service: how long until its results, and the longest time
// meanwhile that the GUI thread's event loop didn't come round.

namespace Qorvane {

namespace {

constexpr int rowCount = 100'000;
constexpr int vectorLength = 16; // the text encoder's

/// Straight into the database and in one transaction: the store's own way takes a commit for each row.
void fillStore()
{
    EmbeddingStore::shared();
    sqlite3 *database = nullptr;
    const QString path =
        qEnvironmentVariable("XDG_DATA_HOME") + QStringLiteral("/Qorvane/embeddings.sqlite3");
    sqlite3_open(path.toUtf8().constData(), &database);
    sqlite3_exec(database, "BEGIN", nullptr, nullptr, nullptr);
    sqlite3_stmt *statement = nullptr;
    sqlite3_prepare_v2(database, "INSERT INTO images(path, vector, dim, mtime) VALUES(?, ?, ?, 1)", -1,
                       &statement, nullptr);
    std::mt19937 random(1);
    std::normal_distribution<float> element;
    for (int row = 0; row < rowCount; ++row) {
        std::vector<float> vector(vectorLength);
        std::ranges::generate(vector, [&] { return element(random); });
        const QByteArray name = "/home/photographer/pictures/2025/IMG_" + QByteArray::number(row) + ".jpg";
        sqlite3_bind_text(statement, 1, name.constData(), int(name.size()), SQLITE_TRANSIENT);
        sqlite3_bind_blob(statement, 2, vector.data(), int(vector.size() * sizeof(float)), SQLITE_TRANSIENT);
        sqlite3_bind_int(statement, 3, vectorLength);
        sqlite3_step(statement);
        sqlite3_reset(statement);
    }
    sqlite3_finalize(statement);
    sqlite3_exec(database, "COMMIT", nullptr, nullptr, nullptr);
    sqlite3_close(database);
}

std::unique_ptr<ChineseClipService> loadedService()
{
    const QDir source(QStringLiteral(QORVANE_BENCH_FAMILY));
    const QString folder = qEnvironmentVariable("XDG_DATA_HOME") + QStringLiteral("/Qorvane/models");
    QDir().mkpath(folder);
    for (const QString &name : source.entryList(QDir::Files))
        QFile::copy(source.filePath(name), folder + u'/' + name);
    auto service = std::make_unique<ChineseClipService>();
    QCoro::waitFor(service->ensureModelsLoaded());
    return service;
}

void pauseOfTheGuiThread(benchmark::State &state)
{
    fillStore();
    const auto service = loadedService();
    if (!service->modelsLoaded())
        qFatal("the service has no encoders");

    QElapsedTimer sinceBeat;
    qint64 longestPause = 0;
    QTimer heart;
    QObject::connect(&heart, &QTimer::timeout, [&] {
        longestPause = std::max(longestPause, sinceBeat.nsecsElapsed());
        sinceBeat.start();
    });
    heart.start(1);
    std::vector<double> pauses;
    for ([[maybe_unused]] auto _ : state) {
        longestPause = 0;
        sinceBeat.start();
        const auto results = QCoro::waitFor(service->searchWithDatabase(QStringLiteral("red"), {}, 20));
        longestPause = std::max(longestPause, sinceBeat.nsecsElapsed());
        benchmark::DoNotOptimize(results.size());
        pauses.push_back(double(longestPause) * 1e-6);
    }
    state.counters["pause_ms"] = std::ranges::max(pauses);
    state.counters["pause_ms_least"] = std::ranges::min(pauses);
}
BENCHMARK(pauseOfTheGuiThread)->Unit(benchmark::kMillisecond)->Iterations(15)->UseRealTime();

} // namespace

} // namespace Qorvane

int main(int argc, char **argv)
{
    const QTemporaryDir home;
    qputenv("HOME", home.path().toLocal8Bit());
    qputenv("XDG_DATA_HOME", home.path().toLocal8Bit());
    qputenv("LC_ALL", "C.UTF-8");
    const QCoreApplication application(argc, argv);
    Qorvane::Log::setSink([](const QString &) {});
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
