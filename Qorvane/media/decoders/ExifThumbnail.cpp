#include "media/decoders/ExifThumbnail.h"

#include "media/decoders/MediaLibraries.h"

#include <exception>
#include <exiv2/exiv2.hpp>

namespace Qorvane {

QByteArray exifThumbnail(const QByteArray &exifBlock)
{
    if (exifBlock.isEmpty())
        return {};
    MediaLibraries::ensureReady();
    try {
        Exiv2::ExifData data;
        Exiv2::ExifParser::decode(data, reinterpret_cast<const Exiv2::byte *>(exifBlock.constData()),
                                  uint32_t(exifBlock.size()));
        const Exiv2::ExifThumbC thumbnail(data);
        if (std::string(thumbnail.mimeType()) != "image/jpeg")
            return {};
        const Exiv2::DataBuf buffer = thumbnail.copy();
#if EXIV2_TEST_VERSION(0, 28, 0)
        return QByteArray(buffer.c_str(), qsizetype(buffer.size()));
#else
        return QByteArray(reinterpret_cast<const char *>(buffer.pData_), qsizetype(buffer.size_));
#endif
    } catch (const std::exception &) {
        return {}; // damaged metadata is no reason to refuse the picture
    }
}

} // namespace Qorvane
