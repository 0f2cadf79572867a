#include "providers/InstalledAppsProvider.h"

#include "support/BoxFolder.h"
#include "support/Environment.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <vector>

namespace korvanti {
namespace {

using testing::blocksOf;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr std::int64_t block = 4096;
constexpr std::int64_t justBelow5MB = 5'000'000 / block * block;
constexpr std::int64_t justAbove5MB = justBelow5MB + block;

class InstalledAppsProviderBoxTests : public ::testing::Test {
protected:
    [[nodiscard]] static std::vector<CleanupItem> items() {
        ScanContext context;
        context.home = "/Users/tester";
        context.now = instantFromSeconds(1'794'768'179);
        return InstalledAppsProvider().items(context);
    }

    testing::BoxMac mac;
    testing::ScopedVariable language{"LC_ALL", "C"};
};

TEST_F(InstalledAppsProviderBoxTests, aMacWithoutApplicationsHasNoItems) {
    EXPECT_THAT(items(), IsEmpty());
}

TEST_F(InstalledAppsProviderBoxTests, findsAGameWithItsData) {
    const auto program =
        mac.applications.file("Steam.app/Contents/MacOS/steam", {.allocatedBytes = 3'000'000});
    const auto data = mac.home.file("Library/Application Support/Steam/games",
                                    {.allocatedBytes = 9'000'000, .modified = 1'790'000'000});
    mac.home.setModified("Library/Application Support/Steam", 1'790'000'000);

    const auto found = items();

    ASSERT_THAT(found, SizeIs(1));
    EXPECT_EQ(found[0].title, "Steam");
    EXPECT_EQ(found[0].path, "/Applications/Steam.app");
    EXPECT_EQ(found[0].detail, "Bukan app kerja, datanya terakhir berubah 1 bulan yang lalu. Hapus untuk "
                               "membebaskan 12 MB.");
    EXPECT_EQ(found[0].bytes, blocksOf(program) + blocksOf(data));
    EXPECT_EQ(found[0].lastActivity, std::nullopt);
    EXPECT_THAT(found[0].warnings, ElementsAre("Termasuk 1 lokasi data (9 MB): Data aplikasi"));
    ASSERT_TRUE(found[0].relatedPaths);
    EXPECT_THAT(*found[0].relatedPaths, ElementsAre("/Users/tester/Library/Application Support/Steam"));
}

TEST_F(InstalledAppsProviderBoxTests, beginsAtFiveMillionBytesOnTheDisk) {
    mac.applications.file("Dota.app/Contents/MacOS/dota", {.allocatedBytes = justBelow5MB});
    EXPECT_THAT(items(), IsEmpty());
    mac.applications.file("Roblox.app/Contents/MacOS/roblox", {.allocatedBytes = justAbove5MB});
    const auto found = items();
    ASSERT_THAT(found, SizeIs(1));
    EXPECT_EQ(found[0].title, "Roblox");
    EXPECT_EQ(found[0].bytes, justAbove5MB);
}

TEST_F(InstalledAppsProviderBoxTests, dataThatChangedLatelyKeepsAGame) {
    mac.applications.file("Steam.app/Contents/MacOS/steam", {.allocatedBytes = justAbove5MB});
    mac.home.file("Library/Logs/Steam/log", {.allocatedBytes = block, .modified = 1'794'700'000});
    EXPECT_THAT(items(), IsEmpty());
}

TEST_F(InstalledAppsProviderBoxTests, aGameThatRunsIsNoItem) {
    mac.applications.file("Steam.app/Contents/MacOS/steam", {.allocatedBytes = justAbove5MB});
    mac.answer("ps -axo comm=", "/Applications/Steam.app/Contents/MacOS/steam\n");
    EXPECT_THAT(items(), IsEmpty());
}

} // namespace
} // namespace korvanti
