#pragma once

#include <array>
#include <string_view>

/// The names that the walk over the projects knows, plain data.
namespace korvanti::ProjectMarkers {

/// Build output, dependencies and tools' own folders: never entered.
extern const std::array<std::string_view, 25> skippedFolders;

/// What only the top of a project has, by whole name and by the end of the name.
extern const std::array<std::string_view, 11> markers;
extern const std::array<std::string_view, 2> markerEndings;

// Files that tell what a project asks for.
extern const std::array<std::string_view, 1> gradleWrapperFiles;
extern const std::array<std::string_view, 6> gradleBuildFiles;
extern const std::array<std::string_view, 2> rustToolchainFiles;
extern const std::array<std::string_view, 2> nodeVersionFiles;

} // namespace korvanti::ProjectMarkers
