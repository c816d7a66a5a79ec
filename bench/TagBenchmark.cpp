// What the store's questions about tags and ratings cost in a table of a million rows, against the same SQL
// in the command line shell of SQLite.

#include "store/EmbeddingStore.h"
#include "support/Costs.h"
#include "support/Require.h"
#include "support/SqliteShell.h"

#include <QTemporaryDir>

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sqlite3.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>

using namespace Qorvane;

namespace {

constexpr int suggestionLimit = 5; // what the tag field asks for
constexpr int countedTags = 500;   // one count is too short to be measured alone
constexpr int rounds = 15;

// 250,000 files with four of 5,000 tags each, and one to five stars. The tags begin with different letters.
constexpr char fillStatements[] = R"sql(
PRAGMA synchronous = OFF;
PRAGMA journal_mode = MEMORY;
BEGIN;
WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM n WHERE i < 999999)
INSERT INTO image_tags SELECT
    printf('/home/somebody/Pictures/2024/Summer holidays/IMG_%06d.jpg', i / 4),
    char(97 + t % 26, 65 + t / 26 % 26) || ' tag ' || t
FROM (SELECT i, (i / 4 * 7 + i % 4 * 1237) % 5000 AS t FROM n);
WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM n WHERE i < 249999)
INSERT INTO image_ratings SELECT
    printf('/home/somebody/Pictures/2024/Summer holidays/IMG_%06d.jpg', i), 1 + i % 5 FROM n;
COMMIT;
)sql";

// A temporary application data folder with a database that the store made and the benchmark filled.
class Library
{
public:
    Library()
    {
        require(m_folder.isValid(), "no temporary folder");
        qputenv("XDG_DATA_HOME", m_folder.path().toLocal8Bit());
        // The store's log lines go where a user's go who doesn't keep them.
        const int nowhere = ::open("/dev/null", O_WRONLY);
        std::fflush(stdout);
        const int output = ::dup(STDOUT_FILENO);
        ::dup2(nowhere, STDOUT_FILENO);
        m_store = std::make_unique<EmbeddingStore>();
        std::fflush(stdout);
        ::dup2(output, STDOUT_FILENO);
        ::close(output);
        ::close(nowhere);
        fill();
        m_shell = std::make_unique<SqliteShell>(databasePath());
        require(m_shell->answer("SELECT COUNT(*), COUNT(DISTINCT tag) FROM image_tags;") == "1000000|5000\n",
                "no sqlite3 shell, or not the rows that were wanted");
    }

    EmbeddingStore &store() { return *m_store; }
    SqliteShell &shell() { return *m_shell; }

private:
    std::string databasePath() const
    {
        return m_folder.filePath(QStringLiteral("Qorvane/embeddings.sqlite3")).toStdString();
    }

    void fill() const
    {
        sqlite3 *database = nullptr;
        require(sqlite3_open(databasePath().c_str(), &database) == SQLITE_OK, "the database doesn't open");
        require(sqlite3_exec(database, fillStatements, nullptr, nullptr, nullptr) == SQLITE_OK,
                "the database doesn't take the rows");
        sqlite3_close(database);
    }

    QTemporaryDir m_folder;
    std::unique_ptr<EmbeddingStore> m_store;
    std::unique_ptr<SqliteShell> m_shell;
};

Library &library()
{
    static Library instance;
    return instance;
}

/// Times both in turns. `ask` gives the number of lines that the shell has to print, so that both have done
/// the same.
void compare(benchmark::State &state, const std::string &name, const std::function<qsizetype()> &ask,
             const std::string &statements)
{
    Costs ours;
    Costs shells;
    qsizetype found = 0;
    std::string printed;
    for ([[maybe_unused]] auto _ : state) {
        ours.add(costOf([&] { found = ask(); }));
        shells.add(costOf([&] { printed = library().shell().answer(statements); }));
        require(found > 0 && found == std::count(printed.begin(), printed.end(), '\n'),
                "store and shell don't agree");
    }
    state.counters[name + "_ms"] = ours.median().wall * 1e3;
    state.counters[name + "_shell_ms"] = shells.median().wall * 1e3;
    // By the clock alone: the shell's processor time is another process's.
    state.counters[name + "/shell"] = ours.median().wall / shells.median().wall;
    state.counters[name + "/shell_least"] = ours.least().wall / shells.least().wall;
}

void allTags(benchmark::State &state)
{
    compare(
        state, "list", [] { return library().store().listAllTags().size(); },
        "SELECT DISTINCT tag FROM image_tags ORDER BY LOWER(tag);");
}
BENCHMARK(allTags)->Unit(benchmark::kMillisecond)->Iterations(rounds)->UseRealTime();

// All in use, none predefined: those cost no question.
void suggestions(benchmark::State &state)
{
    // The store reads more rows than it gives, since some may differ in case only.
    compare(
        state, "search",
        [] { return library().store().searchTags(QStringLiteral("c"), suggestionLimit, false).size() * 4; },
        "SELECT DISTINCT tag FROM image_tags WHERE LOWER(tag) LIKE LOWER('c%') ORDER BY LOWER(tag) LIMIT "
        "20;");
}
BENCHMARK(suggestions)->Unit(benchmark::kMillisecond)->Iterations(rounds)->UseRealTime();

void tagCounts(benchmark::State &state)
{
    const QStringList tags = library().store().listAllTags().mid(0, countedTags);
    std::string statements;
    for (const QString &tag : tags)
        statements += "SELECT COUNT(*) FROM image_tags WHERE tag = '" + tag.toStdString() + "';";
    compare(
        state, "count",
        [&tags] {
            qsizetype asked = 0;
            for (const QString &tag : tags)
                asked += library().store().getTagCount(tag) == 200 ? 1 : 0;
            return asked;
        },
        statements);
}
BENCHMARK(tagCounts)->Unit(benchmark::kMillisecond)->Iterations(rounds)->UseRealTime();

void ratingCounts(benchmark::State &state)
{
    std::string statements;
    for (int rating = 1; rating <= 5; ++rating)
        statements += "SELECT COUNT(*) FROM image_ratings WHERE rating = " + std::to_string(rating) + ";";
    compare(
        state, "rating",
        [] {
            qsizetype asked = 0;
            for (int rating = 1; rating <= 5; ++rating)
                asked += library().store().getRatingCount(rating) == 50'000 ? 1 : 0;
            return asked;
        },
        statements);
}
BENCHMARK(ratingCounts)->Unit(benchmark::kMillisecond)->Iterations(rounds)->UseRealTime();

void allCountsAtOnce(benchmark::State &state)
{
    compare(
        state, "counts", [] { return library().store().getAllTagCounts().size(); },
        "SELECT tag, COUNT(*) FROM image_tags GROUP BY tag;");
}
BENCHMARK(allCountsAtOnce)->Unit(benchmark::kMillisecond)->Iterations(rounds)->UseRealTime();

} // namespace

BENCHMARK_MAIN();
