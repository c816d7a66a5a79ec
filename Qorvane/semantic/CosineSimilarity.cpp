#include "semantic/CosineSimilarity.h"

#include <QtGlobal>

#include <algorithm>
#include <cmath>
#include <utility>

#ifdef __x86_64__
#include <immintrin.h>
#endif

// This file is compiled without contraction: a fused multiplication and addition rounds once where the
// formula rounds twice, and the lanes would no longer agree with the plain loop on every processor.

namespace Qorvane {

namespace {

constexpr std::size_t rowCount = CosineBlock::rowCount;

// What a row's loop gathers.
struct Sums
{
    CosineBlock::Similarities dots{};
    CosineBlock::Similarities squares{};
};

float quotient(float dot, float leftSquares, float rightSquares)
{
    // Written so that a NaN counts as "not greater".
    if (!(leftSquares > 0) || !(rightSquares > 0))
        return 0;
    return dot / (std::sqrt(leftSquares) * std::sqrt(rightSquares));
}

float sumOfSquares(std::span<const float> values)
{
    float sum = 0;
    for (const float value : values)
        sum += value * value;
    return sum;
}

// Four rows on the 128-bit registers that every x86-64 and arm64 processor has.
using FourFloats = float __attribute__((vector_size(16)));
constexpr std::size_t fourLanes = 4;

FourFloats load(const float *source)
{
    FourFloats floats;
    __builtin_memcpy(&floats, source, sizeof floats);
    return floats;
}

void store(float *target, FourFloats floats)
{
    __builtin_memcpy(target, &floats, sizeof floats);
}

// Turns four floats of each of four rows into the four rows' first floats, their second floats, and so on.
std::array<FourFloats, fourLanes> transposed(const float *row, std::size_t stride)
{
    const FourFloats a = load(row);
    const FourFloats b = load(row + stride);
    const FourFloats c = load(row + 2 * stride);
    const FourFloats d = load(row + 3 * stride);
    const FourFloats abLow = __builtin_shufflevector(a, b, 0, 4, 1, 5);
    const FourFloats cdLow = __builtin_shufflevector(c, d, 0, 4, 1, 5);
    const FourFloats abHigh = __builtin_shufflevector(a, b, 2, 6, 3, 7);
    const FourFloats cdHigh = __builtin_shufflevector(c, d, 2, 6, 3, 7);
    return {__builtin_shufflevector(abLow, cdLow, 0, 1, 4, 5),
            __builtin_shufflevector(abLow, cdLow, 2, 3, 6, 7),
            __builtin_shufflevector(abHigh, cdHigh, 0, 1, 4, 5),
            __builtin_shufflevector(abHigh, cdHigh, 2, 3, 6, 7)};
}

// Rows in two groups of four: while the additions of one group wait for each other, those of the other go on.
constexpr std::size_t pairOfGroups = 2 * fourLanes;

FourFloats column(const float *row, std::size_t stride)
{
    return FourFloats{row[0], row[stride], row[2 * stride], row[3 * stride]};
}

void addEightRows(std::span<const float> query, const float *rows, std::size_t stride, float *dots,
                  float *squares)
{
    const std::size_t length = query.size();
    const float *low = rows;
    const float *high = rows + fourLanes * stride;
    FourFloats lowDot{};
    FourFloats highDot{};
    FourFloats lowSquare{};
    FourFloats highSquare{};
    const auto add = [&](FourFloats lowColumn, FourFloats highColumn, float factor) {
        lowDot += lowColumn * factor;
        highDot += highColumn * factor;
        lowSquare += lowColumn * lowColumn;
        highSquare += highColumn * highColumn;
    };
    std::size_t i = 0;
    for (; i + fourLanes <= length; i += fourLanes) {
        const auto lowColumns = transposed(low + i, stride);
        const auto highColumns = transposed(high + i, stride);
        for (std::size_t j = 0; j < fourLanes; ++j)
            add(lowColumns[j], highColumns[j], query[i + j]);
    }
    for (; i < length; ++i)
        add(column(low + i, stride), column(high + i, stride), query[i]);
    store(dots, lowDot);
    store(dots + fourLanes, highDot);
    store(squares, lowSquare);
    store(squares + fourLanes, highSquare);
}

Sums portableSums(std::span<const float> query, const float *rows, std::size_t stride)
{
    Sums sums;
    for (std::size_t row = 0; row < rowCount; row += pairOfGroups)
        addEightRows(query, rows + row * stride, stride, &sums.dots[row], &sums.squares[row]);
    return sums;
}

#ifdef __x86_64__

bool hasWideRegisters()
{
    return __builtin_cpu_supports("avx2");
}

#define QORVANE_WIDE __attribute__((target("avx2")))

constexpr std::size_t eightLanes = 8;

struct FourColumns
{
    __m256 at[4];
};

// Four floats of each of eight rows, loaded so that row r and row r + 4 share a register; that way two rounds
// of shuffles within the halves turn them into the rows' first floats, their second floats, and so on.
QORVANE_WIDE inline FourColumns transposedWide(const float *row, std::size_t stride)
{
    const auto pair = [row, stride](std::size_t r) QORVANE_WIDE {
        return _mm256_insertf128_ps(_mm256_castps128_ps256(_mm_loadu_ps(row + r * stride)),
                                    _mm_loadu_ps(row + (r + 4) * stride), 1);
    };
    const __m256 a = pair(0);
    const __m256 b = pair(1);
    const __m256 c = pair(2);
    const __m256 d = pair(3);
    const __m256 abLow = _mm256_unpacklo_ps(a, b);
    const __m256 cdLow = _mm256_unpacklo_ps(c, d);
    const __m256 abHigh = _mm256_unpackhi_ps(a, b);
    const __m256 cdHigh = _mm256_unpackhi_ps(c, d);
    return {{_mm256_shuffle_ps(abLow, cdLow, _MM_SHUFFLE(1, 0, 1, 0)),
             _mm256_shuffle_ps(abLow, cdLow, _MM_SHUFFLE(3, 2, 3, 2)),
             _mm256_shuffle_ps(abHigh, cdHigh, _MM_SHUFFLE(1, 0, 1, 0)),
             _mm256_shuffle_ps(abHigh, cdHigh, _MM_SHUFFLE(3, 2, 3, 2))}};
}

QORVANE_WIDE inline __m256 columnWide(const float *row, std::size_t stride)
{
    return _mm256_setr_ps(row[0], row[stride], row[2 * stride], row[3 * stride], row[4 * stride],
                          row[5 * stride], row[6 * stride], row[7 * stride]);
}

// Two groups of eight rows at once, for the same reason as in the portable form.
QORVANE_WIDE Sums wideSums(std::span<const float> query, const float *rows, std::size_t stride)
{
    static_assert(rowCount == 2 * eightLanes);
    const std::size_t length = query.size();
    const float *low = rows;
    const float *high = rows + eightLanes * stride;
    __m256 lowDot = _mm256_setzero_ps();
    __m256 highDot = _mm256_setzero_ps();
    __m256 lowSquare = _mm256_setzero_ps();
    __m256 highSquare = _mm256_setzero_ps();
    const auto add = [&](__m256 lowColumn, __m256 highColumn, float factor) QORVANE_WIDE {
        const __m256 factors = _mm256_set1_ps(factor);
        lowDot = _mm256_add_ps(lowDot, _mm256_mul_ps(lowColumn, factors));
        highDot = _mm256_add_ps(highDot, _mm256_mul_ps(highColumn, factors));
        lowSquare = _mm256_add_ps(lowSquare, _mm256_mul_ps(lowColumn, lowColumn));
        highSquare = _mm256_add_ps(highSquare, _mm256_mul_ps(highColumn, highColumn));
    };
    std::size_t i = 0;
    for (; i + 4 <= length; i += 4) {
        const auto lowColumns = transposedWide(low + i, stride);
        const auto highColumns = transposedWide(high + i, stride);
        for (std::size_t j = 0; j < 4; ++j)
            add(lowColumns.at[j], highColumns.at[j], query[i + j]);
    }
    for (; i < length; ++i)
        add(columnWide(low + i, stride), columnWide(high + i, stride), query[i]);
    Sums sums;
    _mm256_storeu_ps(sums.dots.data(), lowDot);
    _mm256_storeu_ps(sums.dots.data() + eightLanes, highDot);
    _mm256_storeu_ps(sums.squares.data(), lowSquare);
    _mm256_storeu_ps(sums.squares.data() + eightLanes, highSquare);
    return sums;
}

#undef QORVANE_WIDE

#else

bool hasWideRegisters()
{
    return false;
}

Sums wideSums(std::span<const float> query, const float *rows, std::size_t stride)
{
    return portableSums(query, rows, stride);
}

#endif

} // namespace

float cosineSimilarity(std::span<const float> left, std::span<const float> right)
{
    const std::size_t length = std::min(left.size(), right.size());
    float dot = 0;
    float leftSquares = 0;
    float rightSquares = 0;
    for (std::size_t i = 0; i < length; ++i) {
        dot += left[i] * right[i];
        leftSquares += left[i] * left[i];
        rightSquares += right[i] * right[i];
    }
    return quotient(dot, leftSquares, rightSquares);
}

CosineBlock::CosineBlock(std::vector<float> query, Instructions instructions)
    : m_query(std::move(query))
    , m_querySquares(sumOfSquares(m_query))
    , m_isWide(instructions == Instructions::fastest && hasWideRegisters())
{
}

std::size_t CosineBlock::strideFor(std::size_t length)
{
    constexpr std::size_t floatsPerCacheLine = 16;
    return length + floatsPerCacheLine;
}

CosineBlock::Similarities CosineBlock::score(std::span<const float> rows) const
{
    Q_ASSERT(rows.size() >= rowCount * stride());
    const Sums sums =
        m_isWide ? wideSums(m_query, rows.data(), stride()) : portableSums(m_query, rows.data(), stride());
    Similarities similarities;
    for (std::size_t i = 0; i < rowCount; ++i)
        similarities[i] = quotient(sums.dots[i], m_querySquares, sums.squares[i]);
    return similarities;
}

} // namespace Qorvane
