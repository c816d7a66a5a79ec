#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace Qorvane {

/// `path` as the system's calls take it. Nothing when no file can have it: an empty path, one that holds a
/// NUL, or half a surrogate pair, which would else be cut or turned into another file's name. Any thread.
std::optional<QByteArray> nativePath(const QString &path);

} // namespace Qorvane
