#pragma once

#include "base/Instant.h"
#include "scan/ItemProvider.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// Large files of the user's own, anywhere in the home folder but where other providers look.
namespace korvanti::LargeFileFinder {

inline constexpr std::int64_t threshold = 300'000'000; ///< allocated bytes

/// Walks the home folder on the calling thread, without following links and without entering hidden folders,
/// packages and mounted volumes. Only reads; what can't be read is missing. In the order of the walk.
[[nodiscard]] std::vector<CleanupItem> find(const ScanContext& context, std::int64_t leastBytes);

/// What it makes of one file. `modified` is absent where the file system keeps no dates.
[[nodiscard]] CleanupItem item(const std::string& path, std::int64_t bytes, std::optional<Instant> modified,
                               Instant now);

} // namespace korvanti::LargeFileFinder
