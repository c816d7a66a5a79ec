#pragma once

#include "headless/CommandLine.h"

#include <QString>
#include <QStringList>

#include <variant>

namespace Qorvane {

/// Completes a command of the words "tags", "tag" and "rate" by what follows the word.
std::variant<HeadlessCommand, CommandLineAnswer>
readTagCommand(const HeadlessCommand &command, const QString &word, const QStringList &operands);

} // namespace Qorvane
