#include "scan/ScanReport.h"

#include "base/CheckedMath.h"

#include <algorithm>
#include <functional>
#include <iterator>

namespace korvanti {
namespace {

template <class Chosen> std::int64_t sumOf(const std::vector<CleanupItem>& items, Chosen chosen) {
    std::int64_t sum = 0;
    for (const auto& item : items) {
        if (std::invoke(chosen, item))
            sum = addChecked(sum, item.bytes);
    }
    return sum;
}

} // namespace

std::int64_t ScanReport::total(Safety safety) const {
    return sumOf(items, [&](const CleanupItem& item) { return item.safety == safety; });
}

std::int64_t ScanReport::total(ItemCategory category) const {
    return sumOf(items, [&](const CleanupItem& item) { return item.category == category; });
}

std::vector<CleanupItem> ScanReport::recommendedItems() const {
    std::vector<CleanupItem> chosen;
    std::ranges::copy_if(items, std::back_inserter(chosen), &CleanupItem::recommended);
    return chosen;
}

std::int64_t ScanReport::recommendedBytes() const {
    return sumOf(items, &CleanupItem::recommended);
}

} // namespace korvanti
