#include "cleaning/ActivityLog.h"

#include "support/BoxFolder.h"
#include "support/Mount.h"

#include <cstddef>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace korvanti {
namespace {

/// Needs the right to mount: runs in the box as root.
TEST(ActivityLogMountTests, onAFullDiskTheOldLinesStayAndTheLogGoesOnOnceThereIsRoom) {
    const testing::BoxMac mac;
    const testing::Mount disk(mac.home.folder("disk"), 64 * 1024);
    const auto filler = mac.home.file("disk/filler", {.allocatedBytes = 48 * 1024});
    const ActivityLog log(mac.home.path("disk/activity.jsonl"));
    const auto append = [&](int number) { log.append({.title = std::to_string(number)}); };

    for (int number = 0; number < 500; ++number)
        append(number);
    const auto whole = log.load(500);
    ASSERT_GT(whole.size(), 10U);
    ASSERT_LT(whole.size(), 500U);
    for (std::size_t index = 0; index < whole.size(); ++index)
        EXPECT_EQ(whole[index].title, std::to_string(whole.size() - 1 - index));

    std::filesystem::remove(filler);
    append(500); // may end up behind a torn line
    append(501);
    const auto after = log.load(500);
    ASSERT_GT(after.size(), whole.size());
    EXPECT_EQ(after.front().title, "501");
    EXPECT_EQ(std::vector(after.end() - static_cast<std::ptrdiff_t>(whole.size()), after.end()), whole);
}

} // namespace
} // namespace korvanti
