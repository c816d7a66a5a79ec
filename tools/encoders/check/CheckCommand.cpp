#include "encoders/check/CheckCommand.h"

#include "encoders/Console.h"
#include "encoders/LanguageRemark.h"
#include "encoders/QuietLog.h"
#include "encoders/check/FamilyCheck.h"
#include "encoders/import/ApartProcess.h"
#include "platform/Bundle.h"

#include <QFile>

#include <CLI/CLI.hpp>
#include <memory>

namespace Qorvane::Encoders {

namespace {

// What a family's check ends with, apart from codes that a process gives for reasons of its own.
constexpr int isSoundCode = 10;
constexpr int isAbsentCode = 11;
constexpr int isFaultyCode = 12;

int checkAndTell(Family family, const QStringList &directories, Console &console)
{
    const FamilyCheck check = checkFamily(family, directories);
    for (const QString &line : checkLines(check))
        console.print(line);
    console.finishProgress();
    return check.isSound() ? isSoundCode : check.isAbsent() ? isAbsentCode : isFaultyCode;
}

int run(const QStringList &directories, Console &console)
{
    const QuietLog quiet;
    console.print(directories.isEmpty()
                      ? QStringLiteral("There is no folder of encoders yet.")
                      : QStringLiteral("Looking in %1").arg(directories.join(QStringLiteral(", then "))));
    bool isAnySound = false;
    bool isAllSound = true;
    double done = 0;
    for (const Family family : {Family::openai, Family::chinese}) {
        console.showProgress(done, QStringLiteral("trying the encoders"));
        done += 0.5; // one family of two
        const ApartResult result = doneApart([&] { return checkAndTell(family, directories, console); });
        if (result.isInterrupted())
            return console.report(apartProblem(result));
        const int code = result.code.value_or(isFaultyCode);
        if (!result.code || code < isSoundCode || code > isFaultyCode) {
            FamilyCheck check = foundFamily(family, directories);
            check.selfTest = tl::unexpected(apartProblem(result));
            for (const QString &line : checkLines(check))
                console.print(line);
        }
        isAnySound |= code == isSoundCode;
        isAllSound &= code == isSoundCode || code == isAbsentCode;
    }
    console.finishProgress();
    if (!isAnySound)
        console.note(
            QStringLiteral("No pair can be searched with: install one with \"qorvane-encoders import\"."));
    if (const QString remark = languageRemark(directories); !remark.isEmpty())
        console.note(remark);
    return isAnySound && isAllSound ? ExitCode::success : ExitCode::failure;
}

} // namespace

void addCheckCommand(CLI::App &app, CommandBody &chosen)
{
    CLI::App *command = app.add_subcommand("check", "Say what is installed, whether it works, and how fast");
    const auto folder = std::make_shared<std::string>();
    command->add_option("folder", *folder, "Folder to look in, in place of where the application looks")
        ->check(CLI::ExistingDirectory)
        ->type_name("DIR");
    command->callback([folder, &chosen] {
        chosen = [folder](Console &console) {
            const QStringList directories = folder->empty() ? Bundle::resourceDirectories()
                                                            : QStringList{QFile::decodeName(folder->c_str())};
            return run(directories, console);
        };
    });
}

} // namespace Qorvane::Encoders
