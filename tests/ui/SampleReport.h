#pragma once

#include "base/Instant.h"
#include "scan/ScanReport.h"

#include <cstdint>
#include <string>

/// A Mac as a developer may have it: what the pictures of the window show.
namespace korvanti::testing {

inline constexpr std::int64_t sampleFreeBytes = 14'200'000'000; ///< low
inline constexpr std::int64_t samplePlentyBytes = 62'700'000'000;
inline constexpr std::int64_t sampleTotalBytes = 245'110'000'000;

/// Items of all classes and most categories below `home`, found two hours before `now`.
[[nodiscard]] ScanReport sampleReport(const std::string& home, Instant now);

} // namespace korvanti::testing
