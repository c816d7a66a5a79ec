#pragma once

#include <QByteArray>
#include <QString>

#include <functional>

namespace Qorvane::Log {

/// Receives one line, without its line end. Called from the thread that logged, one call at a time.
using Sink = std::function<void(const QString &line)>;

/// Writes one line to standard output. There are no levels: a leading emoji tells the kind.
/// Callable from any thread; a line is written whole and at once, so that a killed process keeps what it
/// said.
void line(const QString &text);

/// Writes many lines as one piece, so that no other thread's line falls between them. `utf8` holds them as
/// they are to appear, each with its "\n"; a sink still gets them one by one. Any thread.
void lines(const QByteArray &utf8);

/// Puts `sink` in place of standard output; an empty sink restores it.
void setSink(Sink sink);

} // namespace Qorvane::Log
