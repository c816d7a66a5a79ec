#include "encoders/CommandLine.h"
#include "encoders/Console.h"

#include <QCoreApplication>

// Makes, imports and examines encoders; see qorvane-encoders.1.
int main(int argc, char **argv)
{
    // Some releases of the inference runtime report home unless told not to.
    qputenv("ORT_DISABLE_TELEMETRY", "1");
    const QCoreApplication application(argc, argv);
    Qorvane::Encoders::Console console;
    return Qorvane::Encoders::runCommandLine(argc, argv, console);
}
