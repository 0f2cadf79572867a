#include "support/Mount.h"

#include <cerrno>
#include <cstring>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <utility>

namespace korvanti::testing {

Mount::Mount(std::string point) : point_(std::move(point)) {
    mount("box", "tmpfs", 0);
}

Mount::Mount(std::string point, std::int64_t room) : point_(std::move(point)) {
    mount("box", "tmpfs", 0, "size=" + std::to_string(room));
}

Mount::Mount(const std::string& source, std::string point) : point_(std::move(point)) {
    mount(source, nullptr, MS_BIND);
}

Mount::~Mount() {
    ::umount2(point_.c_str(), MNT_DETACH | UMOUNT_NOFOLLOW);
}

void Mount::mount(const std::string& source, const char* type, unsigned long flags,
                  const std::string& options) const {
    if (::mount(source.c_str(), point_.c_str(), type, flags, options.c_str()) != 0)
        ADD_FAILURE() << "mount on " << point_ << ": " << std::strerror(errno);
}

} // namespace korvanti::testing
