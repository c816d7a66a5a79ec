#include "encoders/import/ImportCommand.h"

#include "encoders/Console.h"
#include "encoders/QuietLog.h"
#include "encoders/import/ApartProcess.h"
#include "encoders/import/EncoderInstall.h"
#include "encoders/import/Importer.h"
#include "platform/Bundle.h"
#include "platform/Directories.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <CLI/CLI.hpp>
#include <memory>

namespace Qorvane::Encoders {

namespace {

struct ImportArguments
{
    std::vector<std::string> paths;
    std::string family;
    std::string destination;
};

void printLines(Console &console, const QString &heading, const QStringList &lines)
{
    for (const QString &line : lines)
        console.print(heading + QStringLiteral(": ") + line);
}

Outcome<ImportRequest> requestOf(const ImportArguments &arguments)
{
    ImportRequest request;
    for (const std::string &path : arguments.paths)
        request.paths.append(QFile::decodeName(path.c_str()));
    if (!arguments.family.empty())
        request.family = arguments.family == "chinese" ? Family::chinese : Family::openai;
    request.destination = QFile::decodeName(arguments.destination.c_str());
    if (request.destination.isEmpty()) {
        const auto data = Directories::applicationSupport();
        if (!data)
            return problem(QStringLiteral("a folder for your application data"), QStringLiteral("none"),
                           QStringLiteral("set HOME or XDG_DATA_HOME, or name a folder with --out"));
        request.destination = *data + QStringLiteral("/Qorvane/models");
    }
    request.vocabularyFolders = QStringList{request.destination} + Bundle::resourceDirectories();
    return request;
}

int importAndTell(const ImportRequest &request, Console &console)
{
    const auto report = [&] {
        const QuietLog quiet;
        return importEncoders(request, [&console](double fraction, const QString &activity) {
            console.showProgress(fraction, activity);
        });
    }();
    console.finishProgress();
    if (!report)
        return console.report(report.error());
    printLines(console, QStringLiteral("recognised"), report->recognised);
    printLines(console, QStringLiteral("adapted"), report->adapted);
    printLines(console, QStringLiteral("mind"), report->missing);
    console.print(QStringLiteral("self-test: vectors of %1 numbers, %2 of %3 drawings with their captions")
                      .arg(report->selfTest.dimension)
                      .arg(report->selfTest.ranked)
                      .arg(report->selfTest.pairs));
    console.print(
        QStringLiteral("installed in %1; pictures indexed with other encoders must be indexed again")
            .arg(request.destination));
    return ExitCode::success;
}

int runImport(const ImportArguments &arguments, Console &console)
{
    const auto request = requestOf(arguments);
    if (!request)
        return console.report(request.error());
    const bool wasThere = QFileInfo::exists(request->destination);
    const ApartResult result = doneApart([&] { return importAndTell(*request, console); });
    if (result.code)
        return *result.code;
    console.finishProgress();
    // What it took away comes back, and what it left behind goes, with the next beginning, which this is.
    if (const auto begun = EncoderInstall::begin(request->destination); !begun)
        console.note(begun.error().text());
    // Only when it is empty.
    if (!wasThere)
        QDir().rmdir(request->destination);
    return console.report(apartProblem(result));
}

} // namespace

void addImportCommand(CLI::App &app, CommandBody &chosen)
{
    const auto arguments = std::make_shared<ImportArguments>();
    CLI::App *command =
        app.add_subcommand("import", "Adapts a published CLIP model in ONNX form to Qorvane and installs it");
    command->add_option("PATH", arguments->paths, "Folder of the model, or its files")->required();
    command->add_option("--family", arguments->family, "Which family it is, when its vocabulary doesn't tell")
        ->check(CLI::IsMember({"chinese", "openai"}));
    command->add_option("--out", arguments->destination,
                        "Where to install it; $XDG_DATA_HOME/Qorvane/models if not given");
    command->callback([arguments, &chosen] {
        chosen = [arguments](Console &console) { return runImport(*arguments, console); };
    });
}

} // namespace Qorvane::Encoders
