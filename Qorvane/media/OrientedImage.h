#pragma once

#include "platform/FileUrl.h"

#include <QImage>

namespace Qorvane {

/// Redraws `source` (W by H pixels) for an EXIF orientation of 1 to 8: H wide and W high for 5 to 8, else W
/// by H; 8 bits per component, premultiplied, in the source's colour space or sRGB when it has none.
///
/// For 5 to 8 the picture is drawn into a rectangle of H by W, squeezed to it before it is turned, and the
/// quarter turns go by this program's own table: part of the picture, for 7 all of it, may fall outside, and
/// what it doesn't cover stays transparent. That is settled behaviour, and the embeddings in existing
/// libraries were computed from it.
///
/// The source comes back unchanged when it is null or the memory can't be had. Any other orientation is a
/// programming error that ends the program. Any thread.
QImage orientedImage(const QImage &source, quint32 orientation);

/// The orientation that a picture file carries, 1 to 8; 1 when it carries none, can't be read, or its decoder
/// has already turned the pixels. Reads the disk. Any thread but the GUI's.
quint32 readOrientation(const FileUrl &file);

} // namespace Qorvane
