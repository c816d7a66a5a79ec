#pragma once

#include "encoders/CommandLine.h"

namespace Qorvane::Encoders {

/// `starter --out DIR`: builds the starter pair; see `AddCommand`.
void addStarterCommand(CLI::App &app, CommandBody &chosen);

} // namespace Qorvane::Encoders
