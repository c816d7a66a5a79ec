#include "encoders/compare/Comparison.h"

#include "semantic/CosineSimilarity.h"
#include "semantic/DescendingOrder.h"
#include "semantic/SearchRanking.h"

#include <QMap>

#include <algorithm>

namespace Qorvane::Encoders {

namespace {

/// A query's answer: candidates best first, and the similarity of each by its index.
struct Answer
{
    std::vector<std::size_t> order;
    std::vector<float> similarities;

    // What the application would show: at least the threshold, at most the limit.
    std::span<const std::size_t> shown() const
    {
        const auto end = std::ranges::find_if(
            order, [this](std::size_t index) { return !(similarities[index] >= similarityThreshold); });
        return std::span(order).first(std::min(std::size_t(end - order.begin()), searchLimit));
    }
};

using Candidates = std::vector<const EmbeddedPicture *>;

template <typename Condition>
Candidates candidatesWith(const std::vector<EmbeddedPicture> &pictures, Condition condition)
{
    Candidates candidates;
    for (const EmbeddedPicture &picture : pictures) {
        if (condition(picture))
            candidates.push_back(&picture);
    }
    return candidates;
}

class SetComparison
{
public:
    SetComparison(const std::vector<EmbeddedPicture> &pictures, const EmbedText &embedText,
                  const QueryProgress &progress)
        : m_all(candidatesWith(pictures, [](const EmbeddedPicture &) { return true; }))
        , m_labelled(candidatesWith(pictures, [](const EmbeddedPicture &p) { return !p.labels.isEmpty(); }))
        , m_captioned(
              candidatesWith(pictures, [](const EmbeddedPicture &p) { return !p.captions.isEmpty(); }))
        , m_embedText(embedText)
        , m_progress(progress)
    {
        for (const EmbeddedPicture *picture : m_labelled) {
            for (const QString &label : picture->labels)
                ++m_categorySizes[label];
        }
        m_categorySizes.removeIf([](const auto &category) { return category.value() < smallestCategory; });
    }

    Outcome<ComparisonResult> run(const QStringList &nonsense)
    {
        m_queryCount = std::size_t(m_categorySizes.size()) + std::size_t(nonsense.size());
        for (const EmbeddedPicture *picture : m_captioned)
            m_queryCount += std::size_t(picture->captions.size());
        ComparisonResult result;
        return scoreCategories(result)
            .and_then([&] { return scoreCaptions(result); })
            .and_then([&] { return scoreNonsense(nonsense, result); })
            .map([&] { return result; });
    }

private:
    Outcome<Answer> answerTo(const QString &query, const Candidates &candidates)
    {
        const Outcome<std::vector<float>> text = m_embedText(query);
        if (!text)
            return tl::unexpected(text.error());
        Answer answer;
        for (const EmbeddedPicture *candidate : candidates)
            answer.similarities.push_back(cosineSimilarity(*text, candidate->vector));
        const std::vector<std::uint32_t> order = descendingOrder(answer.similarities);
        answer.order.assign(order.begin(), order.end());
        ++m_queriesDone;
        if (m_progress)
            m_progress(double(m_queriesDone) / double(m_queryCount));
        return answer;
    }

    Outcome<void> scoreCategories(ComparisonResult &result)
    {
        CategoryScores &scores = result.categories;
        scores.pictures = m_labelled.size();
        std::vector<double> precisions;
        for (auto category = m_categorySizes.cbegin(); category != m_categorySizes.cend(); ++category) {
            const Outcome<Answer> answer = answerTo(category.key(), m_labelled);
            if (!answer)
                return tl::unexpected(answer.error());
            std::vector<bool> isRelevant;
            for (const EmbeddedPicture *picture : m_labelled)
                isRelevant.push_back(picture->labels.contains(category.key()));
            CategoryScore score{.name = category.key(), .pictures = category.value(), .cut = {}};
            score.averagePrecision = averagePrecision(answer->order, isRelevant).value_or(0);
            score.cut.add(answer->shown(), isRelevant, searchLimit);
            scores.cut.add(answer->shown(), isRelevant, searchLimit);
            precisions.push_back(score.averagePrecision);
            scores.categories.push_back(score);
        }
        scores.meanAveragePrecision = mean(precisions);
        return {};
    }

    Outcome<void> scoreCaptions(ComparisonResult &result)
    {
        std::vector<std::size_t> firstRanks;
        std::vector<std::size_t> allRanks;
        for (std::size_t index = 0; index < m_captioned.size(); ++index) {
            const QStringList &captions = m_captioned[index]->captions;
            for (const QString &caption : captions) {
                const Outcome<Answer> answer = answerTo(caption, m_captioned);
                if (!answer)
                    return tl::unexpected(answer.error());
                const std::size_t rank = rankOf(answer->order, index).value();
                allRanks.push_back(rank);
                if (&caption == &captions.first())
                    firstRanks.push_back(rank);
            }
        }
        result.firstCaptions = captionScores(firstRanks);
        result.allCaptions = captionScores(allRanks);
        return {};
    }

    CaptionScores captionScores(const std::vector<std::size_t> &ranks) const
    {
        return {.pictures = m_captioned.size(),
                .captions = ranks.size(),
                .recallAt1 = recallAt(1, ranks),
                .recallAt5 = recallAt(5, ranks),
                .recallAt10 = recallAt(10, ranks),
                .medianRank = medianRank(ranks)};
    }

    Outcome<void> scoreNonsense(const QStringList &queries, ComparisonResult &result)
    {
        for (const QString &query : queries) {
            const Outcome<Answer> answer = answerTo(query, m_all);
            if (!answer)
                return tl::unexpected(answer.error());
            result.nonsense.push_back({query, answer->shown().size()});
        }
        return {};
    }

    const Candidates m_all;
    const Candidates m_labelled;
    const Candidates m_captioned;
    QMap<QString, std::size_t> m_categorySizes; // in the order of names
    const EmbedText &m_embedText;
    const QueryProgress &m_progress;
    std::size_t m_queryCount = 0;
    std::size_t m_queriesDone = 0;
};

} // namespace

Outcome<ComparisonResult> compareSet(const std::vector<EmbeddedPicture> &pictures,
                                     const QStringList &nonsense, const EmbedText &embedText,
                                     const QueryProgress &progress)
{
    return SetComparison(pictures, embedText, progress).run(nonsense);
}

} // namespace Qorvane::Encoders
