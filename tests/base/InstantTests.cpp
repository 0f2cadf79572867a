#include "base/Instant.h"

#include <cstdlib>
#include <ctime>
#include <gtest/gtest.h>
#include <limits>

namespace korvanti {
namespace {

using std::chrono::microseconds;

Instant at(std::int64_t seconds, std::int64_t micros = 0) {
    return Instant(std::chrono::seconds(seconds) + microseconds(micros));
}

constexpr std::int64_t november = 1'794'768'179; // 2026-11-15T18:42:59Z

TEST(InstantTests, readsTheWallClock) {
    const std::time_t before = std::time(nullptr);
    const std::int64_t now = wholeSeconds(currentInstant());
    EXPECT_GE(now, before);
    EXPECT_LE(now, std::time(nullptr) + 1); // whose clock may lag by a tick
}

TEST(InstantTests, cutsWholeSecondsTowardThePast) {
    EXPECT_EQ(wholeSeconds(at(5, 999'999)), 5);
    EXPECT_EQ(wholeSeconds(at(0, -1)), -1);
    EXPECT_EQ(wholeSeconds(at(-5)), -5);
    EXPECT_EQ(wholeSeconds(Instant::max()), 9'223'372'036'854);
    EXPECT_EQ(wholeSeconds(Instant::min()), -9'223'372'036'855);
}

TEST(InstantTests, takesAnySecondsToTheNearestInstant) {
    EXPECT_EQ(instantFromSeconds(november), at(november));
    EXPECT_EQ(instantFromSeconds(-1), at(-1));
    EXPECT_EQ(instantFromSeconds(9'223'372'036'854), at(9'223'372'036'854));
    EXPECT_EQ(instantFromSeconds(9'223'372'036'855), Instant::max());
    EXPECT_EQ(instantFromSeconds(std::numeric_limits<std::int64_t>::max()), Instant::max());
    EXPECT_EQ(instantFromSeconds(-9'223'372'036'855), Instant::min());
    EXPECT_EQ(instantFromSeconds(std::numeric_limits<std::int64_t>::min()), Instant::min());
}

TEST(InstantTests, countsFromThePlatformsReferenceDate) {
    EXPECT_EQ(instantFromReference(0), instantFromSeconds(978'307'200));
    EXPECT_EQ(instantFromReference(1.25), instantFromSeconds(978'307'201) + microseconds(250'000));
    EXPECT_EQ(instantFromReference(-0.25), instantFromSeconds(978'307'200) - microseconds(250'000));
    EXPECT_EQ(instantFromReference(1e13), Instant::max());
    EXPECT_EQ(instantFromReference(-1e13), Instant::min());
}

TEST(InstantTests, measuresSecondsWithTheirFraction) {
    EXPECT_EQ(secondsBetween(at(10), at(11, 500'000)), 1.5);
    EXPECT_EQ(secondsBetween(at(11, 100'000), at(11)), -0.1);
    EXPECT_EQ(secondsBetween(at(1, 900'000), at(2)), 0.1);
}

TEST(InstantTests, measuresBetweenTheFirstAndTheLastInstant) {
    EXPECT_NEAR(secondsBetween(Instant::min(), Instant::max()), 1.8446744073709e13, 2);
    EXPECT_NEAR(secondsBetween(Instant::max(), Instant::min()), -1.8446744073709e13, 2);
}

TEST(InstantTests, writesWholeSecondsInUtc) {
    const std::pair<Instant, const char*> rows[] = {
        {at(november), "2026-11-15T18:42:59Z"},
        {at(november, 999'999), "2026-11-15T18:42:59Z"},
        {at(0), "1970-01-01T00:00:00Z"},
        {at(0, -1), "1969-12-31T23:59:59Z"},
        {at(951'782'400), "2000-02-29T00:00:00Z"},
        {at(-62'135'596'800), "0001-01-01T00:00:00Z"},
        {at(253'402'300'800), "10000-01-01T00:00:00Z"},
        {Instant::max(), "294247-01-10T04:00:54Z"},
        {Instant::min(), "-290308-12-21T19:59:05Z"},
    };
    for (const auto& [instant, text] : rows)
        EXPECT_EQ(iso8601Text(instant), text);
}

TEST(InstantTests, writesTheSameInEveryTimeZone) {
    ::setenv("TZ", "Asia/Jakarta", 1);
    ::tzset();
    EXPECT_EQ(iso8601Text(at(november)), "2026-11-15T18:42:59Z");
    EXPECT_EQ(instantFromIso8601("2026-11-15T18:42:59Z"), at(november));
}

TEST(InstantTests, readsBackWhatItWrites) {
    for (const Instant instant : {at(november), at(0), at(-1), at(-62'135'596'801), at(253'402'300'800),
                                  at(9'223'372'036'854), at(-9'223'372'036'854), at(-12'345'678'901)})
        EXPECT_EQ(instantFromIso8601(iso8601Text(instant)), instant) << iso8601Text(instant);
}

TEST(InstantTests, readsEveryFormOfTheZone) {
    const std::pair<const char*, std::int64_t> rows[] = {
        {"Z", 0},
        {"z", 0},
        {"+07", 7 * 3600},
        {"+0700", 7 * 3600},
        {"+07:00", 7 * 3600},
        {"-03:30", -(3 * 3600 + 30 * 60)},
        {"-0330", -(3 * 3600 + 30 * 60)},
        {"+05:53:28", 5 * 3600 + 53 * 60 + 28},
        {"+18:00", 18 * 3600},
        {"+00:00", 0},
        {"-00", 0},
        {"GMT", 0},
        {"UTC", 0},
        {"UTC+7", 7 * 3600},
        {"GMT-03:30", -(3 * 3600 + 30 * 60)},
    };
    for (const auto& [zone, ahead] : rows) {
        SCOPED_TRACE(zone);
        EXPECT_EQ(instantFromIso8601("2026-11-15T18:42:59" + std::string(zone)), at(november - ahead));
    }
}

TEST(InstantTests, ignoresWhatFollowsTheZone) {
    for (const char* rest : {"Z and more", "Z\n", "ZZ", "+00:00 ", "+00:xyz", "+0000Z", "GMT?"}) {
        SCOPED_TRACE(rest);
        EXPECT_EQ(instantFromIso8601("2026-11-15T18:42:59" + std::string(rest)), at(november));
    }
}

TEST(InstantTests, readsAFractionOfOneToNineDigits) {
    const std::pair<const char*, std::int64_t> rows[] = {
        {".1", 100'000},       {".12", 120'000},        {".123", 123'000}, {".123456", 123'456},
        {".1234569", 123'456}, {".999999999", 999'999}, {".000000999", 0}, {".000001", 1},
    };
    for (const auto& [fraction, micros] : rows) {
        SCOPED_TRACE(fraction);
        EXPECT_EQ(instantFromIso8601("2026-11-15T18:42:59" + std::string(fraction) + "Z"),
                  at(november, micros));
    }
}

TEST(InstantTests, addsTheFractionBefore1970Too) {
    EXPECT_EQ(instantFromIso8601("1969-12-31T23:59:59.75Z"), at(0, -250'000));
}

TEST(InstantTests, isLenientOnZeroPadding) {
    EXPECT_EQ(instantFromIso8601("2022-1-28T3:4:5Z"), instantFromIso8601("2022-01-28T03:04:05Z"));
    EXPECT_EQ(instantFromIso8601("0002022-001-0028T003:0004:00005Z"),
              instantFromIso8601("2022-01-28T03:04:05Z"));
    EXPECT_TRUE(instantFromIso8601("2022-1-28T3:4:5Z"));
}

TEST(InstantTests, readsALeapSecondAsTheOneBefore) {
    EXPECT_EQ(instantFromIso8601("2016-12-31T23:59:60Z"), instantFromIso8601("2016-12-31T23:59:59Z"));
    EXPECT_TRUE(instantFromIso8601("2016-12-31T23:59:60Z"));
}

TEST(InstantTests, readsTheEndOfTheDay) {
    EXPECT_EQ(instantFromIso8601("2026-12-31T24:00:00Z"), instantFromIso8601("2027-01-01T00:00:00Z"));
    EXPECT_TRUE(instantFromIso8601("2026-12-31T24:00:00Z"));
}

TEST(InstantTests, rollsOverADayBehindTheEndOfTheMonth) {
    EXPECT_EQ(instantFromIso8601("2025-02-31T00:00:00Z"), instantFromIso8601("2025-03-03T00:00:00Z"));
    EXPECT_EQ(instantFromIso8601("2024-02-30T00:00:00Z"), instantFromIso8601("2024-03-01T00:00:00Z"));
    EXPECT_TRUE(instantFromIso8601("2025-02-31T00:00:00Z"));
}

TEST(InstantTests, refusesAllElse) {
    for (const char* text : {"",
                             "Z",
                             "2026",
                             "2026-11-15",
                             "2026-11-15T18:42Z",
                             "2026-11-15T18:42:59",
                             "2026-11-15T18:42:59 Z",
                             " 2026-11-15T18:42:59Z",
                             "+2026-11-15T18:42:59Z",
                             "2026-11-15t18:42:59Z",
                             "2026-11-15 18:42:59Z",
                             "20261115T184259Z",
                             "2026/11/15T18:42:59Z",
                             "2026-11-15T18.42.59Z",
                             "2026-00-15T18:42:59Z",
                             "2026-13-15T18:42:59Z",
                             "2026-11-00T18:42:59Z",
                             "2026-11-32T18:42:59Z",
                             "2026-11-15T25:00:00Z",
                             "2026-11-15T24:00:01Z",
                             "2026-11-15T24:01:00Z",
                             "2026-11-15T24:00:00.5Z",
                             "2026-11-15T18:60:59Z",
                             "2026-11-15T18:42:61Z",
                             "2026-11-15T18:42:59.Z",
                             "2026-11-15T18:42:59.1234567890Z",
                             "2026-11-15T18:42:59,5Z",
                             "2026-11-15T18:42:59+",
                             "2026-11-15T18:42:59-x",
                             "2026-11-15T18:42:59+18:01",
                             "2026-11-15T18:42:59+99",
                             "2026-11-15T18:42:59gmt",
                             "2026-11-15T18:42:59EST",
                             "\xD9\xA2-11-15T18:42:59Z"}) {
        SCOPED_TRACE(text);
        EXPECT_FALSE(instantFromIso8601(text));
    }
}

TEST(InstantTests, refusesAYearThatNoInstantHas) {
    for (const char* text : {"294248-01-01T00:00:00Z", "-290308-12-21T19:59:04Z", "999999999-01-01T00:00:00Z",
                             "1000000000-01-01T00:00:00Z", "99999999999999999999999999-01-01T00:00:00Z",
                             "-99999999999999999999999999-12-31T24:00:00-18:00"}) {
        SCOPED_TRACE(text);
        EXPECT_FALSE(instantFromIso8601(text));
    }
    EXPECT_EQ(instantFromIso8601("294247-01-10T04:00:54.775807Z"), Instant::max());
    EXPECT_EQ(instantFromIso8601("-290308-12-21T19:59:05.224192Z"), Instant::min());
}

TEST(InstantTests, countsLeapYearsAsTheCalendarDoes) {
    EXPECT_EQ(instantFromIso8601("2100-02-29T00:00:00Z"), instantFromIso8601("2100-03-01T00:00:00Z"));
    EXPECT_NE(instantFromIso8601("2000-02-29T00:00:00Z"), instantFromIso8601("2000-03-01T00:00:00Z"));
    EXPECT_EQ(instantFromIso8601("1900-03-01T00:00:00Z"), at(-2'203'891'200));
}

// The strict form

TEST(InstantTests, strictlyReadsADateWithAZone) {
    const std::pair<const char*, std::int64_t> rows[] = {
        {"2026-11-15T18:42:59Z", november},
        {"2026-11-15T18:42:59z", november},
        {"2026-11-15T18:42:59+07:00", november - 7 * 3600},
        {"2026-11-15T18:42:59+0700", november - 7 * 3600},
        {"2026-11-15T18:42:59+07", november - 7 * 3600},
        {"2026-11-15T18:42:59-03:30", november + 3 * 3600 + 30 * 60},
        {"2026-11-15T18:42:59GMT", november},
        {"2026-11-15T18:42:59UTC+7", november - 7 * 3600},
        {"1969-12-31T23:59:59Z", -1},
        {"2026-11-15T00:00:00Z", november - 18 * 3600 - 42 * 60 - 59},
    };
    for (const auto& [text, seconds] : rows)
        EXPECT_EQ(instantFromStrictIso8601(text), at(seconds)) << text;
}

TEST(InstantTests, strictlyReadsPastBlanksInFrontAndAnythingBehindTheZone) {
    for (const char* text :
         {" 2026-11-15T18:42:59Z", "\t\n 2026-11-15T18:42:59Z", "2026-11-15T18:42:59Z and more",
          "2026-11-15T18:42:59ZZ", "2026-11-15T18:42:59+00:00xyz"})
        EXPECT_EQ(instantFromStrictIso8601(text), at(november)) << text;
}

TEST(InstantTests, strictlyRefusesAFraction) {
    for (const char* text : {"2026-11-15T18:42:59.123Z", "2026-11-15T18:42:59.0Z", "2026-11-15T18:42:59.Z",
                             "2026-11-15T18:42:59,5Z"})
        EXPECT_FALSE(instantFromStrictIso8601(text)) << text;
}

TEST(InstantTests, strictlyRefusesAMissingZone) {
    for (const char* text : {"2026-11-15T18:42:59", "2026-11-15T18:42:59+", "2026-11-15T18:42:59EST"})
        EXPECT_FALSE(instantFromStrictIso8601(text)) << text;
}

TEST(InstantTests, strictlyRefusesNumbersWithoutTheirZeros) {
    for (const char* text : {"2026-1-12T03:04:05Z", "2026-11-5T03:04:05Z", "2026-11-15T3:04:05Z",
                             "2026-11-15T03:4:05Z", "2026-11-15T03:04:5Z", "226-11-15T03:04:05Z"})
        EXPECT_FALSE(instantFromStrictIso8601(text)) << text;
}

TEST(InstantTests, strictlyRefusesADayThatTheMonthLacks) {
    for (const char* text : {"2026-02-29T00:00:00Z", "2024-02-30T00:00:00Z", "2100-02-29T00:00:00Z",
                             "2026-04-31T00:00:00Z", "2026-11-32T00:00:00Z", "2026-11-00T00:00:00Z"})
        EXPECT_FALSE(instantFromStrictIso8601(text)) << text;
    EXPECT_EQ(instantFromStrictIso8601("2024-02-29T00:00:00Z"), at(1'709'164'800));
    EXPECT_EQ(instantFromStrictIso8601("2000-02-29T00:00:00Z"), at(951'782'400));
    EXPECT_EQ(instantFromStrictIso8601("2026-12-31T00:00:00Z"), at(1'798'675'200));
}

TEST(InstantTests, strictlyRefusesATimeThatTheDayLacks) {
    for (const char* text : {"2026-12-31T24:00:00Z", "2016-12-31T23:59:60Z", "2026-11-15T25:00:00Z",
                             "2026-11-15T18:60:59Z", "2026-00-15T18:42:59Z", "2026-13-15T18:42:59Z"})
        EXPECT_FALSE(instantFromStrictIso8601(text)) << text;
    EXPECT_EQ(instantFromStrictIso8601("2026-11-15T23:59:59Z"), at(november + 5 * 3600 + 17 * 60));
}

TEST(InstantTests, strictlyRefusesAllElse) {
    for (const char* text :
         {"", " ", "Z", "2026-11-15", "2026-11-15T18:42Z", "2026-11-15t18:42:59Z", "2026-11-15 18:42:59Z",
          "20261115T184259Z", "2026/11/15T18:42:59Z", "-2026-11-15T18:42:59Z", "+2026-11-15T18:42:59Z",
          "1794768179", "99999999999999999999-11-15T18:42:59Z", "294248-01-01T00:00:00Z", "kemarin"})
        EXPECT_FALSE(instantFromStrictIso8601(text)) << text;
}

} // namespace
} // namespace korvanti
