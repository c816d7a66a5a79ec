#include "views/sidebar/SidebarMovement.h"

namespace Qorvane::SidebarMovement {

namespace {

std::optional<Step> firstSelectable(const QList<SidebarRow> &rows, int from, int step)
{
    for (int row = from; row >= 0 && row < rows.size(); row += step) {
        if (rows.at(row).isSelectable())
            return Step{row};
    }
    return std::nullopt;
}

std::optional<Step> parentOf(const QList<SidebarRow> &rows, int current)
{
    for (int row = current - 1; row >= 0 && rows.at(row).isFolder(); --row) {
        if (rows.at(row).depth < rows.at(current).depth)
            return Step{row};
    }
    return std::nullopt;
}

} // namespace

std::optional<Step> move(const QList<SidebarRow> &rows, int current, Key key)
{
    const bool hasCurrent = current >= 0 && current < rows.size();
    const int last = int(rows.size()) - 1;
    switch (key) {
    case Key::up:
        return firstSelectable(rows, hasCurrent ? current - 1 : last, -1);
    case Key::down:
        return firstSelectable(rows, hasCurrent ? current + 1 : 0, 1);
    case Key::home:
        return firstSelectable(rows, 0, 1);
    case Key::end:
        return firstSelectable(rows, last, -1);
    case Key::left:
        if (!hasCurrent)
            return std::nullopt;
        return rows.at(current).isExpanded ? Step{current, true} : parentOf(rows, current);
    case Key::right:
        if (!hasCurrent || !rows.at(current).hasChildren)
            return std::nullopt;
        return rows.at(current).isExpanded ? Step{current + 1} : Step{current, true};
    }
    return std::nullopt;
}

std::optional<int> find(const QList<SidebarRow> &rows, int current, const QString &text)
{
    const int count = int(rows.size());
    const int first = text.size() > 1 ? current : current + 1;
    for (int i = 0; i < count; ++i) {
        const int row = (std::max(first, 0) + i) % count;
        if (rows.at(row).isSelectable() && rows.at(row).name.startsWith(text, Qt::CaseInsensitive))
            return row;
    }
    return std::nullopt;
}

} // namespace Qorvane::SidebarMovement
