#include "ChineseClipService.h"

#include "clip/ClipTest.h"
#include "media/ThumbnailPaths.h"
#include "support/Waiting.h"

#include <QColor>
#include <QFile>
#include <QSignalSpy>

#include <bit>
#include <cmath>

using namespace Qorvane;

using ChineseClipServiceTest = ClipTest;

namespace {

Image plainImage(const QColor &colour)
{
    return Image(plainPicture(colour));
}

float lengthOf(const std::vector<float> &vector)
{
    double sum = 0;
    for (const float element : vector)
        sum += double(element) * double(element);
    return float(std::sqrt(sum));
}

} // namespace

TEST_F(ChineseClipServiceTest, loadsNothingWhenItIsMade)
{
    const ChineseClipService service;
    EXPECT_EQ(log.lines(),
              QStringList({QStringLiteral("⚙️ 使用默认 logitScale=100.00296"),
                           QStringLiteral(
                               "⚙️ ChineseClipService 初始化完成，模型将在需要时加载")}));
    EXPECT_FALSE(service.modelsLoaded());
    EXPECT_FALSE(service.isLoadingModels());
    EXPECT_TRUE(service.imageFeatures().isEmpty());
    EXPECT_EQ(std::bit_cast<quint32>(service.logitScale()), 0x42C80184u);
}

TEST_F(ChineseClipServiceTest, loadsBothEncodersInTheBackgroundAndSaysSo)
{
    ChineseClipService service;
    log.clear();
    QSignalSpy loadedSpy(&service, &ChineseClipService::modelsLoadedChanged);
    QSignalSpy loadingSpy(&service, &ChineseClipService::isLoadingModelsChanged);

    auto task = service.ensureModelsLoaded();
    EXPECT_TRUE(service.isLoadingModels());
    EXPECT_FALSE(service.modelsLoaded());
    await(std::move(task));

    EXPECT_TRUE(service.modelsLoaded());
    EXPECT_FALSE(service.isLoadingModels());
    EXPECT_EQ(loadedSpy.size(), 1);
    EXPECT_EQ(loadingSpy.size(), 2);
    const QString folder = userModelsFolder();
    const QStringList lines = log.lines();
    ASSERT_EQ(lines.size(), 12) << qPrintable(lines.join(u'\n'));
    EXPECT_EQ(
        lines.first(9),
        QStringList({
            QStringLiteral("🔍 开始加载模型（后台线程）... locale=en"),
            QStringLiteral("🔍 Looking for model: ClipVisionEncoder"),
            QStringLiteral("✅ Found .onnx in bundle: ") + folder + QStringLiteral("/ClipVisionEncoder.onnx"),
            QStringLiteral("🔍 Looking for model: ClipTextEncoder"),
            QStringLiteral("✅ Found .onnx in bundle: ") + folder + QStringLiteral("/ClipTextEncoder.onnx"),
            QStringLiteral("✅(bg) 视觉模型加载成功: ClipVisionEncoder.onnx"),
            QStringLiteral("✅(bg) 文本模型加载成功: ClipTextEncoder.onnx"),
            QStringLiteral("🎉 模型加载成功 (on main)"),
            QStringLiteral("🚀 开始预计算预定义标签向量..."),
        }));
    EXPECT_TRUE(lines.constLast().startsWith(QStringLiteral("📊 已缓存 ")));
}

TEST_F(ChineseClipServiceTest, returnsAtOnceFromASecondLoadDuringALoad)
{
    ChineseClipService service;
    auto first = service.ensureModelsLoaded();
    log.clear();
    const auto second = service.ensureModelsLoaded();
    EXPECT_TRUE(second.isReady());
    EXPECT_FALSE(first.isReady());

    // Whoever didn't wait meets a service without encoders.
    const auto text = service.extractTextFeatures(QStringLiteral("red"));
    EXPECT_TRUE(text.isReady());
    EXPECT_TRUE(log.contains(QStringLiteral("❌ Models not loaded")));
    await(std::move(first));
    EXPECT_EQ(log.linesStartingWith(QStringLiteral("🎉")).size(), 1);
}

TEST_F(ChineseClipServiceTest, loadsOnlyOnce)
{
    const auto service = loadedService();
    EXPECT_TRUE(service->ensureModelsLoaded().isReady());
    EXPECT_TRUE(log.lines().isEmpty());
}

