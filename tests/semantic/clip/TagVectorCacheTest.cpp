#include "clip/BusyStore.h"
#include "clip/TagTest.h"
#include "encoders/TextEncoderCount.h"
#include "media/ThumbnailPaths.h"
#include "store/EmbeddingStore.h"
#include "support/Waiting.h"

#include <QColor>

using namespace Qorvane;

namespace {

const QString blue = QStringLiteral("blue");

class TagVectorCacheTest : public TagTest
{
};

class LoadImageForAnalysisTest : public TagTest
{
protected:
    QColor colourOf(const std::optional<Image> &image)
    {
        return image ? image->pixels().pixelColor(5, 5) : QColor();
    }
};

} // namespace

TEST_F(TagVectorCacheTest, aNewTextIsEncodedAndKeptInTheStore)
{
    const auto vector = await(service->getTagVector(blue));
    ASSERT_TRUE(vector);
    EXPECT_EQ(*vector, await(service->extractTextFeatures(blue)));
    EXPECT_EQ(EmbeddingStore::shared().loadTagVector(blue), *vector);
    EXPECT_EQ(service->tagVectorCache().value(blue), *vector);
    EXPECT_TRUE(log.contains(QStringLiteral("📝 新计算并存储标签向量: 'blue'")));
}

TEST_F(TagVectorCacheTest, aStoredVectorIsTakenAsItIs)
{
    const std::vector<float> stored{3.0f, 4.0f};
    EmbeddingStore::shared().storeTagVector(blue, stored);
    EXPECT_EQ(await(service->getTagVector(blue)), stored);
    EXPECT_EQ(log.lines(), QStringList(QStringLiteral("📥 从数据库加载标签向量: 'blue'")));
}

TEST_F(TagVectorCacheTest, whatIsInMemoryComesBeforeTheStore)
{
    const auto vector = await(service->getTagVector(blue));
    EmbeddingStore::shared().storeTagVector(blue, {3.0f, 4.0f});
    log.clear();
    EXPECT_EQ(await(service->getTagVector(blue)), vector);
    EXPECT_TRUE(log.lines().isEmpty());
}

TEST_F(TagVectorCacheTest, theExactTextCounts)
{
    await(service->getTagVector(blue));
    await(service->getTagVector(QStringLiteral("Blue")));
    EXPECT_EQ(service->tagVectorCache().size(), 2);
    EXPECT_EQ(EmbeddingStore::shared().getTagVectorCount(), 2);
}

TEST_F(TagVectorCacheTest, aTextThatCannotBeEncodedIsNotKept)
{
    removeInstalledEncoders();
    ChineseClipService without;
    EXPECT_FALSE(await(without.getTagVector(blue)));
    EXPECT_TRUE(without.tagVectorCache().isEmpty());
    EXPECT_EQ(EmbeddingStore::shared().getTagVectorCount(), 0);
}

TEST_F(TagVectorCacheTest, whoAskAtOnceShareOneVector)
{
    const TextEncoderCount encoded;
    service = loadedService();
    auto first = service->getTagVector(blue);
    auto second = service->getTagVector(blue);
    const auto vector = await(std::move(first));
    EXPECT_TRUE(vector);
    EXPECT_EQ(await(std::move(second)), vector);
    EXPECT_EQ(encoded.texts(), 1);
    EXPECT_EQ(log.linesStartingWith(QStringLiteral("📝 新计算并存储标签向量")).size(), 1);
}

TEST_F(TagVectorCacheTest, whoAskAtOnceForATextThatCannotBeEncodedAllGetNone)
{
    removeInstalledEncoders();
    ChineseClipService without;
    auto first = without.getTagVector(blue);
    auto second = without.getTagVector(blue);
    EXPECT_FALSE(await(std::move(first)));
    EXPECT_FALSE(await(std::move(second)));
    EXPECT_EQ(log.linesStartingWith(QStringLiteral("❌ Models not loaded")).size(), 1);
}

TEST_F(TagVectorCacheTest, aServiceThatGoesLeavesNobodyWaiting)
{
    BusyStore other(url(QStringLiteral("row.jpg")));
    auto first = service->getTagVector(blue);
    auto second = service->getTagVector(blue);
    service.reset(); // which the store doesn't hold up
    other.release();
    EXPECT_FALSE(await(std::move(first)));
    EXPECT_FALSE(await(std::move(second)));
}

TEST_F(TagVectorCacheTest, aTextIsEncodedWhileTagsWaitForTheStore)
{
    BusyStore other(url(QStringLiteral("row.jpg")));
    std::vector<QCoro::Task<std::optional<std::vector<float>>>> tags;
    for (const char *tag : {"a", "b", "c", "d"})
        tags.push_back(service->getTagVector(QString::fromLatin1(tag)));
    auto query = service->extractTextFeatures(blue);
    EXPECT_TRUE(waitUntil([&query] { return query.isReady(); }));
    for (const auto &tag : tags)
        EXPECT_FALSE(tag.isReady());
    other.release();
    EXPECT_TRUE(await(std::move(query)));
    for (auto &tag : tags)
        EXPECT_TRUE(await(std::move(tag)));
}

TEST_F(LoadImageForAnalysisTest, theThumbnailComesFirst)
{
    const FileUrl photo = makePicture(QStringLiteral("blue.png"), Qt::blue);
    ASSERT_TRUE(plainPicture(Qt::red).save(thumbnailURL(photo)->path(), "JPG"));
    EXPECT_GT(colourOf(await(service->loadImageForAnalysis(photo))).red(), 200);
}

TEST_F(LoadImageForAnalysisTest, withoutAThumbnailOneIsMade)
{
    const FileUrl photo = makePicture(QStringLiteral("blue.png"), Qt::blue);
    EXPECT_GT(colourOf(await(service->loadImageForAnalysis(photo))).blue(), 200);
    EXPECT_FALSE(Image::fromFile(thumbnailURL(photo)->path()).isNull());
}

TEST_F(LoadImageForAnalysisTest, aPhotoThatCannotBeReadGivesNone)
{
    EXPECT_FALSE(await(service->loadImageForAnalysis(makeBrokenFile(QStringLiteral("broken.png")))));
}
