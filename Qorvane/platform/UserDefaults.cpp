#include "platform/UserDefaults.h"

#include "platform/Directories.h"

#include <QCoreApplication>
#include <QEvent>

namespace Qorvane {

namespace {

// An array is a group of its own: its size, and its elements numbered from 1. A plain list would not do: the
// file format can't tell an empty list from no value.
QString sizeKey(const QString &key)
{
    return key + QStringLiteral("/size");
}

QString elementKey(const QString &key, qsizetype index)
{
    return key + u'/' + QString::number(index + 1);
}

QString standardPath()
{
    const std::optional<QString> configuration = Directories::configuration();
    return configuration ? *configuration + QStringLiteral("/Qorvane/Qorvane.ini") : QString();
}

} // namespace

UserDefaults &UserDefaults::standard()
{
    static UserDefaults instance(standardPath());
    return instance;
}

UserDefaults::UserDefaults(const QString &iniPath)
    : m_settings(iniPath, QSettings::IniFormat)
{
    // Whoever comes first may be a worker, whose thread has no event loop: what the toolkit's class sends
    // itself with every write would pile up there.
    if (QCoreApplication *application = QCoreApplication::instance())
        m_settings.moveToThread(application->thread());
}

std::optional<QList<QByteArray>> UserDefaults::dataArray(const QString &key) const
{
    const std::scoped_lock lock(m_mutex);
    bool isNumber = false;
    const qsizetype size = m_settings.value(sizeKey(key)).toLongLong(&isNumber);
    if (!isNumber || size < 0)
        return std::nullopt;
    QList<QByteArray> blobs;
    for (qsizetype i = 0; i < size; ++i) {
        const QVariant element = m_settings.value(elementKey(key, i));
        if (element.typeId() != QMetaType::QByteArray)
            return std::nullopt;
        blobs.append(element.toByteArray());
    }
    return blobs;
}

void UserDefaults::setDataArray(const QString &key, const QList<QByteArray> &blobs)
{
    const std::scoped_lock lock(m_mutex);
    m_settings.remove(key);
    m_settings.setValue(sizeKey(key), blobs.size());
    for (qsizetype i = 0; i < blobs.size(); ++i)
        m_settings.setValue(elementKey(key, i), blobs[i]);
    m_settings.sync();
}

std::optional<QDateTime> UserDefaults::date(const QString &key) const
{
    const std::optional<QVariant> found = value(key, QMetaType::QDateTime);
    return found ? std::optional(found->toDateTime()) : std::nullopt;
}

void UserDefaults::setDate(const QString &key, const QDateTime &date)
{
    setValue(key, date.toUTC());
}

std::optional<QString> UserDefaults::string(const QString &key) const
{
    const std::optional<QVariant> found = value(key, QMetaType::QString);
    return found ? std::optional(found->toString()) : std::nullopt;
}

void UserDefaults::setString(const QString &key, const QString &text)
{
    setValue(key, text);
}

void UserDefaults::remove(const QString &key)
{
    const std::scoped_lock lock(m_mutex);
    m_settings.remove(key);
    m_settings.sync();
}

bool UserDefaults::isOnDisk() const
{
    const std::scoped_lock lock(m_mutex);
    return !m_settings.fileName().isEmpty() && m_settings.status() != QSettings::AccessError;
}

bool UserDefaults::Settings::event(QEvent *event)
{
    return event->type() == QEvent::UpdateRequest || QSettings::event(event);
}

std::optional<QVariant> UserDefaults::value(const QString &key, QMetaType::Type type) const
{
    const std::scoped_lock lock(m_mutex);
    const QVariant found = m_settings.value(key);
    return found.typeId() == type ? std::optional(found) : std::nullopt;
}

void UserDefaults::setValue(const QString &key, const QVariant &value)
{
    const std::scoped_lock lock(m_mutex);
    m_settings.remove(key);
    m_settings.setValue(key, value);
    m_settings.sync();
}

} // namespace Qorvane
