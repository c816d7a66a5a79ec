#include "views/selection/SelectedMedia.h"

#include "media/SupportedExtensions.h"

#include <algorithm>

namespace Qorvane {

SelectedMedia::SelectedMedia(const MediaSelection &selection, QObject *parent)
    : QObject(parent)
    , m_selection(selection)
{
    connect(&m_selection, &MediaSelection::changed, this, &SelectedMedia::takeSelection);
    takeSelection();
}

bool SelectedMedia::isVideo() const
{
    return isVideoFile(m_url);
}

void SelectedMedia::takeSelection()
{
    const QSet<FileUrl> &urls = m_selection.urls();
    const auto first = std::min_element(
        urls.cbegin(), urls.cend(), [](const FileUrl &a, const FileUrl &b) { return a.path() < b.path(); });
    m_url = first == urls.cend() ? FileUrl() : *first;
    Q_EMIT changed();
}

} // namespace Qorvane
