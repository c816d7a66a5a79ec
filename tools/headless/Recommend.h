#pragma once

#include "headless/CommandLine.h"

#include <QCoroTask>

namespace Qorvane {

/// Prints for each of the command's files the tags recommended for it, as the library knows it: of its own
/// tags and the predefined ones, without those that the file has. Fails when the encoders or a file's picture
/// are missing. GUI thread.
QCoro::Task<int> runRecommend(HeadlessCommand command);

} // namespace Qorvane
