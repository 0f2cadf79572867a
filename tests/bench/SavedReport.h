#pragma once

#include <cstddef>
#include <string>

namespace korvanti::bench {

/// Saves a report of so many items of every kind as the last one of the user whose home folder HOME names.
/// False when it can't be written.
[[nodiscard]] bool saveReport(std::size_t items);

} // namespace korvanti::bench
