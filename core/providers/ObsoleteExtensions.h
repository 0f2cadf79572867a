#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace korvanti::ObsoleteExtensions {

/// The folders that an editor has marked in the text of its ".obsolete", in its order; none when the text is
/// not entirely as expected. Each name is that of an entry of the extensions' folder and leads nowhere else.
[[nodiscard]] std::vector<std::string> names(std::string_view text);

} // namespace korvanti::ObsoleteExtensions
