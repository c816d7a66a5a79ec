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
std::array<FourFloats, fourLanes> transposed(const float *row, std::size_t length)
{
    const FourFloats a = load(row);
    const FourFloats b = load(row + length);
    const FourFloats c = load(row + 2 * length);
    const FourFloats d = load(row + 3 * length);
    const FourFloats abLow = __builtin_shufflevector(a, b, 0, 4, 1, 5);
    const FourFloats cdLow = __builtin_shufflevector(c, d, 0, 4, 1, 5);
    const FourFloats abHigh = __builtin_shufflevector(a, b, 2, 6, 3, 7);
    const FourFloats cdHigh = __builtin_shufflevector(c, d, 2, 6, 3, 7);
    return {__builtin_shufflevector(abLow, cdLow, 0, 1, 4, 5),
            __builtin_shufflevector(abLow, cdLow, 2, 3, 6, 7),
            __builtin_shufflevector(abHigh, cdHigh, 0, 1, 4, 5),
            __builtin_shufflevector(abHigh, cdHigh, 2, 3, 6, 7)};
}

void addFourRows(std::span<const float> query, const float *rows, float *dots, float *squares)
{
    const std::size_t length = query.size();
    FourFloats dot{};
    FourFloats square{};
    const auto add = [&](FourFloats column, float factor) {
        dot += column * factor;
        square += column * column;
    };
    std::size_t i = 0;
    for (; i + fourLanes <= length; i += fourLanes) {
        const auto columns = transposed(rows + i, length);
        for (std::size_t j = 0; j < fourLanes; ++j)
            add(columns[j], query[i + j]);
    }
    for (; i < length; ++i)
        add(FourFloats{rows[i], rows[length + i], rows[2 * length + i], rows[3 * length + i]}, query[i]);
    store(dots, dot);
    store(squares, square);
}

Sums portableSums(std::span<const float> query, const float *rows)
{
    Sums sums;
    for (std::size_t row = 0; row < rowCount; row += fourLanes)
        addFourRows(query, rows + row * query.size(), &sums.dots[row], &sums.squares[row]);
    return sums;
}

#ifdef __x86_64__

bool hasWideRegisters()
{
    return __builtin_cpu_supports("avx2");
}

// Eight floats of each of eight rows, loaded in halves so that row r and row r + 4 share a register; that way
// two rounds of shuffles within the halves finish the transposition.
__attribute__((target("avx2"))) inline void transposeWide(const float *row, std::size_t length,
                                                          __m256 *columns)
{
    for (std::size_t half = 0; half < 2; ++half) {
        const float *source = row + half * 4;
        const auto pair = [ source, length ](std::size_t r) __attribute__((target("avx2")))
        {
            return _mm256_insertf128_ps(_mm256_castps128_ps256(_mm_loadu_ps(source + r * length)),
                                        _mm_loadu_ps(source + (r + 4) * length), 1);
        };
        const __m256 a = pair(0);
        const __m256 b = pair(1);
        const __m256 c = pair(2);
        const __m256 d = pair(3);
        const __m256 abLow = _mm256_unpacklo_ps(a, b);
        const __m256 cdLow = _mm256_unpacklo_ps(c, d);
        const __m256 abHigh = _mm256_unpackhi_ps(a, b);
        const __m256 cdHigh = _mm256_unpackhi_ps(c, d);
        columns[half * 4 + 0] = _mm256_shuffle_ps(abLow, cdLow, _MM_SHUFFLE(1, 0, 1, 0));
        columns[half * 4 + 1] = _mm256_shuffle_ps(abLow, cdLow, _MM_SHUFFLE(3, 2, 3, 2));
        columns[half * 4 + 2] = _mm256_shuffle_ps(abHigh, cdHigh, _MM_SHUFFLE(1, 0, 1, 0));
        columns[half * 4 + 3] = _mm256_shuffle_ps(abHigh, cdHigh, _MM_SHUFFLE(3, 2, 3, 2));
    }
}

__attribute__((target("avx2"))) Sums wideSums(std::span<const float> query, const float *rows)
{
    const std::size_t length = query.size();
    __m256 dot = _mm256_setzero_ps();
    __m256 square = _mm256_setzero_ps();
    std::size_t i = 0;
    for (; i + rowCount <= length; i += rowCount) {
        __m256 columns[rowCount];
        transposeWide(rows + i, length, columns);
        for (std::size_t j = 0; j < rowCount; ++j) {
            dot = _mm256_add_ps(dot, _mm256_mul_ps(columns[j], _mm256_broadcast_ss(&query[i + j])));
            square = _mm256_add_ps(square, _mm256_mul_ps(columns[j], columns[j]));
        }
    }
    for (; i < length; ++i) {
        const float *first = rows + i;
        const __m256 column =
            _mm256_setr_ps(first[0], first[length], first[2 * length], first[3 * length], first[4 * length],
                           first[5 * length], first[6 * length], first[7 * length]);
        dot = _mm256_add_ps(dot, _mm256_mul_ps(column, _mm256_set1_ps(query[i])));
        square = _mm256_add_ps(square, _mm256_mul_ps(column, column));
    }
    Sums sums;
    _mm256_storeu_ps(sums.dots.data(), dot);
    _mm256_storeu_ps(sums.squares.data(), square);
    return sums;
}

#else

bool hasWideRegisters()
{
    return false;
}

Sums wideSums(std::span<const float> query, const float *rows)
{
    return portableSums(query, rows);
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

CosineBlock::Similarities CosineBlock::score(std::span<const float> rows) const
{
    Q_ASSERT(rows.size() == rowCount * m_query.size());
    const Sums sums = m_isWide ? wideSums(m_query, rows.data()) : portableSums(m_query, rows.data());
    Similarities similarities;
    for (std::size_t i = 0; i < rowCount; ++i)
        similarities[i] = quotient(sums.dots[i], m_querySquares, sums.squares[i]);
    return similarities;
}

} // namespace Qorvane
