#pragma once

#include "analysis/StorageMap.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

/// Shows where the space of the disk went: reads the large trees once and keeps what is large in their first
/// two levels. Reads only, follows no link, enters no other volume. Safe from any thread; never fails.
namespace korvanti::StorageMapper {

/// The trees worth a map, those that exist as real folders: the home folder first.
[[nodiscard]] std::vector<std::string> defaultRoots(const std::string& home);

/// Told what is being read; may be called from many threads at once.
using Progress = std::function<void(const std::string& text)>;

/// Walks all roots side by side on the one pool and blocks until all are done. Memory follows the number of
/// first- and second-level folders, not that of files.
[[nodiscard]] StorageMap map(const std::vector<std::string>& roots, const Progress& progress);

/// Replaces `AppPaths::storageMap()`; a failure is not told.
void save(const StorageMap& map);
/// The saved map; absent when there is none or it is damaged.
[[nodiscard]] std::optional<StorageMap> load();

} // namespace korvanti::StorageMapper
