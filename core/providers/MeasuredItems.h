#pragma once

#include "scan/ItemProvider.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

namespace korvanti {

/// Measures in one batch where all candidates lie (`location` is their member, or `std::identity` of paths),
/// and makes an item of each that occupies at least `fewestBytes`: `item(candidate, bytes)`, in the order of
/// the candidates.
template <class Candidate, class Location, class Item>
[[nodiscard]] std::vector<CleanupItem> measuredItems(const std::vector<Candidate>& candidates,
                                                     Location location, std::int64_t fewestBytes,
                                                     const ScanContext& context, Item item) {
    std::vector<std::string> locations;
    std::ranges::transform(candidates, std::back_inserter(locations), location);
    const auto sizes = context.sizes->measureAll(locations, {.trackNewest = false, .concurrency = 6});

    std::vector<CleanupItem> items;
    for (const Candidate& candidate : candidates) {
        const auto bytes = sizes.at(std::invoke(location, candidate)).bytes;
        if (bytes >= fewestBytes)
            items.push_back(item(candidate, bytes));
    }
    return items;
}

} // namespace korvanti
