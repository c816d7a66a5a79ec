#include "semantic/RankingRows.h"

#include "platform/Log.h"

#include <QByteArray>

#include <charconv>
#include <cmath>
#include <cstring>
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

// As FileUrl::lastPathComponent, on the bytes.
std::string_view lastPathComponent(std::string_view path)
{
    if (path.size() <= 1)
        return path;
    return path.substr(path.rfind('/') + 1);
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

// Grows one block of text by rows.
class RowWriter
{
public:
    explicit RowWriter(CandidateOrigin origin)
        : m_beginning(rowBeginning(origin))
    {
        m_text.append(heading.data(), qsizetype(heading.size()));
    }

    void add(std::int64_t rank, float similarity, float share, std::string_view name)
    {
        const qsizetype before = m_text.size();
        m_text.resize(before + qsizetype(m_beginning.size() + longestNumbers + name.size()));
        char *end = write(m_text.data() + before, m_beginning);
        end = write(end, rank);
        end = write(end, " sim="sv);
        end = writeFixed(end, similarity, 4);
        end = write(end, " ("sv);
        end = write(end, truncatedPercentage(similarity));
        end = write(end, "%) p="sv);
        end = writeFixed(end, share, 3);
        end = write(end, " -> "sv);
        end = write(end, name);
        end = write(end, "\n"sv);
        m_text.truncate(end - m_text.constData());
    }

    const QByteArray &text() const { return m_text; }

private:
    std::string_view m_beginning;
    QByteArray m_text;
};

} // namespace

char *writeFixed(char *target, float value, int decimals)
{
    // A 32-bit float has 24 significant bits and 10000 is 625 times a power of two, so the product below is
    // exact in a double, and rounding it to an integer (halves to even) is the one rounding that printf does.
    const double scale = decimals == 4 ? 10000 : 1000;
    const double scaled = std::fabs(double(value)) * scale;
    constexpr double exactIntegers = 9007199254740992; // 2^53
    if (!(scaled < exactIntegers))
        return std::to_chars(target, target + longestFixedText, value, std::chars_format::fixed, decimals)
            .ptr;
    if (std::signbit(value))
        *target++ = '-';
    const auto rounded = std::int64_t(std::nearbyint(scaled));
    const auto divisor = std::int64_t(scale);
    target = std::to_chars(target, target + longestFixedText, rounded / divisor).ptr;
    *target++ = '.';
    std::int64_t fraction = rounded % divisor;
    for (int i = decimals - 1; i >= 0; --i) {
        target[i] = char('0' + fraction % 10);
        fraction /= 10;
    }
    return target + decimals;
}

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

void logRankingRows(const SearchCandidates &candidates, std::span<const RankedCandidate> order,
                    std::span<const float> shares, CandidateOrigin origin)
{
    RowWriter rows(origin);
    std::int64_t rank = 0;
    for (const RankedCandidate &candidate : order) {
        // What stands above the row that ends the program is still to be seen.
        if (!hasPercentage(candidate.similarity))
            Log::lines(rows.text());
        rows.add(++rank, candidate.similarity, shares[candidate.index],
                 lastPathComponent(candidates.path(candidate.index)));
    }
    Log::lines(rows.text());
}

} // namespace Qorvane
