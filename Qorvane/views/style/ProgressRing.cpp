#include "views/style/ProgressRing.h"

#include <QPainter>
#include <QQuickWindow>

#include <algorithm>
#include <chrono>

namespace Qorvane {

namespace {

constexpr double lineWidth = 2;
// The part still to do, drawn faintly in the same colour.
constexpr double trackOpacity = 0.3;
constexpr double smallestShare = 0.02;
// QPainter counts arcs in sixteenths of a degree, anticlockwise from three o'clock.
constexpr int fullCircle = 360 * 16;
constexpr int top = 90 * 16;
// Half the frames of the screen: nobody sees more in so small a picture, and a run needs the time.
constexpr std::chrono::milliseconds step(33);

} // namespace

ProgressRing::ProgressRing(QQuickItem *parent)
    : QQuickPaintedItem(parent)
{
    setAntialiasing(true);
    m_sweep.setInterval(step);
    connect(&m_sweep, &QTimer::timeout, this, &ProgressRing::sweep);
}

void ProgressRing::setProgress(double progress)
{
    if (m_progress == progress)
        return;
    if (isSweeping())
        sweep(); // to where the ring would be now: the next turn begins there
    m_progress = progress;
    // Backwards only when another stage begins, or another row is drawn: nothing that has to be watched.
    if (isVisible() && sweepDuration() > 0 && m_progress > m_shown) {
        m_sweepStart = m_shown;
        m_sweepTime.start();
        m_isTurning = true;
        if (!isSeen())
            rest();
        else if (!isSweeping()) // reports that come faster than steps mustn't hold them back
            m_sweep.start();
    } else {
        settle();
    }
    Q_EMIT progressChanged();
}

void ProgressRing::setSweepDuration(int milliseconds)
{
    if (sweepDuration() == milliseconds)
        return;
    m_sweepDuration = milliseconds;
    if (milliseconds == 0)
        settle();
    Q_EMIT sweepDurationChanged();
}

void ProgressRing::itemChange(ItemChange change, const ItemChangeData &value)
{
    if (change == ItemVisibleHasChanged && !value.boolValue)
        settle();
    else if (change == ItemVisibleHasChanged || change == ItemSceneChange)
        wake();
    QQuickPaintedItem::itemChange(change, value);
}

void ProgressRing::setInView(bool isInView)
{
    if (m_isInView == isInView)
        return;
    m_isInView = isInView;
    if (isInView)
        wake();
    else
        rest();
    Q_EMIT isInViewChanged();
}

bool ProgressRing::isSeen() const
{
    // A minimised window may go on being drawn.
    return isVisible() && m_isInView &&
           (!window() || (window()->isExposed() && window()->visibility() != QWindow::Minimized));
}

void ProgressRing::rest()
{
    m_sweep.stop();
    // A window that is seen again is drawn, whatever hid it.
    if (window() && isVisible() && m_isInView && !m_nextFrame)
        m_nextFrame = connect(window(), &QQuickWindow::afterAnimating, this, &ProgressRing::wake);
}

void ProgressRing::wake()
{
    disconnect(m_nextFrame);
    m_nextFrame = {};
    if (!isSeen()) {
        rest();
        return;
    }
    if (m_isOutdated)
        redraw();
    if (m_isTurning && !isSweeping())
        m_sweep.start();
}

void ProgressRing::sweep()
{
    if (!isSeen()) {
        rest();
        return;
    }
    const double turn = double(m_sweepTime.elapsed() % m_sweepDuration) / m_sweepDuration;
    show(m_sweepStart + (m_progress - m_sweepStart) * turn);
}

void ProgressRing::settle()
{
    m_isTurning = false;
    m_sweep.stop();
    show(m_progress);
}

void ProgressRing::show(double progress)
{
    m_shown = progress;
    redraw();
}

void ProgressRing::redraw()
{
    // Each time costs the window a frame.
    m_isOutdated = !isSeen();
    if (!m_isOutdated)
        update();
    else if (!isSweeping())
        rest();
}

void ProgressRing::setColor(const QColor &color)
{
    if (m_color == color)
        return;
    m_color = color;
    Q_EMIT colorChanged();
    redraw();
}

double ProgressRing::drawnShare(double progress)
{
    return std::clamp(progress, smallestShare, 1.0);
}

void ProgressRing::paint(QPainter *painter)
{
    const double inset = lineWidth / 2;
    const QRectF circle = boundingRect().adjusted(inset, inset, -inset, -inset);
    QColor track = m_color;
    track.setAlphaF(float(trackOpacity));
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(QPen(track, lineWidth));
    painter->drawEllipse(circle);
    painter->setPen(QPen(m_color, lineWidth, Qt::SolidLine, Qt::RoundCap));
    painter->drawArc(circle, top, -int(fullCircle * drawnShare(m_shown)));
}

} // namespace Qorvane
