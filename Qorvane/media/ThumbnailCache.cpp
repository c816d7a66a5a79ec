#include "media/ThumbnailCache.h"

#include "media/ImageDestination.h"
#include "media/ImageSource.h"
#include "media/OrientedImage.h"
#include "media/SupportedExtensions.h"
#include "media/ThumbnailPaths.h"
#include "media/VideoFrames.h"
#include "media/WholeFile.h"
#include "platform/FileAttributes.h"
#include "platform/Log.h"
#include "platform/MainQueue.h"
#include "platform/QualityOfService.h"

#include <QSemaphore>
#include <QThread>

#include <algorithm>

namespace Qorvane::ThumbnailCache {

namespace {

constexpr double thumbnailQuality = 0.9;

/// One of as many places as there are cores, held while a file is decoded, but not while the result is
/// written. Every run of the pipeline and every visible cell may ask at once; without this their decodes
/// would pile up in memory and finish no sooner.
///
/// Weakened threads have places of their own: one of them holds its place for as long as the scheduler lets
/// it, and on a busy machine a visible cell would wait for that.
class DecodingPlace
{
public:
    DecodingPlace() { m_places.acquire(); }
    ~DecodingPlace() { m_places.release(); }
    DecodingPlace(const DecodingPlace &) = delete;
    DecodingPlace &operator=(const DecodingPlace &) = delete;

private:
    static QSemaphore &places()
    {
        static const int count = std::max(1, QThread::idealThreadCount());
        static QSemaphore urgent(count);
        static QSemaphore weakened(count);
        return qualityOfCurrentThread() == QualityOfService::userInitiated ? urgent : weakened;
    }

    QSemaphore &m_places = places();
};

// What can't be encoded or written is let go without a word: the caller sees whether the file is there.
void store(const QImage &image, const std::optional<FileUrl> &url)
{
    if (!url)
        return;
    if (const std::optional<QByteArray> data = jpegRepresentation(image, thumbnailQuality))
        writeWholeFile(url->path(), *data);
}

std::optional<QImage> orientedThumbnail(const QString &path, QString *error)
{
    const DecodingPlace place;
    const std::optional<ImageSource> source = ImageSource::open(path, error);
    if (!source)
        return std::nullopt;
    const std::optional<QImage> thumbnail = source->thumbnail(thumbnailSize, error);
    if (!thumbnail)
        return std::nullopt;
    return orientedImage(*thumbnail, quint32(source->orientation()));
}

std::optional<QImage> boundedFrame(const QString &path, int maxSize, QString *error)
{
    // The GUI thread is refused below and must not wait for a place to hear so.
    std::optional<DecodingPlace> place;
    if (!MainQueue::isCurrent())
        place.emplace();
    return generateVideoFrame(path, maxSize, error);
}

// `purpose` is "thumbnail" or "preview".
std::optional<QImage> videoFrame(const FileUrl &file, int maxSize, const char *purpose)
{
    QString error;
    const std::optional<QImage> frame = boundedFrame(file.path(), maxSize, &error);
    if (!frame) {
        Log::line(QStringLiteral("Failed to generate video %1 for %2: %3")
                      .arg(QLatin1String(purpose), file.lastPathComponent(),
                           error.isEmpty() ? QStringLiteral("Unknown error") : error));
    }
    return frame;
}

} // namespace

std::optional<Image> getThumbnail(const FileUrl &file)
{
    if (const std::optional<FileUrl> url = thumbnailURL(file)) {
        // The file's existence is the whole check. An empty one can be told from here to be no picture.
        if (const std::optional<FileAttributes> cached = fileAttributes(url->path()))
            return cached->size > 0 ? std::optional(Image::fromFile(url->path())) : std::nullopt;
    }
    return isVideoFile(file) ? generateVideoThumbnail(file) : makeThumbnail(file);
}

std::optional<Image> makeThumbnail(const FileUrl &file)
{
    QString error;
    const std::optional<QImage> image = orientedThumbnail(file.path(), &error);
    if (!image) {
        Log::line(QStringLiteral("❌ 缩略图生成失败: %1: %2").arg(file.lastPathComponent(), error));
        return std::nullopt;
    }
    const std::optional<FileUrl> url = thumbnailURL(file);
    store(*image, url);
    return url && fileExists(url->path()) ? Image::fromFile(url->path()) : Image(*image);
}

std::optional<Image> generateVideoThumbnail(const FileUrl &file)
{
    const std::optional<QImage> frame = videoFrame(file, thumbnailSize, "thumbnail");
    if (!frame)
        return std::nullopt;
    const std::optional<FileUrl> url = thumbnailURL(file);
    store(*frame, url);
    return url && fileExists(url->path()) ? std::optional(Image::fromFile(url->path())) : std::nullopt;
}

std::optional<Image> generateVideoPreview(const FileUrl &file)
{
    const std::optional<QImage> frame = videoFrame(file, previewSize, "preview");
    return frame ? std::optional(Image(*frame)) : std::nullopt;
}

std::optional<Image> getPreviewImage(const FileUrl &file)
{
    if (isVideoFile(file))
        return generateVideoPreview(file);
    Log::line(QStringLiteral(
        "⚠️ getPreviewImage called for image file - consider using getImageForDisplay() instead"));
    return std::nullopt;
}

} // namespace Qorvane::ThumbnailCache
