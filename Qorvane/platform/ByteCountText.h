#pragma once

#include "platform/Languages.h"

#include <QString>

namespace Qorvane {

/// The size of a file as people read it: 1,000 bytes are a KB; bytes and KB without decimals, MB with at
/// most one, GB (the largest unit) with at most two. "Zero KB", "1 byte", "999 bytes", "1 KB", "1.5 MB",
/// "2.25 GB" in "en_US". A size that would round up to 1,000 of its unit is told in the next.
/// `bytes` isn't negative. Any thread.
QString byteCountText(qint64 bytes,
                      const QString &localeName = Languages::localeName(Languages::Aspect::numbers));

} // namespace Qorvane
