#include "base/Json.h"
#include "support/Environment.h"
#include "support/RunProgram.h"
#include "support/TempFolder.h"

#include <clocale>
#include <gtest/gtest.h>
#include <limits>

namespace korvanti {
namespace {

using namespace std::string_view_literals;

Json parsed(std::string_view text) {
    const auto value = parseJson(text);
    EXPECT_TRUE(value) << text << ": " << (value ? "" : value.error().message);
    return value.value_or(Json());
}

std::string nested(std::size_t levels, std::string_view opening, std::string_view closing) {
    std::string text;
    for (std::size_t level = 0; level < levels; ++level)
        text += opening;
    for (std::size_t level = 0; level < levels; ++level)
        text += closing;
    return text;
}

TEST(JsonParserTests, readsEveryKindOfValue) {
    const Json value = parsed(R"( {"a":null,"b":[true,false],"c":-5,"d":1.5,"e":"x","f":{}} )");
    EXPECT_EQ(
        value,
        (Json{
            {"a", nullptr}, {"b", {true, false}}, {"c", -5}, {"d", 1.5}, {"e", "x"}, {"f", Json::object()}}));
}

TEST(JsonParserTests, readsAValueThatIsNoContainer) {
    EXPECT_EQ(parsed("5"), Json(5));
    EXPECT_EQ(parsed("\"x\""), Json("x"));
    EXPECT_TRUE(parsed("null").is_null());
}

TEST(JsonParserTests, keepsTheOrderOfKeys) {
    EXPECT_EQ(compactJson(parsed(R"({"b":1,"a":2,"10":3,"2":4})")), R"({"b":1,"a":2,"10":3,"2":4})");
}

TEST(JsonParserTests, readsEscapes) {
    EXPECT_EQ(parsed(R"("\"\\\/\b\f\n\r\t\u00e9\ud83d\ude42")"), Json("\"\\/\b\f\n\r\té🙂"));
    EXPECT_EQ(parsed(R"("a\u0000b")"), Json("a\0b"sv));
}

TEST(JsonParserTests, passesOverAByteOrderMark) {
    EXPECT_EQ(parsed("\xEF\xBB\xBF[1]"), Json::array({1}));
}

TEST(JsonParserTests, letsTheFirstOfEqualKeysWin) {
    EXPECT_EQ(compactJson(parsed(R"({"a":1,"b":2,"a":3})")), R"({"a":1,"b":2})");
    EXPECT_EQ(compactJson(parsed(R"({"a":null,"a":3})")), R"({"a":null})");
    EXPECT_EQ(compactJson(parsed(R"({"a":{"x":1},"a":{"x":2,"y":[{"z":3}]},"b":[4]})")),
              R"({"a":{"x":1},"b":[4]})");
    EXPECT_EQ(compactJson(parsed(R"({"a":1,"\u0061":2})")), R"({"a":1})");
    EXPECT_EQ(compactJson(parsed(R"([{"a":1},{"a":2}])")), R"([{"a":1},{"a":2}])");
}

TEST(JsonParserTests, refusesAFaultInsideAValueThatDoesNotWin) {
    EXPECT_FALSE(parseJson(R"({"a":1,"a":[1,,2]})"));
    EXPECT_FALSE(parseJson(R"({"a":1,"a":)" + nested(512, "[", "]") + "}"));
}

TEST(JsonParserTests, acceptsOneTrailingComma) {
    for (const auto& [text, same] :
         {std::pair("[1,]", "[1]"), std::pair("[1 , \t\r\n]", "[1]"), std::pair(R"({"a":1,})", R"({"a":1})"),
          std::pair("[[],]", "[[]]"), std::pair("[{},]", "[{}]"), std::pair(R"(["a",])", R"(["a"])"),
          std::pair(R"({"a":[1,],"b":{"c":null,},})", R"({"a":[1],"b":{"c":null}})")}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(compactJson(parsed(text)), same);
    }
}

TEST(JsonParserTests, leavesCommasInsideTextsAlone) {
    for (const char* text : {R"(["a,]"])", R"({"a,}":"\",}"})", R"(["\\",",]"])", R"(["\\\",]"])"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(compactJson(parsed(text)), text);
    }
}

