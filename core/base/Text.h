#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// Text for people out of bytes that may be anything.
namespace korvanti::Text {

/// The bytes as UTF-8, each invalid sequence replaced by one U+FFFD. Valid text comes back as it is.
[[nodiscard]] std::string repaired(std::string_view bytes);

/// `repaired`, and each control character (line feed, escape, …) replaced by U+FFFD too, so that a file name
/// can neither break a line of output nor speak to the terminal.
[[nodiscard]] std::string printable(std::string_view bytes);

/// The number of characters as a person counts them (extended grapheme clusters).
[[nodiscard]] std::size_t characterCount(std::string_view text);

} // namespace korvanti::Text
