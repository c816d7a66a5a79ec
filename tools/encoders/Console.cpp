#include "encoders/Console.h"

#include <unistd.h>

#include <algorithm>
#include <cmath>

namespace Qorvane::Encoders {

namespace {

// Leaves room for percentage and activity on a terminal of 80 columns.
constexpr int barWidth = 30;
constexpr int quarters = 4;

QString barText(double done, const QString &activity)
{
    const int filled = int(done * barWidth);
    // Rounded down: 100 % stands for nothing left to do.
    return QStringLiteral("[%1%2] %3 %  %4")
        .arg(QString(filled, u'#'), QString(barWidth - filled, u'-'))
        .arg(int(done * 100), 3)
        .arg(activity);
}

} // namespace

Console::Console()
    : Console(stdout, stderr, isatty(STDERR_FILENO) == 1)
{
}

Console::Console(std::FILE *results, std::FILE *messages, bool isTerminal)
    : m_results(results)
    , m_messages(messages)
    , m_isTerminal(isTerminal)
{
}

void Console::print(const QString &line)
{
    finishProgress();
    std::fprintf(m_results, "%s\n", qUtf8Printable(line));
    std::fflush(m_results);
}

void Console::note(const QString &line)
{
    finishProgress();
    std::fprintf(m_messages, "%s\n", qUtf8Printable(line));
    std::fflush(m_messages);
}

int Console::report(const Problem &problem)
{
    note(QStringLiteral("qorvane-encoders: ") + problem.text());
    return ExitCode::failure;
}

void Console::showProgress(double fraction, const QString &activity)
{
    const double done = std::isfinite(fraction) ? std::clamp(fraction, 0.0, 1.0) : 0.0;
    if (m_isTerminal) {
        const QString line = barText(done, activity);
        if (line == m_shown)
            return;
        // Blanks over what a longer line before may have left.
        std::fprintf(m_messages, "\r%s", qUtf8Printable(line.leftJustified(m_shown.size())));
        m_shown = line;
    } else {
        const int quarter = int(done * quarters);
        if (quarter == m_quarter && activity == m_activity)
            return;
        m_quarter = quarter;
        m_activity = activity;
        std::fprintf(m_messages, "%s: %d %%\n", qUtf8Printable(activity), int(done * 100));
    }
    std::fflush(m_messages);
}

void Console::finishProgress()
{
    if (!m_shown.isEmpty())
        std::fputc('\n', m_messages);
    std::fflush(m_messages);
    m_shown.clear();
    m_activity.clear();
    m_quarter = -1;
}

} // namespace Qorvane::Encoders
