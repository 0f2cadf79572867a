#include "providers/ProjectArtifactProvider.h"

#include "ProjectArtifactFixture.h"
#include "support/Items.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace korvanti {
namespace {

using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using testing::paths;
using ::testing::SizeIs;
using ::testing::StartsWith;
using testing::titles;
using ::testing::UnorderedElementsAre;

constexpr std::int64_t block = 4096;
constexpr std::int64_t MB = 1'000'000;
constexpr std::int64_t now = 1'750'000'000;
constexpr std::int64_t day = 86'400;

/// The largest allocation below `bytes` and the smallest that reaches it.
constexpr std::int64_t below(std::int64_t bytes) {
    return (bytes - 1) / block * block;
}
constexpr std::int64_t atLeast(std::int64_t bytes) {
    return below(bytes) + block;
}

class ProjectArtifactProviderTests : public testing::ProjectArtifactFixture {
protected:
    [[nodiscard]] std::vector<CleanupItem> items() const {
        ScanContext context;
        context.home = home.path();
        context.inactiveDays = 21;
        context.now = instantFromSeconds(now);
        context.projects = projects;
        return ProjectArtifactProvider().items(context);
    }

    /// The only item; an empty one, and a failure, when there are none or more.
    [[nodiscard]] CleanupItem item() const {
        const auto found = items();
        EXPECT_THAT(found, SizeIs(1));
        return found.size() == 1 ? found[0] : CleanupItem();
    }

    /// A repository with one more folder that git ignores, last worked on and last changed so many days ago.
    void repositoryWith(const std::string& folder, const std::vector<std::string>& markers,
                        std::int64_t repoDays, std::int64_t folderDays = 0, std::int64_t bytes = 100 * MB) {
        repository("repo", folder + "/\n", instantFromSeconds(now - repoDays * day));
        for (const auto& marker : markers)
            home.file("repo/" + marker);
        home.file("repo/" + folder + "/data",
                  {.allocatedBytes = atLeast(bytes), .modified = now - folderDays * day});
        home.setModified("repo/" + folder, now - folderDays * day);
    }

    /// Makes a folder occupy so many bytes (whole blocks), whatever the file system adds to a large file.
    void fill(const std::string& folder, std::int64_t bytes) const {
        const auto most = home.file(folder + "/most", {.allocatedBytes = bytes - MB});
        home.file(folder + "/rest", {.allocatedBytes = bytes - testing::blocksOf(most)});
    }

    /// What the detail says before the line with the path.
    static std::string body(const CleanupItem& item) { return item.detail.substr(0, item.detail.find('\n')); }
};

TEST_F(ProjectArtifactProviderTests, hasItsNameAndPriority) {
    EXPECT_EQ(ProjectArtifactProvider().name(), "Artefak proyek");
    EXPECT_EQ(ProjectArtifactProvider().priority(), 70);
}

TEST_F(ProjectArtifactProviderTests, hasNoItemsWithoutProjects) {
    EXPECT_THAT(items(), IsEmpty());
}

// Sizes

TEST_F(ProjectArtifactProviderTests, everyKindOfFolderIsShownFromItsOwnSizeUp) {
    const struct {
        std::string marker;
        std::string folder;
        std::int64_t minBytes;
    } rows[] = {
        {"package.json", "node_modules", 20 * MB},
        {"Podfile", "Pods", 20 * MB},
        {"build.gradle", "build", 20 * MB},
        {"package.json", "build", 20 * MB},
        {"project.yml", "build/DerivedData", 20 * MB},
        {"project.yml", "build/Archives", 20 * MB},
        {"project.yml", "build/screenshots", 50 * MB},
        {"Makefile", "build", 100 * MB},
        {"README", "recordings", 100 * MB},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.folder + " beside " + row.marker);
        projects = {};
        const auto place = row.marker + " " + testing::upper(row.folder.substr(row.folder.find('/') + 1));
        repository(place, "build/\nnode_modules/\nPods/\nrecordings/\n");
        home.file(place + "/" + row.marker);

        fill(place + "/" + row.folder, below(row.minBytes));
        EXPECT_THAT(items(), IsEmpty());

        fill(place + "/" + row.folder, atLeast(row.minBytes));
        EXPECT_THAT(items(),
                    ElementsAre(::testing::Field(&CleanupItem::path, home.path(place + "/" + row.folder))));
    }
}

