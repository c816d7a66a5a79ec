#pragma once

#include "media/ContentType.h"
#include "media/decoders/DecodeRequest.h"

#include <QImage>
#include <QString>

#include <optional>

namespace Qorvane {

class ByteSource;
class InputFile;

/// Decodes `file`, whose content is of `type`, with the decoder for it. May throw what libraries throw.
std::optional<QImage> decodeContent(const InputFile &file, ContentType type, const DecodeRequest &request,
                                    QString &reason);

/// The same for bytes that lie inside a file; kinds whose decoders open files themselves are refused.
std::optional<QImage> decodeContent(const ByteSource &bytes, ContentType type, const DecodeRequest &request,
                                    QString &reason);

} // namespace Qorvane
