#include "providers/GenericCacheProvider.h"

#include "fs/PathTools.h"
#include "support/Items.h"
#include "support/TempFolder.h"

#include <algorithm>
#include <cstdint>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <vector>

namespace korvanti {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

constexpr std::int64_t block = 4096;
constexpr std::int64_t justBelow100MB = 100'000'000 / block * block;
constexpr std::int64_t justAbove100MB = justBelow100MB + block;
constexpr std::int64_t justBelow30MB = 30'000'000 / block * block;
constexpr std::int64_t justAbove30MB = justBelow30MB + block;

class GenericCacheProviderTests : public ::testing::Test {
protected:
    /// A folder that is large enough to be listed. All share one file's blocks.
    void large(const std::string& folder) {
        if (!PathTools::exists(home.path("blocks")))
            home.file("blocks", {.allocatedBytes = justAbove100MB});
        home.hardLink(folder + "/data", home.path("blocks"));
    }

    [[nodiscard]] std::vector<CleanupItem> items() const {
        ScanContext context;
        context.home = home.path();
        return testing::itemsOfOneScan(GenericCacheProvider(), context);
    }

    [[nodiscard]] std::vector<std::string> titles() const { return testing::titles(items()); }

    testing::TempFolder home;
};

TEST_F(GenericCacheProviderTests, hasItsNameAndPriority) {
    EXPECT_EQ(GenericCacheProvider().name(), "Cache app");
    EXPECT_EQ(GenericCacheProvider().priority(), 20);
}

TEST_F(GenericCacheProviderTests, findsNothingInAnEmptyHome) {
    EXPECT_THAT(items(), IsEmpty());
}

TEST_F(GenericCacheProviderTests, filesInPlaceOfTheFoldersHoldNothing) {
    home.file("Library/Caches", {.allocatedBytes = justAbove100MB});
    home.file("Library/Logs", {.allocatedBytes = justAbove30MB});
    EXPECT_THAT(items(), IsEmpty());
}

// What is listed

TEST_F(GenericCacheProviderTests, aCacheOf100MBIsListedAndASmallerOneIsNot) {
    home.file("Library/Caches/Cukup/data", {.allocatedBytes = justAbove100MB});
    home.file("Library/Caches/Kurang/data", {.allocatedBytes = justBelow100MB});
    EXPECT_THAT(titles(), ElementsAre("Cache app: Cukup"));
}

TEST_F(GenericCacheProviderTests, aLogOf30MBIsListedAndASmallerOneIsNot) {
    home.file("Library/Logs/Cukup/data", {.allocatedBytes = justAbove30MB});
    home.file("Library/Logs/Kurang/data", {.allocatedBytes = justBelow30MB});
    EXPECT_THAT(titles(), ElementsAre("Log Cukup"));
}

TEST_F(GenericCacheProviderTests, aCacheOfTheSizeOfALogIsNotListed) {
    home.file("Library/Caches/Sama/data", {.allocatedBytes = justAbove30MB});
    EXPECT_THAT(items(), IsEmpty());
}

TEST_F(GenericCacheProviderTests, aCacheOfApplesIsNotListed) {
    large("Library/Caches/com.apple.Safari");
    large("Library/Caches/com.apple.");
    EXPECT_THAT(items(), IsEmpty());
}

TEST_F(GenericCacheProviderTests, onlyTheWholePrefixMakesACacheApples) {
    large("Library/Caches/com.apple");
    large("Library/Caches/com.applet");
    large("Library/Caches/id.com.apple.app");
    EXPECT_THAT(titles(), UnorderedElementsAre("Cache app: com.apple", "Cache app: com.applet",
                                               "Cache app: id.com.apple.app"));
}

TEST_F(GenericCacheProviderTests, theCatalogsLogsAreNotListed) {
    large("Library/Logs/DiagnosticReports");
    large("Library/Logs/CoreSimulator");
    EXPECT_THAT(items(), IsEmpty());
}

TEST_F(GenericCacheProviderTests, onlyTheWholeNameMakesALogTheCatalogs) {
    large("Library/Logs/DiagnosticReports2");
    large("Library/Logs/CoreSimulator2");
    large("Library/Logs/coresimulator");
    large("Library/Logs/com.apple.log");
    EXPECT_THAT(titles(), UnorderedElementsAre("Log DiagnosticReports2", "Log CoreSimulator2",
                                               "Log coresimulator", "Log com.apple.log"));
}

TEST_F(GenericCacheProviderTests, whatIsLeftOutOfOneFolderIsListedInTheOther) {
    large("Library/Caches/DiagnosticReports");
    large("Library/Caches/CoreSimulator");
    EXPECT_THAT(titles(), UnorderedElementsAre("Cache app: DiagnosticReports", "Cache app: CoreSimulator"));
}

TEST_F(GenericCacheProviderTests, filesAndHiddenEntriesAreListedToo) {
    home.file("Library/Caches/data.db", {.allocatedBytes = justAbove100MB});
    home.file("Library/Logs/.install.log", {.allocatedBytes = justAbove30MB});
    EXPECT_THAT(titles(), ElementsAre("Cache app: data.db", "Log .install.log"));
}

TEST_F(GenericCacheProviderTests, aLinkIsEmptyAndNotListed) {
    large("elsewhere");
    home.symlink("Library/Caches/link", home.path("elsewhere"));
    home.symlink("Library/Logs/link", home.path("elsewhere"));
    EXPECT_THAT(items(), IsEmpty());
}

// What an item says

TEST_F(GenericCacheProviderTests, aCacheHasTheseFields) {
    home.file("Library/Caches/Contoh/data", {.allocatedBytes = justAbove100MB, .modified = 1'700'000'000});
    home.setModified("Library/Caches/Contoh", 1'600'000'000);

    EXPECT_THAT(items(),
                ElementsAre(CleanupItem{.title = "Cache app: Contoh",
                                        .detail = "Cache app. Dibuat ulang otomatis; tutup app-nya dulu.",
                                        .path = home.path("Library/Caches/Contoh"),
                                        .bytes = justAbove100MB,
                                        .category = ItemCategory::appCaches,
                                        .safety = Safety::regenerable,
                                        .action = CleanupAction::delete_(),
                                        .recommended = false,
                                        .lastActivity = instantFromSeconds(1'600'000'000),
                                        .offloadable = false,
                                        .warnings = {},
                                        .relatedPaths = std::nullopt}));
}

TEST_F(GenericCacheProviderTests, aLogHasTheseFieldsAndIsRecommended) {
    home.file("Library/Logs/Contoh/data", {.allocatedBytes = justAbove30MB, .modified = 1'700'000'000});
    home.setModified("Library/Logs/Contoh", 1'600'000'000);

    EXPECT_THAT(items(), ElementsAre(CleanupItem{.title = "Log Contoh",
                                                 .detail = "Log lama aplikasi.",
                                                 .path = home.path("Library/Logs/Contoh"),
                                                 .bytes = justAbove30MB,
                                                 .category = ItemCategory::appCaches,
                                                 .safety = Safety::regenerable,
                                                 .action = CleanupAction::delete_(),
                                                 .recommended = true,
                                                 .lastActivity = instantFromSeconds(1'600'000'000),
                                                 .offloadable = false,
                                                 .warnings = {},
                                                 .relatedPaths = std::nullopt}));
}

TEST_F(GenericCacheProviderTests, cachesComeBeforeLogsEachInTheOrderOfTheListing) {
    std::vector<std::string> expected;
    for (const auto* name : {"delta", "alpha", "echo", "bravo", "charlie"}) {
        large(std::string("Library/Logs/") + name);
        large(std::string("Library/Caches/") + name);
    }
    for (const auto* folder : {"Library/Caches", "Library/Logs"})
        std::ranges::copy(PathTools::children(home.path(folder)), std::back_inserter(expected));

    ASSERT_EQ(expected.size(), 10U);
    EXPECT_EQ(testing::paths(items()), expected);
}

#ifndef __APPLE__ // whose file systems take no such names
TEST_F(GenericCacheProviderTests, keepsTheBytesOfANameThatIsNotUtf8) {
    large("Library/Caches/Studio\xFF");
    EXPECT_THAT(titles(), ElementsAre("Cache app: Studio\xFF"));
}
#endif

} // namespace
} // namespace korvanti
