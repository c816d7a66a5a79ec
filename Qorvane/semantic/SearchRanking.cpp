#include "semantic/SearchRanking.h"

#include "semantic/DescendingOrder.h"
#include "semantic/RankingRows.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <utility>

namespace Qorvane {

namespace {

static_assert(std::bit_cast<std::uint32_t>(similarityThreshold) == 0x3E19999A);
static_assert(std::bit_cast<std::uint32_t>(defaultLogitScale) == 0x42C80184);

} // namespace

std::vector<float> softmaxShares(std::span<const float> similarities, float logitScale)
{
    if (similarities.empty())
        return {};
    std::vector<float> logits(similarities.size());
    std::transform(similarities.begin(), similarities.end(), logits.begin(),
                   [logitScale](float similarity) { return similarity * logitScale; });
    const float largest = *std::max_element(logits.begin(), logits.end());
    std::vector<double> weights(logits.size());
    double sum = 0;
    for (std::size_t i = 0; i < logits.size(); ++i) {
        weights[i] = std::exp(double(logits[i] - largest));
        sum += weights[i];
    }
    std::vector<float> shares = std::move(logits);
    std::transform(weights.begin(), weights.end(), shares.begin(),
                   [sum](double weight) { return sum > 0 ? float(weight / sum) : 0.0F; });
    return shares;
}

SearchRanking rankCandidates(const SearchCandidates &candidates, qsizetype limit, CandidateOrigin origin,
                             float logitScale)
{
    const std::vector<float> shares = softmaxShares(candidates.similarities(), logitScale);
    const std::vector<std::uint32_t> order = descendingOrder(candidates.similarities());
    logRankingRows(candidates, order, shares, origin);

    SearchRanking ranking;
    for (const std::uint32_t index : order) {
        const float similarity = candidates.similarity(index);
        if (!(similarity >= similarityThreshold))
            break;
        ++ranking.countAboveThreshold;
        if (qsizetype(ranking.results.size()) < limit)
            ranking.results.push_back({candidates.url(index), similarity, shares[index]});
    }
    return ranking;
}

} // namespace Qorvane
