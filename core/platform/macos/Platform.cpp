#include "platform/Platform.h"

#include "base/SystemCall.h"
#include "platform/EntryKinds.h"
#include "platform/macos/WithoutFetching.h"

#include <algorithm>
#include <cerrno>
#include <copyfile.h>
#include <cstdlib>
#include <fcntl.h>
#include <mach-o/dyld.h>
#include <pthread.h>
#include <pthread/qos.h>
#include <pwd.h>
#include <sys/mount.h>
#include <sys/param.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/sysctl.h>
#include <sys/syslimits.h>
#include <unistd.h>

namespace korvanti::Platform {
namespace {

/// Absolute and without a trailing slash, or empty.
std::string asHome(const char* path) {
    if (!path || *path != '/')
        return {};
    std::string home = path;
    while (home.size() > 1 && home.ends_with('/'))
        home.pop_back();
    return home;
}

std::string homeOfAccount() {
    std::vector<char> texts(4096);
    passwd account{};
    passwd* found = nullptr;
    int error = 0;
    while ((error = ::getpwuid_r(::getuid(), &account, texts.data(), texts.size(), &found)) == ERANGE)
        texts.resize(texts.size() * 2);
    return error == 0 && found ? asHome(found->pw_dir) : std::string();
}

template <class Value> Value systemValue(const char* name) {
    Value value{};
    std::size_t size = sizeof value;
    if (::sysctlbyname(name, &value, &size, nullptr, 0) != 0 || size != sizeof value)
        return {};
    return value;
}

bool isNotSupported(int error) {
    return error == ENOTSUP || error == ENOTTY || error == EINVAL;
}

constexpr int folderFlags = O_RDONLY | O_DIRECTORY | O_NONBLOCK | O_CLOEXEC;
constexpr int passageFlags = O_SEARCH | O_CLOEXEC;

} // namespace

// The platform's own order. $HOME comes last: a program started with another one still works on its user's
// home.
std::string homeFolder() {
    if (!::issetugid())
        if (auto home = asHome(std::getenv("CFFIXED_USER_HOME")); !home.empty())
            return home;
    if (auto home = homeOfAccount(); !home.empty())
        return home;
    if (auto home = asHome(std::getenv("HOME")); !home.empty())
        return home;
    return "/";
}

std::string executablePath() {
    std::uint32_t size = 0;
    ::_NSGetExecutablePath(nullptr, &size); // tells how much there is
    std::string path(size, '\0');
    char resolved[PATH_MAX];
    if (::_NSGetExecutablePath(path.data(), &size) != 0 || !::realpath(path.c_str(), resolved))
        return {};
    return resolved;
}

std::vector<std::string> mountPoints() {
    const int expected = ::getfsstat(nullptr, 0, MNT_NOWAIT);
    if (expected < 1)
        return {};
    // Mounts come and go between the two calls.
    std::vector<struct statfs> mounts(static_cast<std::size_t>(expected) + 8);
    const int count =
        ::getfsstat(mounts.data(), static_cast<int>(mounts.size() * sizeof mounts.front()), MNT_NOWAIT);
    if (count < 1)
        return {};
    mounts.resize(std::min(mounts.size(), static_cast<std::size_t>(count)));

    std::vector<std::string> paths;
    paths.reserve(mounts.size());
    for (const auto& mount : mounts)
        paths.emplace_back(mount.f_mntonname);
    return paths;
}

// There are none here.
int openNamelessFile(const std::string& /*folder*/) {
    errno = ENOTSUP;
    return -1;
}

void bypassCache(int file) {
    ::fcntl(file, F_NOCACHE, 1);
}

// Past the drive's own cache. Where there is no such command the plain one must do; any other error is one.
int flushFile(int file) {
    if (uninterrupted([&] { return ::fcntl(file, F_FULLFSYNC); }) == 0)
        return 0;
    if (!isNotSupported(errno))
        return errno;
    return uninterrupted([&] { return ::fsync(file); }) == 0 ? 0 : errno;
}

// These calls give the error number itself.
int flushVolume(int file) {
    const auto flush = [file](int flags) {
        int error = EINTR;
        while (error == EINTR)
            error = ::fsync_volume_np(file, flags);
        return error;
    };
    const int error = flush(SYNC_VOLUME_FULLSYNC | SYNC_VOLUME_WAIT);
    return isNotSupported(error) ? flush(SYNC_VOLUME_WAIT) : error;
}

int copyFolderFacts(int from, int to) {
    return uninterrupted([&] { return ::fcopyfile(from, to, nullptr, COPYFILE_METADATA); }) == 0 ? 0 : errno;
}

std::int64_t swapUsed() {
    return static_cast<std::int64_t>(systemValue<xsw_usage>("vm.swapusage").xsu_used);
}

std::int64_t physicalMemory() {
    return static_cast<std::int64_t>(systemValue<std::uint64_t>("hw.memsize"));
}

// The listing tells where a volume is mounted, so `mountRoot` is not asked for here.
std::optional<FolderIdentity> folderIdentity(int folder) {
    struct stat info {};
    if (::fstat(folder, &info) != 0)
        return std::nullopt;
    const auto identity = identityOf(info);
    return FolderIdentity{.device = identity.device, .inode = identity.inode};
}

int openFolder(const std::string& path, Links links) {
    const WithoutFetching guard;
    const int flags = links == Links::follow ? folderFlags : folderFlags | O_NOFOLLOW;
    return uninterrupted([&] { return ::open(path.c_str(), flags); });
}

int openFolderAt(int parent, const char* name) {
    const WithoutFetching guard;
    return uninterrupted([&] { return ::openat(parent, name, folderFlags | O_NOFOLLOW); });
}

int openPassage(const std::string& path) {
    const WithoutFetching guard;
    return uninterrupted([&] { return ::open(path.c_str(), passageFlags); });
}

int openPassageAt(int parent, const char* name) {
    const WithoutFetching guard;
    return uninterrupted([&] { return ::openat(parent, name, passageFlags | O_NOFOLLOW); });
}

// APFS never gives a number twice.
std::expected<FileDescriptor, int> holdEntryAt(int /*parent*/, const char* /*name*/) {
    return {};
}

void giveWay() {
    ::pthread_set_qos_class_self_np(QOS_CLASS_UTILITY, 0);
}

int inheritOnlyStreams(posix_spawnattr_t& attributes, posix_spawn_file_actions_t& /*actions*/) {
    short flags = 0;
    if (const int error = ::posix_spawnattr_getflags(&attributes, &flags); error != 0)
        return error;
    return ::posix_spawnattr_setflags(&attributes, static_cast<short>(flags | POSIX_SPAWN_CLOEXEC_DEFAULT));
}

void raiseOpenFileLimit() {
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0)
        return;
    // Above OPEN_MAX the system refuses, even where the hard limit is "unlimited".
    const rlim_t wanted = std::min<rlim_t>(limit.rlim_max, OPEN_MAX);
    if (limit.rlim_cur >= wanted)
        return;
    limit.rlim_cur = wanted;
    ::setrlimit(RLIMIT_NOFILE, &limit);
}

} // namespace korvanti::Platform
