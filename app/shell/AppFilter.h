#pragma once

#include "analysis/InstalledApp.h"
#include "base/Instant.h"

#include <array>
#include <string_view>

namespace korvanti {

/// Which applications the list shows.
enum class AppFilter { suggested, rarelyUsed, largest, all };
template <>
inline constexpr std::array allCases<AppFilter> = {AppFilter::suggested, AppFilter::rarelyUsed,
                                                   AppFilter::largest, AppFilter::all};
[[nodiscard]] std::string_view rawValue(AppFilter filter); ///< the title as well
[[nodiscard]] bool matches(AppFilter filter, const InstalledApp& app, Instant now);

} // namespace korvanti
