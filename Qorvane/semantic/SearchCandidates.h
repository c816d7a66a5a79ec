#pragma once

#include "platform/FileUrl.h"

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

namespace Qorvane {

/// The images a search compares, each with its similarity, in the order gathered. A library has a hundred
/// thousand of them and a search shows twenty, so their paths lie end to end in one piece of memory and
/// become addresses only on demand.
class SearchCandidates
{
public:
    /// `path` is UTF-8.
    void append(std::string_view path, float similarity);
    void append(const FileUrl &url, float similarity);
    void setSimilarity(std::size_t index, float similarity) { m_similarities[index] = similarity; }

    std::size_t size() const { return m_similarities.size(); }
    /// UTF-8; good until the next `append`.
    std::string_view path(std::size_t index) const
    {
        const std::size_t start = index == 0 ? 0 : m_pathEnds[index - 1];
        return {m_paths.data() + start, m_pathEnds[index] - start};
    }
    FileUrl url(std::size_t index) const;
    float similarity(std::size_t index) const { return m_similarities[index]; }
    std::span<const float> similarities() const { return m_similarities; }

private:
    std::vector<char> m_paths;
    std::vector<std::size_t> m_pathEnds; ///< into m_paths
    std::vector<float> m_similarities;
};

} // namespace Qorvane
