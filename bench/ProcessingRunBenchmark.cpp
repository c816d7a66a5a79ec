// What a run over a folder costs that needs nothing, against the bare questions it has to ask of the disk and
// the store; and what a run that makes everything holds in memory, for few files and for many.

#include "library/LibrarySnapshot.h"
#include "library/LibraryState.h"
#include "library/ProcessingReports.h"
#include "library/ProcessingRun.h"
#include "media/ThumbnailPaths.h"
#include "platform/FileAttributes.h"
#include "platform/NotificationCenter.h"
#include "store/EmbeddingStore.h"
#include "support/Costs.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>

using namespace Qorvane;
using namespace Qorvane::EmbeddingMessages;

namespace {

constexpr int vectorLength = 512; // what the encoders of this family give

QString homePath;

/// Sends the log into a file, as a started program's would go, while the benchmark's own report keeps
/// standard output.
class LogIntoFile
{
public:
    LogIntoFile()
        : m_stdout(::dup(STDOUT_FILENO))
    {
        const QByteArray path = QFile::encodeName(homePath + QStringLiteral("/log.txt"));
        const int file = ::open(path.constData(), O_CREAT | O_TRUNC | O_WRONLY, 0600);
        std::fflush(stdout);
        ::dup2(file, STDOUT_FILENO);
        ::close(file);
    }
    ~LogIntoFile()
    {
        ::dup2(m_stdout, STDOUT_FILENO);
        ::close(m_stdout);
    }
    LogIntoFile(const LogIntoFile &) = delete;
    LogIntoFile &operator=(const LogIntoFile &) = delete;

private:
    const int m_stdout;
};

struct Stage
{
    std::shared_ptr<LibrarySnapshot> snapshot = std::make_shared<LibrarySnapshot>();
    LibraryState state{snapshot};
    std::shared_ptr<ProcessingReports> reports = std::make_shared<ProcessingReports>(state);
    std::shared_ptr<const RunSurroundings> surroundings =
        std::make_shared<RunSurroundings>(RunSurroundings{snapshot, reports, EmbeddingRequest(10)});

    explicit Stage(const FileUrl &root) { state.publishLibraryFolders({Folder{root, std::nullopt}}); }

    /// Runs over the files in the background while the reports are published here.
    void run(const FileUrl &root, const QList<FileUrl> &files) const
    {
        std::atomic_bool isDone = false;
        DetachedTask::start(QualityOfService::background, [&](const TaskHandle &task) {
            ProcessingRun(surroundings, task, root.path(), files).execute();
            isDone = true;
            QMetaObject::invokeMethod(
                QCoreApplication::instance(), [] {}, Qt::QueuedConnection);
        });
        while (!isDone)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        QCoreApplication::processEvents();
    }
};

QList<FileUrl> makeFiles(const FileUrl &root, int count)
{
    QDir().mkpath(root.path());
    QImage image(320, 240, QImage::Format_RGB32);
    image.fill(Qt::darkCyan);
    const QString original = homePath + QStringLiteral("/original.jpg");
    image.save(original);
    QList<FileUrl> files;
    for (int i = 0; i < count; ++i) {
        files.append(FileUrl::file(root.path() + QStringLiteral("/%1.jpg").arg(i)));
        QFile::copy(original, files.last().path());
    }
    return files;
}

/// A field of the process's memory in kB; the highest resident memory begins anew with `resetPeak`.
double memory(const QByteArray &field)
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith(field))
            return line.mid(field.size()).trimmed().split(' ').first().toDouble();
    }
    return 0;
}

void resetPeak()
{
    QFile file(QStringLiteral("/proc/self/clear_refs"));
    if (file.open(QIODevice::WriteOnly))
        file.write("5");
}

constexpr int skippedFiles = 3000;

const QList<FileUrl> &currentFiles(const FileUrl &root)
{
    static const QList<FileUrl> files = [&root] {
        const QList<FileUrl> made = makeFiles(root, skippedFiles);
        for (const FileUrl &file : made) {
            const FileUrl thumbnail = *thumbnailURL(file);
            QFile::copy(file.path(), thumbnail.path());
            EmbeddingStore::shared().upsert(file.path(), thumbnail.path(),
                                            std::vector<float>(vectorLength, 0.1F), vectorLength,
                                            fileAttributes(file.path())->modificationTime);
        }
        return made;
    }();
    return files;
}

// The floor: is the file there, twice; is its thumbnail; when was it changed; does the store have it.
void askBareQuestions(const QList<FileUrl> &files)
{
    for (const FileUrl &file : files) {
        benchmark::DoNotOptimize(fileExists(file.path()));
        benchmark::DoNotOptimize(fileExists(thumbnailURL(file)->path()));
        benchmark::DoNotOptimize(fileExists(file.path()));
        const double mtime = fileAttributes(file.path())->modificationTime;
        benchmark::DoNotOptimize(EmbeddingStore::shared().isUpToDate(file.path(), mtime));
    }
}

// What counts is the processor time of all threads: a run yields to whatever else the machine does, so its
// wall time says more about that than about the run.
void currentFilesAgainstBareQuestions(benchmark::State &state)
{
    const FileUrl root = FileUrl::directory(homePath + QStringLiteral("/current"));
    const QList<FileUrl> &files = currentFiles(root);
    const Stage stage(root);
    Costs questions;
    Costs runs;
    askBareQuestions(files);
    for (auto _ : state) {
        questions.add(costOf([&] { askBareQuestions(files); }));
        const LogIntoFile log;
        runs.add(costOf([&] { stage.run(root, files); }));
    }
    reportCost(state, "questions", questions);
    reportCost(state, "run", runs);
    reportRatio(state, "run/questions", runs, questions);
}
BENCHMARK(currentFilesAgainstBareQuestions)->Unit(benchmark::kMillisecond)->Iterations(10)->UseRealTime();

/// Runs over `count` new files and gives the most memory in kB that the process held meanwhile.
double peakOfNewFiles(int count)
{
    const FileUrl root = FileUrl::directory(homePath + QStringLiteral("/new%1").arg(count));
    const QList<FileUrl> files = makeFiles(root, count);
    const Stage stage(root);
    const LogIntoFile log;
    resetPeak();
    stage.run(root, files);
    return memory("VmHWM:");
}

void memoryOfManyFilesAgainstFew(benchmark::State &state)
{
    const auto token = NotificationCenter::defaultCenter().addObserver(
        requestName, ObserverQueue::main, [](const Notification &request) {
            NotificationCenter::defaultCenter().post(
                responseName, {{idKey, request.userInfo.value(idKey)},
                               {vectorKey, QVariant::fromValue(EmbeddingVector(vectorLength, 0.1F))}});
        });
    constexpr int few = 100;
    constexpr int many = 3000;
    for (auto _ : state) {
        const double peakOfFew = peakOfNewFiles(few);
        const double peakOfMany = peakOfNewFiles(many);
        state.counters["few_kB"] = peakOfFew;
        state.counters["many_kB"] = peakOfMany;
        state.counters["many/few"] = peakOfMany / peakOfFew;
    }
    NotificationCenter::defaultCenter().removeObserver(token);
}
BENCHMARK(memoryOfManyFilesAgainstFew)->Iterations(1)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

int main(int argc, char **argv)
{
    const QTemporaryDir home;
    homePath = home.path();
    for (const char *variable : {"HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_CONFIG_HOME"})
        qputenv(variable, QFile::encodeName(homePath));
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    {
        const LogIntoFile log;
        EmbeddingStore::shared();
    }
    benchmark::RunSpecifiedBenchmarks();
    DetachedTask::waitUntilIdle();
    return 0;
}
