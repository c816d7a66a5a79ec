#include "library/SortingRules.h"

#include "library/TolerantSort.h"
#include "platform/FileAttributes.h"
#include "platform/NaturalOrder.h"
#include "store/EmbeddingStore.h"

#include <algorithm>
#include <future>
#include <iterator>
#include <numeric>
#include <optional>
#include <system_error>
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

// Fewer are weighed before another thread would have begun.
constexpr qsizetype namesPerThread = 4'000;

/// The file names' weights, by position in the list. Of a long list every core weighs a part.
class NameOrder
{
public:
    explicit NameOrder(const QList<FileUrl> &urls)
        : m_orders(size_t(std::clamp(urls.size() / namesPerThread, qsizetype(1),
                                     qsizetype(std::max(1U, std::thread::hardware_concurrency())))))
    {
        const auto partBegin = [&](size_t part) {
            return urls.size() * qsizetype(part) / qsizetype(m_orders.size());
        };
        std::vector<std::future<Keys>> others;
        for (size_t part = 1; part < m_orders.size(); ++part)
            others.push_back(onAThread(
                [&, part] { return keysOf(m_orders[part], urls, partBegin(part), partBegin(part + 1)); }));
        m_keys = keysOf(m_orders.front(), urls, 0, partBegin(1));
        m_keys.reserve(size_t(urls.size()));
        for (std::future<Keys> &other : others)
            std::ranges::move(other.get(), std::back_inserter(m_keys));
    }

    bool isBefore(qsizetype a, qsizetype b) const { return m_keys[size_t(a)] < m_keys[size_t(b)]; }

private:
    using Keys = std::vector<NaturalOrder::SortKey>;

    // Where no thread can be had, whoever asks for the result does the work.
    template <typename Work>
    static std::future<Keys> onAThread(const Work &work)
    try {
        return std::async(std::launch::async, work);
    } catch (const std::system_error &) {
        return std::async(std::launch::deferred, work);
    }

    static Keys keysOf(const NaturalOrder &order, const QList<FileUrl> &urls, qsizetype begin, qsizetype end)
    {
        Keys keys;
        keys.reserve(size_t(end - begin));
        for (qsizetype i = begin; i < end; ++i)
            keys.push_back(order.sortKey(urls.at(i).lastPathComponent()));
        return keys;
    }

    std::vector<NaturalOrder> m_orders; // one for each thread
    Keys m_keys;
};

Positions sortedByName(const QList<FileUrl> &urls)
{
    const NameOrder names(urls);
    Positions positions = positionsOf(urls);
    std::ranges::stable_sort(positions, [&](qsizetype a, qsizetype b) { return names.isBefore(a, b); });
    return positions;
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
    Positions positions = positionsOf(urls);
    std::ranges::stable_sort(positions, [&](qsizetype a, qsizetype b) {
        const int first = ratings[size_t(a)];
        const int second = ratings[size_t(b)];
        return first == second ? names.isBefore(a, b) : first < second;
    });
    return positions;
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
