#include "base/Regex.h"

#include <atomic>
#include <chrono>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace korvanti {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Optional;
using ::testing::SizeIs;
using namespace std::string_view_literals;

std::vector<std::string> wholes(const std::vector<Regex::Match>& matches) {
    std::vector<std::string> wholes;
    for (const auto& match : matches)
        wholes.push_back(match.groups.at(0).value_or("(nil)"));
    return wholes;
}

std::vector<std::size_t> positions(const std::vector<Regex::Match>& matches) {
    std::vector<std::size_t> positions;
    for (const auto& match : matches)
        positions.push_back(match.position);
    return positions;
}

TEST(RegexTests, firstIsTheLeftmostMatchAnywhere) {
    const auto match = Regex("[0-9]+").first("ab 12 345");

    ASSERT_TRUE(match);
    EXPECT_EQ(match->position, 3);
    EXPECT_THAT(match->groups, ElementsAre(Optional("12"sv)));
}

TEST(RegexTests, theLeftmostMatchWinsOverALongerOne) {
    const auto match = Regex("b|abc|cd+").first("xabcdddd");

    ASSERT_TRUE(match);
    EXPECT_EQ(match->groups[0], "abc");
}

TEST(RegexTests, noMatchIsAbsent) {
    EXPECT_EQ(Regex("[0-9]").first("letters"), std::nullopt);
    EXPECT_EQ(Regex("[0-9]").first(""), std::nullopt);
    EXPECT_THAT(Regex("[0-9]").all("letters"), IsEmpty());
    EXPECT_THAT(Regex("[0-9]").all(""), IsEmpty());
}

TEST(RegexTests, anAnchorHoldsTheMatchToTheStartOfTheText) {
    const Regex version(R"(^\d+(\.\d+)+)");

    EXPECT_TRUE(version.first("8.7-rc-1"));
    EXPECT_FALSE(version.first("v8.7"));
    EXPECT_FALSE(version.first("x\n8.7"));
}

TEST(RegexTests, allGoesFromLeftToRightWithoutOverlap) {
    const auto matches = Regex("aa").all("aaaaa-aa");

    EXPECT_THAT(wholes(matches), ElementsAre("aa", "aa", "aa"));
    EXPECT_THAT(positions(matches), ElementsAre(0, 2, 6));
}

TEST(RegexTests, emptyMatchesComeToAnEnd) {
    const auto matches = Regex("x*").all("axb");

    EXPECT_THAT(wholes(matches), ElementsAre("", "x", "", ""));
    EXPECT_THAT(positions(matches), ElementsAre(0, 1, 2, 3));
}

TEST(RegexTests, groupsComeInOrderBehindTheWholeMatch) {
    const auto match = Regex("(a)(?:-)((b)c)").first("a-bc");

    ASSERT_TRUE(match);
    EXPECT_THAT(match->groups,
                ElementsAre(Optional("a-bc"sv), Optional("a"sv), Optional("bc"sv), Optional("b"sv)));
}

TEST(RegexTests, aGroupThatTookNoPartIsNil) {
    const auto match = Regex("(a)|(b)").first("b");

    ASSERT_TRUE(match);
    EXPECT_THAT(match->groups, ElementsAre(Optional("b"sv), std::nullopt, Optional("b"sv)));
}

TEST(RegexTests, aGroupThatMatchedNothingIsEmptyAndNotNil) {
    const auto match = Regex("(a*)b").first("b");

    ASSERT_TRUE(match);
    EXPECT_THAT(match->groups, ElementsAre(Optional("b"sv), Optional(""sv)));
}

TEST(RegexTests, positionsCountBytesAndNotCharacters) {
    const auto matches = Regex("[0-9]+").all("ä1 漢22 😀333");

    EXPECT_THAT(wholes(matches), ElementsAre("1", "22", "333"));
    EXPECT_THAT(positions(matches), ElementsAre(2, 7, 14));
}

TEST(RegexTests, aMatchHoldsItsCharactersAsTheyStand) {
    const auto match = Regex("x(.)y").first("-x😀y-");

    ASSERT_TRUE(match);
    EXPECT_THAT(match->groups, ElementsAre(Optional("x😀y"sv), Optional("😀"sv)));
}

