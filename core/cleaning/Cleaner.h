#pragma once

#include "cleaning/ActivityLog.h"
#include "cleaning/SafetyGuard.h"
#include "scan/CleanupItem.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace korvanti {

/// How the cleaning of one item ended.
struct CleanupOutcome {
    CleanupItem item; ///< as it was handed in
    bool success = false;
    std::int64_t freedBytes = 0; ///< the item's size by the scan, or 0; never measured on the disk
    std::string message;         ///< the text for the user

    [[nodiscard]] const std::string& id() const { return item.path; }

    bool operator==(const CleanupOutcome&) const = default;
};

/// Carries out what the user chose, item by item. What may go is the guard's business: everything that it
/// removes or moves was admitted right before. Keeps nothing between runs; two runs at the same time are the
/// caller's to prevent.
class Cleaner {
public:
    /// `home` is the user's home folder, absolute.
    Cleaner(const std::string& home, ActivityLog log);

    /// What to tell the user before a run. Starts small tools and blocks up to ten seconds for each.
    [[nodiscard]] static std::vector<std::string> preflightWarnings(const std::vector<CleanupItem>& items);

    /// Number of the item being started (from 0), how many there are, its title. At the end once more with
    /// the number of those done, `count` and no title.
    using Progress = std::function<void(std::size_t index, std::size_t count, const std::string& title)>;
    /// Asked before each item; true ends the run there.
    using ShouldStop = std::function<bool()>;

    /// One outcome an item, in their order; none for those that a stop left untouched. A failing item ends
    /// nothing; each leaves a line in the log as soon as it is done. Blocks for as long as it takes; both
    /// functions are called on this thread. `shouldStop` may be none.
    [[nodiscard]] std::vector<CleanupOutcome> run(const std::vector<CleanupItem>& items,
                                                  const Progress& progress,
                                                  const ShouldStop& shouldStop = {}) const;

    /// What is done to a related path. False when it could not be done.
    using Action = std::function<bool(const std::string& path)>;

    /// Hands each related path of an item that exists and that the guard lets through to `action`. Gives the
    /// last path components of those that were refused or failed.
    [[nodiscard]] std::vector<std::string> processRelated(const CleanupItem& item,
                                                          const Action& action) const;

private:
    SafetyGuard guardrail_;
    ActivityLog log_;
};

} // namespace korvanti
