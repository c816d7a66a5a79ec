#include "views/style/IconProvider.h"

#include <QColor>
#include <QFile>
#include <QPainter>
#include <QSvgRenderer>

namespace Qorvane {

namespace {

// The size the icons are drawn in; used where the caller names none.
constexpr QSize naturalSize(18, 18);
// Physical pixels; above what a control needs on a screen of twice the density.
constexpr int largeSize = 40;

} // namespace

IconProvider::IconProvider()
    : QQuickImageProvider(QQuickImageProvider::Image)
{
}

QImage IconProvider::requestImage(const QString &id, QSize *size, const QSize &requestedSize)
{
    const qsizetype slash = id.lastIndexOf(QLatin1Char('/'));
    const QColor color(QLatin1Char('#') + id.mid(slash + 1));
    QFile file(QStringLiteral(":/icons/%1.svg").arg(id.left(slash)));
    if (slash < 0 || !color.isValid() || !file.open(QIODevice::ReadOnly))
        return {};

    QByteArray drawing = file.readAll();
    drawing.replace("currentColor", color.name().toLatin1());
    // The line of a large drawing would grow as bold as a headline.
    if (requestedSize.width() > largeSize)
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
