#pragma once

#include "media/decoders/ByteSource.h"

#include <QByteArray>
#include <QSize>
#include <QString>

#include <optional>

namespace Qorvane {

/// The colour modes of the format, by its own numbers; any other value may stand in a file.
enum class PsdMode {
    bitmap = 0,
    gray = 1,
    indexed = 2,
    rgb = 3,
    cmyk = 4,
    multichannel = 7,
    duotone = 8,
    lab = 9,
};

/// Where things are in a PSD or PSB.
struct PsdLayout
{
    bool isLarge = false; ///< a PSB
    QSize size;
    int channels = 0;
    int bitsPerSample = 0;
    PsdMode mode = PsdMode::rgb;
    QByteArray palette; ///< 256 reds, 256 greens, 256 blues; in indexed pictures only
    QByteArray profile;
    qint64 thumbnailOffset = 0; ///< of a JPEG
    qint64 thumbnailSize = 0;   ///< 0 when there is none
    bool hasMergedPicture = true;
    bool hasTransparency = false; ///< the channel after the colours' is the merged picture's alpha
    qint64 picture = 0;           ///< where the merged picture begins, with its compression
};

/// Reads the headers of the sections one after the other and passes over what they hold. Nothing, with the
/// reason, for what is no PSD.
std::optional<PsdLayout> readPsdLayout(const ByteSource &bytes, QString &reason);

/// How many of the channels are colours in pictures of `mode` with `channels` in all.
int psdColourCount(PsdMode mode, int channels);

} // namespace Qorvane
