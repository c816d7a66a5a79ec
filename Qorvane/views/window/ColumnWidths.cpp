#include "views/window/ColumnWidths.h"

#include <algorithm>

namespace Qorvane {

void ColumnWidths::setWindowWidth(double width)
{
    if (m_windowWidth == width)
        return;
    m_windowWidth = width;
    Q_EMIT changed();
}

void ColumnWidths::setInspectorShare(double share)
{
    if (m_inspectorShare == share)
        return;
    m_inspectorShare = share;
    Q_EMIT changed();
}

int ColumnWidths::roomForSidebar(int inspector) const
{
    return std::max(minimumSidebar, int(m_windowWidth) - minimumContent - inspector);
}

int ColumnWidths::roomForInspector() const
{
    const int room = int(m_windowWidth) - minimumContent - minimumSidebar;
    return std::clamp(room, minimumInspector, maximumInspector);
}

int ColumnWidths::fullInspector() const
{
    return std::min(int(m_inspectorWish), roomForInspector());
}

int ColumnWidths::inspector() const
{
    return int(fullInspector() * m_inspectorShare);
}

int ColumnWidths::sidebar() const
{
    return std::min(int(m_sidebarWish), roomForSidebar(inspector()));
}

int ColumnWidths::contentMargin() const
{
    return std::max(0, (middle() - maximumContent) / 2);
}

void ColumnWidths::moveSidebarEdge(double distance)
{
    m_sidebarWish =
        std::clamp(sidebar() + distance, double(minimumSidebar), double(roomForSidebar(inspector())));
    Q_EMIT changed();
}

void ColumnWidths::moveInspectorEdge(double distance)
{
    // The content column ends the way to the left, not a sidebar that gives way.
    const int room = int(m_windowWidth) - minimumContent - sidebar();
    const int widest = std::clamp(room, minimumInspector, maximumInspector);
    m_inspectorWish = std::clamp(fullInspector() - distance, double(minimumInspector), double(widest));
    Q_EMIT changed();
}

void ColumnWidths::resetSidebar()
{
    m_sidebarWish = idealSidebar;
    Q_EMIT changed();
}

void ColumnWidths::resetInspector()
{
    m_inspectorWish = idealInspector;
    Q_EMIT changed();
}

} // namespace Qorvane
