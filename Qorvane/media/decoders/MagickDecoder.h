#pragma once

#include "media/decoders/DecodeRequest.h"

#include <QImage>
#include <QString>

#include <optional>

namespace Qorvane {

class ByteSource;

/// Decodes with ImageMagick's coder of the name given (such as "PSD") and with no other: files must not be
/// able to reach the coders that run scripts, start programs or fetch addresses. The first picture, without
/// layers.
std::optional<QImage> decodeWithMagick(const ByteSource &bytes, const char *coder,
                                       const DecodeRequest &request, QString &reason);

} // namespace Qorvane
