#include "analysis/StorageMapper.h"
#include "fs/PathTools.h"
#include "settings/AppPaths.h"
#include "support/Environment.h"
#include "support/TempFolder.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <mutex>
#include <set>
#include <thread>

namespace korvanti {
namespace {

using testing::blocksOf;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::ScopedHome;
using ::testing::SizeIs;
using testing::TempFolder;
using testing::textOf;
using ::testing::UnorderedElementsAre;

/// The fewest and the most whole blocks at the two sides of the size from which on something is shown.
constexpr std::int64_t small = 2441LL * 4096;
constexpr std::int64_t large = 2442LL * 4096;

void ignoreProgress(const std::string&) {}

std::vector<std::string> namesOf(const std::vector<MapNode>& nodes) {
    std::vector<std::string> names;
    for (const auto& node : nodes)
        names.push_back(node.name);
    return names;
}

class StorageMapperTests : public ::testing::Test {
protected:
    MapNode nodeOf(const std::string& path) const {
        auto map = StorageMapper::map({path}, ignoreProgress);
        EXPECT_THAT(map.roots, SizeIs(1));
        return map.roots.front();
    }
    MapNode tree() const { return nodeOf(root); }
    [[nodiscard]] std::string inTree(const std::string& relative) const { return root + "/" + relative; }

