// Loaded in front of the system's library (Linux): lets one system call of the cleaner fail.
//
//   KORVANTI_FAULT         "STAGE FUNCTION NUMBER ERROR": in that stage, the call of that function with that
//   number
//                          (from 1) is not made (`close` is) and fails with that error number. With error 0
//                          it is made for half of the bytes only (`read`, `write`). With error -1 the program
//                          is killed before it, with -2 behind it (`write`), half done.
//   KORVANTI_FAULT_TARGET  path: every call about it fails with the error number of KORVANTI_FAULT
//   KORVANTI_FAULT_RECORD  file that gets a line "STAGE FUNCTION NUMBER TARGET" for that one call, or for
//   every
//                          call where no fault is asked for
//   KORVANTI_FAULT_TOOLS   folder whose programs are started in place of those of the same name elsewhere: no
//                          other program is ever started
//
// What happens before the first call of `korvantiEnterStage` and after one with -1 does not count. The
// cleaner works on one thread, so nothing here is locked. A function at the end of this file ends the
// program: the cleaner is not known to call it, and if it ever does it has to be tried like the others.
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <dlfcn.h>
#include <fcntl.h>
#include <map>
#include <poll.h>
#include <pwd.h>
#include <spawn.h>
#include <string>
#include <sys/random.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/syscall.h>
#include <sys/sysinfo.h>
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
        if (std::sscanf(variable("KORVANTI_FAULT").c_str(), "%d %63s %d %d", &chosenStage, name, &number,
                        &error) == 4)
            function = name;
        if (const auto file = variable("KORVANTI_FAULT_RECORD"); !file.empty())
            record = std::fopen(file.c_str(), "ae");
        ::unsetenv("LD_PRELOAD"); // the tools that are started are left in peace
    }

    int stage = -1;                   ///< negative outside the cleaner
    std::map<std::string, int> calls; ///< in this stage
    int chosenStage = -1;
    std::string function;
    std::string target = variable("KORVANTI_FAULT_TARGET"); ///< instead of one call
    int number = 0;
    int error = 0;
    std::FILE* record = nullptr;
    std::string tools = variable("KORVANTI_FAULT_TOOLS");
};

/// Never destroyed: the program still makes calls while it ends.
Faults& faults() {
    static auto* const all = new Faults;
    return *all;
}

/// The function of the same name behind this library.
template <class Function> Function* next(const char* name, Function* /*sameType*/) {
    return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

/// What a call is about: a path, an open descriptor, or a path from an open folder.
struct Target {
    int descriptor = -1;
    const char* path = "";

    [[nodiscard]] std::string text() const {
        if (descriptor < 0)
            return path;
        char name[4096];
        const auto link = "/proc/self/fd/" + std::to_string(descriptor);
        static const auto readLink = next("readlink", &::readlink);
        const ssize_t length = readLink(link.c_str(), name, sizeof name);
        const std::string text(name, length > 0 ? static_cast<std::size_t>(length) : 0);
        if (text.starts_with("pipe:")) // its number differs from run to run, like that of the process
            return "pipe";
        if (text.starts_with("/proc/"))
            return "/proc/self" + text.substr(text.find('/', 6));
        return *path == '\0' ? text : text + "/" + path;
    }
};

enum class Turn { real, fails, half };

/// Counts a call. Sets `errno` exactly when it is to fail.
Turn turnOf(const char* function, const Target& target) {
    auto& all = faults();
    if (all.stage < 0)
        return Turn::real;
    const int before = errno;
    const int number = ++all.calls[function];
    const bool chosen = all.target.empty()
                            ? all.chosenStage == all.stage && all.function == function && all.number == number
                            : all.target == target.text();
    if (all.record && (chosen || all.function.empty())) {
        std::fprintf(all.record, "%d %s %d %s\n", all.stage, function, number, target.text().c_str());
        std::fflush(all.record);
    }
    errno = before;
    if (!chosen)
        return Turn::real;
    if (all.error == -1)
        std::raise(SIGKILL);
    if (all.error <= 0)
        return Turn::half;
    errno = all.error;
    return Turn::fails;
}

bool fails(const char* function, const Target& target) {
    return turnOf(function, target) == Turn::fails;
}

[[noreturn]] void unexpected(const char* function) {
    std::fprintf(stderr, "%s is called, and no test lets it fail\n", function);
    std::abort();
}

} // namespace

