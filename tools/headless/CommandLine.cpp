#include "headless/CommandLine.h"

#include "headless/TagCommandLine.h"

#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>

#include <array>
#include <optional>

namespace Qorvane {

namespace {

using Action = HeadlessCommand::Action;
using Result = std::variant<HeadlessCommand, CommandLineAnswer>;

struct ActionName
{
    const char *name;
    Action action;
};

constexpr std::array actionNames{
    ActionName{"add", Action::add},
    ActionName{"index", Action::index},
    ActionName{"search", Action::search},
    ActionName{"sheet", Action::sheet},
    ActionName{"status", Action::status},
    ActionName{"tags", Action::tags},
    ActionName{"tag", Action::tags},
    ActionName{"rate", Action::tags},
    ActionName{"recommend", Action::recommend},
};

const char usage[] =
    "Qorvane's library without a window.\n\n"
    "  index FOLDER...        put folders into the library and index them\n"
    "  add FOLDER...          put folders into the library only\n"
    "  search QUERY           list the pictures that match a text\n"
    "  sheet QUERY OUT.png    draw the matches as a contact sheet\n"
    "  sheet --all OUT.png    draw the whole library\n"
    "  status                 tell what the library holds\n"
    "  tags [BEGINNING]       list the tags in use, or suggest tags that begin so\n"
    "  tag add TAG FILE...    give pictures and videos a tag\n"
    "  tag remove TAG FILE... take it off them\n"
    "  tag rename OLD NEW FILE...\n"
    "                         turn one of their tags into another\n"
    "  tag delete TAG         take a tag off all files\n"
    "  tag show FILE...       tell their tags and stars\n"
    "  rate STARS FILE...     give them 1 to 5 stars, or none with \"clear\"\n"
    "  recommend PICTURE...   name the tags that go best with each, in the language of the locale";

// An option shared by the definition and the reading of its value.
struct Options
{
    QCommandLineOption all{QStringLiteral("all"), QStringLiteral("sheet: the whole library, not a search")};
    QCommandLineOption limit{{QStringLiteral("n"), QStringLiteral("limit")},
                             QStringLiteral("search, sheet: at most <count> pictures (20; with --all 200); "
                                            "tags BEGINNING, recommend: as many tags (20, 5)"),
                             QStringLiteral("count")};
    QCommandLineOption log{QStringLiteral("log"), QStringLiteral("write the program's log lines to <file>"),
                           QStringLiteral("file")};
    QCommandLineOption verbose{QStringLiteral("verbose"), QStringLiteral("show the program's log lines")};
};

// A sheet of a whole library has to stop somewhere; this many still make an image that viewers open.
constexpr int wholeLibraryLimit = 200;

// As many as the window recommends.
constexpr int recommendationLimit = 5;

CommandLineAnswer error(const QString &text)
{
    return {text, true};
}

std::optional<Action> actionNamed(const QString &name)
{
    for (const ActionName &entry : actionNames) {
        if (name == QLatin1String(entry.name))
            return entry.action;
    }
    return std::nullopt;
}

QString absolutePath(const QString &path)
{
    return QDir::cleanPath(QFileInfo(path).absoluteFilePath());
}

Result withFolders(HeadlessCommand command, const QStringList &operands)
{
    if (operands.isEmpty())
        return error(QStringLiteral("name at least one folder"));
    for (const QString &operand : operands) {
        const QString path = absolutePath(operand);
        if (!QFileInfo(path).isDir())
            return error(QStringLiteral("no such folder: %1").arg(operand));
        if (!command.folders.contains(path))
            command.folders.append(path);
    }
    return command;
}

// The picture of each is looked at when its turn comes.
Result withPictures(HeadlessCommand command, const QStringList &operands)
{
    if (operands.isEmpty())
        return error(QStringLiteral("name at least one picture"));
    for (const QString &operand : operands) {
        if (!QFileInfo(operand).isFile())
            return error(QStringLiteral("no such file: %1").arg(operand));
        const QString path = absolutePath(operand);
        if (!command.files.contains(path))
            command.files.append(path);
    }
    return command;
}

Result withQuery(HeadlessCommand command, const QStringList &operands)
{
    if (operands.isEmpty())
        return error(QStringLiteral("name what to search for"));
    // Unquoted words of a query arrive one by one.
    command.query = operands.join(u' ');
    return command;
}

Result withSheet(HeadlessCommand command, const QStringList &operands, bool isWholeLibrary)
{
    if (isWholeLibrary ? operands.size() != 1 : operands.size() < 2)
        return error(QStringLiteral("a sheet takes a query (or --all) and the file to write"));
    command.outputPath = absolutePath(operands.last());
    command.query = operands.mid(0, operands.size() - 1).join(u' ');
    return command;
}

Result withOperands(const HeadlessCommand &command, const QString &word, const QStringList &operands,
                    bool isWholeLibrary)
{
    switch (command.action) {
    case Action::add:
    case Action::index:
        return withFolders(command, operands);
    case Action::search:
        return withQuery(command, operands);
    case Action::sheet:
        return withSheet(command, operands, isWholeLibrary);
    case Action::status:
        if (!operands.isEmpty())
            return error(QStringLiteral("status takes no arguments"));
        return command;
    case Action::tags:
        return readTagCommand(command, word, operands);
    case Action::recommend:
        return withPictures(command, operands);
    }
    Q_UNREACHABLE();
}

} // namespace

Result readCommandLine(const QStringList &arguments)
{
    const Options options;
    QCommandLineParser parser;
    parser.setApplicationDescription(QString::fromLatin1(usage));
    const QCommandLineOption help = parser.addHelpOption();
    parser.addOptions({options.all, options.limit, options.log, options.verbose});
    parser.addPositionalArgument(QStringLiteral("command"), QStringLiteral("one of the above"));
    if (!parser.parse(arguments))
        return error(parser.errorText());
    if (parser.isSet(help))
        return CommandLineAnswer{parser.helpText(), false};

    QStringList operands = parser.positionalArguments();
    if (operands.isEmpty())
        return error(parser.helpText());
    const QString name = operands.takeFirst();
    const std::optional<Action> action = actionNamed(name);
    if (!action)
        return error(QStringLiteral("unknown command: %1").arg(name));

    HeadlessCommand command;
    command.action = *action;
    command.isVerbose = parser.isSet(options.verbose);
    if (parser.isSet(options.log))
        command.logPath = absolutePath(parser.value(options.log));
    const bool isWholeLibrary = parser.isSet(options.all);
    if (isWholeLibrary)
        command.limit = wholeLibraryLimit;
    else if (*action == Action::recommend)
        command.limit = recommendationLimit;
    if (parser.isSet(options.limit)) {
        bool isNumber = false;
        command.limit = parser.value(options.limit).toInt(&isNumber);
        if (!isNumber || command.limit < 1)
            return error(QStringLiteral("not a count: %1").arg(parser.value(options.limit)));
    }
    return withOperands(command, name, operands, isWholeLibrary);
}

} // namespace Qorvane
