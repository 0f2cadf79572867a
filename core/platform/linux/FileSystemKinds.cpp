#include "platform/linux/FileSystemKinds.h"

#include <algorithm>
#include <iterator>

namespace korvanti::Platform {
namespace {

constexpr std::string_view pseudoFileSystems[] = {
    "autofs",     "binfmt_misc", "bpf",      "cgroup",  "cgroup2",         "configfs",   "debugfs",
    "devpts",     "devtmpfs",    "efivarfs", "fusectl", "fuse.gvfsd-fuse", "fuse.lxcfs", "fuse.portal",
    "hugetlbfs",  "mqueue",      "nsfs",     "proc",    "pstore",          "resctrl",    "rpc_pipefs",
    "securityfs", "selinuxfs",   "smackfs",  "sysfs",   "tracefs"};

constexpr std::string_view networkFileSystems[] = {
    "9p",    "afs", "beegfs", "ceph",     "cifs", "coda",  "davfs",  "glusterfs", "lustre",
    "ncpfs", "nfs", "nfs4",   "orangefs", "smb3", "smbfs", "vboxsf", "virtiofs",  "vmhgfs"};

/// The same behind "fuse.".
constexpr std::string_view networkPrograms[] = {"ceph",   "curlftpfs", "davfs2",   "gcsfuse", "glusterfs",
                                                "rclone", "s3fs",      "smbnetfs", "sshfs",   "vmhgfs-fuse"};

bool isAmong(const auto& names, std::string_view name) {
    return std::ranges::find(names, name) != std::end(names);
}

} // namespace

bool isPseudoFileSystem(std::string_view type) {
    return isAmong(pseudoFileSystems, type);
}

bool isNetworkFileSystem(std::string_view type) {
    constexpr std::string_view program = "fuse.";
    return type.starts_with(program) ? isAmong(networkPrograms, type.substr(program.size()))
                                     : isAmong(networkFileSystems, type);
}

} // namespace korvanti::Platform