TEST(JsonParserTests, refusesOtherCommas) {
    for (const char* text : {"[,]", "{,}", "[ , ]", "[1,,]", "[,1]", "[1,,2]", R"({"a":,})", R"({"a",})",
                             R"({"a":1,,})", "1,", "[1],", ",", "[1,}", R"({"a":1,])", "[1,", "[[],,]"}) {
        SCOPED_TRACE(text);
        EXPECT_FALSE(parseJson(text));
    }
}

TEST(JsonParserTests, acceptsNestingUpTo512) {
    EXPECT_TRUE(parseJson(nested(512, "[", "]")));
    EXPECT_TRUE(parseJson(nested(511, R"({"a":)", "}").insert(511 * 5, "[]")));
}

TEST(JsonParserTests, refusesDeeperNesting) {
    EXPECT_EQ(parseJson(nested(513, "[", "]")).error().message, "nested too deeply");
    EXPECT_FALSE(parseJson(nested(512, R"({"a":)", "}").insert(512 * 5, "[]")));
    EXPECT_FALSE(parseJson(std::string(5'000'000, '[')));
}

TEST(JsonParserTests, readsManyKeysInOneObject) {
    std::string text = "{";
    for (int key = 0; key < 100'000; ++key)
        text += '"' + std::to_string(key) + R"(":1,)";
    text.back() = '}';
    EXPECT_EQ(parsed(text).size(), 100'000u); // takes minutes where each key is looked for in all before it
}

TEST(JsonParserTests, refusesAllElse) {
    for (const std::string_view text : {""sv,
                                        " "sv,
                                        "\xEF\xBB\xBF"sv,
                                        "nul"sv,
                                        "True"sv,
                                        "NaN"sv,
                                        "Infinity"sv,
                                        "-"sv,
                                        "+1"sv,
                                        ".5"sv,
                                        "01"sv,
                                        "-01"sv,
                                        "1."sv,
                                        "1e"sv,
                                        "1e+"sv,
                                        "1-2"sv,
                                        "0x1"sv,
                                        "1 2"sv,
                                        "[1] x"sv,
                                        "{} {}"sv,
                                        "[1"sv,
                                        "{"sv,
                                        "]"sv,
                                        "[1}"sv,
                                        "{1:2}"sv,
                                        "{a:1}"sv,
                                        R"({"a" 1})"sv,
                                        R"({"a":})"sv,
                                        R"({"a"})"sv,
                                        "['a']"sv,
                                        "[1 2]"sv,
                                        "// x\n1"sv,
                                        "/* x */ 1"sv,
                                        "1 // x"sv,
                                        R"("a)"sv,
                                        R"("\x")"sv,
                                        R"("\u12")"sv,
                                        R"("\ud800")"sv,
                                        R"("\ud800\u0041")"sv,
                                        R"("\udc00")"sv,
                                        "\"a\nb\""sv,
                                        "\"a\tb\""sv,
                                        "\"\x01\""sv,
                                        "\"\xFF\""sv,
                                        "\"\xC0\xAF\""sv,
                                        "\"\xED\xA0\x80\""sv,
                                        "\"\xE2\x82\""sv,
                                        "\xFF\xFE[\0]\0"sv,
                                        "[1]\0"sv,
                                        "[1]\0x"sv,
                                        "\"a\0b\""sv,
                                        "\0"sv,
                                        "\v1"sv,
                                        "\xC2\xA0"
                                        "1"sv}) {
        SCOPED_TRACE(::testing::PrintToString(text));
        const auto value = parseJson(text);
        ASSERT_FALSE(value);
        EXPECT_FALSE(value.error().message.empty());
    }
}

TEST(JsonParserTests, refusesNumbersThatNoDoubleHolds) {
    for (const char* text :
         {"1e400", "-1e400", "1e-400", "-1e-400", "0.000001e-330", "[1e999999999999999999999]"}) {
        SCOPED_TRACE(text);
        EXPECT_FALSE(parseJson(text));
    }
    EXPECT_EQ(parsed("0e-400"), Json(0.0));
    EXPECT_EQ(parsed("0.0e999"), Json(0.0));
    EXPECT_EQ(parsed("5e-324"), Json(5e-324));
}

