#pragma once

namespace Qorvane {

/// A run of list positions; none when `last` is below `first`.
struct RowRange
{
    int first = 0;
    int last = -1;

    friend bool operator==(const RowRange &, const RowRange &) = default;
};

/// The positions whose cells are at least partly in view, of `itemCount` in `columnCount` columns with rows
/// `rowPitch` apart, when the view of `viewHeight` begins `contentY` below the first row. Lengths in pixels.
RowRange visibleRows(double contentY, double viewHeight, double rowPitch, int columnCount, int itemCount);

} // namespace Qorvane
