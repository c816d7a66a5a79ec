#include "media/decoders/DecoderDispatch.h"

#include "media/decoders/InputFile.h"
#include "media/decoders/JpegDecoder.h"
#include "media/decoders/QtDecoder.h"

namespace Qorvane {

std::optional<QImage> decodeContent(const InputFile &file, ContentType type, const DecodeRequest &request,
                                    QString &reason)
{
    return decodeContent(static_cast<const ByteSource &>(file), type, request, reason);
}

std::optional<QImage> decodeContent(const ByteSource &bytes, ContentType type, const DecodeRequest &request,
                                    QString &reason)
{
    if (type == ContentType::jpeg)
        return decodeJpeg(bytes, request, JpegTolerance::cutPictures, reason);
    return decodeWithQt(bytes, contentTypeName(type).toLower().toLatin1(), request, reason);
}

} // namespace Qorvane
