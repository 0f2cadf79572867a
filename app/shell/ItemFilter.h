#pragma once

#include "scan/CleanupItem.h"

#include <array>
#include <string_view>

namespace korvanti {

/// Which items the list shows.
enum class ItemFilter { recommended, deletable, review, all };
template <>
inline constexpr std::array allCases<ItemFilter> = {ItemFilter::recommended, ItemFilter::deletable,
                                                    ItemFilter::review, ItemFilter::all};
/// For people, and the raw value as well.
[[nodiscard]] std::string_view title(ItemFilter filter);
[[nodiscard]] bool matches(ItemFilter filter, const CleanupItem& item);

} // namespace korvanti