TEST(JsonParserTests, readsAndWritesNumbersInALocaleWithAComma) {
    const testing::TempFolder locales;
    const testing::ScopedVariable place("LOCPATH", locales.path());
#ifndef __APPLE__ // which has every locale
    const auto made =
        testing::runProgram({"localedef", "-i", "de_DE", "-f", "UTF-8", locales.path("de_DE.UTF-8")});
    ASSERT_EQ(made.status, 0) << made.err;
#endif
    ASSERT_TRUE(std::setlocale(LC_NUMERIC, "de_DE.UTF-8"));
    EXPECT_EQ(parsed("1.5"), Json(1.5));
    EXPECT_EQ(parsed("9007199254740993.0"), Json(std::int64_t{9007199254740993}));
    EXPECT_EQ(compactJson(1.5), "1.5");
    std::setlocale(LC_NUMERIC, "C");
}

TEST(JsonWriterTests, writesNumbersAsThePlatformDoes) {
    constexpr std::int64_t exactly2to53 = 9'007'199'254'740'992;
    const std::pair<double, const char*> rows[] = {
        {0.1, "0.1"},
        {5.0, "5"},
        {0.0, "0"},
        {-0.0, "-0"},
        {-1.5, "-1.5"},
        {100.0, "100"},
        {1.0 / 3, "0.3333333333333333"},
        {123456789.123, "123456789.123"},
        {1e15, "1000000000000000"},
        {static_cast<double>(exactly2to53), "9007199254740992"},
        {-static_cast<double>(exactly2to53), "-9007199254740992"},
        {9007199254740994.0, "9.007199254740994e+15"},
        {-9007199254740994.0, "-9.007199254740994e+15"},
        {9.5e15, "9.5e+15"},
        {9.99e15, "9.99e+15"},
        {1e16, "1e+16"},
        {1.5e16, "1.5e+16"},
        {1e20, "1e+20"},
        {1e100, "1e+100"},
        {0.0001, "0.0001"},
        {0.00001, "1e-05"},
        {0.00009999, "9.999e-05"},
        {1.25e-7, "1.25e-07"},
        {5e-324, "5e-324"},
        {2.2250738585072014e-308, "2.2250738585072014e-308"},
        {std::numeric_limits<double>::max(), "1.7976931348623157e+308"},
    };
    for (const auto& [number, text] : rows)
        EXPECT_EQ(compactJson(number), text);
}

