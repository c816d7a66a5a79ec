#include "views/grid/GridMovement.h"

#include <algorithm>

namespace Qorvane {

int movedPosition(GridDirection direction, int position, int itemCount, int columnCount)
{
    const int row = std::max(columnCount, 1);
    switch (direction) {
    case GridDirection::left:
        return std::max(position - 1, 0);
    case GridDirection::right:
        return std::min(position + 1, itemCount - 1);
    case GridDirection::up:
        return std::max(position - row, 0);
    case GridDirection::down:
        return std::min(position + row, itemCount - 1);
    }
    return position;
}

} // namespace Qorvane
