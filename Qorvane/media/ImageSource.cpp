#include "media/ImageSource.h"

#include "media/decoders/DecoderDispatch.h"
#include "media/decoders/ExifOrientation.h"
#include "media/decoders/InputFile.h"

#include <exception>
#include <new>

namespace Qorvane {

namespace {

/// Every decoder's last resort: whatever a library throws ends here.
std::optional<QImage> decode(const InputFile &file, ContentType type, const DecodeRequest &request,
                             QString *error)
{
    QString reason;
    std::optional<QImage> image;
    try {
        image = decodeContent(file, type, request, reason);
    } catch (const std::bad_alloc &) {
        reason = QStringLiteral("out of memory");
    } catch (const std::exception &exception) {
        reason = QString::fromUtf8(exception.what());
    }
    if (image && image->isNull()) {
        reason = QStringLiteral("out of memory");
        image.reset();
    }
    if (!image && error)
        *error = QStringLiteral("%1: %2").arg(contentTypeName(type), reason);
    return image;
}

} // namespace

std::optional<ImageSource> ImageSource::open(const QString &path, QString *error)
{
    QString reason;
    auto file = InputFile::open(path, reason);
    if (!file) {
        if (error)
            *error = reason;
        return std::nullopt;
    }
    const auto type = Qorvane::contentType(*file, file->extension());
    if (!type) {
        if (error)
            *error = QStringLiteral("the content is of no known image format");
        return std::nullopt;
    }
    return ImageSource(std::move(file), *type);
}

ImageSource::ImageSource(std::shared_ptr<const InputFile> file, ContentType type)
    : m_file(std::move(file))
    , m_type(type)
{
}

std::optional<QImage> ImageSource::thumbnail(int maxPixelSize, QString *error) const
{
    DecodeRequest request;
    request.maxPixelSize = maxPixelSize;
    request.isPreviewAllowed = true;
    return decode(*m_file, m_type, request, error);
}

std::optional<QImage> ImageSource::boundedImage(int maxPixelSize, QString *error) const
{
    DecodeRequest request;
    request.maxPixelSize = maxPixelSize;
    return decode(*m_file, m_type, request, error);
}

std::optional<QImage> ImageSource::fullImage(QString *error) const
{
    return decode(*m_file, m_type, DecodeRequest(), error);
}

int ImageSource::orientation() const
{
    return exifOrientation(*m_file, m_type);
}

} // namespace Qorvane
