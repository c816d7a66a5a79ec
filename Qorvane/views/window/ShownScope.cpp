#include "views/window/ShownScope.h"

namespace Qorvane {

ShownScope ShownScope::of(const std::optional<QString> &selectedTag, std::optional<int> selectedRating,
                          const std::optional<Folder> &selectedFolder)
{
    if (selectedTag)
        return {Kind::tag, *selectedTag, QStringLiteral("tag-") + *selectedTag};
    if (selectedRating)
        return {Kind::rating, QStringLiteral("★").repeated(*selectedRating),
                QStringLiteral("rating-%1").arg(*selectedRating)};
    if (selectedFolder)
        return {Kind::folder, selectedFolder->url.lastPathComponent(),
                QStringLiteral("folder-") + selectedFolder->url.path()};
    return {};
}

} // namespace Qorvane
