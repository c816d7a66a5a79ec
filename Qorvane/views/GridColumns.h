#pragma once

#include <QObject>
#include <QtQml/qqmlregistration.h>

namespace Qorvane {

/// The adaptive columns of the grid: as many cells of at least 200 as fit with gaps of 16, sharing what is
/// left over. GUI thread.
class GridColumns : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    /// Width of the grid, in pixels.
    Q_PROPERTY(double width READ width WRITE setWidth NOTIFY changed)
    Q_PROPERTY(int count READ count NOTIFY changed)
    /// Distance between the left edges of two neighbours, in whole pixels so that pictures stay sharp.
    Q_PROPERTY(int pitch READ pitch NOTIFY changed)
    /// Width of one column without its gap.
    Q_PROPERTY(int columnWidth READ columnWidth NOTIFY changed)

public:
    static constexpr int minimumColumnWidth = 200;
    static constexpr int gap = 16;

    using QObject::QObject;

    /// Columns that fit into `width`; at least one.
    static int countFor(double width);

    double width() const { return m_width; }
    void setWidth(double width);
    int count() const { return countFor(m_width); }
    int pitch() const;
    int columnWidth() const { return pitch() - gap; }

Q_SIGNALS:
    void changed();

private:
    double m_width = 0;
};

} // namespace Qorvane
