#include "views/style/Scrolling.h"

#include <QGuiApplication>
#include <QStyleHints>

#include <algorithm>
#include <cmath>

namespace Qorvane {

namespace {

// Of a usual wheel, in the units of angleDelta.
constexpr double notch = 120;
// With the usual three lines for a notch, three notches pass the larger half of a row of photographs each.
constexpr double lineHeight = 40;

} // namespace

double Scrolling::wheelDistance(const QPointF &pixelDelta, const QPointF &angleDelta) const
{
    if (!pixelDelta.isNull())
        return -pixelDelta.y();
    const int lines = QGuiApplication::styleHints()->wheelScrollLines();
    return -angleDelta.y() / notch * lines * lineHeight;
}

bool Scrolling::isNotch(const QPointF &pixelDelta, const QPointF &angleDelta) const
{
    return pixelDelta.isNull() && std::abs(angleDelta.y()) >= notch;
}

double Scrolling::showing(int row, int columnCount, double rowPitch, double margin, double position,
                          double viewHeight) const
{
    const double top = double(row / std::max(columnCount, 1)) * rowPitch - margin;
    const double bottom = top + rowPitch + 2 * margin;
    // The top goes first, in a view that is lower than a line.
    return std::min(std::max(position, bottom - viewHeight), top);
}

double Scrolling::settled(double position, double lowest, double highest, double devicePixelRatio) const
{
    const double ratio = devicePixelRatio > 0 ? devicePixelRatio : 1;
    const double aligned = std::round(position * ratio) / ratio;
    return std::clamp(aligned, lowest, std::max(lowest, highest));
}

} // namespace Qorvane
