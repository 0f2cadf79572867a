#include "analysis/StorageMapper.h"
#include "support/BoxFolder.h"
#include "support/Mount.h"
#include "support/TempFolder.h"

#include <algorithm>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>

namespace korvanti {
namespace {

using testing::BoxFolder;
using ::testing::ElementsAre;
using testing::Mount;
using ::testing::Optional;
using testing::TempFolder;

constexpr std::int64_t large = 2442LL * 4096; // just enough to be shown

MapNode nodeOf(const std::string& root) {
    return StorageMapper::map({root}, [](const std::string&) {}).roots.at(0);
}

/// Needs the right to mount: runs in the box as root.
class StorageMapperMountTests : public ::testing::Test {
protected:
    TempFolder temp;
    std::string root = temp.folder("tree");
};

TEST_F(StorageMapperMountTests, mountedVolumesAddNothingAndAreNoNodes) {
    temp.file("tree/a/film", {.allocatedBytes = large});
    const Mount first(temp.folder("tree/first"));
    const Mount second(temp.folder("tree/a/second"));
    const Mount third(temp.folder("tree/a/b/third"));
    for (const auto* volume : {"first", "a/second", "a/b/third"})
        temp.file("tree/" + std::string(volume) + "/inside/film", {.allocatedBytes = large});
    EXPECT_EQ(nodeOf(root), (MapNode{.name = root,
                                     .path = root,
                                     .bytes = large,
                                     .children = {{{.name = "a", .path = root + "/a", .bytes = large}}}}));
}

TEST_F(StorageMapperMountTests, aSecondViewOfTheSameVolumeAddsNothing) {
    temp.file("tree/original/film", {.allocatedBytes = large});
    const Mount view(temp.path("tree/original"), temp.folder("tree/view"));
    EXPECT_EQ(nodeOf(root).bytes, large);
    EXPECT_THAT(
        nodeOf(root).children,
        Optional(ElementsAre(MapNode{.name = "original", .path = root + "/original", .bytes = large})));
}

TEST_F(StorageMapperMountTests, aRootWithNothingButVolumesIsEmpty) {
    const Mount volume(temp.folder("tree/volume"));
    temp.file("tree/volume/film", {.allocatedBytes = large});
    EXPECT_EQ(nodeOf(root), (MapNode{.name = root, .path = root}));
}

TEST_F(StorageMapperMountTests, aRootThatIsItselfAVolumeIsMapped) {
    const Mount volume(root);
    temp.file("tree/folder/film", {.allocatedBytes = large});
    EXPECT_EQ(nodeOf(root).bytes, large);
    EXPECT_EQ(nodeOf(root + "/").children->front().path, root + "/folder");
}

TEST_F(StorageMapperMountTests, pathsBelowTheRootOfTheDiskHaveOneSlash) {
    // The root of the box is a small volume of its own; the host's folders are other ones.
    const BoxFolder applications("/Applications");
    applications.file("Big.app/Contents/film", {.allocatedBytes = large});
    const auto node = nodeOf("/");
    EXPECT_EQ(node.name, "/");
    EXPECT_EQ(node.path, "/");
    ASSERT_TRUE(node.children);
    const auto child = std::ranges::find(*node.children, "Applications", &MapNode::name);
    ASSERT_NE(child, node.children->end());
    EXPECT_EQ(
        *child,
        (MapNode{.name = "Applications",
                 .path = "/Applications",
                 .bytes = large,
                 .children = {{{.name = "Big.app", .path = "/Applications/Big.app", .bytes = large}}}}));
    EXPECT_EQ(std::ranges::count(*node.children, "usr", &MapNode::name), 0);
}

TEST_F(StorageMapperMountTests, theMacsLargeTreesAreTheRoots) {
    std::vector<std::optional<BoxFolder>> places(7);
    const auto roots = [] { return StorageMapper::defaultRoots("/Users/tester"); };
    const std::vector<std::string> expected = {
        "/Users/tester", "/Applications",       "/Library", "/System/Library/AssetsV2", "/opt/homebrew",
        "/usr/local",    "/private/var/folders"};
    for (const auto& place : expected)
        std::filesystem::create_directories(place);
    EXPECT_EQ(roots(), expected);

    for (std::size_t index = 0; index < expected.size(); ++index) {
        const auto& place = expected[index];
        const auto aside = place + " aside";
        const auto others = [&] {
            auto rest = expected;
            rest.erase(rest.begin() + static_cast<std::ptrdiff_t>(index));
            return rest;
        }();
        if (place == "/usr/local") // the host's own
            continue;
        std::filesystem::rename(place, aside);
        EXPECT_EQ(roots(), others) << "without " << place;
        std::filesystem::create_directory_symlink(aside, place);
        EXPECT_EQ(roots(), others) << place << " as a link";
        std::filesystem::remove(place);
        std::filesystem::rename(aside, place);
    }
}

TEST_F(StorageMapperMountTests, theFoldersUnderPrivateAreCalledByTheirShorterPath) {
    std::filesystem::create_directories("/private/map-test/inside");
    std::filesystem::create_directory_symlink("/private/map-test", "/map-test");
    EXPECT_EQ(nodeOf("/private/map-test/inside"),
              (MapNode{.name = "/map-test/inside", .path = "/map-test/inside"}));
    std::filesystem::remove("/map-test");
    EXPECT_EQ(nodeOf("/private/map-test/inside"),
              (MapNode{.name = "/private/map-test/inside", .path = "/private/map-test/inside"}));
    std::filesystem::remove_all("/private/map-test");
}

} // namespace
} // namespace korvanti
