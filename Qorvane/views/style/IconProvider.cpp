#include "views/style/IconProvider.h"

#include <QColor>
#include <QFile>
#include <QPainter>
#include <QSvgRenderer>

namespace Qorvane {

namespace {

// The size the icons are drawn in; used where the caller names none.
constexpr QSize naturalSize(18, 18);
// Logical pixels; above what any control has. The icons of whole pages are larger.
constexpr int largeSize = 40;

} // namespace

IconProvider::IconProvider()
    : QQuickImageProvider(QQuickImageProvider::Image)
{
}

QImage IconProvider::requestImage(const QString &id, QSize *size, const QSize &requestedSize)
{
    const QStringList parts = id.split(QLatin1Char('/'));
    if (parts.size() != 3)
        return {};
    const QColor color(QLatin1Char('#') + parts.at(1));
    QFile file(QStringLiteral(":/icons/%1.svg").arg(parts.at(0)));
    if (!color.isValid() || !file.open(QIODevice::ReadOnly))
        return {};

    QByteArray drawing = file.readAll();
    drawing.replace("currentColor", color.name().toLatin1());
    // The line of a large drawing would grow as bold as a headline.
    if (parts.at(2).toInt() > largeSize)
        drawing.replace("stroke-width=\"1.6\"", "stroke-width=\"0.9\"");
    QSvgRenderer renderer(drawing);
    QImage image(requestedSize.isEmpty() ? naturalSize : requestedSize, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setOpacity(color.alphaF());
    renderer.render(&painter);
    *size = image.size();
    return image;
}

} // namespace Qorvane
