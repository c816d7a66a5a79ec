#include "views/style/ProgressRing.h"

#include <QPainter>

#include <algorithm>

namespace Qorvane {

namespace {

constexpr double lineWidth = 2;
// The part still to do, drawn faintly in the same colour.
constexpr double trackOpacity = 0.3;
constexpr double smallestShare = 0.02;
// QPainter counts arcs in sixteenths of a degree, anticlockwise from three o'clock.
constexpr int fullCircle = 360 * 16;
constexpr int top = 90 * 16;

} // namespace

ProgressRing::ProgressRing(QQuickItem *parent)
    : QQuickPaintedItem(parent)
{
    setAntialiasing(true);
}

void ProgressRing::setProgress(double progress)
{
    if (m_progress == progress)
        return;
    m_progress = progress;
    Q_EMIT progressChanged();
    update();
}

void ProgressRing::setColor(const QColor &color)
{
    if (m_color == color)
        return;
    m_color = color;
    Q_EMIT colorChanged();
    update();
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
    painter->drawArc(circle, top, -int(fullCircle * drawnShare(m_progress)));
}

} // namespace Qorvane
