#pragma once

#include "Snapshot.h"

#include <string>

namespace korvanti::testing {

/// All that lies at a path and below it, by path from there (the entry itself is ""): as a snapshot, and for
/// files of any length with their times, their extended attributes and their other names in the tree. Empty
/// when nothing lies there.
[[nodiscard]] Snapshot pictureOf(const std::string& path);

/// Every entry of the one is in the other, and as there but for the names that a file has lost.
[[nodiscard]] bool isPartOf(const Snapshot& some, const Snapshot& all);

} // namespace korvanti::testing
