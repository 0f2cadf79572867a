#include "providers/CatalogProvider.h"

#include "fs/PathTools.h"
#include "support/Items.h"
#include "support/TempFolder.h"

#include <algorithm>
#include <cstdint>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace korvanti {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::paths;
using ::testing::SizeIs;
using testing::titles;
using ::testing::UnorderedElementsAre;

using AppCondition = CatalogRule::AppCondition;

constexpr std::int64_t block = 4096;
constexpr std::int64_t justBelow20MB = 20'000'000 / block * block;
constexpr std::int64_t justAbove20MB = justBelow20MB + block;

/// A row that shows whatever is there, from one byte up.
CatalogRule row(std::string path) {
    return {.path = std::move(path),
            .title = "Judul",
            .detail = "Penjelasan",
            .category = ItemCategory::toolchains,
            .safety = Safety::regenerable,
            .action = CleanupAction::delete_(),
            .minBytes = 1};
}

CatalogRule row(std::string path, Safety safety, std::int64_t minBytes) {
    auto rule = row(std::move(path));
    rule.safety = safety;
    rule.minBytes = minBytes;
    return rule;
}

CatalogRule row(std::string path, AppCondition condition) {
    auto rule = row(std::move(path));
    rule.condition = std::move(condition);
    return rule;
}

class CatalogProviderTests : public ::testing::Test {
protected:
    [[nodiscard]] std::vector<CleanupItem> items(std::vector<CatalogRule> rules,
                                                 const std::set<std::string>& installed = {}) const {
        return CatalogProvider(std::move(rules)).items(context(), installed);
    }

    [[nodiscard]] ScanContext context() const {
        ScanContext context;
        context.home = home.path();
        return context;
    }

    testing::TempFolder home;
};

TEST_F(CatalogProviderTests, hasItsNameAndPriority) {
    const CatalogProvider provider({});

    EXPECT_EQ(provider.name(), "Katalog lokasi dikenal");
    EXPECT_EQ(provider.priority(), 50);
}

TEST_F(CatalogProviderTests, hasNoItemsWithoutRows) {
    home.file("cache/data", {.allocatedBytes = block});

    EXPECT_THAT(items({}), IsEmpty());
}

TEST_F(CatalogProviderTests, findsNothingInAnEmptyHome) {
    EXPECT_THAT(items(Catalog::rules()), IsEmpty());
}

// Conditions

TEST_F(CatalogProviderTests, appliesAnAppAbsentRowOnlyWithoutTheApplication) {
    home.file("cache", {.allocatedBytes = block});
    const auto rule = row("cache", {AppCondition::Kind::appAbsent, "com.example.app"});

    EXPECT_THAT(items({rule}, {"com.example.other"}), SizeIs(1));
    EXPECT_THAT(items({rule}, {"com.example.app", "com.example.other"}), IsEmpty());
}

TEST_F(CatalogProviderTests, appliesAnAppPresentRowOnlyWithTheApplication) {
    home.file("cache", {.allocatedBytes = block});
    const auto rule = row("cache", {AppCondition::Kind::appPresent, "com.example.app"});

    EXPECT_THAT(items({rule}, {"com.example.app", "com.example.other"}), SizeIs(1));
    EXPECT_THAT(items({rule}, {"com.example.other"}), IsEmpty());
}

TEST_F(CatalogProviderTests, appliesAnUnconditionalRowWhateverIsInstalled) {
    home.file("cache", {.allocatedBytes = block});

    EXPECT_THAT(items({row("cache")}, {}), SizeIs(1));
    EXPECT_THAT(items({row("cache")}, {"", "com.example.app"}), SizeIs(1));
}

TEST_F(CatalogProviderTests, comparesIdentifiersExactly) {
    home.file("cache", {.allocatedBytes = block});
    const auto absent = row("cache", {AppCondition::Kind::appAbsent, "com.example.app"});
    const auto present = row("cache", {AppCondition::Kind::appPresent, "com.example.app"});
    const std::set<std::string> similar = {"com.example.App", "com.example.app.helper", "com.example"};

    EXPECT_THAT(items({absent}, similar), SizeIs(1));
    EXPECT_THAT(items({present}, similar), IsEmpty());
}

