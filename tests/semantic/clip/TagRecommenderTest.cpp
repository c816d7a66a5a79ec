#include "clip/BusyStore.h"
#include "clip/PredefinedTagsOverride.h"
#include "clip/TagTest.h"
#include "clip/TextEncoderGate.h"
#include "encoders/TextEncoderCount.h"
#include "platform/Languages.h"
#include "platform/PredefinedTags.h"
#include "store/EmbeddingStore.h"
#include "support/Waiting.h"

#include <QColor>
#include <QCoreApplication>
#include <QTimer>

#include <algorithm>
#include <iterator>
#include <set>
#include <utility>

using namespace Qorvane;

namespace {

const QString blue = QStringLiteral("Blue");
const QString red = QStringLiteral("Red");
const QString green = QStringLiteral("Green");

class TagRecommenderTest : public TagTest
{
protected:
    TagRecommenderTest()
        : photo(makePicture(QStringLiteral("photo.png"), Qt::blue))
    {
        // The first makes the thumbnail, and from then on that is what is embedded.
        await(service->loadImageForAnalysis(photo));
        const auto thumbnail = await(service->loadImageForAnalysis(photo));
        vector = await(service->extractImageFeatures(thumbnail.value_or(Image()))).value_or(vector);
        log.clear();
    }

    QStringList linesOfTags() const { return log.linesStartingWith(QStringLiteral("🔍 标签 '")); }

    // The pieces of work that write lines from threads of their own.
    enum class WorkerStep { None, Choosing, Scoring, Ranking };

    std::set<WorkerStep> workerSteps() const
    {
        const std::pair<QString, WorkerStep> steps[] = {
            {QStringLiteral("📊 "), WorkerStep::Choosing},
            {QStringLiteral("🏷️ 照片已有标签: "), WorkerStep::Choosing},
            {QStringLiteral("🔍 标签 '"), WorkerStep::Scoring},
            {QStringLiteral("🎯 标签推荐完成"), WorkerStep::Ranking},
            {QStringLiteral("  "), WorkerStep::Ranking},
        };
        std::set<WorkerStep> found;
        for (const QString &line : log.lines()) {
            const auto *step = std::find_if(std::begin(steps), std::end(steps), [&line](const auto &known) {
                return line.startsWith(known.first);
            });
            found.insert(step == std::end(steps) ? WorkerStep::None : step->second);
        }
        return found;
    }

    const FileUrl photo;
    std::vector<float> vector = std::vector<float>(openaiLength, 0.0f); // the photo's
};

} // namespace

TEST_F(TagRecommenderTest, aSecondRecommendationEncodesNoText)
{
    const TextEncoderCount encoded;
    service = loadedService();
    const QStringList userTags{QStringLiteral("sky"), QStringLiteral("lake")};
    const auto first = recommend(photo, userTags, {blue, red, green});
    EXPECT_EQ(encoded.texts(), 5);
    log.clear();
    EXPECT_EQ(recommend(photo, userTags, {blue, red, green}), first);
    EXPECT_EQ(encoded.texts(), 5);
    EXPECT_EQ(linesOfTags().size(), 5);
    for (const char *begin : {"🔤", "📝", "📥"})
        EXPECT_TRUE(log.linesStartingWith(QString::fromUtf8(begin)).isEmpty()) << begin;
}

TEST_F(TagRecommenderTest, saysWhatItDoesInOrder)
{
    EmbeddingStore::shared().storeTagVector(green, vector);
    const QStringList existing = predefinedBut({blue, green});
    await(service->recommendTags(photo, {QStringLiteral("red"), QStringLiteral("a \"b\"")},
                                 existing + QStringList(QStringLiteral("a \"b\"")), 2));
    const QStringList lines = log.lines();
    ASSERT_EQ(lines.size(), 30) << qPrintable(lines.mid(6).join(u'\n'));
    EXPECT_EQ(lines[0], QStringLiteral("🏷️ 开始为照片推荐标签: photo.png"));
    EXPECT_EQ(lines[1], QStringLiteral("📊 用户标签数量: 2"));
    EXPECT_EQ(lines[2], QStringLiteral("📊 预定义标签数量: 955"));
    EXPECT_EQ(lines[3], QStringLiteral("📊 总候选标签数量: 930"));
    EXPECT_EQ(lines[4], QStringLiteral("🏷️ 照片已有标签: [\"") +
                            existing.join(QStringLiteral("\", \"")) + QStringLiteral("\", \"a \\\"b\\\"\"]"));
    EXPECT_EQ(lines[5], QStringLiteral("📊 可用标签数量: 3"));
    EXPECT_EQ(lines[6], QStringLiteral("✅ 图像特征提取成功 [photo.png]，特征维度: 16"));
    EXPECT_TRUE(lines[7].startsWith(QStringLiteral("📏 特征向量L2范数: ")));
    EXPECT_EQ(lines[8], QStringLiteral("✅ 照片特征提取成功，特征维度: 16"));
    EXPECT_EQ(lines[9], QStringLiteral("🔤 开始处理文本: 'Blue'"));
    EXPECT_EQ(lines[15], QStringLiteral("📝 新计算并存储标签向量: 'Blue'"));
    EXPECT_TRUE(lines[16].startsWith(QStringLiteral("🔍 标签 'Blue' 相似度: 0.98")));
    EXPECT_EQ(lines[17], QStringLiteral("📥 从数据库加载标签向量: 'Green'"));
    EXPECT_TRUE(lines[18].startsWith(QStringLiteral("🔍 标签 'Green' 相似度: ")));
    EXPECT_EQ(lines[19], QStringLiteral("🔤 开始处理文本: 'red'"));
}

