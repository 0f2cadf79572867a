#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace korvanti::MountTable {

/// The mount points of the system, in its order.
[[nodiscard]] std::vector<std::string> all();

/// Those at or below a path, by its text. A trailing slash of `path` does not count.
[[nodiscard]] std::vector<std::string> mountPoints(std::string_view inside);

} // namespace korvanti::MountTable
