#include "media/decoders/RawPreviews.h"

#include "media/decoders/ExifNumbers.h"
#include "media/decoders/InputFile.h"
#include "media/decoders/JpegDecoder.h"
#include "media/decoders/MediaLibraries.h"
#include "media/decoders/VipsDecoder.h"

#include <algorithm>
#include <exception>
#include <exiv2/exiv2.hpp>
#include <functional>
#include <vector>

namespace Qorvane {

namespace {

struct Candidate
{
    qint64 side = 0;
    std::function<std::optional<QImage>(const DecodeRequest &)> decode;
};

/// Best first: those that cover from the smallest up, then the others from the largest down.
void sortByUse(std::vector<Candidate> &candidates, int wanted)
{
    std::stable_sort(candidates.begin(), candidates.end(), [wanted](const Candidate &a, const Candidate &b) {
        const bool coversA = a.side >= wanted;
        const bool coversB = b.side >= wanted;
        if (coversA != coversB)
            return coversA;
        return coversA ? a.side < b.side : a.side > b.side;
    });
}

/// DNG keeps its previews as single JPEG strips of reduced pictures, which Exiv2 lists wrapped up as TIFFs
/// that no reader takes.
void appendJpegStrips(const InputFile &file, const Exiv2::ExifData &data, const QDeadlineTimer &deadline,
                      std::vector<Candidate> &candidates)
{
    constexpr qint64 jpegCompression = 7;
    constexpr qint64 reducedPicture = 1;
    for (const char *group : {"Image", "SubImage1", "SubImage2", "SubImage3", "SubImage4", "SubImage5"}) {
        const auto number = [&](const char *tag) {
            return firstNumber(data, std::string("Exif.") + group + "." + tag).value_or(-1);
        };
        const qint64 offset = number("StripOffsets");
        const qint64 size = number("StripByteCounts");
        if (number("Compression") != jpegCompression || number("NewSubfileType") != reducedPicture ||
            offset <= 0 || size <= 0)
            continue;
        const auto pixels = jpegSize(ByteRange(file, offset, size), deadline);
        if (!pixels)
            continue;
        candidates.push_back(
            {qMax(pixels->width(), pixels->height()), [&file, offset, size](const DecodeRequest &request) {
                 QString unused;
                 return decodeJpeg(ByteRange(file, offset, size), request, JpegTolerance::none, unused);
             }});
    }
}

std::optional<QImage> decodeListed(const Exiv2::PreviewImage &preview, const DecodeRequest &request)
{
    const MemoryBytes bytes(
        QByteArray(reinterpret_cast<const char *>(preview.pData()), qsizetype(preview.size())));
    const auto type = contentType(bytes, {});
    QString unused;
    if (type == ContentType::jpeg)
        return decodeJpeg(bytes, request, JpegTolerance::none, unused);
    if (type == ContentType::tiff)
        return decodeWithVips(bytes, *type, request, unused);
    return std::nullopt;
}

void appendListed(const Exiv2::PreviewManager &manager, std::vector<Candidate> &candidates)
{
    for (const Exiv2::PreviewProperties &properties : manager.getPreviewProperties()) {
        candidates.push_back({qint64(std::max(properties.width_, properties.height_)),
                              [&manager, properties](const DecodeRequest &request) {
                                  return decodeListed(manager.getPreviewImage(properties), request);
                              }});
    }
}

} // namespace

std::optional<QImage> decodeListedPreview(const InputFile &file, const DecodeRequest &request)
{
    MediaLibraries::ensureReady();
    DecodeRequest inner = request;
    inner.isPreviewAllowed = false; // a preview of the preview is none of the picture
    try {
        const auto image = Exiv2::ImageFactory::open(file.nativePath().toStdString());
        image->readMetadata();
        const Exiv2::PreviewManager manager(*image);
        std::vector<Candidate> candidates;
        appendJpegStrips(file, image->exifData(), request.deadline, candidates);
        appendListed(manager, candidates);
        sortByUse(candidates, request.maxPixelSize);
        for (const Candidate &candidate : candidates) {
            if (request.deadline.hasExpired())
                return std::nullopt;
            const auto decoded = candidate.decode(inner);
            if (decoded && !decoded->isNull())
                return decoded;
        }
    } catch (const std::exception &) {
        return std::nullopt; // what Exiv2 can't read, LibRaw often can
    }
    return std::nullopt;
}

} // namespace Qorvane
