#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace korvanti {

/// A point in time. Microseconds, so that any date a file or a file system can carry fits.
using Instant = std::chrono::sys_time<std::chrono::microseconds>;

/// The present reading of the wall clock.
[[nodiscard]] Instant currentInstant();

/// The instant that many whole seconds after 1970; what does not fit is moved to the nearest that does.
[[nodiscard]] Instant instantFromSeconds(std::int64_t secondsSince1970);

/// The instant that many seconds after the platform's reference date, the start of 2001; what does not fit is
/// moved to the nearest that does. Not for NaN.
[[nodiscard]] Instant instantFromReference(double secondsSince2001);

/// Whole seconds since 1970, fractions cut toward the past.
[[nodiscard]] std::int64_t wholeSeconds(Instant instant);

/// Seconds with their fraction; negative when `to` is before `from`.
[[nodiscard]] double secondsBetween(Instant from, Instant to);

/// "2026-11-15T18:42:59Z": UTC, whole seconds, the fraction cut toward the past.
[[nodiscard]] std::string iso8601Text(Instant instant);

/// Reads an internet date with a required zone ("Z" or an offset) and an optional fraction, as the platform's
/// decoder does: lenient on zero padding, deaf to what follows the zone. Anything else is absent.
[[nodiscard]] std::optional<Instant> instantFromIso8601(std::string_view text);

/// The same as the platform's date formatter does: no fraction, no digit less than the form has, no date or
/// time that the calendar lacks. Deaf to what follows the zone and to blanks in front.
[[nodiscard]] std::optional<Instant> instantFromStrictIso8601(std::string_view text);

} // namespace korvanti
