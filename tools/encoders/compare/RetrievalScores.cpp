#include "encoders/compare/RetrievalScores.h"

#include <algorithm>
#include <numeric>

namespace Qorvane::Encoders {

namespace {

double share(std::size_t part, std::size_t whole)
{
    return whole == 0 ? 0 : double(part) / double(whole);
}

} // namespace

std::optional<double> averagePrecision(std::span<const std::size_t> order,
                                       const std::vector<bool> &isRelevant)
{
    double sum = 0;
    std::size_t found = 0;
    for (std::size_t place = 0; place < order.size(); ++place) {
        if (!isRelevant[order[place]])
            continue;
        ++found;
        sum += share(found, place + 1);
    }
    if (found == 0)
        return std::nullopt;
    return sum / double(found);
}

std::optional<std::size_t> rankOf(std::span<const std::size_t> order, std::size_t wanted)
{
    const auto found = std::ranges::find(order, wanted);
    if (found == order.end())
        return std::nullopt;
    return std::size_t(found - order.begin()) + 1;
}

double recallAt(std::size_t limit, std::span<const std::size_t> ranks)
{
    return share(
        std::size_t(std::ranges::count_if(ranks, [limit](std::size_t rank) { return rank <= limit; })),
        ranks.size());
}

double medianRank(std::vector<std::size_t> ranks)
{
    if (ranks.empty())
        return 0;
    std::ranges::sort(ranks);
    const std::size_t upper = ranks.size() / 2;
    const std::size_t lower = (ranks.size() - 1) / 2;
    return double(ranks[lower] + ranks[upper]) / 2;
}

double mean(std::span<const double> values)
{
    return values.empty() ? 0 : std::accumulate(values.begin(), values.end(), 0.0) / double(values.size());
}

void CutScore::add(std::span<const std::size_t> shown, const std::vector<bool> &isRelevant, std::size_t limit)
{
    ++queries;
    hits += shown.size();
    relevantHits += std::size_t(
        std::ranges::count_if(shown, [&isRelevant](std::size_t index) { return isRelevant[index]; }));
    reachable += std::min(limit, std::size_t(std::ranges::count(isRelevant, true)));
}

double CutScore::precision() const
{
    return share(relevantHits, hits);
}

double CutScore::recall() const
{
    return share(relevantHits, reachable);
}

} // namespace Qorvane::Encoders
