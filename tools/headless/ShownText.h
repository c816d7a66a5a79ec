#pragma once

#include <QString>

namespace Qorvane {

/// `text` as it is printed: what would break a line, confuse a terminal or turn the order of letters around
/// is replaced. Tags are free text. Any thread.
QString shown(const QString &text);

} // namespace Qorvane
