#include "views/pictures/ThumbnailProvider.h"

#include "media/ThumbnailCache.h"
#include "views/pictures/NoPicture.h"
#include "views/pictures/ThumbnailQueue.h"
#include "views/pictures/ThumbnailResponse.h"
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

ThumbnailProvider::ThumbnailProvider(std::shared_ptr<ThumbnailQueue> queue, Load load)
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
    auto response = std::make_unique<ThumbnailResponse>(m_queue);
    const std::optional<ThumbnailRequest> request = ThumbnailRequest::fromId(id);
    if (!request) {
        response->slot()->deliver(clearPixel());
        return response.release(); // the engine owns it from here
    }
    const QSize size = requestedSize.isEmpty() ? request->size : requestedSize;
    // The engine asks in physical pixels; the corners grow with them.
    const double scale = double(size.width()) / std::max(1, request->size.width());
    response->setTicket(
        m_queue->add(request->path, [load = m_load, slot = response->slot(), path = request->path, size,
                                     radius = request->radius * scale] {
            const QImage cell = fittedThumbnail(load(path), size, radius);
            return [slot, cell = cell.isNull() ? clearPixel() : cell] { slot->deliver(cell); };
        }));
    return response.release();
}

} // namespace Qorvane
