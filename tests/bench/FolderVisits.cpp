// Loaded in front of the system's library (Linux): counts how often the program opens each folder to list it,
// and writes "COUNT PATH" lines to the file that KORVANTI_VISITS names when the program ends.
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <fcntl.h>
#include <map>
#include <mutex>
#include <string>
#include <unistd.h>

namespace {

/// Never destroyed: other threads may still open something while the process ends.
struct Visits {
    std::mutex mutex;
    std::map<std::string, long> counts;
};

Visits& visits() {
    static auto* const all = new Visits;
    return *all;
}

void count(int descriptor) {
    char path[4096];
    const auto link = "/proc/self/fd/" + std::to_string(descriptor);
    const ssize_t length = ::readlink(link.c_str(), path, sizeof path);
    if (length <= 0)
        return;
    const std::scoped_lock lock(visits().mutex);
    ++visits().counts[std::string(path, static_cast<std::size_t>(length))];
}

[[gnu::destructor]] void write() {
    const char* const file = std::getenv("KORVANTI_VISITS");
    std::FILE* const out = file ? std::fopen(file, "w") : nullptr;
    if (!out)
        return;
    const std::scoped_lock lock(visits().mutex);
    for (const auto& [path, times] : visits().counts)
        std::fprintf(out, "%ld %s\n", times, path.c_str());
    std::fclose(out);
}

template <class Function> Function next(const char* name) {
    return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, name));
}

int counted(int descriptor, int flags) {
    if (descriptor >= 0 && (flags & O_DIRECTORY) != 0)
        count(descriptor);
    return descriptor;
}

} // namespace

extern "C" int open(const char* path, int flags, ...) {
    va_list more;
    va_start(more, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(more, mode_t) : 0;
    va_end(more);
    static const auto real = next<int (*)(const char*, int, ...)>("open");
    return counted(real(path, flags, mode), flags);
}

extern "C" int openat(int folder, const char* path, int flags, ...) {
    va_list more;
    va_start(more, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(more, mode_t) : 0;
    va_end(more);
    static const auto real = next<int (*)(int, const char*, int, ...)>("openat");
    return counted(real(folder, path, flags, mode), flags);
}
