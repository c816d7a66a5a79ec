#include "store/StoreFixture.h"

#include "store/EmbeddingStore.h"

#include <QDir>
#include <QFile>

#include <sqlite3.h>

#include <mutex>

namespace Qorvane {

namespace {

std::mutex traceMutex;
QStringList tracedStatements;

int traceStatement(unsigned, void *, void *, void *text)
{
    const std::scoped_lock lock(traceMutex);
    tracedStatements.append(QString::fromUtf8(static_cast<const char *>(text)));
    return 0;
}

int traceConnection(sqlite3 *database, const char **, const void *)
{
    return sqlite3_trace_v2(database, SQLITE_TRACE_STMT, traceStatement, nullptr);
}

using ExtensionEntry = void (*)();

} // namespace

RawDatabase::RawDatabase(const QString &path)
{
    EXPECT_EQ(sqlite3_open(path.toUtf8().constData(), &m_database), SQLITE_OK);
    // The store doesn't wait for locks; the test may have to wait for the store.
    constexpr int patience = 10'000; // milliseconds
    sqlite3_busy_timeout(m_database, patience);
}

RawDatabase::~RawDatabase()
{
    sqlite3_close(m_database);
}

void RawDatabase::run(const QByteArray &sql)
{
    EXPECT_EQ(sqlite3_exec(m_database, sql.constData(), nullptr, nullptr, nullptr), SQLITE_OK)
        << sqlite3_errmsg(m_database);
}

QStringList RawDatabase::rows(const QByteArray &sql)
{
    QStringList found;
    sqlite3_stmt *statement = nullptr;
    EXPECT_EQ(sqlite3_prepare_v2(m_database, sql.constData(), -1, &statement, nullptr), SQLITE_OK)
        << sqlite3_errmsg(m_database);
    while (sqlite3_step(statement) == SQLITE_ROW) {
        QStringList columns;
        for (int i = 0; i < sqlite3_column_count(statement); ++i) {
            if (sqlite3_column_type(statement, i) == SQLITE_NULL)
                columns.append(QStringLiteral("NULL"));
            else if (sqlite3_column_type(statement, i) == SQLITE_BLOB)
                columns.append(QString::fromLatin1(
                    QByteArray(static_cast<const char *>(sqlite3_column_blob(statement, i)),
                               sqlite3_column_bytes(statement, i))
                        .toHex()));
            else
                columns.append(
                    QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(statement, i))));
        }
        found.append(columns.join(u'|'));
    }
    sqlite3_finalize(statement);
    return found;
}

StoreFixture::StoreFixture()
    : m_formerDataHome(qgetenv("XDG_DATA_HOME"))
{
    qputenv("XDG_DATA_HOME", m_folder.path().toLocal8Bit());
}

StoreFixture::~StoreFixture()
{
    qputenv("XDG_DATA_HOME", m_formerDataHome);
}

QString StoreFixture::databasePath() const
{
    return m_folder.filePath(QStringLiteral("Qorvane/embeddings.sqlite3"));
}

QString StoreFixture::backupPath() const
{
    return m_folder.filePath(QStringLiteral("Qorvane/embeddings_corrupt_backup.sqlite3"));
}

int StoreFixture::openDescriptors(const QString &path)
{
    int count = 0;
    const QDir descriptors(QStringLiteral("/proc/self/fd"));
    for (const QString &name : descriptors.entryList(QDir::Files | QDir::System)) {
        if (QFile::symLinkTarget(descriptors.filePath(name)) == path)
            ++count;
    }
    return count;
}

QByteArray StoreFixture::contents(const QString &path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(path);
    return file.readAll();
}

void StoreFixture::overwrite(const QString &path, qint64 offset, const QByteArray &bytes)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite)) << qPrintable(path);
    ASSERT_TRUE(file.seek(offset));
    ASSERT_EQ(file.write(bytes), bytes.size());
}

void StoreFixture::changeSchema(EmbeddingStore &store, const QByteArray &sql)
{
    RawDatabase(databasePath()).run(sql);
    store.getTagVectorCount();
    log.clear();
}

StatementTrace::StatementTrace()
{
    clear();
    sqlite3_auto_extension(reinterpret_cast<ExtensionEntry>(traceConnection));
}

StatementTrace::~StatementTrace()
{
    sqlite3_cancel_auto_extension(reinterpret_cast<ExtensionEntry>(traceConnection));
}

QStringList StatementTrace::statements() const
{
    const std::scoped_lock lock(traceMutex);
    return tracedStatements;
}

void StatementTrace::clear()
{
    const std::scoped_lock lock(traceMutex);
    tracedStatements.clear();
}

std::vector<float> someVector(std::size_t count, int seed)
{
    std::vector<float> floats(count);
    for (std::size_t i = 0; i < count; ++i)
        floats[i] = float(seed) + float(i) / 1024;
    return floats;
}

} // namespace Qorvane