TEST_F(TagRecommenderTest, endsItsReportWithTheKeptTags)
{
    recommend(photo, {QStringLiteral("red")}, {blue}, 2);
    const QStringList lines = log.lines();
    EXPECT_EQ(lines[lines.size() - 4], QStringLiteral("🔍 标签 'red' 相似度: 0.0"));
    EXPECT_EQ(lines[lines.size() - 3], QStringLiteral("🎯 标签推荐完成，推荐标签数量: 2"));
    EXPECT_TRUE(lines[lines.size() - 2].startsWith(QStringLiteral("  1. 'Blue' - 相似度: 0.98")));
    EXPECT_EQ(lines[lines.size() - 1], QStringLiteral("  2. 'red' - 相似度: 0.0"));
}

TEST_F(TagRecommenderTest, aUserTagIsRankedTogetherWithThePredefinedOnes)
{
    EXPECT_EQ(tagsOf(recommend(photo, {QStringLiteral("sky"), QStringLiteral("grass")}, {blue, red})),
              QStringList({blue, QStringLiteral("sky"), QStringLiteral("grass"), red}));
}

TEST_F(TagRecommenderTest, aTagInBothListsIsOneCandidate)
{
    EXPECT_EQ(tagsOf(recommend(photo, {blue, blue}, {blue})), QStringList(blue));
    EXPECT_TRUE(log.contains(QStringLiteral("📊 用户标签数量: 2")));
    EXPECT_TRUE(log.contains(QStringLiteral("📊 总候选标签数量: 928")));
}

TEST_F(TagRecommenderTest, caseTellsTagsApart)
{
    const auto tags = await(
        service->recommendTags(photo, {}, predefinedBut({blue}) + QStringList(QStringLiteral("blue")), 5));
    EXPECT_EQ(tagsOf(tags), QStringList(blue));
}

TEST_F(TagRecommenderTest, aVectorOfAnotherLengthHasSimilarityZeroAndStays)
{
    EmbeddingStore::shared().storeTagVector(blue, vectorWithCosine(Axis::blue, 1, chineseLength));
    const auto tags = recommend(photo, {}, {blue, QStringLiteral("Blue Sky")});
    EXPECT_EQ(tagsOf(tags), QStringList({QStringLiteral("Blue Sky"), blue}));
    EXPECT_EQ(tags[1].similarity, 0.0f);
    EXPECT_TRUE(log.contains(QStringLiteral("🔍 标签 'Blue' 相似度: 0.0")));
}

TEST_F(TagRecommenderTest, aTagFurtherThanAtRightAnglesIsStillGiven)
{
    std::vector<float> opposite = vector;
    for (float &value : opposite)
        value = -value;
    EmbeddingStore::shared().storeTagVector(blue, opposite);
    const auto tags = recommend(photo, {}, {blue, red});
    EXPECT_EQ(tagsOf(tags), QStringList({red, blue}));
    EXPECT_NEAR(tags[1].similarity, -1.0f, 1e-6f);
}

TEST_F(TagRecommenderTest, fewerTagsThanTheLimitAreAllGiven)
{
    EXPECT_EQ(recommend(photo, {}, {blue, red, green}, 5).size(), 3);
}

