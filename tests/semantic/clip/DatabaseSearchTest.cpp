#include "ChineseClipService.h"
#include "clip/ClipTest.h"
#include "media/ThumbnailPaths.h"
#include "semantic/CosineSimilarity.h"
#include "store/EmbeddingStore.h"
#include "support/Waiting.h"

#include <QColor>
#include <QTimer>

#include <bit>
#include <cmath>
#include <latch>
#include <thread>

using namespace Qorvane;

namespace {

const QString verificationHeading =
    QStringLiteral("🧪 校验：对比 DB 相似度 与 实时重算相似度（候选<=10）");

class DatabaseSearchTest : public ClipTest
{
protected:
    DatabaseSearchTest()
        : service(loadedService())
    {
        // So that no test's log holds the vocabulary.
        await(service->extractTextFeatures(QStringLiteral("red")));
        log.clear();
    }

    QList<SearchResult> searchRed(const QList<FileUrl> &scope = {}, int limit = 20)
    {
        return await(service->searchWithDatabase(QStringLiteral("red"), scope, limit));
    }

    /// `count` rows without a file, named "0.jpg" on, all with the similarity `cosine` to "red".
    void storeRows(int count, float cosine)
    {
        for (int index = 0; index < count; ++index)
            storeVector(url(QStringLiteral("%1.jpg").arg(index)), vectorWithCosine(Axis::red, cosine));
    }

    std::unique_ptr<ChineseClipService> service;
};

/// A vector whose similarity to "red" has exactly the bits of `cosine`: rounding may miss it by a bit, so the
/// last element is moved until it doesn't.
std::vector<float> vectorWithExactCosine(float cosine)
{
    const std::vector<float> text = vectorWithCosine(Axis::red, 1);
    std::vector<float> vector = vectorWithCosine(Axis::red, cosine);
    vector.back() -= 1e-5f;
    while (cosineSimilarity(vector, text) > cosine)
        vector.back() = std::nextafter(vector.back(), 2.0f);
    EXPECT_EQ(cosineSimilarity(vector, text), cosine);
    return vector;
}

} // namespace

TEST_F(DatabaseSearchTest, findsRedPicturesForRed)
{
    const FileUrl red = makePicture(QStringLiteral("red.png"), QColor(220, 20, 10));
    const FileUrl pink = makePicture(QStringLiteral("pink.png"), QColor(255, 120, 120));
    const FileUrl blue = makePicture(QStringLiteral("blue.png"), Qt::blue);
    const FileUrl grey = makePicture(QStringLiteral("grey.png"), Qt::gray);
    await(service->extractFeatures({blue, pink, grey, red}));
    for (auto feature = service->imageFeatures().begin(); feature != service->imageFeatures().end();
         ++feature)
        storeVector(feature.key(), feature->features);

    const auto results = searchRed();
    EXPECT_EQ(namesOf(results), QStringList({QStringLiteral("red.png"), QStringLiteral("pink.png")}));
    EXPECT_GT(results[0].similarity, 0.9f);
    EXPECT_EQ(results[0].url, red);
    EXPECT_EQ(namesOf(await(service->searchWithDatabase(QStringLiteral("blue"), {}, 20))),
              QStringList{QStringLiteral("blue.png")});
}

TEST_F(DatabaseSearchTest, saysWhatItDoesInOrder)
{
    const FileUrl red = makePicture(QStringLiteral("red.png"), Qt::red);
    storeVector(red, vectorWithCosine(Axis::red, 0.5f));
    storeVector(url(QStringLiteral("gone.png")), vectorWithCosine(Axis::red, 0.2599f));
    searchRed({red, url(QStringLiteral("gone.png"))});

    QStringList lines = log.lines();
    ASSERT_EQ(lines.size(), 15) << qPrintable(lines.join(u'\n'));
    EXPECT_EQ(lines[0], QStringLiteral("🔍 开始基于DB的搜索: 'red'"));
    EXPECT_EQ(lines[1], QStringLiteral("🔤 开始处理文本: 'red'"));
    EXPECT_TRUE(lines[2].startsWith(QStringLiteral("📝 分词结果 - input_ids前10个: [49406, 320, 49407, 0")));
    EXPECT_TRUE(lines[3].startsWith(QStringLiteral("🧾 token_ids(全部): [49406, 320, 49407, 0")));
    EXPECT_EQ(lines[4], QStringLiteral("👁️ attention_mask前10个: [1, 1, 1, 0, 0, 0, 0, 0, 0, 0]"));
    EXPECT_EQ(lines[5], QStringLiteral("✅ 文本特征提取成功，特征维度: 16"));
    EXPECT_EQ(lines[6],
              QStringLiteral("📏 特征向量L2范数: 1.0, min=0.0, max=1.0, head=[1.0, 0.0, 0.0, 0.0, 0.0]"));
    EXPECT_EQ(lines[7], QStringLiteral("🗃️ 从DB取出向量: 2/2"));
    EXPECT_EQ(lines[8], verificationHeading);
    EXPECT_EQ(lines[9], QStringLiteral("✅ 图像特征提取成功 [red.png]，特征维度: 16"));
    EXPECT_TRUE(lines[10].startsWith(QStringLiteral("📏 特征向量L2范数: ")));
    EXPECT_TRUE(lines[11].startsWith(QStringLiteral("   • red.png: DB=0.5000 live=0.98")))
        << qPrintable(lines[11]);
    EXPECT_EQ(lines[12], QStringLiteral("🔍 搜索结果按排名显示:"));
    EXPECT_EQ(lines[13], QStringLiteral("🧮[DB] #1 sim=0.5000 (50%) p=1.000 -> red.png"));
    EXPECT_EQ(lines[14], QStringLiteral("🧮[DB] #2 sim=0.2599 (25%) p=0.000 -> gone.png"));
}

