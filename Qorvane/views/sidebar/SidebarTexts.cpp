#include "views/sidebar/SidebarTexts.h"

#include "platform/Localization.h"

#include <cmath>

namespace Qorvane {

namespace {

QString withCount(const QString &name, const std::optional<int> &count)
{
    return count ? localized("%1, %2").arg(name, localizedCount("%n items", *count)) : name;
}

} // namespace

QString SidebarTexts::countText(const SidebarRow &row)
{
    return row.count ? QString::number(*row.count) : QString();
}

QString SidebarTexts::percentText(double progress)
{
    const double percent = std::isfinite(progress) ? std::trunc(progress * 100) : 0;
    return QString::number(qint64(percent)) + u'%';
}

QString SidebarTexts::spokenName(const SidebarRow &row)
{
    switch (row.kind) {
    case SidebarRow::Kind::rating:
        return withCount(localizedCount("%n stars", row.rating), row.count);
    case SidebarRow::Kind::tag:
        return withCount(row.name, row.count);
    case SidebarRow::Kind::folder:
        return row.isFavorite ? localized("%1, %2").arg(row.name, localized("Favorite")) : row.name;
    case SidebarRow::Kind::header:
    case SidebarRow::Kind::favorite:
    case SidebarRow::Kind::noTags:
        break;
    }
    return row.name;
}

} // namespace Qorvane