TEST_F(CatalogProviderTests, showsTheDockerFolderAsALeftoverWithoutDocker) {
    home.file("Library/Containers/com.docker.docker/Data/disk", {.allocatedBytes = justAbove20MB});

    const auto found = items(Catalog::rules(), {"com.docker.helper"});

    ASSERT_THAT(found, SizeIs(1));
    EXPECT_EQ(found[0].title, "Sisa data Docker Desktop");
    EXPECT_EQ(found[0].action, CleanupAction::trash());
}

TEST_F(CatalogProviderTests, showsTheDockerFolderAsManagedWithDocker) {
    home.file("Library/Containers/com.docker.docker/Data/disk", {.allocatedBytes = justAbove20MB});

    const auto found = items(Catalog::rules(), {"com.docker.docker"});

    ASSERT_THAT(found, SizeIs(1));
    EXPECT_EQ(found[0].title, "Data Docker Desktop");
    EXPECT_EQ(found[0].action.kind, CleanupAction::Kind::manual);
}

// Which locations a row stands for

TEST_F(CatalogProviderTests, takesFilesAndFoldersAlike) {
    home.file("folder/data", {.allocatedBytes = 2 * block});
    home.file("file", {.allocatedBytes = block});

    EXPECT_THAT(paths(items({row("folder"), row("file")})),
                ElementsAre(home.path("folder"), home.path("file")));
}

TEST_F(CatalogProviderTests, passesOverAMissingLocation) {
    home.file("cache", {.allocatedBytes = block});

    EXPECT_THAT(paths(items({row("missing", Safety::regenerable, 0), row("cache")})),
                ElementsAre(home.path("cache")));
}

TEST_F(CatalogProviderTests, yieldsNothingForALinkToALargeFolder) {
    home.file("elsewhere/data", {.allocatedBytes = justAbove20MB});
    home.symlink("Library/Developer/Xcode/DerivedData", home.path("elsewhere"));

    EXPECT_THAT(items(Catalog::rules()), IsEmpty());
}

TEST_F(CatalogProviderTests, yieldsNothingForALinkEvenWhereNothingIsTooSmall) {
    home.symlink("link", home.folder("elsewhere"));
    home.symlink("dangling", home.path("missing"));

    EXPECT_THAT(items({row("link", Safety::regenerable, 0), row("dangling", Safety::regenerable, 0)}),
                IsEmpty());
}

TEST_F(CatalogProviderTests, followsALinkOnTheWayToTheLocation) {
    home.file("elsewhere/cache/data", {.allocatedBytes = block});
    home.symlink("way", home.path("elsewhere"));

    EXPECT_THAT(paths(items({row("way/cache")})), ElementsAre(home.path("way/cache")));
}

TEST_F(CatalogProviderTests, makesAnItemOfEachFolderThatAPatternMatches) {
    home.file("Library/Caches/Google/AndroidStudio2023.1/index", {.allocatedBytes = justAbove20MB});
    home.file("Library/Caches/Google/AndroidStudio2024.2/index", {.allocatedBytes = 2 * justAbove20MB});
    home.file("Library/Caches/Google/Other/data", {.allocatedBytes = justAbove20MB});

    auto found = items(Catalog::rules());

    std::ranges::sort(found, {}, &CleanupItem::path);
    ASSERT_THAT(titles(found), ElementsAre("Cache Android Studio (AndroidStudio2023.1)",
                                           "Cache Android Studio (AndroidStudio2024.2)"));
    EXPECT_EQ(found[0].path, home.path("Library/Caches/Google/AndroidStudio2023.1"));
    EXPECT_EQ(found[0].bytes, justAbove20MB);
    EXPECT_EQ(found[1].path, home.path("Library/Caches/Google/AndroidStudio2024.2"));
    EXPECT_EQ(found[1].bytes, 2 * justAbove20MB);
}

TEST_F(CatalogProviderTests, yieldsNothingWhereTheFolderOfAPatternIsMissing) {
    home.folder("Library/Caches");

    EXPECT_THAT(items({row("Library/Caches/Google/AndroidStudio*", Safety::regenerable, 0)}), IsEmpty());
}

