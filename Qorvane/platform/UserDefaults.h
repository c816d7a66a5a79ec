#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QSettings>
#include <QString>
#include <QVariant>

#include <mutex>
#include <optional>

namespace Qorvane {

/// The user's settings: a few named values that outlive a run, in one INI file. A value reads back only as
/// the type it was written as; anything else counts as absent. Writes reach the disk before they return;
/// one that can't is kept for this run and reported to nobody but who asks
/// `isOnDisk`. Safe from any thread.
class UserDefaults
{
public:
    /// The program's own, `Qorvane/Qorvane.ini` in the user's settings folder.
    static UserDefaults &standard();

    /// `iniPath` is absolute; the file and its folder come into being with the first write.
    explicit UserDefaults(const QString &iniPath);
    UserDefaults(const UserDefaults &) = delete;
    UserDefaults &operator=(const UserDefaults &) = delete;

    /// Nothing when there is no array under `key` or one of its elements isn't a blob; an array without
    /// elements is an array.
    std::optional<QList<QByteArray>> dataArray(const QString &key) const;
    void setDataArray(const QString &key, const QList<QByteArray> &blobs);

    /// In UTC, with milliseconds.
    std::optional<QDateTime> date(const QString &key) const;
    void setDate(const QString &key, const QDateTime &date);

    std::optional<QString> string(const QString &key) const;
    void setString(const QString &key, const QString &text);

    void remove(const QString &key);

    /// Whether everything written in this run has reached the disk.
    bool isOnDisk() const;

private:
    /// The toolkit's class writes once more by itself from its thread's event loop, past the mutex; we have
    /// written by then.
    class Settings : public QSettings
    {
    public:
        using QSettings::QSettings;

    protected:
        bool event(QEvent *event) override;
    };

    std::optional<QVariant> value(const QString &key, QMetaType::Type type) const;
    void setValue(const QString &key, const QVariant &value);

    mutable std::mutex m_mutex;
    mutable Settings m_settings;
};

} // namespace Qorvane
