#include "semantic/SearchCandidates.h"

namespace Qorvane {

void SearchCandidates::append(std::string_view path, float similarity)
{
    m_paths.insert(m_paths.end(), path.begin(), path.end());
    m_pathEnds.push_back(m_paths.size());
    m_similarities.push_back(similarity);
}

void SearchCandidates::append(const FileUrl &url, float similarity)
{
    const QByteArray path = url.path().toUtf8();
    append(std::string_view(path.constData(), std::size_t(path.size())), similarity);
}

std::string_view SearchCandidates::path(std::size_t index) const
{
    const std::size_t start = index == 0 ? 0 : m_pathEnds[index - 1];
    return {m_paths.data() + start, m_pathEnds[index] - start};
}

FileUrl SearchCandidates::url(std::size_t index) const
{
    const std::string_view bytes = path(index);
    return FileUrl::file(QString::fromUtf8(bytes.data(), qsizetype(bytes.size())));
}

} // namespace Qorvane
