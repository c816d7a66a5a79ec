#pragma once

#include <QString>
#include <QStringList>

#include <optional>
#include <variant>

namespace Qorvane {

/// What the headless driver was asked to do.
struct HeadlessCommand
{
    enum class Action {
        add,       ///< put folders into the library and end
        index,     ///< put folders into the library and wait until they are indexed
        search,    ///< list the pictures that match a text
        sheet,     ///< draw a contact sheet
        status,    ///< tell what the library holds
        tags,      ///< list or change tags and ratings, as `tagAction` says
        recommend, ///< recommend tags for `files`
    };

    enum class TagAction {
        list,             ///< all tags, or those that begin with `tag`
        add,              ///< give `tag` to `files`
        remove,           ///< take `tag` off `files`
        rename,           ///< turn `tag` of `files` into `newTag`
        deleteEverywhere, ///< take `tag` off all files
        show,             ///< tags and stars of `files`
        rate,             ///< give `rating` to `files`, or clear theirs
    };

    Action action = Action::status;
    QStringList folders; ///< add, index: absolute paths
    QString query;       ///< search, sheet: empty for the whole library
    QString outputPath;  ///< sheet: the PNG file to write
    int limit = 20;      ///< search, sheet: the most pictures; as many as the search field asks for. Of tags:
                         ///< tags, and recommend, which has a default of its own
    QString logPath;     ///< where the program's log lines go; empty for nowhere
    bool isVerbose = false; ///< log lines go to standard output

    TagAction tagAction = TagAction::list;
    QString tag;               ///< trimmed; empty for all tags of a list
    QString newTag;            ///< rename: trimmed
    std::optional<int> rating; ///< rate: 1 to 5 stars; absent to clear
    QStringList files;         ///< absolute paths

    friend bool operator==(const HeadlessCommand &, const HeadlessCommand &) = default;
};

/// An answer in place of a command: a usage text, or what is wrong with the arguments.
struct CommandLineAnswer
{
    QString text;
    bool isError = false;

    friend bool operator==(const CommandLineAnswer &, const CommandLineAnswer &) = default;
};

/// Reads `arguments`, the program's name first. Paths are made absolute against the working folder.
std::variant<HeadlessCommand, CommandLineAnswer> readCommandLine(const QStringList &arguments);

} // namespace Qorvane
