#include "headless/CommandLine.h"
#include "headless/Commands.h"
#include "headless/LogOutput.h"
#include "platform/InstanceMessage.h"
#include "platform/MainQueue.h"
#include "platform/SingleInstance.h"

#include <QGuiApplication>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <optional>

using namespace Qorvane;

namespace {

int answer(const CommandLineAnswer &text)
{
    std::fprintf(text.isError ? stderr : stdout, "%s\n", qUtf8Printable(text.text));
    return text.isError ? 2 : 0; // 2: what shells and tools use for wrong arguments
}

// A command before this one may be about to end, and the application about to listen.
constexpr auto longestWaitForOther = std::chrono::seconds(5);

// What the running application can do in our place.
std::optional<QStringList> messageFor(const HeadlessCommand &command)
{
    if (command.action != HeadlessCommand::Action::add)
        return std::nullopt;
    return InstanceMessage::add(command.folders);
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

    // Commands that only read wait for their turn too: the store asks for no patience of the database's, so a
    // reader in another process would cost the application the write it meets.
    SingleInstance instance(SingleInstance::libraryPlace());
    switch (instance.claim(messageFor(asked), longestWaitForOther)) {
    case SingleInstance::Claim::first:
        break;
    case SingleInstance::Claim::handedOver:
        return answer({QStringLiteral("handed to the running application: %1")
                           .arg(asked.folders.join(QStringLiteral(", "))),
                       false});
    case SingleInstance::Claim::refused:
        std::fputs(
            "qorvane-headless: another process works on the library; close it first, it may run in another "
            "session\n",
            stderr);
        return EXIT_FAILURE;
    }

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
