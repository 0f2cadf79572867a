#pragma once

#include <string>

/// Where every persistent file of the program lies.
namespace korvanti::AppPaths {

/// The support folder in the user's home. Creates it at each call, so that it exists before anything is
/// written; a failure to do so shows when the file is.
[[nodiscard]] std::string support();

[[nodiscard]] std::string settings();
[[nodiscard]] std::string lastReport();
[[nodiscard]] std::string storageMap();
[[nodiscard]] std::string activity();
[[nodiscard]] std::string offloads();

} // namespace korvanti::AppPaths