TEST_F(ProjectArtifactProviderTests, theSizeIsWhatTheFolderOccupies) {
    repository("repo", "/stuff/\n");
    const auto one = home.file("repo/stuff/a/one", {.allocatedBytes = 60 * MB});
    const auto two = home.file("repo/stuff/two", {.allocatedBytes = 60 * MB});
    home.file("repo/stuff/sparse", {.sparseBytes = 900 * MB});

    EXPECT_EQ(item().bytes, testing::blocksOf(one) + testing::blocksOf(two));
}

TEST_F(ProjectArtifactProviderTests, itemsComeInTheOrderOfTheCandidates) {
    for (const auto* name : {"z", "a", "m"}) {
        repository(name, "/.venv/\n");
        home.file(std::string(name) + "/.venv/data", {.allocatedBytes = 20 * MB + block * (name[0] % 5)});
    }

    EXPECT_THAT(paths(items()),
                ElementsAre(home.path("z/.venv"), home.path("a/.venv"), home.path("m/.venv")));
}

// Dependencies

TEST_F(ProjectArtifactProviderTests, dependenciesOfAnActiveProjectAreCostlyAndNotRecommended) {
    repositoryWith("node_modules", {"package.json"}, 21, 400);

    const auto found = item();

    EXPECT_EQ(found.safety, Safety::costly);
    EXPECT_FALSE(found.recommended);
    EXPECT_EQ(body(found), "Proyek sedang aktif. Aman dihapus, tapi perlu install ulang (butuh internet).");
}

TEST_F(ProjectArtifactProviderTests, dependenciesOfAnIdleProjectAreRegenerableAndRecommended) {
    repositoryWith("node_modules", {"package.json"}, 22);

    const auto found = item();

    EXPECT_EQ(found.safety, Safety::regenerable);
    EXPECT_TRUE(found.recommended);
    EXPECT_EQ(body(found),
              "Proyek tidak aktif 22 hari. Pasang ulang dengan npm/pnpm install saat dibutuhkan.");
}

TEST_F(ProjectArtifactProviderTests, dependenciesOfAProjectWithoutAnyActivityAreThoseOfAnIdleOne) {
    repositoryWith("node_modules", {"package.json"}, 0);
    projects.repositories[0].lastActivity.reset();

    const auto found = item();

    EXPECT_EQ(found.safety, Safety::regenerable);
    EXPECT_TRUE(found.recommended);
    EXPECT_EQ(body(found), "Proyek tidak aktif lama. Pasang ulang dengan npm/pnpm install saat dibutuhkan.");
}

TEST_F(ProjectArtifactProviderTests, podsStayCostlyInAnActiveProject) {
    repositoryWith("Pods", {"Podfile"}, 3);

    EXPECT_EQ(item().safety, Safety::costly);
    EXPECT_FALSE(item().recommended);
}

TEST_F(ProjectArtifactProviderTests, podsStayCostlyInAnIdleProjectAndAreRecommended) {
    repositoryWith("Pods", {"Podfile"}, 300);

    EXPECT_EQ(item().safety, Safety::costly);
    EXPECT_TRUE(item().recommended);
    EXPECT_EQ(item().action, CleanupAction::delete_());
}

TEST_F(ProjectArtifactProviderTests, aLooseProjectIsIdleWhenNoneOfItsEntriesIsNew) {
    looseProject("loose");
    home.file("loose/package.json", {.modified = now - 21 * day});
    home.file("loose/node_modules/data", {.allocatedBytes = 20 * MB});
    home.setModified("loose/node_modules", now - 30 * day);
    EXPECT_FALSE(item().recommended);

    home.setModified("loose/package.json", now - 22 * day);
    EXPECT_TRUE(item().recommended);
    EXPECT_THAT(item().detail, StartsWith("Proyek tidak aktif 22 hari."));
}

// Build output

TEST_F(ProjectArtifactProviderTests, buildOutputOfAnIdleProjectIsRecommended) {
    repositoryWith(".next", {"package.json"}, 22, 0);

    EXPECT_EQ(item().safety, Safety::regenerable);
    EXPECT_TRUE(item().recommended);
}

