#include "encoders/import/ApartProcess.h"

#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>

namespace Qorvane::Encoders {

namespace {

[[noreturn]] void beTheCopy(const std::function<int()> &work)
{
    // It ends with the one who waits for it, and leaves no image of its memory with the weights in it.
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    const rlimit none{0, 0};
    setrlimit(RLIMIT_CORE, &none);
    const int code = work();
    std::fflush(nullptr);
    _exit(code);
}

} // namespace

std::optional<int> doneApart(const std::function<int()> &work)
{
    // What is buffered would be written twice.
    std::fflush(nullptr);
    const pid_t copy = fork();
    if (copy == 0)
        beTheCopy(work);
    // Without room for a second process the risk is taken.
    if (copy < 0)
        return work();
    int status = 0;
    while (waitpid(copy, &status, 0) < 0) {
        if (errno != EINTR)
            return std::nullopt;
    }
    return WIFEXITED(status) ? std::optional(WEXITSTATUS(status)) : std::nullopt;
}

} // namespace Qorvane::Encoders
