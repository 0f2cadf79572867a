#pragma once

#include "scan/ItemProvider.h"
#include "scan/ScanReport.h"
#include "settings/KorvantiSettings.h"

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace korvanti {

/// The driver of one scan. Reads only; keeps no state between runs.
struct Scanner {
    using Providers = std::vector<std::unique_ptr<ItemProvider>>;
    /// Takes a text for the user. One call at a time, from any thread.
    using Progress = std::function<void(const std::string&)>;
    /// What one provider found, with its priority.
    using Found = std::pair<int, std::vector<CleanupItem>>;

    KorvantiSettings settings;
    std::string home;

    /// All sources of items, freshly made.
    [[nodiscard]] static Providers defaultProviders();

    /// Runs all providers at the same time and merges what they found. Blocks until the last has ended.
    [[nodiscard]] ScanReport run(const Providers& providers, const Progress& progress) const;

    /// Drops what would count twice: the higher priority wins, then the larger item, then the earlier one.
    /// The result goes from the safest class to the least safe, the largest first in each.
    [[nodiscard]] static std::vector<CleanupItem> merge(std::vector<Found> found);
};

} // namespace korvanti
