#include "base/FileDescriptor.h"
#include "fs/PathTools.h"
#include "support/TempFolder.h"

#include <algorithm>
#include <compare>
#include <fcntl.h>
#include <filesystem>
#include <fnmatch.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

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

TEST_F(PathToolsTests, aPathWithAZeroInsideIsNotThatOfThePartBefore) {
    const auto path = temp.folder("folder") + std::string("\0x", 2);
    EXPECT_FALSE(PathTools::exists(path));
    EXPECT_FALSE(PathTools::isDirectory(path));
    EXPECT_EQ(PathTools::modificationDate(path), std::nullopt);
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

TEST_F(PathToolsTests, entriesTellTheKindOfEachWithoutFollowingLinks) {
    using enum Platform::EntryKind;
    temp.file("folder/file");
    temp.folder("folder/sub/deeper");
    temp.symlink("folder/link", temp.path("folder/sub"));
    ASSERT_EQ(::mkfifo(temp.path("folder/pipe").c_str(), 0600), 0);
    using Entry = PathTools::Entry;
    EXPECT_THAT(PathTools::entries(temp.path("folder")),
                ::testing::UnorderedElementsAre(Entry{"file", file}, Entry{"sub", folder},
                                                Entry{"link", link}, Entry{"pipe", other}));
}

TEST_F(PathToolsTests, entriesOfAnOpenFolderAreThoseOfThatFolderWhateverHasItsPathNow) {
    temp.file("folder/file");
    temp.symlink("folder/link", "file");
    const FileDescriptor folder(Platform::openFolder(temp.path("folder")));
    std::filesystem::rename(temp.path("folder"), temp.path("moved"));
    temp.file("folder/other");
    EXPECT_THAT(PathTools::entries(folder.get()).value(),
                ::testing::UnorderedElementsAre(PathTools::Entry{"file", Platform::EntryKind::file},
                                                PathTools::Entry{"link", Platform::EntryKind::link}));
}

TEST_F(PathToolsTests, anOpenFolderIsReadFromWhereItStands) {
    temp.file("folder/file");
    const FileDescriptor folder(Platform::openFolder(temp.path("folder")));
    EXPECT_EQ(PathTools::entries(folder.get()).value().size(), 1U);
    EXPECT_EQ(PathTools::entries(folder.get()).value().size(), 0U);
}

TEST_F(PathToolsTests, whatCannotBeListedGivesTheSystemsError) {
    const FileDescriptor file(::open(temp.file("file").c_str(), O_RDONLY));
    EXPECT_EQ(PathTools::entries(file.get()).error(), std::errc::not_a_directory);
    EXPECT_EQ(PathTools::entries(-1).error(), std::errc::bad_file_descriptor);
}

TEST_F(PathToolsTests, anEmptyFolderAndOneThatIsGoneHaveNoEntries) {
    const FileDescriptor empty(Platform::openFolder(temp.folder("empty")));
    EXPECT_TRUE(PathTools::entries(empty.get()).value().empty());
    const FileDescriptor gone(Platform::openFolder(temp.folder("gone")));
    std::filesystem::remove(temp.path("gone"));
    EXPECT_TRUE(PathTools::entries(gone.get()).value().empty());
}

TEST_F(PathToolsTests, childrenOfAFolderOfManyPagesAreAllThere) {
    for (int i = 0; i < 10'000; ++i)
        temp.file("many/a-name-that-is-long-enough-to-need-more-than-one-page-" + std::to_string(i));
    auto children = PathTools::children(temp.path("many"));
    std::ranges::sort(children);
    EXPECT_EQ(children.size(), 10'000U);
    EXPECT_EQ(std::ranges::adjacent_find(children), children.end());
}

TEST_F(PathToolsTests, subfoldersAreTheRealFoldersAmongTheChildren) {
    const auto folder = temp.folder("tree/folder");
    const auto hidden = temp.folder("tree/.hidden");
    const auto package = temp.folder("tree/Foo.app");
    temp.file("tree/file");
    temp.symlink("tree/link", folder);
    temp.symlink("tree/dangling", "nowhere");
    ASSERT_EQ(::mkfifo(temp.path("tree/pipe").c_str(), 0600), 0);
    temp.folder("tree/folder/deeper");
    EXPECT_THAT(PathTools::subfolders(temp.path("tree")),
                ::testing::UnorderedElementsAre(folder, hidden, package));
}

TEST_F(PathToolsTests, subfoldersOfALinkToAFolderAreThoseBehindIt) {
    temp.folder("folder/sub");
    EXPECT_THAT(PathTools::subfolders(temp.symlink("link", "folder")),
                ::testing::ElementsAre(temp.path("link/sub")));
}

TEST_F(PathToolsTests, subfoldersOfAFileOrOfNothingAreEmpty) {
    EXPECT_TRUE(PathTools::subfolders(temp.file("file")).empty());
    EXPECT_TRUE(PathTools::subfolders(temp.path("missing")).empty());
    EXPECT_TRUE(PathTools::subfolders(temp.folder("empty")).empty());
}

TEST_F(PathToolsTests, aPathIsResolvedThroughAllItsLinks) {
    const auto file = temp.file("a/b/file");
    temp.symlink("one", "a");
    temp.symlink("two", temp.path("one/b"));
    temp.symlink("three", "two/file");
    for (const auto* path : {"a/b/file", "one/b/file", "two/file", "three", "a/../one/./b//file"})
        EXPECT_EQ(PathTools::resolved(temp.path(path)), file) << path;
    EXPECT_EQ(PathTools::resolved(temp.path("a/b/")), temp.path("a/b"));
    EXPECT_EQ(PathTools::resolved("/"), "/");
}

TEST_F(PathToolsTests, aLinkTellsWhereItLeadsWithoutBeingFollowed) {
    const std::string target = "../no\xff/where";
    EXPECT_EQ(PathTools::linkTarget(temp.symlink("link", target)), target);
    EXPECT_EQ(PathTools::linkTarget(temp.symlink("second", "link")), "link");
}

TEST_F(PathToolsTests, whatIsNoLinkLeadsNowhere) {
    EXPECT_EQ(PathTools::linkTarget(temp.file("file")).error(), std::errc::invalid_argument);
    EXPECT_EQ(PathTools::linkTarget(temp.folder("folder")).error(), std::errc::invalid_argument);
    EXPECT_EQ(PathTools::linkTarget(temp.path("missing")).error(), std::errc::no_such_file_or_directory);
}

TEST_F(PathToolsTests, aPathThatDoesNotExistAsAWholeStaysAsItIs) {
    temp.folder("folder");
    temp.file("file");
    temp.symlink("link", "folder");
    temp.symlink("dangling", "nowhere");
    temp.symlink("itself", "itself");
    for (const auto* path : {"link/missing", "dangling", "itself", "link/../missing/", "file/below"})
        EXPECT_EQ(PathTools::resolved(temp.path(path)), temp.path(path)) << path;
    EXPECT_EQ(PathTools::resolved(""), "");
    EXPECT_EQ(PathTools::resolved("/" + std::string(10'000, 'x')), "/" + std::string(10'000, 'x'));
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

TEST(PathTextTests, anEntryNameLeadsNowhereElse) {
    using namespace std::string_view_literals;
    for (const auto name : {"a"sv, ".a"sv, "..a"sv, "a."sv, "..."sv, " "sv, "\n"sv, "\xff"sv, "a b"sv, "~"sv})
        EXPECT_TRUE(PathTools::isEntryName(name)) << name;
    for (const auto name : {""sv, "."sv, ".."sv, "/"sv, "a/"sv, "/a"sv, "a/b"sv, "\0"sv, "a\0"sv, "a\0b"sv})
        EXPECT_FALSE(PathTools::isEntryName(name)) << name;
}

TEST(PathTextTests, aPathOfEntryNamesLeadsDown) {
    using namespace std::string_view_literals;
    for (const auto path : {"a"sv, "a/b"sv, "..a/b../.c"sv, " / "sv})
        EXPECT_TRUE(PathTools::leadsDown(path)) << path;
    for (const auto path : {""sv, "."sv, ".."sv, "/"sv, "/a"sv, "a/"sv, "a//b"sv, "./a"sv, "a/."sv, "../a"sv,
                            "a/.."sv, "a/../b"sv, "a/./b"sv, "a/b\0c"sv, "\0/a"sv})
        EXPECT_FALSE(PathTools::leadsDown(path)) << path;
}

TEST(PathTextTests, aPathOfAMillionPartsLeadsDown) {
    std::string path = "a";
    for (int part = 1; part < 1'000'000; ++part)
        path += "/a";
    EXPECT_TRUE(PathTools::leadsDown(path));
    EXPECT_FALSE(PathTools::leadsDown(path + "/.."));
}

TEST(PathTextTests, joiningPutsOneSlashBetween) {
    EXPECT_EQ(PathTools::joined("/a", "b/c"), "/a/b/c");
    EXPECT_EQ(PathTools::joined("/a/", "b"), "/a/b");
    EXPECT_EQ(PathTools::joined("/", "b"), "/b");
}

TEST(PathTextTests, trailingSlashesGoButForTheRoot) {
    EXPECT_EQ(PathTools::withoutTrailingSlashes("/a/b//"), "/a/b");
    EXPECT_EQ(PathTools::withoutTrailingSlashes("/a/b"), "/a/b");
    EXPECT_EQ(PathTools::withoutTrailingSlashes("//"), "/");
    EXPECT_EQ(PathTools::withoutTrailingSlashes(""), "");
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

TEST(PathTextTests, theStemIsTheLastComponentWithoutItsExtension) {
    EXPECT_EQ(PathTools::stem("/Pictures/Photos Library.photoslibrary"), "Photos Library");
    EXPECT_EQ(PathTools::stem("/Applications/Foo.app/"), "Foo");
    EXPECT_EQ(PathTools::stem("a.tar.gz"), "a.tar");
    EXPECT_EQ(PathTools::stem("a.b/c"), "c");
    EXPECT_EQ(PathTools::stem("\xff.\xfe"), "\xff");
    for (const auto* whole : {".app", ".bashrc", "a.", "..x", "v1.2 copy", "plain", "", "/"})
        EXPECT_EQ(PathTools::stem(whole), whole) << whole;
}

TEST_F(PathToolsTests, aStandardizedPathHasNoDotsAndNoNeedlessSlashes) {
    const std::vector<std::pair<std::string, std::string>> spellings = {
        {"/", "/"},
        {"//", "/"},
        {"///", "/"},
        {"/.", "/"},
        {"/..", "/"},
        {"/../..", "/"},
        {"/nowhere", "/nowhere"},
        {"/nowhere/", "/nowhere"},
        {"//nowhere//a///", "/nowhere/a"},
        {"/nowhere/./a/.", "/nowhere/a"},
        {"/nowhere/a/..", "/nowhere"},
        {"/nowhere/../../a/b", "/a/b"},
        {"/nowhere/...", "/nowhere/..."},
        {"/nowhere/.a/..b", "/nowhere/.a/..b"},
        {"/nowhere/~", "/nowhere/~"},
        {"/nowhere/\xff\n", "/nowhere/\xff\n"}};
    for (const auto& [path, standard] : spellings)
        EXPECT_EQ(PathTools::standardized(path), standard) << path;
}

TEST_F(PathToolsTests, aPathThatIsNotAbsoluteIsNotStandardized) {
    for (const std::string path : {"", "a/", "./a", "../a", "~/a"})
        EXPECT_EQ(PathTools::standardized(path), path);
}

TEST_F(PathToolsTests, standardizingFollowsLinksOnlyWhereThePathLeadsUpAndExists) {
    const auto standard = [&](const std::string& path) { return PathTools::standardized(temp.path(path)); };
    temp.folder("real/inside");
    temp.symlink("link", temp.path("real/inside"));
    EXPECT_EQ(standard("link"), standard("") + "/link");
    EXPECT_EQ(standard("link/."), standard("") + "/link");
    EXPECT_EQ(standard("link/.."), standard("") + "/real");
    EXPECT_EQ(standard("link/../inside"), standard("") + "/real/inside");
    EXPECT_EQ(standard("link/../missing"), standard("") + "/missing");
    EXPECT_EQ(standard("missing/../link"), standard("") + "/link");
}

TEST_F(PathToolsTests, aPathWithAZeroInsideIsStandardizedByItsText) {
    const std::string zero("\0", 1);
    temp.folder("real/inside");
    temp.symlink("link", temp.path("real/inside"));
    EXPECT_EQ(PathTools::standardized(temp.path("link/../inside") + zero),
              PathTools::standardized(temp.path("inside")) + zero);
    EXPECT_EQ(PathTools::standardized(temp.path("link/..") + zero),
              PathTools::standardized(temp.path("link")) + "/.." + zero);
}

} // namespace
} // namespace korvanti
