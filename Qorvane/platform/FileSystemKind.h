#pragma once

#include <QString>

#include <cstdint>

namespace Qorvane {

/// Whether a file system of this type, as the kernel numbers them, has its files somewhere else, or hands
/// them out through a program of which nobody knows where it has them.
bool isRemoteFileSystemType(std::uint32_t type);

/// Whether `path` lies on such a file system. False as well when the system can't tell. Any thread; asks the
/// disk.
bool isOnRemoteFileSystem(const QString &path);

} // namespace Qorvane
