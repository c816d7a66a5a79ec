#pragma once

#include <QString>

namespace Qorvane {

/// The driver's own words, to standard output and at once.
void print(const QString &text);

/// A line about what went wrong, to standard error.
void printError(const QString &text);

/// A line about what takes its time, to standard error, so that the output stays what was asked for.
void printNotice(const QString &text);

} // namespace Qorvane
