#pragma once

#include <QColor>
#include <QQuickPaintedItem>

namespace Qorvane {

/// A circle that fills clockwise from the top. GUI thread; painted by hand so that it has soft edges on the
/// software scene graph too.
class ProgressRing : public QQuickPaintedItem
{
    Q_OBJECT
    QML_ELEMENT
    /// 0 to 1. What is drawn is never less than a sliver of 0.02, so that a run that has just begun shows.
    Q_PROPERTY(double progress READ progress WRITE setProgress NOTIFY progressChanged)
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged)

public:
    explicit ProgressRing(QQuickItem *parent = nullptr);

    double progress() const { return m_progress; }
    void setProgress(double progress);
    QColor color() const { return m_color; }
    void setColor(const QColor &color);

    /// The share of the circle that is drawn for `progress`.
    static double drawnShare(double progress);

    void paint(QPainter *painter) override;

Q_SIGNALS:
    void progressChanged();
    void colorChanged();

private:
    double m_progress = 0;
    QColor m_color;
};

} // namespace Qorvane
