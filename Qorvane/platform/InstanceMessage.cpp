#include "platform/InstanceMessage.h"

namespace Qorvane::InstanceMessage {

namespace {

const QString showWord = QStringLiteral("show");
const QString addWord = QStringLiteral("add");

} // namespace

QStringList show()
{
    // On Wayland a program may take the focus only with a token from whoever has it.
    return {showWord, qEnvironmentVariable("XDG_ACTIVATION_TOKEN")};
}

QStringList add(const QStringList &paths)
{
    return QStringList{addWord} + paths;
}

std::optional<QByteArray> shownWith(const QStringList &message)
{
    if (message.value(0) != showWord)
        return std::nullopt;
    return message.value(1).toUtf8();
}

std::optional<QStringList> added(const QStringList &message)
{
    if (message.value(0) != addWord)
        return std::nullopt;
    return message.mid(1);
}

} // namespace Qorvane::InstanceMessage
