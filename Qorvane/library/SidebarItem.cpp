#include "library/SidebarItem.h"

namespace Qorvane {

namespace {

QLatin1String caseName(SidebarItem::ItemType type)
{
    switch (type) {
    case SidebarItem::ItemType::favorite:
        return QLatin1String("favorite");
    case SidebarItem::ItemType::library:
        return QLatin1String("library");
    }
    return {};
}

} // namespace

QString SidebarItem::idPrefix(ItemType type)
{
    return caseName(type) + u'-';
}

QString SidebarItem::id() const
{
    return idPrefix(type) + folder.url.absoluteString();
}

} // namespace Qorvane
