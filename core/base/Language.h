#pragma once

#include <string>

namespace korvanti {

/// The locale that the environment names for one category (LC_TIME, …), as it stands: the first set one of
/// LC_ALL, that category and LANG. Empty when none is set. Reads the environment at each call.
[[nodiscard]] std::string environmentLocale(const char* category);

/// The languages that a byte count can be written in.
enum class Language { english, indonesian };

/// The system's language, by the locale for LC_MESSAGES. Indonesian where that says
/// "id", English otherwise. Reads the environment at each call.
[[nodiscard]] Language systemLanguage();

} // namespace korvanti
