// Tries every picture and video below some folders and says what came of it: a line for each that gave no
// picture, then a table by extension.

#include "decode-report/Attempt.h"
#include "decode-report/DecodeTable.h"
#include "decode-report/Decoding.h"
#include "media/SupportedExtensions.h"
#include "media/decoders/DecodeLimits.h"
#include "platform/FileUrl.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QTextStream>

namespace {

// Pictures and videos have the same limit by themselves; then comes what a loaded machine may need to end a
// decode that keeps to it.
constexpr TimeAllowed timeAllowed = {Qorvane::DecodeLimits::maximumTime, std::chrono::seconds(2)};

struct Options
{
    QStringList folders;
    DecodingOptions decoding;
    bool isEveryExtension = false;
};

Options parse(const QStringList &arguments)
{
    Options options;
    for (qsizetype i = 1; i < arguments.size(); ++i) {
        const QString &argument = arguments[i];
        if (argument == QLatin1String("--full"))
            options.decoding.isFullSize = true;
        else if (argument == QLatin1String("--all"))
            options.isEveryExtension = true;
        else if (argument == QLatin1String("--save") && i + 1 < arguments.size())
            options.decoding.outputFolder = arguments[++i];
        else
            options.folders.append(argument);
    }
    return options;
}

struct Files
{
    QStringList tried;
    int passedOver = 0;
};

Files filesBelow(const QString &folder, bool isEveryExtension)
{
    Files files;
    QDirIterator iterator(QDir(folder).absolutePath(), QDir::Files | QDir::Hidden,
                          QDirIterator::Subdirectories);
    while (iterator.hasNext()) {
        const QString path = iterator.next();
        if (isEveryExtension || Qorvane::isMediaFile(Qorvane::FileUrl::file(path)))
            files.tried.append(path);
        else
            ++files.passedOver;
    }
    files.tried.sort();
    return files;
}

/// The path from the folder's own name on, since several folders may hold files of the same names.
QString shownPath(const QString &path, const QString &folder)
{
    return QDir(folder).dirName() + QLatin1Char('/') + QDir(folder).relativeFilePath(path);
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
    if (options.folders.isEmpty()) {
        out << "usage: decode-report [--full] [--all] [--save FOLDER] FOLDER...\n"
               "  --full   decode whole pictures and frames, not thumbnails of at most 800 pixels\n"
               "  --all    try every file, not only those with the extension of a picture or video\n"
               "  --save   write the pictures there, as PNG\n";
        return 2;
    }
    if (!options.decoding.outputFolder.isEmpty())
        QDir().mkpath(options.decoding.outputFolder);

    DecodeTable table;
    int index = 0;
    int passedOver = 0;
    bool isClean = true;
    for (const QString &folder : options.folders) {
        const Files files = filesBelow(folder, options.isEveryExtension);
        passedOver += files.passedOver;
        for (const QString &path : files.tried) {
            const Attempt result =
                attemptInChild([&] { return decodeFile(path, options.decoding, index); }, timeAllowed);
            ++index;
            table.add(QFileInfo(path).suffix().toLower(), result);
            isClean = isClean && result.outcome != Outcome::timedOut && result.outcome != Outcome::crashed;
            if (result.outcome != Outcome::decoded)
                out << outcomeName(result.outcome) << ' ' << shownPath(path, folder) << ": "
                    << (result.detail.isEmpty() ? QStringLiteral("no reason given") : result.detail) << '\n';
            out.flush();
        }
    }
    out << '\n';
    table.print(out);
    if (passedOver > 0)
        out << passedOver << " files with other extensions were not tried\n";
    return isClean ? 0 : 1;
}
