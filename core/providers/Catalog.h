#pragma once

#include "scan/CleanupItem.h"

#include <cstdint>
#include <string>
#include <vector>

namespace korvanti {

/// One known location: what lies there, how safe it is to remove, how, and from which size it is worth
/// showing.
struct CatalogRule {
    /// When a row applies, by the applications installed.
    struct AppCondition {
        enum class Kind { appAbsent, appPresent, always };
        Kind kind = Kind::always;
        std::string bundleIdentifier; ///< exact; empty for `always`
        bool operator==(const AppCondition&) const = default;
    };

    std::string path; ///< under the home folder; a `*` in the last component makes it a pattern
    std::string title;
    std::string detail;
    ItemCategory category = ItemCategory::system;
    Safety safety = Safety::managed;
    CleanupAction action;
    bool recommended = false;
    bool offloadable = false;
    std::int64_t minBytes = 20'000'000;
    AppCondition condition;

    bool operator==(const CatalogRule&) const = default;
};

/// The table of known locations, as data in CatalogRows*.cpp.
namespace Catalog {

/// All rows in the order in which they are evaluated. Built once; safe from any thread.
[[nodiscard]] const std::vector<CatalogRule>& rules();

} // namespace Catalog
} // namespace korvanti
