#pragma once

#include <functional>
#include <map>
#include <string>

/// What macOS keeps on the disk for itself, plain data.
namespace korvanti::SystemAssets {

struct Explanation {
    std::string title;
    std::string instructions; ///< how the user may change it, if at all
    bool operator==(const Explanation&) const = default;
};
using Explanations = std::map<std::string, Explanation, std::less<>>;

/// Groups of downloaded assets by the name of their folder.
[[nodiscard]] const Explanations& groups();
/// Volumes by their APFS role.
[[nodiscard]] const Explanations& volumes();

} // namespace korvanti::SystemAssets
