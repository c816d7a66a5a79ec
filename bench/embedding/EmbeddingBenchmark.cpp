#include "ChineseClipService.h"
#include "encoders/StarterEncoders.h"
#include "platform/Log.h"
#include "semantic/FeatureExtraction.h"
#include "semantic/Preprocessing.h"
#include "support/Costs.h"

#include <QCoreApplication>
#include <QDir>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <random>

// What a picture's embedding costs, from the bare run of an encoder of real size up to the service's own
// operation.

namespace Qorvane {

namespace {

/// As large as a thumbnail gets, with enough in it that no branch is always the same.
QImage thumbnail()
{
    std::mt19937 random(1);
    QImage image(800, 533, QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            image.setPixel(x, y, qRgb(x % 256, y % 256, int(random() % 256)));
    }
    return image;
}

const VisionEncoder &encoder()
{
    static const auto instance = [] {
        QString error;
        auto loaded = VisionEncoder::load(QStringLiteral(QORVANE_BENCH_ENCODER), &error);
        if (!loaded)
            qFatal("%s", qPrintable(error));
        return loaded;
    }();
    return *instance;
}

void preprocessing(benchmark::State &state)
{
    const QImage image = thumbnail();
    for (auto step : state)
        benchmark::DoNotOptimize(preprocessImage(image));
}

/// The encoders that a service finds: the bench's for pictures, the tests' for text.
std::unique_ptr<ChineseClipService> loadedService()
{
    const QString folder = qEnvironmentVariable("XDG_DATA_HOME") + QStringLiteral("/Qorvane/models");
    QDir().mkpath(folder);
    QFile::copy(QStringLiteral(QORVANE_BENCH_ENCODER), folder + QStringLiteral("/ClipVisionEncoder.onnx"));
    QFile::copy(QStringLiteral(QORVANE_BENCH_TEXT_ENCODER), folder + QStringLiteral("/ClipTextEncoder.onnx"));
    auto service = std::make_unique<ChineseClipService>();
    QCoro::waitFor(service->ensureModelsLoaded());
    if (!service->modelsLoaded())
        qFatal("the service has no encoders");
    return service;
}

void embeddingAgainstBareRun(benchmark::State &state)
{
    const auto service = loadedService();
    const QImage pixels = thumbnail();
    const Image image(pixels);
    const std::vector<float> tensor = preprocessImage(pixels).value();
    const auto runBare = [&] { benchmark::DoNotOptimize(encoder().predict(tensor)); };
    const auto extract = [&] {
        benchmark::DoNotOptimize(extractImage(encoder(), pixels, QStringLiteral("picture.jpg")));
    };
    const auto askService = [&] {
        benchmark::DoNotOptimize(QCoro::waitFor(service->extractImageFeatures(image)));
    };
    runBare();
    askService();
    Costs bare;
    Costs extraction;
    Costs answer;
    for (auto step : state) {
        bare.add(costOf(runBare));
        extraction.add(costOf(extract));
        answer.add(costOf(askService));
    }
    reportCost(state, "run", bare);
    reportCost(state, "extraction", extraction);
    reportCost(state, "service", answer);
    reportRatio(state, "extraction/run", extraction, bare);
    reportRatio(state, "service/run", answer, bare);
}

/// `state.range(0)` pictures are at work at any time, as from as many runs of the pipeline.
void serviceEmbedding(benchmark::State &state)
{
    const auto service = loadedService();
    const Image image(thumbnail());
    QCoro::waitFor(service->extractImageFeatures(image));
    for (auto step : state) {
        std::vector<QCoro::Task<std::optional<std::vector<float>>>> tasks;
        for (int64_t index = 0; index < state.range(0); ++index)
            tasks.push_back(service->extractImageFeatures(image));
        for (auto &task : tasks)
            benchmark::DoNotOptimize(QCoro::waitFor(std::move(task)));
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

// The starter pair, where it is built: what of it the application pays beside the bare run, and for a text.
void starterEmbeddingAgainstBareRun(benchmark::State &state)
{
    const QString starter = starterFolder();
    if (starter.isEmpty()) {
        state.SkipWithError(noStarter);
        return;
    }
    QString error;
    const auto vision = VisionEncoder::load(starter + QStringLiteral("/ClipVisionEncoder.onnx"), &error);
    const auto text = TextEncoder::load(starter + QStringLiteral("/ClipTextEncoder.onnx"), &error);
    const auto chineseText =
        TextEncoder::load(starter + QStringLiteral("/ChineseClipTextEncoder.onnx"), &error);
    if (!vision || !text || !chineseText) {
        state.SkipWithError(qPrintable(error));
        return;
    }
    const TokenizerService tokenizer(false, {starter});
    const TokenizerService chineseTokenizer(true, {starter});
    const QImage pixels = thumbnail();
    const std::vector<float> tensor = preprocessImage(pixels).value();
    constexpr int contextLength = 77;
    const auto runBare = [&] { benchmark::DoNotOptimize(vision->predict(tensor)); };
    const auto extract = [&] {
        benchmark::DoNotOptimize(extractImage(*vision, pixels, QStringLiteral("p.jpg")));
    };
    const auto embedText = [&] {
        benchmark::DoNotOptimize(extractText(
            *text, tokenizer.encode(tokenizer.tokenizeOpenAI(QStringLiteral("two dogs running on the beach")),
                                    contextLength)));
    };
    const auto embedChinese = [&] {
        benchmark::DoNotOptimize(extractText(
            *chineseText,
            chineseTokenizer.encode(chineseTokenizer.tokenizeChinese(QStringLiteral("两只狗在沙滩上跑")),
                                    contextLength)));
    };
    runBare();
    embedText();
    embedChinese();
    Costs bare;
    Costs extraction;
    Costs english;
    Costs chinese;
    for (auto step : state) {
        bare.add(costOf(runBare));
        extraction.add(costOf(extract));
        english.add(costOf(embedText));
        chinese.add(costOf(embedChinese));
    }
    reportCost(state, "starter_run", bare);
    reportCost(state, "starter_text", english);
    reportCost(state, "starter_chinese_text", chinese);
    reportRatio(state, "starter_extraction/run", extraction, bare);
}

BENCHMARK(preprocessing)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(embeddingAgainstBareRun)->Unit(benchmark::kMillisecond)->Iterations(30)->UseRealTime();
BENCHMARK(starterEmbeddingAgainstBareRun)->Unit(benchmark::kMillisecond)->Iterations(30)->UseRealTime();
BENCHMARK(serviceEmbedding)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond)->UseRealTime();

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
