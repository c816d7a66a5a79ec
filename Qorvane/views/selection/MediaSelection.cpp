#include "views/selection/MediaSelection.h"

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

std::optional<int> MediaSelection::move(GridDirection direction, int position, const QList<FileUrl> &urls,
                                        int columnCount)
{
    if (urls.isEmpty())
        return std::nullopt;
    const int target = movedPosition(direction, position, int(urls.size()), columnCount);
    setUrls({urls.at(target)});
    return target;
}

} // namespace Qorvane
