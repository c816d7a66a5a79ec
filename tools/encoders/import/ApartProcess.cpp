#include "encoders/import/ApartProcess.h"

#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>

namespace Qorvane::Encoders {

namespace {

// What terminals, desktops and the system ask a program to end with.
constexpr std::array endingSignals{SIGINT, SIGTERM, SIGHUP};

// Behind the first signal for too much time, for a copy that doesn't heed it.
constexpr rlim_t secondsOfGrace = 5;

// A signal's handler can be told in no other way.
std::atomic<pid_t> theCopy = 0;
static_assert(std::atomic<pid_t>::is_always_lock_free);

extern "C" void handToTheCopy(int signal)
{
    const int before = errno;
    if (const pid_t copy = theCopy; copy > 0)
        kill(copy, signal);
    errno = before;
}

/// Keeps signals that ask for the end back, then, once there is a copy, hands them to it.
class EndingSignals
{
public:
    EndingSignals()
    {
        sigset_t ending;
        sigemptyset(&ending);
        for (const int signal : endingSignals)
            sigaddset(&ending, signal);
        pthread_sigmask(SIG_BLOCK, &ending, &m_maskBefore);
    }
    ~EndingSignals()
    {
        for (size_t index = 0; m_isHandedOn && index < endingSignals.size(); ++index)
            sigaction(endingSignals[index], &m_before[index], nullptr);
        theCopy = 0;
        letThrough();
    }
    EndingSignals(const EndingSignals &) = delete;
    EndingSignals &operator=(const EndingSignals &) = delete;

    void letThrough() const { pthread_sigmask(SIG_SETMASK, &m_maskBefore, nullptr); }

    void handTo(pid_t copy)
    {
        theCopy = copy;
        m_isHandedOn = true;
        struct sigaction handing = {};
        handing.sa_handler = handToTheCopy;
        for (size_t index = 0; index < endingSignals.size(); ++index) {
            sigaction(endingSignals[index], nullptr, &m_before[index]);
            // One who started this with nohup wants it to stay.
            if (m_before[index].sa_handler != SIG_IGN)
                sigaction(endingSignals[index], &handing, nullptr);
        }
        letThrough();
    }

private:
    sigset_t m_maskBefore;
    std::array<struct sigaction, endingSignals.size()> m_before{};
    bool m_isHandedOn = false;
};

[[noreturn]] void beTheCopy(const std::function<int()> &work, std::chrono::seconds processorTime)
{
    // It ends with the one who waits for it, and leaves no image of its memory with the weights in it.
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    const rlimit none{0, 0};
    setrlimit(RLIMIT_CORE, &none);
    if (processorTime != anyProcessorTime) {
        const auto seconds = rlim_t(processorTime.count());
        const rlimit time{seconds, seconds + secondsOfGrace};
        setrlimit(RLIMIT_CPU, &time);
    }
    const int code = work();
    std::fflush(nullptr);
    _exit(code);
}

} // namespace

bool ApartResult::isInterrupted() const
{
    return std::find(endingSignals.begin(), endingSignals.end(), signal) != endingSignals.end();
}

ApartResult doneApart(const std::function<int()> &work, std::chrono::seconds processorTime)
{
    // What is buffered would be written twice.
    std::fflush(nullptr);
    EndingSignals signals;
    const pid_t copy = fork();
    if (copy == 0) {
        signals.letThrough();
        beTheCopy(work, processorTime);
    }
    // Without room for a second process the risk is taken.
    if (copy < 0) {
        signals.letThrough();
        return {work(), 0};
    }
    signals.handTo(copy);
    int status = 0;
    while (waitpid(copy, &status, 0) < 0) {
        if (errno != EINTR)
            return {};
    }
    return WIFEXITED(status) ? ApartResult{WEXITSTATUS(status), 0}
                             : ApartResult{std::nullopt, WTERMSIG(status)};
}

Problem apartProblem(const ApartResult &result)
{
    if (result.isInterrupted())
        return {QStringLiteral("to come to an end"), QStringLiteral("that it was interrupted"),
                QStringLiteral("run it again")};
    const QString expected = QStringLiteral("a model that can be run");
    if (result.signal == SIGXCPU)
        return {expected,
                QStringLiteral("one that was still at work after %1 minutes of the processor's time")
                    .arg(std::chrono::duration_cast<std::chrono::minutes>(longestProcessorTime).count()),
                QStringLiteral("use a smaller model, or another export of this one")};
    return {expected,
            QStringLiteral("one that ended the process that tried it (signal %1)").arg(result.signal),
            QStringLiteral("fetch the model again; if that doesn't help, don't use it")};
}

} // namespace Qorvane::Encoders
