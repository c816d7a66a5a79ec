#pragma once

#include "platform/FileUrl.h"

#include <QByteArray>
#include <QString>

#include <optional>

/// A lasting reference to a folder of the user's. No gate stands between a program and the user's files
/// here, so the reference is the path itself, as UTF-8 bytes.
namespace Qorvane::Bookmark {

/// Nothing, and the reason in `error`, when nothing can be reached at `url`. Any thread; asks the disk.
std::optional<QByteArray> create(const FileUrl &url, QString *error = nullptr);

/// Nothing, and the reason in `error`, when the bytes are no absolute path in UTF-8 or what they name can't
/// be reached (its volume isn't mounted, say). Any thread; asks the disk.
std::optional<FileUrl> resolve(const QByteArray &bookmark, QString *error = nullptr);

/// Whether the user may list what is inside. Any thread; asks the disk.
bool startAccessing(const FileUrl &url);

} // namespace Qorvane::Bookmark
