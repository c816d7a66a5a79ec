#pragma once

#include <QString>

#include <optional>

namespace Qorvane {

class StoreConnection;

/// The rows of `app_settings`: texts by key, for what has to live and go with the database. The bodies of the
/// store's operations of the same names, which document them; to be called on the store's queue.
class SettingRecords
{
public:
    explicit SettingRecords(const StoreConnection &connection)
        : m_connection(connection)
    {
    }

    void setSetting(const QString &key, const QString &value);
    std::optional<QString> getSetting(const QString &key) const;
    void deleteSetting(const QString &key);

private:
    const StoreConnection &m_connection;
};

} // namespace Qorvane
