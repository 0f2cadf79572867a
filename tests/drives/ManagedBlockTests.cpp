#include "drives/ManagedBlock.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

namespace korvanti {
namespace {

using namespace std::string_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;

using ManagedBlock::rewritten;
using ManagedBlock::targets;
using ManagedBlock::Targets;

const std::string first = "# >>> Korvanti: cache dev di SSD (dikelola otomatis, jangan diedit) >>>";
const std::string last = "# <<< Korvanti <<<";

const std::string gradlePath = "/Volumes/Work/Korvanti Dev/gradle.noindex";
const std::string npmPath = "/Volumes/Work/Korvanti Dev/npm-cache.noindex";
const Targets both = {{DevCache::gradleHome, gradlePath}, {DevCache::npmCache, npmPath}};

const std::string bothLines = "if [ -d \"/Volumes/Work/Korvanti Dev\" ]; then\n"
                              "  export GRADLE_USER_HOME=\"/Volumes/Work/Korvanti Dev/gradle.noindex\"\n"
                              "fi\n"
                              "if [ -d \"/Volumes/Work/Korvanti Dev\" ]; then\n"
                              "  export npm_config_cache=\"/Volumes/Work/Korvanti Dev/npm-cache.noindex\"\n"
                              "fi\n";
const std::string bothBlock = first + "\n" + bothLines + last + "\n";

/// A whole block with these lines in it, and its line feed.
std::string block(const std::string& lines) {
    return first + "\n" + lines + last + "\n";
}

std::string gradleLine(const std::string& path) {
    return "  export GRADLE_USER_HOME=\"" + path + "\"\n";
}

/// What a block with this one line in it says.
Targets read(const std::string& line) {
    return targets(block(line + "\n"));
}

// The text of the block

TEST(ManagedBlockTests, theBlockOfTwoTargetsHasEightLines) {
    EXPECT_EQ(ManagedBlock::text(both) + "\n", bothBlock);
}

TEST(ManagedBlockTests, eachTargetHasThreeLinesOfItsOwn) {
    EXPECT_EQ(ManagedBlock::text({{DevCache::gradleHome, "/Volumes/A/Korvanti Dev/gradle.noindex"}}),
              first +
                  "\nif [ -d \"/Volumes/A/Korvanti Dev\" ]; then\n"
                  "  export GRADLE_USER_HOME=\"/Volumes/A/Korvanti Dev/gradle.noindex\"\nfi\n" +
                  last);
    EXPECT_EQ(ManagedBlock::text({{DevCache::npmCache, "/Volumes/B/Korvanti Dev/npm-cache.noindex"}}),
              first +
                  "\nif [ -d \"/Volumes/B/Korvanti Dev\" ]; then\n"
                  "  export npm_config_cache=\"/Volumes/B/Korvanti Dev/npm-cache.noindex\"\nfi\n" +
                  last);
}

TEST(ManagedBlockTests, withoutTargetsThereIsNoBlockAtAll) {
    EXPECT_EQ(ManagedBlock::text({}), "");
}

TEST(ManagedBlockTests, xcodeIsNeverInTheBlock) {
    EXPECT_EQ(ManagedBlock::text({{DevCache::xcodeDerivedData, "/x"}}), "");
    auto three = both;
    three[DevCache::xcodeDerivedData] = "/x";
    EXPECT_EQ(ManagedBlock::text(three), ManagedBlock::text(both));
}

TEST(ManagedBlockTests, pathsStandInTheBlockUnescaped) {
    EXPECT_EQ(ManagedBlock::text({{DevCache::npmCache, "/Volumes/\"$X\\`\xff/Korvanti Dev/n"}}),
              first +
                  "\nif [ -d \"/Volumes/\"$X\\`\xff/Korvanti Dev\" ]; then\n"
                  "  export npm_config_cache=\"/Volumes/\"$X\\`\xff/Korvanti Dev/n\"\nfi\n" +
                  last);
}

TEST(ManagedBlockTests, whatWouldTearTheBlockApartCanNotStandInIt) {
    for (const auto& path : {std::string("/Volumes/a\nb"), "/Volumes/a\0b"s, "/Volumes/" + first,
                             "/Volumes/" + last + "/x", std::string("\n")})
        EXPECT_FALSE(ManagedBlock::canHold(path)) << path;
    for (const auto& path :
         {std::string("/Volumes/Work"), std::string(), std::string("/Volumes/\"$(x)\r\t\xff"),
          "/Volumes/" + first.substr(1), "/Volumes/" + last.substr(0, last.size() - 1)})
        EXPECT_TRUE(ManagedBlock::canHold(path)) << path;
}

// Reading

TEST(ManagedBlockTests, readingGivesWhatWasWritten) {
    EXPECT_EQ(targets(bothBlock), both);
    EXPECT_EQ(targets("before\n" + bothBlock + "behind\n"), both);
    EXPECT_EQ(targets(ManagedBlock::text(both)), both);
}

TEST(ManagedBlockTests, withoutAWholeBlockThereIsNothingToRead) {
    for (const auto& profile :
         {std::string(), std::string("export GRADLE_USER_HOME=\"/x\"\n"), first + "\n" + bothLines,
          bothLines + last + "\n", first, last, last + "\n" + bothLines + first + "\n"})
        EXPECT_THAT(targets(profile), IsEmpty()) << profile;
}

TEST(ManagedBlockTests, aStrayLastMarkerInFrontHidesTheBlockFromReading) {
    EXPECT_THAT(targets(last + "\n" + bothBlock), IsEmpty());
}

TEST(ManagedBlockTests, readingGoesFromTheFirstFirstMarkerToTheFirstLastMarker) {
    EXPECT_EQ(targets(first + "\nexport npm_config_cache=\"/own\"\n" + block(gradleLine("/g"))),
              (Targets{{DevCache::gradleHome, "/g"}, {DevCache::npmCache, "/own"}}));
    EXPECT_EQ(targets(block(gradleLine("/one")) + block(gradleLine("/two"))),
              (Targets{{DevCache::gradleHome, "/one"}}));
}

TEST(ManagedBlockTests, aMarkerIsFoundInTheMiddleOfALine) {
    EXPECT_EQ(targets("x" + first + "\n" + bothLines + "\t" + last + "y"), both);
}

TEST(ManagedBlockTests, ofTwoLinesForOneCacheTheLaterCounts) {
    EXPECT_EQ(targets(block(gradleLine("/one") + gradleLine("/two"))),
              (Targets{{DevCache::gradleHome, "/two"}}));
}

TEST(ManagedBlockTests, blanksAndTabsAroundALineDoNotMatter) {
    for (const auto* line :
         {"export GRADLE_USER_HOME=\"/g\"", "\t\texport GRADLE_USER_HOME=\"/g\"",
          " \t export GRADLE_USER_HOME=\"/g\"\t ", "\n\n\texport GRADLE_USER_HOME=\"/g\"\n"})
        EXPECT_THAT(read(line), ElementsAre(Pair(DevCache::gradleHome, "/g"))) << line;
}

TEST(ManagedBlockTests, anyOtherLineIsSkipped) {
    for (const auto& line :
         {std::string("export GRADLE_USER_HOME=\"/g"), std::string("export GRADLE_USER_HOME=\""),
          std::string("export GRADLE_USER_HOME=/g\""), std::string("export  GRADLE_USER_HOME=\"/g\""),
          std::string("export GRADLE_USER_HOME =\"/g\""), std::string("GRADLE_USER_HOME=\"/g\""),
          std::string("# export GRADLE_USER_HOME=\"/g\""), std::string("export gradle_user_home=\"/g\""),
          std::string("export GRADLE_USER_HOME=\"/g\"; x"), std::string("export GRADLE_USER_HOME=\"/g\"\r"),
          std::string("\vexport GRADLE_USER_HOME=\"/g\""), std::string("export GRADLE_USER_HOME2=\"/g\""),
          std::string("export XCODE=\"/g\""), std::string("\u00A0export GRADLE_USER_HOME=\"/g\""),
          std::string("export =\"/g\"")})
        EXPECT_THAT(read(line), IsEmpty()) << line;
}

TEST(ManagedBlockTests, aPathIsAllThatStandsBetweenTheOuterQuotes) {
    EXPECT_THAT(read("export npm_config_cache=\"\""), ElementsAre(Pair(DevCache::npmCache, "")));
    EXPECT_THAT(read("export npm_config_cache=\" a \"b\" $c\xff \""),
                ElementsAre(Pair(DevCache::npmCache, " a \"b\" $c\xff ")));
    EXPECT_THAT(read("export npm_config_cache=\"a\rb\""), ElementsAre(Pair(DevCache::npmCache, "a\rb")));
}

TEST(ManagedBlockTests, aPathThatCanNotStandInTheBlockIsNotReadFromOne) {
    EXPECT_THAT(read("export npm_config_cache=\"/a" + first + "\""), IsEmpty());
    EXPECT_THAT(read("export npm_config_cache=\"/a\0\""s), IsEmpty());
}

// Rewriting

TEST(ManagedBlockTests, aBlockIsPutAtTheEnd) {
    EXPECT_EQ(rewritten("", both), bothBlock);
    EXPECT_EQ(rewritten("a\n", both), "a\n" + bothBlock);
    EXPECT_EQ(rewritten("\n", both), "\n" + bothBlock);
}

TEST(ManagedBlockTests, aMissingLineFeedIsAddedInFrontOfABlockOnly) {
    EXPECT_EQ(rewritten("a", both), "a\n" + bothBlock);
    EXPECT_EQ(rewritten("a\r", both), "a\r\n" + bothBlock);
    EXPECT_EQ(rewritten("a", {}), "a");
    EXPECT_EQ(rewritten(ManagedBlock::text(both) + "a", {}), "a");
}

TEST(ManagedBlockTests, theOldBlockGoesWithOneLineFeed) {
    EXPECT_EQ(rewritten("a\n\n" + bothBlock + "\n\nb", {}), "a\n\n\n\nb");
    EXPECT_EQ(rewritten("a\n" + bothBlock + "b\n", {}), "a\nb\n");
    EXPECT_EQ(rewritten("a\n" + ManagedBlock::text(both), {}), "a\n");
    EXPECT_EQ(rewritten("a" + ManagedBlock::text(both) + "b", {}), "ab");
    EXPECT_EQ(rewritten(bothBlock, {}), "");
}

TEST(ManagedBlockTests, theBlockMovesToTheEnd) {
    EXPECT_EQ(rewritten("a\n" + block("anything\n") + "b\n", both), "a\nb\n" + bothBlock);
    EXPECT_EQ(rewritten(block("") + "b", both), "b\n" + bothBlock);
}

TEST(ManagedBlockTests, onlyALineFeedGoesWithTheBlock) {
    EXPECT_EQ(rewritten("a\r\n" + first + "\r\nx\r\n" + last + "\r\nb\r\n", {}), "a\r\n\r\nb\r\n");
}

TEST(ManagedBlockTests, whateverIsAroundTheBlockStaysByteForByte) {
    const auto before = "\xEF\xBB\xBF# a\r\n\xff\xfe\0\r# >>> Korvanti\n"s;
    const auto behind = "\0\x80 caf\xC3\n\n\n# <<< Korvanti"s;
    EXPECT_EQ(rewritten(before + bothBlock + behind, {}), before + behind);
    EXPECT_EQ(rewritten(before + bothBlock + behind, both), before + behind + "\n" + bothBlock);
}

TEST(ManagedBlockTests, halfABlockIsLeftAsItIs) {
    for (const auto& half : {first + "\nown\n", last + "\nown\n", last + "\nown\n" + first + "\n",
                             first + "\n" + first + "\n", last + "\n" + last + "\n"}) {
        EXPECT_EQ(rewritten(half, {}), half);
        EXPECT_EQ(rewritten(half, both), half + bothBlock);
    }
}

TEST(ManagedBlockTests, aStrayFirstMarkerAndTheUsersLinesBehindItStay) {
    const std::string own = first + "\nexport EDITOR=vi\n";
    EXPECT_EQ(rewritten(own + bothBlock, {}), own);
    EXPECT_EQ(rewritten(own + own + bothBlock + own, both), own + own + own + bothBlock);
}

TEST(ManagedBlockTests, aStrayLastMarkerInFrontDoesNotKeepTheBlockFromBeingReplaced) {
    const std::string own = last + "\nexport EDITOR=vi\n";
    EXPECT_EQ(rewritten(own + bothBlock, {}), own);
    EXPECT_EQ(rewritten(own + bothBlock + "x\n", both), own + "x\n" + bothBlock);
}

TEST(ManagedBlockTests, aStrayLastMarkerBehindStays) {
    EXPECT_EQ(rewritten(bothBlock + "own\n" + last + "\n", {}), "own\n" + last + "\n");
}

TEST(ManagedBlockTests, aStrayFirstMarkerBehindStays) {
    EXPECT_EQ(rewritten(bothBlock + "own\n" + first + "\n", both), "own\n" + first + "\n" + bothBlock);
}

TEST(ManagedBlockTests, ofTwoBlocksTheFirstIsReplaced) {
    EXPECT_EQ(rewritten(block("one\n") + "own\n" + block("two\n"), both),
              "own\n" + block("two\n") + bothBlock);
}

TEST(ManagedBlockTests, writingTwiceIsWritingOnce) {
    for (const auto& profile :
         {std::string(), std::string("a"), "a\n" + bothBlock + "b", first + "\nown\n",
          last + "\nown\n" + first, first + "\nown\n" + bothBlock, last + "\nown\n" + bothBlock}) {
        const auto once = rewritten(profile, both);
        EXPECT_EQ(rewritten(once, both), once) << profile;
    }
}

TEST(ManagedBlockTests, aBlockBehindAStrayFirstMarkerIsReadAll) {
    EXPECT_EQ(targets(rewritten(first + "\nown\n", both)), both);
}

} // namespace
} // namespace korvanti
