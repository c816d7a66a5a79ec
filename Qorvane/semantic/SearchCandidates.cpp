#include "semantic/SearchCandidates.h"

namespace Qorvane {

namespace {

// The root's path is its own name.
std::size_t nameStart(std::string_view path)
{
    if (path.size() <= 1)
        return 0;
    return path.rfind('/') + 1;
}

} // namespace

void SearchCandidates::append(std::string_view path, float similarity)
{
    if (!isInLatestFolder(path))
        m_folders.emplace_back(path.substr(0, nameStart(path)));
    const std::size_t index = size() % portionSize;
    if (index == 0)
        m_portions.emplace_back();
    Portion &portion = m_portions.back();
    portion.names.append(path.substr(m_folders.back().size()));
    portion.nameEnds[index] = portion.names.size();
    portion.folders[index] = std::uint32_t(m_folders.size() - 1);
    m_similarities.push_back(similarity);
}

void SearchCandidates::append(const FileUrl &url, float similarity)
{
    const QByteArray path = url.path().toUtf8();
    append(std::string_view(path.constData(), std::size_t(path.size())), similarity);
}

FileUrl SearchCandidates::url(std::size_t index) const
{
    const Portion &portion = m_portions[index / portionSize];
    const std::string path =
        m_folders[portion.folders[index % portionSize]] + std::string(portion.name(index % portionSize));
    return FileUrl::file(QString::fromStdString(path));
}

bool SearchCandidates::isInLatestFolder(std::string_view path) const
{
    if (m_folders.empty())
        return false;
    const std::string &folder = m_folders.back();
    return !folder.empty() && path.size() > 1 && path.starts_with(folder) &&
           path.find('/', folder.size()) == std::string_view::npos;
}

} // namespace Qorvane
