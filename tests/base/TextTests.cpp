#include "base/Text.h"

#include <clocale>
#include <cstdint>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <optional>
#include <utility>

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

TEST(TextTests, replacesEveryOccurrence) {
    EXPECT_EQ(Text::replaced("a_b__c_", "_", " "), "a b  c ");
    EXPECT_EQ(Text::replaced("android-35-android-", "android-", ""), "35-");
    EXPECT_EQ(Text::replaced("none", "_", " "), "none");
    EXPECT_EQ(Text::replaced("", "_", " "), "");
}

TEST(TextTests, doesNotReplaceWhatAReplacementMade) {
    EXPECT_EQ(Text::replaced("a", "a", "aa"), "aa");
    EXPECT_EQ(Text::replaced("ababcc", "abc", ""), "abc");
    EXPECT_EQ(Text::replaced("aaa", "aa", "b"), "ba");
}

TEST(TextTests, composesWhatIsCanonicallyTheSame) {
    EXPECT_EQ(Text::composed("Cafe\u0301/ Ω \u1112\u1161"), "Caf\u00E9/ Ω \uD558");
    EXPECT_EQ(Text::composed("\u212A \u2126"), "K \u03A9");
    EXPECT_EQ(Text::composed("q\u0323\u0307"), Text::composed("q\u0307\u0323"));
}

TEST(TextTests, composesNothingThatOnlyLooksAlike) {
    for (const std::string_view text :
         {""sv, "plain/text"sv, "zero \0 byte"sv, "\u00E9"sv, "\uFB01 \u00B2"sv}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(Text::composed(text), text);
    }
}

TEST(TextTests, composesInvalidBytesRepaired) {
    EXPECT_EQ(Text::composed("e\u0301\xFFz"), "\u00E9\uFFFDz");
}

TEST(TextTests, lowersEveryCharacterOnItsOwn) {
    const std::pair<std::string_view, std::string_view> rows[] = {
        {""sv, ""sv},
        {"AbC 123 .DMG"sv, "abc 123 .dmg"sv},
        {"already"sv, "already"sv},
        {"ÀÉÎÕÜ ŞĞ"sv, "àéîõü şğ"sv},
        {"\u212AB"sv, "kb"sv},     // the sign of the kelvin
        {"\u0130"sv, "i\u0307"sv}, // two characters, whatever the language
        {"I"sv, "i"sv},
        {"\u1E9E"sv, "\u00DF"sv},
        {"ΟΔΟΣ"sv, "οδοσ"sv}, // no final sigma
        {"Привет"sv, "привет"sv},
        {"\U00010400"sv, "\U00010428"sv}, // beyond 16 bits
        {"漢字 🙂"sv, "漢字 🙂"sv},
        {"A\0B"sv, "a\0b"sv},
    };
    for (const auto& [text, lower] : rows) {
        SCOPED_TRACE(text);
        EXPECT_EQ(Text::lowercased(text), lower);
    }
}

TEST(TextTests, lowersAroundBytesThatAreNoText) {
    EXPECT_EQ(Text::lowercased("A\xFF\xE2\x82Z\xC3"), "a\xFF\xE2\x82z\xC3");
}

TEST(TextTests, lowersIndependentlyOfTheLocale) {
    const char* const before = std::setlocale(LC_ALL, nullptr);
    const std::string kept = before ? before : "C";
    for (const auto* name : {"tr_TR.UTF-8", "C.UTF-8", "C"}) {
        std::setlocale(LC_ALL, name); // where the system has it
        EXPECT_EQ(Text::lowercased("TITLE É"), "title é") << name;
    }
    std::setlocale(LC_ALL, kept.c_str());
}

TEST(TextTests, trimsEveryKindOfWhiteSpaceAndLineEnd) {
    for (const std::string_view space :
         {" "sv,      "\t"sv,     "\n"sv,     "\v"sv,     "\f"sv,     "\r"sv,     "\u0085"sv,
          "\u00A0"sv, "\u1680"sv, "\u2000"sv, "\u2001"sv, "\u2002"sv, "\u2003"sv, "\u2004"sv,
          "\u2005"sv, "\u2006"sv, "\u2007"sv, "\u2008"sv, "\u2009"sv, "\u200A"sv, "\u200B"sv,
          "\u2028"sv, "\u2029"sv, "\u202F"sv, "\u205F"sv, "\u3000"sv}) {
        const std::string twice = std::string(space) + std::string(space);
        SCOPED_TRACE(::testing::PrintToString(twice));
        EXPECT_EQ(Text::trimmed(twice + "a b" + twice), "a b");
        EXPECT_EQ(Text::trimmed("a" + twice + "b"), "a" + twice + "b");
        EXPECT_EQ(Text::trimmed(twice), "");
    }
}

TEST(TextTests, trimsNothingElse) {
    for (const std::string_view text : {""sv, "a"sv, "\0a\0"sv, "\u200Ca\u200C"sv, "\u200Da"sv, "\uFEFFa"sv,
                                        "\u180Ea"sv, "\u2060a"sv, "\x1F"sv, "a\u0300"sv, "é"sv, "🙂"sv}) {
        SCOPED_TRACE(::testing::PrintToString(text));
        EXPECT_EQ(Text::trimmed(text), text);
    }
}

