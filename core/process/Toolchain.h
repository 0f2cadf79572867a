#pragma once

#include <optional>
#include <string>

namespace korvanti::Toolchain {

/// The developer folder of the Xcode in /Applications, found once on first use. Absent when there is no
/// Xcode.
[[nodiscard]] const std::optional<std::string>& developerDir();

/// The developer folder of the Xcode in a folder of applications: that of "Xcode.app", else of the first by
/// name.
[[nodiscard]] std::optional<std::string> findDeveloperDir(const std::string& applications);

} // namespace korvanti::Toolchain
