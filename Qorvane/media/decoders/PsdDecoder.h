#pragma once

#include "media/decoders/ByteSource.h"
#include "media/decoders/DecodeRequest.h"

#include <QImage>
#include <QString>

#include <optional>

namespace Qorvane {

/// Decodes the merged picture of a PSD or PSB without looking at its layers, row by row and reduced while it
/// is read, so that neither the file nor its full size need fit into memory. With `request.isPreviewAllowed`
/// the file's own thumbnail goes first; it is also what is left where the merged picture is damaged. Rare
/// kinds (32 bits, Lab, saved without a merged picture) are ImageMagick's.
std::optional<QImage> decodePsd(const ByteSource &bytes, const DecodeRequest &request, QString &reason);

} // namespace Qorvane
