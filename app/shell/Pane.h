#pragma once

#include "scan/CleanupItem.h"

#include <array>
#include <string_view>

namespace korvanti {

/// The panes of the window, in the order of the sidebar.
enum class Pane { overview, cleanup, map, apps, ssd, history };
template <>
inline constexpr std::array allCases<Pane> = {Pane::overview, Pane::cleanup, Pane::map,
                                              Pane::apps,     Pane::ssd,     Pane::history};
[[nodiscard]] std::string_view rawValue(Pane pane);

} // namespace korvanti