TEST_F(ProjectArtifactProviderTests, buildOutputThatIsEightDaysOldIsRecommended) {
    repositoryWith(".next", {"package.json"}, 0, 8);

    EXPECT_EQ(item().safety, Safety::regenerable);
    EXPECT_TRUE(item().recommended);
}

TEST_F(ProjectArtifactProviderTests, buildOutputOfSevenDaysInAnActiveProjectIsNotRecommended) {
    repositoryWith(".next", {"package.json"}, 21, 7);

    EXPECT_EQ(item().safety, Safety::regenerable);
    EXPECT_FALSE(item().recommended);
}

TEST_F(ProjectArtifactProviderTests, buildOutputSaysWhenItWasChanged) {
    repositoryWith(".next", {"package.json"}, 0, 3);

    EXPECT_EQ(body(item()),
              "Hasil build, dibuat ulang otomatis saat build berikutnya. Terakhir diubah 3 hari "
              "yang lalu.");
}

TEST_F(ProjectArtifactProviderTests, theNewestFileInsideDecidesWhenAFolderWasChanged) {
    repositoryWith(".next", {"package.json"}, 0, 30);
    home.file("repo/.next/a/b/new", {.text = "x", .modified = now - 2 * day});
    home.setModified("repo/.next", now - 30 * day);
    home.setModified("repo/.next/a", now - 30 * day);
    home.setModified("repo/.next/a/b", now - 30 * day);

    EXPECT_FALSE(item().recommended);
    EXPECT_EQ(item().lastActivity, instantFromSeconds(now - 2 * day));
}

TEST_F(ProjectArtifactProviderTests, aGradleBuildWithABundleIsCostlyAndNeverRecommended) {
    repositoryWith("build", {"build.gradle"}, 300, 300);
    home.file("repo/build/outputs/bundle/release/app.aab");

    const auto found = item();

    EXPECT_EQ(found.safety, Safety::costly);
    EXPECT_FALSE(found.recommended);
    EXPECT_EQ(found.action, CleanupAction::delete_());
    EXPECT_THAT(found.warnings, ElementsAre("Berisi AAB rilis. Pastikan sudah diunggah ke Play Console "
                                            "sebelum menghapus."));
    EXPECT_THAT(found.detail, StartsWith("Hasil build, dibuat ulang otomatis"));
}

// Unknown folders

TEST_F(ProjectArtifactProviderTests, anUnknownFolderIsForReviewHoweverIdleItsProject) {
    repositoryWith("recordings", {}, 300, 300);

    const auto found = item();

    EXPECT_EQ(found.title, "Folder diabaikan git: recordings");
    EXPECT_EQ(found.safety, Safety::review);
    EXPECT_FALSE(found.recommended);
    EXPECT_EQ(body(found), "Folder di luar kode sumber (diabaikan git). Bisa berisi hasil kerja seperti "
                           "screenshot, rekaman, atau rilis — periksa dulu atau pindahkan ke SSD.");
}

TEST_F(ProjectArtifactProviderTests, aDistFolderWithoutItsProjectFileIsUnknownWhereGitIgnoresIt) {
    repositoryWith("dist", {}, 300);
    looseProject("loose");
    home.file("loose/dist/data", {.allocatedBytes = 110 * MB});

    EXPECT_THAT(titles(items()), ElementsAre("Folder diabaikan git: dist"));
}

TEST_F(ProjectArtifactProviderTests, aSecretIsNotShownAtAnySize) {
    repository("repo", "*/\n");
    for (const auto* name : {"old KeyStore", ".env.d", ".terraform", ".Terraform"})
        home.file("repo/" + std::string(name) + "/data", {.allocatedBytes = atLeast(1000 * MB) / 2});

    EXPECT_THAT(items(), IsEmpty());
}

// Large unknown folders

