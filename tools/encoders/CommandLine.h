#pragma once

#include <functional>

namespace CLI {
class App;
}

namespace Qorvane::Encoders {

class Console;

/// What the command that was named on the command line does; gives the program's exit code.
using CommandBody = std::function<int(Console &)>;

/// Puts a command's own arguments into `app`, and what it does into `chosen` when it is the one named.
///
/// A command XxxCommand declares `void addXxxCommand(CLI::App &app, CommandBody &chosen)`, which adds a
/// subcommand whose arguments live in a shared structure, and whose callback sets `chosen`. Nothing is done
/// while arguments are read.
using AddCommand = void (*)(CLI::App &app, CommandBody &chosen);

/// Reads the arguments, `argv[0]` being the program, and runs the command that they name. A QCoreApplication
/// must exist. Gives the exit code: 2 for arguments that make no sense.
int runCommandLine(int argc, const char *const *argv, Console &console);

} // namespace Qorvane::Encoders
