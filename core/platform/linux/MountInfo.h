#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace korvanti::Platform {

/// The mount points in the text of /proc/self/mountinfo, in its order, octal escapes decoded. A line that has
/// no mount point is passed over.
[[nodiscard]] std::vector<std::string> mountPointsFromMountInfo(std::string_view text);

} // namespace korvanti::Platform
