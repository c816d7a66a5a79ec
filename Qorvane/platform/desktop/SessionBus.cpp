#include "platform/desktop/SessionBus.h"

#include "platform/FileAttributes.h"

#include <QDBusConnection>
#include <QString>

namespace Qorvane::SessionBus {

bool isPresent()
{
    const bool hasAddress = !qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS");
    const QString runtimeFolder = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (!hasAddress && (runtimeFolder.isEmpty() || !fileExists(runtimeFolder + QStringLiteral("/bus"))))
        return false;
    return QDBusConnection::sessionBus().isConnected();
}

} // namespace Qorvane::SessionBus