extern "C" {

void korvantiEnterStage(int stage) {
    faults().stage = stage;
    faults().calls.clear();
}

// Folders and files

int open(const char* path, int flags, ...) {
    va_list more;
    va_start(more, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(more, mode_t) : 0;
    va_end(more);
    static const auto real = next("open", &::open);
    return fails("open", {.path = path}) ? -1 : real(path, flags, mode);
}

int openat(int folder, const char* path, int flags, ...) {
    va_list more;
    va_start(more, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(more, mode_t) : 0;
    va_end(more);
    static const auto real = next("openat", &::openat);
    return fails("openat", {folder, path}) ? -1 : real(folder, path, flags, mode);
}

int close(int descriptor) {
    static const auto real = next("close", &::close);
    const bool failing = fails("close", {.descriptor = descriptor});
    const int error = errno;
    const int result = real(descriptor); // the system closes it, whatever it then says
    if (!failing)
        return result;
    errno = error;
    return -1;
}

ssize_t read(int descriptor, void* buffer, size_t size) {
    static const auto real = next("read", &::read);
    const auto turn = turnOf("read", {.descriptor = descriptor});
    return turn == Turn::fails ? -1 : real(descriptor, buffer, turn == Turn::half ? (size + 1) / 2 : size);
}

ssize_t write(int descriptor, const void* bytes, size_t size) {
    static const auto real = next("write", &::write);
    const auto turn = turnOf("write", {.descriptor = descriptor});
    if (turn == Turn::fails)
        return -1;
    const auto written = real(descriptor, bytes, turn == Turn::half ? (size + 1) / 2 : size);
    if (turn == Turn::half && faults().error < 0)
        std::raise(SIGKILL);
    return written;
}

int fstat(int descriptor, struct stat* status) noexcept {
    static const auto real = next("fstat", &::fstat);
    return fails("fstat", {.descriptor = descriptor}) ? -1 : real(descriptor, status);
}

int fstatat(int folder, const char* path, struct stat* status, int flags) noexcept {
    static const auto real = next("fstatat", &::fstatat);
    return fails("fstatat", {folder, path}) ? -1 : real(folder, path, status, flags);
}

int lstat(const char* path, struct stat* status) noexcept {
    static const auto real = next("lstat", &::lstat);
    return fails("lstat", {.path = path}) ? -1 : real(path, status);
}

int statx(int folder, const char* path, int flags, unsigned mask, struct statx* facts) noexcept {
    static const auto real = next("statx", &::statx);
    return fails("statx", {folder, path}) ? -1 : real(folder, path, flags, mask, facts);
}

/// Of all that goes through this door, the listing of a folder.
long syscall(long call, ...) noexcept {
    va_list more;
    va_start(more, call);
    const int folder = va_arg(more, int);
    void* const buffer = va_arg(more, void*);
    const auto size = va_arg(more, size_t);
    va_end(more);
    static const auto real = next("syscall", &::syscall);
    if (call == SYS_gettid) // of the library for UUIDs; never fails
        return real(call);
    if (call != SYS_getdents64)
        unexpected("syscall");
    return fails("getdents64", {.descriptor = folder}) ? -1 : real(call, folder, buffer, size);
}

int unlinkat(int folder, const char* path, int flags) noexcept {
    static const auto real = next("unlinkat", &::unlinkat);
    return fails("unlinkat", {folder, path}) ? -1 : real(folder, path, flags);
}

int mkdirat(int folder, const char* path, mode_t mode) noexcept {
    static const auto real = next("mkdirat", &::mkdirat);
    return fails("mkdirat", {folder, path}) ? -1 : real(folder, path, mode);
}

int renameat2(int from, const char* name, int to, const char* newName, unsigned flags) noexcept {
    static const auto real = next("renameat2", &::renameat2);
    return fails("renameat2", {from, name}) ? -1 : real(from, name, to, newName, flags);
}

char* realpath(const char* path, char* resolved) noexcept {
    static const auto real = next("realpath", &::realpath);
    return fails("realpath", {.path = path}) ? nullptr : real(path, resolved);
}

ssize_t getrandom(void* buffer, size_t size, unsigned flags) {
    static const auto real = next("getrandom", &::getrandom);
    return fails("getrandom", {}) ? -1 : real(buffer, size, flags);
}

// Outside tools

int pipe(int* ends) noexcept {
    static const auto real = next("pipe", &::pipe);
    return fails("pipe", {}) ? -1 : real(ends);
}

int fcntl(int descriptor, int command, ...) {
    va_list more;
    va_start(more, command);
    const long argument = va_arg(more, long);
    va_end(more);
    static const auto real = next("fcntl", &::fcntl);
    return fails("fcntl", {.path = "pipe"}) ? -1 : real(descriptor, command, argument);
}

int posix_spawn(pid_t* process, const char* path, const posix_spawn_file_actions_t* actions,
                const posix_spawnattr_t* attributes, char* const* arguments, char* const* environment) {
    static const auto real = next("posix_spawn", &::posix_spawn);
    if (fails("posix_spawn", {.path = path}))
        return errno;
    const auto standIn = faults().tools + "/" + (std::strrchr(path, '/') + 1);
    return real(process, standIn.c_str(), actions, attributes, arguments, environment);
}

int poll(pollfd* waiting, nfds_t count, int patience) {
    static const auto real = next("poll", &::poll);
    return fails("poll", {}) ? -1 : real(waiting, count, patience);
}

pid_t waitpid(pid_t process, int* status, int flags) {
    static const auto real = next("waitpid", &::waitpid);
    return fails("waitpid", {}) ? -1 : real(process, status, flags);
}

int nanosleep(const timespec* time, timespec* left) {
    static const auto real = next("nanosleep", &::nanosleep);
    return fails("nanosleep", {}) ? -1 : real(time, left);
}

int kill(pid_t process, int signal) noexcept {
    static const auto real = next("kill", &::kill);
    return fails("kill", {}) ? -1 : real(process, signal);
}

// In the same libraries as the cleaner, but not for it

int mkostemp(char*, int) {
    unexpected("mkostemp");
}
int fchmod(int, mode_t) noexcept {
    unexpected("fchmod");
}
int fsync(int) {
    unexpected("fsync");
}
int syncfs(int) noexcept {
    unexpected("syncfs");
}
int posix_fadvise(int, off_t, off_t, int) noexcept {
    unexpected("posix_fadvise");
}
int futimens(int, const timespec*) noexcept {
    unexpected("futimens");
}
ssize_t flistxattr(int, char*, size_t) noexcept {
    unexpected("flistxattr");
}
ssize_t fgetxattr(int, const char*, void*, size_t) noexcept {
    unexpected("fgetxattr");
}
int fsetxattr(int, const char*, const void*, size_t, int) noexcept {
    unexpected("fsetxattr");
}
ssize_t readlink(const char*, char*, size_t) noexcept {
    unexpected("readlink");
}
int rename(const char*, const char*) noexcept {
    unexpected("rename");
}
int unlink(const char*) noexcept {
    unexpected("unlink");
}
int mkdir(const char*, mode_t) noexcept {
    unexpected("mkdir");
}
int stat(const char*, struct stat*) noexcept {
    unexpected("stat");
}
int statvfs(const char*, struct statvfs*) noexcept {
    unexpected("statvfs");
}
int sysinfo(struct sysinfo*) noexcept {
    unexpected("sysinfo");
}
int getrlimit(__rlimit_resource_t, rlimit*) noexcept {
    unexpected("getrlimit");
}
int setrlimit(__rlimit_resource_t, const rlimit*) noexcept {
    unexpected("setrlimit");
}
int setpriority(__priority_which_t, id_t, int) noexcept {
    unexpected("setpriority");
}
int getpwuid_r(uid_t, passwd*, char*, size_t, passwd**) {
    unexpected("getpwuid_r");
}

} // extern "C"
