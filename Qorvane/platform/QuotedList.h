#pragma once

#include <QString>
#include <QStringList>

namespace Qorvane {

/// `texts` as a list reads in a log line: ["a", "b"]. Quotes, backslashes and control characters are escaped
/// ("\n", "\u{1b}"), so that whatever the texts are, it stays one line and can be read back. Any thread.
QString quotedList(const QStringList &texts);

} // namespace Qorvane
