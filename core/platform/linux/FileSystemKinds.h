#pragma once

#include <string_view>

namespace korvanti::Platform {

/// What the kernel shows as files without keeping any: nothing that people call a volume.
[[nodiscard]] bool isPseudoFileSystem(std::string_view type);

/// On another computer, which may not answer any more.
[[nodiscard]] bool isNetworkFileSystem(std::string_view type);

} // namespace korvanti::Platform
