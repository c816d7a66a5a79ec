#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <vector>

namespace Qorvane {

/// The cosine of the angle between two vectors, in 32-bit floats and in index order: the dot product divided
/// by the product of the two square roots of the sums of squares. 0 when the vectors are empty or either sum
/// isn't greater than 0. Of unequal vectors the shorter length counts. The norms are always computed, though
/// the program's own vectors are of unit length. Any thread.
float cosineSimilarity(std::span<const float> left, std::span<const float> right);

/// The same cosine of one vector with many, a block at a time: each lane of a vector register works on a row
/// of its own, in index order, so that every result has exactly the bits that `cosineSimilarity` gives. (A
/// NaN is a NaN in both; its payload is not promised.)
class CosineBlock
{
public:
    /// Rows scored together: the lanes of two 256-bit registers, since one alone would spend its time waiting
    /// for its own last addition.
    static constexpr std::size_t rowCount = 16;
    /// One similarity per row of the block.
    using Similarities = std::array<float, rowCount>;

    /// Which machine instructions do the work. `portable` runs everywhere; `fastest` takes the widest that
    /// the processor of this run has.
    enum class Instructions { portable, fastest };

    explicit CosineBlock(std::vector<float> query, Instructions instructions = Instructions::fastest);

    /// The number of floats in the query and in each row.
    std::size_t length() const { return m_query.size(); }

    /// The distance from the first float of one row to that of the next, in floats: a little more than the
    /// length, so that the rows don't compete for the same lines of the processor's cache.
    std::size_t stride() const { return strideFor(m_query.size()); }

    /// Scores `rowCount` rows of `length` floats, each `stride` after the one before; what lies between them
    /// isn't read.
    Similarities score(std::span<const float> rows) const;

private:
    static std::size_t strideFor(std::size_t length);

    std::vector<float> m_query;
    float m_querySquares;
    bool m_isWide;
};

} // namespace Qorvane
