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
    /// Of the screen; pictures stay sharp only where edges lie on its pixels.
    Q_PROPERTY(double devicePixelRatio MEMBER m_devicePixelRatio NOTIFY changed)
    /// Distance between the left edges of two neighbours, in whole physical pixels.
    Q_PROPERTY(double pitch READ pitch NOTIFY changed)
    /// Width of one column without its gap.
    Q_PROPERTY(double columnWidth READ columnWidth NOTIFY changed)

public:
    static constexpr int minimumColumnWidth = 200;
    static constexpr int gap = 16;

    using QObject::QObject;

    /// Columns that fit into `width`; at least one.
    static int countFor(double width);

    double width() const { return m_width; }
    void setWidth(double width);
    int count() const { return countFor(m_width); }
    double pitch() const;
    double columnWidth() const { return pitch() - gap; }
    /// The left edge of what is centred in a column, `width` wide; on a whole physical pixel.
    Q_INVOKABLE double centred(double width, double columnWidth) const;

Q_SIGNALS:
    void changed();

private:
    double wholePixels(double length) const;

    double m_width = 0;
    double m_devicePixelRatio = 1;
};

} // namespace Qorvane
