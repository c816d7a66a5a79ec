#pragma once

namespace Qorvane::MediaLibraries {

/// Brings the libraries that need it into a state in which any thread may use them, quietly: the first call
/// of the process does the work, others wait for it. To be called before any use of Exiv2, libvips,
/// ImageMagick or libav. Never throws.
void ensureReady();

} // namespace Qorvane::MediaLibraries
