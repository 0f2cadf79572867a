#include "base/Instant.h"

#include "base/Text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <fmt/format.h>

namespace korvanti {
namespace {

using std::chrono::microseconds;

constexpr std::int64_t secondsPerDay = 86'400;
constexpr std::int64_t microsecondsPerSecond = 1'000'000;
// Chrono's calendar ends at the year 32767, an instant does not. The Gregorian calendar repeats after 400
// years, so any year is reckoned with in the cycle that begins with 2000.
constexpr std::int64_t yearsPerCycle = 400;
constexpr std::int64_t daysPerCycle = 146'097;

constexpr std::int64_t floorDivide(std::int64_t value, std::int64_t divisor) {
    return value / divisor - (value % divisor < 0 ? 1 : 0);
}

/// Days from 1970 to that date; `day` may lie behind the end of the month.
std::int64_t daysOf(std::int64_t year, unsigned month, std::int64_t day) {
    const std::int64_t cycle = floorDivide(year - 2000, yearsPerCycle);
    const std::chrono::sys_days first =
        std::chrono::year(static_cast<int>(year - cycle * yearsPerCycle)) / std::chrono::month(month) / 1;
    return cycle * daysPerCycle + first.time_since_epoch().count() + day - 1;
}

/// Absent when an instant can't hold it.
std::optional<Instant> instantOf(std::int64_t secondsSince1970, std::int64_t fraction) {
    std::int64_t count = 0;
    // A second that begins before the first instant may still reach into the range.
    const bool past = secondsSince1970 < 0 && fraction > 0;
    if (__builtin_mul_overflow(secondsSince1970 + (past ? 1 : 0), microsecondsPerSecond, &count) ||
        __builtin_add_overflow(count, past ? fraction - microsecondsPerSecond : fraction, &count))
        return std::nullopt;
    return Instant(microseconds(count));
}

/// Takes a text apart from the left. Each call takes what it names or leaves the text as it is.
class DateReader {
public:
    explicit DateReader(std::string_view text) : rest_(text) {}

    bool take(std::string_view expected) {
        if (!rest_.starts_with(expected))
            return false;
        rest_.remove_prefix(expected.size());
        return true;
    }

    struct Digits {
        std::size_t fewest = 1;
        std::size_t most = std::string_view::npos;
    };

    /// A number of so many digits. Beyond any year that an instant can have, it stays at `absurd`.
    std::optional<std::int64_t> number(Digits allowed) {
        std::int64_t value = 0;
        std::size_t digits = 0;
        for (; digits < rest_.size() && digits < allowed.most && isDigit(rest_[digits]); ++digits)
            value = std::min(value * 10 + (rest_[digits] - '0'), absurd);
        if (digits < allowed.fewest)
            return std::nullopt;
        rest_.remove_prefix(digits);
        return value;
    }

    /// The microseconds of a fraction of 1 to 9 digits.
    std::optional<std::int64_t> fraction() {
        const std::size_t before = rest_.size();
        auto value = number({.most = 9});
        if (!value)
            return std::nullopt;
        for (std::size_t digits = before - rest_.size(); digits < 9; ++digits)
            *value *= 10;
        return *value / 1000;
    }

    bool atDigit() const { return !rest_.empty() && isDigit(rest_.front()); }

    static constexpr std::int64_t absurd = 1'000'000'000;

private:
    static bool isDigit(char character) { return character >= '0' && character <= '9'; }

