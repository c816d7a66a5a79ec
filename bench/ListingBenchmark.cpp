// What the list of a folder of 50,000 photographs costs: its files against the bare reading of the directory,
// their order by name against sorting the same names by their code units.

#include "library/MediaListing.h"
#include "library/SortingRules.h"
#include "support/Costs.h"
#include "support/Require.h"

#include <QFile>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>
#include <dirent.h>

#include <algorithm>

using namespace Qorvane;

namespace {

constexpr int fileCount = 50'000;
constexpr int rounds = 15;

QString fillFolder(const QTemporaryDir &home)
{
    for (int i = 0; i < fileCount; ++i) {
        QFile file(home.filePath(QStringLiteral("IMG_%1.jpg").arg(i, 5, 10, QLatin1Char('0'))));
        require(file.open(QIODevice::WriteOnly), "no place for the photographs");
    }
    return home.path();
}

int bareCount(const QString &folder)
{
    DIR *const directory = ::opendir(folder.toUtf8().constData());
    require(directory != nullptr, "the folder can't be read");
    int count = 0;
    while (::readdir(directory))
        ++count;
    ::closedir(directory);
    return count;
}

void listsAFolder(benchmark::State &state)
{
    const QTemporaryDir home;
    const QString folder = fillFolder(home);
    Costs bare;
    Costs listing;
    Costs codeUnits;
    Costs sorting;
    for (auto step : state) {
        for (int round = 0; round < rounds; ++round) {
            bare.add(costOf([&] { require(bareCount(folder) == fileCount + 2, "not all were read"); }));
            QList<FileUrl> files;
            listing.add(costOf([&] { files = MediaListing::collectMediaFiles(FileUrl::directory(folder)); }));
            require(files.size() == fileCount, "not all were listed");
            QList<QString> names;
            for (const FileUrl &file : files)
                names.append(file.lastPathComponent());
            codeUnits.add(costOf([&] { std::ranges::sort(names); }));
            QList<FileUrl> sorted;
            sorting.add(costOf([&] {
                sorted = SortingRules::sortURLs(files, SortCriterion::filename, SortOrder::ascending);
            }));
            require(sorted.constLast().lastPathComponent() == names.constLast(), "not in order");
        }
    }
    reportCost(state, "listing", listing);
    reportCost(state, "sorting", sorting);
    reportRatio(state, "listing/bare", listing, bare);
    reportRatio(state, "sorting/plain", sorting, codeUnits);
}

BENCHMARK(listsAFolder)->Unit(benchmark::kMillisecond)->Iterations(1);

} // namespace

BENCHMARK_MAIN();
