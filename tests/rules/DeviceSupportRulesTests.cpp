#include "providers/DeviceSupportProvider.h"

#include "RulesSupport.h"
#include "fs/PathTools.h"
#include "support/Environment.h"
#include "support/TempFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace korvanti {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::UnorderedElementsAre;

using testing::ago;
using testing::day;
using testing::now;
using testing::paths;
using testing::secondsAgo;
using testing::sizeBelow;
using testing::sizeFrom;
using testing::titles;

constexpr std::int64_t enough = sizeFrom(50'000'000);

const std::string unpluggedDetail =
    "Perangkat ini tidak dicolok lebih dari 4 bulan. Aman dihapus; disalin ulang otomatis bila dibutuhkan.";
const std::string usedDetail = "Dipakai saat debug di perangkat ini. Jika dihapus, Xcode menyalin ulang "
                               "(±5–15 menit) saat perangkat dicolok.";

std::string replacedDetail(const std::string& platform) {
    return "Perangkat sudah memakai " + platform +
           " yang lebih baru. Aman dihapus; disalin ulang otomatis bila dibutuhkan.";
}

class DeviceSupportRulesTests : public ::testing::Test {
protected:
    /// Symbols of that size, copied that long ago.
    std::string symbols(const std::string& platform, const std::string& name, std::int64_t days = 10,
                        std::int64_t bytes = enough, std::int64_t seconds = 0) {
        const auto relative = "Library/Developer/Xcode/" + platform + " DeviceSupport/" + name;
        weights.add(home.path(relative + "/Symbols"), bytes, secondsAgo(500));
        home.setModified(relative, secondsAgo(days, seconds));
        return home.path(relative);
    }
    [[nodiscard]] std::vector<CleanupItem> items() const {
        ScanContext context;
        context.home = home.path();
        context.inactiveDays = 21;
        context.now = now();
        return DeviceSupportProvider().items(context);
    }
    [[nodiscard]] std::map<std::string, CleanupItem> itemsByPath() const {
        std::map<std::string, CleanupItem> byPath;
        for (const auto& item : items())
            EXPECT_TRUE(byPath.emplace(item.path, item).second) << item.path;
        return byPath;
    }
    [[nodiscard]] CleanupItem item() const {
        const auto found = items();
        EXPECT_THAT(found, SizeIs(1)) << ::testing::PrintToString(titles(found));
        return found.size() == 1 ? found[0] : CleanupItem();
    }

    testing::TempFolder home;
    testing::TempFolder pool;
    testing::Weights weights{pool};
};

TEST_F(DeviceSupportRulesTests, hasItsNameAndPriority) {
    EXPECT_EQ(DeviceSupportProvider().name(), "Device Support");
    EXPECT_EQ(DeviceSupportProvider().priority(), 95);
}

TEST_F(DeviceSupportRulesTests, findsNothingInAnEmptyHome) {
    EXPECT_THAT(items(), IsEmpty());
}

TEST_F(DeviceSupportRulesTests, looksInTheHomeOfTheScan) {
    symbols("iOS", "iPhone14,5 17.1 (21B74)");
    const testing::ScopedHome other(home.path("elsewhere"));

    EXPECT_THAT(items(), SizeIs(1));
}

TEST_F(DeviceSupportRulesTests, symbolsInUseAreCostly) {
    const auto path = symbols("iOS", "iPhone14,5 17.1 (21B74)", 10);

    EXPECT_EQ(item(), (CleanupItem{.title = "Simbol debug iPhone14,5 iOS 17.1",
                                   .detail = usedDetail,
                                   .path = path,
                                   .bytes = enough,
                                   .category = ItemCategory::xcode,
                                   .safety = Safety::costly,
                                   .action = CleanupAction::delete_(),
                                   .recommended = false,
                                   .lastActivity = ago(10),
                                   .offloadable = false,
                                   .warnings = {},
                                   .relatedPaths = std::nullopt}));
}

TEST_F(DeviceSupportRulesTests, olderSymbolsOfAModelAreRecommended) {
    const auto older = symbols("iOS", "iPhone14,5 16.4 (20E247)", 2);
    const auto newer = symbols("iOS", "iPhone14,5 17.1 (21B74)", 90);

    const auto found = itemsByPath();

    ASSERT_THAT(found, SizeIs(2));
    EXPECT_EQ(found.at(older), (CleanupItem{.title = "Simbol debug lama iPhone14,5 iOS 16.4",
                                            .detail = replacedDetail("iOS"),
                                            .path = older,
                                            .bytes = enough,
                                            .category = ItemCategory::xcode,
                                            .safety = Safety::regenerable,
                                            .action = CleanupAction::delete_(),
                                            .recommended = true,
                                            .lastActivity = ago(2),
                                            .offloadable = false,
                                            .warnings = {},
                                            .relatedPaths = std::nullopt}));
    EXPECT_EQ(found.at(newer).title, "Simbol debug iPhone14,5 iOS 17.1");
    EXPECT_EQ(found.at(newer).safety, Safety::costly);
}

