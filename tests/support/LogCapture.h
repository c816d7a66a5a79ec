#pragma once

#include <QString>
#include <QStringList>

#include <mutex>

namespace Qorvane {

/// Collects the program's log lines while it lives, in the order they were written. Any thread.
class LogCapture
{
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture &) = delete;
    LogCapture &operator=(const LogCapture &) = delete;

    QStringList lines() const;
    bool contains(const QString &line) const;
    /// Lines that begin with `prefix`, in order.
    QStringList linesStartingWith(const QString &prefix) const;
    void clear();

private:
    mutable std::mutex m_mutex;
    QStringList m_lines;
};

} // namespace Qorvane
