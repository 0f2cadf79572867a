#include "providers/InstalledAppsProvider.h"

#include "support/Environment.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace korvanti {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

const Instant lastUsed = instantFromSeconds(1'750'000'000);

InstalledApp suggested(std::string name, std::int64_t bytes) {
    return {.name = name,
            .path = "/Applications/" + name + ".app",
            .bytes = bytes,
            .suggested = true,
            .advice = "Tidak dibuka 3 bulan terakhir."};
}

std::vector<AppDataLocation> data(std::size_t count) {
    std::vector<AppDataLocation> all = {{"/h/Library/Containers/a", "Container (data & pengaturan)", 4'000},
                                        {"/h/Library/Caches/a", "Cache", 3'000},
                                        {"/h/Library/Logs/a", "Log", 2'000},
                                        {"/h/Library/WebKit/a", "Data web", 1'000}};
    all.resize(count);
    return all;
}

class InstalledAppsProviderTests : public ::testing::Test {
protected:
    testing::ScopedVariable language{"LC_ALL", "C"};
};

TEST_F(InstalledAppsProviderTests, hasItsNameAndPriority) {
    const InstalledAppsProvider provider;
    EXPECT_EQ(provider.name(), "Aplikasi");
    EXPECT_EQ(provider.priority(), 60);
}

TEST_F(InstalledAppsProviderTests, makesAWholeItem) {
    auto app = suggested("Catatan", 12'000'000);
    app.data = data(2);
    app.lastUsed = lastUsed;
    app.dataActivity = instantFromSeconds(1'760'000'000);
    EXPECT_THAT(
        InstalledAppsProvider::items({app}),
        ElementsAre(CleanupItem{
            .title = "Catatan",
            .detail = "Tidak dibuka 3 bulan terakhir.",
            .path = "/Applications/Catatan.app",
            .bytes = 12'007'000,
            .category = ItemCategory::apps,
            .safety = Safety::review,
            .action = CleanupAction::trash(),
            .recommended = false,
            .lastActivity = lastUsed,
            .offloadable = false,
            .warnings = {"Termasuk 2 lokasi data (7 KB): Container (data & pengaturan), Cache"},
            .relatedPaths = std::vector<std::string>{"/h/Library/Containers/a", "/h/Library/Caches/a"}}));
}

TEST_F(InstalledAppsProviderTests, theChangeOfItsDataIsNotItsLastActivity) {
    auto app = suggested("A", 5'000'000);
    app.dataActivity = lastUsed;
    EXPECT_EQ(InstalledAppsProvider::items({app}).at(0).lastActivity, std::nullopt);
}

TEST_F(InstalledAppsProviderTests, withoutDataTheRelatedPathsAreAnEmptyList) {
    const auto items = InstalledAppsProvider::items({suggested("A", 5'000'000)});
    ASSERT_THAT(items, SizeIs(1));
    ASSERT_TRUE(items[0].relatedPaths);
    EXPECT_THAT(*items[0].relatedPaths, IsEmpty());
    EXPECT_THAT(items[0].warnings, IsEmpty());
}

TEST_F(InstalledAppsProviderTests, beginsAtFiveMillionBytes) {
    EXPECT_THAT(InstalledAppsProvider::items({suggested("A", 4'999'999)}), IsEmpty());
    EXPECT_THAT(InstalledAppsProvider::items({suggested("A", 5'000'000)}), SizeIs(1));
}

TEST_F(InstalledAppsProviderTests, countsTheDataForTheSize) {
    auto app = suggested("A", 4'993'000);
    app.data = data(2);
    EXPECT_THAT(InstalledAppsProvider::items({app}), SizeIs(1));
    app.bytes = 4'992'999;
    EXPECT_THAT(InstalledAppsProvider::items({app}), IsEmpty());
}

TEST_F(InstalledAppsProviderTests, showsOnlyWhatIsSuggested) {
    auto app = suggested("A", 500'000'000);
    app.suggested = false;
    EXPECT_THAT(InstalledAppsProvider::items({app}), IsEmpty());
}

TEST_F(InstalledAppsProviderTests, keepsTheOrderOfTheList) {
    const auto items = InstalledAppsProvider::items(
        {suggested("B", 6'000'000), suggested("C", 9'000'000), suggested("A", 7'000'000)});
    ASSERT_THAT(items, SizeIs(3));
    EXPECT_EQ(items[0].title, "B");
    EXPECT_EQ(items[1].title, "C");
    EXPECT_EQ(items[2].title, "A");
}

TEST_F(InstalledAppsProviderTests, warnsOfTheStoreBeforeTheData) {
    auto app = suggested("A", 5'000'000);
    app.fromAppStore = true;
    app.data = data(1);
    EXPECT_THAT(InstalledAppsProvider::items({app}).at(0).warnings,
                ElementsAre("Dari App Store: macOS mungkin meminta password admin saat dihapus.",
                            "Termasuk 1 lokasi data (4 KB): Container (data & pengaturan)"));
}

TEST_F(InstalledAppsProviderTests, namesTheKindsOfThreeLocationsAtMost) {
    auto app = suggested("A", 5'000'000);
    app.data = data(3);
    EXPECT_THAT(InstalledAppsProvider::items({app}).at(0).warnings,
                ElementsAre("Termasuk 3 lokasi data (9 KB): Container (data & pengaturan), Cache, Log"));
    app.data = data(4);
    EXPECT_THAT(InstalledAppsProvider::items({app}).at(0).warnings,
                ElementsAre("Termasuk 4 lokasi data (10 KB): Container (data & pengaturan), Cache, Log"));
}

} // namespace
} // namespace korvanti
