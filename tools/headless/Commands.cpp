#include "headless/Commands.h"

#include "ChineseClipService.h"
#include "EmbeddingResponder.h"
#include "headless/ContactSheet.h"
#include "headless/EncoderStart.h"
#include "headless/IndexSession.h"
#include "headless/IndexSummary.h"
#include "headless/LibraryOpening.h"
#include "headless/Printing.h"
#include "headless/ProgressBar.h"
#include "headless/Recommend.h"
#include "headless/SearchReport.h"
#include "headless/TagCommands.h"
#include "library/QorManage.h"
#include "media/ThumbnailCache.h"
#include "platform/Directories.h"
#include "platform/NaturalOrder.h"
#include "platform/UserDefaults.h"
#include "store/EmbeddingStore.h"

#include <QCoroFuture>
#include <QCoroSignal>
#include <QElapsedTimer>
#include <QPromise>
#include <QtConcurrent>

#include <unistd.h>

#include <algorithm>
#include <optional>

namespace Qorvane {

namespace {

using Action = HeadlessCommand::Action;

// Nobody sits before a terminal run, and a picture that is late on a busy machine is better than one left
// out.
constexpr double patientEmbeddingTimeout = 120;

// Only a disk that has stopped answering takes as long to store a folder.
constexpr double patientBookmarkTimeout = 20;

QList<FileUrl> folderUrls(const QStringList &paths)
{
    QList<FileUrl> urls;
    for (const QString &path : paths)
        urls.append(FileUrl::directory(path));
    return urls;
}

QString activity(FolderProcessingState state)
{
    switch (state) {
    case FolderProcessingState::idle:
        return QStringLiteral("starting");
    case FolderProcessingState::thumbnails:
        return QStringLiteral("thumbnails");
    case FolderProcessingState::vectors:
        return QStringLiteral("vectors");
    case FolderProcessingState::completed:
        return QStringLiteral("done");
    }
    Q_UNREACHABLE();
}

// A future that is done once the library has published the folders of earlier runs.
QFuture<void> libraryOpened(QorManage &library)
{
    const auto opened = std::make_shared<QPromise<void>>();
    opened->start();
    whenLibraryIsOpen(library, &library, [opened] { opened->finish(); });
    return opened->future();
}

// A future that is done once the library has reported on the folder: it is stored by then, or the wait for
// that was given up. The reports come in floods, of which a coroutine could only await the first.
QFuture<void> folderReported(QorManage &library, const FileUrl &folder)
{
    const auto reported = std::make_shared<QPromise<void>>();
    reported->start();
    QObject::connect(&library, &QorManage::folderProcessingStatusChanged, &library,
                     [&library, reported, path = folder.path()] {
                         if (library.folderProcessingStatus().contains(path))
                             reported->finish();
                     });
    return reported->future();
}

// Adds the folder; whether the next start will know of it.
QCoro::Task<bool> addAndStore(QorManage &library, FileUrl folder)
{
    const QFuture<void> reported = folderReported(library, folder);
    library.addFolder(folder);
    co_await reported;
    co_return co_await QtConcurrent::run(
        [folder] { return UserDefaults::standard().isOnDisk() && storedLibraryFolders().contains(folder); });
}

QCoro::Task<int> runAdd(HeadlessCommand command)
{
    LibraryTimings timings;
    timings.bookmarkPatience = patientBookmarkTimeout;
    QorManage library(nullptr, timings);
    int code = 0;
    co_await libraryOpened(library);
    const QList<FileUrl> folders = folderUrls(command.folders);
    for (const FileUrl &folder : folders) {
        const bool isRoot = std::any_of(library.libraryFolders().begin(), library.libraryFolders().end(),
                                        [&folder](const Folder &root) { return root.url == folder; });
        if (isRoot) {
            print(QStringLiteral("already in the library: %1\n").arg(folder.path()));
            continue;
        }
        if (co_await addAndStore(library, folder)) {
            print(QStringLiteral("added: %1\n").arg(folder.path()));
        } else {
            printError(QStringLiteral("can't be stored in the library: %1").arg(folder.path()));
            code = 1;
        }
    }
    co_return code;
}

QCoro::Task<int> runIndex(HeadlessCommand command)
{
    const QList<FileUrl> folders = folderUrls(command.folders);
    const IndexSummary before = co_await QtConcurrent::run(&IndexSummary::of, folders);

    ChineseClipService service;
    const EmbeddingResponder responder(service);
    const bool areEncodersLoaded = co_await startEncoders(service);
    if (!areEncodersLoaded)
        print(QStringLiteral("No encoders are installed: thumbnails only, and nothing to search by.\n"));

    LibraryTimings timings;
    timings.embeddingTimeout = patientEmbeddingTimeout;
    QorManage library(nullptr, timings);
    co_await libraryOpened(library);
    ProgressBar bar(stdout, isatty(STDOUT_FILENO) == 1);
    IndexSession session(library);
    QObject::connect(&session, &IndexSession::progressChanged, &session,
                     [&] { bar.show(session.fraction(), activity(session.state())); });
    QElapsedTimer timer;
    timer.start();
    // Asked for before the start, so that a session that ends at once isn't missed.
    const auto finished = qCoro(&session, &IndexSession::finished);
    session.start(folders);
    co_await finished;
    const double seconds = double(timer.elapsed()) / 1000;
    bar.finish();

    const IndexSummary after = co_await QtConcurrent::run(&IndexSummary::of, folders);
    print(indexReport(before, after, seconds) + u'\n');
    if (after.thumbnails < after.files || (areEncodersLoaded && after.vectors < after.thumbnails))
        print(QStringLiteral("Some files gave no picture or no vector; --log FILE tells why.\n"));
    library.cancelAllTasks();
    co_return 0;
}

QCoro::Task<std::optional<QList<SearchResult>>> search(ChineseClipService &service, QString query, int limit)
{
    const bool areEncodersLoaded = co_await startEncoders(service);
    if (!areEncodersLoaded) {
        printError(QStringLiteral("no encoders are installed, so there is nothing to search with"));
        co_return std::nullopt;
    }
    co_return co_await service.searchWithDatabase(query, {}, limit);
}

QCoro::Task<int> runSearch(HeadlessCommand command)
{
    ChineseClipService service;
    const std::optional<QList<SearchResult>> results = co_await search(service, command.query, command.limit);
    if (!results)
        co_return 1;
    print(searchReport(command.query, *results));
    co_return 0;
}

// The thumbnail of every file, in their order; null where there is none.
QList<QImage> thumbnails(const QList<FileUrl> &files)
{
    QList<QImage> pictures;
    for (const FileUrl &file : files) {
        const std::optional<Image> thumbnail = ThumbnailCache::getThumbnail(file);
        pictures.append(thumbnail ? thumbnail->pixels() : QImage());
    }
    return pictures;
}

QList<FileUrl> libraryFiles(int limit)
{
    QList<FileUrl> files;
    for (const FileUrl &folder : storedLibraryFolders())
        files += QorManage::collectMediaFiles(folder);
    std::sort(files.begin(), files.end(), [](const FileUrl &a, const FileUrl &b) {
        return localizedStandardCompare(a.path(), b.path()) < 0;
    });
    files.resize(std::min(files.size(), qsizetype(limit)));
    return files;
}

QCoro::Task<int> writeSheet(QString heading, QList<FileUrl> files, QStringList details, QString outputPath)
{
    const QList<QImage> pictures = co_await QtConcurrent::run(&thumbnails, files);
    ContactSheet sheet(heading, QStringLiteral("%1 pictures").arg(files.size()));
    for (qsizetype index = 0; index < files.size(); ++index)
        sheet.add({pictures.at(index), files.at(index).lastPathComponent(), details.value(index)});
    if (!sheet.draw().save(outputPath, "PNG")) {
        printError(QStringLiteral("the sheet can't be written: %1").arg(outputPath));
        co_return 1;
    }
    print(QStringLiteral("%1 pictures: %2\n").arg(files.size()).arg(outputPath));
    co_return 0;
}

QCoro::Task<int> runSheet(HeadlessCommand command)
{
    if (command.query.isEmpty()) {
        const QList<FileUrl> files = co_await QtConcurrent::run(&libraryFiles, command.limit);
        co_return co_await writeSheet(QStringLiteral("Library"), files, {}, command.outputPath);
    }
    ChineseClipService service;
    const std::optional<QList<SearchResult>> results = co_await search(service, command.query, command.limit);
    if (!results)
        co_return 1;
    QList<FileUrl> files;
    QStringList details;
    for (const SearchResult &result : *results) {
        files.append(result.url);
        details.append(scoreText(result));
    }
    co_return co_await writeSheet(u'"' + command.query + u'"', files, details, command.outputPath);
}

QString statusReport()
{
    const QList<FileUrl> folders = storedLibraryFolders();
    const IndexSummary summary = IndexSummary::of(folders);
    QString report = QStringLiteral("%1 folders in the library\n").arg(folders.size());
    for (const FileUrl &folder : folders)
        report += QStringLiteral("    %1\n").arg(folder.path());
    report += QStringLiteral("%1 media files, %2 thumbnails, %3 vectors, %4 tags in use\n")
                  .arg(summary.files)
                  .arg(summary.thumbnails)
                  .arg(summary.vectors)
                  .arg(EmbeddingStore::shared().listAllTags().size());
    report += QStringLiteral("thumbnail cache: %1 MB\n")
                  .arg(ThumbnailCache::measureCacheSizeInMB().value_or(0), 0, 'f', 1);
    const QString data = Directories::applicationSupport().value_or(QString());
    report += QStringLiteral("database: %1/Qorvane/embeddings.sqlite3\n").arg(data);
    return report;
}

QCoro::Task<int> runStatus()
{
    print(co_await QtConcurrent::run(&statusReport));
    ChineseClipService service;
    const bool areEncodersLoaded = co_await startEncoders(service);
    print(areEncodersLoaded ? QStringLiteral("encoders: loaded\n") : QStringLiteral("encoders: none\n"));
    co_return 0;
}

QCoro::Task<int> runTags(HeadlessCommand command)
{
    const CommandReport report = co_await QtConcurrent::run(&runTagCommand, command);
    print(report.output);
    for (const QString &error : report.errors)
        printError(error);
    co_return report.errors.isEmpty() ? 0 : 1;
}

} // namespace

QCoro::Task<int> runCommand(HeadlessCommand command)
{
    switch (command.action) {
    case Action::add:
        co_return co_await runAdd(command);
    case Action::index:
        co_return co_await runIndex(command);
    case Action::search:
        co_return co_await runSearch(command);
    case Action::sheet:
        co_return co_await runSheet(command);
    case Action::status:
        co_return co_await runStatus();
    case Action::tags:
        co_return co_await runTags(command);
    case Action::recommend:
        co_return co_await runRecommend(command);
    }
    Q_UNREACHABLE();
}

} // namespace Qorvane
