// Loaded in front of the system's library (Linux): counts the system calls of a program on all of its
// threads, and lets one of them fail or be the last.
//
//   KORVANTI_FAULT         "FUNCTION NUMBER ERROR": the call of that function with that number (from 1; "*"
//                          counts all functions together) is not made and fails with that error number. With
//                          error -1 the program is killed before it, with -2 behind it.
//   KORVANTI_FAULT_RECORD  file that gets a line "FUNCTION TARGET" for that one call, or for every call where
//                          no fault is asked for
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <fcntl.h>
#include <map>
#include <mutex>
#include <poll.h>
#include <spawn.h>
#include <string>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

std::string variable(const char* name) {
    const char* const value = std::getenv(name);
    return value ? value : "";
}

struct Faults {
    Faults() {
        char name[64] = "";
        if (std::sscanf(variable("KORVANTI_FAULT").c_str(), "%63s %d %d", name, &number, &error) == 3)
            function = name;
        if (const auto file = variable("KORVANTI_FAULT_RECORD"); !file.empty())
            record = std::fopen(file.c_str(), "ae");
        ::unsetenv("LD_PRELOAD"); // the tools that are started are left in peace
    }

    std::mutex mutex;
    std::map<std::string, int> calls;
    std::string function;
    int number = 0;
    int error = 0;
    std::FILE* record = nullptr;
};

/// Never destroyed: the program still makes calls while it ends.
Faults& faults() {
    static auto* const all = new Faults;
    return *all;
}

/// What a call is about: a path, an open descriptor, or a path from an open folder.
struct Target {
    int descriptor = -1;
    const char* path = "";

    [[nodiscard]] std::string text() const {
        if (descriptor < 0 || *path == '/')
            return path;
        char name[4096];
        static const auto readLink =
            reinterpret_cast<ssize_t (*)(const char*, char*, size_t)>(::dlsym(RTLD_NEXT, "readlink"));
        const auto link = "/proc/self/fd/" + std::to_string(descriptor);
        const ssize_t length = readLink(link.c_str(), name, sizeof name);
        const std::string text(name, length > 0 ? static_cast<std::size_t>(length) : 0);
        return *path == '\0' ? text : text + "/" + path;
    }
};

/// Counts a call. True when it is the one.
bool isChosen(const char* function, const Target& target) {
    auto& all = faults();
    const int before = errno;
    const std::lock_guard lock(all.mutex);
    const int number = ++all.calls[function];
    const int numberOfAll = ++all.calls["*"];
    const bool chosen =
        all.function == "*" ? all.number == numberOfAll : all.function == function && all.number == number;
    if (all.record && (chosen || all.function.empty())) {
        std::fprintf(all.record, "%s %s\n", function, target.text().c_str());
        std::fflush(all.record);
    }
    errno = before;
    return chosen;
}

/// Makes a call, unless it is to fail. `failure` is what the function gives then, besides `errno`.
template <class Real, class Result>
auto made(const char* function, const Target& target, const Real& real, Result failure) {
    const bool chosen = isChosen(function, target);
    const int error = faults().error;
    if (chosen && error == -1)
        std::raise(SIGKILL);
    if (chosen && error > 0) {
        errno = error;
        return static_cast<decltype(real())>(failure);
    }
    const auto result = real();
    if (chosen)
        std::raise(SIGKILL);
    return result;
}

template <class Real> auto made(const char* function, const Target& target, const Real& real) {
    return made(function, target, real, -1);
}

/// The function of the same name behind this library.
template <class Function> Function* next(const char* name, Function* /*sameType*/) {
    return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

} // namespace

