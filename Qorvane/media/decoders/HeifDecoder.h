#pragma once

#include "media/decoders/ByteSource.h"
#include "media/decoders/DecodeRequest.h"

#include <QImage>
#include <QString>

#include <optional>

namespace Qorvane {

/// Decodes the primary picture of a HEIC, HEIF or AVIF file, turned as the file says. With
/// `request.isPreviewAllowed` its embedded thumbnail goes first.
std::optional<QImage> decodeHeif(const ByteSource &bytes, const DecodeRequest &request, QString &reason);

} // namespace Qorvane
