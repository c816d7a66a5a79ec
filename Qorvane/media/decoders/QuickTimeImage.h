#pragma once

#include "media/decoders/ByteSource.h"
#include "media/decoders/DecodeRequest.h"

#include <QImage>
#include <QString>

#include <optional>

namespace Qorvane {

/// Decodes a QuickTime image file: atoms around the data of some still codec. Data that is a file of its own
/// kind (JPEG, PNG, TIFF, ...) goes to that kind's decoder, uncompressed RGB is read here; other codecs are
/// refused.
std::optional<QImage> decodeQuickTimeImage(const ByteSource &bytes, const DecodeRequest &request,
                                           QString &reason);

} // namespace Qorvane
