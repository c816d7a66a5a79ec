#pragma once

#include "media/decoders/DecodeRequest.h"

#include <QImage>

#include <optional>

namespace Qorvane {

class InputFile;

/// The best of the previews that the file's metadata lists (Exiv2's reading): the smallest that covers the
/// size asked for, else the largest, else whichever decodes. Nothing when none does.
std::optional<QImage> decodeListedPreview(const InputFile &file, const DecodeRequest &request);

} // namespace Qorvane
