#pragma once

#include <cerrno>
#include <sys/resource.h>

namespace korvanti::Platform {

/// While it lives, this thread is refused what lies in a cloud only (EDEADLK) instead of waiting until it is
/// fetched. Keeps `errno`. Not for a whole thread: one that copies files later must be able to fetch them.
class WithoutFetching {
public:
    WithoutFetching() : before_(::getiopolicy_np(type, IOPOL_SCOPE_THREAD)) {
        set(IOPOL_MATERIALIZE_DATALESS_FILES_OFF);
    }
    WithoutFetching(const WithoutFetching&) = delete;
    WithoutFetching& operator=(const WithoutFetching&) = delete;
    ~WithoutFetching() { set(before_ < 0 ? IOPOL_MATERIALIZE_DATALESS_FILES_DEFAULT : before_); }

private:
    static constexpr int type = IOPOL_TYPE_VFS_MATERIALIZE_DATALESS_FILES;

    static void set(int policy) {
        const int kept = errno;
        ::setiopolicy_np(type, IOPOL_SCOPE_THREAD, policy);
        errno = kept;
    }

    int before_;
};

} // namespace korvanti::Platform
