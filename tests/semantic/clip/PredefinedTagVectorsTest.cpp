#include "EmbeddingResponder.h"
#include "clip/BusyStore.h"
#include "clip/ClipTest.h"
#include "clip/PredefinedTagsOverride.h"
#include "clip/TextEncoderGate.h"
#include "encoders/TextEncoderCount.h"
#include "media/EmbeddingMessages.h"
#include "platform/DetachedTask.h"
#include "platform/Languages.h"
#include "platform/NotificationCenter.h"
#include "store/EmbeddingStore.h"
#include "support/ThreadTime.h"
#include "support/Waiting.h"

#include <QColor>
#include <QRegularExpression>
#include <QTimer>

#include <algorithm>
#include <array>
#include <chrono>

using namespace Qorvane;

namespace {

const QString blue = QStringLiteral("Blue");
const QString green = QStringLiteral("Green");
const QString red = QStringLiteral("Red");
const QString bright = QStringLiteral("Bright");
const std::vector<float> stored{3.0f, 4.0f};

const QString beginLine = QStringLiteral("🚀 开始预计算预定义标签向量...");
const QString newPrefix = QStringLiteral("💾 新计算并存储标签向量: '");
const QString encodedPrefix = QStringLiteral("🔤 开始处理文本: '");

EmbeddingStore &store()
{
    return EmbeddingStore::shared();
}

class PredefinedTagVectorsTest : public ClipTest
{
protected:
    PredefinedTagVectorsTest() { store().cleanupObsoleteTagVectors({}); }

    void load(const QStringList &predefined)
    {
        const PredefinedTagsOverride tags(predefined);
        service = std::make_unique<ChineseClipService>();
        log.clear();
        await(service->ensureModelsLoaded());
    }

    /// The log from the beginning of the pass on, without what an encoding says, but for its
    /// first line.
    QStringList linesOfPass() const
    {
        QStringList lines = log.lines();
        lines = lines.mid(lines.indexOf(beginLine));
        lines.removeIf([](const QString &line) {
            return std::ranges::any_of(
                std::array{"✅ 成功", "🧠", "📝", "🧾", "👁️", "✅ 文本", "📏"},
                [&line](const char *begin) { return line.startsWith(QString::fromUtf8(begin)); });
        });
        return lines;
    }

    static QString encoded(const QString &tag) { return encodedPrefix + tag + u'\''; }
    static QString computed(const QString &tag) { return newPrefix + tag + u'\''; }
    static QString loaded(int count)
    {
        return QStringLiteral("📥 从数据库加载了 %1 个预存标签向量").arg(count);
    }
    static QString summary(int all, int ofStore, int isNew)
    {
        return QStringLiteral("📊 已缓存 %1 个预定义标签向量 (从数据库: %2, 新计算: %3)")
            .arg(all)
            .arg(ofStore)
            .arg(isNew);
    }

    std::unique_ptr<ChineseClipService> service;
};

} // namespace

TEST_F(PredefinedTagVectorsTest, computesWhatTheStoreLacksAndSaysSo)
{
    store().storeTagVector(green, stored);
    load({blue, green, bright, blue});
    QStringList lines = linesOfPass();
    ASSERT_EQ(lines.size(), 8) << qPrintable(lines.join(u'\n'));
    EXPECT_TRUE(lines[6].startsWith(QStringLiteral("✅ 预定义标签向量预计算完成，耗时 ")));
    EXPECT_TRUE(lines.takeAt(6).contains(QRegularExpression(QStringLiteral(" \\d+\\.\\d\\d 秒$"))));
    EXPECT_EQ(lines, QStringList({beginLine, loaded(1), encoded(blue), computed(blue), encoded(bright),
                                  computed(bright), summary(3, 1, 2)}));

    EXPECT_TRUE(service->predefinedTagsPrecomputed());
    EXPECT_EQ(service->tagVectorCache().size(), 3);
    const auto vector = await(service->extractTextFeatures(blue));
    EXPECT_EQ(service->tagVectorCache().value(blue), vector);
    EXPECT_EQ(store().loadTagVector(blue), vector);
    // Nobody asks how long a stored vector is, or who made it.
    EXPECT_EQ(service->tagVectorCache().value(green), stored);
}

