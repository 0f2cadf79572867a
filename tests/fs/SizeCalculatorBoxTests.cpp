#include "fs/SizeCalculator.h"
#include "support/Mount.h"
#include "support/TempFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace korvanti {
namespace {

using testing::blocksOf;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::Mount;
using testing::TempFolder;
using ::testing::UnorderedElementsAre;

/// Needs the right to mount: runs in the box as root.
class SizeCalculatorBoxTests : public ::testing::Test {
protected:
    TempFolder temp;
};

TEST_F(SizeCalculatorBoxTests, countsNothingOfAMountedVolume) {
    const auto outside = temp.file("tree/outside", {.allocatedBytes = 8192});
    const Mount volume(temp.folder("tree/a/volume"));
    temp.file("tree/a/volume/inside", {.allocatedBytes = 65536});
    temp.file("tree/a/volume/folder/inside", {.allocatedBytes = 65536});

    const auto result = SizeCalculator::measure(temp.path("tree"));

    EXPECT_EQ(result.bytes, blocksOf(outside));
    EXPECT_EQ(result.logicalBytes, 8192);
    EXPECT_EQ(result.files, 1);
    EXPECT_EQ(result.unreadable, 0);
}

TEST_F(SizeCalculatorBoxTests, namesTheFoldersThatVolumesAreMountedOn) {
    const Mount one(temp.folder("tree/one"));
    const Mount two(temp.folder("tree/a/b/two"));
    temp.folder("tree/three");

    EXPECT_THAT(SizeCalculator::measure(temp.path("tree")).mountPoints,
                UnorderedElementsAre(temp.path("tree/one"), temp.path("tree/a/b/two")));
}

TEST_F(SizeCalculatorBoxTests, doesNotEnterASecondViewOfTheSameVolume) {
    const auto file = temp.file("tree/original/file", {.allocatedBytes = 8192});
    const Mount view(temp.path("tree/original"), temp.folder("tree/view"));

    const auto result = SizeCalculator::measure(temp.path("tree"));

    EXPECT_EQ(result.bytes, blocksOf(file));
    EXPECT_EQ(result.files, 1);
    EXPECT_THAT(result.mountPoints, ElementsAre(temp.path("tree/view")));
}

TEST_F(SizeCalculatorBoxTests, namesOnlyTheOutermostOfNestedVolumes) {
    const Mount outer(temp.folder("tree/outer"));
    const Mount inner(temp.folder("tree/outer/a/inner"));
    temp.file("tree/outer/a/inner/file", {.allocatedBytes = 8192});

    const auto result = SizeCalculator::measure(temp.path("tree"));

    EXPECT_THAT(result.mountPoints, ElementsAre(temp.path("tree/outer")));
    EXPECT_EQ(result.bytes, 0);
}

TEST_F(SizeCalculatorBoxTests, namesAFolderWithTwoVolumesOnItOnce) {
    const Mount below(temp.folder("tree/volume"));
    const Mount above(temp.path("tree/volume"));

    EXPECT_THAT(SizeCalculator::measure(temp.path("tree")).mountPoints,
                ElementsAre(temp.path("tree/volume")));
}

TEST_F(SizeCalculatorBoxTests, namesAMountPointByteForByte) {
    const std::vector<std::string> names = {"a b",   "line\nfeed",     "back\\slash", "tab\ttab",
                                            "\\040", "not \xff utf-8", "Ünï → ☃"};
    std::vector<std::string> expected;
    std::vector<std::unique_ptr<Mount>> mounts;
    for (const auto& name : names) {
        expected.push_back(temp.folder("tree/" + name));
        mounts.push_back(std::make_unique<Mount>(expected.back()));
        temp.file("tree/" + name + "/file", {.allocatedBytes = 8192});
    }

    const auto result = SizeCalculator::measure(temp.path("tree"));

    EXPECT_THAT(result.mountPoints, ::testing::UnorderedElementsAreArray(expected));
    EXPECT_EQ(result.bytes, 0);
}

TEST_F(SizeCalculatorBoxTests, countsAFileThatIsMountedOnAFileLikeAnyOther) {
    const auto source = temp.file("source", {.allocatedBytes = 65536});
    temp.file("tree/file", {.allocatedBytes = 4096});
    const Mount view(source, temp.path("tree/file"));

    const auto result = SizeCalculator::measure(temp.path("tree"));

    EXPECT_EQ(result.bytes, blocksOf(source));
    EXPECT_EQ(result.files, 1);
    EXPECT_THAT(result.mountPoints, IsEmpty());
}

TEST_F(SizeCalculatorBoxTests, measuresTheContentsOfAMountPointThatIsAskedForItself) {
    const Mount volume(temp.folder("volume"));
    const auto file = temp.file("volume/a/file", {.allocatedBytes = 8192});
    const Mount inner(temp.folder("volume/inner"));

    const auto result = SizeCalculator::measure(temp.path("volume"));

    EXPECT_EQ(result.bytes, blocksOf(file));
    EXPECT_THAT(result.mountPoints, ElementsAre(temp.path("volume/inner")));
}

TEST_F(SizeCalculatorBoxTests, doesNotFollowALinkToAMountPoint) {
    const Mount volume(temp.folder("volume"));
    temp.file("volume/file", {.allocatedBytes = 65536});
    temp.symlink("tree/link", temp.path("volume"));

    const auto result = SizeCalculator::measure(temp.path("tree"));

    EXPECT_EQ(result.files, 1);
    EXPECT_EQ(result.bytes, blocksOf(temp.path("tree/link")));
    EXPECT_THAT(result.mountPoints, IsEmpty());
}

TEST_F(SizeCalculatorBoxTests, takesAFolderWithTheNameOfAMountPointPlusMoreForAnother) {
    const Mount volume(temp.folder("tree/volume"));
    const auto file = temp.file("tree/volume 2/file", {.allocatedBytes = 8192});

    const auto result = SizeCalculator::measure(temp.path("tree"));

    EXPECT_EQ(result.bytes, blocksOf(file));
    EXPECT_THAT(result.mountPoints, ElementsAre(temp.path("tree/volume")));
}

TEST_F(SizeCalculatorBoxTests, countsAFolderAgainOnceItsVolumeIsGone) {
    temp.folder("tree/volume");
    const auto file = temp.file("tree/volume/under the volume", {.allocatedBytes = 8192});
    {
        const Mount volume(temp.path("tree/volume"));
        EXPECT_EQ(SizeCalculator::measure(temp.path("tree")).bytes, 0);
    }

    const auto result = SizeCalculator::measure(temp.path("tree"));

    EXPECT_EQ(result.bytes, blocksOf(file));
    EXPECT_THAT(result.mountPoints, IsEmpty());
}

TEST_F(SizeCalculatorBoxTests, findsTheMountPointsOfEachPathOfABatch) {
    const Mount one(temp.folder("a/one"));
    const Mount two(temp.folder("b/two"));

    const auto results = SizeCalculator::measureAll({temp.path("a"), temp.path("b")});

    EXPECT_THAT(results.at(temp.path("a")).mountPoints, ElementsAre(temp.path("a/one")));
    EXPECT_THAT(results.at(temp.path("b")).mountPoints, ElementsAre(temp.path("b/two")));
}

} // namespace
} // namespace korvanti
