#include "platform/Platform.h"

#include "base/FileDescriptor.h"
#include "base/SystemCall.h"
#include "platform/linux/KernelFile.h"
#include "platform/linux/MountInfo.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <fcntl.h>
#include <linux/limits.h>
#include <pwd.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/sysinfo.h>
#include <sys/sysmacros.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace korvanti::Platform {
namespace {

std::string withoutTrailingSlashes(std::string path) {
    while (path.size() > 1 && path.ends_with('/'))
        path.pop_back();
    return path;
}

/// The home folder in the account database.
std::string accountHome() {
    std::vector<char> memory(16'384);
    passwd record{};
    passwd* found = nullptr;
    int error = 0;
    while ((error = ::getpwuid_r(::getuid(), &record, memory.data(), memory.size(), &found)) == ERANGE)
        memory.resize(memory.size() * 2);
    return error == 0 && found ? found->pw_dir : std::string();
}

/// Sizes beyond the signed range are as good as its end.
std::int64_t saturatedProduct(std::uint64_t count, std::uint64_t unit) {
    std::int64_t product = 0;
    return __builtin_mul_overflow(count, unit, &product) ? INT64_MAX : product;
}

/// Those that an ordinary user may set. 0, or -1 with `errno`.
int copyAttributes(int from, int to) {
    std::vector<char> names(XATTR_LIST_MAX);
    std::vector<char> value(XATTR_SIZE_MAX);
    const auto length = uninterrupted([&] { return ::flistxattr(from, names.data(), names.size()); });
    if (length < 0)
        return errno == ENOTSUP ? 0 : -1;
    std::string_view rest(names.data(), static_cast<std::size_t>(length));
    while (!rest.empty()) {
        const char* name = rest.data();
        rest.remove_prefix(std::string_view(name).size() + 1);
        if (!std::string_view(name).starts_with("user.") &&
            !std::string_view(name).starts_with("system.posix_acl_"))
            continue;
        const auto size = uninterrupted([&] { return ::fgetxattr(from, name, value.data(), value.size()); });
        if (size < 0 || uninterrupted([&] {
                            return ::fsetxattr(to, name, value.data(), static_cast<std::size_t>(size), 0);
                        }) != 0)
            return -1;
    }
    return 0;
}

constexpr int folderFlags = O_RDONLY | O_DIRECTORY | O_NONBLOCK | O_CLOEXEC;
constexpr int passageFlags = O_PATH | O_DIRECTORY | O_CLOEXEC;

} // namespace

std::string homeFolder() {
    const char* variable = std::getenv("HOME");
    if (variable && variable[0] == '/')
        return withoutTrailingSlashes(variable);
    const auto account = accountHome();
    return account.starts_with('/') ? withoutTrailingSlashes(account) : "/";
}

std::string executablePath() {
    std::string path(PATH_MAX, '\0');
    const auto length = ::readlink("/proc/self/exe", path.data(), path.size());
    if (length <= 0 || static_cast<std::size_t>(length) == path.size())
        return {};
    path.resize(static_cast<std::size_t>(length));
    return path;
}

std::vector<std::string> mountPoints() {
    return mountPointsFromMountInfo(kernelFile("/proc/self/mountinfo"));
}

VolumeCapacity volumeCapacity(const std::string& path) {
    struct statvfs volume {};
    if (::statvfs(path.c_str(), &volume) != 0)
        return {};
    const auto available = saturatedProduct(volume.f_bavail, volume.f_frsize);
    return {.total = saturatedProduct(volume.f_blocks, volume.f_frsize),
            .available = available,
            .availableImportant = available}; // nothing is purgeable
}

void bypassCache(int file) {
    const int flags = uninterrupted([&] { return ::fcntl(file, F_GETFL); });
    if (flags >= 0) // refused where the file system can't: a plain file is right, too
        ::fcntl(file, F_SETFL, flags | O_DIRECT);
    ::posix_fadvise(file, 0, 0, POSIX_FADV_DONTNEED);
}

int flushFile(int file) {
    return uninterrupted([&] { return ::fsync(file); }) == 0 ? 0 : errno;
}

int flushVolume(int file) {
    return uninterrupted([&] { return ::syncfs(file); }) == 0 ? 0 : errno;
}

int copyFolderFacts(int from, int to) {
    struct stat facts {};
    if (uninterrupted([&] { return ::fstat(from, &facts); }) != 0 || copyAttributes(from, to) != 0 ||
        uninterrupted([&] { return ::fchmod(to, facts.st_mode & 07777); }) != 0)
        return errno;
    const timespec times[] = {facts.st_atim, facts.st_mtim};
    return uninterrupted([&] { return ::futimens(to, times); }) == 0 ? 0 : errno;
}

std::int64_t swapUsed() {
    struct sysinfo system {};
    if (::sysinfo(&system) != 0 || system.freeswap > system.totalswap)
        return 0;
    return saturatedProduct(system.totalswap - system.freeswap, system.mem_unit);
}

std::int64_t physicalMemory() {
    struct sysinfo system {};
    if (::sysinfo(&system) != 0)
        return 0;
    return saturatedProduct(system.totalram, system.mem_unit);
}

SpotlightUsage applicationUsage(const std::string& /*bundle*/) {
    return {};
}

std::optional<FolderIdentity> folderIdentity(int folder) {
    struct statx facts {};
    if (uninterrupted(
            [&] { return ::statx(folder, "", AT_EMPTY_PATH | AT_NO_AUTOMOUNT, STATX_INO, &facts); }) != 0)
        return std::nullopt;
    return FolderIdentity{.device = ::gnu_dev_makedev(facts.stx_dev_major, facts.stx_dev_minor),
                          .inode = facts.stx_ino,
                          .mountRoot = (facts.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0};
}

int openFolder(const std::string& path, Links links) {
    const int flags = links == Links::follow ? folderFlags : folderFlags | O_NOFOLLOW;
    return uninterrupted([&] { return ::open(path.c_str(), flags); });
}

int openFolderAt(int parent, const char* name) {
    return uninterrupted([&] { return ::openat(parent, name, folderFlags | O_NOFOLLOW); });
}

int openPassage(const std::string& path) {
    return uninterrupted([&] { return ::open(path.c_str(), passageFlags); });
}

int openPassageAt(int parent, const char* name) {
    return uninterrupted([&] { return ::openat(parent, name, passageFlags | O_NOFOLLOW); });
}

std::expected<FileDescriptor, int> holdEntryAt(int parent, const char* name) {
    FileDescriptor held(
        uninterrupted([&] { return ::openat(parent, name, O_PATH | O_NOFOLLOW | O_CLOEXEC); }));
    if (!held)
        return std::unexpected(errno);
    return held;
}

void giveWay() {
    constexpr int nice = 10;
    ::setpriority(PRIO_PROCESS, 0, nice); // of this thread alone, unlike elsewhere
}

int inheritOnlyStreams(posix_spawnattr_t& /*attributes*/, posix_spawn_file_actions_t& actions) {
    return ::posix_spawn_file_actions_addclosefrom_np(&actions, 3);
}

void raiseOpenFileLimit() {
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0)
        return;
    // Enough for every folder on the way down the deepest tree, and far below what the kernel gives each
    // process.
    constexpr rlim_t wanted = 65'536;
    limit.rlim_cur = std::max(limit.rlim_cur, std::min(limit.rlim_max, wanted));
    ::setrlimit(RLIMIT_NOFILE, &limit);
}

} // namespace korvanti::Platform