TEST_F(CatalogProviderTests, yieldsNothingWhereTheFolderOfAPatternIsAFile) {
    home.file("Google", {.allocatedBytes = block});

    EXPECT_THAT(items({row("Google/*", Safety::regenerable, 0)}), IsEmpty());
}

TEST_F(CatalogProviderTests, matchesFilesHiddenEntriesAndFoldersWithAPattern) {
    home.file("caches/file", {.allocatedBytes = block});
    home.file("caches/.hidden", {.allocatedBytes = block});
    home.file("caches/folder/data", {.allocatedBytes = block});

    EXPECT_THAT(paths(items({row("caches/*")})),
                UnorderedElementsAre(home.path("caches/file"), home.path("caches/.hidden"),
                                     home.path("caches/folder")));
}

TEST_F(CatalogProviderTests, doesNotLookBelowTheFolderOfAPattern) {
    home.file("caches/a/deep", {.allocatedBytes = block});

    EXPECT_THAT(paths(items({row("caches/*e*p"), row("caches/*a*")})), ElementsAre(home.path("caches/a")));
}

TEST_F(CatalogProviderTests, understandsBracketsAndQuestionMarksBesideAStar) {
    for (const auto* name : {"v1-a", "v2-b", "v3-c", "v12-d"})
        home.file(std::string("caches/") + name, {.allocatedBytes = block});

    EXPECT_THAT(
        paths(items({row("caches/[vw][!3]?*")})),
        UnorderedElementsAre(home.path("caches/v1-a"), home.path("caches/v2-b"), home.path("caches/v12-d")));
}

TEST_F(CatalogProviderTests, takesBracketsAndQuestionMarksAsTheyAreWithoutAStar) {
    home.file("caches/v1", {.allocatedBytes = block});
    home.file("caches/v?", {.allocatedBytes = block});
    home.file("caches/[v]1", {.allocatedBytes = block});

    EXPECT_THAT(titles(items({row("caches/v?"), row("caches/[v]1"), row("caches/[v]?")})),
                ElementsAre("Judul", "Judul"));
}

TEST_F(CatalogProviderTests, takesAStarInTheMiddleOfAPathAsItIs) {
    home.file("ab/cache", {.allocatedBytes = block});
    home.file("a*/cache", {.allocatedBytes = block});

    const auto found = items({row("a*/cache")});

    EXPECT_THAT(paths(found), ElementsAre(home.path("a*/cache")));
    EXPECT_THAT(titles(found), ElementsAre("Judul (cache)"));
}

TEST_F(CatalogProviderTests, yieldsNothingForALinkBehindAStarInTheMiddleOfAPath) {
    home.symlink("a*/link", home.folder("elsewhere"));

    EXPECT_THAT(items({row("a*/link", Safety::regenerable, 0)}), IsEmpty());
}

TEST_F(CatalogProviderTests, doesNotReadAStarInTheHomeAsAPattern) {
    home.file("ho*me/cache", {.allocatedBytes = block});
    home.symlink("ho*me/link", home.folder("elsewhere"));
    ScanContext starred;
    starred.home = home.path("ho*me");

    const CatalogProvider provider({row("cache"), row("link", Safety::regenerable, 0)});

    EXPECT_THAT(titles(provider.items(starred, {})), ElementsAre("Judul"));
}

TEST_F(CatalogProviderTests, measuresALinkThatAPatternMatchesAsTheEmptyThingItIs) {
    home.file("elsewhere/data", {.allocatedBytes = justAbove20MB});
    home.symlink("caches/link", home.path("elsewhere"));

    const auto found = items({row("caches/l*", Safety::regenerable, 0)});

    ASSERT_THAT(paths(found), ElementsAre(home.path("caches/link")));
    EXPECT_EQ(found[0].bytes, 0);
    EXPECT_THAT(items({row("caches/l*", Safety::regenerable, 1)}), IsEmpty());
}

