#include "clip/TagVectorCache.h"

#include "ChineseClipService.h"
#include "clip/DetachedWork.h"
#include "platform/Log.h"
#include "store/EmbeddingStore.h"

#include <QCoroFuture>
#include <QPointer>
#include <QPromise>

#include <memory>
#include <optional>
#include <utility>

namespace Qorvane {

// As in the service: after every co_await it may be gone, and this with it. The store may be held for
// seconds: so that neither a search's text nor the end of the service waits for it, nothing here reads or
// writes it on the threads that encode.

TagVectorCache::TagVectorCache(ChineseClipService &service)
    : m_service(service)
{
}

void TagVectorCache::insert(const QString &tag, std::vector<float> vector)
{
    m_entries.insert(tag, std::make_shared<const std::vector<float>>(std::move(vector)));
}

QCoro::Task<SharedTagVector> TagVectorCache::vectorOf(QString tag)
{
    if (const auto cached = m_entries.constFind(tag); cached != m_entries.constEnd())
        co_return *cached;
    if (const auto other = m_fetching.constFind(tag); other != m_fetching.constEnd()) {
        const QFuture<SharedTagVector> fetching = *other;
        co_return co_await fetching;
    }
    const QPointer<ChineseClipService> self(&m_service);
    QPromise<SharedTagVector> promise;
    promise.start();
    m_fetching.insert(tag, promise.future());
    const SharedTagVector vector = co_await fetch(tag);
    if (self)
        m_fetching.remove(tag);
    promise.addResult(vector);
    promise.finish();
    co_return vector;
}

QCoro::Task<SharedTagVector> TagVectorCache::fetch(QString tag)
{
    const QPointer<ChineseClipService> self(&m_service);
    const QFuture<std::optional<std::vector<float>>> loading = runDetached(
        QualityOfService::userInitiated, [tag] { return EmbeddingStore::shared().loadTagVector(tag); });
    std::optional<std::vector<float>> stored = co_await loading;
    if (!self)
        co_return SharedTagVector();
    if (!stored)
        co_return co_await encode(tag);
    insert(tag, *std::move(stored));
    Log::line(QStringLiteral("📥 从数据库加载标签向量: '") + tag + u'\'');
    co_return m_entries.value(tag);
}

QCoro::Task<SharedTagVector> TagVectorCache::encode(QString tag)
{
    const QPointer<ChineseClipService> self(&m_service);
    std::optional<std::vector<float>> encoded = co_await m_service.extractTextFeatures(tag);
    if (!self || !encoded)
        co_return SharedTagVector();
    insert(tag, *std::move(encoded));
    const SharedTagVector vector = m_entries.value(tag);
    const QFuture<bool> storing = runDetached(QualityOfService::userInitiated, [tag, vector] {
        EmbeddingStore::shared().storeTagVector(tag, *vector);
        return true;
    });
    co_await storing;
    if (!self)
        co_return SharedTagVector();
    Log::line(QStringLiteral("📝 新计算并存储标签向量: '") + tag + u'\'');
    co_return vector;
}

} // namespace Qorvane