TEST_F(PredefinedTagVectorsTest, comesRightAfterTheEncodersAreLoaded)
{
    load({blue});
    const QStringList lines = log.lines();
    EXPECT_EQ(lines.indexOf(beginLine), lines.indexOf(QStringLiteral("🎉 模型加载成功 (on main)")) + 1);
}

TEST_F(PredefinedTagVectorsTest, aSecondStartComputesNone)
{
    const TextEncoderCount encoded;
    load({blue, green, bright});
    EXPECT_EQ(encoded.texts(), 3);
    const auto first = service->tagVectorCache();
    load({blue, green, bright});
    EXPECT_EQ(encoded.texts(), 3);
    EXPECT_TRUE(log.linesStartingWith(encodedPrefix).isEmpty());
    EXPECT_EQ(log.lines().constLast(), summary(3, 3, 0));
    EXPECT_EQ(service->tagVectorCache(), first);
}

TEST_F(PredefinedTagVectorsTest, isDoneOnce)
{
    load({blue});
    log.clear();
    await(service->precomputePredefinedTags());
    EXPECT_TRUE(log.lines().isEmpty());
}

TEST_F(PredefinedTagVectorsTest, firstRemovesWhatIsNotPredefined)
{
    store().storeTagVector(QStringLiteral("my boat"), stored);
    store().storeTagVector(QStringLiteral("blue"), stored);
    load({blue});
    EXPECT_EQ(linesOfPass().mid(1, 3),
              QStringList({QStringLiteral("🗑️ 删除过时标签向量: 'blue'"),
                           QStringLiteral("🗑️ 删除过时标签向量: 'my boat'"), loaded(0)}));
    EXPECT_EQ(store().getTagVectorCount(), 1);
    EXPECT_FALSE(service->tagVectorCache().contains(QStringLiteral("my boat")));
}

TEST_F(PredefinedTagVectorsTest, aChangeOfLanguageKeepsOnlyWhatBothListsHave)
{
    const QString both = QStringLiteral("DJ");
    store().storeTagVector(both, stored);
    load({blue, both});
    Languages::overrideForTests({QStringLiteral("zh-Hans-CN")}, QStringLiteral("zh"));
    load({QStringLiteral("湖泊"), both});
    EXPECT_EQ(log.lines().constLast(), summary(2, 1, 1));
    EXPECT_EQ(store().loadTagVector(both), stored);
    EXPECT_EQ(store().getTagVectorCount(), 2);
    EXPECT_TRUE(log.contains(computed(QStringLiteral("湖泊"))));
}

TEST_F(PredefinedTagVectorsTest, takesTheListOfTheLanguage)
{
    Languages::overrideForTests({QStringLiteral("zh-Hans-CN")}, QStringLiteral("zh"));
    haveRealPredefinedTags();
    service = std::make_unique<ChineseClipService>();
    auto loading = service->ensureModelsLoaded();
    EXPECT_TRUE(waitUntil([this] { return !log.linesStartingWith(newPrefix).isEmpty(); }));
    service.reset();
    await(std::move(loading));
    EXPECT_EQ(log.linesStartingWith(newPrefix).constFirst(), computed(QStringLiteral("人物")));
}

TEST_F(PredefinedTagVectorsTest, aTextThatCannotBeEncodedIsPassedOver)
{
    ASSERT_TRUE(installTestEncoder(QStringLiteral("variants/TextOtherOutput.onnx"),
                                   QStringLiteral("ClipTextEncoder.onnx")));
    load({blue, green});
    EXPECT_TRUE(log.linesStartingWith(newPrefix).isEmpty());
    EXPECT_EQ(log.lines().constLast(), summary(0, 0, 0));
    EXPECT_TRUE(service->predefinedTagsPrecomputed());
}

