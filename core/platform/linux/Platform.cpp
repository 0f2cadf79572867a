#include "platform/Platform.h"

#include "base/FileDescriptor.h"
#include "base/SystemCall.h"
#include "platform/linux/MountInfo.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <pwd.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/sysinfo.h>
#include <sys/sysmacros.h>
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

/// A file of /proc has no length of its own, so it is read to its end. Empty when any of it can't be read.
std::string kernelFile(const char* path) {
    std::string text;
    const FileDescriptor file(uninterrupted([&] { return ::open(path, O_RDONLY | O_CLOEXEC); }));
    char buffer[16 * 1024];
    while (true) {
        const auto count = uninterrupted([&] { return ::read(file.get(), buffer, sizeof buffer); });
        if (count < 0)
            return {};
        if (count == 0)
            return text;
        text.append(buffer, static_cast<std::size_t>(count));
    }
}

/// Sizes beyond the signed range are as good as its end.
std::int64_t saturatedProduct(std::uint64_t count, std::uint64_t unit) {
    std::int64_t product = 0;
    return __builtin_mul_overflow(count, unit, &product) ? INT64_MAX : product;
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
