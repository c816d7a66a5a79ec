#include "clip/TagRecommender.h"

#include "ChineseClipService.h"
#include "clip/EmbeddingPicture.h"
#include "platform/Log.h"

#include <QCoroFuture>
#include <QPointer>

#include <utility>

namespace Qorvane {

// As in the service: after every co_await it may be gone, and this with it.

TagRecommender::TagRecommender(ChineseClipService &service, WorkerPool &workers, WorkerPool &pictures)
    : m_service(service)
    , m_workers(workers)
    , m_pictures(pictures)
    , m_vectors(service)
{
}

QCoro::Task<QList<TagRecommendation>> TagRecommender::recommend(FileUrl url, QStringList userTags,
                                                                QStringList existingTags, int limit)
{
    const QPointer<ChineseClipService> self(&m_service);
    Log::line(QStringLiteral("🏷️ 开始为照片推荐标签: ") + url.lastPathComponent());
    co_await m_service.ensureModelsLoaded();
    if (!self)
        co_return {};
    const QFuture<QStringList> choosing =
        m_workers.run([userTags, existingTags] { return availableTags(userTags, existingTags); });
    const QStringList available = co_await choosing;
    if (!self)
        co_return {};
    // Also when nothing is available: the log then tells whether the photo could have been read.
    const std::optional<std::vector<float>> photo = co_await photoFeatures(url);
    if (!self || !photo)
        co_return {};
    const QList<TagRecommendation> scored = co_await scoreAll(available, *photo);
    if (!self)
        co_return {};
    const QFuture<QList<TagRecommendation>> ranking =
        m_workers.run([scored, limit] { return bestTags(scored, limit); });
    co_return co_await ranking;
}

QCoro::Task<std::optional<Image>> TagRecommender::loadImage(FileUrl url)
{
    const QFuture<std::optional<Image>> loading = m_pictures.run([url] { return embeddingPicture(url); });
    co_return co_await loading;
}

QCoro::Task<std::optional<std::vector<float>>> TagRecommender::photoFeatures(FileUrl url)
{
    const QPointer<ChineseClipService> self(&m_service);
    const std::optional<Image> image = co_await loadImage(url);
    if (!self)
        co_return std::nullopt;
    std::optional<std::vector<float>> features;
    if (image)
        features = co_await m_service.extractImageFeatures(*image, url.lastPathComponent());
    if (!self)
        co_return std::nullopt;
    Log::line(features ? QStringLiteral("✅ 照片特征提取成功，特征维度: %1").arg(features->size())
                       : QStringLiteral("❌ 无法提取照片特征"));
    co_return features;
}

QCoro::Task<QList<TagRecommendation>> TagRecommender::scoreAll(QStringList tags, std::vector<float> photo)
{
    const QPointer<ChineseClipService> self(&m_service);
    QList<TagRecommendation> scored;
    std::vector<TagAndVector> batch;
    for (const QString &tag : std::as_const(tags)) {
        SharedTagVector vector = m_vectors.entries().value(tag);
        // A tag that has to be fetched writes lines of its own, which come after those of the tags before it.
        if (!vector && !batch.empty()) {
            const QFuture<QList<TagRecommendation>> scoring =
                m_workers.run([batch = std::exchange(batch, {}), photo] { return scoredTags(batch, photo); });
            scored += co_await scoring;
            if (!self)
                co_return {};
        }
        if (!vector)
            vector = co_await m_vectors.vectorOf(tag);
        if (!self)
            co_return {};
        if (vector)
            batch.emplace_back(tag, vector);
        else
            Log::line(QStringLiteral("⚠️ 无法获取标签 '") + tag +
                      QStringLiteral("' 的文本特征，跳过"));
    }
    const QFuture<QList<TagRecommendation>> scoring =
        m_workers.run([batch = std::move(batch), photo] { return scoredTags(batch, photo); });
    scored += co_await scoring;
    co_return scored;
}

} // namespace Qorvane
