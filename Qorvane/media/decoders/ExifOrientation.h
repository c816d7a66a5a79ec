#pragma once

#include "media/ContentType.h"

namespace Qorvane {

class InputFile;

/// The orientation, 1 to 8, in which the pictures decoded from `file` are to be shown; 1 when it says nothing
/// valid. Reads the metadata of the file.
int exifOrientation(const InputFile &file, ContentType type);

} // namespace Qorvane