TEST_F(PredefinedTagVectorsTest, withoutEncodersNothingIsTouched)
{
    removeInstalledEncoders();
    store().storeTagVector(QStringLiteral("my boat"), stored);
    load({blue});
    EXPECT_FALSE(log.contains(beginLine));
    EXPECT_FALSE(service->predefinedTagsPrecomputed());
    EXPECT_EQ(store().getTagVectorCount(), 1);
}

TEST_F(PredefinedTagVectorsTest, theStoresVectorTakesThePlaceOfTheOneInMemory)
{
    removeInstalledEncoders();
    load({blue});
    store().storeTagVector(blue, {1.0f});
    await(service->getTagVector(blue));
    store().storeTagVector(blue, stored);
    const PredefinedTagsOverride tags({blue});
    ASSERT_TRUE(installTestFamily(QStringLiteral("openai")));
    await(service->ensureModelsLoaded());
    EXPECT_EQ(service->tagVectorCache().value(blue), stored);
}

TEST_F(PredefinedTagVectorsTest, searchesRecommendationsAndPicturesAreAnsweredMeanwhile)
{
    const PredefinedTagsOverride tags({blue, red});
    TextEncoderGate gate;
    storeVector(url(QStringLiteral("red.jpg")), vectorWithCosine(Axis::red, 0.9f));
    service = std::make_unique<ChineseClipService>();
    auto loading = service->ensureModelsLoaded();
    ASSERT_TRUE(waitUntil([&gate] { return gate.isReached(); }));
    EXPECT_TRUE(service->modelsLoaded());
    EXPECT_TRUE(service->isLoadingModels());

    EXPECT_EQ(await(service->searchWithDatabase(QStringLiteral("red"), {}, 20)).size(), 1);
    const FileUrl photo = makePicture(QStringLiteral("photo.png"), Qt::red);
    EXPECT_EQ(await(service->recommendTags(photo, {}, {blue}, 5)).size(), 1);
    EXPECT_EQ(store().loadTagVector(red), service->tagVectorCache().value(red));

    EXPECT_FALSE(service->predefinedTagsPrecomputed());
    gate.open();
    await(std::move(loading));
    EXPECT_TRUE(service->predefinedTagsPrecomputed());
    EXPECT_FALSE(service->isLoadingModels());
    // One of the two was no longer missing.
    EXPECT_EQ(log.lines().constLast(), summary(2, 0, 1));
}

TEST_F(PredefinedTagVectorsTest, theRunsPicturesDoNotWaitForItsEnd)
{
    const PredefinedTagsOverride tags({blue});
    TextEncoderGate gate;
    service = std::make_unique<ChineseClipService>();
    const EmbeddingResponder responder(*service);
    int answers = 0;
    NotificationCenter &centre = NotificationCenter::defaultCenter();
    const auto observation = centre.addObserver(EmbeddingMessages::responseName, ObserverQueue::main,
                                                [&answers](const Notification &) { ++answers; });
    const auto post = [&centre](const QString &id) {
        centre.post(EmbeddingMessages::requestName,
                    {{EmbeddingMessages::idKey, id},
                     {EmbeddingMessages::imageKey, QVariant::fromValue(Image(plainPicture(Qt::red)))}});
    };
    post(QStringLiteral("one that has the encoders loaded"));
    EXPECT_TRUE(waitUntil([&] { return answers == 1 && gate.isReached(); }));
    post(QStringLiteral("one in the middle of the pass"));
    EXPECT_TRUE(waitUntil([&answers] { return answers == 2; }));
    EXPECT_FALSE(service->predefinedTagsPrecomputed());
    centre.removeObserver(observation);
    gate.open();
}

