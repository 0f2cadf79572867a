#pragma once

#include "scan/ItemProvider.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

namespace korvanti::testing {

/// What a provider finds in a scan of its own: a scan remembers the sizes that it measured.
inline std::vector<CleanupItem> itemsOfOneScan(const ItemProvider& provider, ScanContext context) {
    context.sizes = std::make_shared<SizeLedger>();
    return provider.items(context);
}

inline std::vector<std::string> titles(const std::vector<CleanupItem>& items) {
    std::vector<std::string> titles;
    std::ranges::transform(items, std::back_inserter(titles), &CleanupItem::title);
    return titles;
}

inline std::vector<std::string> paths(const std::vector<CleanupItem>& items) {
    std::vector<std::string> paths;
    std::ranges::transform(items, std::back_inserter(paths), &CleanupItem::path);
    return paths;
}

} // namespace korvanti::testing
