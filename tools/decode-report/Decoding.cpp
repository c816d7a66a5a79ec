#include "decode-report/Decoding.h"

#include "media/ImageSource.h"
#include "media/SupportedExtensions.h"
#include "media/VideoFrames.h"
#include "platform/FileUrl.h"

#include <QFileInfo>

#include <optional>

using Qorvane::FileUrl;
using Qorvane::ImageSource;

namespace {

constexpr int thumbnailSide = 800;
// Larger than any frame that is accepted, so that frames come at their own size.
constexpr int anySide = 100'000;

struct Result
{
    std::optional<QImage> image;
    QString description; ///< of the picture, or why there is none
};

Result decodeVideo(const QString &path, const DecodingOptions &options)
{
    Result result;
    const int side = options.isFullSize ? anySide : thumbnailSide;
    result.image = Qorvane::generateVideoFrame(path, side, &result.description);
    if (result.image)
        result.description = QStringLiteral("video");
    return result;
}

Result decodePicture(const QString &path, const DecodingOptions &options)
{
    Result result;
    const std::optional<ImageSource> source = ImageSource::open(path, &result.description);
    if (!source)
        return result;
    result.image = options.isFullSize ? source->fullImage(&result.description)
                                      : source->thumbnail(thumbnailSide, &result.description);
    if (result.image)
        result.description = QStringLiteral("%1 orientation %2")
                                 .arg(contentTypeName(source->contentType()))
                                 .arg(source->orientation());
    return result;
}

} // namespace

QByteArray decodeFile(const QString &path, const DecodingOptions &options, int index)
{
    const bool isVideo = Qorvane::isVideoFile(FileUrl::file(path));
    const Result result = isVideo ? decodeVideo(path, options) : decodePicture(path, options);
    if (!result.image)
        return '-' + result.description.toUtf8();
    if (!options.outputFolder.isEmpty())
        result.image->save(QStringLiteral("%1/%2-%3.png")
                               .arg(options.outputFolder)
                               .arg(index, 4, 10, QLatin1Char('0'))
                               .arg(QFileInfo(path).fileName()));
    return QStringLiteral("+%1 %2x%3")
        .arg(result.description)
        .arg(result.image->width())
        .arg(result.image->height())
        .toUtf8();
}
