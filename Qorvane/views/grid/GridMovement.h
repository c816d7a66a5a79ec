#pragma once

namespace Qorvane {

enum class GridDirection { left, right, up, down };

/// Where an arrow key leads from `position` in a grid of `itemCount` cells (at least one) in `columnCount`
/// columns: stays inside the list, doesn't wrap around rows, and a step down past the end lands on the last
/// cell.
int movedPosition(GridDirection direction, int position, int itemCount, int columnCount);

} // namespace Qorvane
