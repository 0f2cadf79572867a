#include "analysis/DiskInspector.h"
#include "platform/Platform.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

namespace korvanti {
namespace {

TEST(DiskInspectorTests, theSnapshotIsThatOfTheVolumeOfTheHomeFolder) {
    const testing::TempFolder home;
    const auto capacity = Platform::volumeCapacity(home.path());
    const auto disk = DiskInspector::snapshot(home.path());
    EXPECT_EQ(disk.total, capacity.total);
    EXPECT_GT(disk.available, 0);
    EXPECT_LE(disk.available, disk.total);
    EXPECT_EQ(disk.physicalMemory, Platform::physicalMemory());
}

#ifdef __linux__ // where nothing is purgeable
TEST(DiskInspectorTests, whereImportantUseIsNotToldThePlainMeasureStands) {
    const testing::TempFolder home;
    const auto disk = DiskInspector::snapshot(home.path());
    EXPECT_EQ(disk.availableImportant, disk.available);
    EXPECT_EQ(disk.purgeable(), 0);
}
#endif

TEST(DiskInspectorTests, aHomeThatDoesNotExistHasNoCapacity) {
    const auto disk = DiskInspector::snapshot("/no/such/home");
    EXPECT_EQ(disk.total, 0);
    EXPECT_EQ(disk.available, 0);
    EXPECT_EQ(disk.availableImportant, 0);
    EXPECT_GT(disk.physicalMemory, 0);
}

} // namespace
} // namespace korvanti
