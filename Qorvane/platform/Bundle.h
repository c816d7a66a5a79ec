#pragma once

#include <QString>
#include <QStringList>

#include <optional>

/// Where the files that come with the program, or are imported for it, are looked for.
namespace Qorvane::Bundle {

/// The folders that exist, in the order of the search: `share/qorvane` beside the folder of the installed
/// program, or at the top of a build tree; then `Qorvane/models` in the user's application data, for
/// encoders and vocabularies of their own. A QCoreApplication must exist. Any thread.
QStringList resourceDirectories();

/// The path of the first file "<name>.<extension>" in those folders. Any thread.
std::optional<QString> urlForResource(const QString &name, const QString &extension);

/// The same in folders of the caller's choice. Any thread.
std::optional<QString> urlForResource(const QString &name, const QString &extension,
                                      const QStringList &directories);

/// The first of the folders; empty when there is none. Any thread.
QString resourcePath();

} // namespace Qorvane::Bundle