TEST_F(ProjectArtifactProviderTests, aLargeUnknownFolderIsShownByItsSubfolders) {
    repository("repo", "/results/\n", instantFromSeconds(now));
    home.file("repo/results/big/data", {.allocatedBytes = 1500 * MB, .modified = now - 40 * day});
    home.file("repo/results/small/data", {.allocatedBytes = 10 * MB});
    home.file("repo/results/data", {.allocatedBytes = 490 * MB});
    home.setModified("repo/results/big", now - 50 * day);

    EXPECT_THAT(
        items(),
        ElementsAre(CleanupItem{
            .title = "results/big",
            .detail =
                "Folder di luar kode sumber (diabaikan git). Bisa berisi hasil kerja seperti screenshot, "
                "rekaman, atau rilis — periksa dulu atau pindahkan ke SSD.\n" +
                home.path("repo/results/big"),
            .path = home.path("repo/results/big"),
            .bytes = testing::blocksOf(home.path("repo/results/big/data")),
            .category = ItemCategory::projects,
            .safety = Safety::review,
            .action = CleanupAction::trash(),
            .recommended = false,
            .lastActivity = instantFromSeconds(now - 40 * day),
            .offloadable = true,
            .warnings = {},
            .relatedPaths = std::nullopt}));
}

TEST_F(ProjectArtifactProviderTests, anUnknownFolderIsBrokenUpFromAGigabyte) {
    repository("repo", "/results/\n");
    const auto one = home.file("repo/results/one/data", {.allocatedBytes = 990 * MB});
    fill("repo/results/two", below(1000 * MB) - testing::blocksOf(one));
    EXPECT_THAT(titles(items()), ElementsAre("Folder diabaikan git: results"));

    fill("repo/results/two", atLeast(1000 * MB) - testing::blocksOf(one));
    EXPECT_THAT(titles(items()), ElementsAre("results/one"));
}

TEST_F(ProjectArtifactProviderTests, aSubfolderIsShownFrom20MB) {
    repository("repo", "/results/\n");
    home.file("repo/results/data", {.allocatedBytes = 1000 * MB});
    fill("repo/results/enough", atLeast(20 * MB));
    fill("repo/results/little", below(20 * MB));

    EXPECT_THAT(titles(items()), ElementsAre("results/enough"));
}

TEST_F(ProjectArtifactProviderTests, aLargeUnknownFolderWithOneSubfolderIsShownAsAWhole) {
    repository("repo", "/results/\n");
    home.file("repo/results/one/data", {.allocatedBytes = 2000 * MB});
    home.file("repo/results/file");
    home.symlink("repo/results/link", home.path());

    EXPECT_THAT(items(), ElementsAre(::testing::Field(&CleanupItem::path, home.path("repo/results"))));
}

TEST_F(ProjectArtifactProviderTests, aLargeUnknownFolderIsBrokenUpOnce) {
    repository("repo", "/results/\n");
    home.file("repo/results/one/a/data", {.allocatedBytes = 600 * MB});
    home.file("repo/results/one/b/data", {.allocatedBytes = 600 * MB});
    home.file("repo/results/two/data", {.allocatedBytes = 30 * MB});

    EXPECT_THAT(titles(items()), UnorderedElementsAre("results/one", "results/two"));
}

TEST_F(ProjectArtifactProviderTests, secretsInALargeUnknownFolderAreLeftAlone) {
    repository("repo", "/results/\n");
    home.file("repo/results/data", {.allocatedBytes = 1000 * MB});
    std::vector<std::string> secrets = {".env", ".env.d", ".ENVIRONMENT"};
    for (const auto& name : testing::protectedNames)
        secrets.insert(secrets.end(), {name, testing::upper(name)});
    for (const auto& word : testing::protectedWords)
        secrets.push_back("Old " + testing::upper(word) + "s");
    for (const auto& name : secrets)
        home.file("repo/results/" + name + "/data", {.allocatedBytes = atLeast(20 * MB)});
    home.file("repo/results/frames/data", {.allocatedBytes = atLeast(20 * MB)});

    EXPECT_THAT(titles(items()), ElementsAre("results/frames"));
}

TEST_F(ProjectArtifactProviderTests, aLargeUnknownFolderOfOneFolderAndASecretIsNotShownAsAWhole) {
    repository("repo", "/results/\n");
    home.file("repo/results/frames/data", {.allocatedBytes = 1000 * MB});
    home.file("repo/results/secrets/data", {.allocatedBytes = 30 * MB});

    EXPECT_THAT(titles(items()), ElementsAre("results/frames"));
}

