#include "QorvaneApp.h"
#include "platform/Localization.h"

#include <QGuiApplication>
#include <QIcon>

#include <cstdio>
#include <cstdlib>

int main(int argc, char **argv)
{
    // First of all: later inference runtimes read it when they are loaded, and report to their maker without
    // it.
    qputenv("ORT_DISABLE_TELEMETRY", "1");

    QGuiApplication application(argc, argv);
    QGuiApplication::setApplicationName(QStringLiteral("Qorvane"));
    QGuiApplication::setApplicationVersion(QStringLiteral(QORVANE_VERSION));
    QGuiApplication::setDesktopFileName(QStringLiteral("com.qorvane.Qorvane"));
    QGuiApplication::setWindowIcon(QIcon(QStringLiteral(":/icons/com.qorvane.Qorvane.svg")));
    Qorvane::Localization::install();

    Qorvane::QorvaneApp app;
    if (!app.openMainWindow())
        return EXIT_FAILURE;
    const int code = QGuiApplication::exec();
    // There is no orderly stop: a run in work dies with the process, and the next one does what is missing.
    // Taking things down in order would keep the user waiting for files in work, or pull objects from under
    // them.
    std::fflush(nullptr);
    std::_Exit(code);
}
