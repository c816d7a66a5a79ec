#include "semantic/VectorScorer.h"

#include <cstring>
#include <utility>

namespace Qorvane {

VectorScorer::VectorScorer(std::vector<float> query)
    : m_block(std::move(query))
    , m_rows(CosineBlock::rowCount * m_block.stride())
{
}

void VectorScorer::add(std::string_view path, std::span<const std::byte> floats)
{
    const std::size_t length = m_block.length();
    if (floats.size() / sizeof(float) != length)
        return;
    if (length > 0)
        std::memcpy(m_rows.data() + m_gathered * m_block.stride(), floats.data(), length * sizeof(float));
    m_candidates.append(path, 0);
    if (++m_gathered == CosineBlock::rowCount)
        scoreBlock();
}

SearchCandidates VectorScorer::finish()
{
    // The unfilled rows of the last block hold earlier rows or zeros; their scores are dropped.
    if (m_gathered > 0)
        scoreBlock();
    return std::exchange(m_candidates, {});
}

void VectorScorer::scoreBlock()
{
    const CosineBlock::Similarities similarities = m_block.score(m_rows);
    const std::size_t first = m_candidates.size() - m_gathered;
    for (std::size_t i = 0; i < m_gathered; ++i)
        m_candidates.setSimilarity(first + i, similarities[i]);
    m_gathered = 0;
}

} // namespace Qorvane
