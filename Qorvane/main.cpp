#include "ApplicationSetup.h"
#include "QorvaneApp.h"
#include "platform/InstanceMessage.h"
#include "platform/SingleInstance.h"
#include "platform/TerminationSignals.h"

#include <QGuiApplication>

#include <chrono>
#include <cstdio>
#include <cstdlib>

using namespace Qorvane;

namespace {

// The headless driver may be putting a folder into the library just now, and a start of the application on a
// busy machine takes a while until it listens.
constexpr auto longestWaitForOther = std::chrono::seconds(10);

} // namespace

int main(int argc, char **argv)
{
    // First of all: later inference runtimes read it when they are loaded, and report to their maker without
    // it.
    qputenv("ORT_DISABLE_TELEMETRY", "1");

    QGuiApplication application(argc, argv);
    setUpApplication(application);

    // Before anything touches the library.
    SingleInstance instance(SingleInstance::libraryPlace());
    switch (instance.claim(InstanceMessage::show(), longestWaitForOther)) {
    case SingleInstance::Claim::first:
        break;
    case SingleInstance::Claim::handedOver:
        return EXIT_SUCCESS;
    case SingleInstance::Claim::refused:
        std::fputs(
            "qorvane: another process works on the library and doesn't answer here; end it first, it may "
            "run in another session\n",
            stderr);
        return EXIT_FAILURE;
    }

    QorvaneApp app;
    QObject::connect(&instance, &SingleInstance::messageReceived, &app, &QorvaneApp::obey);
    instance.listen();
    const TerminationSignals signals;
    QObject::connect(&signals, &TerminationSignals::received, &application, [] { QCoreApplication::exit(); });
    QObject::connect(&app, &QorvaneApp::finished, &instance, [&instance] {
        // Whoever comes now has to wait for our end and start anew.
        instance.close();
        QCoreApplication::exit();
    });
    if (!app.openMainWindow())
        return EXIT_FAILURE;
    const int code = QGuiApplication::exec();
    instance.close();
    // There is no orderly stop: a run in work dies with the process, and the next one does what is missing.
    // Taking things down in order would keep the user waiting for files in work, or pull objects from under
    // them.
    std::fflush(nullptr);
    std::_Exit(code);
}
