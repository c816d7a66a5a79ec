#include "views/grid/VisibleRows.h"

#include <algorithm>
#include <cmath>

namespace Qorvane {

RowRange visibleRows(double contentY, double viewHeight, double rowPitch, int columnCount, int itemCount)
{
    if (rowPitch <= 0 || viewHeight <= 0 || itemCount <= 0)
        return {};
    const int columns = std::max(columnCount, 1);
    const int firstLine = std::max(0, int(std::floor(contentY / rowPitch)));
    const int lastLine = int(std::ceil((contentY + viewHeight) / rowPitch)) - 1;
    return {firstLine * columns, std::min((lastLine + 1) * columns, itemCount) - 1};
}

} // namespace Qorvane
