#include "clip/ClipTest.h"
#include "platform/Languages.h"

#include <QColor>

using namespace Qorvane;

// A program of its own: the tokenizer is built once, for the language of the process.
TEST_F(ClipTest, findsPicturesByChineseWords)
{
    Languages::overrideForTests({QStringLiteral("zh-Hans-CN")}, QStringLiteral("zh"));
    removeInstalledEncoders();
    ASSERT_TRUE(installTestFamily(QStringLiteral("chinese")));
    const auto service = loadedService();
    const FileUrl red = makePicture(QStringLiteral("红.png"), Qt::red);
    const FileUrl blue = makePicture(QStringLiteral("蓝.png"), Qt::blue);
    await(service->extractFeatures({red, blue}));
    for (const FileUrl &url : {red, blue})
        storeVector(url, service->imageFeatures().value(url).features);
    log.clear();

    const auto results = await(service->searchWithDatabase(QStringLiteral("红色"), {}, 20));
    EXPECT_EQ(namesOf(results), QStringList{QStringLiteral("红.png")});
    EXPECT_TRUE(log.contains(QStringLiteral("🧠 Tokenizer mode: Chinese-CLIP")));
    EXPECT_EQ(
        log.linesStartingWith(QStringLiteral("📝 分词结果 - input_ids前10个: [101, 111, 102, 0, 0")).size(),
        1);
    EXPECT_EQ(namesOf(await(service->searchWithDatabase(QStringLiteral("蓝"), {}, 20))),
              QStringList{QStringLiteral("蓝.png")});
}
