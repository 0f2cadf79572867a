#include "analysis/StorageMapper.h"
#include "fs/SizeCalculator.h"
#include "support/BoxFolder.h"
#include "support/TempFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace korvanti {
namespace {

using testing::BoxFolder;
using ::testing::ElementsAre;
using ::testing::Optional;
using testing::TempFolder;

constexpr std::int64_t large = 2442LL * 4096; // just enough to be shown

/// What only an ordinary user meets: root reads everything.
class StorageMapperPermissionTests : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_NE(::geteuid(), 0U) << "run this as an ordinary user"; }

    [[nodiscard]] MapNode nodeOf(const std::string& path) const {
        return StorageMapper::map({path}, [](const std::string&) {}).roots.at(0);
    }
    [[nodiscard]] MapNode tree() const { return nodeOf(root); }
    /// Told the same as the measurement, whatever is refused.
    void expectTotalsOfMeasurement() const {
        const auto size = SizeCalculator::measure(root);
        const auto node = tree();
        EXPECT_EQ(node.bytes, size.bytes);
        EXPECT_EQ(node.unreadable, size.unreadable);
    }

    TempFolder temp;
    std::string root = temp.folder("tree");
};

TEST_F(StorageMapperPermissionTests, anUnreadableFolderInTheRootStaysOnTheMap) {
    temp.file("tree/locked/file", {.text = "x"});
    temp.setMode("tree/locked", 0);
    temp.file("tree/small/file", {.text = "x"});
    const auto node = tree();
    EXPECT_EQ(node.bytes, 4096);
    EXPECT_EQ(node.unreadable, 1);
    EXPECT_THAT(node.children,
                Optional(ElementsAre(
                    MapNode{.name = "locked", .path = root + "/locked", .bytes = 0, .unreadable = 1})));
    expectTotalsOfMeasurement();
}

TEST_F(StorageMapperPermissionTests, anUnreadableFolderOnTheSecondLevelShowsInAllAboveIt) {
    temp.folder("tree/a/locked/inside");
    temp.setMode("tree/a/locked", 0);
    const MapNode locked = {.name = "locked", .path = root + "/a/locked", .unreadable = 1};
    const MapNode a = {.name = "a", .path = root + "/a", .unreadable = 1, .children = {{locked}}};
    EXPECT_EQ(tree(), (MapNode{.name = root, .path = root, .unreadable = 1, .children = {{a}}}));
    expectTotalsOfMeasurement();
}

TEST_F(StorageMapperPermissionTests, unreadableFoldersFurtherInsideAreCountedInTheTwoLevels) {
    for (const auto* name : {"tree/a/b/c/one", "tree/a/b/c/two", "tree/a/b/three", "tree/a/four"}) {
        temp.folder(name);
        temp.setMode(name, 0);
    }
    const auto node = tree();
    EXPECT_EQ(node.unreadable, 4);
    ASSERT_THAT(node.children, Optional(::testing::SizeIs(1)));
    const auto& a = node.children->front();
    EXPECT_EQ(a.unreadable, 4);
    EXPECT_THAT(a.children,
                Optional(ElementsAre(MapNode{.name = "b", .path = root + "/a/b", .unreadable = 3},
                                     MapNode{.name = "four", .path = root + "/a/four", .unreadable = 1})));
    expectTotalsOfMeasurement();
}

TEST_F(StorageMapperPermissionTests, aLargeFolderIsSortedBeforeAnUnreadableOne) {
    temp.folder("tree/a");
    temp.setMode("tree/a", 0);
    temp.file("tree/b/film", {.allocatedBytes = large});
    EXPECT_EQ(tree().children->front().name, "b");
    expectTotalsOfMeasurement();
}

TEST_F(StorageMapperPermissionTests, anUnreadableRootIsANodeWithItsLastName) {
    temp.file("tree/file", {.allocatedBytes = large});
    temp.setMode("tree", 0);
    EXPECT_EQ(tree(), (MapNode{.name = "tree", .path = root, .unreadable = 1}));
}

TEST_F(StorageMapperPermissionTests, anUnreadableHomeIsNamedLikeAnyOther) {
    const BoxFolder home("/Users/tester");
    home.setMode("", 0);
    const auto node = nodeOf("/Users/tester");
    home.setMode("", 0700);
    EXPECT_EQ(node, (MapNode{.name = "tester", .path = "/Users/tester", .unreadable = 1}));
}

TEST_F(StorageMapperPermissionTests, whatAFolderListsButDoesNotLetBeAskedLeavesNoTrace) {
    temp.file("tree/folder/file", {.allocatedBytes = large});
    temp.setMode("tree/folder", 0400);
    EXPECT_EQ(tree(), (MapNode{.name = root, .path = root}));
}

TEST_F(StorageMapperPermissionTests, aFolderThatMayNotBeListedIsUnreadableThoughItsFilesCouldBeReached) {
    temp.file("tree/folder/file", {.allocatedBytes = large});
    temp.setMode("tree/folder", 0300);
    EXPECT_THAT(tree().children,
                Optional(ElementsAre(MapNode{.name = "folder", .path = root + "/folder", .unreadable = 1})));
}

TEST_F(StorageMapperPermissionTests, theHomeFolderOfTheMacHasANameOfItsOwn) {
    const BoxFolder home("/Users/tester");
    home.file("Library/Caches/a/film", {.allocatedBytes = large});
    for (const auto* path : {"/Users/tester", "/Users/tester/", "/Users//tester/Library/.."})
        EXPECT_EQ(nodeOf(path).name, "Home (~)") << path;
    EXPECT_EQ(nodeOf("/Users/tester").children->front().children->front().path,
              "/Users/tester/Library/Caches");
}

TEST_F(StorageMapperPermissionTests, aSaveWithoutTheRightToIsDroppedInSilence) {
    const BoxFolder home("/Users/tester");
    home.setMode("", 0500);
    StorageMapper::save({});
    EXPECT_EQ(StorageMapper::load(), std::nullopt);
    home.setMode("", 0700);
}

} // namespace
} // namespace korvanti
