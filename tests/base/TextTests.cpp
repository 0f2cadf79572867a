#include "base/Text.h"

#include <gtest/gtest.h>

namespace korvanti {
namespace {

using namespace std::string_view_literals;

TEST(TextTests, leavesValidTextAsItIs) {
    for (const std::string_view text :
         {""sv, "plain"sv, "zero \0 byte"sv, "line\nfeed \x1B[31m"sv, "é ü 漢字 🙂"sv, "\uFFFD"sv, "\uFFFF"sv,
          "\u0080\u07FF\u0800\uD7FF\uE000\U00010000\U0010FFFF"sv}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(Text::repaired(text), text);
    }
}

TEST(TextTests, replacesEachMaximalInvalidPartOnce) {
    const std::pair<std::string_view, std::string_view> rows[] = {
        {"\x80"sv, "\uFFFD"sv},                               // a continuation without its lead
        {"a\xFFz"sv, "a\uFFFDz"sv},                           // a byte that never occurs
        {"\xC0\xAF"sv, "\uFFFD\uFFFD"sv},                     // overlong: the lead is invalid already
        {"\xE0\x80\xBF"sv, "\uFFFD\uFFFD\uFFFD"sv},           // overlong in three bytes
        {"\xED\xA0\x80"sv, "\uFFFD\uFFFD\uFFFD"sv},           // a surrogate
        {"\xF4\x90\x80\x80"sv, "\uFFFD\uFFFD\uFFFD\uFFFD"sv}, // beyond U+10FFFF
        {"\xE2\x82"sv, "\uFFFD"sv},                           // cut off at the end
        {"\xF0\x9F\x99"sv, "\uFFFD"sv},                       // the same in four bytes
        {"\xF0\x9Fx"sv, "\uFFFDx"sv},                         // cut off by other text
        {"\xE2\x82\xE2\x82\xAC"sv, "\uFFFD\u20AC"sv},         // cut off by a whole sequence
        {"a\xF1\x80\x80\xE1\x80\xC2"
         "b\x80"
         "c"sv,
         "a\uFFFD\uFFFD\uFFFDb\uFFFDc"sv},                // the Unicode standard's own example
        {"r\xE9sum\xE9.txt"sv, "r\uFFFDsum\uFFFD.txt"sv}, // Latin-1
    };
    for (const auto& [bytes, text] : rows) {
        SCOPED_TRACE(text);
        EXPECT_EQ(Text::repaired(bytes), text);
    }
}

TEST(TextTests, repairsEveryPairOfBytesToValidText) {
    for (int first = 0; first < 256; ++first)
        for (int second = 0; second < 256; ++second) {
            const std::string bytes{static_cast<char>(first), static_cast<char>(second), 'x'};
            const std::string text = Text::repaired(bytes);
            ASSERT_EQ(Text::repaired(text), text) << first << " " << second;
            ASSERT_TRUE(text.ends_with('x')) << first << " " << second;
        }
}

TEST(TextTests, printsNoControlCharacter) {
    for (const std::string_view control :
         {"\0"sv,     "\n"sv,     "\r"sv,     "\t"sv,     "\x1B"sv,   "\x1F"sv,   "\x7F"sv,   "\u0080"sv,
          "\u0085"sv, "\u009B"sv, "\u009F"sv, "\u2028"sv, "\u2029"sv, "\u202A"sv, "\u202B"sv, "\u202C"sv,
          "\u202D"sv, "\u202E"sv, "\u2066"sv, "\u2067"sv, "\u2068"sv, "\u2069"sv}) {
        const std::string name = "a" + std::string(control) + "b";
        EXPECT_EQ(Text::printable(name), "a\uFFFDb") << testing::PrintToString(name);
    }
}

TEST(TextTests, printsAllElse) {
    for (const std::string_view text :
         {"a b"sv, "~\u00A0"sv, "\u2027\u202F\u2065\u206A"sv, "é 漢字 🙂 \u200D"sv})
        EXPECT_EQ(Text::printable(text), text);
}

TEST(TextTests, printsInvalidBytesRepaired) {
    EXPECT_EQ(Text::printable("\x9B\xFF"
                              "31m"),
              "\uFFFD\uFFFD31m");
}

TEST(TextTests, countsCharactersAsAPersonDoes) {
    const std::pair<std::string_view, std::size_t> rows[] = {
        {""sv, 0},      {"plain"sv, 5}, {"\r\n"sv, 1},
        {"\n\r"sv, 2},  {"é"sv, 1},     {"e\u0301"sv, 1},
        {"漢字"sv, 2},  {"🇮🇩"sv, 1},    {"👨‍👩‍👧‍👦"sv, 1},
        {"👍🏽!"sv, 2}, {"한국"sv, 2},  {"a\0b"sv, 3},
    };
    for (const auto& [text, count] : rows) {
        SCOPED_TRACE(text);
        EXPECT_EQ(Text::characterCount(text), count);
    }
}

TEST(TextTests, countsEachInvalidSequenceAsOneCharacter) {
    EXPECT_EQ(Text::characterCount("a\xFF\xE2\x82z"), 4u);
}

} // namespace
} // namespace korvanti
