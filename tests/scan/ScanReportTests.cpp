#include "scan/ScanReport.h"

#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

namespace korvanti {
namespace {

CleanupItem plainItem(std::string path, std::int64_t bytes, Safety safety, ItemCategory category) {
    CleanupItem item;
    item.title = "Judul";
    item.path = std::move(path);
    item.bytes = bytes;
    item.category = category;
    item.safety = safety;
    item.action = CleanupAction::trash();
    return item;
}

TEST(ScanReportTests, totalsAddTheItemsOfOneClassOrCategory) {
    ScanReport report;
    report.items = {plainItem("/1", 10, Safety::review, ItemCategory::xcode),
                    plainItem("/2", 200, Safety::review, ItemCategory::apps),
                    plainItem("/3", 3000, Safety::costly, ItemCategory::apps)};
    EXPECT_EQ(report.total(Safety::review), 210);
    EXPECT_EQ(report.total(Safety::costly), 3000);
    EXPECT_EQ(report.total(ItemCategory::xcode), 10);
    EXPECT_EQ(report.total(ItemCategory::apps), 3200);
}

TEST(ScanReportTests, theTotalOfAClassWithoutItemsIsZero) {
    EXPECT_EQ(ScanReport{}.total(Safety::keep), 0);
    EXPECT_EQ(ScanReport{}.total(ItemCategory::system), 0);
    EXPECT_EQ(ScanReport{}.recommendedBytes(), 0);
}

TEST(ScanReportTests, recommendedItemsKeepTheOrderOfTheReport) {
    ScanReport report;
    for (int index = 0; index < 5; ++index) {
        CleanupItem item =
            plainItem("/" + std::to_string(9 - index), 1 << index, Safety::review, ItemCategory::apps);
        item.recommended = index % 2 == 0;
        report.items.push_back(item);
    }
    std::vector<std::string> paths;
    for (const CleanupItem& item : report.recommendedItems())
        paths.push_back(item.path);
    EXPECT_EQ(paths, (std::vector<std::string>{"/9", "/7", "/5"}));
    EXPECT_EQ(report.recommendedBytes(), 1 + 4 + 16);
}

TEST(ScanReportDeathTests, anOverflowOfASumEndsTheProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    ScanReport report;
    CleanupItem item =
        plainItem("/1", std::numeric_limits<std::int64_t>::max(), Safety::review, ItemCategory::apps);
    item.recommended = true;
    report.items = {item, plainItem("/2", 1, Safety::review, ItemCategory::apps)};
    report.items[1].recommended = true;
    EXPECT_DEATH(std::ignore = report.total(Safety::review), "");
    EXPECT_DEATH(std::ignore = report.total(ItemCategory::apps), "");
    EXPECT_DEATH(std::ignore = report.recommendedBytes(), "");
}

} // namespace
} // namespace korvanti
