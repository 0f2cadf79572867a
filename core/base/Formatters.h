#pragma once

#include "base/Instant.h"

#include <cstdint>
#include <optional>
#include <string>

/// Dates in words, for people. Indonesian (`locale`) but for `dateAndTime`.
namespace korvanti::Formatters {

inline constexpr const char* locale = "id_ID";

/// The distance of `date` from `now`, by the calendar of the system's time zone: "3 hari yang lalu", "dalam 2
/// jam".
[[nodiscard]] std::string relative(Instant date, Instant now);

/// Whole days from `date` to `now`, cut toward zero; zero or negative for a date in the future. Nil gives
/// nil.
[[nodiscard]] std::optional<std::int64_t> days(std::optional<Instant> since, Instant now);

/// "Januari 2026". Numbers that make no month give "{month}/{year}".
[[nodiscard]] std::string monthYear(int year, int month);

/// Date abbreviated and time shortened, in the system's own locale: "Nov 15, 2026, 6:42 PM".
[[nodiscard]] std::string dateAndTime(Instant date);

} // namespace korvanti::Formatters
