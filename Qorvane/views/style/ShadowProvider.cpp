#include "views/style/ShadowProvider.h"

#include <QColor>
#include <QPainter>

#include <cmath>

namespace Qorvane {

namespace {

// More than anything that floats has; an address may ask for anything.
constexpr double maximumRadius = 100;
constexpr int maximumLayers = 100;

// How far a layer reaches beyond what casts the shadow: further and further, so that the shadow fades out
// instead of ending.
double spread(int layer, int layerCount)
{
    return double(layer) * layer / layerCount;
}

} // namespace

ShadowProvider::ShadowProvider()
    : QQuickImageProvider(QQuickImageProvider::Image)
{
}

QImage ShadowProvider::requestImage(const QString &id, QSize *size, const QSize & /*requestedSize*/)
{
    const QStringList parts = id.split(u'/');
    if (parts.size() != 3)
        return {};
    const double radius = parts.at(0).toDouble();
    const int layerCount = parts.at(1).toInt();
    const QColor color(u'#' + parts.at(2));
    if (!(radius >= 0 && radius <= maximumRadius) || layerCount <= 0 || layerCount > maximumLayers ||
        !color.isValid())
        return {};

    const int border = int(std::ceil(radius + spread(layerCount - 1, layerCount)));
    QImage image(2 * border + 1, 2 * border + 1, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    const double inner = border - radius;
    for (int layer = 0; layer < layerCount; ++layer) {
        const double beyond = spread(layer, layerCount);
        const QRectF casting(inner, inner, image.width() - 2 * inner, image.height() - 2 * inner);
        painter.drawRoundedRect(casting.adjusted(-beyond, -beyond, beyond, beyond), radius + beyond,
                                radius + beyond);
    }
    *size = image.size();
    return image;
}

} // namespace Qorvane
