#include "support/TestHome.h"

#include <QDir>
#include <QFile>

namespace Qorvane {

TestHome::TestHome()
{
    const auto folder = [this](const char *name) {
        QDir(m_folder.path()).mkpath(QString::fromLatin1(name));
        return QDir(m_folder.path()).filePath(QString::fromLatin1(name)).toLocal8Bit();
    };
    qputenv("HOME", m_folder.path().toLocal8Bit());
    qputenv("XDG_DATA_HOME", folder("data"));
    qputenv("XDG_CACHE_HOME", folder("cache"));
    qputenv("XDG_CONFIG_HOME", folder("config"));
    qputenv("XDG_RUNTIME_DIR", folder("runtime"));
    // Only its owner may look into a runtime folder.
    QFile::setPermissions(m_folder.filePath(QStringLiteral("runtime")),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    qputenv("DBUS_SESSION_BUS_ADDRESS", "disabled:");
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
    qputenv("LC_ALL", "C.UTF-8");
    qputenv("ORT_DISABLE_TELEMETRY", "1");
}

} // namespace Qorvane
