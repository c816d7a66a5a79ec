#include "platform/Log.h"

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

// A pipe reader that is slow or gone must not take the program with it: interrupted writes go on, failed ones
// end.
void writeAll(const QByteArray &bytes)
{
    qsizetype done = 0;
    while (done < bytes.size()) {
        const ssize_t written = ::write(STDOUT_FILENO, bytes.constData() + done, size_t(bytes.size() - done));
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return;
        done += written;
    }
}

} // namespace

void line(const QString &text)
{
    const std::scoped_lock lock(mutex());
    if (currentSink()) {
        currentSink()(text);
        return;
    }
    QByteArray bytes = text.toUtf8();
    bytes.append('\n');
    writeAll(bytes);
}

void setSink(Sink sink)
{
    const std::scoped_lock lock(mutex());
    currentSink() = std::move(sink);
}

} // namespace Qorvane::Log
