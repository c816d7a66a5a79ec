#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <cstddef>
#include <optional>
#include <span>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace Qorvane {

/// One prepared statement for the length of one operation; it is finalized when it goes out of scope. Used on
/// the store's queue only.
///
/// Parameters count from 1, columns from 0, as in SQLite. Every text and blob is copied by SQLite when it is
/// bound, so an argument may go before the statement does.
class Statement
{
public:
    /// Prepares `sql`, which ends in a NUL. A null `database` is a failed preparation like any other.
    Statement(sqlite3 *database, const char *sql);
    ~Statement();
    Statement(const Statement &) = delete;
    Statement &operator=(const Statement &) = delete;

    /// False when SQLite refused the statement; the reason is the connection's error text.
    bool isPrepared() const { return m_isPrepared; }

    void bindText(int index, const QString &text);
    /// Binds the texts in order, the first to parameter 1.
    void bindTexts(const QStringList &texts);
    /// Binds the raw bytes of `floats`; an empty one gives a blob of no bytes, not NULL.
    void bindFloats(int index, std::span<const float> floats);
    void bindInt(int index, int value);
    void bindDouble(int index, double value);
    void bindNull(int index);

    /// Steps once; true when a row stands ready.
    bool stepToRow();
    /// Steps once; true when the statement has run to its end.
    bool stepToEnd();
    /// Makes the statement ready to be bound and stepped once more.
    void reset();

    /// The bytes of a text up to its first NUL, in place until the next step; nothing for NULL.
    std::optional<std::string_view> utf8(int column) const;
    /// The text as a copy; nothing for NULL.
    std::optional<QString> text(int column) const;
    /// The bytes of a blob, in place until the next step; nothing for NULL, and for a blob of no bytes, which
    /// SQLite doesn't tell from it here.
    std::optional<std::span<const std::byte>> blob(int column) const;
    int integer(int column) const;

    /// Steps through the rows that are left and gives the texts of their first column, without the NULL ones.
    /// A step that fails ends the list like the last row does.
    QStringList remainingTexts();

private:
    sqlite3_stmt *m_statement = nullptr;
    bool m_isPrepared = false;
};

/// "?" once per value, joined with ",".
QByteArray placeholders(qsizetype count);

} // namespace Qorvane