    TempFolder temp;
    /// As the map spells it.
    std::string root = PathTools::standardized(temp.folder("tree"));
};

TEST_F(StorageMapperTests, aRootIsNamedByItsPathAndHoldsAllThatIsInside) {
    temp.file("tree/a", {.allocatedBytes = 4096});
    temp.file("tree/b/c", {.allocatedBytes = 8192});
    temp.file("tree/b/c2/d/e/f", {.allocatedBytes = 16384});
    EXPECT_EQ(tree(),
              (MapNode{.name = root, .path = root, .bytes = 28672, .children = std::vector<MapNode>()}));
}

TEST_F(StorageMapperTests, aRootWithOnlySmallFoldersHasAnEmptyListOfChildrenAndIsCountedWhole) {
    temp.file("tree/one/file", {.allocatedBytes = small});
    temp.file("tree/two/file", {.allocatedBytes = small});
    const auto node = tree();
    EXPECT_EQ(node.children, std::vector<MapNode>());
    EXPECT_EQ(node.bytes, 2 * small);
}

TEST_F(StorageMapperTests, anEmptyRootHasNoListOfChildren) {
    EXPECT_EQ(tree(), (MapNode{.name = root, .path = root}));
}

TEST_F(StorageMapperTests, foldersWithNothingButFoldersInThemLeaveNoTrace) {
    temp.folder("tree/a/b/c/d");
    temp.folder("tree/e");
    EXPECT_EQ(tree(), (MapNode{.name = root, .path = root}));
}

TEST_F(StorageMapperTests, anEmptyFileIsEnoughForAListOfChildren) {
    temp.file("tree/folder/empty");
    EXPECT_EQ(tree().children, std::vector<MapNode>());
}

TEST_F(StorageMapperTests, foldersFromTenMegabytesOnAreShown) {
    temp.file("tree/large/file", {.allocatedBytes = large});
    temp.file("tree/small/file", {.allocatedBytes = small});
    temp.file("tree/both/large/file", {.allocatedBytes = large});
    temp.file("tree/both/small/file", {.allocatedBytes = small});
    EXPECT_THAT(tree().children,
                ::testing::Optional(ElementsAre(
                    MapNode{.name = "both",
                            .path = inTree("both"),
                            .bytes = large + small,
                            .children = {{{.name = "large", .path = inTree("both/large"), .bytes = large}}}},
                    MapNode{.name = "large", .path = inTree("large"), .bytes = large})));
}

TEST_F(StorageMapperTests, aFolderIsAsLargeAsAllThatIsInside) {
    for (int number = 0; number < 3; ++number)
        temp.file("tree/a/b/c/d/" + std::to_string(number), {.allocatedBytes = 4'096'000});
    const auto node = tree();
    ASSERT_THAT(node.children, ::testing::Optional(SizeIs(1)));
    EXPECT_EQ(node.children->front(),
              (MapNode{.name = "a",
                       .path = inTree("a"),
                       .bytes = 12'288'000,
                       .children = {{{.name = "b", .path = inTree("a/b"), .bytes = 12'288'000}}}}));
}

TEST_F(StorageMapperTests, aLargeFileDirectlyInTheRootIsAChildAndFurtherInsideItIsNone) {
    temp.file("tree/film", {.allocatedBytes = 20'000'768});
    temp.file("tree/folder/film", {.allocatedBytes = 20'000'768});
    EXPECT_THAT(tree().children,
                ::testing::Optional(
                    ElementsAre(MapNode{.name = "film", .path = inTree("film"), .bytes = 20'000'768},
                                MapNode{.name = "folder", .path = inTree("folder"), .bytes = 20'000'768})));
}

TEST_F(StorageMapperTests, aFolderWithFilesAndSmallFoldersHasAnEmptyListOfChildren) {
    temp.file("tree/folder/film", {.allocatedBytes = large});
    temp.file("tree/folder/inside/file");
    EXPECT_EQ(tree().children->front().children, std::vector<MapNode>());
}

TEST_F(StorageMapperTests, aFolderWithFilesAndHollowFoldersHasNoListOfChildren) {
    temp.file("tree/folder/film", {.allocatedBytes = large});
    temp.folder("tree/folder/inside/hollow");
    EXPECT_EQ(tree().children->front().children, std::nullopt);
}

TEST_F(StorageMapperTests, childrenAreSortedLargestFirstOnBothLevels) {
    temp.file("tree/b/x/file", {.allocatedBytes = large});
    temp.file("tree/b/y/file", {.allocatedBytes = 3 * large});
    temp.file("tree/b/z/file", {.allocatedBytes = 2 * large});
    temp.file("tree/a/file", {.allocatedBytes = large});
    temp.file("tree/c", {.allocatedBytes = 2 * large});
    const auto node = tree();
    EXPECT_THAT(namesOf(*node.children), ElementsAre("b", "c", "a"));
    EXPECT_THAT(namesOf(*node.children->front().children), ElementsAre("y", "z", "x"));
}

TEST_F(StorageMapperTests, rootsAreSortedLargestFirstAndEqualOnesAsTheyWereGiven) {
    temp.file("small/file", {.allocatedBytes = 4096});
    temp.file("large/file", {.allocatedBytes = 16384});
    temp.file("equal/file", {.allocatedBytes = 4096});
    const auto map = StorageMapper::map(
        {temp.path("small"), temp.path("missing"), temp.path("large"), temp.path("equal")}, ignoreProgress);
    const auto spelt = [&](const char* name) { return PathTools::standardized(temp.path(name)); };
    EXPECT_THAT(namesOf(map.roots), ElementsAre(spelt("large"), spelt("small"), spelt("equal"), "missing"));
}

TEST_F(StorageMapperTests, noRootsMakeAnEmptyMap) {
    EXPECT_THAT(StorageMapper::map({}, ignoreProgress).roots, IsEmpty());
}

TEST_F(StorageMapperTests, theSameRootTwiceIsMappedTwice) {
    temp.file("tree/file", {.allocatedBytes = large});
    const auto map = StorageMapper::map({root, root}, ignoreProgress);
    ASSERT_THAT(map.roots, SizeIs(2));
    EXPECT_EQ(map.roots[0], map.roots[1]);
}

TEST_F(StorageMapperTests, whatIsNoRealFolderIsAnUnreadableNodeWithItsLastName) {
    const auto file = temp.file("file", {.allocatedBytes = large});
    const auto link = temp.symlink("link", root);
    for (const auto& path : {temp.path("missing"), file, link}) {
        const auto spelt = PathTools::standardized(path);
        const auto name = std::string(PathTools::lastComponent(path));
        EXPECT_EQ(nodeOf(path), (MapNode{.name = name, .path = spelt, .unreadable = 1})) << path;
        EXPECT_EQ(nodeOf(path + "/"), (MapNode{.name = name, .path = spelt, .unreadable = 1})) << path;
    }
    EXPECT_EQ(nodeOf(""), (MapNode{.unreadable = 1}));
    const auto zero = root + std::string("\0x", 2);
    EXPECT_EQ(nodeOf(zero), (MapNode{.name = std::string("tree\0x", 6), .path = zero, .unreadable = 1}));
}

TEST_F(StorageMapperTests, theSpellingOfARootDoesNotCount) {
    temp.file("tree/folder/file", {.allocatedBytes = large});
    const auto plain = tree();
    EXPECT_EQ(nodeOf(root + "/"), plain);
    EXPECT_EQ(nodeOf(root + "//./folder/../"), plain);
}

TEST_F(StorageMapperTests, theHomeFolderHasANameOfItsOwnHoweverItIsSpelt) {
    const ScopedHome home(root);
    for (const auto& path : {root, root + "/", root + "//", root + "/."}) {
        const auto node = nodeOf(path);
        EXPECT_EQ(node.name, "Home (~)") << path;
        EXPECT_EQ(node.path, root) << path;
    }
    temp.folder("tree/inside");
    EXPECT_EQ(nodeOf(inTree("inside")).name, inTree("inside"));
}

TEST_F(StorageMapperTests, aHomeFolderThatDoesNotExistIsNamedLikeAnyOther) {
    const ScopedHome home(temp.path("missing"));
    EXPECT_EQ(nodeOf(temp.path("missing")).name, "missing");
}

TEST_F(StorageMapperTests, linksCountAsThemselvesAndAreNotFollowed) {
    temp.file("elsewhere/film", {.allocatedBytes = large});
    temp.symlink("tree/link", temp.path("elsewhere"));
    temp.symlink("tree/folder/link", temp.path("elsewhere"));
    const auto node = tree();
    EXPECT_EQ(node.bytes, blocksOf(inTree("link")) + blocksOf(inTree("folder/link")));
    EXPECT_EQ(node.children, std::vector<MapNode>());
}

TEST_F(StorageMapperTests, eachNameOfAHardLinkedFileCounts) {
    const auto film = temp.file("tree/one/film", {.allocatedBytes = large});
    temp.hardLink("tree/two/film", film);
    const auto node = tree();
    EXPECT_EQ(node.bytes, 2 * large);
    EXPECT_THAT(namesOf(*node.children), UnorderedElementsAre("one", "two"));
}

TEST_F(StorageMapperTests, blocksCountAndNotTheLength) {
    temp.file("tree/sparse", {.sparseBytes = 10 * large});
    EXPECT_EQ(tree().children, std::vector<MapNode>());
}

TEST_F(StorageMapperTests, hiddenThingsCountLikeOthers) {
    temp.file("tree/.hidden/._inside/file", {.allocatedBytes = large});
    EXPECT_EQ(
        tree().children->front(),
        (MapNode{.name = ".hidden",
                 .path = inTree(".hidden"),
                 .bytes = large,
                 .children = {{{.name = "._inside", .path = inTree(".hidden/._inside"), .bytes = large}}}}));
}

TEST_F(StorageMapperTests, namesAreBytes) {
    const std::string odd = "\xff\n x";
    temp.file("tree/" + odd + "/" + odd + "/file", {.allocatedBytes = large});
    const auto node = tree();
    EXPECT_EQ(node.children->front().name, odd);
    EXPECT_EQ(node.children->front().children->front().path, inTree(odd + "/" + odd));
}

TEST_F(StorageMapperTests, equalNamesOnTheTwoLevelsAreKeptApart) {
    temp.file("tree/a/a/a/file", {.allocatedBytes = large});
    temp.file("tree/b/a/file", {.allocatedBytes = 2 * large});
    EXPECT_THAT(tree().children,
                ::testing::Optional(ElementsAre(
                    MapNode{.name = "b",
                            .path = inTree("b"),
                            .bytes = 2 * large,
                            .children = {{{.name = "a", .path = inTree("b/a"), .bytes = 2 * large}}}},
                    MapNode{.name = "a",
                            .path = inTree("a"),
                            .bytes = large,
                            .children = {{{.name = "a", .path = inTree("a/a"), .bytes = large}}}})));
}

TEST_F(StorageMapperTests, aVeryDeepTreeIsMapped) {
    std::string deep = "tree";
    for (int level = 0; level < 400; ++level)
        deep += "/d";
    temp.file(deep + "/film", {.allocatedBytes = large});
    const auto node = tree();
    EXPECT_EQ(node.bytes, large);
    EXPECT_EQ(node.children->front().children->front().bytes, large);
}

TEST_F(StorageMapperTests, manyRootsAreMappedSideBySide) {
    std::vector<std::string> roots;
    for (int number = 0; number < 40; ++number) {
        const auto name = "many/" + std::to_string(number);
        temp.file(name + "/a/b/film", {.allocatedBytes = 4096LL * (number + 1)});
        roots.push_back(PathTools::standardized(temp.path(name)));
    }
    const auto map = StorageMapper::map(roots, ignoreProgress);
    std::ranges::reverse(roots);
    EXPECT_EQ(namesOf(map.roots), roots);
    for (const auto& node : map.roots)
        EXPECT_EQ(node.children, std::vector<MapNode>()) << node.path;
}

TEST_F(StorageMapperTests, progressTellsEachRootOnceAsPeopleKnowIt) {
    const ScopedHome home(root);
    temp.folder("tree/inside");
    std::mutex mutex;
    std::vector<std::string> told;
    static_cast<void>(StorageMapper::map({root + "/", inTree("inside"), "/nowhere"}, [&](const auto& text) {
        const std::scoped_lock lock(mutex);
        told.push_back(text);
    }));
    EXPECT_THAT(told, UnorderedElementsAre("Memetakan ~…", "Memetakan ~/inside…", "Memetakan /nowhere…"));
}

TEST_F(StorageMapperTests, aRootIsToldBeforeItIsRead) {
    EXPECT_EQ(StorageMapper::map(
                  {root}, [&](const std::string&) { temp.file("tree/film", {.allocatedBytes = large}); })
                  .roots.front()
                  .bytes,
              large);
}

TEST_F(StorageMapperTests, theMapKnowsWhenItWasStartedAndHowLongItTook) {
    const auto before = currentInstant();
    const auto map = StorageMapper::map(
        {root}, [](const std::string&) { std::this_thread::sleep_for(std::chrono::milliseconds(20)); });
    const auto after = currentInstant();
    EXPECT_GE(map.createdAt, before);
    EXPECT_GE(map.duration, 0.02);
    EXPECT_LE(map.duration, secondsBetween(before, after));
    EXPECT_LE(map.createdAt, after - std::chrono::milliseconds(20));
}

TEST_F(StorageMapperTests, aSavedMapIsLoadedAsItWas) {
    const ScopedHome home(temp.path());
    temp.file("tree/a/file", {.allocatedBytes = large});
    temp.file("tree/b/c/file", {.allocatedBytes = large});
    temp.file("small/d/file");
    auto map = StorageMapper::map({root, temp.path("small")}, ignoreProgress);

    StorageMapper::save(map);

    map.createdAt = instantFromSeconds(wholeSeconds(map.createdAt));
    EXPECT_EQ(StorageMapper::load(), map);
    EXPECT_EQ(textOf(AppPaths::storageMap()), compactJson(toJson(map)));
}

TEST_F(StorageMapperTests, savingReplacesTheOldMap) {
    const ScopedHome home(temp.path());
    StorageMapper::save({.roots = std::vector<MapNode>(100)});
    StorageMapper::save({.duration = 2});
    EXPECT_EQ(StorageMapper::load(), StorageMap{.duration = 2});
}

TEST_F(StorageMapperTests, aFailureToSaveIsDroppedInSilence) {
    const ScopedHome home(temp.path());
    temp.folder("Library/Application Support/Korvanti/storage-map.json/in-the-way");
    StorageMapper::save({});
    EXPECT_TRUE(PathTools::isDirectory(AppPaths::storageMap()));
    EXPECT_EQ(PathTools::children(AppPaths::support()).size(), 1U);
}

TEST_F(StorageMapperTests, aMapThatIsMissingOrDamagedIsNone) {
    const ScopedHome home(temp.path());
    EXPECT_EQ(StorageMapper::load(), std::nullopt);

    StorageMapper::save({.roots = {{.name = "a", .path = "/a"}}, .duration = 2});
    const auto whole = textOf(AppPaths::storageMap());
    ASSERT_TRUE(StorageMapper::load());
    const auto withoutDuration = whole.substr(0, whole.find(",\"duration\"")) + "}";
    for (const auto& text :
         {std::string(), std::string("{}"), std::string("\xff\x00", 2), whole.substr(0, whole.size() - 1),
          withoutDuration, std::string(100'000, '['), whole + "x"}) {
        temp.file("Library/Application Support/Korvanti/storage-map.json", {.text = text});
        EXPECT_EQ(StorageMapper::load(), std::nullopt) << text.substr(0, 200);
    }
}

TEST_F(StorageMapperTests, theHomeFolderIsARootWhereItIsARealFolder) {
    EXPECT_EQ(StorageMapper::defaultRoots(root).front(), root);
    const auto others = StorageMapper::defaultRoots(temp.path("missing"));
    EXPECT_EQ(StorageMapper::defaultRoots(temp.file("file")), others);
    EXPECT_EQ(StorageMapper::defaultRoots(temp.symlink("link", root)), others);
    EXPECT_EQ(std::ranges::count(others, root), 0);
}

} // namespace
} // namespace korvanti
