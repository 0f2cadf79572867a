#include "Machine.h"

#include "base/FileDescriptor.h"

#include <cstdlib>
#include <fcntl.h>
#include <fmt/format.h>
#include <fstream>
#include <sys/utsname.h>
#include <unistd.h>
#ifdef __APPLE__
#include <sys/mount.h>
#include <sys/param.h>
#include <sys/sysctl.h>
#else
#include <sched.h>
#include <sstream>
#endif

namespace korvanti::bench {
namespace {

#ifdef __APPLE__

std::string processor() {
    char name[256] = {};
    std::size_t length = sizeof name - 1;
    return ::sysctlbyname("machdep.cpu.brand_string", name, &length, nullptr, 0) == 0 ? name : "unknown";
}

std::string fileSystem(const std::string& path) {
    struct statfs volume {};
    return ::statfs(path.c_str(), &volume) == 0 ? volume.f_fstypename : "unknown";
}

#else

std::string processor() {
    std::ifstream lines("/proc/cpuinfo");
    for (std::string line; std::getline(lines, line);)
        if (line.starts_with("model name"))
            return line.substr(line.find(':') + 2);
    return "unknown";
}

/// Type and options of the mount that holds a path: the last one with the longest mount point.
std::string fileSystem(const std::string& path) {
    std::ifstream lines("/proc/self/mountinfo");
    std::string best = "unknown";
    std::size_t bestLength = 0;
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::string word, point, type, source, options;
        words >> word >> word >> word >> word >> point;
        while (words >> word && word != "-") {
        }
        words >> type >> source >> options;
        const bool holds = point == "/" || path == point || path.starts_with(point + "/");
        if (holds && point.size() >= bestLength) {
            bestLength = point.size();
            best = fmt::format("{} ({}), {}", type, source, options);
        }
    }
    return best;
}

#endif

} // namespace

#ifdef __APPLE__

bool keepToTwoCores() {
    return false;
}

bool canDropCaches() {
    return ::geteuid() == 0 && ::access("/usr/sbin/purge", X_OK) == 0;
}

bool dropCaches() {
    return std::system("/usr/sbin/purge") == 0;
}

#else

bool keepToTwoCores() {
    cpu_set_t allowed, two;
    CPU_ZERO(&two);
    if (::sched_getaffinity(0, sizeof allowed, &allowed) != 0)
        return false;
    for (int core = 0; core < CPU_SETSIZE && CPU_COUNT(&two) < 2; ++core)
        if (CPU_ISSET(core, &allowed))
            CPU_SET(core, &two);
    return ::sched_setaffinity(0, sizeof two, &two) == 0;
}

namespace {
constexpr auto dropFile = "/proc/sys/vm/drop_caches";
}

bool canDropCaches() {
    return ::access(dropFile, W_OK) == 0;
}

bool dropCaches() {
    ::sync();
    const FileDescriptor file(::open(dropFile, O_WRONLY | O_CLOEXEC));
    return file && ::write(file.get(), "3\n", 2) == 2;
}

#endif

std::string machineFacts(const std::string& path) {
    utsname system{};
    ::uname(&system);
    double load[1] = {};
    const bool loadKnown = ::getloadavg(load, 1) == 1;
    const double memory = static_cast<double>(::sysconf(_SC_PHYS_PAGES)) *
                          static_cast<double>(::sysconf(_SC_PAGESIZE)) / (1024.0 * 1024 * 1024);
    return fmt::format("processor    {}\n"
                       "cores        {}\n"
                       "memory       {:.1f} GiB\n"
                       "kernel       {} {} {}\n"
                       "file system  {}\n"
                       "load         {}\n",
                       processor(), ::sysconf(_SC_NPROCESSORS_ONLN), memory, system.sysname, system.release,
                       system.machine, fileSystem(path),
                       loadKnown ? fmt::format("{:.2f}", load[0]) : "unknown");
}

} // namespace korvanti::bench