TEST_F(PredefinedTagVectorsTest, leavesTheGuiThreadFreeWhileTheStoreIsBusy)
{
    const PredefinedTagsOverride tags({blue});
    service = std::make_unique<ChineseClipService>();
    BusyStore other(url(QStringLiteral("row.jpg")));
    auto loading = service->ensureModelsLoaded();
    EXPECT_TRUE(waitUntil([this] { return log.contains(beginLine); }));
    int heartbeats = 0;
    QTimer heart;
    QObject::connect(&heart, &QTimer::timeout, [&heartbeats] { ++heartbeats; });
    heart.start(std::chrono::milliseconds(1));
    EXPECT_TRUE(waitUntil([&heartbeats] { return heartbeats > 50; }));
    EXPECT_FALSE(service->predefinedTagsPrecomputed());
    other.release();
    await(std::move(loading));
    EXPECT_TRUE(service->predefinedTagsPrecomputed());
}

TEST_F(PredefinedTagVectorsTest, aServiceThatGoesMeanwhileEndsIt)
{
    haveRealPredefinedTags();
    service = std::make_unique<ChineseClipService>();
    auto loading = service->ensureModelsLoaded();
    EXPECT_TRUE(waitUntil([this] { return log.linesStartingWith(newPrefix).size() >= 5; }));
    service.reset();
    DetachedTask::waitUntilIdle(); // what was being written is written
    const int count = store().getTagVectorCount();
    await(std::move(loading));
    drainMainQueue();
    EXPECT_EQ(store().getTagVectorCount(), count);
    EXPECT_LT(count, 928);
    EXPECT_FALSE(log.contains(QStringLiteral("✅ 预定义标签向量预计算完成")));

    // The next one goes on where this one ended.
    const PredefinedTagsOverride firstFive(predefinedTagsEnglish().first(5));
    service = std::make_unique<ChineseClipService>();
    await(service->ensureModelsLoaded());
    EXPECT_EQ(log.lines().constLast(), summary(5, 5, 0));
}

TEST_F(PredefinedTagVectorsTest, aServiceThatGoesDoesNotWaitForATextInWork)
{
    const PredefinedTagsOverride tags({blue, green});
    TextEncoderGate gate;
    service = std::make_unique<ChineseClipService>();
    auto loading = service->ensureModelsLoaded();
    EXPECT_TRUE(waitUntil([&gate] { return gate.isReached(); }));
    service.reset();
    gate.open();
    await(std::move(loading));
    EXPECT_TRUE(log.linesStartingWith(encodedPrefix).isEmpty());
    EXPECT_EQ(store().getTagVectorCount(), 0);
}

TEST_F(PredefinedTagVectorsTest, aServiceThatGoesWhileTheStoreCleansUpEndsIt)
{
    const PredefinedTagsOverride tags({blue});
    service = std::make_unique<ChineseClipService>();
    store().storeTagVector(QStringLiteral("my boat"), stored);
    BusyStore other(url(QStringLiteral("row.jpg")));
    auto loading = service->ensureModelsLoaded();
    EXPECT_TRUE(waitUntil([this] { return log.contains(beginLine); }));
    service.reset(); // which the store doesn't hold up
    other.release();
    await(std::move(loading));
    DetachedTask::waitUntilIdle();
    EXPECT_EQ(store().getTagVectorCount(), 0);
}

TEST_F(PredefinedTagVectorsTest, aFirstStartLeavesTheGuiThreadToTheWindow)
{
    haveRealPredefinedTags();
    service = std::make_unique<ChineseClipService>();
    // Between two beats lies at least one turn of the event loop. Its processor time counts, which other work
    // on the machine doesn't stretch; that it waits for nothing is shown above.
    double longestTurn = 0;
    double lastBeat = processorSecondsOfThisThread();
    QTimer heart;
    QObject::connect(&heart, &QTimer::timeout, [&] {
        const double now = processorSecondsOfThisThread();
        longestTurn = std::max(longestTurn, now - lastBeat);
        lastBeat = now;
    });
    heart.start(std::chrono::milliseconds(1));
    await(service->ensureModelsLoaded());
    EXPECT_EQ(log.lines().constLast(), summary(928, 0, 928));
    EXPECT_EQ(store().getTagVectorCount(), 928);
    constexpr double frame = 0.016;
    EXPECT_LT(longestTurn, frame);
}
