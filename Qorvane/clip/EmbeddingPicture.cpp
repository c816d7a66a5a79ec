#include "clip/EmbeddingPicture.h"

#include "media/ImageDestination.h"
#include "media/ImageSource.h"
#include "media/ThumbnailCache.h"
#include "media/ThumbnailPaths.h"
#include "media/WholeFile.h"
#include "platform/FileAttributes.h"

namespace Qorvane {

namespace {

// The thumbnails' own quality; see media/ThumbnailCache.
constexpr double thumbnailCompressionFactor = 0.9;

} // namespace

std::optional<Image> embeddingPicture(const FileUrl &file)
{
    const auto thumbnail = thumbnailURL(file);
    if (thumbnail && fileExists(thumbnail->path())) {
        Image image = Image::fromFile(thumbnail->path());
        if (!image.isNull())
            return image;
    }
    return makeThumbnail(file);
}

std::optional<Image> makeThumbnail(const FileUrl &file)
{
    const auto source = ImageSource::open(file.path());
    if (!source)
        return std::nullopt;
    const auto pixels = source->thumbnail(ThumbnailCache::thumbnailSize);
    if (!pixels)
        return std::nullopt;
    const auto bytes = jpegRepresentation(*pixels, thumbnailCompressionFactor);
    const auto target = thumbnailURL(file);
    if (!bytes || !target || !writeWholeFile(target->path(), *bytes))
        return std::nullopt;
    return Image(*pixels);
}

} // namespace Qorvane
