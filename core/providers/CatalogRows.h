#pragma once

#include "providers/Catalog.h"

#include <string>
#include <vector>

/// The groups of `Catalog::rules()`, plain data. A field that is left out has its default.
namespace korvanti::CatalogRows {

/// Xcode, simulators, Swift packages.
[[nodiscard]] std::vector<CatalogRule> xcode();
/// Gradle, Android tools, JVM.
[[nodiscard]] std::vector<CatalogRule> android();
/// Language toolchains, containers, virtual machines.
[[nodiscard]] std::vector<CatalogRule> toolchains();
[[nodiscard]] std::vector<CatalogRule> aiTools();
/// Browsers, media, chat, backups, games.
[[nodiscard]] std::vector<CatalogRule> applications();

/// Folders in Application Support, spelled as on the disk, each of which may hold any of the cache folders.
[[nodiscard]] std::vector<std::string> electronApplications();
[[nodiscard]] std::vector<std::string> electronCacheFolders();

} // namespace korvanti::CatalogRows
