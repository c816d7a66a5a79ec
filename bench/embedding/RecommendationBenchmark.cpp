#include "ChineseClipService.h"
#include "encoders/StarterEncoders.h"
#include "encoders/TestEncoders.h"
#include "encoders/TextEncoderCount.h"
#include "platform/Log.h"
#include "platform/PredefinedTags.h"
#include "store/EmbeddingStore.h"
#include "support/Costs.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QSet>
#include <QTemporaryDir>
#include <QTimer>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>

// What recommended tags cost, with the starter pair: the predefined tags' precomputation at a first and at a
// second start, and one recommendation beside the embedding of its photo.

namespace Qorvane {

namespace {

constexpr int candidateCount = 1'000;

/// A thumbnail as large as they get, where the service looks for it and a photo's path to ask for it.
FileUrl photoIn(const QTemporaryDir &folder)
{
    std::mt19937 random(1);
    QImage image(800, 533, QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            image.setPixel(x, y, qRgb(x % 256, y % 256, int(random() % 64)));
    }
    const QString path = folder.filePath(QStringLiteral("photo.jpg"));
    image.save(path, "JPG", 90);
    return FileUrl::file(path);
}

/// Tags of the user's own, so many that there are `candidateCount` in all.
QStringList userTags()
{
    const QSet<QString> predefined(predefinedTags().begin(), predefinedTags().end());
    QStringList tags;
    for (qsizetype number = predefined.size(); number < candidateCount; ++number)
        tags.append(QStringLiteral("holiday %1").arg(number));
    return tags;
}

struct Start
{
    std::unique_ptr<ChineseClipService> service;
    double seconds = 0;      ///< from the loaded encoders to the end of the precomputation
    double longestPause = 0; ///< seconds meanwhile that the event loop didn't come round
};

Start start()
{
    Start start{.service = std::make_unique<ChineseClipService>()};
    QElapsedTimer sincePass;
    QElapsedTimer sinceBeat;
    qint64 longestPause = 0;
    QTimer heart;
    QObject::connect(&heart, &QTimer::timeout, [&] {
        longestPause = std::max(longestPause, sinceBeat.nsecsElapsed());
        sinceBeat.start();
    });
    QObject::connect(start.service.get(), &ChineseClipService::modelsLoadedChanged, [&] {
        sincePass.start();
        sinceBeat.start();
        heart.start(1);
    });
    QCoro::waitFor(start.service->ensureModelsLoaded());
    if (!start.service->predefinedTagsPrecomputed())
        qFatal("the predefined tags were not precomputed");
    start.seconds = double(sincePass.nsecsElapsed()) * 1e-9;
    start.longestPause = double(std::max(longestPause, sinceBeat.nsecsElapsed())) * 1e-9;
    return start;
}

void recommendationAgainstEmbedding(benchmark::State &state)
{
    if (starterFolder().isEmpty()) {
        state.SkipWithError(noStarter);
        return;
    }
    if (!installStarter())
        qFatal("the starter encoders can't be installed");
    const TextEncoderCount encoded;
    const Start first = start();
    const int encodedAtFirst = encoded.texts();
    const Start second = start();
    if (encodedAtFirst == 0 || encoded.texts() != encodedAtFirst)
        qFatal("a second start encodes %d texts, after %d at the first", encoded.texts() - encodedAtFirst,
               encodedAtFirst);
    state.counters["first_pass_ms"] = first.seconds * 1e3;
    state.counters["first_pause_ms"] = first.longestPause * 1e3;
    state.counters["second_pass_ms"] = second.seconds * 1e3;
    state.counters["second_pause_ms"] = second.longestPause * 1e3;

    ChineseClipService &service = *second.service;
    const QTemporaryDir folder;
    const FileUrl photo = photoIn(folder);
    const QStringList own = userTags();
    const auto embed = [&] { QCoro::waitFor(service.extractFeatures({photo})); };
    const auto recommend = [&] {
        if (QCoro::waitFor(service.recommendTags(photo, own, {}, 5)).size() != 5)
            qFatal("no tags are recommended");
    };
    embed();
    recommend();
    const int encodedBefore = encoded.texts();
    Costs embedding;
    Costs recommendation;
    for (auto step : state) {
        embedding.add(costOf(embed));
        recommendation.add(costOf(recommend));
    }
    if (encoded.texts() != encodedBefore)
        qFatal("a recommendation encodes texts that were encoded before");
    reportCost(state, "embedding", embedding);
    reportCost(state, "recommendation", recommendation);
    reportRatio(state, "recommendation/embedding", recommendation, embedding);
    // A tenth more than the embedding is granted, and this much beside that.
    constexpr double granted = 1.1;
    state.counters["surplus_ms"] = (recommendation.median().wall - granted * embedding.median().wall) * 1e3;
    state.counters["surplus_ms_cpu"] =
        (recommendation.median().processor - granted * embedding.median().processor) * 1e3;
    state.counters["surplus_ms_least"] =
        (recommendation.least().wall - granted * embedding.least().wall) * 1e3;
}
BENCHMARK(recommendationAgainstEmbedding)->Unit(benchmark::kMillisecond)->Iterations(40)->UseRealTime();

} // namespace

} // namespace Qorvane

int main(int argc, char **argv)
{
    const QTemporaryDir home;
    for (const char *variable : {"HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME"})
        qputenv(variable, home.path().toLocal8Bit());
    qputenv("LC_ALL", "C.UTF-8");
    const QCoreApplication application(argc, argv);
    // A recommendation says a thousand lines: written as the program does, to where nobody reads them.
    QFile nowhere(QStringLiteral("/dev/null"));
    if (!nowhere.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        return 1;
    Qorvane::Log::setSink([&nowhere](const QString &line) { nowhere.write(line.toUtf8().append('\n')); });
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    Qorvane::Log::setSink({});
    return 0;
}
