#pragma once

#include "media/decoders/ByteSource.h"

namespace Qorvane::TiffDirectory {

/// Whether a file that begins like a TIFF is a camera's raw file, by the tags of its first directory: a DNG
/// version, or a sensor's colour filter in place of a colour model. Cameras' TIFFs whose first picture is a
/// reduced preview of sub-pictures count too. Reads the first directory only.
bool describesRawFile(const ByteSource &bytes);

/// Whether all strips and tiles that the first directory names lie within the file. True for a BigTIFF, which
/// isn't looked at.
bool holdsItsData(const ByteSource &bytes);

} // namespace Qorvane::TiffDirectory
