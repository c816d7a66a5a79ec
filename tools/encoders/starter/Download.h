#pragma once

#include "encoders/Problem.h"

#include <QByteArray>
#include <QString>
#include <QUrl>

#include <functional>

namespace Qorvane::Encoders {

/// What a download must turn out to be.
struct DownloadPin
{
    qint64 length = 0; ///< bytes, counted from the beginning of what the server has
    QByteArray sha512; ///< of those bytes; 64 bytes
};

/// How far a job has come, from 0 to 1.
using ProgressReport = std::function<void(double fraction)>;

/// Whether the file `path` is what `pin` says. Reads all of it.
bool isPinned(const QString &path, const DownloadPin &pin);

/// Puts the first `pin.length` bytes of `address` into the file `path`, which appears only when they are what
/// they must be. Until then they are gathered in "`path`.part", and the next call goes on where this one
/// broke off. What has the wrong hash is deleted. Blocks, with an event loop of its own; needs a
/// QCoreApplication.
Outcome<void> download(const QUrl &address, const QString &path, const DownloadPin &pin,
                       const ProgressReport &progress);

} // namespace Qorvane::Encoders
