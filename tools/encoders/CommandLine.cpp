#include "encoders/CommandLine.h"

#include "encoders/Console.h"
#include "encoders/check/CheckCommand.h"
#include "encoders/compare/CompareCommand.h"
#include "encoders/import/ImportCommand.h"
#include "encoders/starter/StarterCommand.h"

#include <CLI/CLI.hpp>
#include <array>
#include <sstream>

namespace Qorvane::Encoders {

namespace {

// In the order of the help text.
constexpr std::array commands{
    AddCommand{addImportCommand},
    AddCommand{addCheckCommand},
    AddCommand{addStarterCommand},
    AddCommand{addCompareCommand},
};

// Help and version count as success; everything else that the parser throws is a wrong argument.
int answer(const CLI::App &app, const CLI::ParseError &error, Console &console)
{
    std::ostringstream results;
    std::ostringstream messages;
    const int code = app.exit(error, results, messages);
    const auto trimmed = [](const std::ostringstream &text) {
        return QString::fromStdString(text.str()).trimmed();
    };
    if (!results.str().empty())
        console.print(trimmed(results));
    if (!messages.str().empty())
        console.note(trimmed(messages));
    return code == ExitCode::success ? ExitCode::success : ExitCode::usage;
}

} // namespace

int runCommandLine(int argc, const char *const *argv, Console &console)
{
    CLI::App app{"Makes, imports and examines the encoders that Qorvane searches with.", "qorvane-encoders"};
    app.set_version_flag("--version", QORVANE_VERSION);
    app.set_help_all_flag("--help-all", "Print the help of every command");
    app.require_subcommand(1);
    CommandBody chosen;
    for (const AddCommand add : commands)
        add(app, chosen);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        return answer(app, error, console);
    }
    return chosen(console);
}

} // namespace Qorvane::Encoders
