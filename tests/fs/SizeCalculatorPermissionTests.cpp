#include "fs/PathTools.h"
#include "fs/SizeCalculator.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>
#include <unistd.h>

/// What only an ordinary user meets: root reads everything.
namespace korvanti {
namespace {

using korvanti::testing::TempFolder;

class PermissionTests : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_NE(::geteuid(), 0U) << "run this as an ordinary user"; }

    TempFolder temp;
};

TEST_F(PermissionTests, anUnreadableFolderCountsOneAndItsSiblingsAreCounted) {
    temp.file("tree/closed/file", {.allocatedBytes = 4096});
    temp.file("tree/open/file", {.allocatedBytes = 4096});
    temp.setMode("tree/closed", 0);
    EXPECT_EQ(SizeCalculator::measure(temp.path("tree")),
              (SizeResult{.bytes = 4096, .logicalBytes = 4096, .files = 1, .unreadable = 1}));
}

TEST_F(PermissionTests, anUnreadableRootIsUnreadable) {
    temp.file("tree/file");
    temp.setMode("tree", 0);
    EXPECT_EQ(SizeCalculator::measure(temp.path("tree")), SizeResult{.unreadable = 1});
}

TEST_F(PermissionTests, whatAFolderListsButDoesNotLetBeAskedIsLeftOut) {
    temp.file("tree/folder/file", {.allocatedBytes = 4096});
    temp.setMode("tree/folder", 0400);
    EXPECT_EQ(SizeCalculator::measure(temp.path("tree")), SizeResult{});
}

TEST_F(PermissionTests, aFolderThatMayNotBeListedHasNoChildren) {
    temp.file("tree/file");
    temp.setMode("tree", 0300);
    EXPECT_TRUE(PathTools::children(temp.path("tree")).empty());
    EXPECT_TRUE(PathTools::exists(temp.path("tree/file")));
}

} // namespace
} // namespace korvanti
