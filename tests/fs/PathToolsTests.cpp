#include "fs/PathTools.h"
#include "support/TempFolder.h"

#include <algorithm>
#include <compare>
#include <fnmatch.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace korvanti {
namespace {

using korvanti::testing::TempFolder;

class PathToolsTests : public ::testing::Test {
protected:
    TempFolder temp;
};

TEST_F(PathToolsTests, aDanglingLinkExists) {
    const auto link = temp.symlink("link", temp.path("nowhere"));
    EXPECT_TRUE(PathTools::exists(link));
    EXPECT_TRUE(PathTools::isSymlink(link));
    EXPECT_FALSE(PathTools::exists(temp.path("nowhere")));
}

TEST_F(PathToolsTests, aLinkToAFolderIsNoFolder) {
    const auto folder = temp.folder("folder");
    const auto link = temp.symlink("link", folder);
    EXPECT_TRUE(PathTools::isDirectory(folder));
    EXPECT_FALSE(PathTools::isSymlink(folder));
    EXPECT_FALSE(PathTools::isDirectory(link));
}

TEST_F(PathToolsTests, aFileIsNeitherFolderNorLink) {
    const auto file = temp.file("file");
    EXPECT_TRUE(PathTools::exists(file));
    EXPECT_FALSE(PathTools::isDirectory(file));
    EXPECT_FALSE(PathTools::isSymlink(file));
}

TEST_F(PathToolsTests, theModificationDateIsThatOfTheLinkItselfInWholeSeconds) {
    temp.file("file", {.modified = 1'700'000'000});
    const auto link = temp.symlink("link", temp.path("file"));
    temp.setModified("link", 1'600'000'000);
    EXPECT_EQ(PathTools::modificationDate(temp.path("file")), instantFromSeconds(1'700'000'000));
    EXPECT_EQ(PathTools::modificationDate(link), instantFromSeconds(1'600'000'000));
    EXPECT_EQ(PathTools::modificationDate(temp.path("missing")), std::nullopt);
}

#ifndef __APPLE__ // whose file systems take no such names
TEST_F(PathToolsTests, childrenHoldHiddenEntriesLinksAndNamesThatAreNoText) {
    const auto hidden = temp.file("folder/.hidden");
    const auto broken = temp.file("folder/\xff\xfe");
    const auto lines = temp.file("folder/two\nlines");
    const auto link = temp.symlink("folder/link", "nowhere");
    const auto sub = temp.folder("folder/sub");
    temp.file("folder/sub/inside");
    EXPECT_THAT(PathTools::children(temp.path("folder")),
                ::testing::UnorderedElementsAre(hidden, broken, lines, link, sub));
}
#endif

TEST_F(PathToolsTests, childrenOfAFileOrOfNothingAreEmpty) {
    EXPECT_TRUE(PathTools::children(temp.file("file")).empty());
    EXPECT_TRUE(PathTools::children(temp.path("missing")).empty());
    EXPECT_TRUE(PathTools::children(temp.folder("empty")).empty());
}

TEST_F(PathToolsTests, childrenOfAFolderOfManyPagesAreAllThere) {
    for (int i = 0; i < 10'000; ++i)
        temp.file("many/a-name-that-is-long-enough-to-need-more-than-one-page-" + std::to_string(i));
    auto children = PathTools::children(temp.path("many"));
    std::ranges::sort(children);
    EXPECT_EQ(children.size(), 10'000U);
    EXPECT_EQ(std::ranges::adjacent_find(children), children.end());
}

struct Pattern {
    const char* name;
    const char* pattern;
    bool matches;
};

class PathPatternTests : public ::testing::TestWithParam<Pattern> {};

TEST_P(PathPatternTests, answersAsTheMacDoes) {
    const auto& [name, pattern, matches] = GetParam();
    EXPECT_EQ(PathTools::matches(name, pattern), matches) << name << " against " << pattern;
}

constexpr Pattern sharedWithGlibc[] = {
    {"a/b.log", "*.log", true},
    {".hidden", "*", true},
    {".hidden", "?hidden", true},
    {"", "", true},
    {"", "*", true},
    {"", "?", false},
    {"a", "", false},
    {"AndroidStudio2024.1", "AndroidStudio*", true},
    {"AndroidStudio", "AndroidStudio*", true},
    {"androidstudio", "AndroidStudio*", false},
    {"abcbcd", "a*bcd", true},
    {"abcbce", "a*bcd", false},
    {"aXbXc", "a*b*c", true},
    {"b", "[!a]", true},
    {"a", "[!a]", false},
    {"b", "[^a]", true},
    {"]", "[]a]", true},
    {"a", "[]a]", true},
    {"-", "[a-]", true},
    {"b", "[a-c]", true},
    {"d", "[a-c]", false},
    {"b", "[c-a]", false},
    {"*", "\\*", true},
    {"x", "\\*", false},
    {"]", "[\\]]", true},
    {"5", "[[:digit:]]", true},
    {"x", "[[:digit:]]", false},
    {"x", "[[:digit:]x]", true},
    {" ", "[[:space:]]", true},
    {"_", "[[:punct:]]", true},
    {"g", "[[:xdigit:]]", false},
    {"x", "[[:foo:]]", false},
    {"a[b", "a\\[b", true},
    {"{a,b}", "{a,b}", true},
    {"a", "{a,b}", false},
    {"aaaaaaaaaaaaaaaaaaaaaaaaaaaaaab", "a*a*a*a*a*a*a*a*a*a*c", false},
};
INSTANTIATE_TEST_SUITE_P(Shared, PathPatternTests, ::testing::ValuesIn(sharedWithGlibc));

// Where the Mac's C library and glibc part.
INSTANTIATE_TEST_SUITE_P(OnlyTheMac, PathPatternTests,
                         ::testing::Values(Pattern{"[", "[", false}, Pattern{"[a", "[a", false},
                                           Pattern{"a\\", "a\\", true}, Pattern{"\xc3\xa9", "?", false},
                                           Pattern{"\xc3\xa9", "??", true}));

#ifdef __GLIBC__
TEST(PathPatternAgreementTests, agreesWithTheCLibraryOnWhatTheyShare) {
    for (const auto& [name, pattern, matches] : sharedWithGlibc)
        EXPECT_EQ(::fnmatch(pattern, name, 0) == 0, matches) << name << " against " << pattern;
}
#endif

struct Versions {
    const char* a;
    const char* b;
    std::strong_ordering order;
};

TEST(VersionTests, versionsCompareByTheirNumbers) {
    using Order = std::strong_ordering;
    const Versions cases[] = {
        {"1.10", "1.9", Order::greater},
        {"", "0", Order::equal},
        {"2", "1.9", Order::greater},
        {"1.2", "1.2.0", Order::equal},
        {"17", "android-17", Order::equal},
        {"1.2-rc3", "1.2.3", Order::equal},
        {"1.2-rc3", "1.2.4", Order::less},
        {"", "", Order::equal},
        {"abc", "xyz", Order::equal},
        {"1", "1.0.0.1", Order::less},
        {"007", "7", Order::equal},
        {"1.99999999999999999999.5", "1.5", Order::equal},
        {"9223372036854775807", "9223372036854775808", Order::greater},
    };
    for (const auto& [a, b, order] : cases) {
        EXPECT_EQ(PathTools::compareVersions(a, b), order) << a << " and " << b;
        EXPECT_EQ(PathTools::compareVersions(b, a), 0 <=> order) << b << " and " << a;
    }
}

TEST(PathTextTests, aPathIsItsOwnAncestorAndThatOfWhatLiesBelow) {
    EXPECT_TRUE(PathTools::isSameOrAncestor("/a/b", "/a/b"));
    EXPECT_TRUE(PathTools::isSameOrAncestor("/a/b", "/a/b/c"));
    EXPECT_FALSE(PathTools::isSameOrAncestor("/a/b", "/a/bc"));
    EXPECT_TRUE(PathTools::isSameOrAncestor("/", "/anything"));
    EXPECT_TRUE(PathTools::isSameOrAncestor("/a/", "/a/b"));
    EXPECT_FALSE(PathTools::isSameOrAncestor("/a/b", "/a"));
    EXPECT_FALSE(PathTools::isSameOrAncestor("/a/", "/a"));
    EXPECT_FALSE(PathTools::isSameOrAncestor("/A", "/a/b"));
}

TEST(PathTextTests, theHomeFolderIsATilde) {
    EXPECT_EQ(PathTools::abbreviatingHome("/Users/a", "/Users/a"), "~");
    EXPECT_EQ(PathTools::abbreviatingHome("/Users/a/x", "/Users/a"), "~/x");
    EXPECT_EQ(PathTools::abbreviatingHome("/Users/ab", "/Users/a"), "/Users/ab");
    EXPECT_EQ(PathTools::abbreviatingHome("/Users", "/Users/a"), "/Users");
    EXPECT_EQ(PathTools::abbreviatingHome("runtime:iOS", "/Users/a"), "runtime:iOS");
    EXPECT_EQ(PathTools::abbreviatingHome("/", "/"), "~");
    EXPECT_EQ(PathTools::abbreviatingHome("/x", "/"), "/x");
}

TEST(PathTextTests, joiningPutsOneSlashBetween) {
    EXPECT_EQ(PathTools::joined("/a", "b/c"), "/a/b/c");
    EXPECT_EQ(PathTools::joined("/a/", "b"), "/a/b");
    EXPECT_EQ(PathTools::joined("/", "b"), "/b");
}

TEST(PathTextTests, lastComponentAndParentTakeAPathApart) {
    EXPECT_EQ(PathTools::lastComponent("/a/b"), "b");
    EXPECT_EQ(PathTools::lastComponent("/a/b/"), "b");
    EXPECT_EQ(PathTools::lastComponent("/"), "/");
    EXPECT_EQ(PathTools::lastComponent(""), "");
    EXPECT_EQ(PathTools::lastComponent("a"), "a");
    EXPECT_EQ(PathTools::parent("/a/b"), "/a");
    EXPECT_EQ(PathTools::parent("/a/b/"), "/a");
    EXPECT_EQ(PathTools::parent("/a"), "/");
    EXPECT_EQ(PathTools::parent("/"), "/");
    EXPECT_EQ(PathTools::parent("a"), "");
    EXPECT_EQ(PathTools::parent("a//b//"), "a");
}

TEST(PathTextTests, theExtensionIsWhatThePlatformSees) {
    EXPECT_EQ(PathTools::pathExtension("/Applications/Foo.app"), "app");
    EXPECT_EQ(PathTools::pathExtension("/Applications/Foo.app/"), "app");
    EXPECT_EQ(PathTools::pathExtension("a.tar.gz"), "gz");
    EXPECT_EQ(PathTools::pathExtension("Foo.APP"), "APP");
    for (const auto* none : {".app", ".bashrc", "a.", "..x", "v1.2 copy", "plain", "", "/"})
        EXPECT_EQ(PathTools::pathExtension(none), "") << none;
}

} // namespace
} // namespace korvanti