TEST_F(ChineseClipServiceTest, embedsAPictureWithUnitLength)
{
    const auto service = loadedService();
    const auto vector = await(service->extractImageFeatures(plainImage(Qt::red), QStringLiteral("rose.jpg")));
    ASSERT_TRUE(vector);
    EXPECT_EQ(vector->size(), openaiLength);
    EXPECT_NEAR(lengthOf(*vector), 1, 1e-6);
    EXPECT_GT((*vector)[Axis::red], 0.9f);

    const QStringList lines = log.lines();
    ASSERT_EQ(lines.size(), 2);
    EXPECT_EQ(lines[0], QStringLiteral("✅ 图像特征提取成功 [rose.jpg]，特征维度: 16"));
    EXPECT_TRUE(lines[1].startsWith(QStringLiteral("📏 特征向量L2范数: 1.0"))) << qPrintable(lines[1]);
    EXPECT_TRUE(lines[1].contains(QStringLiteral(", min=0.0, max=0.9"))) << qPrintable(lines[1]);
    EXPECT_TRUE(lines[1].contains(QStringLiteral(", head=[0.9"))) << qPrintable(lines[1]);
}

TEST_F(ChineseClipServiceTest, leavesTheLabelOutWhenThereIsNone)
{
    const auto service = loadedService();
    EXPECT_TRUE(await(service->extractImageFeatures(plainImage(Qt::blue))));
    EXPECT_EQ(log.lines().value(0), QStringLiteral("✅ 图像特征提取成功，特征维度: 16"));
}

TEST_F(ChineseClipServiceTest, saysWhenAPictureCannotBePrepared)
{
    const auto service = loadedService();
    EXPECT_FALSE(await(service->extractImageFeatures(Image(), QStringLiteral("none.jpg"))));
    EXPECT_FALSE(await(
        service->extractImageFeatures(Image::fromFile(makeBrokenFile(QStringLiteral("b.jpg")).path()))));
    const QString line = QStringLiteral("❌ Failed to preprocess image");
    EXPECT_EQ(log.linesStartingWith(line), QStringList({line, line}));
}

TEST_F(ChineseClipServiceTest, embedsATextAndShowsItsTokens)
{
    const auto service = loadedService();
    await(service->extractTextFeatures(QStringLiteral("warm up the tokenizer")));
    log.clear();
    const auto vector = await(service->extractTextFeatures(QStringLiteral("Red sky")));
    ASSERT_TRUE(vector);
    EXPECT_NEAR(lengthOf(*vector), 1, 1e-6);

    const QString padding = QStringLiteral(", 0").repeated(77 - 4);
    const QStringList lines = log.lines();
    ASSERT_EQ(lines.size(), 6) << qPrintable(lines.join(u'\n'));
    EXPECT_EQ(lines[0], QStringLiteral("🔤 开始处理文本: 'Red sky'"));
    EXPECT_EQ(lines[1],
              QStringLiteral("📝 分词结果 - input_ids前10个: [49406, 320, 328, 49407, 0, 0, 0, 0, 0, 0]"));
    EXPECT_EQ(lines[2], QStringLiteral("🧾 token_ids(全部): [49406, 320, 328, 49407") + padding + u']');
    EXPECT_EQ(lines[3], QStringLiteral("👁️ attention_mask前10个: [1, 1, 1, 1, 0, 0, 0, 0, 0, 0]"));
    EXPECT_EQ(lines[4], QStringLiteral("✅ 文本特征提取成功，特征维度: 16"));
    EXPECT_TRUE(lines[5].startsWith(QStringLiteral("📏 特征向量L2范数: "))) << qPrintable(lines[5]);
}

TEST_F(ChineseClipServiceTest, leavesAVectorOfZerosAsItIs)
{
    const auto service = loadedService();
    const auto vector = await(service->extractTextFeatures(QStringLiteral("nothing it knows")));
    ASSERT_TRUE(vector);
    EXPECT_EQ(*vector, std::vector<float>(openaiLength, 0.0f));
    EXPECT_EQ(log.lines().constLast(), QStringLiteral("📏 特征向量L2范数: 0.0, min=0.0, max=0.0, "
                                                      "head=[0.0, 0.0, 0.0, 0.0, 0.0]"));
}

TEST_F(ChineseClipServiceTest, keepsTheLinesOfSeveralPicturesAtWorkTogether)
{
    const auto service = loadedService();
    std::vector<QCoro::Task<std::optional<std::vector<float>>>> tasks;
    constexpr int count = 12;
    for (int index = 0; index < count; ++index)
        tasks.push_back(service->extractImageFeatures(plainImage(QColor::fromHsv(index * 25, 200, 200)),
                                                      QString::number(index)));
    for (auto &task : tasks)
        EXPECT_TRUE(await(std::move(task)));

    const QStringList lines = log.lines();
    ASSERT_EQ(lines.size(), 2 * count);
    for (int index = 0; index < lines.size(); index += 2) {
        EXPECT_TRUE(lines[index].startsWith(QStringLiteral("✅ 图像特征提取成功 [")))
            << qPrintable(lines[index]);
        EXPECT_TRUE(lines[index + 1].startsWith(QStringLiteral("📏"))) << qPrintable(lines[index + 1]);
    }
}