extern "C" {

int open(const char* path, int flags, ...) {
    va_list more;
    va_start(more, flags);
    const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(more, mode_t) : 0;
    va_end(more);
    static const auto real = next("open", &::open);
    return made("open", {.path = path}, [&] { return real(path, flags, mode); });
}

int openat(int folder, const char* path, int flags, ...) {
    va_list more;
    va_start(more, flags);
    const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(more, mode_t) : 0;
    va_end(more);
    static const auto real = next("openat", &::openat);
    return made("openat", {folder, path}, [&] { return real(folder, path, flags, mode); });
}

int mkostemp(char* path, int flags) {
    static const auto real = next("mkostemp", &::mkostemp);
    return made("mkostemp", {.path = path}, [&] { return real(path, flags); });
}

ssize_t read(int descriptor, void* buffer, size_t size) {
    static const auto real = next("read", &::read);
    return made("read", {.descriptor = descriptor}, [&] { return real(descriptor, buffer, size); });
}

ssize_t write(int descriptor, const void* bytes, size_t size) {
    static const auto real = next("write", &::write);
    return made("write", {.descriptor = descriptor}, [&] { return real(descriptor, bytes, size); });
}

ssize_t copy_file_range(int from, off64_t* at, int to, off64_t* toOffset, size_t size, unsigned flags) {
    static const auto real = next("copy_file_range", &::copy_file_range);
    return made("copy_file_range", {.descriptor = to},
                [&] { return real(from, at, to, toOffset, size, flags); });
}

int fstat(int descriptor, struct stat* status) noexcept {
    static const auto real = next("fstat", &::fstat);
    return made("fstat", {.descriptor = descriptor}, [&] { return real(descriptor, status); });
}

int fstatat(int folder, const char* path, struct stat* status, int flags) noexcept {
    static const auto real = next("fstatat", &::fstatat);
    return made("fstatat", {folder, path}, [&] { return real(folder, path, status, flags); });
}

int lstat(const char* path, struct stat* status) noexcept {
    static const auto real = next("lstat", &::lstat);
    return made("lstat", {.path = path}, [&] { return real(path, status); });
}

int stat(const char* path, struct stat* status) noexcept {
    static const auto real = next("stat", &::stat);
    return made("stat", {.path = path}, [&] { return real(path, status); });
}

int statx(int folder, const char* path, int flags, unsigned mask, struct statx* facts) noexcept {
    static const auto real = next("statx", &::statx);
    return made("statx", {folder, path}, [&] { return real(folder, path, flags, mask, facts); });
}

int statvfs(const char* path, struct statvfs* facts) noexcept {
    static const auto real = next("statvfs", &::statvfs);
    return made("statvfs", {.path = path}, [&] { return real(path, facts); });
}

/// Of all that goes through this door, the listing of a folder; locks of threads and the like pass.
long syscall(long call, ...) noexcept {
    va_list more;
    va_start(more, call);
    long words[6];
    for (auto& word : words)
        word = va_arg(more, long);
    va_end(more);
    // Without the lock around a static's beginning: where that is taken, it comes through this door itself.
    static constinit std::atomic<long (*)(long, ...) noexcept> known = nullptr;
    if (!known)
        known = next("syscall", &::syscall);
    const auto real = known.load();
    const auto go = [&] { return real(call, words[0], words[1], words[2], words[3], words[4], words[5]); };
    return call == SYS_getdents64 ? made("getdents64", {.descriptor = static_cast<int>(words[0])}, go) : go();
}

int unlinkat(int folder, const char* path, int flags) noexcept {
    static const auto real = next("unlinkat", &::unlinkat);
    return made("unlinkat", {folder, path}, [&] { return real(folder, path, flags); });
}

int unlink(const char* path) noexcept {
    static const auto real = next("unlink", &::unlink);
    return made("unlink", {.path = path}, [&] { return real(path); });
}

int mkdirat(int folder, const char* path, mode_t mode) noexcept {
    static const auto real = next("mkdirat", &::mkdirat);
    return made("mkdirat", {folder, path}, [&] { return real(folder, path, mode); });
}

int mkdir(const char* path, mode_t mode) noexcept {
    static const auto real = next("mkdir", &::mkdir);
    return made("mkdir", {.path = path}, [&] { return real(path, mode); });
}

int rename(const char* from, const char* to) noexcept {
    static const auto real = next("rename", &::rename);
    return made("rename", {.path = to}, [&] { return real(from, to); });
}

int renameat2(int from, const char* name, int to, const char* newName, unsigned flags) noexcept {
    static const auto real = next("renameat2", &::renameat2);
    return made("renameat2", {from, name}, [&] { return real(from, name, to, newName, flags); });
}

int symlink(const char* text, const char* path) noexcept {
    static const auto real = next("symlink", &::symlink);
    return made("symlink", {.path = path}, [&] { return real(text, path); });
}

int symlinkat(const char* text, int folder, const char* path) noexcept {
    static const auto real = next("symlinkat", &::symlinkat);
    return made("symlinkat", {folder, path}, [&] { return real(text, folder, path); });
}

int linkat(int from, const char* name, int to, const char* newName, int flags) noexcept {
    static const auto real = next("linkat", &::linkat);
    return made("linkat", {to, newName}, [&] { return real(from, name, to, newName, flags); });
}

ssize_t readlink(const char* path, char* text, size_t size) noexcept {
    static const auto real = next("readlink", &::readlink);
    return made("readlink", {.path = path}, [&] { return real(path, text, size); });
}

ssize_t readlinkat(int folder, const char* path, char* text, size_t size) noexcept {
    static const auto real = next("readlinkat", &::readlinkat);
    return made("readlinkat", {folder, path}, [&] { return real(folder, path, text, size); });
}

char* realpath(const char* path, char* resolved) noexcept {
    static const auto real = next("realpath", &::realpath);
    return made(
        "realpath", {.path = path}, [&] { return real(path, resolved); }, nullptr);
}

int fchmod(int descriptor, mode_t mode) noexcept {
    static const auto real = next("fchmod", &::fchmod);
    return made("fchmod", {.descriptor = descriptor}, [&] { return real(descriptor, mode); });
}

int utimensat(int folder, const char* path, const timespec* times, int flags) noexcept {
    static const auto real = next("utimensat", &::utimensat);
    return made("utimensat", {folder, path}, [&] { return real(folder, path, times, flags); });
}

int flock(int descriptor, int operation) noexcept {
    static const auto real = next("flock", &::flock);
    return made("flock", {.descriptor = descriptor}, [&] { return real(descriptor, operation); });
}

int fsync(int descriptor) {
    static const auto real = next("fsync", &::fsync);
    return made("fsync", {.descriptor = descriptor}, [&] { return real(descriptor); });
}

int syncfs(int descriptor) noexcept {
    static const auto real = next("syncfs", &::syncfs);
    return made("syncfs", {.descriptor = descriptor}, [&] { return real(descriptor); });
}

int pipe(int* ends) noexcept {
    static const auto real = next("pipe", &::pipe);
    return made("pipe", {}, [&] { return real(ends); });
}

int posix_spawn(pid_t* process, const char* path, const posix_spawn_file_actions_t* actions,
                const posix_spawnattr_t* attributes, char* const* arguments, char* const* environment) {
    static const auto real = next("posix_spawn", &::posix_spawn);
    return made(
        "posix_spawn", {.path = path},
        [&] { return real(process, path, actions, attributes, arguments, environment); }, faults().error);
}

int poll(pollfd* waiting, nfds_t count, int patience) {
    static const auto real = next("poll", &::poll);
    return made("poll", {}, [&] { return real(waiting, count, patience); });
}

pid_t waitpid(pid_t process, int* status, int flags) {
    static const auto real = next("waitpid", &::waitpid);
    return made("waitpid", {}, [&] { return real(process, status, flags); });
}

} // extern "C"
