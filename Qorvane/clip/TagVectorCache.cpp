#include "clip/TagVectorCache.h"

#include "ChineseClipService.h"
#include "platform/Log.h"
#include "store/EmbeddingStore.h"

#include <QCoroFuture>
#include <QPointer>

#include <utility>

namespace Qorvane {

// As in the service: after every co_await it may be gone, and this with it.

TagVectorCache::TagVectorCache(ChineseClipService &service, WorkerPool &workers)
    : m_service(service)
    , m_workers(workers)
{
}

void TagVectorCache::insert(const QString &tag, std::vector<float> vector)
{
    m_entries.insert(tag, std::move(vector));
}

QCoro::Task<std::optional<std::vector<float>>> TagVectorCache::vectorOf(QString tag)
{
    if (const auto cached = m_entries.constFind(tag); cached != m_entries.constEnd())
        co_return *cached;
    const QPointer<ChineseClipService> self(&m_service);
    const QFuture<std::optional<std::vector<float>>> loading =
        m_workers.run([tag] { return EmbeddingStore::shared().loadTagVector(tag); });
    const std::optional<std::vector<float>> stored = co_await loading;
    if (!self)
        co_return std::nullopt;
    if (stored) {
        m_entries.insert(tag, *stored);
        Log::line(QStringLiteral("📥 从数据库加载标签向量: '") + tag + u'\'');
        co_return stored;
    }
    co_return co_await encode(tag);
}

QCoro::Task<std::optional<std::vector<float>>> TagVectorCache::encode(QString tag)
{
    const QPointer<ChineseClipService> self(&m_service);
    const std::optional<std::vector<float>> vector = co_await m_service.extractTextFeatures(tag);
    if (!self || !vector)
        co_return std::nullopt;
    m_entries.insert(tag, *vector);
    const QFuture<void> storing =
        m_workers.run([tag, vector] { EmbeddingStore::shared().storeTagVector(tag, *vector); });
    co_await storing;
    if (!self)
        co_return std::nullopt;
    Log::line(QStringLiteral("📝 新计算并存储标签向量: '") + tag + u'\'');
    co_return vector;
}

} // namespace Qorvane