TEST_F(DatabaseSearchTest, keepsTheThresholdInclusive)
{
    const FileUrl hit = url(QStringLiteral("hit.jpg"));
    storeVector(hit, vectorWithCosine(Axis::red, 0.1499f));
    EXPECT_TRUE(searchRed().isEmpty());

    const float threshold = std::bit_cast<float>(0x3E19999Au);
    storeVector(hit, vectorWithExactCosine(threshold));
    const auto results = searchRed();
    ASSERT_EQ(results.size(), 1);
    EXPECT_EQ(results[0].similarity, threshold);

    storeVector(hit, vectorWithExactCosine(std::nextafter(threshold, 0.0f)));
    EXPECT_TRUE(searchRed().isEmpty());
}

TEST_F(DatabaseSearchTest, cutsAtTheLimitAfterTheThreshold)
{
    storeRows(30, 0.5f);
    const auto results = searchRed({}, 20);
    EXPECT_EQ(results.size(), 20);
    float sum = 0;
    for (const SearchResult &result : results)
        sum += result.probability.value_or(0);
    EXPECT_NEAR(sum, 20 / 30.0, 1e-4);
}

TEST_F(DatabaseSearchTest, keepsEqualSimilaritiesInTheStoresOrder)
{
    storeRows(12, 0.5f);
    QStringList expected;
    for (const ImageVectorRow &row : EmbeddingStore::shared().fetchAll())
        expected.append(FileUrl::file(row.path).lastPathComponent());
    EXPECT_EQ(namesOf(searchRed()), expected);
    EXPECT_EQ(namesOf(searchRed()), expected);
}

TEST_F(DatabaseSearchTest, leavesOutRowsOfAnotherLength)
{
    storeVector(url(QStringLiteral("same.jpg")), vectorWithCosine(Axis::red, 0.5f));
    storeVector(url(QStringLiteral("other.jpg")), vectorWithCosine(Axis::red, 0.9f, chineseLength));
    EXPECT_EQ(namesOf(searchRed()), QStringList{QStringLiteral("same.jpg")});
    EXPECT_TRUE(log.contains(QStringLiteral("🗃️ 从DB取出向量: 2 (全库)")));
    EXPECT_EQ(log.linesStartingWith(QStringLiteral("🧮[DB]")),
              QStringList{QStringLiteral("🧮[DB] #1 sim=0.5000 (50%) p=1.000 -> same.jpg")});
}

TEST_F(DatabaseSearchTest, searchesExactlyItsScope)
{
    storeRows(3, 0.5f);
    const QList<FileUrl> scope{url(QStringLiteral("2.jpg")), url(QStringLiteral("unknown.jpg")),
                               url(QStringLiteral("0.jpg"))};
    QStringList names = namesOf(searchRed(scope));
    names.sort();
    EXPECT_EQ(names, QStringList({QStringLiteral("0.jpg"), QStringLiteral("2.jpg")}));
    EXPECT_TRUE(log.contains(QStringLiteral("🗃️ 从DB取出向量: 2/3")));
}

TEST_F(DatabaseSearchTest, verifiesUpToTenCandidates)
{
    storeRows(10, 0.5f);
    searchRed();
    EXPECT_TRUE(log.contains(verificationHeading));
    // Without a file there is nothing to compare with, and no line for it.
    EXPECT_TRUE(log.linesStartingWith(QStringLiteral("   • ")).isEmpty());

    storeRows(11, 0.5f);
    log.clear();
    EXPECT_EQ(searchRed().size(), 11);
    EXPECT_FALSE(log.contains(verificationHeading));
}

TEST_F(DatabaseSearchTest, rowsOfAnotherLengthDontCountAgainstTheVerification)
{
    storeRows(10, 0.5f);
    storeVector(url(QStringLiteral("other.jpg")), vectorWithCosine(Axis::red, 0.9f, chineseLength));
    EXPECT_EQ(searchRed().size(), 10);
    EXPECT_TRUE(log.contains(verificationHeading));
}

