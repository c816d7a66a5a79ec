#pragma once

#include "media/decoders/DecodeRequest.h"

#include <QImage>
#include <QString>

#include <optional>

namespace Qorvane {

class InputFile;

/// Decodes a camera's raw file. With `request.isPreviewAllowed` the smallest embedded preview that covers the
/// size asked for goes first, else the largest; the sensor's data is developed where there is none or the
/// picture itself is wanted, at half size where that covers. Always unrotated.
std::optional<QImage> decodeRaw(const InputFile &file, const DecodeRequest &request, QString &reason);

/// The EXIF orientation that the raw file's own structures ask for, where its EXIF is silent; 1 when they
/// don't.
int rawOrientation(const InputFile &file);

} // namespace Qorvane
