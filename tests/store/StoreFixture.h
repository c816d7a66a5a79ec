#pragma once

#include "support/LogCapture.h"
#include "support/Printing.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>
#include <vector>

struct sqlite3;

namespace Qorvane {

class EmbeddingStore;

/// A connection of the test's own to a database file, to look at what the store wrote and to write what the
/// store is to find.
class RawDatabase
{
public:
    explicit RawDatabase(const QString &path);
    ~RawDatabase();
    RawDatabase(const RawDatabase &) = delete;
    RawDatabase &operator=(const RawDatabase &) = delete;

    /// Runs one or more statements; a failure fails the test.
    void run(const QByteArray &sql);
    /// Every row of `sql`, its columns quoted as SQL literals by SQLite and joined with "|".
    QStringList rows(const QByteArray &sql);
    sqlite3 *handle() const { return m_database; }

private:
    sqlite3 *m_database = nullptr;
};

/// Gives each test an application data folder of its own and collects the log.
class StoreFixture : public testing::Test
{
protected:
    StoreFixture();
    ~StoreFixture() override;

    QString dataFolder() const { return m_folder.path(); }
    QString databasePath() const;
    QString backupPath() const;
    /// The number of the test's own file descriptors that are open on `path`.
    static int openDescriptors(const QString &path);
    static QByteArray contents(const QString &path);
    static void overwrite(const QString &path, qint64 offset, const QByteArray &bytes);

    /// Runs `sql` on a connection of its own and lets `store` notice: SQLite prepares by the schema it knows,
    /// and looks whether that still holds when it steps.
    void changeSchema(EmbeddingStore &store, const QByteArray &sql);

    LogCapture log;

private:
    QTemporaryDir m_folder;
    QByteArray m_formerDataHome;
};

/// Records the text of every statement that starts on connections opened while it lives.
class StatementTrace
{
public:
    StatementTrace();
    ~StatementTrace();
    StatementTrace(const StatementTrace &) = delete;
    StatementTrace &operator=(const StatementTrace &) = delete;

    QStringList statements() const;
    void clear();
};

/// `count` floats that differ from row to row by `seed`.
std::vector<float> someVector(std::size_t count, int seed);

} // namespace Qorvane