TEST_F(TagRecommenderTest, aLimitOfNothingGivesNothing)
{
    EXPECT_TRUE(recommend(photo, {}, {blue}, 0).isEmpty());
    EXPECT_TRUE(recommend(photo, {}, {blue}, -1).isEmpty());
    EXPECT_EQ(log.lines().constLast(), QStringLiteral("🎯 标签推荐完成，推荐标签数量: 0"));
}

TEST_F(TagRecommenderTest, aPhotoThatHasAllTagsGetsNoneAndIsEmbeddedStill)
{
    EXPECT_TRUE(recommend(photo, {}, {}).isEmpty());
    EXPECT_TRUE(log.contains(QStringLiteral("📊 可用标签数量: 0")));
    EXPECT_TRUE(log.contains(QStringLiteral("✅ 图像特征提取成功 [photo.png]，特征维度: 16")));
    EXPECT_EQ(log.lines().constLast(), QStringLiteral("🎯 标签推荐完成，推荐标签数量: 0"));
}

TEST_F(TagRecommenderTest, equalTagsComeInTheOrderOfTheirText)
{
    EXPECT_EQ(
        tagsOf(recommend(photo, {QStringLiteral("b"), QStringLiteral("湖"), QStringLiteral("a")}, {red})),
        QStringList({red, QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("湖")}));
}

TEST_F(TagRecommenderTest, aTagWhoseTextCannotBeEncodedIsPassedOver)
{
    ASSERT_TRUE(installTestEncoder(QStringLiteral("variants/TextOtherOutput.onnx"),
                                   QStringLiteral("ClipTextEncoder.onnx")));
    service = loadedService();
    EmbeddingStore::shared().storeTagVector(red, vector);
    EXPECT_EQ(tagsOf(recommend(photo, {}, {blue, red})), QStringList(red));
    EXPECT_TRUE(log.contains(QStringLiteral("⚠️ 无法获取标签 'Blue' 的文本特征，跳过")));
    EXPECT_EQ(linesOfTags().size(), 1);
    EXPECT_EQ(EmbeddingStore::shared().getTagVectorCount(), 1);
}

TEST_F(TagRecommenderTest, aPhotoThatCannotBeReadGetsNone)
{
    EXPECT_TRUE(recommend(makeBrokenFile(QStringLiteral("broken.png")), {}, {blue}).isEmpty());
    EXPECT_EQ(log.lines().constLast(), QStringLiteral("❌ 无法提取照片特征"));
    EXPECT_FALSE(log.contains(QStringLiteral("🔤 开始处理文本: 'Blue'")));
}

TEST_F(TagRecommenderTest, withoutEncodersThereAreNone)
{
    removeInstalledEncoders();
    service = std::make_unique<ChineseClipService>();
    EXPECT_TRUE(recommend(photo, {}, {blue}).isEmpty());
    EXPECT_EQ(log.lines().mid(log.lines().size() - 2),
              QStringList({QStringLiteral("❌ Models not loaded"), QStringLiteral("❌ 无法提取照片特征")}));
}

TEST_F(TagRecommenderTest, loadsTheEncodersFirst)
{
    // Without the other tags, which would all be encoded when the encoders are there.
    const PredefinedTagsOverride tags({blue});
    service = std::make_unique<ChineseClipService>();
    EXPECT_EQ(tagsOf(recommend(photo, {}, {blue})), QStringList(blue));
}

TEST_F(TagRecommenderTest, theChineseWordsAreForAChineseReader)
{
    Languages::overrideForTests({QStringLiteral("zh-Hans-CN")}, QStringLiteral("zh"));
    EXPECT_EQ(tagsOf(recommend(photo, {}, {QStringLiteral("湖泊")})), QStringList(QStringLiteral("湖泊")));
    EXPECT_TRUE(log.contains(QStringLiteral("📊 预定义标签数量: 993")));
    EXPECT_TRUE(log.contains(QStringLiteral("📊 总候选标签数量: 966")));
}

TEST_F(TagRecommenderTest, twoAtATimeDoNotHarmOneAnotherAndEncodeEachTextOnce)
{
    const TextEncoderCount encoded;
    service = loadedService();
    const QStringList existing = predefinedBut({blue, red, green});
    auto first = service->recommendTags(photo, {}, existing, 5);
    auto second = service->recommendTags(photo, {}, existing, 5);
    const auto tags = await(std::move(first));
    EXPECT_EQ(tags.size(), 3);
    EXPECT_EQ(await(std::move(second)), tags);
    EXPECT_EQ(encoded.texts(), 3);
    EXPECT_EQ(encoded.differentTexts(), 3);
}

