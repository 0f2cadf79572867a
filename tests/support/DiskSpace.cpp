#include "support/DiskSpace.h"

#include <atomic>
#include <dlfcn.h>
#include <sys/statvfs.h>

namespace korvanti::testing {
namespace {

std::atomic<bool> isTold = false;
std::atomic<std::int64_t> toldAvailable = 0;
std::atomic<std::int64_t> toldTotal = 0;

} // namespace

DiskSpace::DiskSpace(std::int64_t available, std::int64_t total) {
    toldAvailable = available;
    toldTotal = total;
    isTold = true;
}

DiskSpace::~DiskSpace() {
    isTold = false;
}

} // namespace korvanti::testing

// In the place of the C library's own.
extern "C" int statvfs(const char* __restrict path, struct statvfs* __restrict volume) noexcept {
    using Original = int (*)(const char*, struct statvfs*);
    static const auto original = reinterpret_cast<Original>(::dlsym(RTLD_NEXT, "statvfs"));
    const int result = original(path, volume);
    if (result == 0 && korvanti::testing::isTold) {
        volume->f_frsize = 1;
        volume->f_bavail = static_cast<fsblkcnt_t>(korvanti::testing::toldAvailable.load());
        volume->f_blocks = static_cast<fsblkcnt_t>(korvanti::testing::toldTotal.load());
    }
    return result;
}
