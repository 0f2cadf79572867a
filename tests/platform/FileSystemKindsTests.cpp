#include "platform/linux/FileSystemKinds.h"

#include <gtest/gtest.h>

namespace korvanti {
namespace {

using Platform::isNetworkFileSystem;
using Platform::isPseudoFileSystem;

TEST(FileSystemKindsTests, whatTheKernelOnlyShowsIsPseudoAndNotOnTheNetwork) {
    for (const auto* type :
         {"proc",      "sysfs",     "devtmpfs",   "devpts",      "cgroup",         "cgroup2",     "tracefs",
          "debugfs",   "configfs",  "fusectl",    "securityfs",  "pstore",         "bpf",         "mqueue",
          "hugetlbfs", "autofs",    "nsfs",       "efivarfs",    "rpc_pipefs",     "binfmt_misc", "resctrl",
          "smackfs",   "selinuxfs", "fuse.lxcfs", "fuse.portal", "fuse.gvfsd-fuse"}) {
        EXPECT_TRUE(isPseudoFileSystem(type)) << type;
        EXPECT_FALSE(isNetworkFileSystem(type)) << type;
    }
}

TEST(FileSystemKindsTests, whatLiesOnAnotherComputerIsOnTheNetworkAndNotPseudo) {
    for (const auto* type : {"nfs",
                             "nfs4",
                             "cifs",
                             "smb3",
                             "smbfs",
                             "ncpfs",
                             "afs",
                             "coda",
                             "ceph",
                             "glusterfs",
                             "lustre",
                             "beegfs",
                             "orangefs",
                             "davfs",
                             "9p",
                             "virtiofs",
                             "vboxsf",
                             "vmhgfs",
                             "fuse.sshfs",
                             "fuse.rclone",
                             "fuse.s3fs",
                             "fuse.gcsfuse",
                             "fuse.ceph",
                             "fuse.glusterfs",
                             "fuse.davfs2",
                             "fuse.curlftpfs",
                             "fuse.smbnetfs",
                             "fuse.vmhgfs-fuse"}) {
        EXPECT_TRUE(isNetworkFileSystem(type)) << type;
        EXPECT_FALSE(isPseudoFileSystem(type)) << type;
    }
}

TEST(FileSystemKindsTests, whatADriveHoldsIsNeither) {
    for (const auto* type : {"ext4",    "xfs",      "btrfs", "vfat",          "exfat",   "ntfs3", "fuseblk",
                             "hfsplus", "apfs",     "tmpfs", "overlay",       "iso9660", "udf",   "fuse",
                             "fuse.",   "fuse.nfs", "sshfs", "fuse.mergerfs", "NFS",     ""}) {
        EXPECT_FALSE(isPseudoFileSystem(type)) << type;
        EXPECT_FALSE(isNetworkFileSystem(type)) << type;
    }
}

} // namespace
} // namespace korvanti
