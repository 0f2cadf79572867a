#pragma once

#include <map>
#include <string>
#include <string_view>

namespace korvanti::testing {

/// All that lies below a folder, by path from there: kind, rights and contents. Links are not followed.
using Snapshot = std::map<std::string, std::string>;
[[nodiscard]] Snapshot snapshotOf(const std::string& folder);

/// What a snapshot has at a path and below it; the paths start from there (the entry itself is "").
[[nodiscard]] Snapshot part(const Snapshot& whole, std::string_view root);

/// A line for each difference; at most a few.
[[nodiscard]] std::string differences(const Snapshot& before, const Snapshot& after);

} // namespace korvanti::testing
