#include "library/SortingRules.h"

#include "library/ParallelSort.h"
#include "library/TolerantSort.h"
#include "platform/FileAttributes.h"
#include "platform/NaturalOrder.h"
#include "store/EmbeddingStore.h"

#include <algorithm>
#include <numeric>
#include <optional>
#include <thread>
#include <vector>

namespace Qorvane::SortingRules {

namespace {

using Positions = std::vector<qsizetype>;

Positions positionsOf(const QList<FileUrl> &urls)
{
    Positions positions(size_t(urls.size()));
    std::iota(positions.begin(), positions.end(), 0);
    return positions;
}

// Fewer are dealt with before another thread would have begun.
constexpr qsizetype urlsPerThread = 4'000;

qsizetype partCount(const QList<FileUrl> &urls)
{
    const auto cores = qsizetype(std::max(1U, std::thread::hardware_concurrency()));
    return std::clamp(urls.size() / urlsPerThread, qsizetype(1), cores);
}

/// The file names' weights, by position in the list, which has to stay.
class NameOrder
{
public:
    explicit NameOrder(const QList<FileUrl> &urls)
        : m_urls(urls)
        , m_keys(size_t(urls.size()))
    {
        onEachPart(partBounds(urls.size(), partCount(urls)), [this](qsizetype begin, qsizetype end) {
            const NaturalOrder order;
            for (qsizetype i = begin; i < end; ++i)
                m_keys[size_t(i)].emplace(order.sortKey(m_urls[i].lastPathComponent()));
        });
    }

    bool isBefore(qsizetype a, qsizetype b) const
    {
        if (const int result = m_keys[size_t(a)]->compare(*m_keys[size_t(b)]))
            return result < 0;
        const QString first = m_urls[a].lastPathComponent();
        const QString second = m_urls[b].lastPathComponent();
        // Cameras give the same names in many folders.
        return first != second && localizedStandardCompare(first, second) < 0;
    }

private:
    const QList<FileUrl> &m_urls;
    std::vector<std::optional<NaturalOrder::SortKey>> m_keys;
};

/// Stable. `isBefore` compares positions, on several threads at once.
template <typename IsBefore>
Positions sorted(const QList<FileUrl> &urls, const IsBefore &isBefore)
{
    Positions positions = positionsOf(urls);
    parallelSort(positions, partCount(urls), isBefore);
    return positions;
}

Positions sortedByName(const QList<FileUrl> &urls)
{
    const NameOrder names(urls);
    return sorted(urls, [&](qsizetype a, qsizetype b) { return names.isBefore(a, b); });
}

template <typename DateOf>
Positions sortedByDate(const QList<FileUrl> &urls, const DateOf &dateOf)
{
    std::vector<std::optional<double>> dates;
    dates.reserve(size_t(urls.size()));
    for (const FileUrl &url : urls) {
        const std::optional<FileAttributes> attributes = fileAttributes(url.path());
        dates.push_back(attributes ? dateOf(*attributes) : std::nullopt);
    }
    Positions positions = positionsOf(urls);
    // A missing date is neither before nor after any other, which is no order that a standard sort takes.
    tolerantSort(positions, [&dates](qsizetype a, qsizetype b) {
        const std::optional<double> &first = dates[size_t(a)];
        const std::optional<double> &second = dates[size_t(b)];
        return first && second && *first < *second;
    });
    return positions;
}

Positions sortedByRating(const QList<FileUrl> &urls)
{
    std::vector<int> ratings;
    ratings.reserve(size_t(urls.size()));
    for (const FileUrl &url : urls)
        ratings.push_back(EmbeddingStore::shared().getRating(url.path()).value_or(0));
    const NameOrder names(urls);
    return sorted(urls, [&](qsizetype a, qsizetype b) {
        const int first = ratings[size_t(a)];
        const int second = ratings[size_t(b)];
        return first == second ? names.isBefore(a, b) : first < second;
    });
}

Positions sortedAscending(const QList<FileUrl> &urls, SortCriterion criterion)
{
    switch (criterion) {
    case SortCriterion::filename:
        return sortedByName(urls);
    case SortCriterion::creationDate:
        return sortedByDate(urls, [](const FileAttributes &file) { return file.creationTime; });
    case SortCriterion::modificationDate:
        return sortedByDate(urls,
                            [](const FileAttributes &file) { return std::optional(file.modificationTime); });
    case SortCriterion::rating:
        return sortedByRating(urls);
    }
    return positionsOf(urls);
}

} // namespace

QList<FileUrl> sortURLs(const QList<FileUrl> &urls, SortCriterion criterion, SortOrder order)
{
    Positions positions = sortedAscending(urls, criterion);
    if (order == SortOrder::descending)
        std::ranges::reverse(positions);
    QList<FileUrl> sorted;
    sorted.reserve(urls.size());
    for (const qsizetype position : positions)
        sorted.append(urls[position]);
    return sorted;
}

} // namespace Qorvane::SortingRules
