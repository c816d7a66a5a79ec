#include "ChineseClipService.h"

#include "clip/DatabaseCandidates.h"
#include "clip/DetachedWork.h"
#include "clip/EmbeddingPicture.h"
#include "clip/MemorySearch.h"
#include "clip/SearchVerification.h"
#include "platform/ChineseLocale.h"
#include "platform/Log.h"
#include "semantic/NumberText.h"

#include <QCoroFuture>
#include <QPointer>
#include <QThread>

namespace Qorvane {

namespace {

// Up to so many candidates a search checks their stored vectors against fresh ones.
constexpr size_t largestVerifiedCount = 10;

// One query may read the store while the next one's text is encoded.
constexpr int queryThreadCount = 2;

void logLines(const QStringList &lines)
{
    for (const QString &line : lines)
        Log::line(line);
}

} // namespace

// After every co_await the service may be gone: its window was closed meanwhile. Each coroutine below looks,
// and then ends without touching it.

ChineseClipService::ChineseClipService(QObject *parent)
    : QObject(parent)
    , m_queries(QualityOfService::userInitiated, queryThreadCount)
    , m_pictures(QualityOfService::utility, QThread::idealThreadCount())
    , m_tagRecommender(*this, m_queries, m_pictures)
    , m_predefinedTagVectors(*this, m_tagRecommender.vectors())
{
    Log::line(QStringLiteral("⚙️ 使用默认 logitScale=") + numberText(m_logitScale));
    Log::line(QStringLiteral("⚙️ ChineseClipService 初始化完成，模型将在需要时加载"));
}

ChineseClipService::~ChineseClipService() = default;

QHash<QString, std::vector<float>> ChineseClipService::tagVectorCache() const
{
    const TagVectorCache::Entries &entries = m_tagRecommender.vectors().entries();
    QHash<QString, std::vector<float>> copy;
    for (auto entry = entries.constBegin(); entry != entries.constEnd(); ++entry)
        copy.insert(entry.key(), **entry);
    return copy;
}

QCoro::Task<> ChineseClipService::ensureModelsLoaded()
{
    if (m_modelsLoaded || m_isLoadingModels)
        co_return;
    const QPointer<ChineseClipService> self(this);
    m_hasTriedLoading = true;
    setLoadingModels(true);
    co_await loadModels();
    if (self)
        setLoadingModels(false);
}

QCoro::Task<> ChineseClipService::loadModels()
{
    if (m_modelsLoaded)
        co_return;
    const QPointer<ChineseClipService> self(this);
    const bool isChinese = isChineseLocale();
    Log::line(QStringLiteral("🔍 开始加载模型（后台线程）... locale=") +
              (isChinese ? QStringLiteral("zh") : QStringLiteral("en")));
    const QFuture<EncoderPair> loading =
        runDetached(QualityOfService::utility, [isChinese] { return loadEncoders(findEncoders(isChinese)); });
    EncoderPair encoders = co_await loading;
    if (!self)
        co_return;
    m_encoders = std::move(encoders);
    if (m_encoders.isComplete()) {
        setModelsLoaded();
        Log::line(QStringLiteral("🎉 模型加载成功 (on main)"));
        co_await precomputePredefinedTags();
    } else {
        Log::line(QStringLiteral("❌ 模型加载失败（至少有一个未加载）"));
    }
}

QCoro::Task<std::optional<std::vector<float>>>
ChineseClipService::extractImageFeatures(Image image, std::optional<QString> label)
{
    if (!m_modelsLoaded) {
        Log::line(QStringLiteral("❌ Models not loaded"));
        co_return std::nullopt;
    }
    const QPointer<ChineseClipService> self(this);
    const QFuture<Extraction> running = m_pictures.run([encoder = m_encoders.vision, image, label] {
        return extractImage(*encoder, image.pixels(), label);
    });
    const Extraction extraction = co_await running;
    if (!self)
        co_return std::nullopt;
    logLines(extraction.logLines);
    co_return extraction.vector;
}

QCoro::Task<std::optional<std::vector<float>>> ChineseClipService::extractTextFeatures(QString text)
{
    const QPointer<ChineseClipService> self(this);
    const QFuture<Extraction> running = startTextExtraction(text, m_queries);
    const Extraction extraction = co_await running;
    if (!self)
        co_return std::nullopt;
    logLines(extraction.logLines);
    co_return extraction.vector;
}

QFuture<Extraction> ChineseClipService::startTextExtraction(const QString &text, WorkerPool &workers) const
{
    if (!m_modelsLoaded)
        return QtFuture::makeReadyFuture(
            Extraction{.vector = std::nullopt, .logLines = {QStringLiteral("❌ Models not loaded")}});
    return workers.run([encoder = m_encoders.text, text] {
        const TokenizerService::EncodedText tokens = tokenized(text);
        Extraction extraction = extractText(*encoder, tokens);
        extraction.logLines = QStringList(QStringLiteral("🔤 开始处理文本: '") + text + u'\'') +
                              tokenLines(tokens) + extraction.logLines;
        return extraction;
    });
}

QCoro::Task<> ChineseClipService::extractFeatures(QList<FileUrl> urls)
{
    const QPointer<ChineseClipService> self(this);
    co_await ensureModelsLoaded();
    if (!self)
        co_return;
    Log::line(QStringLiteral("🔄 开始为 %1 张图片提取特征...").arg(urls.size()));
    for (const FileUrl &url : urls) {
        const auto features = co_await extractFileFeatures(url);
        if (!self)
            co_return;
        if (!features) {
            Log::line(QStringLiteral("❌ 处理失败: ") + url.lastPathComponent());
            continue;
        }
        m_imageFeatures.insert(url, {.features = *features, .l2Norm = l2Norm(*features)});
        Q_EMIT imageFeaturesChanged();
    }
    Log::line(QStringLiteral("🎯 Feature extraction completed for %1 images").arg(m_imageFeatures.size()));
}

QCoro::Task<std::optional<std::vector<float>>> ChineseClipService::extractFileFeatures(FileUrl url)
{
    const QPointer<ChineseClipService> self(this);
    const QFuture<std::optional<Image>> fetching = m_pictures.run([url] { return embeddingPicture(url); });
    const std::optional<Image> picture = co_await fetching;
    if (!self || !picture)
        co_return std::nullopt;
    co_return co_await extractImageFeatures(*picture, url.lastPathComponent());
}

QCoro::Task<QList<SearchResult>> ChineseClipService::searchWithDatabase(QString query, QList<FileUrl> scope,
                                                                        int limit)
{
    const QPointer<ChineseClipService> self(this);
    Log::line(QStringLiteral("🔍 开始基于DB的搜索: '") + query + u'\'');
    co_await ensureModelsLoaded();
    if (!self)
        co_return {};
    const auto textVector = co_await extractTextFeatures(query);
    if (!self || !textVector)
        co_return {};

    const QFuture<SharedCandidates> gathering = m_queries.run([scope, textVector] {
        return std::make_shared<const SearchCandidates>(databaseCandidates(scope, *textVector));
    });
    const SharedCandidates candidates = co_await gathering;
    if (!self)
        co_return {};
    if (candidates->size() <= largestVerifiedCount)
        co_await verifyCandidates(candidates, *textVector);
    if (!self)
        co_return {};

    const QFuture<SearchRanking> ranking = m_queries.run([candidates, limit, scale = m_logitScale] {
        return rankCandidates(*candidates, limit, CandidateOrigin::database, scale);
    });
    const SearchRanking ranked = co_await ranking;
    co_return QList<SearchResult>(ranked.results.begin(), ranked.results.end());
}

QCoro::Task<> ChineseClipService::verifyCandidates(SharedCandidates candidates, std::vector<float> textVector)
{
    const QPointer<ChineseClipService> self(this);
    Log::line(QStringLiteral("🧪 校验：对比 DB 相似度 与 实时重算相似度（候选<=10）"));
    for (size_t index = 0; index < candidates->size(); ++index) {
        const FileUrl url = candidates->url(index);
        const auto features = co_await extractFileFeatures(url);
        if (!self)
            co_return;
        if (features)
            Log::line(verificationLine(url, candidates->similarity(index), *features, textVector));
    }
}

QCoro::Task<QList<SearchResult>> ChineseClipService::search(QString query, int limit)
{
    const QPointer<ChineseClipService> self(this);
    co_await ensureModelsLoaded();
    if (!self)
        co_return {};
    Log::line(QStringLiteral("🔍 开始搜索: '") + query + u'\'');
    const QString expanded = expandQuery(query);
    Log::line(QStringLiteral("📝 扩展查询: '") + expanded + u'\'');
    const auto textVector = co_await extractTextFeatures(expanded);
    if (!self)
        co_return {};
    if (!textVector) {
        Log::line(QStringLiteral("❌ 提取文本特征失败"));
        co_return {};
    }
    const QFuture<QList<SearchResult>> searching =
        m_queries.run([features = m_imageFeatures, textVector, limit, scale = m_logitScale] {
            return searchInMemory(features, *textVector, limit, scale);
        });
    co_return co_await searching;
}

QCoro::Task<QList<TagRecommendation>> ChineseClipService::recommendTags(FileUrl url, QStringList userTags,
                                                                        QStringList existingTags, int limit)
{
    return m_tagRecommender.recommend(url, userTags, existingTags, limit);
}

QCoro::Task<std::optional<std::vector<float>>> ChineseClipService::getTagVector(QString tag)
{
    const SharedTagVector vector = co_await m_tagRecommender.vectors().vectorOf(tag);
    co_return vector ? std::optional(*vector) : std::nullopt;
}

QCoro::Task<> ChineseClipService::precomputePredefinedTags()
{
    return m_predefinedTagVectors.precompute();
}

QCoro::Task<std::optional<Image>> ChineseClipService::loadImageForAnalysis(FileUrl url)
{
    return m_tagRecommender.loadImage(url);
}

QString ChineseClipService::expandQuery(const QString &query) const
{
    Log::line(QStringLiteral("📝 查询扩展：'") + query + QStringLiteral("' -> 保持原样（测试中）"));
    return query;
}

void ChineseClipService::setModelsLoaded()
{
    m_modelsLoaded = true;
    Q_EMIT modelsLoadedChanged();
}

void ChineseClipService::setLoadingModels(bool isLoading)
{
    m_isLoadingModels = isLoading;
    Q_EMIT isLoadingModelsChanged();
}

} // namespace Qorvane
