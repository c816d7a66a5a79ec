#pragma once

#include "encoders/CommandLine.h"

namespace Qorvane::Encoders {

/// `check [DIR]`: what is installed, whether it works, and how fast.
void addCheckCommand(CLI::App &app, CommandBody &chosen);

} // namespace Qorvane::Encoders
