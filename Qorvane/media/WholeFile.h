#pragma once

#include <QByteArray>
#include <QString>

namespace Qorvane {

/// Writes `data` to the file at `path` so that nobody ever sees half of it there, not even after a power cut:
/// into a temporary file beside it, out to the disk, then renamed over it. Only the owner may read the
/// result. False when that fails; the reason is put into `error` in the system's words, what stood at `path`
/// still stands, and the temporary file is gone. Blocks; any thread.
bool writeWholeFile(const QString &path, const QByteArray &data, QString *error = nullptr);

/// Whether `fileName` is one of the temporary names used above. Where no write is going on, it is what a
/// crash left.
bool isTemporaryOfWholeFile(const QString &fileName);

} // namespace Qorvane
