#pragma once

#include "semantic/CosineSimilarity.h"
#include "semantic/SearchCandidates.h"

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

namespace Qorvane {

/// Compares a text vector with image vectors while they stream by: rows are gathered into blocks and scored
/// at once, so that no more than one block of vectors is in memory. Any thread, one at a time.
class VectorScorer
{
public:
    explicit VectorScorer(std::vector<float> query);

    /// Takes one row: its path in UTF-8 and its vector as raw 32-bit floats, aligned or not; both are copied.
    /// A row of another length than the query is no candidate: it belongs to another family of encoders.
    /// Bytes beyond the last whole float don't count.
    void add(std::string_view path, std::span<const std::byte> floats);

    /// The candidates in the order they were added, with their similarities; the scorer is empty afterwards.
    SearchCandidates finish();

private:
    void scoreBlock();

    CosineBlock m_block;
    std::vector<float> m_rows;  ///< CosineBlock::rowCount rows, at the block's stride
    std::size_t m_gathered = 0; ///< rows of the block that are filled
    SearchCandidates m_candidates;
};

} // namespace Qorvane
