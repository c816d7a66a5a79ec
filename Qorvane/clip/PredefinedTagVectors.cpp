#include "clip/PredefinedTagVectors.h"

#include "ChineseClipService.h"
#include "clip/DetachedWork.h"
#include "clip/TagVectorCache.h"
#include "platform/FixedDecimal.h"
#include "platform/Log.h"
#include "platform/PredefinedTags.h"
#include "store/EmbeddingStore.h"

#include <QCoroFuture>
#include <QElapsedTimer>
#include <QPointer>
#include <QSet>

#include <memory>
#include <optional>
#include <utility>

namespace Qorvane {

namespace {

// One text after the other.
constexpr int threadCount = 1;

constexpr double millisecondsPerSecond = 1e3;

// Thousands of kilobytes change threads without being copied.
using SharedVectors = std::shared_ptr<TagVectors>;

// What the store keeps of `tags`, once everything else is out of it: the tags of another language, and those
// of the user's own that aren't predefined.
SharedVectors storedVectors(const QStringList &tags)
{
    EmbeddingStore &store = EmbeddingStore::shared();
    store.cleanupObsoleteTagVectors({tags.begin(), tags.end()});
    return std::make_shared<TagVectors>(store.loadAllTagVectors());
}

} // namespace

// As in the service: after every co_await it may be gone, and this with it.

PredefinedTagVectors::PredefinedTagVectors(ChineseClipService &service, TagVectorCache &cache)
    : m_service(service)
    , m_cache(cache)
    , m_workers(QualityOfService::utility, threadCount)
{
}

QCoro::Task<> PredefinedTagVectors::precompute()
{
    if (m_isComplete)
        co_return;
    const QPointer<ChineseClipService> self(&m_service);
    Log::line(QStringLiteral("🚀 开始预计算预定义标签向量..."));
    QElapsedTimer timer;
    timer.start();
    // The same list to the end, whatever becomes of the user's language meanwhile.
    const QStringList tags = predefinedTags();
    // After a change of language a thousand rows go, each in a commit of its own, and the store is held for a
    // second or two: nothing that the end of the service should wait for. What is left when the process ends
    // goes at the next start.
    const QFuture<SharedVectors> loading =
        runDetached(QualityOfService::utility, [tags] { return storedVectors(tags); });
    const SharedVectors stored = co_await loading;
    if (!self)
        co_return;
    const auto storedCount = stored->size();
    Log::line(QStringLiteral("📥 从数据库加载了 %1 个预存标签向量").arg(storedCount));
    for (auto &[tag, vector] : *stored)
        m_cache.insert(tag, std::move(vector));

    const int computedCount = co_await computeMissing(tags);
    if (!self)
        co_return;
    m_isComplete = true;
    Log::line(QStringLiteral("✅ 预定义标签向量预计算完成，耗时 ") +
              fixedDecimal(double(timer.elapsed()) / millisecondsPerSecond, 2) + QStringLiteral(" 秒"));
    Log::line(QStringLiteral("📊 已缓存 %1 个预定义标签向量 (从数据库: %2, 新计算: %3)")
                  .arg(m_cache.entries().size())
                  .arg(storedCount)
                  .arg(computedCount));
}

QCoro::Task<int> PredefinedTagVectors::computeMissing(QStringList tags)
{
    const QPointer<ChineseClipService> self(&m_service);
    int count = 0;
    std::optional<Writing> writing;
    for (const QString &tag : std::as_const(tags)) {
        if (m_cache.entries().contains(tag))
            continue;
        // Begun before the last vector's write is over, and told of after it.
        const QFuture<Extraction> encoding = m_service.startTextExtraction(tag, m_workers);
        if (writing) {
            const Writing last = *std::exchange(writing, std::nullopt);
            co_await last.end;
            if (!self)
                co_return count;
            Log::line(QStringLiteral("💾 新计算并存储标签向量: '") + last.tag + u'\'');
        }
        const Extraction extraction = co_await encoding;
        if (!self)
            co_return count;
        for (const QString &line : extraction.logLines)
            Log::line(line);
        if (!extraction.vector)
            continue;
        m_cache.insert(tag, *extraction.vector);
        writing = Writing{tag, write(tag, *extraction.vector)};
        ++count;
    }
    if (writing) {
        co_await writing->end;
        if (self)
            Log::line(QStringLiteral("💾 新计算并存储标签向量: '") + writing->tag + u'\'');
    }
    co_return count;
}

QFuture<bool> PredefinedTagVectors::write(const QString &tag, const std::vector<float> &vector)
{
    return runDetached(QualityOfService::utility, [tag, vector] {
        EmbeddingStore::shared().storeTagVector(tag, vector);
        return true;
    });
}

} // namespace Qorvane
