#pragma once

#include "platform/FileUrl.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Qorvane {

/// The images a search compares, each with its similarity, in the order gathered. A library has a hundred
/// thousand of them and a search shows twenty. So each takes little more than the bytes of its name: what
/// stands before the name is kept once for all files of one folder that follow each other, and becomes an
/// address with it only on demand.
class SearchCandidates
{
public:
    /// `path` is UTF-8.
    void append(std::string_view path, float similarity);
    void append(const FileUrl &url, float similarity);
    void setSimilarity(std::size_t index, float similarity) { m_similarities[index] = similarity; }

    std::size_t size() const { return m_similarities.size(); }
    /// The last component of the path, as FileUrl gives it, in UTF-8; good until the next `append`.
    std::string_view name(std::size_t index) const
    {
        return m_portions[index / portionSize].name(index % portionSize);
    }
    FileUrl url(std::size_t index) const;
    float similarity(std::size_t index) const { return m_similarities[index]; }
    std::span<const float> similarities() const { return m_similarities; }

private:
    static constexpr std::size_t portionSize = 1024;

    /// What is known of so many candidates. Portions stay where they are when others follow: to copy all that
    /// was gathered into ever larger pieces of fresh memory takes longer than to gather it.
    struct Portion
    {
        std::string names;                              ///< end to end
        std::array<std::size_t, portionSize> nameEnds;  ///< into `names`
        std::array<std::uint32_t, portionSize> folders; ///< into `m_folders`

        std::string_view name(std::size_t index) const
        {
            const std::size_t start = index == 0 ? 0 : nameEnds[index - 1];
            return {names.data() + start, nameEnds[index] - start};
        }
    };

    bool isInLatestFolder(std::string_view path) const;

    std::deque<Portion> m_portions;
    std::vector<std::string> m_folders; ///< each with its last "/"
    std::vector<float> m_similarities;
};

} // namespace Qorvane
