#include "views/pictures/PictureProvider.h"

#include "media/ImageSource.h"
#include "media/OrientedImage.h"
#include "media/SupportedExtensions.h"
#include "media/ThumbnailCache.h"
#include "platform/Log.h"
#include "views/pictures/PictureQueue.h"
#include "views/pictures/PictureResponse.h"

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
    : m_thumbnails(std::make_shared<PictureQueue>(1))
    , m_fullPictures(std::make_shared<PictureQueue>(1))
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
    if (!request)
        return PictureResponse::withoutPicture().release(); // the engine owns it from here
    const int maxPixelSize =
        std::max({requestedSize.width(), requestedSize.height(), ThumbnailCache::thumbnailSize});
    return PictureResponse::to(request->kind == Kind::thumbnail ? m_thumbnails : m_fullPictures,
                               request->path,
                               [load = m_load, request = *request, maxPixelSize] {
                                   return load(request.kind, request.path, maxPixelSize);
                               })
        .release();
}

} // namespace Qorvane
