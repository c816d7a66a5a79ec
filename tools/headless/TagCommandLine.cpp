#include "headless/TagCommandLine.h"

#include "platform/WhiteSpace.h"

#include <QDir>
#include <QFileInfo>

#include <array>
#include <optional>

namespace Qorvane {

namespace {

using TagAction = HeadlessCommand::TagAction;
using Result = std::variant<HeadlessCommand, CommandLineAnswer>;

struct Verb
{
    const char *name;
    TagAction action;
    int tags; ///< how many tags follow it
    bool takesFiles;
};

constexpr std::array verbs{
    Verb{"add", TagAction::add, 1, true},       Verb{"remove", TagAction::remove, 1, true},
    Verb{"rename", TagAction::rename, 2, true}, Verb{"delete", TagAction::deleteEverywhere, 1, false},
    Verb{"show", TagAction::show, 0, true},
};

const char tagUsage[] = "tag takes one of:  add TAG FILE...  remove TAG FILE...  rename OLD NEW FILE...  "
                        "delete TAG  show FILE...";
const char rateUsage[] = "rate takes 1 to 5 stars, or \"clear\", and the files";

CommandLineAnswer error(const QString &text)
{
    return {text, true};
}

CommandLineAnswer error(const char *text)
{
    return {QString::fromUtf8(text), true};
}

std::optional<Verb> verbNamed(const QString &name)
{
    for (const Verb &verb : verbs) {
        if (name == QLatin1String(verb.name))
            return verb;
    }
    return std::nullopt;
}

// Whether they exist is asked later: a tag can be taken off a file that is gone.
Result withFiles(HeadlessCommand command, const QStringList &operands)
{
    if (operands.isEmpty())
        return error("name at least one file");
    for (const QString &operand : operands) {
        if (operand.isEmpty())
            return error("a file has an empty name");
        const QString path = QDir::cleanPath(QFileInfo(operand).absoluteFilePath());
        if (!command.files.contains(path))
            command.files.append(path);
    }
    return command;
}

Result withBeginning(HeadlessCommand command, const QStringList &operands)
{
    if (operands.size() > 1)
        return error("tags takes the beginning of one tag; put one of several words into quotes");
    command.tagAction = TagAction::list;
    command.tag = trimmedWhiteSpace(operands.value(0));
    if (!operands.isEmpty() && command.tag.isEmpty())
        return error("the beginning of a tag is more than blanks");
    return command;
}

Result withVerb(HeadlessCommand command, QStringList operands)
{
    const std::optional<Verb> verb = verbNamed(operands.value(0));
    if (!verb)
        return error(tagUsage);
    operands.removeFirst();
    if (operands.size() < verb->tags || (!verb->takesFiles && operands.size() > verb->tags))
        return error(tagUsage);
    QStringList tags;
    for (int i = 0; i < verb->tags; ++i) {
        tags.append(trimmedWhiteSpace(operands.takeFirst()));
        if (tags.last().isEmpty())
            return error("a tag is more than blanks");
    }
    command.tagAction = verb->action;
    command.tag = tags.value(0);
    command.newTag = tags.value(1);
    return verb->takesFiles ? withFiles(command, operands) : Result(command);
}

Result withRating(HeadlessCommand command, QStringList operands)
{
    if (operands.isEmpty())
        return error(rateUsage);
    command.tagAction = TagAction::rate;
    const QString rating = operands.takeFirst();
    if (rating != QLatin1String("clear")) {
        bool isNumber = false;
        command.rating = rating.toInt(&isNumber);
        if (!isNumber || *command.rating < 1 || *command.rating > 5)
            return error(QStringLiteral("not a rating: %1; ").arg(rating) + QLatin1String(rateUsage));
    }
    return withFiles(command, operands);
}

} // namespace

Result readTagCommand(const HeadlessCommand &command, const QString &word, const QStringList &operands)
{
    if (word == QLatin1String("tags"))
        return withBeginning(command, operands);
    if (word == QLatin1String("tag"))
        return withVerb(command, operands);
    return withRating(command, operands);
}

} // namespace Qorvane
