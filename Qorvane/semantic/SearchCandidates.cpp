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

FileUrl SearchCandidates::url(std::size_t index) const
{
    const std::string_view bytes = path(index);
    return FileUrl::file(QString::fromUtf8(bytes.data(), qsizetype(bytes.size())));
}

} // namespace Qorvane
