#include "providers/DeviceSupportProvider.h"

#include "support/Items.h"
#include "support/TempFolder.h"

#include <chrono>
#include <cstdint>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace korvanti {
namespace {

using std::chrono::days;
using std::chrono::seconds;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using testing::titles;
using ::testing::UnorderedElementsAre;

constexpr std::int64_t block = 4096;
constexpr std::int64_t justBelow50MB = 50'000'000 / block * block;
constexpr std::int64_t justAbove50MB = justBelow50MB + block;

const Instant now = instantFromSeconds(1'794'768'179);

class DeviceSupportProviderTests : public ::testing::Test {
protected:
    /// A folder of symbols, last touched so long ago.
    std::string symbols(const std::string& name, const std::string& platform = "iOS",
                        std::int64_t bytes = justAbove50MB, seconds age = days(1)) const {
        const auto relative = "Library/Developer/Xcode/" + platform + " DeviceSupport/" + name;
        home.file(relative + "/Symbols/dyld_shared_cache_arm64e", {.allocatedBytes = bytes});
        home.setModified(relative, wholeSeconds(now - age));
        return home.path(relative);
    }

    [[nodiscard]] std::vector<CleanupItem> items() const {
        ScanContext context;
        context.home = home.path();
        context.now = now;
        return testing::itemsOfOneScan(DeviceSupportProvider(), context);
    }
    [[nodiscard]] CleanupItem onlyItem() const {
        const auto found = items();
        EXPECT_THAT(found, SizeIs(1));
        return found.empty() ? CleanupItem{} : found.front();
    }

    testing::TempFolder home;
};

TEST_F(DeviceSupportProviderTests, hasItsNameAndPriority) {
    EXPECT_EQ(DeviceSupportProvider().name(), "Device Support");
    EXPECT_EQ(DeviceSupportProvider().priority(), 95);
}

TEST_F(DeviceSupportProviderTests, findsNothingInAnEmptyHome) {
    EXPECT_THAT(items(), IsEmpty());
}

// What an item says

TEST_F(DeviceSupportProviderTests, leavesTheOnlySymbolsOfADeviceInUse) {
    const auto path = symbols("iPhone15,2 17.5 (21F79)");

    EXPECT_THAT(items(),
                ElementsAre(CleanupItem{.title = "Simbol debug iPhone15,2 iOS 17.5",
                                        .detail = "Dipakai saat debug di perangkat ini. Jika dihapus, Xcode "
                                                  "menyalin ulang (±5–15 menit) saat perangkat dicolok.",
                                        .path = path,
                                        .bytes = justAbove50MB,
                                        .category = ItemCategory::xcode,
                                        .safety = Safety::costly,
                                        .action = CleanupAction::delete_(),
                                        .recommended = false,
                                        .lastActivity = now - days(1)}));
}

TEST_F(DeviceSupportProviderTests, recommendsTheSymbolsOfASystemThatTheDeviceHasLeft) {
    symbols("iPhone15,2 17.1 (21B80)");
    const auto old = symbols("iPhone15,2 16.4 (20E247)", "iOS", justAbove50MB + block, days(90));

    const auto found = items();

    EXPECT_THAT(titles(found), UnorderedElementsAre("Simbol debug iPhone15,2 iOS 17.1",
                                                    "Simbol debug lama iPhone15,2 iOS 16.4"));
    EXPECT_THAT(found, ::testing::Contains(CleanupItem{
                           .title = "Simbol debug lama iPhone15,2 iOS 16.4",
                           .detail = "Perangkat sudah memakai iOS yang lebih baru. Aman dihapus; disalin "
                                     "ulang otomatis bila dibutuhkan.",
                           .path = old,
                           .bytes = justAbove50MB + block,
                           .category = ItemCategory::xcode,
                           .safety = Safety::regenerable,
                           .action = CleanupAction::delete_(),
                           .recommended = true,
                           .lastActivity = now - days(90)}));
}

TEST_F(DeviceSupportProviderTests, recommendsTheSymbolsOfADeviceThatIsNotPluggedInAnyMore) {
    const auto path = symbols("iPhone15,2 17.5 (21F79)", "iOS", justAbove50MB, days(121));

    EXPECT_THAT(items(),
                ElementsAre(CleanupItem{.title = "Simbol debug lama iPhone15,2 iOS 17.5",
                                        .detail = "Perangkat ini tidak dicolok lebih dari 4 bulan. Aman "
                                                  "dihapus; disalin ulang otomatis bila dibutuhkan.",
                                        .path = path,
                                        .bytes = justAbove50MB,
                                        .category = ItemCategory::xcode,
                                        .safety = Safety::regenerable,
                                        .action = CleanupAction::delete_(),
                                        .recommended = true,
                                        .lastActivity = now - days(121)}));
}

TEST_F(DeviceSupportProviderTests, saysFirstThatTheDeviceHasANewerSystem) {
    symbols("iPhone15,2 17.1");
    symbols("iPhone15,2 16.4", "iOS", justAbove50MB, days(500));

    for (const auto& item : items()) {
        if (item.path.ends_with("16.4"))
            EXPECT_TRUE(item.detail.starts_with("Perangkat sudah memakai iOS yang lebih baru. Aman"));
        else
            EXPECT_EQ(item.safety, Safety::costly);
    }
}

TEST_F(DeviceSupportProviderTests, namesThePlatformTwiceWhereThereIsNoModel) {
    symbols("17.5 (21F79)");
    symbols("10.5", "watchOS", justAbove50MB, days(121));

    EXPECT_THAT(titles(items()),
                ElementsAre("Simbol debug iOS iOS 17.5", "Simbol debug lama watchOS watchOS 10.5"));
}

// Thresholds

TEST_F(DeviceSupportProviderTests, missesADeviceAfterMoreThan120WholeDays) {
    const std::pair<seconds, Safety> rows[] = {
        {days(120), Safety::costly},
        {days(121) - seconds(1), Safety::costly},
        {days(121), Safety::regenerable},
        {-days(400), Safety::costly},
    };
    for (const auto& [age, safety] : rows) {
        symbols("iPhone15,2 17.5", "iOS", justAbove50MB, age);
        EXPECT_EQ(onlyItem().safety, safety) << age.count();
    }
}

TEST_F(DeviceSupportProviderTests, shows50MBAndHidesLess) {
    const auto enough = symbols("A 1.0", "iOS", justAbove50MB);
    const auto little = symbols("B 1.0", "iOS", justBelow50MB);
    ASSERT_EQ(testing::blocksOf(little + "/Symbols/dyld_shared_cache_arm64e"), justBelow50MB);

    EXPECT_EQ(onlyItem().path, enough);
}

TEST_F(DeviceSupportProviderTests, countsATooSmallNewestAsTheNewest) {
    symbols("A 17.0", "iOS", block);
    symbols("A 16.0");

    EXPECT_THAT(titles(items()), ElementsAre("Simbol debug lama A iOS 16.0"));
}

// Which folders

TEST_F(DeviceSupportProviderTests, looksThroughThePlatformsInTheirOrder) {
    for (const char* platform : {"macOS", "visionOS", "tvOS", "watchOS", "iOS", "xrOS", "ios"})
        symbols("M 1.0", platform);

    EXPECT_THAT(titles(items()),
                ElementsAre("Simbol debug M iOS 1.0", "Simbol debug M watchOS 1.0", "Simbol debug M tvOS 1.0",
                            "Simbol debug M visionOS 1.0", "Simbol debug M macOS 1.0"));
}

TEST_F(DeviceSupportProviderTests, comparesSymbolsOfOnePlatformOnly) {
    symbols("M 1.0", "iOS");
    symbols("M 2.0", "watchOS");

    EXPECT_THAT(titles(items()), ElementsAre("Simbol debug M iOS 1.0", "Simbol debug M watchOS 2.0"));
}

TEST_F(DeviceSupportProviderTests, namesThePlatformInTheReason) {
    for (const std::string platform : {"watchOS", "tvOS", "visionOS", "macOS"}) {
        symbols("M 1.0", platform);
        symbols("M 2.0", platform, block);
    }

    const auto found = items();

    ASSERT_THAT(found, SizeIs(4));
    EXPECT_TRUE(found[0].detail.starts_with("Perangkat sudah memakai watchOS yang lebih baru."));
    EXPECT_TRUE(found[1].detail.starts_with("Perangkat sudah memakai tvOS yang lebih baru."));
    EXPECT_TRUE(found[2].detail.starts_with("Perangkat sudah memakai visionOS yang lebih baru."));
    EXPECT_TRUE(found[3].detail.starts_with("Perangkat sudah memakai macOS yang lebih baru."));
}

TEST_F(DeviceSupportProviderTests, takesModelAndVersionFromTheName) {
    const std::pair<const char*, const char*> rows[] = {
        {"iPhone15,2 17.5 (21F79)", "Simbol debug iPhone15,2 iOS 17.5"},
        {"iPhone15,2 17.5 (21F79) arm64e", "Simbol debug iPhone15,2 iOS 17.5"},
        {"iPhone15,2 17.5.1", "Simbol debug iPhone15,2 iOS 17.5.1"},
        {"iPhone15,2 17", "Simbol debug iPhone15,2 iOS 17"},
        {"iPhone15,2 17.", "Simbol debug iPhone15,2 iOS 17"},
        {"iPhone15,2 17.5beta", "Simbol debug iPhone15,2 iOS 17.5"},
        {"17.5 (21F79)", "Simbol debug iOS iOS 17.5"},
        {"17.5", "Simbol debug iOS iOS 17.5"},
        {"17.5x", "Simbol debug iOS iOS 17.5"},
        {"17.5 ()", "Simbol debug iOS iOS 17.5"},
        {"17.5 18.0", "Simbol debug 17.5 iOS 18.0"},
    };
    for (const auto& [name, title] : rows) {
        const testing::TempFolder other;
        other.file("Library/Developer/Xcode/iOS DeviceSupport/" + std::string(name) + "/Symbols",
                   {.allocatedBytes = justAbove50MB});
        ScanContext context;
        context.home = other.path();
        context.now = now;
        EXPECT_THAT(titles(testing::itemsOfOneScan(DeviceSupportProvider(), context)), ElementsAre(title))
            << name;
    }
}

TEST_F(DeviceSupportProviderTests, passesOverNamesWithoutAVersion) {
    for (const char* name : {"iPhone15,2", "iPhone15,2 beta", "My iPhone 17.5", " 17.5", "iPhone  17.5",
                             "(21F79)", "Symbols", "iPhone15,2 (21F79)"})
        symbols(name);

    EXPECT_THAT(items(), IsEmpty());
}

TEST_F(DeviceSupportProviderTests, passesOverLinksAndFiles) {
    const auto elsewhere = symbols("Elsewhere", "other");
    home.symlink("Library/Developer/Xcode/iOS DeviceSupport/A 17.5", elsewhere);
    home.file("Library/Developer/Xcode/iOS DeviceSupport/B 17.5", {.allocatedBytes = justAbove50MB});

    EXPECT_THAT(items(), IsEmpty());
}

TEST_F(DeviceSupportProviderTests, doesNotCompareWithALinkToNewerSymbols) {
    symbols("A 16.4");
    home.symlink("Library/Developer/Xcode/iOS DeviceSupport/A 17.5", home.path());

    EXPECT_THAT(titles(items()), ElementsAre("Simbol debug A iOS 16.4"));
}

TEST_F(DeviceSupportProviderTests, passesOverAPlatformThatIsAFile) {
    home.file("Library/Developer/Xcode/iOS DeviceSupport");
    symbols("M 1.0", "watchOS");

    EXPECT_THAT(titles(items()), ElementsAre("Simbol debug M watchOS 1.0"));
}

#ifndef __APPLE__ // whose file systems take no such names
TEST_F(DeviceSupportProviderTests, keepsTheBytesOfANameThatIsNotUtf8) {
    const auto path = symbols("A\xff 17.5 (\xfe)");

    const auto item = onlyItem();

    EXPECT_EQ(item.path, path);
    EXPECT_EQ(item.title, "Simbol debug A\xff iOS 17.5");
}
#endif

// Which is the newest

TEST_F(DeviceSupportProviderTests, findsTheNewestOfEachModelByNumbers) {
    for (const char* name : {"A 9.3", "A 10.2", "A 10.10", "B 8.0", "b 7.0", "A 10.9 (22A1)"})
        symbols(name, "iOS", justAbove50MB);

    EXPECT_THAT(titles(items()),
                UnorderedElementsAre("Simbol debug lama A iOS 9.3", "Simbol debug lama A iOS 10.2",
                                     "Simbol debug A iOS 10.10", "Simbol debug lama A iOS 10.9",
                                     "Simbol debug B iOS 8.0", "Simbol debug b iOS 7.0"));
}

TEST_F(DeviceSupportProviderTests, takesAllFoldersWithoutAModelForOneDevice) {
    symbols("16.4 (20E247)");
    symbols("17.5 (21F79)");
    symbols("A 15.0");

    EXPECT_THAT(titles(items()),
                UnorderedElementsAre("Simbol debug lama iOS iOS 16.4", "Simbol debug iOS iOS 17.5",
                                     "Simbol debug A iOS 15.0"));
}

TEST_F(DeviceSupportProviderTests, keepsOneOfEqualVersions) {
    symbols("A 17.5 (21F79)");
    symbols("A 17.5 (21F90)");
    symbols("A 17.5.0");

    const auto found = items();

    ASSERT_THAT(found, SizeIs(3));
    EXPECT_EQ(found[0].safety, Safety::costly); // the first of the listing
    EXPECT_EQ(found[1].safety, Safety::regenerable);
    EXPECT_EQ(found[2].safety, Safety::regenerable);
}

} // namespace
} // namespace korvanti
