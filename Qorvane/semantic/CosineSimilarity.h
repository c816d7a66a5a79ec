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
    /// Rows scored together: the lanes of a 256-bit register.
    static constexpr std::size_t rowCount = 8;
    /// One similarity per row of the block.
    using Similarities = std::array<float, rowCount>;

    /// Which machine instructions do the work. `portable` runs everywhere; `fastest` takes the widest that
    /// the processor of this run has.
    enum class Instructions { portable, fastest };

    explicit CosineBlock(std::vector<float> query, Instructions instructions = Instructions::fastest);

    /// The number of floats in the query and in each row.
    std::size_t length() const { return m_query.size(); }

    /// Scores `rowCount` rows of `length` floats that lie one after the other in `rows`.
    Similarities score(std::span<const float> rows) const;

private:
    std::vector<float> m_query;
    float m_querySquares;
    bool m_isWide;
};

} // namespace Qorvane
