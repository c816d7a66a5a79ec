// Tags with encoders of real size: each text is encoded once, whatever is asked.

#include "clip/ClipTest.h"
#include "encoders/StarterEncoders.h"
#include "encoders/TextEncoderCount.h"
#include "store/EmbeddingStore.h"

#include <QColor>

using namespace Qorvane;

namespace {

class StarterTagsTest : public ClipTest
{
protected:
    void SetUp() override
    {
        if (starterFolder().isEmpty())
            GTEST_SKIP() << noStarter;
        removeInstalledEncoders();
        ASSERT_TRUE(installStarter());
        EmbeddingStore::shared().cleanupObsoleteTagVectors({});
    }
    void TearDown() override { removeInstalledEncoders(); }

    const QStringList words{QStringLiteral("Blue"), QStringLiteral("Green"), QStringLiteral("Bright")};
};

} // namespace

TEST_F(StarterTagsTest, aSecondStartEncodesNoText)
{
    const TextEncoderCount encoded;
    const PredefinedTagsOverride tags(words);
    for (int start = 1; start <= 2; ++start) {
        ChineseClipService service;
        await(service.ensureModelsLoaded());
        EXPECT_TRUE(service.predefinedTagsPrecomputed());
        EXPECT_EQ(service.tagVectorCache().size(), words.size());
        EXPECT_EQ(encoded.texts(), words.size()) << start;
    }
}

TEST_F(StarterTagsTest, aSecondRecommendationEncodesNoText)
{
    const TextEncoderCount encoded;
    const std::unique_ptr<ChineseClipService> service = loadedService();
    const FileUrl photo = makePicture(QStringLiteral("photo.png"), Qt::blue);
    // The first makes the thumbnail, and from then on that is what is embedded.
    await(service->loadImageForAnalysis(photo));
    const auto first = await(service->recommendTags(photo, words, {}, 5));
    EXPECT_EQ(first.size(), words.size());
    EXPECT_EQ(encoded.texts(), words.size());
    EXPECT_EQ(await(service->recommendTags(photo, words, {}, 5)), first);
    EXPECT_EQ(encoded.texts(), words.size());
}
