#include "platform/FileSystemKind.h"

#include "platform/NativePath.h"

#include <sys/vfs.h>

#include <algorithm>
#include <array>

namespace Qorvane {

namespace {

// The numbers of the kernel's interface (statfs). Not all of them have a name in its headers.
constexpr std::array<std::uint32_t, 12> remoteTypes{
    0x00006969, // NFS
    0x0000517b, // SMB, of old
    0xff534d42, // CIFS
    0xfe534d42, // SMB 2 and later
    0x65735546, // FUSE: sshfs, rclone and many more
    0x01021997, // 9P: shares of virtual machines
    0x786f4256, // shares of VirtualBox
    0x00c36400, // Ceph
    0x5346414f, // OpenAFS
    0x6b414653, // AFS of the kernel
    0x73757245, // Coda
    0x0bd00bd0, // Lustre
};

} // namespace

bool isRemoteFileSystemType(std::uint32_t type)
{
    return std::ranges::find(remoteTypes, type) != remoteTypes.end();
}

bool isOnRemoteFileSystem(const QString &path)
{
    const std::optional<QByteArray> name = nativePath(path);
    struct statfs buffer = {};
    return name && ::statfs(name->constData(), &buffer) == 0 &&
           isRemoteFileSystemType(std::uint32_t(buffer.f_type));
}

} // namespace Qorvane
