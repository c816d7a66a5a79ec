// What a search over a whole library costs, against what SQLite takes to hand out the same rows: 100,000
// images with vectors of 512 floats in a real database.

#include "semantic/SearchRanking.h"
#include "semantic/VectorScorer.h"
#include "store/EmbeddingStore.h"
#include "support/Costs.h"
#include "support/Require.h"

#include <QDir>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sqlite3.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <memory>
#include <random>
#include <string>
#include <vector>

using namespace Qorvane;

namespace {

constexpr int rowCount = 100'000;
constexpr std::size_t vectorLength = 512;
constexpr qsizetype resultLimit = 20; // what the search field asks for

std::vector<float> unitVector(std::mt19937 &random)
{
    std::normal_distribution<float> distribution;
    std::vector<float> values(vectorLength);
    float squares = 0;
    for (float &value : values) {
        value = distribution(random);
        squares += value * value;
    }
    for (float &value : values)
        value /= std::sqrt(squares);
    return values;
}

struct ConnectionCloser
{
    void operator()(sqlite3 *database) const { sqlite3_close(database); }
};
using Connection = std::unique_ptr<sqlite3, ConnectionCloser>;

struct StatementFinalizer
{
    void operator()(sqlite3_stmt *statement) const { sqlite3_finalize(statement); }
};
using PreparedStatement = std::unique_ptr<sqlite3_stmt, StatementFinalizer>;

// A temporary application data folder with a database that the store made and the benchmark filled, and
// standard output sent to a file, as a user does who keeps the log.
class Library
{
public:
    Library()
    {
        require(m_folder.isValid(), "no temporary folder");
        qputenv("XDG_DATA_HOME", m_folder.path().toLocal8Bit());
        m_logFile = ::open(m_folder.filePath(QStringLiteral("log")).toLocal8Bit().constData(),
                           O_RDWR | O_CREAT | O_TRUNC, 0600);
        m_output = ::dup(STDOUT_FILENO);
        sendLogToFile();
        m_store = std::make_unique<EmbeddingStore>();
        restoreOutput();
        connect();
        fill();
    }

    EmbeddingStore &store() { return *m_store; }
    sqlite3 *connection() const { return m_connection.get(); }
    const std::vector<float> &query() const { return m_query; }

    void sendLogToFile()
    {
        require(::ftruncate(m_logFile, 0) == 0 && ::lseek(m_logFile, 0, SEEK_SET) == 0, "no log file");
        std::fflush(stdout);
        ::dup2(m_logFile, STDOUT_FILENO);
    }
    void restoreOutput() { ::dup2(m_output, STDOUT_FILENO); }
    qint64 logBytes() const { return ::lseek(m_logFile, 0, SEEK_END); }

private:
    void connect()
    {
        const QString path = m_folder.filePath(QStringLiteral("Qorvane/embeddings.sqlite3"));
        sqlite3 *database = nullptr;
        require(sqlite3_open(path.toUtf8().constData(), &database) == SQLITE_OK, "the database doesn't open");
        m_connection.reset(database);
    }

    void fill()
    {
        std::mt19937 random(1);
        m_query = unitVector(random);
        sqlite3_exec(connection(), "BEGIN", nullptr, nullptr, nullptr);
        sqlite3_stmt *prepared = nullptr;
        sqlite3_prepare_v2(connection(), "INSERT INTO images VALUES(?, NULL, ?, 512, 0)", -1, &prepared,
                           nullptr);
        const PreparedStatement statement(prepared);
        for (int i = 0; i < rowCount; ++i) {
            const std::string path =
                "/home/somebody/Pictures/2024/Summer holidays/IMG_" + std::to_string(i) + ".jpg";
            const std::vector<float> vector = unitVector(random);
            sqlite3_bind_text(prepared, 1, path.c_str(), -1, SQLITE_TRANSIENT);
            sqlite3_bind_blob(prepared, 2, vector.data(), int(vector.size() * sizeof(float)),
                              SQLITE_TRANSIENT);
            require(sqlite3_step(prepared) == SQLITE_DONE, "the database doesn't take a row");
            sqlite3_reset(prepared);
        }
        require(sqlite3_exec(connection(), "COMMIT", nullptr, nullptr, nullptr) == SQLITE_OK, "no commit");
    }

