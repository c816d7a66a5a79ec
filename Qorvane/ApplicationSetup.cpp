#include "ApplicationSetup.h"

#include "platform/Localization.h"
#include "platform/desktop/InterfaceFont.h"

#include <QGuiApplication>
#include <QIcon>

namespace Qorvane {

void setUpApplication(QGuiApplication &)
{
    QGuiApplication::setApplicationName(QStringLiteral("Qorvane"));
    QGuiApplication::setApplicationVersion(QStringLiteral(QORVANE_VERSION));
    QGuiApplication::setDesktopFileName(QStringLiteral("com.qorvane.Qorvane"));
    QGuiApplication::setWindowIcon(QIcon(QStringLiteral(":/icons/com.qorvane.Qorvane.svg")));
    // The last window's closing isn't the end: runs in work go on.
    QGuiApplication::setQuitOnLastWindowClosed(false);
    InterfaceFont::install();
    Localization::install();
}

} // namespace Qorvane
