#pragma once

#include <cstdint>

namespace korvanti::testing {

/// Every volume of the system has this capacity for this process, while this object lives.
class DiskSpace {
public:
    DiskSpace(std::int64_t available, std::int64_t total);
    ~DiskSpace();
    DiskSpace(const DiskSpace&) = delete;
    DiskSpace& operator=(const DiskSpace&) = delete;
};

} // namespace korvanti::testing
