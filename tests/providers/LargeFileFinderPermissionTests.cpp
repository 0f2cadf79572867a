#include "providers/LargeFileFinder.h"
#include "providers/PersonalFilesProvider.h"
#include "support/Items.h"
#include "support/TempFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

/// What only an ordinary user meets: root reads everything.
namespace korvanti {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::int64_t block = 4096;

class LargeFileFinderPermissionTests : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_NE(::geteuid(), 0U) << "run this as an ordinary user"; }

    [[nodiscard]] ScanContext context() const {
        ScanContext context;
        context.home = home.path();
        return context;
    }

    [[nodiscard]] std::vector<std::string> found() const {
        return testing::paths(LargeFileFinder::find(context(), block));
    }

    std::string large(const std::string& relative) const {
        return home.file(relative, {.allocatedBytes = block});
    }

    testing::TempFolder home;
};

TEST_F(LargeFileFinderPermissionTests, anUnreadableFolderIsPassedOver) {
    large("Movies/closed/file");
    const auto open = large("Movies/open/file");
    home.setMode("Movies/closed", 0);

    EXPECT_THAT(found(), ElementsAre(open));
}

TEST_F(LargeFileFinderPermissionTests, anUnreadableFolderInTheHomeIsPassedOver) {
    large("Closed/file");
    const auto open = large("Open/file");
    home.setMode("Closed", 0);

    EXPECT_THAT(found(), ElementsAre(open));
}

TEST_F(LargeFileFinderPermissionTests, anUnreadableHomeHasNoLargeFiles) {
    large("Movies/file");
    home.setMode("", 0300);

    EXPECT_THAT(found(), IsEmpty());
    home.setMode("", 0700);
}

TEST_F(LargeFileFinderPermissionTests, whatAFolderListsButDoesNotLetBeAskedIsLeftOut) {
    large("Movies/listed/file");
    large("Movies/listed/folder/file");
    const auto open = large("Movies/open/file");
    home.setMode("Movies/listed", 0400);

    EXPECT_THAT(found(), ElementsAre(open));
}

TEST_F(LargeFileFinderPermissionTests, anUnreadableFileIsReportedAllTheSame) {
    const auto file = large("Movies/file");
    home.setMode("Movies/file", 0);

    EXPECT_THAT(found(), ElementsAre(file));
}

TEST_F(LargeFileFinderPermissionTests, aTrashThatMayNotBeReadGivesNoItem) {
    home.file(".Trash/file", {.allocatedBytes = 12'000'000});
    home.setMode(".Trash", 0);

    EXPECT_THAT(PersonalFilesProvider().items(context()), IsEmpty());
}

TEST_F(LargeFileFinderPermissionTests, unreadableDownloadsAndPicturesGiveNoItems) {
    home.file("Downloads/a.dmg", {.allocatedBytes = 6'000'000});
    home.file("Pictures/a.photoslibrary/file", {.allocatedBytes = 201'000'000});
    home.setMode("Downloads", 0300);
    home.setMode("Pictures", 0300);

    EXPECT_THAT(PersonalFilesProvider().items(context()), IsEmpty());
}

} // namespace
} // namespace korvanti
