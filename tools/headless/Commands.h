#pragma once

#include "headless/CommandLine.h"

#include <QCoroTask>

namespace Qorvane {

/// Carries out what the command line asked for, on the GUI thread, and writes to standard output. The result
/// is the program's exit code: 0, or 1 after a failure that was told on standard error.
QCoro::Task<int> runCommand(HeadlessCommand command);

} // namespace Qorvane
