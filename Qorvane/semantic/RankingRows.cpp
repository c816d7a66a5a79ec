#include "semantic/RankingRows.h"

#include "platform/Log.h"

#include <QByteArray>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <string_view>

namespace Qorvane {

namespace {

using namespace std::string_view_literals;

constexpr std::string_view heading = "🔍 搜索结果按排名显示:\n";

// Everything in a row but the beginning and the name: rank and percentage of up to 20 digits each, two fixed
// numbers, and the words between them.
constexpr std::size_t longestNumbers = 2 * 20 + 2 * longestFixedText + 64;

std::string_view rowBeginning(CandidateOrigin origin)
{
    switch (origin) {
    case CandidateOrigin::database:
        return "🧮[DB] #"sv;
    case CandidateOrigin::memory:
        return "🧮 #"sv;
    }
    Q_UNREACHABLE();
}

char *write(char *target, std::string_view text)
{
    std::memcpy(target, text.data(), text.size());
    return target + text.size();
}

char *write(char *target, std::int64_t number)
{
    constexpr std::size_t longestInteger = 20;
    return std::to_chars(target, target + longestInteger, number).ptr;
}

} // namespace

template <int decimals>
char *writeFixed(char *target, float value)
{
    // A 32-bit float has 24 significant bits and 10000 is 625 times a power of two, so the product below is
    // exact in a double, and rounding it to an integer (halves to even) is the one rounding that printf does.
    constexpr std::uint32_t scale = decimals == 4 ? 10000 : 1000;
    const double scaled = std::fabs(double(value)) * scale;
    constexpr double largest = std::numeric_limits<std::uint32_t>::max();
    if (!(scaled < largest))
        return std::to_chars(target, target + longestFixedText, value, std::chars_format::fixed, decimals)
            .ptr;
    *target = '-';
    target += std::signbit(value);
    // Doubles of this size lie 1 apart: the addition rounds, without a call into the mathematical library.
    constexpr double roundingTerm = 4503599627370496; // 2^52
    const auto rounded = std::uint32_t((scaled + roundingTerm) - roundingTerm);
    target = write(target, rounded / scale);
    *target++ = '.';
    std::uint32_t fraction = rounded % scale;
    for (int i = decimals - 1; i >= 0; --i) {
        target[i] = char('0' + fraction % 10);
        fraction /= 10;
    }
    return target + decimals;
}

template char *writeFixed<3>(char *, float);
template char *writeFixed<4>(char *, float);

namespace {

// What a row shows of its candidate.
struct Row
{
    float similarity;
    float share;
    std::string_view name;
};

// Gathers rows into a block of text and hands it to the log when it is full. A block stays within the
// second-level cache, so that the kernel copies it from there.
class RowWriter
{
public:
    explicit RowWriter(CandidateOrigin origin)
        : m_beginning(rowBeginning(origin))
        , m_text(blockSize, Qt::Uninitialized)
        , m_end(write(m_text.data(), heading))
    {
    }

    void add(std::int64_t rank, const Row &row)
    {
        makeRoom(qsizetype(m_beginning.size() + longestNumbers + row.name.size()));
        char *end = write(m_end, m_beginning);
        end = write(end, rank);
        end = write(end, " sim="sv);
        end = writeFixed<4>(end, row.similarity);
        end = write(end, " ("sv);
        end = write(end, truncatedPercentage(row.similarity));
        end = write(end, "%) p="sv);
        end = writeFixed<3>(end, row.share);
        end = write(end, " -> "sv);
        end = write(end, row.name);
        m_end = write(end, "\n"sv);
    }

    void flush()
    {
        Log::lines(QByteArray::fromRawData(m_text.constData(), m_end - m_text.constData()));
        m_end = m_text.data();
    }

private:
    static constexpr qsizetype blockSize = 128 * 1024;

    void makeRoom(qsizetype size)
    {
        if (size <= m_text.constData() + m_text.size() - m_end)
            return;
        flush();
        if (size <= m_text.size())
            return;
        m_text.resize(size);
        m_end = m_text.data();
    }

    std::string_view m_beginning;
    QByteArray m_text;
    char *m_end; ///< of what is written into m_text
};

// Rows are fetched this many at a time: their data lie scattered in the order of the ranking, and the
// processor waits for many of them at once when nothing stands between the loads.
constexpr std::size_t rowsAtATime = 64;

std::span<const Row> fetchRows(const SearchCandidates &candidates, std::span<const std::uint32_t> order,
                               std::span<const float> shares, std::span<Row, rowsAtATime> rows)
{
    const std::size_t count = std::min(order.size(), rowsAtATime);
    for (std::size_t i = 0; i < count; ++i)
        rows[i] = {candidates.similarity(order[i]), shares[order[i]], candidates.name(order[i])};
    // A name often lies across two lines of the cache.
    for (const Row &row : rows.first(count)) {
        __builtin_prefetch(row.name.data());
        __builtin_prefetch(row.name.data() + row.name.size());
    }
    return rows.first(count);
}

} // namespace

bool hasPercentage(float similarity)
{
    const float percentage = similarity * 100.0F;
    constexpr float limit = 9223372036854775808.0F; // 2^63
    // Written so that a NaN has none.
    return percentage >= -limit && percentage < limit;
}

std::int64_t truncatedPercentage(float similarity)
{
    if (!hasPercentage(similarity))
        qFatal("The percentage of similarity %g is no integer", double(similarity));
    return std::int64_t(similarity * 100.0F);
}

void logRankingRows(const SearchCandidates &candidates, std::span<const std::uint32_t> order,
                    std::span<const float> shares, CandidateOrigin origin)
{
    RowWriter writer(origin);
    std::array<Row, rowsAtATime> rows;
    std::int64_t rank = 0;
    for (std::size_t start = 0; start < order.size(); start += rowsAtATime) {
        for (const Row &row : fetchRows(candidates, order.subspan(start), shares, rows)) {
            // What stands above the row that ends the program is still to be seen.
            if (!hasPercentage(row.similarity))
                writer.flush();
            writer.add(++rank, row);
        }
    }
    writer.flush();
}

} // namespace Qorvane
