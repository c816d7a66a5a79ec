#include "clip/TagCandidates.h"

#include "platform/Log.h"
#include "platform/PredefinedTags.h"
#include "platform/QuotedList.h"
#include "semantic/CosineSimilarity.h"
#include "semantic/DescendingOrder.h"
#include "semantic/NumberText.h"

#include <QSet>

#include <algorithm>

namespace Qorvane {

namespace {

void logCount(const QString &heading, qsizetype count)
{
    Log::line(heading + QString::number(count));
}

float similarity(const std::vector<float> &photo, const std::vector<float> &tag)
{
    return photo.size() == tag.size() ? cosineSimilarity(photo, tag) : 0.0f;
}

} // namespace

QStringList availableTags(const QStringList &userTags, const QStringList &existingTags)
{
    const QStringList &predefined = predefinedTags();
    QStringList candidates = userTags + predefined;
    std::sort(candidates.begin(), candidates.end());
    candidates.erase(std::unique(candidates.begin(), candidates.end()), candidates.end());
    logCount(QStringLiteral("📊 用户标签数量: "), userTags.size());
    logCount(QStringLiteral("📊 预定义标签数量: "), predefined.size());
    logCount(QStringLiteral("📊 总候选标签数量: "), candidates.size());
    Log::line(QStringLiteral("🏷️ 照片已有标签: ") + quotedList(existingTags));

    // Case counts: a photo tagged "cat" may still be offered "Cat".
    const QSet<QString> existing(existingTags.begin(), existingTags.end());
    candidates.removeIf([&existing](const QString &tag) { return existing.contains(tag); });
    logCount(QStringLiteral("📊 可用标签数量: "), candidates.size());
    return candidates;
}

QList<TagRecommendation> scoredTags(const std::vector<TagAndVector> &tags, const std::vector<float> &photo)
{
    QList<TagRecommendation> scored;
    scored.reserve(qsizetype(tags.size()));
    // A thousand lines go to the log as one piece: each piece is a write of its own.
    QString lines;
    for (const auto &[tag, vector] : tags) {
        scored.append({.tag = tag, .similarity = similarity(photo, *vector)});
        lines += QStringLiteral("🔍 标签 '") + tag + QStringLiteral("' 相似度: ") +
                 numberText(scored.constLast().similarity) + u'\n';
    }
    Log::lines(lines.toUtf8());
    return scored;
}

QList<TagRecommendation> bestTags(const QList<TagRecommendation> &tags, int limit)
{
    std::vector<float> similarities;
    for (const TagRecommendation &tag : tags)
        similarities.push_back(tag.similarity);
    const auto order = descendingOrder(similarities);
    QList<TagRecommendation> best;
    for (const auto index : head(order, size_t(std::max(limit, 0))))
        best.append(tags[index]);

    logCount(QStringLiteral("🎯 标签推荐完成，推荐标签数量: "), best.size());
    for (qsizetype index = 0; index < best.size(); ++index)
        Log::line(QStringLiteral("  %1. '").arg(index + 1) + best[index].tag +
                  QStringLiteral("' - 相似度: ") + numberText(best[index].similarity));
    return best;
}

} // namespace Qorvane