TEST(RegexTests, classesKnowMoreThanAscii) {
    EXPECT_TRUE(Regex(R"(^\d\s\w$)").first("٣\u2003é"));
    EXPECT_FALSE(Regex("^[0-9]$").first("٣"));
}

TEST(RegexTests, aPatternMayHoldMoreThanAscii) {
    const auto match = Regex("[éè]+").first("très");

    ASSERT_TRUE(match);
    EXPECT_EQ(match->groups[0], "è");
}

TEST(RegexTests, aTextThatIsNoUtf8IsSearchedAroundTheWrongBytes) {
    const auto matches = Regex("[0-9]+").all("\xff\xfe"
                                             "12\xc3"
                                             "34\x80\x80\x80"
                                             "56\xf0\x9f"sv);

    EXPECT_THAT(wholes(matches), ElementsAre("12", "34", "56"));
    EXPECT_THAT(positions(matches), ElementsAre(2, 5, 10));
}

TEST(RegexTests, wrongBytesCountAsTheReplacementCharacterAndComeBackAsTheyAre) {
    const auto match = Regex("a(\\uFFFD)b")
                           .first("-a\xff"
                                  "b-");

    ASSERT_TRUE(match);
    EXPECT_EQ(match->position, 1);
    EXPECT_THAT(match->groups, ElementsAre(Optional("a\xff"
                                                    "b"sv),
                                           Optional("\xff"sv)));
}

TEST(RegexTests, aZeroByteIsACharacterLikeAnyOther) {
    const auto match = Regex("b.d").first("a\0b\0d"sv);

    ASSERT_TRUE(match);
    EXPECT_EQ(match->position, 2);
    EXPECT_EQ(match->groups[0], "b\0d"sv);
}

/// Two ways to take each "a", and an end that never comes: 2^40 tries without a limit.
TEST(RegexTests, aTextMadeToBeSlowCountsAsNoMatch) {
    const auto started = std::chrono::steady_clock::now();

    EXPECT_EQ(Regex("(a|a)*c").first(std::string(40, 'a')), std::nullopt);

    EXPECT_LT(std::chrono::steady_clock::now() - started, std::chrono::seconds(20));
}

TEST(RegexTests, whatWasFoundBeforeASlowStretchStands) {
    const auto matches = Regex("b|(a|a)*c").all("b" + std::string(40, 'a') + "b");

    EXPECT_THAT(wholes(matches), ElementsAre("b"));
}

TEST(RegexTests, theNextTextAfterASlowOneIsSearchedAsEver) {
    const Regex expression("(a|a)*c");

    EXPECT_FALSE(expression.first(std::string(40, 'a')));

    EXPECT_TRUE(expression.first("aac"));
}

TEST(RegexTests, aLongOrdinaryTextIsSearchedToItsEnd) {
    std::string text;
    for (int line = 0; line < 100'000; ++line)
        text += "compileSdk  = 34 // some words that say nothing\n";

    const auto matches = Regex(R"(compileSdk(?:Version)?\s*(?:=|\(|\s)\s*\"?(\d{2}))").all(text);

    EXPECT_THAT(matches, SizeIs(100'000));
}

TEST(RegexTests, oneExpressionServesManyThreadsAtOnce) {
    const Regex expression("([0-9]+)-x");
    std::atomic<int> right = 0;
    std::vector<std::thread> threads;
    for (int number = 0; number < 8; ++number) {
        threads.emplace_back([&, text = std::to_string(number) + "-x"] {
            for (int turn = 0; turn < 1000; ++turn) {
                const auto match = expression.first(text);
                right += match && match->groups[0] == text ? 1 : 0;
            }
        });
    }
    for (auto& thread : threads)
        thread.join();

    EXPECT_EQ(right, 8000);
}

TEST(RegexTests, aWrongPatternEndsTheProgram) {
    EXPECT_DEATH(Regex("(unclosed"), "");
}

} // namespace
} // namespace korvanti
