#pragma once

#include "headless/CommandLine.h"

#include <QString>
#include <QStringList>

namespace Qorvane {

/// What a command found and did, as it is told.
struct CommandReport
{
    QString output;     ///< whole lines
    QStringList errors; ///< one line each; with any, the command failed
};

/// Lists tags, or changes tags and ratings, as the command says. When a file can't be what was meant, nothing
/// is changed at all. Blocks on the disk and the store: not for the GUI thread.
CommandReport runTagCommand(const HeadlessCommand &command);

} // namespace Qorvane