TEST_F(ProjectArtifactProviderTests, partsOfALargeArchiveFolderKeepItsWarning) {
    repository("repo", "build/\n");
    home.folder("repo/App.xcodeproj");
    home.file("repo/build/Archives/one/data", {.allocatedBytes = 1000 * MB});
    home.file("repo/build/Archives/two/data", {.allocatedBytes = 30 * MB});

    const auto found = items();

    EXPECT_THAT(titles(found), UnorderedElementsAre("Archives/one", "Archives/two"));
    for (const auto& part : found) {
        EXPECT_THAT(part.warnings, ElementsAre("Berisi dSYM untuk membaca crash build yang beredar. Lebih "
                                               "baik pindahkan ke SSD."));
        EXPECT_TRUE(part.offloadable);
    }
}

TEST_F(ProjectArtifactProviderTests, aLargeKnownFolderIsNotBrokenUp) {
    repository("repo", "node_modules/\n");
    home.file("repo/package.json");
    home.file("repo/node_modules/one/data", {.allocatedBytes = 1000 * MB});
    home.file("repo/node_modules/two/data", {.allocatedBytes = 30 * MB});

    EXPECT_THAT(titles(items()), ElementsAre("Dependency npm (node_modules)"));
}

// What an item says

TEST_F(ProjectArtifactProviderTests, aKnownFolderHasAllItsFields) {
    const testing::ScopedHome own(home.path());
    repositoryWith(".next", {"package.json"}, 100, 10);

    EXPECT_EQ(item(), (CleanupItem{.title = "Build Next.js (.next)",
                                   .detail = "Hasil build, dibuat ulang otomatis saat build berikutnya. "
                                             "Terakhir diubah 1 minggu yang lalu.\n~/repo/.next",
                                   .path = home.path("repo/.next"),
                                   .bytes = testing::blocksOf(home.path("repo/.next/data")),
                                   .category = ItemCategory::projects,
                                   .safety = Safety::regenerable,
                                   .action = CleanupAction::delete_(),
                                   .recommended = true,
                                   .lastActivity = instantFromSeconds(now - 10 * day),
                                   .offloadable = false,
                                   .warnings = {},
                                   .relatedPaths = std::nullopt}));
}

TEST_F(ProjectArtifactProviderTests, onlyWhatIsForReviewGoesToTheTrash) {
    repository("repo", "*/\n");
    home.file("repo/package.json");
    home.file("repo/Podfile");
    for (const auto* name : {"node_modules", "Pods", "dist", "build", "recordings"})
        home.file("repo/" + std::string(name) + "/data", {.allocatedBytes = atLeast(100 * MB)});

    const auto found = items();

    EXPECT_THAT(found, SizeIs(5));
    for (const auto& item : found) {
        const bool isForReview = item.safety == Safety::review;
        EXPECT_EQ(isForReview, item.title == "Folder diabaikan git: recordings") << item.title;
        EXPECT_EQ(item.action, isForReview ? CleanupAction::trash() : CleanupAction::delete_()) << item.title;
        EXPECT_EQ(item.offloadable, isForReview) << item.title;
        EXPECT_EQ(item.category, ItemCategory::projects) << item.title;
    }
}

TEST_F(ProjectArtifactProviderTests, anItemInAWorktreeOfASessionSaysSo) {
    const auto root = repository("repo", "/.claude/\n.venv/\n");
    testing::git(root, {"add", ".gitignore"});
    testing::git(root, {"commit", "--quiet", "--message=one"}, now - 40 * day);
    testing::git(root, {"worktree", "add", "--quiet", ".claude/worktrees/session"});
    projects.repositories.push_back({home.path("repo/.claude/worktrees/session"), std::nullopt});
    home.file("repo/.venv/data", {.allocatedBytes = 30 * MB});
    home.file("repo/.claude/worktrees/session/.venv/data", {.allocatedBytes = 30 * MB});

    const auto found = items();

    ASSERT_THAT(found, SizeIs(2));
    EXPECT_THAT(found[0].detail, Not(HasSubstr("worktree sesi")));
    EXPECT_THAT(body(found[1]), EndsWith("saat dibutuhkan. Berada di worktree sesi Claude."));
}

TEST_F(ProjectArtifactProviderTests, anItemUnderAFolderThatOnlyResemblesTheWorktreesDoesNotSaySo) {
    repository("repo/.claude/worktrees-old/session", ".venv/\n");
    home.file("repo/.claude/worktrees-old/session/.venv/data", {.allocatedBytes = 30 * MB});

    EXPECT_THAT(item().detail, Not(HasSubstr("worktree sesi")));
}

} // namespace
} // namespace korvanti
