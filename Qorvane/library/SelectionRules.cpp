#include "library/SelectionRules.h"

#include "library/LibraryState.h"
#include "library/MediaList.h"
#include "platform/Log.h"

namespace Qorvane {

namespace {

QString text(const std::optional<QString> &tag)
{
    return tag.value_or(QStringLiteral("nil"));
}

QString text(std::optional<int> rating)
{
    return rating ? QString::number(*rating) : QStringLiteral("nil");
}

} // namespace

void SelectionRules::selectFolder(const std::optional<Folder> &folder)
{
    m_state.publishSelectedFolder(folder);
    if (folder && m_state.selectedTag())
        selectTag(std::nullopt);
    if (folder && m_state.selectedRating())
        selectRating(std::nullopt);
    m_mediaList.loadImages();
}

void SelectionRules::selectTag(const std::optional<QString> &tag)
{
    const std::optional<QString> oldTag = m_state.selectedTag();
    m_state.publishSelectedTag(tag);
    Log::line(QStringLiteral("🏷️ selectedTag changed from ") + text(oldTag) + QStringLiteral(" to ") +
              text(tag));
    m_mediaList.loadImages();
}

void SelectionRules::selectRating(std::optional<int> rating)
{
    const std::optional<int> oldRating = m_state.selectedRating();
    m_state.publishSelectedRating(rating);
    Log::line(QStringLiteral("⭐️ selectedRating changed from ") + text(oldRating) +
              QStringLiteral(" to ") + text(rating));
    m_mediaList.loadImages();
}

} // namespace Qorvane
