#include "views/grid/GridColumns.h"

#include <algorithm>
#include <cmath>

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

double GridColumns::pitch() const
{
    // Never below a whole cell: a narrower grid shows one column, cut off.
    return std::max(double(minimumColumnWidth + gap), wholePixels((m_width + gap) / count()));
}

double GridColumns::centred(double width, double columnWidth) const
{
    return wholePixels((columnWidth - width) / 2);
}

double GridColumns::wholePixels(double length) const
{
    return m_devicePixelRatio > 0 ? std::floor(length * m_devicePixelRatio) / m_devicePixelRatio : length;
}

} // namespace Qorvane