TEST_F(ChineseClipServiceTest, doesTheWorkOfAPictureOffTheGuiThread)
{
    const auto service = loadedService();
    // Nothing has been decoded or encoded when the call returns. The picture is so large that its decoding
    // takes thousands of times the processor time of the call, on a busy machine too.
    const FileUrl large = url(QStringLiteral("large.jpg"));
    ASSERT_TRUE(plainPicture(Qt::green, {4000, 4000}).save(large.path()));
    auto task = service->extractImageFeatures(Image::fromFile(large.path()));
    EXPECT_FALSE(task.isReady());
    EXPECT_TRUE(await(std::move(task)));
}

TEST_F(ChineseClipServiceTest, embedsFilesByTheirThumbnails)
{
    const FileUrl blue = makePicture(QStringLiteral("blue.png"), Qt::blue);
    const FileUrl broken = makeBrokenFile(QStringLiteral("broken.png"));
    const FileUrl red = makePicture(QStringLiteral("red.png"), Qt::red);
    // A thumbnail that is there is what counts, not the file it was made of.
    ASSERT_TRUE(plainPicture(Qt::yellow).save(thumbnailURL(red)->path(), "JPG"));

    ChineseClipService service;
    QSignalSpy spy(&service, &ChineseClipService::imageFeaturesChanged);
    await(service.extractFeatures({blue, broken, red}));

    ASSERT_EQ(service.imageFeatures().size(), 2);
    EXPECT_EQ(spy.size(), 2);
    const ImageFeature blueFeature = service.imageFeatures().value(blue);
    EXPECT_GT(blueFeature.features[Axis::blue], 0.9f);
    EXPECT_NEAR(blueFeature.l2Norm, 1, 1e-6);
    EXPECT_GT(service.imageFeatures().value(red).features[Axis::yellow], 0.9f);
    EXPECT_TRUE(QFile::exists(thumbnailURL(blue)->path()));

    const QStringList lines = log.lines();
    const auto start = lines.indexOf(QStringLiteral("🔄 开始为 3 张图片提取特征..."));
    ASSERT_GT(start, lines.indexOf(QStringLiteral("🎉 模型加载成功 (on main)")));
    ASSERT_EQ(lines.size(), start + 7);
    EXPECT_EQ(lines[start + 1], QStringLiteral("✅ 图像特征提取成功 [blue.png]，特征维度: 16"));
    EXPECT_EQ(lines[start + 3], QStringLiteral("❌ 处理失败: broken.png"));
    EXPECT_EQ(lines[start + 4], QStringLiteral("✅ 图像特征提取成功 [red.png]，特征维度: 16"));
    EXPECT_EQ(lines[start + 6], QStringLiteral("🎯 Feature extraction completed for 2 images"));
}

TEST_F(ChineseClipServiceTest, replacesAnEarlierFeatureOfTheSameFile)
{
    const auto service = loadedService();
    const FileUrl url = makePicture(QStringLiteral("a.png"), Qt::blue);
    await(service->extractFeatures({url}));
    ASSERT_TRUE(plainPicture(Qt::green).save(thumbnailURL(url)->path(), "JPG"));
    await(service->extractFeatures({url}));
    EXPECT_EQ(service->imageFeatures().size(), 1);
    EXPECT_GT(service->imageFeatures().value(url).features[Axis::green], 0.5f);
}

TEST_F(ChineseClipServiceTest, mayGoWhileItsWorkIsUnderWay)
{
    auto service = loadedService();
    auto picture = service->extractImageFeatures(plainImage(Qt::red));
    auto text = service->extractTextFeatures(QStringLiteral("red"));
    auto search = service->searchWithDatabase(QStringLiteral("red"), {}, 20);
    auto loading = std::make_unique<ChineseClipService>();
    auto load = loading->ensureModelsLoaded();
    const bool isTextDone = text.isReady(); // as a short one may be before the call returns
    service.reset();
    loading.reset();

    EXPECT_TRUE(
        waitUntil([&] { return picture.isReady() && text.isReady() && search.isReady() && load.isReady(); }));
    EXPECT_TRUE(await(std::move(search)).isEmpty());
    EXPECT_EQ(await(std::move(text)).has_value(), isTextDone);
    await(std::move(load));
}
