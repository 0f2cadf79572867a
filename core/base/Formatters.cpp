#include "base/Formatters.h"

#include "base/Language.h"

#include <array>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <unicode/ucal.h>
#include <unicode/udat.h>
#include <unicode/uloc.h>
#include <unicode/ureldatefmt.h>
#include <unicode/ustring.h>

// ICU's C interface throughout: it is the same whichever C++ library ICU itself was built with.
namespace korvanti::Formatters {
namespace {

template <auto close> struct Closes {
    template <class Object> void operator()(Object* object) const { close(object); }
};
using Calendar = std::unique_ptr<UCalendar, Closes<ucal_close>>;
using DateFormat = std::unique_ptr<UDateFormat, Closes<udat_close>>;
using RelativeFormat = std::unique_ptr<URelativeDateTimeFormatter, Closes<ureldatefmt_close>>;

constexpr const char16_t* utc = u"UTC";
constexpr const char* defaultLocale = "en_US";

/// For calls that fail only when ICU's own data is missing: no text could be right then.
void require(UErrorCode status) {
    if (U_FAILURE(status))
        std::abort();
}

std::string utf8(std::u16string_view text) {
    std::string converted(text.size() * 3, '\0');
    std::int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strToUTF8(converted.data(), static_cast<std::int32_t>(converted.size()), &length, text.data(),
                static_cast<std::int32_t>(text.size()), &status);
    require(status);
    converted.resize(static_cast<std::size_t>(length));
    return converted;
}

/// `write(buffer, capacity, status)` as ICU's functions that fill a buffer take them, and give the length.
template <class Write> std::string written(Write write) {
    std::array<char16_t, 256> buffer{};
    UErrorCode status = U_ZERO_ERROR;
    const std::int32_t length = write(buffer.data(), static_cast<std::int32_t>(buffer.size()), &status);
    require(status);
    return utf8({buffer.data(), static_cast<std::size_t>(length)});
}

std::string formatted(const UDateFormat* format, UDate date) {
    return written([&](char16_t* buffer, std::int32_t capacity, UErrorCode* status) {
        return udat_format(format, date, buffer, capacity, nullptr, status);
    });
}

std::int64_t wholeMilliseconds(Instant instant) {
    return std::chrono::floor<std::chrono::milliseconds>(instant).time_since_epoch().count();
}

/// From `from` to `to`, cut toward zero, so that less than a second never becomes one.
std::int64_t millisecondsBetween(Instant from, Instant to) {
    std::int64_t distance = 0;
    if (__builtin_sub_overflow(to.time_since_epoch().count(), from.time_since_epoch().count(), &distance))
        return wholeMilliseconds(to) - wholeMilliseconds(from);
    return distance / 1000;
}

struct Step {
    UCalendarDateFields field;
    URelativeDateTimeUnit unit;
};
constexpr std::array<Step, 7> steps{{{UCAL_YEAR, UDAT_REL_UNIT_YEAR},
                                     {UCAL_MONTH, UDAT_REL_UNIT_MONTH},
                                     {UCAL_WEEK_OF_YEAR, UDAT_REL_UNIT_WEEK},
                                     {UCAL_DAY_OF_MONTH, UDAT_REL_UNIT_DAY},
                                     {UCAL_HOUR_OF_DAY, UDAT_REL_UNIT_HOUR},
                                     {UCAL_MINUTE, UDAT_REL_UNIT_MINUTE},
                                     {UCAL_SECOND, UDAT_REL_UNIT_SECOND}}};

/// Whether the library has data in the locale's language; for another it would answer with some default.
bool isAvailable(const std::string& name) {
    constexpr std::size_t longestName = 32; // the library does not stand names without end
    if (name.size() > longestName)
        return false;
    std::array<char, ULOC_LANG_CAPACITY> language{};
    UErrorCode status = U_ZERO_ERROR;
    uloc_getLanguage(name.c_str(), language.data(), static_cast<std::int32_t>(language.size()), &status);
    if (U_FAILURE(status) || status == U_STRING_NOT_TERMINATED_WARNING)
        return false;
    for (std::int32_t index = 0; index < uloc_countAvailable(); ++index)
        if (std::string_view(uloc_getAvailable(index)) == language.data())
            return true;
    return false;
}

/// The locale for dates that the environment names; it may name anything, "C" and "POSIX" among it.
std::string dateLocale() {
    const auto tag = environmentLocale("LC_TIME");
    const auto name = tag.substr(0, tag.find_first_of(".@")); // without encoding and variant
    return isAvailable(name) ? name : defaultLocale;
}

} // namespace

std::string relative(Instant date, Instant now) {
    UErrorCode status = U_ZERO_ERROR;
    const Calendar calendar(ucal_open(nullptr, -1, locale, UCAL_GREGORIAN, &status));
    require(status);
    const std::int64_t start = wholeMilliseconds(now);
    ucal_setMillis(calendar.get(), static_cast<UDate>(start), &status);
    const auto target = static_cast<UDate>(start + millisecondsBetween(now, date));

    // Each difference moves the calendar on by what it counted; the first that is not zero is the answer.
    std::int32_t count = 0;
    URelativeDateTimeUnit unit = UDAT_REL_UNIT_SECOND;
    for (const Step& step : steps) {
        count = ucal_getFieldDifference(calendar.get(), target, step.field, &status);
        unit = step.unit;
        if (count != 0)
            break;
    }
    const RelativeFormat format(
        ureldatefmt_open(locale, nullptr, UDAT_STYLE_LONG, UDISPCTX_CAPITALIZATION_NONE, &status));
    require(status);
    return written([&](char16_t* buffer, std::int32_t capacity, UErrorCode* failure) {
        return ureldatefmt_formatNumeric(format.get(), count, unit, buffer, capacity, failure);
    });
}

std::optional<std::int64_t> days(std::optional<Instant> since, Instant now) {
    constexpr double secondsPerDay = 86'400;
    if (!since)
        return std::nullopt;
    return static_cast<std::int64_t>(secondsBetween(*since, now) / secondsPerDay);
}

std::string monthYear(int year, int month) {
    constexpr int furthestYear = 5'000'000; // ICU's calendar ends at some 5.8 million
    if (month < 1 || month > 12 || year < -furthestYear || year > furthestYear)
        return std::to_string(month) + "/" + std::to_string(year);

    UErrorCode status = U_ZERO_ERROR;
    const Calendar calendar(ucal_open(utc, -1, locale, UCAL_GREGORIAN, &status));
    require(status);
    ucal_clear(calendar.get());
    ucal_setDate(calendar.get(), year, month - 1, 1, &status);
    const UDate first = ucal_getMillis(calendar.get(), &status);
    const DateFormat format(
        udat_open(UDAT_PATTERN, UDAT_PATTERN, locale, utc, -1, u"LLLL yyyy", -1, &status));
    require(status);
    return formatted(format.get(), first);
}

std::string dateAndTime(Instant date) {
    UErrorCode status = U_ZERO_ERROR;
    const DateFormat format(
        udat_open(UDAT_SHORT, UDAT_MEDIUM, dateLocale().c_str(), nullptr, -1, nullptr, 0, &status));
    require(status);
    return formatted(format.get(), static_cast<UDate>(wholeMilliseconds(date)));
}

} // namespace korvanti::Formatters
