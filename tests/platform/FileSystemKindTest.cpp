#include "platform/FileSystemKind.h"

#include <gtest/gtest.h>
#include <linux/magic.h>

using namespace Qorvane;

TEST(FileSystemKind, sharesOfOtherMachinesAreRemote)
{
    for (const std::uint32_t type : {std::uint32_t(NFS_SUPER_MAGIC), std::uint32_t(SMB_SUPER_MAGIC),
                                     std::uint32_t(V9FS_MAGIC), std::uint32_t(AFS_SUPER_MAGIC),
                                     std::uint32_t(CODA_SUPER_MAGIC), 0xff534d42U, 0xfe534d42U, 0x65735546U})
        EXPECT_TRUE(isRemoteFileSystemType(type)) << type;
}

TEST(FileSystemKind, disksOfThisMachineAreNot)
{
    for (const std::uint32_t type :
         {std::uint32_t(EXT4_SUPER_MAGIC), std::uint32_t(BTRFS_SUPER_MAGIC), std::uint32_t(XFS_SUPER_MAGIC),
          std::uint32_t(F2FS_SUPER_MAGIC), std::uint32_t(TMPFS_MAGIC), std::uint32_t(OVERLAYFS_SUPER_MAGIC),
          std::uint32_t(MSDOS_SUPER_MAGIC)})
        EXPECT_FALSE(isRemoteFileSystemType(type)) << type;
}

TEST(FileSystemKind, theKernelsOwnFilesAreNotRemoteAndWhatIsNotThereNeither)
{
    EXPECT_FALSE(isOnRemoteFileSystem(QStringLiteral("/proc")));
    EXPECT_FALSE(isOnRemoteFileSystem(QStringLiteral("/no/such/folder")));
}
