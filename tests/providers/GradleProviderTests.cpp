#include "providers/GradleProvider.h"

#include "support/Items.h"
#include "support/TempFolder.h"

#include <cstdint>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace korvanti {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using testing::titles;
using ::testing::UnorderedElementsAre;

constexpr std::int64_t block = 4096;
constexpr std::int64_t justBelow10MB = 10'000'000 / block * block;
constexpr std::int64_t justAbove10MB = justBelow10MB + block;

class GradleProviderTests : public ::testing::Test {
protected:
    GradleProviderTests() { context.home = home.path(); }

    [[nodiscard]] std::vector<CleanupItem> items() const {
        return testing::itemsOfOneScan(GradleProvider(), context);
    }

    /// The one item of the home folder.
    [[nodiscard]] CleanupItem item() const {
        const auto found = items();
        EXPECT_THAT(found, SizeIs(1));
        return found.empty() ? CleanupItem() : found[0];
    }

    /// A folder of a size that is shown.
    std::string folder(const std::string& relative, std::int64_t bytes = justAbove10MB) const {
        home.file(relative + "/data", {.allocatedBytes = bytes});
        return home.path(relative);
    }

    testing::TempFolder home;
    ScanContext context;
};

TEST_F(GradleProviderTests, hasItsNameAndPriority) {
    EXPECT_EQ(GradleProvider().name(), "Gradle");
    EXPECT_EQ(GradleProvider().priority(), 90);
}

TEST_F(GradleProviderTests, anEmptyHomeHasNoItems) {
    EXPECT_THAT(items(), IsEmpty());
}

// Caches

