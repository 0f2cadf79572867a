#pragma once

#include <array>
#include <string_view>

namespace korvanti {

/// A developer's cache that can be pointed at a volume.
enum class DevCache { xcodeDerivedData, gradleHome, npmCache };

inline constexpr std::array<DevCache, 3> allDevCaches = {DevCache::xcodeDerivedData, DevCache::gradleHome,
                                                         DevCache::npmCache};

/// The name in saved settings.
[[nodiscard]] std::string_view rawValue(DevCache cache);
[[nodiscard]] std::string_view title(DevCache cache);
[[nodiscard]] std::string_view detail(DevCache cache);
/// Its folder in "Korvanti Dev" on a volume.
[[nodiscard]] std::string_view folderName(DevCache cache);
/// The environment variable that its tool reads; empty for `xcodeDerivedData`, which has none.
[[nodiscard]] std::string_view environmentVariable(DevCache cache);

} // namespace korvanti
