#pragma once

#include <string>
#include <string_view>

/// The desktop entry that starts a program with its user's session (freedesktop.org's Autostart and Desktop
/// Entry specifications).
namespace korvanti::LoginEntry {

/// The whole file; `program` is a path.
[[nodiscard]] std::string text(std::string_view program, bool isEnabled);
/// The session starts what such a file names. False for anything that is no entry.
[[nodiscard]] bool isEnabled(std::string_view text);

} // namespace korvanti::LoginEntry
