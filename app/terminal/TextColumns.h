#pragma once

#include "base/Text.h"

#include <string>
#include <string_view>

/// Text in columns of so many characters, as a person counts them. What is wider stays whole.
namespace korvanti::TextColumns {

[[nodiscard]] inline std::string spaces(std::string_view text, std::size_t width) {
    const auto count = Text::characterCount(text);
    return std::string(count < width ? width - count : 0, ' ');
}

[[nodiscard]] inline std::string leftAligned(std::string_view text, std::size_t width) {
    return std::string(text) + spaces(text, width);
}
[[nodiscard]] inline std::string rightAligned(std::string_view text, std::size_t width) {
    return spaces(text, width) + std::string(text);
}

} // namespace korvanti::TextColumns
