#include "support/MessageBus.h"

namespace Qorvane {

MessageBus::MessageBus()
{
    // With one, Qt starts the daemon by fork(). Otherwise the child runs on this process's memory until it is
    // the daemon, and leaves the thread sanitizer's account of this thread behind in disorder.
    m_daemon.setChildProcessModifier([] {});
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
