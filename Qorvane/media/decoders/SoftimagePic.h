#pragma once

#include "media/decoders/ByteSource.h"
#include "media/decoders/DecodeRequest.h"

#include <QImage>
#include <QString>

#include <optional>

namespace Qorvane {

/// Decodes a Softimage PIC: channels in packets, each plain or run-length coded, row by row. No library of
/// ours reads it.
std::optional<QImage> decodeSoftimagePic(const ByteSource &bytes, const DecodeRequest &request,
                                         QString &reason);

} // namespace Qorvane