TEST_F(TagRecommenderTest, aSearchInBetweenIsAnsweredFirst)
{
    TextEncoderGate gate;
    service = loadedService();
    storeVector(url(QStringLiteral("red.jpg")), vectorWithCosine(Axis::red, 0.9f));
    auto recommending = service->recommendTags(photo, {}, predefinedBut({blue, green}), 5);
    EXPECT_TRUE(waitUntil([&gate] { return gate.isReached(); }));
    EXPECT_EQ(await(service->searchWithDatabase(QStringLiteral("red"), {}, 20)).size(), 1);
    EXPECT_FALSE(recommending.isReady());
    gate.open();
    EXPECT_EQ(await(std::move(recommending)).size(), 2);
}

TEST_F(TagRecommenderTest, leavesTheGuiThreadFreeWhileTheStoreIsBusy)
{
    BusyStore other(url(QStringLiteral("row.jpg")));
    auto recommending = service->recommendTags(photo, {}, predefinedBut({blue}), 5);
    EXPECT_TRUE(
        waitUntil([this] { return log.contains(QStringLiteral("✅ 照片特征提取成功，特征维度: 16")); }));
    int heartbeats = 0;
    QTimer heart;
    QObject::connect(&heart, &QTimer::timeout, [&heartbeats] { ++heartbeats; });
    heart.start(std::chrono::milliseconds(1));
    EXPECT_TRUE(waitUntil([&heartbeats] { return heartbeats > 50; }));
    EXPECT_FALSE(recommending.isReady());
    other.release();
    EXPECT_EQ(await(std::move(recommending)).size(), 1);
}

TEST_F(TagRecommenderTest, aServiceThatGoesMeanwhileGivesNone)
{
    auto recommending = service->recommendTags(photo, {}, {}, 5);
    EXPECT_TRUE(waitUntil([this] { return linesOfTags().size() >= 5; }));
    service.reset();
    EXPECT_TRUE(await(std::move(recommending)).isEmpty());
    EXPECT_LT(linesOfTags().size(), 928);
}

TEST_F(TagRecommenderTest, aServiceThatGoesAtAnyPointSaysNothingMore)
{
    const QStringList existing = predefinedBut({blue});
    // After no turn of the event loop, after one, and so on, until the tags are there first.
    bool isOver = false;
    for (int turns = 0; !isOver; ++turns) {
        SCOPED_TRACE(turns);
        service = loadedService();
        auto recommending = service->recommendTags(photo, {}, existing, 5);
        for (int turn = 0; turn < turns && !recommending.isReady(); ++turn)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        isOver = recommending.isReady();
        service.reset();
        log.clear();
        // With nothing left to be done than to hand them over, they may still come.
        EXPECT_LE(await(std::move(recommending)).size(), 1);
        // The piece of work that a thread had begun ends by itself, with its own lines; no next one begins.
        const std::set<WorkerStep> steps = workerSteps();
        EXPECT_LE(steps.size(), 1);
        EXPECT_FALSE(steps.contains(WorkerStep::None)) << qPrintable(log.lines().join(u'\n'));
        ASSERT_LT(turns, 1000);
    }
}

// The last one here: it fills the store with vectors, which the next would have to remove one by one.
TEST_F(TagRecommenderTest, aPhotoAndALibraryWithoutTagsGetTheNearestPredefinedWords)
{
    const auto tags = await(service->recommendTags(photo, {}, {}, 5));
    // The test encoders know nothing of jays: both first words are just blue, and keep the order of text.
    EXPECT_EQ(tagsOf(tags), QStringList({blue, QStringLiteral("Blue Jay"), QStringLiteral("Blue Sky"),
                                         QStringLiteral("Clear Sky"), QStringLiteral("Cloudy Sky")}));
    EXPECT_EQ(tags[0].similarity, tags[1].similarity);
    EXPECT_GT(tags[0].similarity, 0.9f);
    EXPECT_EQ(EmbeddingStore::shared().getTagVectorCount(), 928);
    EXPECT_EQ(service->tagVectorCache().size(), 928);

    QStringList words = predefinedTags();
    words.removeDuplicates();
    std::sort(words.begin(), words.end());
    const QStringList lines = linesOfTags();
    ASSERT_EQ(lines.size(), words.size());
    for (qsizetype index = 0; index < lines.size(); ++index)
        EXPECT_TRUE(
            lines[index].startsWith(QStringLiteral("🔍 标签 '") + words[index] + QStringLiteral("' 相似度: ")))
            << qPrintable(lines[index]);
}
