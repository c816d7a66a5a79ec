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

/// Creates `path` with all folders above it; true when it is there afterwards. Any thread.
bool create(const QString &path);

} // namespace Qorvane::Directories
