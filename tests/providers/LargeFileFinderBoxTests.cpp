#include "providers/LargeFileFinder.h"
#include "support/Items.h"
#include "support/Mount.h"
#include "support/TempFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>

namespace korvanti {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::Mount;
using ::testing::UnorderedElementsAre;

constexpr std::int64_t block = 4096;

/// Needs the right to mount: runs in the box as root.
class LargeFileFinderBoxTests : public ::testing::Test {
protected:
    [[nodiscard]] std::vector<std::string> found() const {
        ScanContext context;
        context.home = home.path();
        return testing::paths(LargeFileFinder::find(context, block));
    }

    std::string large(const std::string& relative) const {
        return home.file(relative, {.allocatedBytes = block});
    }

    testing::TempFolder home;
};

TEST_F(LargeFileFinderBoxTests, aMountedVolumeIsNotEntered) {
    const auto beside = large("Movies/beside");
    const Mount volume(home.folder("Movies/a/volume"));
    large("Movies/a/volume/file");
    large("Movies/a/volume/folder/file");

    EXPECT_THAT(found(), ElementsAre(beside));
}

TEST_F(LargeFileFinderBoxTests, aVolumeThatIsMountedInTheHomeFolderItselfIsNotEntered) {
    const Mount volume(home.folder("Volume"));
    large("Volume/file");
    large("Volume/folder/file");
    const auto beside = large("Volume 2/file");

    EXPECT_THAT(found(), ElementsAre(beside));
}

TEST_F(LargeFileFinderBoxTests, aSecondViewOfTheSameVolumeIsNotEntered) {
    const auto file = large("Movies/original/file");
    const Mount view(home.path("Movies/original"), home.folder("Movies/view"));

    EXPECT_THAT(found(), ElementsAre(file));
}

TEST_F(LargeFileFinderBoxTests, foldersBehindAVolumeAreStillWalked) {
    std::vector<std::string> files;
    for (const auto* name : {"a", "b", "c", "d", "e"})
        files.push_back(large("Movies/" + std::string(name) + "/file"));
    const Mount volume(home.folder("Movies/bb"));

    EXPECT_THAT(found(), ::testing::UnorderedElementsAreArray(files));
}

TEST_F(LargeFileFinderBoxTests, aHomeThatIsAVolumeOfItsOwnIsWalked) {
    const Mount volume(home.path());
    const auto file = large("Movies/folder/file");
    const Mount inner(home.folder("Movies/inner"));
    large("Movies/inner/file");

    EXPECT_THAT(found(), ElementsAre(file));
}

TEST_F(LargeFileFinderBoxTests, aFolderIsWalkedAgainOnceItsVolumeIsGone) {
    const auto covered = large("Movies/volume/covered");
    std::optional<Mount> volume(home.path("Movies/volume"));
    EXPECT_THAT(found(), IsEmpty());

    volume.reset();

    EXPECT_THAT(found(), ElementsAre(covered));
}

TEST_F(LargeFileFinderBoxTests, aFileThatIsMountedOnAFileIsAFile) {
    large("Movies/source");
    const Mount view(home.path("Movies/source"), home.file("Movies/view"));

    EXPECT_THAT(found(), UnorderedElementsAre(home.path("Movies/source"), home.path("Movies/view")));
}

} // namespace
} // namespace korvanti
