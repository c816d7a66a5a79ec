#pragma once

#include <QString>

#include <optional>

namespace Qorvane::Directories {

/// The user's application data: $XDG_DATA_HOME, else ~/.local/share. Nothing when neither can be had. Not
/// created here.
std::optional<QString> applicationSupport();

/// The user's caches: $XDG_CACHE_HOME, else ~/.cache. Nothing when neither can be had. Not created here.
std::optional<QString> caches();

/// The user's settings: $XDG_CONFIG_HOME, else ~/.config. Nothing when neither can be had. Not created here.
std::optional<QString> configuration();

/// What lasts as long as the user's session and nobody else may see: $XDG_RUNTIME_DIR, else a folder of the
/// user's own among the temporary ones, made here. Nothing when neither can be had. Asks the disk.
std::optional<QString> runtime();

/// Creates `path` with all folders above it; true when it is there afterwards. Any thread.
bool create(const QString &path);

} // namespace Qorvane::Directories
