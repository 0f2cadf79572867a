#include "base/Formatters.h"

#include <array>
#include <climits>
#include <cstdlib>
#include <ctime>
#include <gtest/gtest.h>
#include <unicode/ucal.h>

namespace korvanti {
namespace {

using namespace std::chrono_literals;
using std::chrono::days;
using std::chrono::hours;
using std::chrono::microseconds;

Instant iso(std::string_view text) {
    const auto instant = instantFromIso8601(text);
    EXPECT_TRUE(instant) << text;
    return instant.value_or(Instant());
}

class FormattersTests : public testing::Test {
protected:
    void SetUp() override {
        useZone("Asia/Jakarta", u"Asia/Jakarta");
        for (const char* variable : {"LC_ALL", "LC_TIME", "LANG"})
            ::unsetenv(variable);
    }

    /// The library keeps the zone that it found first, so it must be told of another one.
    static void useZone(const char* name, const char16_t* id) {
        ::setenv("TZ", name, 1);
        ::tzset();
        UErrorCode status = U_ZERO_ERROR;
        ucal_setDefaultTimeZone(id, &status);
        ASSERT_TRUE(U_SUCCESS(status));
    }

    const Instant noon = iso("2025-06-15T12:00:00+07:00");
};

TEST_F(FormattersTests, tellsTheDistanceInTheLargestUnit) {
    const std::pair<microseconds, const char*> rows[] = {
        {0s, "dalam 0 detik"},
        {900ms, "dalam 0 detik"},
        {-900ms, "dalam 0 detik"},
        {999'999us, "dalam 0 detik"},
        {-999'999us, "dalam 0 detik"},
        {-1s, "1 detik yang lalu"},
        {-59s, "59 detik yang lalu"},
        {-60s, "1 menit yang lalu"},
        {-119s, "1 menit yang lalu"},
        {-3599s, "59 menit yang lalu"},
        {-3600s, "1 jam yang lalu"},
        {-5400s, "1 jam yang lalu"},
        {-86'399s, "23 jam yang lalu"},
        {-24h, "1 hari yang lalu"},
        {-36h, "1 hari yang lalu"},
        {-days(6) - 23h, "6 hari yang lalu"},
        {-days(7), "1 minggu yang lalu"},
        {-days(13), "1 minggu yang lalu"},
        {-days(14), "2 minggu yang lalu"},
        {-days(28), "4 minggu yang lalu"},
        {-days(30), "4 minggu yang lalu"},
        {-days(31), "1 bulan yang lalu"},
        {-days(61), "2 bulan yang lalu"},
        {-days(364), "11 bulan yang lalu"},
        {-days(365), "1 tahun yang lalu"},
        {30s, "dalam 30 detik"},
        {3h, "dalam 3 jam"},
        {days(2), "dalam 2 hari"},
        {days(8), "dalam 1 minggu"},
        {days(31), "dalam 1 bulan"},
    };
    for (const auto& [offset, text] : rows) {
        SCOPED_TRACE(offset.count());
        EXPECT_EQ(Formatters::relative(noon + offset, noon), text);
    }
}

TEST_F(FormattersTests, cutsTheDistanceTowardZeroBelowTheMillisecond) {
    EXPECT_EQ(Formatters::relative(noon, noon + 59'999'999us), "59 detik yang lalu");
    EXPECT_EQ(Formatters::relative(noon + 1us, noon + 60'000'000us), "59 detik yang lalu");
    EXPECT_EQ(Formatters::relative(noon + 999us, noon + 60'000'999us), "1 menit yang lalu");
    EXPECT_EQ(Formatters::relative(noon + 60'000'000us, noon + 1us), "dalam 59 detik");
}

TEST_F(FormattersTests, clampsTheDayToAShorterMonth) {
    EXPECT_EQ(Formatters::relative(iso("2025-02-28T00:00:00+07:00"), iso("2025-03-31T00:00:00+07:00")),
              "1 bulan yang lalu");
    EXPECT_EQ(Formatters::relative(iso("2025-02-28T00:00:00+07:00"), iso("2025-01-31T00:00:00+07:00")),
              "dalam 1 bulan");
    EXPECT_EQ(Formatters::relative(iso("2024-02-29T00:00:00+07:00"), iso("2025-03-01T00:00:00+07:00")),
              "1 tahun yang lalu");
}

TEST_F(FormattersTests, countsCalendarDaysWhereTheClockIsSetForward) {
    const Instant before = iso("2025-03-08T12:00:00-05:00");
    const Instant after = iso("2025-03-09T12:00:00-04:00"); // 23 hours later
    EXPECT_EQ(Formatters::relative(before, after), "23 jam yang lalu");
    useZone("America/New_York", u"America/New_York");
    EXPECT_EQ(Formatters::relative(before, after), "1 hari yang lalu");
}

TEST_F(FormattersTests, groupsThousands) {
    EXPECT_EQ(Formatters::relative(iso("0525-06-15T12:00:00+07:00"), noon), "1.500 tahun yang lalu");
}

TEST_F(FormattersTests, tellsTheDistanceOfTheFurthestInstants) {
    EXPECT_EQ(Formatters::relative(Instant::max(), iso("1970-01-01T00:00:00Z")), "dalam 292.277 tahun");
    EXPECT_TRUE(Formatters::relative(Instant::max(), Instant::min()).starts_with("dalam 58"));
    EXPECT_TRUE(Formatters::relative(Instant::min(), Instant::max()).ends_with(" tahun yang lalu"));
}

TEST_F(FormattersTests, cutsDaysTowardZero) {
    const std::pair<microseconds, std::int64_t> rows[] = {
        {0s, 0},       {86'399s, 0},   {86'400s - 1us, 0},   {86'400s, 1}, {days(400) + 5h, 400},
        {-86'399s, 0}, {-86'400s, -1}, {-days(2) - 23h, -2},
    };
    for (const auto& [age, count] : rows) {
        SCOPED_TRACE(age.count());
        EXPECT_EQ(Formatters::days(noon - age, noon), count);
    }
}

TEST_F(FormattersTests, hasNoDaysSinceNoInstant) {
    EXPECT_EQ(Formatters::days(std::nullopt, noon), std::nullopt);
}

TEST_F(FormattersTests, countsDaysBetweenTheFurthestInstants) {
    EXPECT_EQ(Formatters::days(Instant::min(), Instant::max()), 213'503'982);
    EXPECT_EQ(Formatters::days(Instant::max(), Instant::min()), -213'503'982);
}

TEST_F(FormattersTests, namesEachMonth) {
    const std::array names{"Januari", "Februari", "Maret",     "April",   "Mei",      "Juni",
                           "Juli",    "Agustus",  "September", "Oktober", "November", "Desember"};
    for (int month = 1; month <= 12; ++month)
        EXPECT_EQ(Formatters::monthYear(2026, month),
                  names[static_cast<std::size_t>(month - 1)] + std::string(" 2026"));
}

TEST_F(FormattersTests, namesTheSameMonthInEveryTimeZone) {
    useZone("Pacific/Honolulu", u"Pacific/Honolulu");
    EXPECT_EQ(Formatters::monthYear(2026, 1), "Januari 2026");
    useZone("Pacific/Kiritimati", u"Pacific/Kiritimati");
    EXPECT_EQ(Formatters::monthYear(2026, 1), "Januari 2026");
}

TEST_F(FormattersTests, writesNumbersThatMakeNoMonth) {
    EXPECT_EQ(Formatters::monthYear(2026, 0), "0/2026");
    EXPECT_EQ(Formatters::monthYear(2026, 13), "13/2026");
    EXPECT_EQ(Formatters::monthYear(2026, -1), "-1/2026");
    EXPECT_EQ(Formatters::monthYear(INT_MAX, 1), "1/2147483647");
    EXPECT_EQ(Formatters::monthYear(INT_MIN, 12), "12/-2147483648");
    EXPECT_EQ(Formatters::monthYear(INT_MAX, INT_MIN), "-2147483648/2147483647");
}

TEST_F(FormattersTests, namesMonthsOfDistantYears) {
    EXPECT_EQ(Formatters::monthYear(1, 3), "Maret 0001");
    EXPECT_EQ(Formatters::monthYear(12'345, 3), "Maret 12345");
    EXPECT_EQ(Formatters::monthYear(5'000'000, 12), "Desember 5000000");
}

class DateAndTimeTests : public FormattersTests {
protected:
    /// With an ordinary blank before AM and PM, where newer locale data has a narrow one.
    std::string text() const {
        std::string text = Formatters::dateAndTime(iso("2026-11-15T18:42:59+07:00"));
        if (const auto at = text.find("\u202F"); at != std::string::npos)
            text.replace(at, 3, " ");
        return text;
    }
    const std::string american = "Nov 15, 2026, 6:42 PM";
};

TEST_F(DateAndTimeTests, isAmericanWhenNothingIsSet) {
    EXPECT_EQ(text(), american);
}

TEST_F(DateAndTimeTests, isAmericanForTheLocaleOfTheProgrammer) {
    for (const char* name : {"C", "POSIX", "C.UTF-8", "C.utf8", ".UTF-8"}) {
        SCOPED_TRACE(name);
        ::setenv("LANG", name, 1);
        EXPECT_EQ(text(), american);
    }
}

TEST_F(DateAndTimeTests, followsTheLocaleOfTheEnvironment) {
    ::setenv("LANG", "id_ID.UTF-8", 1);
    EXPECT_EQ(text(), "15 Nov 2026, 18.42");
    ::setenv("LC_TIME", "de_DE@euro", 1);
    EXPECT_EQ(text(), "15.11.2026, 18:42");
    ::setenv("LC_ALL", "en_US.UTF-8", 1);
    EXPECT_EQ(text(), american);
}

TEST_F(DateAndTimeTests, isAmericanForALocaleThatIsNone) {
    for (const std::string& name : {std::string("xx_YY"), std::string("____"), std::string("\xFF\xFE;;="),
                                    std::string(100'000, 'a'), "en_" + std::string(300, 'X')}) {
        SCOPED_TRACE(name.substr(0, 20));
        ::setenv("LC_ALL", name.c_str(), 1);
        EXPECT_EQ(text(), american);
    }
}

TEST_F(DateAndTimeTests, followsTheTimeZone) {
    useZone("America/New_York", u"America/New_York");
    EXPECT_EQ(text(), "Nov 15, 2026, 6:42 AM");
}

} // namespace
} // namespace korvanti
