#include "app/DrawnPictures.h"

#include <QPainter>
#include <QPolygonF>
#include <QtMath>

namespace Qorvane {

namespace {

constexpr int side = 640;

QImage canvas(QColor ground)
{
    QImage image(side, side, QImage::Format_RGB32);
    image.fill(ground);
    return image;
}

// A line of a clock's face: from one distance to another off the middle, at `degrees` past twelve.
void drawRay(QPainter &painter, double degrees, double from, double to, double width)
{
    const double angle = qDegreesToRadians(degrees);
    const QPointF direction(std::sin(angle), -std::cos(angle));
    const QPointF middle(side / 2.0, side / 2.0);
    painter.setPen(QPen(QColor(20, 20, 20), width));
    painter.drawLine(middle + from * direction, middle + to * direction);
}

} // namespace

QImage drawnClock()
{
    QImage image = canvas(Qt::white);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(30, 30, 30), 18));
    painter.setBrush(QColor(250, 248, 240));
    painter.drawEllipse(QPointF(side / 2.0, side / 2.0), 260, 260);
    constexpr int minutes = 60;
    for (int minute = 0; minute < minutes; ++minute) {
        const bool isHour = minute % 5 == 0;
        drawRay(painter, minute * 6, isHour ? 215 : 228, 242, isHour ? 8 : 3);
    }
    drawRay(painter, 305, -20, 130, 14);
    drawRay(painter, 60, -30, 200, 9);
    return image;
}

QImage drawnTrafficLight()
{
    QImage image = canvas(QColor(120, 170, 220));
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(60, 60, 60));
    painter.drawRect(300, 420, 40, 220);
    painter.setBrush(QColor(25, 25, 25));
    painter.drawRoundedRect(220, 40, 200, 420, 30, 30);
    painter.setBrush(QColor(235, 45, 30));
    painter.drawEllipse(QPointF(320, 115), 55, 55);
    painter.setBrush(QColor(70, 60, 10));
    painter.drawEllipse(QPointF(320, 250), 55, 55);
    painter.setBrush(QColor(10, 60, 25));
    painter.drawEllipse(QPointF(320, 385), 55, 55);
    return image;
}

QImage drawnCrossword()
{
    QImage image = canvas(Qt::white);
    QPainter painter(&image);
    painter.setPen(QPen(Qt::black, 2));
    constexpr int cells = 13;
    constexpr int cell = 48;
    for (int y = 0; y < cells; ++y) {
        for (int x = 0; x < cells; ++x) {
            painter.setBrush(x * 7 % 4 == 1 && y * 5 % 3 == 1 ? Qt::black : Qt::white);
            painter.drawRect(8 + x * cell, 8 + y * cell, cell, cell);
        }
    }
    return image;
}

QImage drawnHoneycomb()
{
    QImage image = canvas(QColor(150, 90, 10));
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(120, 70, 5), 5));
    painter.setBrush(QColor(235, 165, 40));
    for (int row = 0; row < 12; ++row) {
        for (int column = 0; column < 10; ++column) {
            const QPointF middle(column * 72 + (row % 2) * 36, row * 62);
            QPolygonF cell;
            for (int corner = 0; corner < 6; ++corner) {
                const double angle = qDegreesToRadians(corner * 60.0);
                cell.append(middle + 38 * QPointF(std::sin(angle), std::cos(angle)));
            }
            painter.drawPolygon(cell);
        }
    }
    return image;
}

} // namespace Qorvane
