#include "headless/ProgressBar.h"

#include <algorithm>
#include <cmath>

namespace Qorvane {

namespace {

// Leaves room for percentage and activity on a terminal of 80 columns.
constexpr int barWidth = 40;
constexpr int tenths = 10;

double limited(double fraction)
{
    return std::isfinite(fraction) ? std::clamp(fraction, 0.0, 1.0) : 0.0;
}

} // namespace

ProgressBar::ProgressBar(std::FILE *stream, bool isTerminal)
    : m_stream(stream)
    , m_isTerminal(isTerminal)
{
}

QString ProgressBar::text(double fraction, const QString &activity)
{
    const double done = limited(fraction);
    const int filled = int(done * barWidth);
    // Rounded down: 100 % stands for nothing left to do.
    return QStringLiteral("[%1%2] %3 %  %4")
        .arg(QString(filled, u'#'), QString(barWidth - filled, u'-'))
        .arg(int(done * 100), 3)
        .arg(activity);
}

void ProgressBar::show(double fraction, const QString &activity)
{
    const QString line = text(fraction, activity);
    if (line == m_shown)
        return;
    if (m_isTerminal) {
        // Blanks over what a longer line before may have left.
        const QString padded = line.leftJustified(m_shown.size());
        std::fprintf(m_stream, "\r%s", qUtf8Printable(padded));
    } else {
        const int tenth = int(limited(fraction) * tenths);
        if (tenth == m_tenth && activity == m_activity)
            return;
        m_tenth = tenth;
        m_activity = activity;
        std::fprintf(m_stream, "%s\n", qUtf8Printable(line));
    }
    m_shown = line;
    std::fflush(m_stream);
}

void ProgressBar::finish()
{
    if (m_isTerminal && !m_shown.isEmpty())
        std::fputc('\n', m_stream);
    std::fflush(m_stream);
    m_shown.clear();
    m_activity.clear();
    m_tenth = -1;
}

} // namespace Qorvane
