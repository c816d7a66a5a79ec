#include "views/pictures/PictureProvider.h"

#include "media/ImageSource.h"
#include "media/OrientedImage.h"
#include "media/SupportedExtensions.h"
#include "media/ThumbnailCache.h"
#include "platform/Log.h"
#include "views/pictures/NoPicture.h"
#include "views/pictures/ThumbnailQueue.h"
#include "views/pictures/ThumbnailResponse.h"

#include <algorithm>

namespace Qorvane {

namespace {

QImage pixelsOf(const std::optional<Image> &image)
{
    return image ? image->pixels() : QImage();
}

QImage boundedPicture(const QString &path, int maxPixelSize)
{
    QString error;
    const std::optional<ImageSource> source = ImageSource::open(path, &error);
    const std::optional<QImage> picture = source ? source->boundedImage(maxPixelSize, &error) : std::nullopt;
    if (!picture) {
        Log::line(QStringLiteral("no picture of %1: %2").arg(path, error));
        return {};
    }
    return orientedImage(*picture, quint32(source->orientation()));
}

} // namespace

PictureProvider::PictureProvider(Load load)
    : m_thumbnails(std::make_shared<ThumbnailQueue>(1))
    , m_fullPictures(std::make_shared<ThumbnailQueue>(1))
    , m_load(std::move(load))
{
}

QImage PictureProvider::loadPicture(Kind kind, const QString &path, int maxPixelSize)
{
    const FileUrl url = FileUrl::file(path);
    if (kind == Kind::thumbnail)
        return pixelsOf(ThumbnailCache::getThumbnail(url));
    if (isVideoFile(url))
        return pixelsOf(ThumbnailCache::generateVideoPreview(url));
    return boundedPicture(path, maxPixelSize);
}

QQuickImageResponse *PictureProvider::requestImageResponse(const QString &id, const QSize &requestedSize)
{
    const std::optional<PictureRequest> request = PictureRequest::fromId(id);
    const Kind kind = request ? request->kind : Kind::full;
    const std::shared_ptr<ThumbnailQueue> &queue = kind == Kind::thumbnail ? m_thumbnails : m_fullPictures;
    auto response = std::make_unique<ThumbnailResponse>(queue);
    if (!request) {
        response->slot()->deliver(clearPixel());
        return response.release(); // the engine owns it from here
    }
    const int maxPixelSize =
        std::max({requestedSize.width(), requestedSize.height(), ThumbnailCache::thumbnailSize});
    response->setTicket(
        queue->add(request->path, [load = m_load, slot = response->slot(), request = *request, maxPixelSize] {
            const QImage picture = load(request.kind, request.path, maxPixelSize);
            return [slot, picture = picture.isNull() ? clearPixel() : picture] { slot->deliver(picture); };
        }));
    return response.release();
}

} // namespace Qorvane
