#pragma once

#include <QObject>
#include <QPointF>
#include <QtQml/qqmlregistration.h>

namespace Qorvane {

/// Where a scroll ends. Lengths are logical pixels; positions count down from the first row's top. Any
/// thread.
class Scrolling : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

public:
    using QObject::QObject;

    /// How far down a turn of the wheel leads; up is below 0. `pixelDelta` is what a touchpad tells, and goes
    /// first; `angleDelta` is in eighths of a degree. Both as the toolkit's wheel events have them.
    Q_INVOKABLE double wheelDistance(const QPointF &pixelDelta, const QPointF &angleDelta) const;
    /// Whether the wheel has notches: a step of it jumps, and is better shown as a motion.
    Q_INVOKABLE bool isNotch(const QPointF &pixelDelta, const QPointF &angleDelta) const;

    /// The position nearest to `position` that has the line of cell `row` in a view of `viewHeight` as a
    /// whole, with `margin` to spare above and below.
    Q_INVOKABLE double showing(int row, int columnCount, double rowPitch, double margin, double position,
                               double viewHeight) const;

    /// The nearest position within the bounds that lies on a whole physical pixel, where pictures are sharp.
    Q_INVOKABLE double settled(double position, double lowest, double highest, double devicePixelRatio) const;
};

} // namespace Qorvane
