#include "views/MediaSelection.h"

#include <algorithm>

namespace Qorvane {

void MediaSelection::setUrls(const QSet<FileUrl> &urls)
{
    if (m_urls == urls)
        return;
    const QSet<FileUrl> before = m_urls;
    m_urls = urls;
    Q_EMIT changed(before);
}

void MediaSelection::click(const FileUrl &url, bool isCommandHeld)
{
    if (!isCommandHeld) {
        setUrls({url});
        return;
    }
    QSet<FileUrl> urls = m_urls;
    if (!urls.remove(url))
        urls.insert(url);
    setUrls(urls);
}

std::optional<int> MediaSelection::firstPosition(const QList<FileUrl> &urls) const
{
    if (m_urls.isEmpty())
        return std::nullopt;
    const auto first =
        std::find_if(urls.cbegin(), urls.cend(), [this](const FileUrl &url) { return m_urls.contains(url); });
    return first == urls.cend() ? std::nullopt : std::optional(int(first - urls.cbegin()));
}

std::optional<int> MediaSelection::move(GridDirection direction, const QList<FileUrl> &urls, int columnCount)
{
    if (urls.isEmpty())
        return std::nullopt;
    const int target =
        movedPosition(direction, firstPosition(urls).value_or(0), int(urls.size()), columnCount);
    setUrls({urls.at(target)});
    return target;
}

} // namespace Qorvane
