#include "media/decoders/ExifOrientation.h"

#include "media/decoders/ExifNumbers.h"
#include "media/decoders/InputFile.h"
#include "media/decoders/MediaLibraries.h"
#include "media/decoders/RawDecoder.h"
#include "media/decoders/X3fDecoder.h"

#include <exception>
#include <exiv2/exiv2.hpp>
#include <optional>

namespace Qorvane {

namespace {

std::optional<qint64> orientationTag(const InputFile &file)
{
    MediaLibraries::ensureReady();
    try {
        const auto image = Exiv2::ImageFactory::open(file.nativePath().toStdString());
        image->readMetadata();
        return firstNumber(image->exifData(), "Exif.Image.Orientation");
    } catch (const std::exception &) {
        return std::nullopt;
    }
}

/// Of these the decoder gives upright pictures, or their format has no orientation.
bool isAlwaysUpright(ContentType type)
{
    switch (type) {
    case ContentType::heif:
    case ContentType::gif:
    case ContentType::bmp:
    case ContentType::dib:
    case ContentType::icns:
    case ContentType::ico:
    case ContentType::cur:
    case ContentType::xbm:
    case ContentType::pict:
    case ContentType::softimagePic:
    case ContentType::qtif:
    case ContentType::sgi:
    case ContentType::tga:
    case ContentType::pnm:
    case ContentType::radianceHdr:
    case ContentType::flashPix:
        return true;
    case ContentType::jpeg:
    case ContentType::png:
    case ContentType::webp:
    case ContentType::tiff:
    case ContentType::raw:
    case ContentType::x3f:
    case ContentType::psd:
    case ContentType::jpeg2000:
        return false;
    }
    return true;
}

} // namespace

int exifOrientation(const InputFile &file, ContentType type)
{
    if (isAlwaysUpright(type))
        return 1;
    if (type == ContentType::x3f)
        return x3fOrientation(file);
    const auto tag = orientationTag(file);
    if (tag)
        return *tag >= 1 && *tag <= 8 ? int(*tag) : 1;
    return type == ContentType::raw ? rawOrientation(file) : 1;
}

} // namespace Qorvane