TEST_F(DeviceSupportRulesTests, theNewestOfAModelIsRecommendedAfterMoreThan120Days) {
    const auto kept = symbols("iOS", "A 17.1", 120, enough, day - 1);
    const auto old = symbols("iOS", "B 17.1", 121);

    const auto found = itemsByPath();

    ASSERT_THAT(found, SizeIs(2));
    EXPECT_EQ(found.at(kept).title, "Simbol debug A iOS 17.1");
    EXPECT_EQ(found.at(kept).detail, usedDetail);
    EXPECT_FALSE(found.at(kept).recommended);
    EXPECT_EQ(found.at(old).title, "Simbol debug lama B iOS 17.1");
    EXPECT_EQ(found.at(old).detail, unpluggedDetail);
    EXPECT_EQ(found.at(old).safety, Safety::regenerable);
    EXPECT_TRUE(found.at(old).recommended);
}

TEST_F(DeviceSupportRulesTests, aNewerVersionIsTheReasonEvenAfter120Days) {
    const auto older = symbols("watchOS", "Watch6,18 9.0", 500);
    symbols("watchOS", "Watch6,18 10.0", 500);

    EXPECT_EQ(itemsByPath()[older].detail, replacedDetail("watchOS"));
}

TEST_F(DeviceSupportRulesTests, symbolsFromTheFutureAreInUse) {
    const auto path = symbols("iOS", "A 17.1", -300);

    EXPECT_EQ(item().detail, usedDetail);
    EXPECT_EQ(item().lastActivity, ago(-300));
    EXPECT_EQ(item().path, path);
}

TEST_F(DeviceSupportRulesTests, symbolsNeed50MB) {
    symbols("iOS", "A 17.1", 10, sizeBelow(50'000'000));
    const auto path = symbols("iOS", "B 17.1", 10, sizeFrom(50'000'000));

    EXPECT_THAT(paths(items()), ElementsAre(path));
}

TEST_F(DeviceSupportRulesTests, symbolsThatAreTooSmallToShowMakeOthersOld) {
    const auto older = symbols("iOS", "A 16.4", 1);
    symbols("iOS", "A 17.1", 1, 4096);

    EXPECT_EQ(item().title, "Simbol debug lama A iOS 16.4");
    EXPECT_EQ(item().path, older);
}

TEST_F(DeviceSupportRulesTests, comparesVersionsByTheirNumbers) {
    const auto a = symbols("iOS", "A 17.9");
    const auto b = symbols("iOS", "A 17.10");
    const auto c = symbols("iOS", "A 9.3.5");
    const auto d = symbols("iOS", "A 17.9.99");

    auto found = itemsByPath();

    ASSERT_THAT(found, SizeIs(4));
    EXPECT_EQ(found[b].title, "Simbol debug A iOS 17.10");
    for (const auto& path : {a, c, d})
        EXPECT_TRUE(found[path].title.starts_with("Simbol debug lama A iOS ")) << path;
}

TEST_F(DeviceSupportRulesTests, ofEqualVersionsTheFirstListedStaysAndItemsKeepTheListing) {
    for (const auto* name : {"A 17.1 (21B74)", "A 17.1 (21B80)", "A 17.1.0", "A 17.1 (21B91)", "A 17.01"})
        symbols("iOS", name);

    const auto found = items();

    ASSERT_EQ(paths(found), PathTools::children(home.path("Library/Developer/Xcode/iOS DeviceSupport")));
    EXPECT_EQ(found[0].detail, usedDetail);
    for (std::size_t index = 1; index < found.size(); ++index)
        EXPECT_EQ(found[index].detail, replacedDetail("iOS")) << found[index].path;
}

TEST_F(DeviceSupportRulesTests, eachModelOfEachPlatformIsJudgedByItself) {
    symbols("iOS", "A 16.0");
    symbols("iOS", "B 17.0");
    symbols("tvOS", "A 17.0");
    symbols("iOS", "a 18.0");

    EXPECT_THAT(titles(items()), UnorderedElementsAre("Simbol debug A iOS 16.0", "Simbol debug B iOS 17.0",
                                                      "Simbol debug a iOS 18.0", "Simbol debug A tvOS 17.0"));
}

