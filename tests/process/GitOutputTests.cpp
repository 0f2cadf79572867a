#include "process/GitOutput.h"

#include <cstdint>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <string>

namespace korvanti {
namespace {

using namespace std::string_view_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(GitOutputTests, foldersAreThePiecesWithASlashBehindThem) {
    EXPECT_THAT(GitOutput::folders("build/\0file\0a b/c\n/\0..x/.y/\0\xff/\0"sv),
                ElementsAre("build", "a b/c\n", "..x/.y", "\xff"));
    EXPECT_THAT(GitOutput::folders(""), IsEmpty());
}

TEST(GitOutputTests, theLastPieceNeedsNoEnd) {
    EXPECT_THAT(GitOutput::folders("a/\0b/"sv), ElementsAre("a", "b"));
}

TEST(GitOutputTests, theFolderItselfIsNone) {
    EXPECT_THAT(GitOutput::folders("./\0a/\0"sv), ElementsAre("a"));
}

TEST(GitOutputTests, noFolderLeadsOutOfTheRepository) {
    for (const auto piece :
         {"/", "//", "/etc/", "../", "../other/", "a/../", "a/../../other/", "./a/", "a/./", "a//", "a//b/"})
        EXPECT_THAT(GitOutput::folders(piece), IsEmpty()) << piece;
}

TEST(GitOutputTests, aCommitIsDatedInSeconds) {
    EXPECT_EQ(GitOutput::commitTime("1700000000\n"), instantFromSeconds(1'700'000'000));
    EXPECT_EQ(GitOutput::commitTime("0"), instantFromSeconds(0));
    EXPECT_EQ(GitOutput::commitTime("-1\n"), instantFromSeconds(-1));
}

TEST(GitOutputTests, aDateBeyondTheRangeIsTheNearest) {
    const auto largest = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(GitOutput::commitTime(std::to_string(largest)), Instant::max());
}

TEST(GitOutputTests, whatIsNoNumberIsNoDate) {
    for (const auto text : {"", "\n", "now", "1.5", "1700000000 1700000001", "1\n2\n", "9223372036854775808"})
        EXPECT_EQ(GitOutput::commitTime(text), std::nullopt) << text;
}

TEST(GitOutputTests, aGitFileLeadsToAnAbsolutePathOrFromTheRepository) {
    EXPECT_EQ(GitOutput::gitFolder("gitdir: /a/b\n", "/repo"), "/a/b");
    EXPECT_EQ(GitOutput::gitFolder("gitdir: ../a\n", "/repo"), "/repo/../a");
    EXPECT_EQ(GitOutput::gitFolder("# gitdir: x\ngitdir:a b \r\ngitdir: c", "/repo"), "/repo/a b");
}

TEST(GitOutputTests, aFileWithoutTheWordLeadsNowhere) {
    for (const auto text : {"", "\n", "../a", " gitdir: a", "Gitdir: a"})
        EXPECT_EQ(GitOutput::gitFolder(text, "/repo"), std::nullopt) << text;
}

} // namespace
} // namespace korvanti
