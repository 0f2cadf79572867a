#pragma once

#include "base/Instant.h"
#include "scan/CleanupItem.h"
#include "scan/DiskSnapshot.h"

#include <cstdint>
#include <string>
#include <vector>

namespace korvanti {

/// The result of one scan.
struct ScanReport {
    Instant startedAt;
    double duration = 0; ///< seconds
    std::vector<CleanupItem> items;
    DiskSnapshot disk;
    std::vector<std::string> notes;

    /// Bytes of the items of one class or category. An overflow aborts.
    [[nodiscard]] std::int64_t total(Safety safety) const;
    [[nodiscard]] std::int64_t total(ItemCategory category) const;
    /// The recommended items, in report order.
    [[nodiscard]] std::vector<CleanupItem> recommendedItems() const;
    [[nodiscard]] std::int64_t recommendedBytes() const;

    bool operator==(const ScanReport&) const = default;
};

} // namespace korvanti
