#pragma once

#include <QColor>
#include <QElapsedTimer>
#include <QQuickPaintedItem>
#include <QTimer>

namespace Qorvane {

/// A circle that fills clockwise from the top. GUI thread; painted by hand so that it has soft edges on the
/// software scene graph too.
class ProgressRing : public QQuickPaintedItem
{
    Q_OBJECT
    QML_ELEMENT
    /// 0 to 1. What is drawn is never less than a sliver of 0.02, so that a run that has just begun shows.
    Q_PROPERTY(double progress READ progress WRITE setProgress NOTIFY progressChanged)
    /// How long the ring takes to what a change of `progress` made it, in milliseconds; it then does so
    /// again, for ever, as long as it is seen. 0 for no motion.
    Q_PROPERTY(int sweepDuration READ sweepDuration WRITE setSweepDuration NOTIFY sweepDurationChanged)
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged)
    /// False where a view keeps it though nobody sees it: scrolled away, or waiting to be used again.
    Q_PROPERTY(bool isInView READ isInView WRITE setInView NOTIFY isInViewChanged)

public:
    explicit ProgressRing(QQuickItem *parent = nullptr);

    double progress() const { return m_progress; }
    void setProgress(double progress);
    int sweepDuration() const { return m_sweepDuration; }
    void setSweepDuration(int milliseconds);
    QColor color() const { return m_color; }
    void setColor(const QColor &color);
    bool isInView() const { return m_isInView; }
    void setInView(bool isInView);

    /// The progress that is drawn now.
    double shownProgress() const { return m_shown; }
    bool isSweeping() const { return m_sweep.isActive(); }
    /// The share of the circle that is drawn for `progress`.
    static double drawnShare(double progress);

    void paint(QPainter *painter) override;

Q_SIGNALS:
    void progressChanged();
    void sweepDurationChanged();
    void colorChanged();
    void isInViewChanged();

protected:
    void itemChange(ItemChange change, const ItemChangeData &value) override;

private:
    void sweep();
    void show(double progress);
    void settle();
    void redraw();
    bool isSeen() const;
    void rest();
    void wake();

    double m_progress = 0;
    double m_shown = 0;
    int m_sweepDuration = 0;
    double m_sweepStart = 0;
    QElapsedTimer m_sweepTime;
    QTimer m_sweep;
    QColor m_color;
    bool m_isInView = true;
    // What it would do, and show, if it were seen.
    bool m_isTurning = false;
    bool m_isOutdated = false;
    QMetaObject::Connection m_nextFrame;
};

} // namespace Qorvane
