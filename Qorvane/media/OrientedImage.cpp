#include "media/OrientedImage.h"

#include "media/ImageSource.h"

#include <QColorSpace>
#include <QTransform>

#include <algorithm>
#include <cmath>

namespace Qorvane {

namespace {

// From the drawing rectangle to the output of `cw` by `ch`, both with the origin at the bottom left and y
// upwards. Each step acts before those already there, which is how QTransform's own operations compose, and
// its angles turn from x to y, which is counter-clockwise with y upwards. `h` is the source's height.
QTransform drawingTransform(quint32 orientation, qreal cw, qreal ch, qreal h)
{
    QTransform transform;
    switch (orientation) {
    case 1:
        return transform;
    case 2:
        return transform.translate(cw, 0).scale(-1, 1);
    case 3:
        return transform.translate(cw, ch).rotate(180);
    case 4:
        return transform.translate(0, ch).scale(1, -1);
    case 5:
        return transform.translate(cw, ch).scale(-1, 1).rotate(-90);
    case 6:
        return transform.translate(cw, 0).rotate(90);
    case 7:
        return transform.scale(-1, 1).rotate(90).translate(-h, 0);
    case 8:
        return transform.translate(0, ch).rotate(-90);
    }
    qFatal("orientedImage: %u is no orientation", orientation);
}

// Copies the pixels of `drawn` to where `transform` takes them. It consists of quarter turns, mirrors and
// whole translations, so each pixel of `context` comes from exactly one pixel of `drawn`, or from none.
void drawPixels(const QImage &drawn, const QTransform &transform, QImage &context)
{
    const QTransform inverse = transform.inverted();
    // The centre of the output's top left pixel, and one step to the right and down, in `drawn`, with y
    // downwards.
    const QPointF corner = inverse.map(QPointF(0.5, context.height() - 0.5));
    const int left = int(std::floor(corner.x()));
    const int top = int(std::floor(drawn.height() - corner.y()));
    const int rightX = int(std::lround(inverse.m11()));
    const int rightY = int(std::lround(-inverse.m12()));
    const int downX = int(std::lround(-inverse.m21()));
    const int downY = int(std::lround(inverse.m22()));

    // A quarter turn reads columns and writes rows; in tiles of this side both stay in the first-level cache.
    constexpr int tile = 32;
    const auto pixels = reinterpret_cast<const QRgb *>(drawn.constBits());
    const qsizetype stride = drawn.bytesPerLine() / qsizetype(sizeof(QRgb));
    const qsizetype step = rightY * stride + rightX;
    const QRect bounds = drawn.rect();
    for (int tileY = 0; tileY < context.height(); tileY += tile) {
        for (int tileX = 0; tileX < context.width(); tileX += tile) {
            const int count = std::min(tile, context.width() - tileX);
            for (int row = tileY; row < std::min(tileY + tile, context.height()); ++row) {
                const QPoint first(left + tileX * rightX + row * downX, top + tileX * rightY + row * downY);
                const QPoint along(rightX, rightY);
                // The tile's row is a straight line in `drawn`, of which one stretch lies inside.
                int begin = 0;
                int end = count;
                while (begin < end && !bounds.contains(first + begin * along))
                    ++begin;
                while (begin < end && !bounds.contains(first + (end - 1) * along))
                    --end;
                const qsizetype start = first.y() * stride + first.x();
                auto line = reinterpret_cast<QRgb *>(context.scanLine(row)) + tileX;
                for (int column = begin; column < end; ++column)
                    line[column] = pixels[start + column * step];
            }
        }
    }
}

} // namespace

QImage orientedImage(const QImage &source, quint32 orientation)
{
    const bool isTurned = orientation >= 5 && orientation <= 8;
    const QSize size = isTurned ? source.size().transposed() : source.size();
    QImage context(size, QImage::Format_ARGB32_Premultiplied);
    if (context.isNull())
        return source;
    const QTransform transform = drawingTransform(orientation, size.width(), size.height(), source.height());

    // The rectangle drawn into has the output's size in both cases.
    QImage drawn = source.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    if (drawn.size() != size)
        drawn = drawn.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    if (drawn.isNull())
        return source;
    context.setColorSpace(source.colorSpace().isValid() ? source.colorSpace()
                                                        : QColorSpace(QColorSpace::SRgb));
    context.fill(Qt::transparent);
    drawPixels(drawn, transform, context);
    return context;
}

quint32 readOrientation(const FileUrl &file)
{
    const std::optional<ImageSource> source = ImageSource::open(file.path());
    return source ? quint32(source->orientation()) : 1;
}

} // namespace Qorvane