TEST_F(DatabaseSearchTest, verifiesWithTheThumbnailWhereThereIsOne)
{
    const FileUrl blue = makePicture(QStringLiteral("blue.png"), Qt::blue);
    ASSERT_TRUE(plainPicture(Qt::red).save(thumbnailURL(blue)->path(), "JPG"));
    storeVector(blue, vectorWithCosine(Axis::red, 0.25f));
    storeVector(makeBrokenFile(QStringLiteral("broken.png")), vectorWithCosine(Axis::red, 0.25f));
    const auto results = searchRed();
    const QStringList lines = log.linesStartingWith(QStringLiteral("   • "));
    ASSERT_EQ(lines.size(), 1);
    EXPECT_TRUE(lines[0].startsWith(QStringLiteral("   • blue.png: DB=0.2500 live=0.98")))
        << qPrintable(lines[0]);
    EXPECT_TRUE(lines[0].contains(QStringLiteral(" Δ=0.73"))) << qPrintable(lines[0]);
    // It is a check and changes nothing.
    ASSERT_EQ(results.size(), 2);
    EXPECT_NEAR(results[0].similarity, 0.25f, 1e-6);
}

TEST_F(DatabaseSearchTest, givesAZeroVectorSimilarityZero)
{
    storeVector(url(QStringLiteral("zero.jpg")), std::vector<float>(openaiLength, 0.0f));
    EXPECT_TRUE(searchRed().isEmpty());
    EXPECT_TRUE(log.contains(QStringLiteral("🧮[DB] #1 sim=0.0000 (0%) p=1.000 -> zero.jpg")));
}

TEST_F(DatabaseSearchTest, saysThatItVerifiesEvenWithoutCandidates)
{
    EXPECT_TRUE(searchRed().isEmpty());
    EXPECT_EQ(log.lines().mid(7),
              QStringList({QStringLiteral("🗃️ 从DB取出向量: 0 (全库)"), verificationHeading,
                           QStringLiteral("🔍 搜索结果按排名显示:")}));
}

TEST_F(DatabaseSearchTest, finishesSilentlyWithoutEncoders)
{
    storeRows(1, 0.5f);
    removeInstalledEncoders();
    ChineseClipService without;
    log.clear();
    EXPECT_TRUE(await(without.searchWithDatabase(QStringLiteral("red"), {}, 20)).isEmpty());
    EXPECT_EQ(log.lines().constFirst(), QStringLiteral("🔍 开始基于DB的搜索: 'red'"));
    EXPECT_EQ(log.lines().constLast(), QStringLiteral("❌ Models not loaded"));
}

TEST_F(DatabaseSearchTest, leavesTheGuiThreadFreeWhileTheStoreIsBusy)
{
    storeRows(1, 0.5f);
    // Somebody else's scan holds the store until told otherwise.
    std::latch isHolding(1);
    std::latch mayGo(1);
    std::thread other([&isHolding, &mayGo] {
        EmbeddingStore::shared().scanVectors({}, [&isHolding, &mayGo](const ImageVectorView &) {
            isHolding.count_down();
            mayGo.wait();
        });
    });
    isHolding.wait();

    auto search = service->searchWithDatabase(QStringLiteral("red"), {}, 20);
    int heartbeats = 0;
    QTimer heart;
    QObject::connect(&heart, &QTimer::timeout, [&heartbeats] { ++heartbeats; });
    heart.start(std::chrono::milliseconds(1));
    EXPECT_TRUE(
        waitUntil([this] { return log.contains(QStringLiteral("✅ 文本特征提取成功，特征维度: 16")); }));
    const int before = heartbeats;
    EXPECT_TRUE(waitUntil([&heartbeats, before] { return heartbeats > before + 50; }));
    EXPECT_FALSE(search.isReady());

    mayGo.count_down();
    EXPECT_EQ(await(std::move(search)).size(), 1);
    other.join();
}

TEST_F(DatabaseSearchTest, answersSeveralQueriesAtOnce)
{
    storeVector(url(QStringLiteral("r.jpg")), vectorWithCosine(Axis::red, 0.9f));
    storeVector(url(QStringLiteral("b.jpg")), vectorWithCosine(Axis::blue, 0.9f));
    std::vector<QCoro::Task<QList<SearchResult>>> searches;
    for (int index = 0; index < 6; ++index) {
        const QString query = index % 2 ? QStringLiteral("blue") : QStringLiteral("red");
        searches.push_back(service->searchWithDatabase(query, {}, 20));
    }
    for (size_t index = 0; index < searches.size(); ++index) {
        EXPECT_EQ(namesOf(await(std::move(searches[index]))),
                  QStringList{index % 2 ? QStringLiteral("b.jpg") : QStringLiteral("r.jpg")});
    }
}
