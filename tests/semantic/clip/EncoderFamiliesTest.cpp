#include "ChineseClipService.h"
#include "clip/ClipTest.h"
#include "platform/Languages.h"

#include <QColor>
#include <QFile>

using namespace Qorvane;

namespace {

const QString visionName = QStringLiteral("ClipVisionEncoder.onnx");
const QString textName = QStringLiteral("ClipTextEncoder.onnx");

class EncoderFamiliesTest : public ClipTest
{
protected:
    /// The log of loading the encoders that are installed, without the lines of making the service.
    QStringList linesOfLoading(ChineseClipService &service)
    {
        log.clear();
        await(service.ensureModelsLoaded());
        return log.lines();
    }

    static QString found(const QString &name)
    {
        return QStringLiteral("✅ Found .onnx in bundle: ") + userModelsFolder() + u'/' + name +
               QStringLiteral(".onnx");
    }
    static QString sought(const QString &name) { return QStringLiteral("🔍 Looking for model: ") + name; }
    static QString missing(const QString &name) { return QStringLiteral("❌ Model not found: ") + name; }
};

} // namespace

TEST_F(EncoderFamiliesTest, areLookedForFourTimesWhenThereAreNone)
{
    removeInstalledEncoders();
    ChineseClipService service;
    EXPECT_EQ(linesOfLoading(service), QStringList({
                                           QStringLiteral("🔍 开始加载模型（后台线程）... locale=en"),
                                           sought(QStringLiteral("ClipVisionEncoder")),
                                           missing(QStringLiteral("ClipVisionEncoder")),
                                           sought(QStringLiteral("ChineseClipVisionEncoder")),
                                           missing(QStringLiteral("ChineseClipVisionEncoder")),
                                           sought(QStringLiteral("ClipTextEncoder")),
                                           missing(QStringLiteral("ClipTextEncoder")),
                                           sought(QStringLiteral("ChineseClipTextEncoder")),
                                           missing(QStringLiteral("ChineseClipTextEncoder")),
                                           QStringLiteral("❌ 模型加载失败（至少有一个未加载）"),
                                       }));
    EXPECT_FALSE(service.modelsLoaded());
    EXPECT_FALSE(service.isLoadingModels());

    log.clear();
    EXPECT_FALSE(await(service.extractImageFeatures(Image(plainPicture(Qt::red)))));
    EXPECT_FALSE(await(service.extractTextFeatures(QStringLiteral("red"))));
    EXPECT_EQ(log.lines(),
              QStringList({QStringLiteral("❌ Models not loaded"), QStringLiteral("❌ Models not loaded")}));
}

TEST_F(EncoderFamiliesTest, areTheChineseOnesFirstForAChineseReader)
{
    Languages::overrideForTests({QStringLiteral("zh-Hans-CN")}, QStringLiteral("zh"));
    ASSERT_TRUE(installTestFamily(QStringLiteral("chinese")));
    ChineseClipService service;
    const QStringList lines = linesOfLoading(service);
    EXPECT_EQ(lines.value(0), QStringLiteral("🔍 开始加载模型（后台线程）... locale=zh"));
    EXPECT_EQ(lines.value(2), found(QStringLiteral("ChineseClipVisionEncoder")));
    EXPECT_EQ(lines.value(4), found(QStringLiteral("ChineseClipTextEncoder")));

    const auto vector = await(service.extractImageFeatures(Image(plainPicture(Qt::red))));
    ASSERT_TRUE(vector);
    EXPECT_EQ(vector->size(), chineseLength);
}

TEST_F(EncoderFamiliesTest, standInForEachOtherOneByOne)
{
    // The Chinese vision encoder and the other family's text encoder: not comparable, and not prevented.
    Languages::overrideForTests({QStringLiteral("zh-Hans-CN")}, QStringLiteral("zh"));
    ASSERT_TRUE(installTestEncoder(QStringLiteral("chinese/ChineseClipVisionEncoder.onnx")));
    ChineseClipService service;
    const QStringList lines = linesOfLoading(service);
    EXPECT_EQ(lines.mid(1, 5), QStringList({
                                   sought(QStringLiteral("ChineseClipVisionEncoder")),
                                   found(QStringLiteral("ChineseClipVisionEncoder")),
                                   sought(QStringLiteral("ChineseClipTextEncoder")),
                                   missing(QStringLiteral("ChineseClipTextEncoder")),
                                   sought(QStringLiteral("ClipTextEncoder")),
                               }));
    EXPECT_TRUE(service.modelsLoaded());
}

