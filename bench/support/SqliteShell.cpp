#include "support/SqliteShell.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>

extern char **environ;

namespace Qorvane {

namespace {

// No tag and no count reads like this.
const std::string endMark = "-- that is all --\n";

} // namespace

SqliteShell::SqliteShell(const std::string &databasePath)
{
    std::array<int, 2> toShell{};
    std::array<int, 2> fromShell{};
    if (::pipe(toShell.data()) != 0 || ::pipe(fromShell.data()) != 0)
        return;
    std::signal(SIGPIPE, SIG_IGN); // a shell that isn't there is an empty answer
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, toShell[0], STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, fromShell[1], STDOUT_FILENO);
    for (const int end : {toShell[0], toShell[1], fromShell[0], fromShell[1]})
        posix_spawn_file_actions_addclose(&actions, end);
    std::string program = "sqlite3";
    std::string batch = "-batch";
    std::string database = databasePath;
    const std::array<char *, 4> arguments{program.data(), batch.data(), database.data(), nullptr};
    if (posix_spawnp(&m_process, program.c_str(), &actions, nullptr, arguments.data(), environ) != 0)
        m_process = -1;
    posix_spawn_file_actions_destroy(&actions);
    ::close(toShell[0]);
    ::close(fromShell[1]);
    m_input = toShell[1];
    m_output = fromShell[0];
}

SqliteShell::~SqliteShell()
{
    ::close(m_input); // the shell ends with its input
    ::close(m_output);
    if (m_process > 0)
        ::waitpid(m_process, nullptr, 0);
}

std::string SqliteShell::answer(const std::string &statements)
{
    const std::string question =
        statements + "\n.print " + "\"" + endMark.substr(0, endMark.size() - 1) + "\"\n";
    for (std::size_t written = 0; written < question.size();) {
        const ssize_t count = ::write(m_input, question.data() + written, question.size() - written);
        if (count <= 0)
            return {};
        written += std::size_t(count);
    }
    std::string text;
    std::array<char, 65536> buffer{};
    while (!text.ends_with(endMark)) {
        const ssize_t count = ::read(m_output, buffer.data(), buffer.size());
        if (count <= 0)
            return {};
        text.append(buffer.data(), std::size_t(count));
    }
    text.resize(text.size() - endMark.size());
    return text;
}

} // namespace Qorvane
