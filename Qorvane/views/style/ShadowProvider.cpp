#include "views/style/ShadowProvider.h"

#include <QColor>
#include <QPainter>

#include <array>
#include <cmath>
#include <optional>

namespace Qorvane {

namespace {

// More than anything that floats has; an address may ask for anything.
constexpr double maximumRadius = 100;
constexpr int maximumLayers = 100;
constexpr double maximumReach = 100;
constexpr double maximumScale = 8;
constexpr int maximumSide = 8'192;

struct Shadow
{
    double radius = 0;
    int layers = 0;
    double reach = 0;
    QSize size; ///< in physical pixels
    double scale = 1;
    QColor color;
};

std::optional<Shadow> shadowNamed(const QString &id)
{
    const QStringList parts = id.split(u'/');
    if (parts.size() != 7)
        return std::nullopt;
    Shadow shadow{parts.at(0).toDouble(), parts.at(1).toInt(),       parts.at(2).toDouble(), {},
                  parts.at(5).toDouble(), QColor(u'#' + parts.at(6))};
    const QSizeF size = QSizeF(parts.at(3).toInt(), parts.at(4).toInt()) * shadow.scale;
    const bool isOne = shadow.radius >= 0 && shadow.radius <= maximumRadius && shadow.layers > 0 &&
                       shadow.layers <= maximumLayers && shadow.reach >= 0 && shadow.reach <= maximumReach &&
                       shadow.scale > 0 && shadow.scale <= maximumScale && size.width() >= 1 &&
                       size.height() >= 1 && size.width() <= maximumSide && size.height() <= maximumSide &&
                       shadow.color.isValid();
    if (!isOne)
        return std::nullopt;
    shadow.size = size.toSize();
    return shadow;
}

// How far a layer reaches beyond what casts the shadow: further and further, so that the shadow fades out
// instead of ending.
double spread(int layer, int layerCount)
{
    return double(layer) * layer / layerCount;
}

QImage layersOver(const Shadow &shadow, QSize size)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(shadow.color);
    painter.scale(shadow.scale, shadow.scale);
    const QRectF whole({}, QSizeF(size) / shadow.scale);
    for (int layer = 0; layer < shadow.layers; ++layer) {
        const double beyond = spread(layer, shadow.layers);
        const double margin = shadow.reach - beyond;
        painter.drawRoundedRect(whole.adjusted(margin, margin, -margin, -margin), shadow.radius + beyond,
                                shadow.radius + beyond);
    }
    return image;
}

// `patch` with its middle line and column drawn out.
QImage stretched(const QImage &patch, int border, QSize size)
{
    QImage whole(size, patch.format());
    QPainter painter(&whole);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    const std::array from{0, border, border + 1, patch.width()};
    const std::array toX{0, border, size.width() - border, size.width()};
    const std::array toY{0, border, size.height() - border, size.height()};
    for (size_t row = 0; row < 3; ++row) {
        for (size_t column = 0; column < 3; ++column)
            painter.drawImage(
                QRect(QPoint(toX[column], toY[row]), QPoint(toX[column + 1] - 1, toY[row + 1] - 1)), patch,
                QRect(QPoint(from[column], from[row]), QPoint(from[column + 1] - 1, from[row + 1] - 1)));
    }
    return whole;
}

} // namespace

ShadowProvider::ShadowProvider()
    : QQuickImageProvider(QQuickImageProvider::Image)
{
}

QImage ShadowProvider::requestImage(const QString &id, QSize *size, const QSize & /*requestedSize*/)
{
    const std::optional<Shadow> shadow = shadowNamed(id);
    if (!shadow)
        return {};
    *size = shadow->size;
    // Layers are drawn over the smallest picture that has all of the edge: over a whole dialog they would
    // take longer than a frame.
    const int border = int(std::ceil((shadow->radius + shadow->reach) * shadow->scale));
    const int side = 2 * border + 1;
    if (size->width() < side || size->height() < side)
        return layersOver(*shadow, *size);
    return stretched(layersOver(*shadow, QSize(side, side)), border, *size);
}

} // namespace Qorvane
