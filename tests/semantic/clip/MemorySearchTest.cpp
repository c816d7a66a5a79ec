#include "clip/MemorySearch.h"

#include "clip/ClipTest.h"
#include "semantic/FeatureDiagnostics.h"

#include <QColor>
#include <QRegularExpression>

#include <gmock/gmock.h>

using namespace Qorvane;

using MemorySearchTest = ClipTest;

namespace {

ImageFeatures featuresOf(const std::vector<std::vector<float>> &vectors)
{
    ImageFeatures features;
    for (size_t index = 0; index < vectors.size(); ++index) {
        features.insert(FileUrl::file(QStringLiteral("/pictures/%1.jpg").arg(index)),
                        {.features = vectors[index], .l2Norm = l2Norm(vectors[index])});
    }
    return features;
}

QStringList linesStartingWith(const QStringList &lines, const QString &prefix)
{
    return lines.filter(QRegularExpression(u'^' + QRegularExpression::escape(prefix)));
}

} // namespace

TEST_F(MemorySearchTest, saysWhatItDoesInOrder)
{
    const auto service = loadedService();
    const FileUrl red = makePicture(QStringLiteral("red.png"), Qt::red);
    const FileUrl blue = makePicture(QStringLiteral("blue.png"), Qt::blue);
    await(service->extractFeatures({red, blue}));
    await(service->extractTextFeatures(QStringLiteral("red")));
    log.clear();
    const auto results = await(service->search(QStringLiteral("red"), 20));

    EXPECT_EQ(namesOf(results), QStringList{QStringLiteral("red.png")});
    const QStringList lines = log.lines();
    ASSERT_EQ(lines.size(), 23) << qPrintable(lines.join(u'\n'));
    EXPECT_EQ(lines[0], QStringLiteral("🔍 开始搜索: 'red'"));
    EXPECT_EQ(lines[1], QStringLiteral("📝 查询扩展：'red' -> 保持原样（测试中）"));
    EXPECT_EQ(lines[2], QStringLiteral("📝 扩展查询: 'red'"));
    EXPECT_EQ(lines[3], QStringLiteral("🔤 开始处理文本: 'red'"));
    EXPECT_EQ(lines[9], QStringLiteral("✅ 文本特征提取成功，特征向量长度: 16"));
    EXPECT_EQ(lines[10], QStringLiteral("📊 文本特征前5个值: [1.0, 0.0, 0.0, 0.0, 0.0]"));
    EXPECT_EQ(lines[11], QStringLiteral("🗃️ 当前缓存的图片特征数量: 2"));
    EXPECT_EQ(lines[12], QStringLiteral("✅ 图片特征各不相同"));
    EXPECT_TRUE(lines[13].startsWith(QStringLiteral("📏 特征差异统计: 最大差异=0.9")))
        << qPrintable(lines[13]);
    EXPECT_TRUE(lines[14].startsWith(QStringLiteral("📊 图片1 ("))) << qPrintable(lines[14]);
    EXPECT_TRUE(lines[15].startsWith(QStringLiteral("📊 图片2 ("))) << qPrintable(lines[15]);
    EXPECT_EQ(lines[16], QStringLiteral("🔍 搜索结果按排名显示:"));
    EXPECT_TRUE(lines[17].startsWith(QStringLiteral("🧮 #1 sim=0.98"))) << qPrintable(lines[17]);
    EXPECT_EQ(lines[18], QStringLiteral("🧮 #2 sim=0.0000 (0%) p=0.000 -> blue.png"));
    EXPECT_EQ(lines[19], QStringLiteral("🎯 搜索完成，共找到 2 张图片"));
    EXPECT_EQ(lines[20], QStringLiteral("📊 过滤前结果数: 2, 过滤后结果数: 1 (阈值: 15%)"));
    EXPECT_TRUE(lines[21].startsWith(QStringLiteral("📈 前1个结果: [0.98"))) << qPrintable(lines[21]);
    EXPECT_TRUE(lines[21].endsWith(QStringLiteral("/p=1.000]"))) << qPrintable(lines[21]);
    EXPECT_TRUE(lines[22].startsWith(QStringLiteral("🏆 #1: red.png - 0.98"))) << qPrintable(lines[22]);
    EXPECT_TRUE(lines[22].endsWith(QStringLiteral(" (98%) p=1.000"))) << qPrintable(lines[22]);
}

TEST_F(MemorySearchTest, saysWhenTheTextGivesNothing)
{
    removeInstalledEncoders();
    ChineseClipService service;
    EXPECT_TRUE(await(service.search(QStringLiteral("red"), 20)).isEmpty());
    EXPECT_EQ(log.lines().mid(log.lines().size() - 2),
              QStringList({QStringLiteral("❌ Models not loaded"), QStringLiteral("❌ 提取文本特征失败")}));
}

TEST_F(MemorySearchTest, searchesForTheQueryAsItStands)
{
    ChineseClipService service;
    log.clear();
    EXPECT_EQ(service.expandQuery(QStringLiteral("a Cat ")), QStringLiteral("a Cat "));
    EXPECT_EQ(log.lines(), QStringList{QStringLiteral("📝 查询扩展：'a Cat ' -> 保持原样（测试中）")});
}

