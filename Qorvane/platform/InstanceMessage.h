#pragma once

#include <QStringList>

#include <optional>

namespace Qorvane::InstanceMessage {

/// What a later process asks of the first: to show the main window. Takes along what the desktop gave this
/// process to come to the front with.
QStringList show();

/// What the headless driver asks of the running application: to put the folders at `paths` into the library.
QStringList add(const QStringList &paths);

/// The desktop's token in a message of `show`, empty where there is none; nothing for any other message.
std::optional<QByteArray> shownWith(const QStringList &message);

/// The paths in a message of `add`; nothing for any other message.
std::optional<QStringList> added(const QStringList &message);

} // namespace Qorvane::InstanceMessage
