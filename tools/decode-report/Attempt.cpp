#include "decode-report/Attempt.h"

#include <QElapsedTimer>

#include <poll.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>

namespace {

void writeAll(int pipe, const QByteArray &bytes)
{
    for (qsizetype done = 0; done < bytes.size();) {
        const ssize_t count = write(pipe, bytes.constData() + done, size_t(bytes.size() - done));
        if (count < 0)
            std::_Exit(2);
        done += count;
    }
}

/// Reads the child's line up to its end; false when it took longer than `milliseconds`.
bool awaitLine(int pipe, qint64 milliseconds, QByteArray &line)
{
    QElapsedTimer timer;
    timer.start();
    for (;;) {
        pollfd waiting = {pipe, POLLIN, 0};
        const int left = int(qMax(qint64(0), milliseconds - timer.elapsed()));
        if (poll(&waiting, 1, left) == 0)
            return false;
        char buffer[4096];
        const ssize_t count = read(pipe, buffer, sizeof buffer);
        if (count <= 0)
            return true;
        line.append(buffer, qsizetype(count));
    }
}

QString crashDetail(int status)
{
    return WIFSIGNALED(status) ? QStringLiteral("ended by signal %1").arg(WTERMSIG(status))
                               : QStringLiteral("ended with code %1").arg(WEXITSTATUS(status));
}

} // namespace

QString outcomeName(Outcome outcome)
{
    switch (outcome) {
    case Outcome::decoded:
        return QStringLiteral("decoded");
    case Outcome::refused:
        return QStringLiteral("refused");
    case Outcome::timedOut:
        return QStringLiteral("TIMED OUT");
    case Outcome::crashed:
        return QStringLiteral("CRASHED");
    }
    return {};
}

Attempt attemptInChild(const std::function<QByteArray()> &decode, const TimeAllowed &allowed)
{
    Attempt result;
    int ends[2];
    if (pipe(ends) != 0) {
        result.detail = QStringLiteral("no pipe");
        return result;
    }
    QElapsedTimer timer;
    timer.start();
    const pid_t child = fork();
    if (child == 0) {
        close(ends[0]);
        writeAll(ends[1], decode());
        std::exit(0);
    }
    close(ends[1]);
    QByteArray line;
    const bool isInTime = awaitLine(ends[0], (allowed.toGiveUp + allowed.toEnd).count(), line);
    close(ends[0]);
    if (!isInTime)
        kill(child, SIGKILL);
    int status = 0;
    rusage usage = {};
    wait4(child, &status, 0, &usage);

    result.milliseconds = timer.elapsed();
    result.peakKilobytes = usage.ru_maxrss;
    result.detail = QString::fromUtf8(line.mid(1));
    if (!isInTime) {
        result.outcome = Outcome::timedOut;
        result.detail = QStringLiteral("didn't end by itself");
    } else if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        result.outcome = Outcome::crashed;
        result.detail = crashDetail(status);
    } else if (line.startsWith('+')) {
        result.outcome = Outcome::decoded;
    } else {
        result.outcome =
            result.milliseconds < allowed.toGiveUp.count() ? Outcome::refused : Outcome::timedOut;
    }
    return result;
}