TEST_F(MemorySearchTest, countsAVectorOfAnotherLengthWithSimilarityZero)
{
    const std::vector<float> text{1, 0, 0};
    const auto results = searchInMemory(featuresOf({{1, 0, 0}, {1, 0}}), text, 20, 1.0f);
    ASSERT_EQ(results.size(), 1);
    // It takes part in the softmax: e / (e + 1).
    EXPECT_NEAR(results[0].probability.value_or(0), 0.7310586f, 1e-6);
    EXPECT_TRUE(log.contains(QStringLiteral("🧮 #2 sim=0.0000 (0%) p=0.269 -> 1.jpg")));
    EXPECT_TRUE(log.contains(QStringLiteral("📊 过滤前结果数: 2, 过滤后结果数: 1 (阈值: 15%)")));
}

TEST_F(MemorySearchTest, showsNoMoreThanFiveResults)
{
    const std::vector<float> text{1, 0};
    const std::vector<std::vector<float>> vectors(8, {0.6f, 0.8f});
    EXPECT_EQ(searchInMemory(featuresOf(vectors), text, 7, 100).size(), 7);
    EXPECT_EQ(log.linesStartingWith(QStringLiteral("🏆 #")).size(), 5);
    EXPECT_EQ(log.linesStartingWith(QStringLiteral("📈 前5个结果: [0.6000/p=0.125, ")).size(), 1);
    EXPECT_TRUE(log.contains(QStringLiteral("📊 过滤前结果数: 8, 过滤后结果数: 8 (阈值: 15%)")));
}

TEST_F(MemorySearchTest, roundsHalvesToTheEvenDigit)
{
    const std::vector<float> text{1, 0};
    const std::vector<std::vector<float>> vectors(16, {0.6f, 0.8f});
    ASSERT_EQ(searchInMemory(featuresOf(vectors), text, 1, 100).value(0).probability, 0.0625f);
    EXPECT_TRUE(log.contains(QStringLiteral("📈 前1个结果: [0.6000/p=0.062]")));
    EXPECT_EQ(log.linesStartingWith(QStringLiteral("🏆 #1: ")).value(0).right(8), QStringLiteral(" p=0.062"));
}

TEST_F(MemorySearchTest, hasAnEmptyListOfResultsWithoutPictures)
{
    EXPECT_TRUE(searchInMemory({}, {1, 0}, 20, 100).isEmpty());
    EXPECT_TRUE(log.contains(QStringLiteral("📈 前0个结果: []")));
    EXPECT_TRUE(log.contains(QStringLiteral("🎯 搜索完成，共找到 0 张图片")));
}

TEST(FeatureDiagnostics, hasNothingToCompareBelowTwoPictures)
{
    EXPECT_TRUE(featureDiagnostics({}).isEmpty());
    EXPECT_TRUE(featureDiagnostics(featuresOf({{1, 2}})).isEmpty());
}

TEST(FeatureDiagnostics, warnsWhenAllVectorsAreTheSame)
{
    const QString warning =
        QStringLiteral("⚠️ 警告：所有图片特征都相同！这是问题的根源！");
    const QString relief = QStringLiteral("✅ 图片特征各不相同");
    EXPECT_EQ(featureDiagnostics(featuresOf({{1, 2}, {1, 2.00005f}})).value(0), warning);
    EXPECT_EQ(featureDiagnostics(featuresOf({{1, 2}, {1, 2.0002f}})).value(0), relief);
    EXPECT_EQ(featureDiagnostics(featuresOf({{1, 2}, {1, 2, 0}})).value(0), relief);
    EXPECT_EQ(featureDiagnostics(featuresOf({{1, 2}, {1, 2}, {1, 3}})).value(0), relief);
}

TEST(FeatureDiagnostics, measuresHowFarTheVectorsDiffer)
{
    // Pairs (0, 1), (0, 2), (1, 2) over the shorter length: differences 1; 0; 1 and again 2 elements each but
    // for the shorter vector.
    const QStringList lines = featureDiagnostics(featuresOf({{0, 0}, {0.5f, 1}, {0}}));
    // 0-1: 0.5, 1; 0-2: 0; 1-2: 0.5. Four elements, 2.0 together.
    EXPECT_EQ(lines.value(1), QStringLiteral("📏 特征差异统计: 最大差异=1.0, 平均差异=0.5"));
    EXPECT_EQ(featureDiagnostics(featuresOf({{}, {}})).value(1),
              QStringLiteral("📏 特征差异统计: 最大差异=0.0, 平均差异=0.0"));
}

TEST(FeatureDiagnostics, describesTheFirstFivePictures)
{
    const QStringList lines =
        featureDiagnostics(featuresOf(std::vector<std::vector<float>>(7, {3, 4, 0, 0})));
    const QStringList pictures = linesStartingWith(lines, QStringLiteral("📊 图片"));
    ASSERT_EQ(pictures.size(), 5);
    EXPECT_TRUE(pictures[4].startsWith(QStringLiteral("📊 图片5 ("))) << qPrintable(pictures[4]);
    EXPECT_TRUE(pictures[4].endsWith(QStringLiteral(".jpg): 前3个特征值=[3.0, 4.0, 0.0], L2范数=5.0")))
        << qPrintable(pictures[4]);
}
