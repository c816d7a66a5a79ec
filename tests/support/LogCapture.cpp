#include "support/LogCapture.h"

#include "platform/Log.h"

namespace Qorvane {

LogCapture::LogCapture()
{
    Log::setSink([this](const QString &line) {
        const std::scoped_lock lock(m_mutex);
        m_lines.append(line);
    });
}

LogCapture::~LogCapture()
{
    Log::setSink({});
}

QStringList LogCapture::lines() const
{
    const std::scoped_lock lock(m_mutex);
    return m_lines;
}

bool LogCapture::contains(const QString &line) const
{
    return lines().contains(line);
}

QStringList LogCapture::linesStartingWith(const QString &prefix) const
{
    QStringList found;
    for (const QString &line : lines()) {
        if (line.startsWith(prefix))
            found.append(line);
    }
    return found;
}

void LogCapture::clear()
{
    const std::scoped_lock lock(m_mutex);
    m_lines.clear();
}

} // namespace Qorvane