#ifndef __APPLE__ // whose file systems take no such names
TEST_F(CatalogProviderTests, keepsTheBytesOfANameThatIsNotUtf8) {
    home.file("caches/Studio\xff", {.allocatedBytes = block});

    const auto found = items({row("caches/Studio*")});

    EXPECT_THAT(titles(found), ElementsAre("Judul (Studio\xff)"));
    EXPECT_THAT(paths(found), ElementsAre(home.path("caches/Studio\xff")));
}
#endif

// Which sizes are shown

TEST_F(CatalogProviderTests, shows20MBAndHidesLessByDefault) {
    home.file("enough/data", {.allocatedBytes = justAbove20MB});
    home.file("little/data", {.allocatedBytes = justBelow20MB});
    const auto byDefault = CatalogRule().minBytes;

    EXPECT_EQ(byDefault, 20'000'000);
    EXPECT_THAT(paths(items({row("enough", Safety::regenerable, byDefault),
                             row("little", Safety::regenerable, byDefault)})),
                ElementsAre(home.path("enough")));
}

TEST_F(CatalogProviderTests, showsExactlyTheMinimumAndHidesOneByteLess) {
    home.file("cache/data", {.allocatedBytes = 5 * block});

    EXPECT_THAT(items({row("cache", Safety::regenerable, 5 * block)}), SizeIs(1));
    EXPECT_THAT(items({row("cache", Safety::regenerable, 5 * block + 1)}), IsEmpty());
}

TEST_F(CatalogProviderTests, showsBelowTheMinimumOnlyWhatIsNotForCleaning) {
    home.file("data", {.allocatedBytes = block});

    for (const Safety safety : allCases<Safety>) {
        const bool isForInformation = safety == Safety::keep || safety == Safety::managed;
        EXPECT_THAT(items({row("data", safety, 20'000'000)}), SizeIs(isForInformation ? 1 : 0))
            << label(safety);
    }
}

TEST_F(CatalogProviderTests, showsASmallClaudeFolder) {
    home.file(".claude/settings.json", {.text = "12345"});

    const auto found = items(Catalog::rules());

    ASSERT_THAT(paths(found), ElementsAre(home.path(".claude")));
    EXPECT_EQ(found[0].safety, Safety::keep);
    EXPECT_EQ(found[0].bytes, testing::blocksOf(home.path(".claude/settings.json")));
}

TEST_F(CatalogProviderTests, neverShowsAnEmptyLocationOfAnySafety) {
    home.file("empty-file");
    home.file("folder/empty-file");

    for (const Safety safety : allCases<Safety>) {
        EXPECT_THAT(items({row("empty-file", safety, 20'000'000), row("folder", safety, 1)}), IsEmpty())
            << label(safety);
    }
}

TEST_F(CatalogProviderTests, showsAnEmptyLocationWhereTheMinimumIsZeroOrLess) {
    home.file("empty");

    EXPECT_THAT(items({row("empty", Safety::regenerable, 0), row("empty", Safety::managed, -1)}), SizeIs(2));
}

// What an item says

