#pragma once

#include <QString>
#include <QStringList>

#include <variant>

namespace Qorvane {

/// What the headless driver was asked to do.
struct HeadlessCommand
{
    enum class Action {
        add,    ///< put folders into the library and end
        index,  ///< put folders into the library and wait until they are indexed
        search, ///< list the pictures that match a text
        sheet,  ///< draw a contact sheet
        status, ///< tell what the library holds
    };

    Action action = Action::status;
    QStringList folders;    ///< add, index: absolute paths
    QString query;          ///< search, sheet: empty for the whole library
    QString outputPath;     ///< sheet: the PNG file to write
    int limit = 20;         ///< search, sheet: the most pictures; as many as the search field asks for
    QString logPath;        ///< where the program's log lines go; empty for nowhere
    bool isVerbose = false; ///< log lines go to standard output

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
