#include "views/pictures/ThumbnailProvider.h"

#include "media/ThumbnailCache.h"
#include "views/pictures/PictureQueue.h"
#include "views/pictures/PictureResponse.h"
#include "views/pictures/ThumbnailUrl.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>

namespace Qorvane {

QImage fittedThumbnail(const QImage &picture, QSize size, double radius)
{
    if (picture.isNull() || size.isEmpty())
        return {};
    const QImage covering = picture.scaled(size, Qt::KeepAspectRatioByExpanding, Qt::SmoothTransformation);
    const QRect middle(QPoint((covering.width() - size.width()) / 2, (covering.height() - size.height()) / 2),
                       size);

    QImage cell(size, QImage::Format_ARGB32_Premultiplied);
    cell.fill(Qt::transparent);
    QPainter painter(&cell);
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath corners;
    corners.addRoundedRect(QRectF(cell.rect()), radius, radius);
    // A brush rather than a clip path: clip edges aren't smoothed.
    QBrush brush(covering);
    brush.setTransform(QTransform::fromTranslate(-middle.x(), -middle.y()));
    painter.fillPath(corners, brush);
    return cell;
}

ThumbnailProvider::ThumbnailProvider(std::shared_ptr<PictureQueue> queue, Load load)
    : m_queue(std::move(queue))
    , m_load(std::move(load))
{
}

QImage ThumbnailProvider::loadThumbnail(const QString &path)
{
    const auto thumbnail = ThumbnailCache::getThumbnail(FileUrl::file(path));
    return thumbnail ? thumbnail->pixels() : QImage();
}

QQuickImageResponse *ThumbnailProvider::requestImageResponse(const QString &id, const QSize &requestedSize)
{
    const std::optional<ThumbnailRequest> request = ThumbnailRequest::fromId(id);
    if (!request)
        return PictureResponse::withoutPicture().release(); // the engine owns it from here
    const QSize size = requestedSize.isEmpty() ? request->size : requestedSize;
    // The engine asks in physical pixels; the corners grow with them.
    const double scale = double(size.width()) / std::max(1, request->size.width());
    return PictureResponse::to(m_queue, request->path,
                               [load = m_load, path = request->path, size, radius = request->radius * scale] {
                                   return fittedThumbnail(load(path), size, radius);
                               })
        .release();
}

} // namespace Qorvane