TEST_F(CatalogProviderTests, takesTheFieldsOfTheRow) {
    const auto location = home.path("Library/Arsip");
    home.file("Library/Arsip/data", {.allocatedBytes = 3 * block, .modified = 1'700'000'000});
    home.setModified("Library/Arsip", 1'600'000'000);

    const auto found = items({{.path = "Library/Arsip",
                               .title = "Arsip `x`",
                               .detail = "Sisa › lama · lagi",
                               .category = ItemCategory::personal,
                               .safety = Safety::costly,
                               .action = CleanupAction::trash(),
                               .recommended = true,
                               .offloadable = true,
                               .minBytes = 1}});

    EXPECT_THAT(found, ElementsAre(CleanupItem{.title = "Arsip `x`",
                                               .detail = "Sisa › lama · lagi",
                                               .path = location,
                                               .bytes = 3 * block,
                                               .category = ItemCategory::personal,
                                               .safety = Safety::costly,
                                               .action = CleanupAction::trash(),
                                               .recommended = true,
                                               .lastActivity = instantFromSeconds(1'600'000'000),
                                               .offloadable = true,
                                               .warnings = {},
                                               .relatedPaths = std::nullopt}));
}

TEST_F(CatalogProviderTests, readsTheTimeStampOfALinkItself) {
    home.symlink("caches/link", home.file("file", {.modified = 1'700'000'000}));
    home.setModified("caches/link", 1'600'000'000);

    const auto found = items({row("caches/*", Safety::regenerable, 0)});

    ASSERT_THAT(found, SizeIs(1));
    EXPECT_EQ(found[0].lastActivity, instantFromSeconds(1'600'000'000));
}

TEST_F(CatalogProviderTests, neverRecommendsAManualAction) {
    home.file("cache", {.allocatedBytes = block});
    auto rule = row("cache");
    rule.recommended = true;
    rule.action = CleanupAction::manual("Buka aplikasinya.");

    const auto found = items({rule});

    ASSERT_THAT(found, SizeIs(1));
    EXPECT_FALSE(found[0].recommended);
    EXPECT_EQ(found[0].action, CleanupAction::manual("Buka aplikasinya."));
}

TEST_F(CatalogProviderTests, recommendsNothingLessSafeThanCostly) {
    home.file("cache", {.allocatedBytes = block});

    for (const Safety safety : allCases<Safety>) {
        auto rule = row("cache", safety, 1);
        rule.recommended = true;
        const auto found = items({rule});
        ASSERT_THAT(found, SizeIs(1)) << label(safety);
        EXPECT_EQ(found[0].recommended, safety <= Safety::costly) << label(safety);
    }
}

// Order

TEST_F(CatalogProviderTests, keepsTheOrderOfTheRowsWhateverTheSizes) {
    home.file("small", {.allocatedBytes = block});
    home.file("large", {.allocatedBytes = 100 * block});
    home.file("middle", {.allocatedBytes = 10 * block});

    EXPECT_THAT(paths(items({row("middle"), row("small"), row("missing"), row("large")})),
                ElementsAre(home.path("middle"), home.path("small"), home.path("large")));
}

TEST_F(CatalogProviderTests, keepsTheOrderOfTheListingInsideAPattern) {
    for (const auto* name : {"delta", "alpha", "echo", "bravo", "charlie"})
        home.file(std::string("caches/") + name, {.allocatedBytes = block});
    home.file("first", {.allocatedBytes = block});
    home.file("last", {.allocatedBytes = block});

    std::vector<std::string> expected = PathTools::children(home.path("caches"));
    ASSERT_THAT(expected, SizeIs(5));
    expected.insert(expected.begin(), home.path("first"));
    expected.push_back(home.path("last"));

    EXPECT_EQ(paths(items({row("first"), row("caches/*"), row("last")})), expected);
}

TEST_F(CatalogProviderTests, leavesLocationsThatOverlapUnmerged) {
    home.file("cache/inner", {.allocatedBytes = block});
    auto again = row("cache");
    again.title = "Lagi";

    const auto found = items({row("cache"), row("cache/inner"), again});

    EXPECT_THAT(paths(found), ElementsAre(home.path("cache"), home.path("cache/inner"), home.path("cache")));
    EXPECT_THAT(titles(found), ElementsAre("Judul", "Judul", "Lagi"));
}

TEST_F(CatalogProviderTests, measuresManyMoreLocationsThanItDoesAtOnce) {
    std::vector<CatalogRule> rules;
    std::vector<std::string> expected;
    for (int i = 0; i < 40; ++i) {
        const auto name = "cache" + std::to_string(i);
        expected.push_back(home.file(name, {.allocatedBytes = (i + 1) * block}));
        rules.push_back(row(name));
    }

    const auto found = items(rules);

    ASSERT_EQ(paths(found), expected);
    for (std::size_t i = 0; i < found.size(); ++i)
        EXPECT_EQ(found[i].bytes, static_cast<std::int64_t>(i + 1) * block);
}

TEST_F(CatalogProviderTests, hasNoWarningsWithoutAMount) {
    home.file("cache/data", {.allocatedBytes = block});

    const auto found = items({row("cache")});

    ASSERT_THAT(found, SizeIs(1));
    EXPECT_THAT(found[0].warnings, IsEmpty());
}

} // namespace
} // namespace korvanti
