#pragma once

#include "library/Folder.h"

namespace Qorvane {

/// A folder as it stands in one of the sidebar's two sections.
struct SidebarItem
{
    enum class ItemType { favorite, library };

    /// What the ids of a section's rows begin with: its case name and "-".
    static QString idPrefix(ItemType type);

    Folder folder;
    ItemType type = ItemType::library;

    /// The section's prefix and the folder's absolute text: "library-file:///home/me/Pictures/".
    QString id() const;

    friend bool operator==(const SidebarItem &, const SidebarItem &) = default;
    friend size_t qHash(const SidebarItem &item, size_t seed = 0)
    {
        return qHashMulti(seed, item.folder, int(item.type));
    }
};

} // namespace Qorvane

Q_DECLARE_METATYPE(Qorvane::SidebarItem)
