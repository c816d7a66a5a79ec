#include "platform/TerminationSignals.h"

#include <QSocketNotifier>

#include <sys/eventfd.h>
#include <unistd.h>

#include <csignal>
#include <cstdint>

namespace Qorvane {

namespace {

// A handler may do next to nothing; this only makes the event loop look. Never closed: a signal may come at
// any time.
int wakeUp = -1;

void onSignal(int)
{
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = ::write(wakeUp, &one, sizeof one);
}

} // namespace

TerminationSignals::TerminationSignals(QObject *parent)
    : QObject(parent)
{
    if (wakeUp < 0)
        wakeUp = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (wakeUp < 0)
        return; // the signals end the process by themselves
    auto *const notifier = new QSocketNotifier(wakeUp, QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this] {
        std::uint64_t count = 0;
        if (::read(wakeUp, &count, sizeof count) > 0)
            Q_EMIT received();
    });
    struct sigaction action = {};
    action.sa_handler = onSignal;
    action.sa_flags = int(SA_RESTART | SA_RESETHAND);
    sigemptyset(&action.sa_mask);
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
        // What our starter had us ignore stays ignored: "nohup" and background jobs of a shell work that way.
        struct sigaction before = {};
        if (sigaction(number, nullptr, &before) == 0 && before.sa_handler != SIG_IGN)
            sigaction(number, &action, nullptr);
    }
}

} // namespace Qorvane
