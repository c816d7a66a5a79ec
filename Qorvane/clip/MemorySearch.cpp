#include "clip/MemorySearch.h"

#include "platform/FixedDecimal.h"
#include "platform/Log.h"
#include "semantic/CosineSimilarity.h"
#include "semantic/FeatureDiagnostics.h"
#include "semantic/NumberText.h"
#include "semantic/RankingRows.h"
#include "semantic/SearchRanking.h"

namespace Qorvane {

namespace {

constexpr size_t shownResults = 5;

void logFeatures(const ImageFeatures &features, const std::vector<float> &textVector)
{
    Log::line(QStringLiteral("✅ 文本特征提取成功，特征向量长度: ") + QString::number(textVector.size()));
    Log::line(QStringLiteral("📊 文本特征前5个值: ") + listText(head(textVector, 5)));
    Log::line(QStringLiteral("🗃️ 当前缓存的图片特征数量: ") +
              QString::number(features.size()));
    for (const QString &line : featureDiagnostics(features))
        Log::line(line);
}

SearchCandidates compared(const ImageFeatures &features, const std::vector<float> &textVector)
{
    SearchCandidates candidates;
    for (auto picture = features.cbegin(); picture != features.cend(); ++picture) {
        const std::vector<float> &vector = picture->features;
        const bool isComparable = vector.size() == textVector.size();
        candidates.append(picture.key(), isComparable ? cosineSimilarity(vector, textVector) : 0);
    }
    return candidates;
}

QString probabilityText(const SearchResult &result)
{
    return fixedDecimal(double(result.probability.value_or(0)), 3);
}

void logResults(const SearchRanking &ranking, qsizetype pictureCount)
{
    const auto shown = head(ranking.results, shownResults);
    QStringList summary;
    for (const SearchResult &result : shown)
        summary.append(fixedDecimal(double(result.similarity), 4) + QStringLiteral("/p=") +
                       probabilityText(result));

    Log::line(QStringLiteral("🎯 搜索完成，共找到 %1 张图片").arg(pictureCount));
    Log::line(QStringLiteral("📊 过滤前结果数: %1, 过滤后结果数: %2 (阈值: 15%)")
                  .arg(pictureCount)
                  .arg(ranking.countAboveThreshold));
    Log::line(QStringLiteral("📈 前%1个结果: [").arg(shown.size()) + summary.join(QStringLiteral(", ")) +
              u']');
    for (size_t index = 0; index < shown.size(); ++index) {
        const SearchResult &result = shown[index];
        Log::line(QStringLiteral("🏆 #%1: ").arg(index + 1) + result.url.lastPathComponent() +
                  QStringLiteral(" - ") + fixedDecimal(double(result.similarity), 4) + QStringLiteral(" (") +
                  QString::number(truncatedPercentage(result.similarity)) + QStringLiteral("%) p=") +
                  probabilityText(result));
    }
}

} // namespace

QList<SearchResult> searchInMemory(const ImageFeatures &features, const std::vector<float> &textVector,
                                   int limit, float logitScale)
{
    logFeatures(features, textVector);
    const SearchRanking ranking =
        rankCandidates(compared(features, textVector), limit, CandidateOrigin::memory, logitScale);
    logResults(ranking, features.size());
    return QList<SearchResult>(ranking.results.begin(), ranking.results.end());
}

} // namespace Qorvane
