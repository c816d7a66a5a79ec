#include "support/MessageBus.h"

namespace Qorvane {

MessageBus::MessageBus()
{
    m_daemon.start(QStringLiteral(QORVANE_DBUS_DAEMON),
                   {QStringLiteral("--session"), QStringLiteral("--nofork"),
                    QStringLiteral("--print-address"),
                    QStringLiteral("--address=unix:tmpdir=") + m_folder.path()});
    if (m_daemon.waitForReadyRead())
        qputenv("DBUS_SESSION_BUS_ADDRESS", m_daemon.readLine().trimmed());
}

MessageBus::~MessageBus()
{
    end();
}

void MessageBus::end()
{
    m_daemon.kill();
    m_daemon.waitForFinished();
}

void FileManager::ShowItems(const QStringList &uris, const QString &)
{
    m_shown += uris;
}

} // namespace Qorvane
