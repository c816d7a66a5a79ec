#pragma once

#include <QString>

namespace Qorvane {

/// Whether `unit` is one of Unicode's blanks or line ends, or the zero-width space, which Unicode counts
/// among the format characters but which is a blank to whoever pastes it. All are of one UTF-16 unit. Any
/// thread.
bool isWhiteSpace(QChar unit);

/// `text` without the white space at its two ends. Any thread.
QString trimmedWhiteSpace(const QString &text);

} // namespace Qorvane