    QTemporaryDir m_folder;
    int m_logFile = -1;
    int m_output = -1;
    std::unique_ptr<EmbeddingStore> m_store;
    Connection m_connection;
    std::vector<float> m_query;
};

Library &library()
{
    static Library instance;
    return instance;
}

// The floor: SQLite gives path, vector and dimension of every row, and nobody looks at them.
void readBare()
{
    sqlite3_stmt *prepared = nullptr;
    sqlite3_prepare_v2(library().connection(), "SELECT path, vector, dim FROM images", -1, &prepared,
                       nullptr);
    const PreparedStatement statement(prepared);
    int rows = 0;
    while (sqlite3_step(prepared) == SQLITE_ROW) {
        benchmark::DoNotOptimize(sqlite3_column_text(prepared, 0));
        benchmark::DoNotOptimize(sqlite3_column_blob(prepared, 1));
        benchmark::DoNotOptimize(sqlite3_column_bytes(prepared, 1));
        benchmark::DoNotOptimize(sqlite3_column_int(prepared, 2));
        ++rows;
    }
    require(rows == rowCount, "rows are missing");
}

SearchCandidates scanAndScore()
{
    VectorScorer scorer(library().query());
    library().store().scanVectors({},
                                  [&scorer](const ImageVectorView &row) { scorer.add(row.path, row.blob); });
    return scorer.finish();
}

// All of a search but the encoding of its text.
void searchWhole()
{
    const SearchRanking ranking = rankCandidates(scanAndScore(), resultLimit, CandidateOrigin::database);
    benchmark::DoNotOptimize(ranking.countAboveThreshold);
}

// The search as it would be without any of the care taken here: all rows in memory, the plain loop, Qt's
// formats.
void searchPlainly()
{
    SearchCandidates candidates;
    for (const ImageVectorRow &row : library().store().fetchAll())
        candidates.append(FileUrl::file(row.path), cosineSimilarity(row.vector, library().query()));
    rankCandidates(candidates, resultLimit, CandidateOrigin::database);
}

void searchAgainstBareRead(benchmark::State &state)
{
    Costs read;
    Costs scan;
    Costs search;
    readBare();
    library().sendLogToFile();
    searchWhole();
    for ([[maybe_unused]] auto _ : state) {
        read.add(costOf(readBare));
        scan.add(costOf([] { benchmark::DoNotOptimize(scanAndScore()); }));
        library().sendLogToFile();
        search.add(costOf(searchWhole));
    }
    state.counters["log_MB"] = double(library().logBytes()) / 1e6;
    library().restoreOutput();
    reportCost(state, "read", read);
    reportCost(state, "scan", scan);
    reportCost(state, "search", search);
    reportRatio(state, "scan/read", scan, read);
    reportRatio(state, "search/read", search, read);
}
BENCHMARK(searchAgainstBareRead)->Unit(benchmark::kMillisecond)->Iterations(25)->UseRealTime();

void plainSearch(benchmark::State &state)
{
    library().sendLogToFile();
    for ([[maybe_unused]] auto _ : state)
        searchPlainly();
    library().restoreOutput();
}
BENCHMARK(plainSearch)->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();

// Scoring alone, on rows in memory, block by block as the search does it.
constexpr std::size_t rowsInMemory = 256; // half a megabyte: they come from the cache, as in the search

constexpr std::size_t rowStride = vectorLength + 16; // as CosineBlock wants it

std::vector<float> manyRows()
{
    std::mt19937 random(2);
    std::vector<float> rows;
    for (std::size_t i = 0; i < rowsInMemory; ++i) {
        const std::vector<float> row = unitVector(random);
        rows.insert(rows.end(), row.begin(), row.end());
        rows.resize((i + 1) * rowStride);
    }
    return rows;
}

void scorePlainly(const std::vector<float> &query, const std::vector<float> &rows)
{
    for (std::size_t i = 0; i < rowsInMemory; ++i)
        benchmark::DoNotOptimize(
            cosineSimilarity(std::span(rows).subspan(i * rowStride, vectorLength), query));
}

void scoreInBlocks(const CosineBlock &block, const std::vector<float> &rows)
{
    constexpr std::size_t blockLength = CosineBlock::rowCount * rowStride;
    for (std::size_t i = 0; i < rows.size(); i += blockLength)
        benchmark::DoNotOptimize(block.score(std::span(rows).subspan(i, blockLength)));
}

void scoringAgainstPlainLoop(benchmark::State &state)
{
    std::mt19937 random(3);
    const std::vector<float> query = unitVector(random);
    const std::vector<float> rows = manyRows();
    const CosineBlock portable(query, CosineBlock::Instructions::portable);
    const CosineBlock fastest(query, CosineBlock::Instructions::fastest);
    Costs plain;
    Costs narrow;
    Costs wide;
    for ([[maybe_unused]] auto _ : state) {
        plain.add(costOf([&] { scorePlainly(query, rows); }));
        narrow.add(costOf([&] { scoreInBlocks(portable, rows); }));
        wide.add(costOf([&] { scoreInBlocks(fastest, rows); }));
    }
    state.counters["plain_ns/row"] = plain.median().processor / rowsInMemory * 1e9;
    reportRatio(state, "plain/portable", plain, narrow);
    reportRatio(state, "plain/fastest", plain, wide);
}
BENCHMARK(scoringAgainstPlainLoop)->Unit(benchmark::kMillisecond)->Iterations(30);

} // namespace

BENCHMARK_MAIN();
