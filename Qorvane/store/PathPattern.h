#pragma once

#include <QString>

namespace Qorvane {

/// The LIKE pattern for everything below the folder `path`, at any depth. The path goes in as it stands: a
/// "%" or
/// "_" in a folder's name acts as a wildcard and a "\" as the escape character, and that is wanted.
QString everythingBelow(const QString &path);

} // namespace Qorvane
