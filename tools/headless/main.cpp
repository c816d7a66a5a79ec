#include "headless/CommandLine.h"
#include "headless/Commands.h"
#include "headless/LogOutput.h"
#include "platform/MainQueue.h"

#include <QGuiApplication>

#include <cstdio>
#include <cstdlib>

using namespace Qorvane;

namespace {

int answer(const CommandLineAnswer &text)
{
    std::fprintf(text.isError ? stderr : stdout, "%s\n", qUtf8Printable(text.text));
    return text.isError ? 2 : 0; // 2: what shells and tools use for wrong arguments
}

QCoro::Task<> runAndQuit(HeadlessCommand command)
{
    const int code = co_await runCommand(command);
    QCoreApplication::exit(code);
}

} // namespace

// The library at work without a window: what the application does, for terminals, scripts and tests.
int main(int argc, char **argv)
{
    // Some releases of the inference runtime report home unless told not to; and nothing here is ever shown.
    qputenv("ORT_DISABLE_TELEMETRY", "1");
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);

    const auto command = readCommandLine(QCoreApplication::arguments());
    if (const auto *text = std::get_if<CommandLineAnswer>(&command))
        return answer(*text);
    const HeadlessCommand &asked = std::get<HeadlessCommand>(command);

    const LogOutput log(asked.logPath, asked.isVerbose);
    if (!log.error().isEmpty())
        return answer({log.error(), true});

    MainQueue::async([&asked] { runAndQuit(asked); });
    const int code = QCoreApplication::exec();
    // As the application itself, the driver knows no orderly stop: a run in work dies with the process, and
    // the next one does what is missing. Waiting for its threads would only be slower.
    std::fflush(nullptr);
    std::_Exit(code);
}
