#include "platform/Log.h"

#include <poll.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <mutex>
#include <utility>

namespace Qorvane::Log {

namespace {

std::mutex &mutex()
{
    static std::mutex instance;
    return instance;
}

Sink &currentSink()
{
    static Sink instance;
    return instance;
}

// The reader of a pipe may go away: then a write is to fail, and not to end the program. A handler of
// somebody else's choice stays.
void survivePipeReaders()
{
    struct sigaction current = {};
    if (::sigaction(SIGPIPE, nullptr, &current) == 0 && current.sa_handler == SIG_DFL)
        ::signal(SIGPIPE, SIG_IGN);
}

// Interrupted writes go on, and so do those to a terminal that another program has made non-blocking; failed
// ones end.
void writeAll(const QByteArray &bytes)
{
    static std::once_flag isReady;
    std::call_once(isReady, survivePipeReaders);
    qsizetype done = 0;
    while (done < bytes.size()) {
        const ssize_t written = ::write(STDOUT_FILENO, bytes.constData() + done, size_t(bytes.size() - done));
        if (written > 0) {
            done += written;
            continue;
        }
        if (written == 0 || (errno != EINTR && errno != EAGAIN))
            return;
        if (errno == EAGAIN) {
            pollfd room{STDOUT_FILENO, POLLOUT, 0};
            ::poll(&room, 1, -1);
        }
    }
}

} // namespace

void line(const QString &text)
{
    QByteArray bytes = text.toUtf8();
    bytes.append('\n');
    const std::scoped_lock lock(mutex());
    if (currentSink()) {
        currentSink()(text);
        return;
    }
    writeAll(bytes);
}

void lines(const QByteArray &utf8)
{
    const std::scoped_lock lock(mutex());
    if (!currentSink()) {
        writeAll(utf8);
        return;
    }
    for (qsizetype start = 0; start < utf8.size();) {
        const qsizetype found = utf8.indexOf('\n', start);
        const qsizetype end = found < 0 ? utf8.size() : found;
        currentSink()(QString::fromUtf8(utf8.constData() + start, end - start));
        start = end + 1;
    }
}

void setSink(Sink sink)
{
    const std::scoped_lock lock(mutex());
    currentSink() = std::move(sink);
}

} // namespace Qorvane::Log