TEST_F(DeviceSupportRulesTests, symbolsWithoutAModelAreOneGroupAndNamedByThePlatform) {
    const auto older = symbols("iOS", "16.4 (20E247)");
    const auto newer = symbols("iOS", "17.1");
    const auto model = symbols("iOS", "A 15.0");

    auto found = itemsByPath();

    ASSERT_THAT(found, SizeIs(3));
    EXPECT_EQ(found[older].title, "Simbol debug lama iOS iOS 16.4");
    EXPECT_EQ(found[newer].title, "Simbol debug iOS iOS 17.1");
    EXPECT_EQ(found[model].title, "Simbol debug A iOS 15.0");
}

TEST_F(DeviceSupportRulesTests, goesThroughThePlatformsInTheirOrder) {
    for (const auto* platform : {"macOS", "visionOS", "tvOS", "watchOS", "iOS", "bridgeOS", "ios"})
        symbols(platform, "A 1.0");

    EXPECT_THAT(titles(items()),
                ElementsAre("Simbol debug A iOS 1.0", "Simbol debug A watchOS 1.0", "Simbol debug A tvOS 1.0",
                            "Simbol debug A visionOS 1.0", "Simbol debug A macOS 1.0"));
}

TEST_F(DeviceSupportRulesTests, readsModelAndVersionOutOfTheName) {
    const std::vector<std::pair<std::string, std::string>> names = {
        {"iPhone14,5 17.1 (21B74)", "iPhone14,5 macOS 17.1"},
        {"iPhone14,6 17.1 (21B74) arm64e", "iPhone14,6 macOS 17.1"},
        {"iPhone15,2 17", "iPhone15,2 macOS 17"},
        {"iPad 17.1.2.3 ()", "iPad macOS 17.1.2.3"},
        {"iPhone 16 Pro 18.0", "iPhone macOS 16"}, // no further than the first number
        {"18.1 17.2", "18.1 macOS 17.2"},          // a number may be a model
        {"v1 11.4beta", "v1 macOS 11.4"},
        {"v2 11..4", "v2 macOS 11"},
        {"v3 11.", "v3 macOS 11"},
        {"é 12.0", "é macOS 12.0"},
        {"14.2beta (1A2)", "macOS macOS 14.2"},
    };
    std::map<std::string, std::string> expected;
    for (const auto& [name, text] : names)
        expected[symbols("macOS", name)] = "Simbol debug " + text;

    std::map<std::string, std::string> found;
    for (const auto& item : items())
        found[item.path] = item.title;

    EXPECT_EQ(found, expected);
}

TEST_F(DeviceSupportRulesTests, passesOverNamesWithoutAVersion) {
    for (const auto* name : {"iPhone14,5", "iPhone14,5 (21B74)", "A  17.1", " 17.1", "A v17.1", "Latest",
                             "A B 17.1", "(21B74)", "A .1", "A"})
        symbols("iOS", name);

    EXPECT_THAT(titles(items()), IsEmpty());
}

TEST_F(DeviceSupportRulesTests, passesOverFilesAndLinks) {
    const std::string folder = "Library/Developer/Xcode/iOS DeviceSupport/";
    home.file(folder + "A 18.0", {.allocatedBytes = enough});
    weights.add(home.path("elsewhere"), enough, secondsAgo(1));
    home.symlink(folder + "A 19.0", home.path("elsewhere"));
    const auto path = symbols("iOS", "A 17.1");

    EXPECT_EQ(item().title, "Simbol debug A iOS 17.1");
    EXPECT_EQ(item().path, path);
}

TEST_F(DeviceSupportRulesTests, aFileInPlaceOfAPlatformsFolderDoesNotEndTheOthers) {
    home.file("Library/Developer/Xcode/iOS DeviceSupport");
    symbols("macOS", "A 17.1");

    EXPECT_THAT(titles(items()), ElementsAre("Simbol debug A macOS 17.1"));
}

#ifndef __APPLE__ // whose file systems take no such names
TEST_F(DeviceSupportRulesTests, aNameThatIsNotUtf8DoesNotEndTheOthers) {
    symbols("iOS", "A\xff 18.0");
    const auto path = symbols("iOS", "A 17.1");

    EXPECT_EQ(itemsByPath()[path].title, "Simbol debug A iOS 17.1");
}
#endif

TEST_F(DeviceSupportRulesTests, aVersionBeyond64BitsIsNoError) {
    const auto huge = symbols("iOS", "A 99999999999999999999");
    const auto small = symbols("iOS", "A 1.0");

    auto found = itemsByPath();

    EXPECT_EQ(found[small].title, "Simbol debug A iOS 1.0");
    EXPECT_EQ(found[huge].title, "Simbol debug lama A iOS 99999999999999999999");
}

} // namespace
} // namespace korvanti
