#pragma once

#include "encoders/CommandLine.h"

namespace Qorvane::Encoders {

/// `import PATH... [--family chinese|openai] [--out DIR]`.
void addImportCommand(CLI::App &app, CommandBody &chosen);

} // namespace Qorvane::Encoders
