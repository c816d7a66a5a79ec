#include "platform/DetachedTask.h"
#include "platform/GlobalQueue.h"

#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cstdio>

// Every test program starts here: a home of its own that vanishes afterwards, no desktop session to talk to,
// no window system, a fixed locale.
int main(int argc, char **argv)
{
    const QTemporaryDir home;
    if (!home.isValid()) {
        std::fputs("no temporary folder for the tests\n", stderr);
        return 1;
    }
    const auto folder = [&home](const char *name) {
        QDir(home.path()).mkpath(QString::fromLatin1(name));
        return QDir(home.path()).filePath(QString::fromLatin1(name)).toLocal8Bit();
    };
    qputenv("HOME", home.path().toLocal8Bit());
    qputenv("XDG_DATA_HOME", folder("data"));
    qputenv("XDG_CACHE_HOME", folder("cache"));
    qputenv("XDG_CONFIG_HOME", folder("config"));
    qputenv("XDG_RUNTIME_DIR", folder("runtime"));
    // Only its owner may look into a runtime folder.
    QFile::setPermissions(home.filePath(QStringLiteral("runtime")),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    qputenv("DBUS_SESSION_BUS_ADDRESS", "disabled:");
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
    qputenv("LC_ALL", "C.UTF-8");
    qputenv("ORT_DISABLE_TELEMETRY", "1");

    testing::InitGoogleTest(&argc, argv);
    const QGuiApplication application(argc, argv);
    const int result = RUN_ALL_TESTS();
    // What a test left running must not meet the end of the process half-way.
    Qorvane::DetachedTask::waitUntilIdle();
    Qorvane::GlobalQueue::waitUntilIdle();
    return result;
}
