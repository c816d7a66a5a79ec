#pragma once

#include "encoders/CommandLine.h"

namespace Qorvane::Encoders {

/// `compare PICTURES --captions TSV`: how well the installed pair finds the pictures of a labelled set.
void addCompareCommand(CLI::App &app, CommandBody &chosen);

} // namespace Qorvane::Encoders
