#include "app/FirstSearch.h"

#include "QorvaneApp.h"
#include "encoders/StarterEncoders.h"
#include "encoders/TestEncoders.h"
#include "semantic/FeatureExtraction.h"
#include "store/EmbeddingStore.h"
#include "support/Waiting.h"
#include "views/window/ContentView.h"

#include <QElapsedTimer>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>

#include <ctime>
#include <random>

namespace Qorvane {

namespace {

const QString word = QStringLiteral("dog");
constexpr double millisecondsPerSecond = 1e3;
constexpr double nanosecondsPerSecond = 1e9;

double seconds(const QElapsedTimer &timer)
{
    return double(timer.elapsed()) / millisecondsPerSecond;
}

double processorSeconds()
{
    timespec time = {};
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return double(time.tv_sec) + double(time.tv_nsec) / nanosecondsPerSecond;
}

// With an encoder and a tokenizer of its own, which are gone when the application makes its.
std::optional<std::vector<float>> vectorOfWord(QString *error)
{
    const QString starter = starterFolder();
    const auto encoder = TextEncoder::load(starter + QStringLiteral("/ClipTextEncoder.onnx"), error);
    if (!encoder)
        return std::nullopt;
    const TokenizerService tokenizer(false, {starter});
    constexpr int contextLength = 77;
    return extractText(*encoder, tokenizer.encode(tokenizer.tokenizeOpenAI(word), contextLength)).vector;
}

// One picture that is exactly what the word means, among others that mean anything.
void fillLibrary(int pictureCount, const std::vector<float> &meant)
{
    std::mt19937 random(1);
    std::normal_distribution<float> normal;
    for (int number = 0; number < pictureCount; ++number) {
        std::vector<float> vector = meant;
        if (number > 0) {
            for (float &value : vector)
                value = normal(random);
            vector = normalised(std::move(vector)).values;
        }
        EmbeddingStore::shared().upsert(QStringLiteral("/pictures/%1.jpg").arg(number), std::nullopt, vector,
                                        int(vector.size()), 1);
    }
}

} // namespace

std::optional<FirstSearchTimes> measureFirstSearch(int pictureCount, QString *error)
{
    if (!installStarter()) {
        *error = QString::fromLatin1(noStarter);
        return std::nullopt;
    }
    const auto meant = vectorOfWord(error);
    if (!meant)
        return std::nullopt;
    fillLibrary(pictureCount, *meant);

    FirstSearchTimes times;
    QorvaneApp app;
    if (!app.openMainWindow() || !QTest::qWaitForWindowActive(app.contentView()->window())) {
        *error = QStringLiteral("the window doesn't open");
        return std::nullopt;
    }
    ContentView &view = *app.contentView();
    auto *const field = view.window()->findChild<QQuickItem *>(QStringLiteral("searchField"));
    QTest::mouseClick(view.window(), Qt::LeftButton, {},
                      field->mapToScene(QPointF(field->width() / 2, field->height() / 2)).toPoint());
    // Each letter begins a search, and the last to end wins, even if it began earlier: the word's own hits
    // may be gone again when one looks later.
    constexpr float same = 0.999F; // searches for a part of the word don't reach that
    SearchController &search = *view.state().search();
    bool isAnswered = false;
    QElapsedTimer timer;
    const double processorBefore = processorSeconds();
    const auto note = [&] {
        if (isAnswered || search.results().isEmpty() || search.results().constFirst().similarity < same)
            return;
        isAnswered = true;
        times.untilAnswered = seconds(timer);
        times.processorTime = processorSeconds() - processorBefore;
    };
    const auto connection = QObject::connect(&search, &SearchController::resultsChanged, &search, note);
    QObject::connect(&view.clipService(), &ChineseClipService::modelsLoadedChanged, &search,
                     [&] { times.untilLoaded = seconds(timer); });
    timer.start();
    for (const QChar letter : word)
        QTest::keyClick(view.window(), letter.toLatin1());
    waitUntil([&isAnswered] { return isAnswered; });
    QObject::disconnect(connection);
    if (!isAnswered) {
        *error = QStringLiteral("\"%1\" doesn't find its picture").arg(search.text());
        return std::nullopt;
    }
    return times;
}

} // namespace Qorvane
