#pragma once

#include "analysis/StorageMap.h"

#include <string>
#include <vector>

namespace korvanti::MapText {

/// The map as the terminal shows it, one element a print call; those of the roots begin with an empty line.
/// Names from the disk are made printable.
[[nodiscard]] std::vector<std::string> lines(const StorageMap& map);

} // namespace korvanti::MapText
