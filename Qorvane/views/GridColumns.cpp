#include "views/GridColumns.h"

#include <algorithm>

namespace Qorvane {

int GridColumns::countFor(double width)
{
    return std::max(1, int((width + gap) / (minimumColumnWidth + gap)));
}

void GridColumns::setWidth(double width)
{
    if (m_width == width)
        return;
    m_width = width;
    Q_EMIT changed();
}

int GridColumns::pitch() const
{
    // Never below a whole cell: a narrower grid shows one column, cut off.
    return std::max(minimumColumnWidth + gap, int((m_width + gap) / count()));
}

} // namespace Qorvane
