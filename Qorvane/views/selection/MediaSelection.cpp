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

} // namespace Qorvane
