#pragma once

#include <QFile>
#include <QString>

#include <memory>

namespace Qorvane {

/// Where the program's log lines go while this lives: into a file, to standard output, or nowhere, so that
/// the driver's own output stays readable. Afterwards they go to standard output again.
class LogOutput
{
public:
    /// Nowhere for an empty `path`, unless `isVerbose`, which is the stronger of the two.
    LogOutput(const QString &path, bool isVerbose);
    ~LogOutput();
    LogOutput(const LogOutput &) = delete;
    LogOutput &operator=(const LogOutput &) = delete;

    /// Why the file couldn't be opened; empty when nothing went wrong.
    const QString &error() const { return m_error; }

private:
    // Shared with the sink, which a late line of a background thread may still be using.
    std::shared_ptr<QFile> m_file;
    QString m_error;
};

} // namespace Qorvane