TEST(TextTests, trimsUpToBytesThatAreNoText) {
    for (const std::string_view text : {"\xFF"sv, "\x80"sv, "\xA0"sv, "\x85"sv, "\xC2"sv, "\xE2\x80"sv,
                                        "\xE3\x80"sv, "\xC2\xA0\xA0"sv, "\x80\x80\x80\x80\x80\xA0"sv}) {
        const bool hasSpaceInFront = text.starts_with("\xC2\xA0");
        SCOPED_TRACE(::testing::PrintToString(text));
        EXPECT_EQ(Text::trimmed(" " + std::string(text) + "\n"), hasSpaceInFront ? text.substr(2) : text);
    }
}

TEST(TextTests, trimsALongTextOfBlanks) {
    const std::string blanks(100'000, ' ');
    EXPECT_EQ(Text::trimmed(blanks + "x" + blanks), "x");
    EXPECT_EQ(Text::trimmed(blanks), "");
}

TEST(TextTests, trimsTheGivenCharactersOnly) {
    EXPECT_EQ(Text::trimmed("'a'b\"'", "'\""), "a'b");
    EXPECT_EQ(Text::trimmed(" a ", "x"), " a ");
    EXPECT_EQ(Text::trimmed("xxx", "x"), "");
    EXPECT_EQ(Text::trimmed("", "x"), "");
    EXPECT_EQ(Text::trimmed(" a ", ""), " a ");
    EXPECT_EQ(Text::trimmed("\xFFxa\xFF", "x"), "\xFFxa\xFF");
}

TEST(TextTests, piecesAreWhatStandsBetweenTheSeparators) {
    using ::testing::ElementsAre;
    EXPECT_THAT(Text::pieces("a/b/c", '/'), ElementsAre("a", "b", "c"));
    EXPECT_THAT(Text::pieces("//a///b//", '/'), ElementsAre("a", "b"));
    EXPECT_THAT(Text::pieces("whole", '/'), ElementsAre("whole"));
    EXPECT_THAT(Text::pieces("", '/'), ::testing::IsEmpty());
    EXPECT_THAT(Text::pieces("///", '/'), ::testing::IsEmpty());
    EXPECT_THAT(Text::pieces("a\r\nb\n", '\n'), ElementsAre("a\r", "b"));
    EXPECT_THAT(Text::pieces("a\0b\0"sv, '\0'), ElementsAre("a", "b"));
    EXPECT_THAT(Text::pieces("\xFF \xFE", ' '), ElementsAre("\xFF", "\xFE"));
}

TEST(TextTests, piecesLookIntoTheText) {
    const std::string text = "one two";
    EXPECT_EQ(Text::pieces(text, ' ')[1].data(), text.data() + 4);
}

TEST(TextTests, readsWholeDecimalNumbers) {
    const std::pair<std::string_view, std::int64_t> rows[] = {
        {"0"sv, 0},
        {"5"sv, 5},
        {"+5"sv, 5},
        {"-5"sv, -5},
        {"-0"sv, 0},
        {"+0"sv, 0},
        {"007"sv, 7},
        {"-007"sv, -7},
        {"10"sv, 10},
        {"08"sv, 8},
        {"1234567"sv, 1'234'567},
        {"9223372036854775807"sv, std::numeric_limits<std::int64_t>::max()},
        {"+9223372036854775807"sv, std::numeric_limits<std::int64_t>::max()},
        {"-9223372036854775808"sv, std::numeric_limits<std::int64_t>::min()},
        {"0000000000000000000000000000001"sv, 1},
    };
    for (const auto& [text, number] : rows)
        EXPECT_EQ(Text::integer(text), number) << text;
}

TEST(TextTests, readsNothingElseAsANumber) {
    for (const std::string_view text : {""sv,
                                        "+"sv,
                                        "-"sv,
                                        " 5"sv,
                                        "5 "sv,
                                        "5\n"sv,
                                        "\t5"sv,
                                        "++5"sv,
                                        "--5"sv,
                                        "+-5"sv,
                                        "-+5"sv,
                                        "5+"sv,
                                        "5-"sv,
                                        "٣"sv,
                                        "５"sv,
                                        "1_000"sv,
                                        "1,000"sv,
                                        "1.0"sv,
                                        "1."sv,
                                        ".5"sv,
                                        "1e3"sv,
                                        "0x1"sv,
                                        "x"sv,
                                        "5x"sv,
                                        "5\0"sv,
                                        "\0"sv,
                                        "9223372036854775808"sv,
                                        "-9223372036854775809"sv,
                                        "99999999999999999999"sv,
                                        "\u22125"sv,
                                        "\xFF"sv})
        EXPECT_EQ(Text::integer(text), std::nullopt) << ::testing::PrintToString(text);
}

} // namespace
} // namespace korvanti
