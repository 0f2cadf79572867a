#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>

/// What the files of somebody's project ask for, read out of their text.
namespace korvanti::ProjectFiles {

/// The first distribution that a wrapper file names, such as gradle-8.7-bin.
[[nodiscard]] std::optional<std::string> gradleDistribution(std::string_view text);

/// The first version in a toolchain file, such as 1.75.0; absent for a name such as "stable".
[[nodiscard]] std::optional<std::string> rustToolchain(std::string_view text);

/// The text of a version file without blanks and "v" around it; absent when nothing is left.
[[nodiscard]] std::optional<std::string> nodeVersion(std::string_view text);

/// The two-digit API levels that build files compile against.
[[nodiscard]] std::set<std::int64_t> compileSdks(std::string_view text);

} // namespace korvanti::ProjectFiles