TEST_F(GradleProviderTests, aVersionThatAProjectUsesIsCostly) {
    const auto path = folder(".gradle/caches/8.7");
    home.setModified(".gradle/caches/8.7", 1'700'000'000);
    context.projects.gradleDistributions = {"gradle-8.7-bin"};

    EXPECT_EQ(item(), (CleanupItem{.title = "Cache Gradle 8.7",
                                   .detail = "Dipakai proyek Anda. Dihapus = build berikutnya lebih lama.",
                                   .path = path,
                                   .bytes = justAbove10MB,
                                   .category = ItemCategory::android,
                                   .safety = Safety::costly,
                                   .action = CleanupAction::delete_(),
                                   .recommended = false,
                                   .lastActivity = instantFromSeconds(1'700'000'000),
                                   .offloadable = false,
                                   .warnings = {},
                                   .relatedPaths = std::nullopt}));
}

TEST_F(GradleProviderTests, aVersionThatNoProjectUsesIsRecommended) {
    const auto path = folder(".gradle/caches/8.7");
    home.setModified(".gradle/caches/8.7", 1'700'000'000);
    context.projects.gradleDistributions = {"gradle-8.10-bin"};

    EXPECT_EQ(item(), (CleanupItem{.title = "Cache Gradle 8.7 (tidak dipakai)",
                                   .detail = "Tidak ada proyek yang memakai Gradle 8.7.",
                                   .path = path,
                                   .bytes = justAbove10MB,
                                   .category = ItemCategory::android,
                                   .safety = Safety::regenerable,
                                   .action = CleanupAction::delete_(),
                                   .recommended = true,
                                   .lastActivity = instantFromSeconds(1'700'000'000)}));
}

TEST_F(GradleProviderTests, theBuildCacheIsRecommended) {
    const auto path = folder(".gradle/caches/build-cache-1");
    home.setModified(".gradle/caches/build-cache-1", 1'700'000'000);

    EXPECT_EQ(item(), (CleanupItem{.title = "Build cache Gradle",
                                   .detail = "Hasil task yang di-cache. Dibuat ulang saat build.",
                                   .path = path,
                                   .bytes = justAbove10MB,
                                   .category = ItemCategory::android,
                                   .safety = Safety::regenerable,
                                   .action = CleanupAction::delete_(),
                                   .recommended = true,
                                   .lastActivity = instantFromSeconds(1'700'000'000)}));
}

TEST_F(GradleProviderTests, transformsAreRegenerableButNotRecommended) {
    const auto path = folder(".gradle/caches/transforms-4");
    home.setModified(".gradle/caches/transforms-4", 1'700'000'000);

    EXPECT_EQ(item(),
              (CleanupItem{.title = "Transform Gradle (transforms-4)",
                           .detail = "Hasil transform dependency. Dibuat ulang saat build (build pertama "
                                     "lebih lama).",
                           .path = path,
                           .bytes = justAbove10MB,
                           .category = ItemCategory::android,
                           .safety = Safety::regenerable,
                           .action = CleanupAction::delete_(),
                           .recommended = false,
                           .lastActivity = instantFromSeconds(1'700'000'000)}));
}

TEST_F(GradleProviderTests, withoutProjectsEveryVersionIsUnused) {
    folder(".gradle/caches/8.7");
    folder(".gradle/wrapper/dists/gradle-8.7-bin");

    EXPECT_THAT(titles(items()),
                ElementsAre("Cache Gradle 8.7 (tidak dipakai)", "Distribusi gradle-8.7-bin (tidak dipakai)"));
}

TEST_F(GradleProviderTests, aNameIsAVersionWhenItBeginsLikeOne) {
    const std::pair<std::string, bool> names[] = {
        {"8.7", true},       {"8.10.2", true}, {"8.7-rc-1", true}, {"8.7x", true}, {"10.0.0.1", true},
        {"8", false},        {"8.", false},    {"8.x", false},     {".8", false},  {"v8.7", false},
        {"jars-8.7", false}, {"-8.7", false},  {" 8.7", false},
    };
    for (const auto& [name, isVersion] : names) {
        const testing::TempFolder own;
        own.file(".gradle/caches/" + name + "/data", {.allocatedBytes = justAbove10MB});
        context.home = own.path();

        EXPECT_EQ(items().size(), isVersion ? 1U : 0U) << name;
    }
}

TEST_F(GradleProviderTests, onlyTheWholeNameOfAVersionCountsAsUsed) {
    folder(".gradle/caches/8.7");
    folder(".gradle/caches/8.7.1");
    folder(".gradle/caches/8.7-rc-1");
    context.projects.gradleDistributions = {"gradle-8.7.1-all"};

    EXPECT_THAT(titles(items()),
                UnorderedElementsAre("Cache Gradle 8.7 (tidak dipakai)", "Cache Gradle 8.7.1",
                                     "Cache Gradle 8.7-rc-1 (tidak dipakai)"));
}

TEST_F(GradleProviderTests, theBeginningOfTheNameTellsBuildCachesAndTransforms) {
    for (const auto* name : {"build-cache", "build-cache-2", "transforms", "transforms-3"})
        folder(".gradle/caches/" + std::string(name));

    EXPECT_THAT(titles(items()),
                UnorderedElementsAre("Build cache Gradle", "Build cache Gradle",
                                     "Transform Gradle (transforms)", "Transform Gradle (transforms-3)"));
}

TEST_F(GradleProviderTests, otherCachesAreLeftToOthers) {
    for (const auto* name :
         {"modules-2", "jars-9", "journal-1", "my-build-cache", "Build-cache", "my-transforms", "daemon"})
        folder(".gradle/caches/" + std::string(name));

    EXPECT_THAT(items(), IsEmpty());
}

// Distributions

TEST_F(GradleProviderTests, aDistributionThatAProjectUsesIsCostly) {
    const auto path = folder(".gradle/wrapper/dists/gradle-8.7-bin");
    home.setModified(".gradle/wrapper/dists/gradle-8.7-bin", 1'700'000'000);
    context.projects.gradleDistributions = {"gradle-8.7-bin"};

    EXPECT_EQ(item(), (CleanupItem{.title = "Distribusi gradle-8.7-bin",
                                   .detail = "Dipakai proyek Anda. Diunduh ulang (±150 MB) bila dihapus.",
                                   .path = path,
                                   .bytes = justAbove10MB,
                                   .category = ItemCategory::android,
                                   .safety = Safety::costly,
                                   .action = CleanupAction::delete_(),
                                   .recommended = false,
                                   .lastActivity = instantFromSeconds(1'700'000'000)}));
}

TEST_F(GradleProviderTests, aDistributionThatNoProjectUsesIsRecommended) {
    const auto path = folder(".gradle/wrapper/dists/gradle-8.7-bin");
    home.setModified(".gradle/wrapper/dists/gradle-8.7-bin", 1'700'000'000);
    context.projects.gradleDistributions = {"gradle-8.7-all"};

    EXPECT_EQ(item(), (CleanupItem{.title = "Distribusi gradle-8.7-bin (tidak dipakai)",
                                   .detail = "Tidak ada proyek yang merujuk gradle-8.7-bin.",
                                   .path = path,
                                   .bytes = justAbove10MB,
                                   .category = ItemCategory::android,
                                   .safety = Safety::regenerable,
                                   .action = CleanupAction::delete_(),
                                   .recommended = true,
                                   .lastActivity = instantFromSeconds(1'700'000'000)}));
}

TEST_F(GradleProviderTests, everyFolderBesideTheDistributionsIsOne) {
    folder(".gradle/wrapper/dists/whatever");

    EXPECT_EQ(item().title, "Distribusi whatever (tidak dipakai)");
}

// Sizes, order, odd places

TEST_F(GradleProviderTests, whatIsSmallerThanTenMegabytesIsNotShown) {
    for (const auto* place : {".gradle/caches/8.7", ".gradle/wrapper/dists/gradle-8.7-bin"}) {
        const testing::TempFolder own;
        own.file(std::string(place) + "/data", {.allocatedBytes = justBelow10MB});
        ASSERT_EQ(testing::blocksOf(own.path(std::string(place) + "/data")), justBelow10MB);
        context.home = own.path();
        EXPECT_THAT(items(), IsEmpty()) << place;

        own.file(std::string(place) + "/one more", {.allocatedBytes = block});
        EXPECT_THAT(items(), ElementsAre(::testing::Field(&CleanupItem::bytes, justAbove10MB))) << place;
    }
}

TEST_F(GradleProviderTests, cachesComeBeforeDistributions) {
    folder(".gradle/wrapper/dists/gradle-8.7-bin", 2 * justAbove10MB);
    folder(".gradle/caches/8.7");

    EXPECT_THAT(titles(items()),
                ElementsAre("Cache Gradle 8.7 (tidak dipakai)", "Distribusi gradle-8.7-bin (tidak dipakai)"));
}

TEST_F(GradleProviderTests, filesAndLinksAreNoCandidates) {
    for (const auto* place : {".gradle/caches", ".gradle/wrapper/dists"}) {
        home.file(std::string(place) + "/8.7", {.allocatedBytes = justAbove10MB});
        folder("elsewhere");
        home.symlink(std::string(place) + "/8.8", home.path("elsewhere"));
    }

    EXPECT_THAT(items(), IsEmpty());
}

TEST_F(GradleProviderTests, aPlaceThatIsNoFolderDoesNotHinderTheOther) {
    home.file(".gradle/caches");
    folder(".gradle/wrapper/dists/gradle-8.7-bin");

    EXPECT_THAT(titles(items()), ElementsAre("Distribusi gradle-8.7-bin (tidak dipakai)"));
}

#ifndef __APPLE__ // whose file systems take no such names
TEST_F(GradleProviderTests, aNameThatIsNoTextIsAName) {
    const auto path = folder(".gradle/wrapper/dists/gradle-\xff");

    EXPECT_EQ(item().path, path);
    EXPECT_EQ(item().title, "Distribusi gradle-\xff (tidak dipakai)");
}
#endif

} // namespace
} // namespace korvanti
