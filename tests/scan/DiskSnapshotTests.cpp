#include "scan/DiskSnapshot.h"

#include <gtest/gtest.h>
#include <limits>

namespace korvanti {
namespace {

DiskSnapshot disk(std::int64_t total, std::int64_t available, std::int64_t availableImportant) {
    DiskSnapshot snapshot;
    snapshot.total = total;
    snapshot.available = available;
    snapshot.availableImportant = availableImportant;
    return snapshot;
}

TEST(DiskSnapshotTests, usedIsWhatIsNotAvailable) {
    EXPECT_EQ(disk(1000, 300, 0).used(), 700);
}

TEST(DiskSnapshotTests, usedIsNeverNegative) {
    EXPECT_EQ(disk(300, 1000, 0).used(), 0);
}

TEST(DiskSnapshotTests, purgeableIsWhatImportantUseWouldGetMore) {
    EXPECT_EQ(disk(1000, 300, 450).purgeable(), 150);
}

TEST(DiskSnapshotTests, purgeableIsNeverNegative) {
    EXPECT_EQ(disk(1000, 450, 300).purgeable(), 0);
}

TEST(DiskSnapshotTests, numbersFromADamagedFileAreNoFault) {
    constexpr auto least = std::numeric_limits<std::int64_t>::min();
    constexpr auto most = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(disk(most, least, least).used(), most);
    EXPECT_EQ(disk(least, most, most).used(), 0);
    EXPECT_EQ(disk(0, least, most).purgeable(), most);
    EXPECT_EQ(disk(0, most, least).purgeable(), 0);
}

} // namespace
} // namespace korvanti
