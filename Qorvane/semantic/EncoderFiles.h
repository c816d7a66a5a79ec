#pragma once

#include "platform/FileUrl.h"

#include <QString>

#include <optional>

namespace Qorvane {

/// Where the two encoders lie; nothing for one that isn't there.
struct EncoderFiles
{
    std::optional<FileUrl> vision;
    std::optional<FileUrl> text;

    friend bool operator==(const EncoderFiles &, const EncoderFiles &) = default;
};

/// The file of the encoder `name` among the program's resources; says in the log what was looked for and
/// found. Looks at the disk. Any thread.
std::optional<FileUrl> findModelURL(const QString &name);

/// The encoders of the family for the user's language, and in place of one that is missing the other
/// family's. Each is looked for on its own: with one file missing, the two can come out of different families
/// and their vectors then mean nothing to each other. That isn't checked. Threads as above.
EncoderFiles findEncoders(bool isChinese);

} // namespace Qorvane
