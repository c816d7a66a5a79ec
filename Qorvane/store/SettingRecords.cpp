#include "store/SettingRecords.h"

#include "store/Statement.h"
#include "store/StoreConnection.h"

namespace Qorvane {

namespace {

using Phase = StoreConnection::Phase;

} // namespace

void SettingRecords::setSetting(const QString &key, const QString &value)
{
    Statement statement(m_connection.handle(), "INSERT INTO app_settings(key, value) VALUES(?, ?) "
                                               "ON CONFLICT(key) DO UPDATE SET value = excluded.value");
    if (!statement.isPrepared()) {
        m_connection.logFailure("setSetting", Phase::prepare);
        return;
    }
    statement.bindText(1, key);
    statement.bindText(2, value);
    if (!statement.stepToEnd())
        m_connection.logFailure("setSetting", Phase::step);
}

std::optional<QString> SettingRecords::getSetting(const QString &key) const
{
    Statement statement(m_connection.handle(), "SELECT value FROM app_settings WHERE key = ? LIMIT 1");
    if (!statement.isPrepared()) {
        m_connection.logFailure("getSetting", Phase::prepare);
        return std::nullopt;
    }
    statement.bindText(1, key);
    return statement.stepToRow() ? statement.text(0) : std::nullopt;
}

void SettingRecords::deleteSetting(const QString &key)
{
    Statement statement(m_connection.handle(), "DELETE FROM app_settings WHERE key = ?");
    if (!statement.isPrepared()) {
        m_connection.logFailure("deleteSetting", Phase::prepare);
        return;
    }
    statement.bindText(1, key);
    if (!statement.stepToEnd())
        m_connection.logFailure("deleteSetting", Phase::step);
}

} // namespace Qorvane
