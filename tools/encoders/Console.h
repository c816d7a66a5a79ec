#pragma once

#include "encoders/Problem.h"

#include <QString>

#include <cstdio>

namespace Qorvane::Encoders {

/// What the program's commands end with, as shells and scripts know it.
struct ExitCode
{
    static constexpr int success = 0;
    static constexpr int failure = 1;
    static constexpr int usage = 2;
};

/// What the commands say: results to one stream, progress and problems to another. One thread.
class Console
{
public:
    /// Standard output and standard error; progress is drawn when the latter is a terminal.
    Console();
    /// The streams must outlive this.
    Console(std::FILE *results, std::FILE *messages, bool isTerminal);

    /// A line of results.
    void print(const QString &line);
    /// A line about what is being done or was noticed.
    void note(const QString &line);
    /// What went wrong; always ends in `ExitCode::failure`, so that a command can return it.
    int report(const Problem &problem);

    /// How far a long job has come, from 0 to 1: one line drawn over and over on a terminal; elsewhere a line
    /// for each new `activity` and each quarter of it, so that a log stays readable.
    void showProgress(double fraction, const QString &activity);
    /// Ends the progress line. Lines printed in between end it too.
    void finishProgress();

private:
    std::FILE *m_results;
    std::FILE *m_messages;
    bool m_isTerminal;
    QString m_shown;
    QString m_activity;
    int m_quarter = -1;
};

} // namespace Qorvane::Encoders
