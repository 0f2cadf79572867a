#pragma once

#include <string>

namespace korvanti::Platform {

/// The whole of a file that the system itself keeps; those of /proc and /sys have no length of their own, so
/// it is read to its end. Empty when any of it can't be read.
[[nodiscard]] std::string kernelFile(const std::string& path);

} // namespace korvanti::Platform
