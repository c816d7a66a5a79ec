#include "store/Statement.h"

#include "store/CheckedInteger.h"

#include <sqlite3.h>

#include <utility>

namespace Qorvane {

Statement::Statement(sqlite3 *database, const char *sql)
    : m_isPrepared(sqlite3_prepare_v2(database, sql, -1, &m_statement, nullptr) == SQLITE_OK)
{
}

Statement::~Statement()
{
    sqlite3_finalize(m_statement);
}

void Statement::bindText(int index, const QString &text)
{
    sqlite3_bind_text(m_statement, index, text.toUtf8().constData(), -1, SQLITE_TRANSIENT);
}

void Statement::bindTexts(const QStringList &texts)
{
    int index = 0;
    for (const QString &text : texts)
        bindText(++index, text);
}

void Statement::bindFloats(int index, std::span<const float> floats)
{
    // A null pointer would bind NULL, and an empty span may have one.
    const void *bytes = floats.empty() ? static_cast<const void *>("") : floats.data();
    sqlite3_bind_blob(m_statement, index, bytes, floatByteCount(floats.size()), SQLITE_TRANSIENT);
}

void Statement::bindInt(int index, int value)
{
    sqlite3_bind_int(m_statement, index, value);
}

void Statement::bindDouble(int index, double value)
{
    sqlite3_bind_double(m_statement, index, value);
}

void Statement::bindNull(int index)
{
    sqlite3_bind_null(m_statement, index);
}

bool Statement::stepToRow()
{
    return sqlite3_step(m_statement) == SQLITE_ROW;
}

bool Statement::stepToEnd()
{
    return sqlite3_step(m_statement) == SQLITE_DONE;
}

void Statement::reset()
{
    sqlite3_reset(m_statement);
}

std::optional<std::string_view> Statement::utf8(int column) const
{
    const auto *bytes = reinterpret_cast<const char *>(sqlite3_column_text(m_statement, column));
    if (!bytes)
        return std::nullopt;
    return std::string_view(bytes);
}

std::optional<QString> Statement::text(int column) const
{
    const std::optional<std::string_view> bytes = utf8(column);
    if (!bytes)
        return std::nullopt;
    QString result = QString::fromUtf8(bytes->data(), qsizetype(bytes->size()));
    // Qt takes a text's first byte order mark for no part of it. Here it is one, like any character: without
    // it the text wouldn't be found again.
    if (bytes->starts_with("\xEF\xBB\xBF"))
        result.prepend(QChar(QChar::ByteOrderMark));
    return result;
}

std::optional<std::span<const std::byte>> Statement::blob(int column) const
{
    const void *bytes = sqlite3_column_blob(m_statement, column);
    if (!bytes)
        return std::nullopt;
    const int count = sqlite3_column_bytes(m_statement, column);
    return std::span(static_cast<const std::byte *>(bytes), std::size_t(count));
}

int Statement::integer(int column) const
{
    return sqlite3_column_int(m_statement, column);
}

QStringList Statement::remainingTexts()
{
    QStringList texts;
    while (stepToRow()) {
        if (std::optional<QString> value = text(0))
            texts.append(*std::move(value));
    }
    return texts;
}

QByteArray placeholders(qsizetype count)
{
    QByteArray list = QByteArray("?,").repeated(count);
    list.chop(1);
    return list;
}

} // namespace Qorvane