TEST_F(EncoderFamiliesTest, areLoadedByALaterTryWhenOneWasMissing)
{
    ASSERT_TRUE(QFile::remove(userModelsFolder() + u'/' + textName));
    ChineseClipService service;
    const QStringList lines = linesOfLoading(service);
    EXPECT_TRUE(lines.contains(QStringLiteral("✅(bg) 视觉模型加载成功: ") + visionName));
    EXPECT_EQ(lines.constLast(), QStringLiteral("❌ 模型加载失败（至少有一个未加载）"));
    EXPECT_FALSE(lines.join(u'\n').contains(QStringLiteral("(bg) 文本模型")));
    EXPECT_FALSE(service.modelsLoaded());
    // One encoder alone serves nobody.
    EXPECT_FALSE(await(service.extractImageFeatures(Image(plainPicture(Qt::red)))));

    ASSERT_TRUE(installTestEncoder(QStringLiteral("openai/ClipTextEncoder.onnx")));
    EXPECT_TRUE(linesOfLoading(service).contains(QStringLiteral("🎉 模型加载成功 (on main)")));
    EXPECT_TRUE(service.modelsLoaded());
}

TEST_F(EncoderFamiliesTest, areRefusedWithTheReasonWhenAFileIsNoEncoder)
{
    ASSERT_TRUE(installTestEncoder(QStringLiteral("variants/NotAnEncoder.onnx"), visionName));
    ASSERT_TRUE(installTestEncoder(QStringLiteral("variants/NotAnEncoder.onnx"), textName));
    ChineseClipService service;
    linesOfLoading(service);
    const QString visionLine = QStringLiteral("❌(bg) 视觉模型加载失败: ");
    const QString textLine = QStringLiteral("❌(bg) 文本模型加载失败: ");
    ASSERT_EQ(log.linesStartingWith(visionLine).size(), 1);
    ASSERT_EQ(log.linesStartingWith(textLine).size(), 1);
    EXPECT_GT(log.linesStartingWith(visionLine)[0].size(), visionLine.size());
    EXPECT_FALSE(service.modelsLoaded());
}

TEST_F(EncoderFamiliesTest, takeElementsThatAreNotFiniteAsZero)
{
    ASSERT_TRUE(installTestEncoder(QStringLiteral("variants/TextNaN.onnx"), textName));
    ASSERT_TRUE(installTestEncoder(QStringLiteral("variants/VisionNaN.onnx"), visionName));
    const auto service = loadedService();
    // "sky" is 0.8 blue and 0.6 bright; blue and green come out as no numbers.
    const auto text = await(service->extractTextFeatures(QStringLiteral("sky")));
    ASSERT_TRUE(text);
    EXPECT_EQ((*text)[Axis::blue], 0);
    EXPECT_EQ((*text)[Axis::green], 0);
    EXPECT_EQ((*text)[Axis::bright], 1);

    const auto picture = await(service->extractImageFeatures(Image(plainPicture(Qt::blue))));
    ASSERT_TRUE(picture);
    EXPECT_EQ((*picture)[Axis::blue], 0);
    EXPECT_GT((*picture)[Axis::dark], 0.9f);
}

TEST_F(EncoderFamiliesTest, mayGiveNothingButZeros)
{
    ASSERT_TRUE(installTestEncoder(QStringLiteral("variants/VisionZero.onnx"), visionName));
    const auto service = loadedService();
    const auto picture = await(service->extractImageFeatures(Image(plainPicture(Qt::red))));
    ASSERT_TRUE(picture);
    EXPECT_EQ(*picture, std::vector<float>(openaiLength, 0.0f));
}

TEST_F(EncoderFamiliesTest, areReportedWhenTheyLackTheirFeature)
{
    ASSERT_TRUE(installTestEncoder(QStringLiteral("variants/VisionOtherOutput.onnx"), visionName));
    ASSERT_TRUE(installTestEncoder(QStringLiteral("variants/TextOtherOutput.onnx"), textName));
    const auto service = loadedService();
    EXPECT_FALSE(await(service->extractImageFeatures(Image(plainPicture(Qt::red)))));
    EXPECT_EQ(log.lines(), QStringList{QStringLiteral("❌ Failed to get image_features from prediction")});
    EXPECT_FALSE(await(service->extractTextFeatures(QStringLiteral("red"))));
    EXPECT_EQ(log.lines().constLast(), QStringLiteral("❌ Failed to get text features"));
}

TEST_F(EncoderFamiliesTest, areReportedWhenTheyCannotRun)
{
    // Each in the other's place: loads, but wants other inputs.
    ASSERT_TRUE(installTestEncoder(QStringLiteral("openai/ClipTextEncoder.onnx"), visionName));
    ASSERT_TRUE(installTestEncoder(QStringLiteral("openai/ClipVisionEncoder.onnx"), textName));
    const auto service = loadedService();
    EXPECT_FALSE(await(service->extractImageFeatures(Image(plainPicture(Qt::red)))));
    const QString visionLine = QStringLiteral("❌ Failed to run vision model prediction: ");
    ASSERT_EQ(log.linesStartingWith(visionLine).size(), 1);
    EXPECT_GT(log.linesStartingWith(visionLine)[0].size(), visionLine.size());

    EXPECT_FALSE(await(service->extractTextFeatures(QStringLiteral("red"))));
    const QString textLine = QStringLiteral("❌ Failed to extract text features: ");
    ASSERT_EQ(log.linesStartingWith(textLine).size(), 1);
    EXPECT_GT(log.linesStartingWith(textLine)[0].size(), textLine.size());
}
