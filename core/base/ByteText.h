#pragma once

#include "base/Language.h"

#include <cstdint>
#include <string>

namespace korvanti {

/// The decimal gigabyte that thresholds are written in.
inline constexpr std::int64_t GB = 1'000'000'000;

/// A size on disk for people, in decimal units (1 KB = 1000 bytes): "12.3 MB".
[[nodiscard]] std::string bytesText(std::int64_t bytes, Language language = systemLanguage());

/// A size of memory for people, in binary units (1 KB = 1024 bytes).
[[nodiscard]] std::string memoryText(std::int64_t bytes, Language language = systemLanguage());

} // namespace korvanti
