#pragma once

#include "media/ContentType.h"
#include "media/decoders/ByteSource.h"
#include "media/decoders/DecodeRequest.h"

#include <QImage>
#include <QString>

#include <optional>

namespace Qorvane {

/// Decodes PNG, GIF, WebP, TIFF, PNM and Radiance HDR with libvips' own loader for the kind named,
/// never by its guess. The first page; profiles applied; pictures of more than 8 bits reduced, floating-point
/// ones by toneMapped(). Reads in strips, so that most pictures take far less memory than their pixels.
std::optional<QImage> decodeWithVips(const ByteSource &bytes, ContentType type, const DecodeRequest &request,
                                     QString &reason);

} // namespace Qorvane
