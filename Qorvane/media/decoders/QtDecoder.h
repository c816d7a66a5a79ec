#pragma once

#include "media/decoders/ByteSource.h"
#include "media/decoders/DecodeRequest.h"

#include <QImage>
#include <QString>

#include <optional>

namespace Qorvane {

/// Decodes with Qt's reader of the format named (such as "icns"), and with no other. Of several pictures it
/// takes the largest, which is what icons are kept for. Qt's readers can't be stopped half-way, so the pixels
/// they may be given are few.
std::optional<QImage> decodeWithQt(const ByteSource &bytes, const QByteArray &format,
                                   const DecodeRequest &request, QString &reason);

} // namespace Qorvane
