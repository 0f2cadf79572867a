#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Text out of bytes that may be anything: made fit for people, and taken apart. Safe from any thread,
/// whatever the program's locale.
namespace korvanti::Text {

/// The bytes as UTF-8, each invalid sequence replaced by one U+FFFD. Valid text comes back as it is.
[[nodiscard]] std::string repaired(std::string_view bytes);

/// `repaired`, and each control character (line feed, escape, …) replaced by U+FFFD too, so that a file name
/// can neither break a line of output nor speak to the terminal.
[[nodiscard]] std::string printable(std::string_view bytes);

/// The number of characters as a person counts them (extended grapheme clusters).
[[nodiscard]] std::size_t characterCount(std::string_view text);

/// In lower case by Unicode's full mapping, character by character: "İ" gives two of them, KELVIN SIGN gives
/// "k", a final sigma is a sigma like any other. Bytes that are not UTF-8 stay as they are.
[[nodiscard]] std::string lowercased(std::string_view text);

/// Canonically composed (NFC): a Mac takes names that are equal so for the same name. Bytes that are not
/// UTF-8 come back repaired.
[[nodiscard]] std::string composed(std::string_view text);

/// Without white space and line ends at both ends, those beyond ASCII included.
[[nodiscard]] std::string_view trimmed(std::string_view text);
/// Without any of `characters` (ASCII) at both ends.
[[nodiscard]] std::string_view trimmed(std::string_view text, std::string_view characters);

/// With every `from` (not empty) in it replaced, from left to right; what that joins is not looked at again.
[[nodiscard]] std::string replaced(std::string_view text, std::string_view from, std::string_view to);

/// The pieces between the separators; empty ones are dropped. They look into `text`.
[[nodiscard]] std::vector<std::string_view> pieces(std::string_view text, char separator);

/// A whole decimal number with an optional sign, ASCII digits only; anything else, and what does not fit, is
/// absent.
[[nodiscard]] std::optional<std::int64_t> integer(std::string_view text);

} // namespace korvanti::Text