TEST(JsonWriterTests, writesIntegersInFull) {
    EXPECT_EQ(compactJson(std::numeric_limits<std::int64_t>::max()), "9223372036854775807");
    EXPECT_EQ(compactJson(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
    EXPECT_EQ(compactJson(std::numeric_limits<std::uint64_t>::max()), "18446744073709551615");
}

TEST(JsonWriterTests, endsTheProcessForANumberThatIsNone) {
    ::testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_DEATH((void)compactJson(std::numeric_limits<double>::quiet_NaN()), "");
    EXPECT_DEATH((void)prettySortedJson(std::numeric_limits<double>::infinity()), "");
}

TEST(JsonWriterTests, escapesWhatThePlatformEscapes) {
    EXPECT_EQ(compactJson("\"\\/\b\f\n\r\t"), R"("\"\\\/\b\f\n\r\t")");
    EXPECT_EQ(compactJson("\0\x01\x0B\x1B\x1F"sv), R"("\u0000\u0001\u000b\u001b\u001f")");
    EXPECT_EQ(compactJson("\x7F é \u2028\u2029 🙂"), "\"\x7F é \u2028\u2029 🙂\"");
}

TEST(JsonWriterTests, escapesKeysToo) {
    EXPECT_EQ(compactJson(Json{{"a/\"\n", 1}}), R"({"a\/\"\n":1})");
}

TEST(JsonWriterTests, repairsTextThatIsNotUtf8) {
    EXPECT_EQ(compactJson(Json{{"k\xFF", "r\xE9sum\xE9"}}), "{\"k\uFFFD\":\"r\uFFFDsum\uFFFD\"}");
}

TEST(JsonWriterTests, writesThePlatformsPrettyForm) {
    const Json value{{"size", 5}, {"path", "/Users/x"}, {"b", Json::object()}, {"a", Json::array()}};
    EXPECT_EQ(prettySortedJson(value), "{\n"
                                       "  \"a\" : [\n"
                                       "\n"
                                       "  ],\n"
                                       "  \"b\" : {\n"
                                       "\n"
                                       "  },\n"
                                       "  \"path\" : \"\\/Users\\/x\",\n"
                                       "  \"size\" : 5\n"
                                       "}");
}

TEST(JsonWriterTests, indentsEachLevelByTwo) {
    EXPECT_EQ(prettySortedJson(Json{{"a", {1, {{"b", {true, nullptr}}}}}}), "{\n"
                                                                            "  \"a\" : [\n"
                                                                            "    1,\n"
                                                                            "    {\n"
                                                                            "      \"b\" : [\n"
                                                                            "        true,\n"
                                                                            "        null\n"
                                                                            "      ]\n"
                                                                            "    }\n"
                                                                            "  ]\n"
                                                                            "}");
}

TEST(JsonWriterTests, writesAnEmptyValueAloneOnThreeLines) {
    EXPECT_EQ(prettySortedJson(Json::array()), "[\n\n]");
    EXPECT_EQ(prettySortedJson(Json::object()), "{\n\n}");
}

TEST(JsonWriterTests, sortsKeysByTheirBytes) {
    const Json value{{"é", 1},  {"b", 1}, {"a", 1},          {"B", 1},     {"2", 1},
                     {"10", 1}, {"", 1},  {"\U00010000", 1}, {"\uFFFF", 1}};
    EXPECT_EQ(prettySortedJson(value), "{\n"
                                       "  \"\" : 1,\n"
                                       "  \"10\" : 1,\n"
                                       "  \"2\" : 1,\n"
                                       "  \"B\" : 1,\n"
                                       "  \"a\" : 1,\n"
                                       "  \"b\" : 1,\n"
                                       "  \"é\" : 1,\n"
                                       "  \"\uFFFF\" : 1,\n"
                                       "  \"\U00010000\" : 1\n"
                                       "}");
}

TEST(JsonWriterTests, writesTheCompactFormWithoutBlanksInTheGivenOrder) {
    const Json value{{"b", Json::array()}, {"a", {1, 2.5, nullptr, true, "x"}}, {"c", Json::object()}};
    EXPECT_EQ(compactJson(value), R"({"b":[],"a":[1,2.5,null,true,"x"],"c":{}})");
}

class JsonObjectReaderTests : public ::testing::Test {
protected:
    /// The outcome of one read of the field "x" in an object.
    template <class Read> static auto reading(std::string_view object, Read read) {
        const Json value = parsed(object);
        JsonObjectReader in(value);
        auto result = read(in);
        return in.finish(std::move(result));
    }
    static auto integer(std::string_view number) {
        return reading("{\"x\":" + std::string(number) + "}", [](auto& in) { return in.integer("x"); });
    }
};

TEST_F(JsonObjectReaderTests, readsARecordInOneGo) {
    const Json value = parsed(R"({"text":"t","integer":5,"number":1.5,"whole":2,"yes":true,
        "instant":"2026-11-15T18:42:59Z","texts":["a","b"],"map":{"k":"v"},"unknown":{}})");
    JsonObjectReader in(value);
    EXPECT_EQ(in.text("text"), "t");
    EXPECT_EQ(in.integer("integer"), 5);
    EXPECT_EQ(in.number("number"), 1.5);
    EXPECT_EQ(in.number("whole"), 2.0);
    EXPECT_EQ(in.boolean("yes"), true);
    EXPECT_EQ(in.instant("instant"), instantFromSeconds(1'794'768'179));
    EXPECT_EQ(in.texts("texts"), (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(in.textMap("map"), (std::map<std::string, std::string>{{"k", "v"}}));
    EXPECT_EQ(in.optionalText("text"), "t");
    EXPECT_EQ(in.optionalInteger("integer"), 5);
    EXPECT_EQ(in.optionalBoolean("yes"), true);
    EXPECT_EQ(in.optionalInstant("instant"), instantFromSeconds(1'794'768'179));
    EXPECT_EQ(in.optionalTexts("texts"), (std::vector<std::string>{"a", "b"}));
    EXPECT_FALSE(in.failed());
    EXPECT_EQ(in.finish(7), 7);
}

TEST_F(JsonObjectReaderTests, takesIntegralNumbersForIntegers) {
    const std::pair<const char*, std::int64_t> rows[] = {
        {"5", 5},
        {"-5", -5},
        {"5.0", 5},
        {"5e0", 5},
        {"1e3", 1000},
        {"-1.5E+1", -15},
        {"1200e-2", 12},
        {"-0", 0},
        {"-0.0", 0},
        {"9007199254740991.0", 9'007'199'254'740'991},
        {"9007199254740992.0", 9'007'199'254'740'992},
        {"9007199254740993.0", 9'007'199'254'740'993},
        {"-9007199254740993.000", -9'007'199'254'740'993},
        {"1e18", 1'000'000'000'000'000'000},
        {"0.00123456789012345678e20", 123'456'789'012'345'678},
        {"9223372036854775807", std::numeric_limits<std::int64_t>::max()},
        {"9223372036854775807.0", std::numeric_limits<std::int64_t>::max()},
        {"-9223372036854775808", std::numeric_limits<std::int64_t>::min()},
        {"-9.223372036854775808e18", std::numeric_limits<std::int64_t>::min()},
    };
    for (const auto& [text, number] : rows) {
        SCOPED_TRACE(text);
        EXPECT_EQ(integer(text), number);
    }
}

TEST_F(JsonObjectReaderTests, refusesOtherValuesForIntegers) {
    for (const char* text :
         {"5.5", "1e-1", "9007199254740993.5", "9223372036854775808", "9223372036854775808.0",
          "-9223372036854775809", "-9.223372036854775809e18", "18446744073709551615", "99999999999999999999",
          "1e19", "1e300", "\"5\"", "true", "null", "[]", "{}"}) {
        SCOPED_TRACE(text);
        EXPECT_FALSE(integer(text));
    }
}

TEST_F(JsonObjectReaderTests, refusesOtherTypes) {
    const auto refuses = [](const char* object, auto read) {
        SCOPED_TRACE(object);
        EXPECT_FALSE(reading(object, read));
    };
    for (const char* object : {R"({"x":5})", R"({"x":null})", R"({"x":["a"]})", R"({"x":true})"})
        refuses(object, [](auto& in) { return in.text("x"); });
    for (const char* object : {R"({"x":"5"})", R"({"x":null})", R"({"x":true})"})
        refuses(object, [](auto& in) { return in.number("x"); });
    for (const char* object : {R"({"x":1})", R"({"x":0})", R"({"x":"true"})", R"({"x":null})"})
        refuses(object, [](auto& in) { return in.boolean("x"); });
    for (const char* object : {R"({"x":1794768179})", R"({"x":"yesterday"})", R"({"x":null})"})
        refuses(object, [](auto& in) { return in.instant("x"); });
    for (const char* object :
         {R"({"x":"a"})", R"({"x":["a",1]})", R"({"x":[null]})", R"({"x":{}})", R"({"x":null})"})
        refuses(object, [](auto& in) { return in.texts("x"); });
    for (const char* object : {R"({"x":[]})", R"({"x":{"a":1}})", R"({"x":null})"})
        refuses(object, [](auto& in) { return in.textMap("x"); });
}

TEST_F(JsonObjectReaderTests, refusesAMissingKey) {
    const Json empty = Json::object();
    JsonObjectReader in(empty);
    EXPECT_EQ(in.text("name"), "");
    EXPECT_EQ(in.integer("bytes"), 0);
    EXPECT_EQ(in.finish(1), std::unexpected(JsonError{"\"name\" is missing"}));
}

TEST_F(JsonObjectReaderTests, takesAMissingOptionalAndNullAlike) {
    for (const char* object : {"{}", R"({"x":null})"}) {
        SCOPED_TRACE(object);
        const Json value = parsed(object);
        JsonObjectReader in(value);
        EXPECT_EQ(in.optionalText("x"), std::nullopt);
        EXPECT_EQ(in.optionalInteger("x"), std::nullopt);
        EXPECT_EQ(in.optionalBoolean("x"), std::nullopt);
        EXPECT_EQ(in.optionalInstant("x"), std::nullopt);
        EXPECT_EQ(in.optionalTexts("x"), std::nullopt);
        EXPECT_EQ(in.optionalValue("x"), nullptr);
        EXPECT_FALSE(in.failed());
    }
}

TEST_F(JsonObjectReaderTests, refusesAnOptionalOfAnotherType) {
    EXPECT_FALSE(reading(R"({"x":false})", [](auto& in) { return in.optionalText("x"); }));
    EXPECT_FALSE(reading(R"({"x":false})", [](auto& in) { return in.optionalInteger("x"); }));
    EXPECT_FALSE(reading(R"({"x":false})", [](auto& in) { return in.optionalInstant("x"); }));
    EXPECT_FALSE(reading(R"({"x":false})", [](auto& in) { return in.optionalTexts("x"); }));
    EXPECT_FALSE(reading(R"({"x":5.5})", [](auto& in) { return in.optionalInteger("x"); }));
    EXPECT_FALSE(reading(R"({"x":0})", [](auto& in) { return in.optionalBoolean("x"); }));
    EXPECT_FALSE(reading(R"({"x":"false"})", [](auto& in) { return in.optionalBoolean("x"); }));
}

TEST_F(JsonObjectReaderTests, refusesAValueThatIsNoObject) {
    for (const char* text : {"[]", "null", "5", R"("x")"}) {
        SCOPED_TRACE(text);
        const Json value = parsed(text);
        JsonObjectReader in(value);
        EXPECT_EQ(in.optionalText("x"), std::nullopt);
        EXPECT_EQ(in.finish(1), std::unexpected(JsonError{"not an object"}));
    }
}

TEST_F(JsonObjectReaderTests, keepsTheFirstError) {
    const Json value = parsed(R"({"a":"five","b":6})");
    JsonObjectReader in(value);
    in.integer("a");
    in.text("b");
    in.fail("later");
    EXPECT_EQ(in.finish(1), std::unexpected(JsonError{"\"a\" is not an integer"}));
}

struct Point {
    std::int64_t x = 0;
    bool operator==(const Point&) const = default;
};

std::expected<Point, JsonError> decodePoint(const Json& value) {
    JsonObjectReader in(value);
    Point point{.x = in.integer("x")};
    return in.finish(point);
}

TEST_F(JsonObjectReaderTests, readsRecordsInsideTheRecord) {
    const Json value = parsed(R"({"one":{"x":1},"many":[{"x":2},{"x":3}],"none":null})");
    JsonObjectReader in(value);
    EXPECT_EQ(in.record("one", decodePoint), Point{1});
    EXPECT_EQ(in.records("many", decodePoint), (std::vector<Point>{{2}, {3}}));
    EXPECT_EQ(in.optionalRecord("one", decodePoint), Point{1});
    EXPECT_EQ(in.optionalRecord("none", decodePoint), std::nullopt);
    EXPECT_EQ(in.optionalRecord("missing", decodePoint), std::nullopt);
    EXPECT_FALSE(in.failed());
}

TEST_F(JsonObjectReaderTests, failsAsAWholeForOneBadRecord) {
    EXPECT_FALSE(reading(R"({"p":{"y":1}})", [](auto& in) { return in.record("p", decodePoint); }));
    EXPECT_FALSE(reading(R"({"p":[1]})", [](auto& in) { return in.optionalRecord("p", decodePoint); }));
    EXPECT_FALSE(reading(R"({"p":[{"x":1},{"x":"2"},{"x":3}]})",
                         [](auto& in) { return in.records("p", decodePoint); }));
    EXPECT_FALSE(reading(R"({"p":{"x":1}})", [](auto& in) { return in.records("p", decodePoint); }));
    EXPECT_FALSE(reading("{}", [](auto& in) { return in.records("p", decodePoint); }));
}

} // namespace
} // namespace korvanti
