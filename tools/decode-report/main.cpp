// Tries every file below a folder as a picture and says what came of it: a table by extension, a line for
// each refusal. Each file is decoded by a process of its own, so that a crash or a hang counts and harms
// nothing else.

#include "media/ImageSource.h"
#include "media/SupportedExtensions.h"

#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QMap>
#include <QTextStream>

#include <poll.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>

namespace {

// The time that a decode may take by its own limits, and some for a loaded machine.
constexpr int watchdogMilliseconds = 22'000;
constexpr int thumbnailSide = 800;

enum class Outcome { decoded, refused, timedOut, crashed };

struct Attempt
{
    Outcome outcome = Outcome::refused;
    QString detail;
    qint64 milliseconds = 0;
    long peakKilobytes = 0;
};

struct Tally
{
    int decoded = 0;
    int refused = 0;
    int timedOut = 0;
    int crashed = 0;
    qint64 slowest = 0;
    long peakKilobytes = 0;

    void add(const Attempt &attempt)
    {
        switch (attempt.outcome) {
        case Outcome::decoded:
            ++decoded;
            break;
        case Outcome::refused:
            ++refused;
            break;
        case Outcome::timedOut:
            ++timedOut;
            break;
        case Outcome::crashed:
            ++crashed;
            break;
        }
        slowest = qMax(slowest, attempt.milliseconds);
        peakKilobytes = qMax(peakKilobytes, attempt.peakKilobytes);
    }
};

struct Options
{
    QString folder;
    QString outputFolder; ///< where thumbnails go; empty for nowhere
    bool isFullSize = false;
    bool isEveryExtension = false;
};

/// In the child: one line to `pipe`, "+" and the size or "-" and the reason.
void decodeAndTell(const QString &path, const Options &options, int index, int pipe)
{
    QString reason;
    QString line;
    const auto source = Qorvane::ImageSource::open(path, &reason);
    const auto image = !source              ? std::nullopt
                       : options.isFullSize ? source->fullImage(&reason)
                                            : source->thumbnail(thumbnailSide, &reason);
    if (image) {
        line = QStringLiteral("+%1 %2x%3 orientation %4")
                   .arg(contentTypeName(source->contentType()))
                   .arg(image->width())
                   .arg(image->height())
                   .arg(source->orientation());
        if (!options.outputFolder.isEmpty())
            image->save(QStringLiteral("%1/%2-%3.png")
                            .arg(options.outputFolder)
                            .arg(index, 4, 10, QLatin1Char('0'))
                            .arg(QFileInfo(path).fileName()));
    } else {
        line = QLatin1Char('-') + reason;
    }
    const QByteArray bytes = line.toUtf8();
    if (write(pipe, bytes.constData(), size_t(bytes.size())) < 0)
        std::_Exit(2);
}

/// Waits for the child's line or its end, at most as long as the watchdog allows; false when that ran out.
bool awaitLine(int pipe, QByteArray &line)
{
    QElapsedTimer timer;
    timer.start();
    for (;;) {
        pollfd waiting = {pipe, POLLIN, 0};
        const int left = int(qMax(qint64(0), watchdogMilliseconds - timer.elapsed()));
        if (poll(&waiting, 1, left) == 0)
            return false;
        char buffer[4096];
        const ssize_t count = read(pipe, buffer, sizeof buffer);
        if (count <= 0)
            return true;
        line.append(buffer, qsizetype(count));
    }
}

Attempt attempt(const QString &path, const Options &options, int index)
{
    int ends[2];
    if (pipe(ends) != 0)
        return {Outcome::refused, QStringLiteral("no pipe"), 0, 0};
    QElapsedTimer timer;
    timer.start();
    const pid_t child = fork();
    if (child == 0) {
        close(ends[0]);
        decodeAndTell(path, options, index, ends[1]);
        std::exit(0);
    }
    close(ends[1]);
    QByteArray line;
    const bool isInTime = awaitLine(ends[0], line);
    close(ends[0]);
    if (!isInTime)
        kill(child, SIGKILL);
    int status = 0;
    rusage usage = {};
    wait4(child, &status, 0, &usage);

    Attempt result;
    result.milliseconds = timer.elapsed();
    result.peakKilobytes = usage.ru_maxrss;
    result.detail = QString::fromUtf8(line.mid(1));
    if (!isInTime)
        result.outcome = Outcome::timedOut;
    else if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
        result.outcome = Outcome::crashed;
    else
        result.outcome = line.startsWith('+') ? Outcome::decoded : Outcome::refused;
    return result;
}

QStringList filesBelow(const Options &options)
{
    QStringList paths;
    QDirIterator files(options.folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString path = files.next();
        const QString extension = QFileInfo(path).suffix().toLower();
        if (options.isEveryExtension || Qorvane::supportedImageExtensions().contains(extension))
            paths.append(path);
    }
    paths.sort();
    return paths;
}

void printTable(const QMap<QString, Tally> &tallies, QTextStream &out)
{
    out << QStringLiteral("%1 %2 %3 %4 %5 %6 %7\n")
               .arg(QStringLiteral("extension"), -10)
               .arg(QStringLiteral("decoded"), 8)
               .arg(QStringLiteral("refused"), 8)
               .arg(QStringLiteral("timed out"), 10)
               .arg(QStringLiteral("crashed"), 8)
               .arg(QStringLiteral("slowest ms"), 11)
               .arg(QStringLiteral("peak MB"), 8);
    for (auto it = tallies.cbegin(); it != tallies.cend(); ++it) {
        const Tally &tally = it.value();
        out << QStringLiteral("%1 %2 %3 %4 %5 %6 %7\n")
                   .arg(it.key(), -10)
                   .arg(tally.decoded, 8)
                   .arg(tally.refused, 8)
                   .arg(tally.timedOut, 10)
                   .arg(tally.crashed, 8)
                   .arg(tally.slowest, 11)
                   .arg(tally.peakKilobytes / 1024, 8);
    }
}

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

Options parse(const QStringList &arguments)
{
    Options options;
    for (qsizetype i = 1; i < arguments.size(); ++i) {
        const QString &argument = arguments[i];
        if (argument == QLatin1String("--full"))
            options.isFullSize = true;
        else if (argument == QLatin1String("--all"))
            options.isEveryExtension = true;
        else if (argument == QLatin1String("--save") && i + 1 < arguments.size())
            options.outputFolder = arguments[++i];
        else
            options.folder = argument;
    }
    return options;
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QTextStream out(stdout);
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    const Options options = parse(arguments);
    if (options.folder.isEmpty()) {
        out << "usage: decode-report [--full] [--all] [--save FOLDER] FOLDER\n"
               "  --full   decode the whole picture, not a thumbnail of at most 800 pixels\n"
               "  --all    try every file, not only those with the extension of an image\n"
               "  --save   write the pictures there, as PNG\n";
        return 2;
    }
    if (!options.outputFolder.isEmpty())
        QDir().mkpath(options.outputFolder);

    QMap<QString, Tally> tallies;
    int index = 0;
    bool isClean = true;
    for (const QString &path : filesBelow(options)) {
        const Attempt result = attempt(path, options, index++);
        tallies[QFileInfo(path).suffix().toLower()].add(result);
        tallies[QStringLiteral("~ all")].add(result);
        isClean = isClean && (result.outcome == Outcome::decoded || result.outcome == Outcome::refused);
        if (result.outcome != Outcome::decoded)
            out << outcomeName(result.outcome) << ' ' << QDir(options.folder).relativeFilePath(path) << ": "
                << result.detail << '\n';
        out.flush();
    }
    out << '\n';
    printTable(tallies, out);
    return isClean ? 0 : 1;
}