    std::string_view rest_;
};

struct DateFields {
    std::int64_t year = 0;
    std::int64_t month = 0;
    std::int64_t day = 0;
    std::int64_t hour = 0;
    std::int64_t minute = 0;
    std::int64_t second = 0;
};

enum class Padding { any, full };

/// "2026-11-15T18:42:59", what lies in front of the fraction and the zone.
std::optional<DateFields> dateFields(DateReader& in, Padding padding) {
    struct Field {
        std::string_view separator;
        std::size_t digits;
        std::int64_t DateFields::*value;
    };
    constexpr std::array<Field, 6> form{{{"", 4, &DateFields::year},
                                         {"-", 2, &DateFields::month},
                                         {"-", 2, &DateFields::day},
                                         {"T", 2, &DateFields::hour},
                                         {":", 2, &DateFields::minute},
                                         {":", 2, &DateFields::second}}};
    DateFields fields;
    for (const auto& [separator, digits, field] : form) {
        const std::size_t fewest = padding == Padding::full ? digits : 1;
        const auto value = in.take(separator) ? in.number({.fewest = fewest}) : std::nullopt;
        if (!value)
            return std::nullopt;
        fields.*field = *value;
    }
    return fields;
}

/// Each field for itself, up to the 31st, the end of the day (24:00:00) and a leap second.
bool isInRange(const DateFields& in) {
    return in.year != DateReader::absurd && in.month >= 1 && in.month <= 12 && in.day >= 1 && in.day <= 31 &&
           in.hour <= 24 && in.minute <= 59 && in.second <= 60;
}

/// That the month has such a day; leap years are the same in every cycle.
bool hasDay(const DateFields& in) {
    const std::chrono::year year(static_cast<int>(in.year % yearsPerCycle));
    const std::chrono::month month(static_cast<unsigned>(in.month));
    return (year / month / std::chrono::day(static_cast<unsigned>(in.day))).ok();
}

std::int64_t secondsSince1970(const DateFields& at) {
    return daysOf(at.year, static_cast<unsigned>(at.month), at.day) * secondsPerDay + at.hour * 3600 +
           at.minute * 60 + at.second;
}

/// The seconds that a zone is ahead of UTC.
std::optional<std::int64_t> zoneOffset(DateReader& in) {
    if (in.take("Z") || in.take("z"))
        return 0;
    const bool named = in.take("GMT") || in.take("UTC");
    const bool ahead = in.take("+");
    if (!ahead && !in.take("-"))
        return named ? std::optional<std::int64_t>(0) : std::nullopt;

    const auto hours = in.number({.most = 2});
    if (!hours)
        return std::nullopt;
    std::int64_t offset = *hours * 3600;
    const bool colon = in.take(":");
    if (in.atDigit()) {
        offset += in.number({.most = 2}).value_or(0) * 60;
        if (colon && in.take(":") && in.atDigit())
            offset += in.number({.most = 2}).value_or(0);
    }
    constexpr std::int64_t furthestZone = 64'800; // 18 hours
    if (offset > furthestZone)
        return std::nullopt;
    return ahead ? offset : -offset;
}

} // namespace

Instant currentInstant() {
    return std::chrono::floor<microseconds>(std::chrono::system_clock::now());
}

Instant instantFromSeconds(std::int64_t secondsSince1970) {
    const auto instant = instantOf(secondsSince1970, 0);
    return instant ? *instant : secondsSince1970 < 0 ? Instant::min() : Instant::max();
}

Instant instantFromReference(double secondsSince2001) {
    constexpr double reference = 978'307'200;
    // Whole and fraction apart: microseconds since 1970 in one `double` are not exact.
    const double whole = std::floor(secondsSince2001);
    const double seconds = whole + reference;
    constexpr double edge = 9'223'372'036'854; // whole seconds that microseconds in 64 bits can hold
    if (seconds >= edge)
        return Instant::max();
    if (seconds <= -edge)
        return Instant::min();
    const auto micros = std::llround((secondsSince2001 - whole) * 1e6);
    return Instant(std::chrono::seconds(static_cast<std::int64_t>(seconds)) + microseconds(micros));
}

std::int64_t wholeSeconds(Instant instant) {
    return floorDivide(instant.time_since_epoch().count(), microsecondsPerSecond);
}

double secondsBetween(Instant from, Instant to) {
    std::int64_t distance = 0;
    if (__builtin_sub_overflow(to.time_since_epoch().count(), from.time_since_epoch().count(), &distance))
        return static_cast<double>(wholeSeconds(to)) - static_cast<double>(wholeSeconds(from));
    return static_cast<double>(distance) / static_cast<double>(microsecondsPerSecond);
}

std::string iso8601Text(Instant instant) {
    const std::int64_t all = wholeSeconds(instant);
    const std::int64_t days = floorDivide(all, secondsPerDay);
    const std::int64_t inDay = all - days * secondsPerDay;
    const std::int64_t cycle = floorDivide(days, daysPerCycle);
    const std::chrono::year_month_day date(
        std::chrono::sys_days(std::chrono::days(static_cast<int>(days - cycle * daysPerCycle))));
    const std::int64_t year = static_cast<int>(date.year()) + cycle * yearsPerCycle;

    return fmt::format("{}{:04}-{:02}-{:02}T{:02}:{:02}:{:02}Z", year < 0 ? "-" : "", std::abs(year),
                       static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()), inDay / 3600,
                       inDay / 60 % 60, inDay % 60);
}

std::optional<Instant> instantFromIso8601(std::string_view text) {
    DateReader in(text);
    const bool negative = in.take("-"); // only we write such a year
    auto fields = dateFields(in, Padding::any);
    if (!fields || !isInRange(*fields))
        return std::nullopt;
    const auto fraction = in.take(".") ? in.fraction() : std::optional<std::int64_t>(0);
    if (!fraction)
        return std::nullopt;
    const auto offset = zoneOffset(in);
    if (!offset)
        return std::nullopt;

    const bool fullHour = fields->minute == 0 && fields->second == 0 && *fraction == 0;
    if (fields->hour == 24 && !fullHour) // only as the end of the day
        return std::nullopt;
    fields->second = std::min<std::int64_t>(fields->second, 59); // 60 is a leap second
    fields->year = negative ? -fields->year : fields->year;
    return instantOf(secondsSince1970(*fields) - *offset, *fraction);
}

std::optional<Instant> instantFromStrictIso8601(std::string_view text) {
    DateReader in(Text::trimmed(text));
    const auto fields = dateFields(in, Padding::full);
    if (!fields || !isInRange(*fields) || !hasDay(*fields) || fields->hour == 24 || fields->second == 60)
        return std::nullopt;
    const auto offset = zoneOffset(in);
    if (!offset)
        return std::nullopt;
    return instantOf(secondsSince1970(*fields) - *offset, 0);
}

} // namespace korvanti
