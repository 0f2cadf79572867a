#include "providers/OrphanedContainerProvider.h"

#include "fs/PathTools.h"
#include "support/TempFolder.h"

#include <cstdint>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <set>
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

class OrphanedContainerProviderTests : public ::testing::Test {
protected:
    /// Large enough to be listed. All containers share one file's blocks.
    void container(const std::string& name) {
        if (!PathTools::exists(home.path("blocks")))
            home.file("blocks", {.allocatedBytes = justAbove100MB});
        home.hardLink("Library/Containers/" + name + "/Data/data", home.path("blocks"));
    }

    [[nodiscard]] std::vector<CleanupItem> items(const std::set<std::string>& installed = {}) const {
        ScanContext context;
        context.home = home.path();
        return OrphanedContainerProvider().items(context, installed);
    }

    /// The names of the containers that have no owner.
    [[nodiscard]] std::vector<std::string> orphans(const std::set<std::string>& installed = {}) const {
        std::vector<std::string> names;
        for (const auto& item : items(installed))
            names.emplace_back(PathTools::lastComponent(item.path));
        return names;
    }

    testing::TempFolder home;
};

TEST_F(OrphanedContainerProviderTests, hasItsNameAndPriority) {
    EXPECT_EQ(OrphanedContainerProvider().name(), "Sisa app");
    EXPECT_EQ(OrphanedContainerProvider().priority(), 30);
}

TEST_F(OrphanedContainerProviderTests, aMissingFolderOfContainersHasNoOrphans) {
    EXPECT_THAT(items(), IsEmpty());
}

TEST_F(OrphanedContainerProviderTests, aFileInPlaceOfTheFolderHasNoOrphans) {
    home.file("Library/Containers", {.allocatedBytes = justAbove100MB});
    EXPECT_THAT(items(), IsEmpty());
}

// Who has an owner

TEST_F(OrphanedContainerProviderTests, aContainerWithoutAnApplicationIsAnOrphan) {
    container("com.contoh.hilang");
    EXPECT_THAT(orphans({"com.contoh.lain"}), ElementsAre("com.contoh.hilang"));
    EXPECT_THAT(orphans(), ElementsAre("com.contoh.hilang"));
}

TEST_F(OrphanedContainerProviderTests, theContainerOfAnApplicationHasAnOwner) {
    container("com.contoh.app");
    EXPECT_THAT(orphans({"com.contoh.app"}), IsEmpty());
}

TEST_F(OrphanedContainerProviderTests, theContainerOfAHelperBelongsToItsApplication) {
    container("com.contoh.app.Share");
    container("com.contoh.app.Share.Inner");
    EXPECT_THAT(orphans({"com.contoh.app"}), IsEmpty());
}

TEST_F(OrphanedContainerProviderTests, aContainerNamedLikeTheFirstPartOfAnIdentifierHasAnOwner) {
    container("com.contoh");
    container("com.contoh.app");
    EXPECT_THAT(orphans({"com.contoh.app.Share"}), IsEmpty());
}

TEST_F(OrphanedContainerProviderTests, anIdentifierIsComparedByWholeWords) {
    container("com.contoh.appshare");
    container("com.contoh.ap");
    container("com.contoh.app-share");
    EXPECT_THAT(orphans({"com.contoh.app"}),
                UnorderedElementsAre("com.contoh.appshare", "com.contoh.ap", "com.contoh.app-share"));
}

TEST_F(OrphanedContainerProviderTests, anIdentifierIsComparedByItsLetters) {
    container("com.contoh.App");
    EXPECT_THAT(orphans({"com.contoh.app"}), ElementsAre("com.contoh.App"));
}

TEST_F(OrphanedContainerProviderTests, anyOfTheIdentifiersMayBeTheOwner) {
    container("com.contoh.b");
    EXPECT_THAT(orphans({"com.contoh.a", "com.contoh.b", "com.contoh.c"}), IsEmpty());
}

TEST_F(OrphanedContainerProviderTests, aNameWithoutADotIsLeftAlone) {
    container("1A2B3C4D-0000-4000-8000-000000000001");
    container("com");
    EXPECT_THAT(orphans(), IsEmpty());
}

TEST_F(OrphanedContainerProviderTests, whatIsApplesIsLeftAlone) {
    container("com.apple.mail");
    container("com.apple.");
    EXPECT_THAT(orphans(), IsEmpty());
}

TEST_F(OrphanedContainerProviderTests, onlyTheWholePrefixMakesAContainerApples) {
    container("com.apple");
    container("com.applet.app");
    container("id.com.apple.app");
    EXPECT_THAT(orphans(), UnorderedElementsAre("com.apple", "com.applet.app", "id.com.apple.app"));
}

// What is listed

TEST_F(OrphanedContainerProviderTests, anOrphanOf100MBIsListedAndASmallerOneIsNot) {
    home.file("Library/Containers/com.contoh.cukup/data", {.allocatedBytes = justAbove100MB});
    home.file("Library/Containers/com.contoh.kurang/data", {.allocatedBytes = justBelow100MB});
    EXPECT_THAT(orphans(), ElementsAre("com.contoh.cukup"));
}

TEST_F(OrphanedContainerProviderTests, anEntryThatIsAFileIsListedToo) {
    home.file("Library/Containers/com.contoh.file", {.allocatedBytes = justAbove100MB});
    EXPECT_THAT(orphans(), ElementsAre("com.contoh.file"));
}

TEST_F(OrphanedContainerProviderTests, aLinkIsEmptyAndNotListed) {
    home.file("elsewhere/data", {.allocatedBytes = justAbove100MB});
    home.symlink("Library/Containers/com.contoh.link", home.path("elsewhere"));
    EXPECT_THAT(orphans(), IsEmpty());
}

TEST_F(OrphanedContainerProviderTests, anOrphanHasTheseFields) {
    home.file("Library/Containers/com.contoh.hilang/data",
              {.allocatedBytes = justAbove100MB, .modified = 1'700'000'000});
    home.setModified("Library/Containers/com.contoh.hilang", 1'600'000'000);

    EXPECT_THAT(items(), ElementsAre(CleanupItem{
                             .title = "Sisa data com.contoh.hilang",
                             .detail = "App pemilik folder ini tidak ditemukan di Applications. Kemungkinan "
                                       "sisa app yang sudah dihapus.",
                             .path = home.path("Library/Containers/com.contoh.hilang"),
                             .bytes = justAbove100MB,
                             .category = ItemCategory::appCaches,
                             .safety = Safety::review,
                             .action = CleanupAction::trash(),
                             .recommended = false,
                             .lastActivity = instantFromSeconds(1'600'000'000),
                             .offloadable = false,
                             .warnings = {},
                             .relatedPaths = std::nullopt}));
}

TEST_F(OrphanedContainerProviderTests, keepsTheOrderOfTheListing) {
    for (const auto* name : {"id.delta", "id.alpha", "id.echo", "id.bravo", "id.charlie"})
        container(name);

    std::vector<std::string> expected;
    for (const auto& path : PathTools::children(home.path("Library/Containers")))
        expected.emplace_back(PathTools::lastComponent(path));
    ASSERT_EQ(expected.size(), 5U);
    EXPECT_EQ(orphans(), expected);
}

#ifndef __APPLE__ // whose file systems take no such names
TEST_F(OrphanedContainerProviderTests, keepsTheBytesOfANameThatIsNotUtf8) {
    container("com.contoh.\xFF");
    EXPECT_EQ(items().at(0).title, "Sisa data com.contoh.\xFF");
}
#endif

} // namespace
} // namespace korvanti
