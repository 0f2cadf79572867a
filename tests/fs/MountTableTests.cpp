#include "fs/MountTable.h"
#include "support/TempFolder.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace korvanti {
namespace {

TEST(MountTableTests, everyMountPointIsAbsolute) {
    const auto all = MountTable::all();
    EXPECT_FALSE(all.empty());
    EXPECT_TRUE(std::ranges::all_of(all, [](const std::string& point) { return point.starts_with('/'); }));
}

TEST(MountTableTests, allMountsAreInsideTheRoot) {
    EXPECT_EQ(MountTable::mountPoints("/"), MountTable::all());
}

TEST(MountTableTests, anOrdinaryFolderHoldsNoMount) {
    const korvanti::testing::TempFolder temp;
    EXPECT_TRUE(MountTable::mountPoints(temp.path()).empty());
}

#ifdef __linux__
TEST(MountTableTests, aMountIsInsideItselfWithOrWithoutATrailingSlash) {
    const auto inside = MountTable::mountPoints("/proc");
    EXPECT_NE(std::ranges::find(inside, "/proc"), inside.end());
    EXPECT_EQ(MountTable::mountPoints("/proc/"), inside);
    EXPECT_TRUE(MountTable::mountPoints("/pro").empty());
}
#endif

} // namespace
} // namespace korvanti
