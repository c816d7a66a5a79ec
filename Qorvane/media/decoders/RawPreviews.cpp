#include "media/decoders/RawPreviews.h"

#include "media/decoders/DecoderDispatch.h"
#include "media/decoders/InputFile.h"
#include "media/decoders/JpegDecoder.h"
#include "media/decoders/MediaLibraries.h"

#include <algorithm>
#include <exception>
#include <exiv2/exiv2.hpp>

namespace Qorvane {

namespace {

/// Best first: those that cover from the smallest up, then the others from the largest down.
void sortByUse(Exiv2::PreviewPropertiesList &previews, int wanted)
{
    const auto side = [](const Exiv2::PreviewProperties &preview) {
        return qint64(std::max(preview.width_, preview.height_));
    };
    std::stable_sort(previews.begin(), previews.end(), [&](const auto &a, const auto &b) {
        const bool coversA = side(a) >= wanted;
        const bool coversB = side(b) >= wanted;
        if (coversA != coversB)
            return coversA;
        if (side(a) != side(b))
            return coversA == (side(a) < side(b));
        // A JPEG that a TIFF directory holds is listed as a JPEG and as a TIFF; the wrapping adds only doubt.
        return a.mimeType_ == "image/jpeg" && b.mimeType_ != "image/jpeg";
    });
}

std::optional<QImage> decodePreview(const Exiv2::PreviewImage &preview, const DecodeRequest &request)
{
    const MemoryBytes bytes(
        QByteArray(reinterpret_cast<const char *>(preview.pData()), qsizetype(preview.size())));
    DecodeRequest inner = request;
    inner.isPreviewAllowed = false;
    const auto type = contentType(bytes, {});
    QString unused;
    if (type == ContentType::jpeg)
        return decodeJpeg(bytes, inner, JpegTolerance::none, unused);
    if (type == ContentType::tiff)
        return decodeContent(bytes, *type, inner, unused);
    return std::nullopt;
}

} // namespace

std::optional<QImage> decodeListedPreview(const InputFile &file, const DecodeRequest &request)
{
    MediaLibraries::ensureReady();
    try {
        const auto image = Exiv2::ImageFactory::open(file.nativePath().toStdString());
        image->readMetadata();
        const Exiv2::PreviewManager manager(*image);
        Exiv2::PreviewPropertiesList previews = manager.getPreviewProperties();
        sortByUse(previews, request.maxPixelSize);
        for (const Exiv2::PreviewProperties &properties : previews) {
            if (request.deadline.hasExpired())
                return std::nullopt;
            const auto decoded = decodePreview(manager.getPreviewImage(properties), request);
            if (decoded && !decoded->isNull())
                return decoded;
        }
    } catch (const std::exception &) {
        return std::nullopt; // what Exiv2 can't read, LibRaw often can
    }
    return std::nullopt;
}

} // namespace Qorvane
