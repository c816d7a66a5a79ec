#pragma once

#include <sys/types.h>

#include <string>

namespace Qorvane {

/// The command line shell of SQLite, started once and asked through pipes, so that its start isn't measured.
class SqliteShell
{
public:
    explicit SqliteShell(const std::string &databasePath);
    ~SqliteShell();
    SqliteShell(const SqliteShell &) = delete;
    SqliteShell &operator=(const SqliteShell &) = delete;

    /// Runs the statements, one line in all, and gives what they print when the last is done. Nothing when
    /// there is no shell or it has ended.
    std::string answer(const std::string &statements);

private:
    pid_t m_process = -1;
    int m_input = -1;
    int m_output = -1;
};

} // namespace Qorvane
