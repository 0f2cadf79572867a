#pragma once

#include "providers/ProjectArtifactProvider.h"
#include "scan/CleanupItem.h"

#include <span>
#include <string_view>
#include <vector>

/// What is known of the folders in projects, plain data.
namespace korvanti::ArtifactRules {

/// A folder that is known by its exact name.
struct DirectoryRule {
    std::string_view name;
    std::string_view title;
    std::vector<std::string_view>
        markers; ///< one of them must lie beside the folder; empty: the name is enough
    ProjectArtifactProvider::Kind kind;
    Safety safety;
};

[[nodiscard]] const std::vector<DirectoryRule>& directories();

/// Names of secrets and configuration, in lower case.
[[nodiscard]] std::span<const std::string_view> protectedNames();
/// Words in such names, in lower case.
[[nodiscard]] std::span<const std::string_view> protectedWords();

/// Folders and files that tell a folder of source code; the extensions are in lower case.
[[nodiscard]] std::span<const std::string_view> sourceFolders();
[[nodiscard]] std::span<const std::string_view> sourceExtensions();

} // namespace korvanti::ArtifactRules
