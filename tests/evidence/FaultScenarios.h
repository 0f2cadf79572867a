#pragma once

#include "scan/CleanupItem.h"
#include "support/TempFolder.h"

#include <functional>
#include <ostream>
#include <string>
#include <vector>

namespace korvanti::testing {

/// A home with the items that are to be cleaned in it.
struct Scenario {
    std::string name;
    /// Fills a folder: "home" in it is the home.
    std::function<void(const TempFolder& world)> build;
    /// The items of that home.
    std::function<std::vector<CleanupItem>(const std::string& home)> items;
    /// What the items may take, as paths from the home. Everything else must stay, whatever fails.
    std::vector<std::string> mayGo;
    /// What becomes of each item when nothing fails. "~" is the home, "@" the same in full.
    std::vector<std::string> messages;
};

inline void PrintTo(const Scenario& scenario, std::ostream* stream) {
    *stream << scenario.name;
}

/// Everything that the cleaner can do by itself: all of it succeeds.
[[nodiscard]] Scenario removals();
/// What the guard and the held entries refuse, and an item that is let through behind it.
[[nodiscard]] Scenario refusals();
/// Simulators and Gradle's caches.
[[nodiscard]] Scenario tools();
/// A tree deeper than the folders that are held open at a time.
[[nodiscard]] Scenario deepTree();

} // namespace korvanti::testing
