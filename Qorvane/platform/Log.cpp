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
