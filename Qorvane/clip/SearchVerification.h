#pragma once

#include "platform/FileUrl.h"

#include <QString>

#include <vector>

namespace Qorvane {

/// The log line that compares a picture's similarity as the store has it with one worked out anew from its
/// fresh vector `features`. Any thread.
QString verificationLine(const FileUrl &url, float storedSimilarity, const std::vector<float> &features,
                         const std::vector<float> &textVector);

} // namespace Qorvane
