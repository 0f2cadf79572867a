#include "providers/ProjectArtifactProvider.h"

#include "RulesSupport.h"
#include "base/Formatters.h"
#include "fs/PathTools.h"
#include "support/Environment.h"
#include "support/Git.h"
#include "support/RunProgram.h"
#include "support/TempFolder.h"

#include <algorithm>
#include <cctype>
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
using testing::nowSeconds;
using testing::paths;
using testing::secondsAgo;
using testing::sizeBelow;
using testing::sizeFrom;
using testing::titles;

constexpr std::int64_t MB = 1'000'000;

const std::string unknownBody =
    "Folder di luar kode sumber (diabaikan git). Bisa berisi hasil kerja seperti screenshot, rekaman, atau "
    "rilis — periksa dulu atau pindahkan ke SSD.";
const std::string activeBody =
    "Proyek sedang aktif. Aman dihapus, tapi perlu install ulang (butuh internet).";

std::string idleBody(const std::string& age) {
    return "Proyek tidak aktif " + age + ". Pasang ulang dengan npm/pnpm install saat dibutuhkan.";
}

std::string builtBody(Instant newest) {
    return "Hasil build, dibuat ulang otomatis saat build berikutnya. Terakhir diubah " +
           Formatters::relative(newest, now()) + ".";
}

/// One row of the table of folder names.
struct Row {
    std::string name, title;
    std::vector<std::string> markers;
    bool isDependency = false;
    Safety safety = Safety::regenerable;
};

std::vector<Row> rows() {
    std::vector<Row> rows;
    for (const auto& fields : testing::ruleTable("artifact-rules.tsv")) {
        Row row{fields.at(0),
                fields.at(1),
                {},
                fields.at(3) == "dependencies",
                fields.at(4) == "costly" ? Safety::costly : Safety::regenerable};
        for (std::string left = fields.at(2); !left.empty();) {
            const auto comma = left.find(',');
            row.markers.push_back(left.substr(0, comma));
            left = comma == std::string::npos ? "" : left.substr(comma + 1);
        }
        rows.push_back(row);
    }
    return rows;
}

std::string upper(std::string text) {
    std::ranges::transform(text, text.begin(), [](unsigned char c) { return std::toupper(c); });
    return text;
}

class ProjectArtifactRulesTests : public ::testing::Test {
protected:
    ProjectArtifactRulesTests() {
        context.home = home.path();
        context.inactiveDays = 21;
        context.now = now();
    }

    /// A repository that ignores by these patterns.
    std::string repository(const std::string& relative, const std::string& ignored,
                           std::optional<Instant> lastActivity = ago(100)) {
        const auto root = home.folder(relative);
        testing::git(root, {"init", "-q"});
        home.file(relative + "/.gitignore", {.text = ignored + "\n"});
        context.projects.repositories.push_back({root, lastActivity});
        return root;
    }
    /// A project outside any repository.
    std::string looseProject(const std::string& relative) {
        context.projects.looseProjects.push_back(home.folder(relative));
        return home.path(relative);
    }
    /// All that lies directly in a folder was changed that long ago.
    void settle(const std::string& folder, std::int64_t days, std::int64_t seconds = 0) {
        for (const auto& entry : PathTools::children(folder))
            home.setModified(entry.substr(home.path().size() + 1), secondsAgo(days, seconds));
    }
    void settleAll(std::int64_t days) {
        for (const auto& project : context.projects.looseProjects)
            settle(project, days);
    }
    /// Makes a folder that heavy, with files of that age.
    std::string weigh(const std::string& relative, std::int64_t bytes, std::int64_t days = 30) {
        weights.add(home.path(relative), bytes, secondsAgo(days));
        return home.path(relative);
    }
    [[nodiscard]] std::vector<CleanupItem> items() const { return ProjectArtifactProvider().items(context); }
    /// The one item that there must be.
    [[nodiscard]] CleanupItem item() const {
        const auto found = items();
        EXPECT_THAT(found, SizeIs(1)) << ::testing::PrintToString(titles(found));
        return found.size() == 1 ? found[0] : CleanupItem();
    }
    [[nodiscard]] std::map<std::string, CleanupItem> itemsByPath() const {
        std::map<std::string, CleanupItem> byPath;
        for (const auto& item : items())
            EXPECT_TRUE(byPath.emplace(item.path, item).second) << item.path;
        return byPath;
    }

    testing::TempFolder home;
    testing::TempFolder pool;
    testing::Weights weights{pool};
    testing::ScopedHome processHome{home.path()};
    testing::GitWithoutSettings settings;
    ScanContext context;
};

TEST_F(ProjectArtifactRulesTests, hasItsNameAndPriority) {
    EXPECT_EQ(ProjectArtifactProvider().name(), "Artefak proyek");
    EXPECT_EQ(ProjectArtifactProvider().priority(), 70);
}

TEST_F(ProjectArtifactRulesTests, findsNothingWithoutProjects) {
    home.file("package.json");
    weigh("node_modules", sizeFrom(20 * MB));

    EXPECT_THAT(items(), IsEmpty());
}

// The table of folder names

TEST_F(ProjectArtifactRulesTests, everyRowStandsInALooseProjectBesideEachOfItsMarkers) {
    std::vector<CleanupItem> expected;
    for (const auto& row : rows()) {
        for (const auto& marker : row.markers.empty() ? std::vector<std::string>{""} : row.markers) {
            const auto name = "p" + std::to_string(context.projects.looseProjects.size());
            const auto project = looseProject(name);
            weigh(name + "/" + row.name, sizeFrom(20 * MB), 30);
            if (!marker.empty())
                home.file(name + "/" + marker);
            settle(project, 100);
            const auto body = row.isDependency ? idleBody("100 hari") : builtBody(ago(30));
            expected.push_back({.title = row.title,
                                .detail = body + "\n~/" + name + "/" + row.name,
                                .path = project + "/" + row.name,
                                .bytes = sizeFrom(20 * MB),
                                .category = ItemCategory::projects,
                                .safety = row.safety,
                                .action = CleanupAction::delete_(),
                                .recommended = true,
                                .lastActivity = ago(30),
                                .offloadable = false,
                                .warnings = {},
                                .relatedPaths = std::nullopt});
        }
    }

    EXPECT_THAT(expected, SizeIs(33));
    EXPECT_EQ(items(), expected);
}

TEST_F(ProjectArtifactRulesTests, everyRowStandsInARepositoryThatIgnoresIt) {
    std::map<std::string, Row> expected;
    std::string ignored;
    for (const auto& row : rows()) {
        const auto folder = "repo/p" + std::to_string(expected.size());
        home.file(folder + "/README");
        if (!row.markers.empty())
            home.file(folder + "/" + row.markers.back());
        expected[weigh(folder + "/" + row.name, sizeFrom(20 * MB))] = row;
        ignored += row.name + "/\n";
    }
    repository("repo", ignored);

    const auto found = itemsByPath();

    EXPECT_THAT(found, SizeIs(26));
    for (const auto& [path, row] : expected) {
        ASSERT_TRUE(found.contains(path)) << path;
        EXPECT_EQ(found.at(path).title, row.title);
        EXPECT_EQ(found.at(path).safety, row.safety) << path;
        EXPECT_EQ(found.at(path).action, CleanupAction::delete_()) << path;
        EXPECT_FALSE(found.at(path).offloadable) << path;
        EXPECT_TRUE(found.at(path).detail.starts_with(row.isDependency ? "Proyek " : "Hasil build,")) << path;
    }
}

TEST_F(ProjectArtifactRulesTests, noRowWithMarkersStandsInALooseProjectWithoutThem) {
    for (const auto& row : rows())
        if (!row.markers.empty()) {
            const auto name = "p" + std::to_string(context.projects.looseProjects.size());
            looseProject(name);
            home.file(name + "/README");
            weigh(name + "/" + row.name, sizeFrom(100 * MB));
        }
    settleAll(100);

    EXPECT_THAT(context.projects.looseProjects, SizeIs(16));
    EXPECT_THAT(titles(items()), IsEmpty());
}

TEST_F(ProjectArtifactRulesTests, aRowWithoutItsMarkersIsAnUnknownFolderWhereGitIgnoresIt) {
    std::vector<std::string> expected;
    std::string ignored;
    for (const auto& row : rows())
        if (!row.markers.empty()) {
            const auto folder = "repo/p" + std::to_string(expected.size());
            home.file(folder + "/README");
            weigh(folder + "/" + row.name, sizeFrom(100 * MB));
            expected.push_back("Folder diabaikan git: " + row.name);
            ignored += row.name + "/\n";
        }
    repository("repo", ignored);

    EXPECT_THAT(expected, SizeIs(16));
    EXPECT_THAT(titles(items()), ::testing::UnorderedElementsAreArray(expected));
}

TEST_F(ProjectArtifactRulesTests, aRowsMinimumIs20MB) {
    looseProject("p");
    home.file("p/package.json");
    weigh("p/dist", sizeBelow(20 * MB));
    weigh("p/coverage", sizeFrom(20 * MB));
    weigh("p/node_modules", sizeBelow(20 * MB));
    weigh("p/Pods", sizeBelow(20 * MB));
    home.file("p/Podfile");

    EXPECT_THAT(titles(items()), ElementsAre("Laporan coverage"));
}

TEST_F(ProjectArtifactRulesTests, aRowWithoutItsMarkersNeeds100MBWhereGitIgnoresIt) {
    repository("repo", "dist/");
    home.file("repo/a/README");
    home.file("repo/b/README");
    weigh("repo/a/dist", sizeBelow(100 * MB));
    weigh("repo/b/dist", sizeFrom(100 * MB));

    EXPECT_THAT(paths(items()), ElementsAre(home.path("repo/b/dist")));
}

TEST_F(ProjectArtifactRulesTests, aMarkerCountsWhateverKindOfEntryItIs) {
    looseProject("p");
    home.symlink("p/a/package.json", home.path("missing"));
    home.folder("p/b/package.json");
    weigh("p/a/dist", sizeFrom(20 * MB));
    weigh("p/b/dist", sizeFrom(20 * MB));

    EXPECT_THAT(titles(items()), SizeIs(2));
}

TEST_F(ProjectArtifactRulesTests, aMarkerCountsOnlyDirectlyBesideTheFolder) {
    looseProject("p");
    home.file("p/package.json");
    home.file("p/web/dist/package.json");
    home.file("p/web/other/package.json");
    weigh("p/web/dist", sizeFrom(20 * MB));

    EXPECT_THAT(titles(items()), IsEmpty());
}

TEST_F(ProjectArtifactRulesTests, aMarkerIsComparedExactly) {
    repository("repo", "dist/");
    home.file("repo/package.jsonx");
    home.file("repo/package.json.bak");
    weigh("repo/dist", sizeFrom(100 * MB));

    EXPECT_THAT(titles(items()), ElementsAre("Folder diabaikan git: dist"));
}

TEST_F(ProjectArtifactRulesTests, aNameIsComparedExactly) {
    repository("repo", "Dist/\n.Venv/\npods/\nBuild/\nnode_modules2/");
    home.file("repo/package.json");
    home.file("repo/Podfile");
    for (const auto* name : {"Dist", ".Venv", "pods", "Build", "node_modules2"})
        weigh(std::string("repo/") + name, sizeFrom(100 * MB));

    EXPECT_THAT(titles(items()),
                UnorderedElementsAre("Folder diabaikan git: Dist", "Folder diabaikan git: .Venv",
                                     "Folder diabaikan git: pods", "Folder diabaikan git: Build",
                                     "Folder diabaikan git: node_modules2"));
}

// What git tells

TEST_F(ProjectArtifactRulesTests, showsTheIgnoredFolderOfARepository) {
    const auto root = repository("Proyek", "rekaman/", ago(3));
    weigh("Proyek/rekaman", sizeFrom(100 * MB), 40);
    weigh("Proyek/rekaman", 4096, 12);

    EXPECT_THAT(items(), ElementsAre(CleanupItem{.title = "Folder diabaikan git: rekaman",
                                                 .detail = unknownBody + "\n~/Proyek/rekaman",
                                                 .path = root + "/rekaman",
                                                 .bytes = sizeFrom(100 * MB) + 4096,
                                                 .category = ItemCategory::projects,
                                                 .safety = Safety::review,
                                                 .action = CleanupAction::trash(),
                                                 .recommended = false,
                                                 .lastActivity = ago(12),
                                                 .offloadable = true,
                                                 .warnings = {},
                                                 .relatedPaths = std::nullopt}));
}

TEST_F(ProjectArtifactRulesTests, anUnknownFolderNeeds100MB) {
    repository("repo", "a/\nb/");
    weigh("repo/a", sizeBelow(100 * MB));
    weigh("repo/b", sizeFrom(100 * MB));

    EXPECT_THAT(titles(items()), ElementsAre("Folder diabaikan git: b"));
}

TEST_F(ProjectArtifactRulesTests, anUnknownFolderOfAnIdleProjectIsNotRecommendedEither) {
    repository("repo", "a/", std::nullopt);
    weigh("repo/a", sizeFrom(100 * MB), 500);

    EXPECT_FALSE(item().recommended);
}

TEST_F(ProjectArtifactRulesTests, passesOverIgnoredFilesAndLinks) {
    repository("repo", "data*\nbuild\nnode_modules");
    home.file("repo/data.bin", {.allocatedBytes = sizeFrom(100 * MB)});
    weigh("elsewhere", sizeFrom(100 * MB));
    home.symlink("repo/data-link", home.path("elsewhere"));
    home.symlink("repo/build", home.path("elsewhere"));
    home.symlink("repo/node_modules", home.path("elsewhere"));
    home.file("repo/package.json");

    EXPECT_THAT(titles(items()), IsEmpty());
}

TEST_F(ProjectArtifactRulesTests, passesOverWhatGitDoesNotIgnore) {
    repository("repo", "");
    home.file("repo/package.json");
    weigh("repo/node_modules", sizeFrom(100 * MB));
    weigh("repo/build", sizeFrom(100 * MB));
    weigh("repo/media", sizeFrom(100 * MB));

    EXPECT_THAT(titles(items()), IsEmpty());
}

TEST_F(ProjectArtifactRulesTests, passesOverAnIgnoredFolderThatIsTracked) {
    const auto root = repository("repo", "aset/");
    home.file("repo/aset/a", {.text = "a"});
    testing::git(root, {"add", "-f", "aset/a"});
    home.file("repo/aset/b", {.allocatedBytes = sizeFrom(100 * MB)});

    EXPECT_THAT(titles(items()), IsEmpty());
}

TEST_F(ProjectArtifactRulesTests, followsTheRulesOfGitBeyondTheFileAtTheTop) {
    repository("repo", "*.log");
    home.file("repo/.git/info/exclude", {.text = "keluaran/\n"});
    home.file("repo/sub/.gitignore", {.text = "hasil/\n"});
    weigh("repo/keluaran", sizeFrom(100 * MB));
    weigh("repo/sub/hasil", sizeFrom(100 * MB));
    weigh("repo/sub/keep", sizeFrom(100 * MB));

    EXPECT_THAT(titles(items()),
                UnorderedElementsAre("Folder diabaikan git: keluaran", "Folder diabaikan git: hasil"));
}

TEST_F(ProjectArtifactRulesTests, takesNamesAsTheyAre) {
    repository("repo", "hasil*/");
    home.file("repo/README");
    for (const auto* name : {"hasil \"a\"", "hasil\nb", "hasil é", "hasil\\c", "hasil "})
        weigh(std::string("repo/") + name, sizeFrom(100 * MB));

    EXPECT_THAT(titles(items()),
                UnorderedElementsAre("Folder diabaikan git: hasil \"a\"", "Folder diabaikan git: hasil\nb",
                                     "Folder diabaikan git: hasil é", "Folder diabaikan git: hasil\\c",
                                     "Folder diabaikan git: hasil "));
}

#ifndef __APPLE__ // whose file systems take no such names
TEST_F(ProjectArtifactRulesTests, aNameThatIsNotUtf8DoesNotEndTheOthers) {
    repository("repo", "hasil*/");
    weigh("repo/hasil\xff", sizeFrom(100 * MB));
    const auto path = weigh("repo/hasil-b", sizeFrom(100 * MB));

    EXPECT_THAT(paths(items()), ::testing::Contains(path));
}
#endif

TEST_F(ProjectArtifactRulesTests, doesNotWalkWhereGitFails) {
    context.projects.repositories = {{home.path("no-repository"), ago(100)},
                                     {home.path("broken"), ago(100)},
                                     {home.path("missing"), ago(100)}};
    for (const std::string folder : {"no-repository", "broken"}) {
        home.file(folder + "/package.json");
        weigh(folder + "/node_modules", sizeFrom(20 * MB));
        weigh(folder + "/.turbo", sizeFrom(20 * MB));
    }
    home.file("broken/.git", {.text = "gitdir: /missing\n"});

    EXPECT_THAT(titles(items()), IsEmpty());
}

TEST_F(ProjectArtifactRulesTests, aFailingRepositoryDoesNotEndTheOthers) {
    context.projects.repositories = {{home.folder("no-repository"), ago(100)}};
    repository("repo", ".turbo/");
    weigh("repo/.turbo", sizeFrom(20 * MB));

    EXPECT_THAT(titles(items()), ElementsAre("Cache Turborepo"));
}

TEST_F(ProjectArtifactRulesTests, takesRepositoriesInTheirOrderAndLooseProjectsAfterThem) {
    looseProject("a");
    repository("z", ".turbo/");
    repository("b", ".turbo/");
    looseProject("A");
    for (const std::string folder : {"a", "z", "b", "A"})
        weigh(folder + "/.turbo", sizeFrom(20 * MB));

    EXPECT_THAT(paths(items()), ElementsAre(home.path("z/.turbo"), home.path("b/.turbo"),
                                            home.path("a/.turbo"), home.path("A/.turbo")));
}

TEST_F(ProjectArtifactRulesTests, passesOverAFolderThatHoldsAnotherRepository) {
    repository("repo", "vendor/\nnode_modules/\nbuild/\nnested/");
    home.file("repo/package.json");
    for (const std::string inner :
         {"repo/vendor/deep/lib", "repo/node_modules/dep", "repo/build/x", "repo/nested"}) {
        repository(inner, "");
        weigh(inner, sizeFrom(100 * MB));
    }

    EXPECT_THAT(titles(items()), IsEmpty());
}

TEST_F(ProjectArtifactRulesTests, aRepositoryOfASimilarNameHoldsNothingBack) {
    repository("repo", "vendor/");
    repository("repo/vendor-lib", "");
    repository("repo2", "");
    weigh("repo/vendor", sizeFrom(100 * MB));

    EXPECT_THAT(titles(items()), ElementsAre("Folder diabaikan git: vendor"));
}

TEST_F(ProjectArtifactRulesTests, aRepositoryAboveHoldsNothingBack) {
    repository("outer", "inner/");
    repository("outer/inner", "arsip/");
    weigh("outer/inner/arsip", sizeFrom(100 * MB));

    EXPECT_THAT(paths(items()), ElementsAre(home.path("outer/inner/arsip")));
}

// What must never be touched

TEST_F(ProjectArtifactRulesTests, protectedNamesYieldNothingInAnyCase) {
    const std::vector<std::string> names = {
        ".idea",   ".vscode",   ".vercel",   ".claude",          ".codex",     ".wrangler",
        ".env",    ".supabase", ".firebase", "local.properties", ".terraform", ".aws-sam",
        "secrets", "keystore",  "keystores", "signing",          "certs",      "certificates"};
    EXPECT_THAT(names, SizeIs(18));
    std::string ignored;
    int count = 0;
    for (const auto& name : names)
        for (const auto& variant : {name, upper(name)}) {
            const auto folder = "repo/p" + std::to_string(count++);
            home.file(folder + "/README");
            weigh(folder + "/" + variant, sizeFrom(100 * MB));
            ignored += variant + "/\n";
        }
    home.file("repo/README");
    weigh("repo/hasil", sizeFrom(100 * MB));
    repository("repo", ignored + "hasil/");

    EXPECT_THAT(titles(items()), ElementsAre("Folder diabaikan git: hasil"));
}

TEST_F(ProjectArtifactRulesTests, protectedWordsAndNamesThatBeginWithEnvYieldNothing) {
    const std::vector<std::string> names = {
        "mysecret",       "Top-SECRET-old", "KeyStore-backup", "old.keystores", "credentials",
        "AWS_Credential", "code-signing",   "Designing",       "private-data",  "PRIVATE",
        ".envrc",         ".env.local",     ".ENV-old",        ".environment",  "\u212Aeystore"};
    std::string ignored;
    for (const auto& name : names) {
        weigh("repo/" + name, sizeFrom(100 * MB));
        ignored += name + "/\n";
    }
    repository("repo", ignored);

    EXPECT_THAT(titles(items()), IsEmpty());
}

TEST_F(ProjectArtifactRulesTests, namesThatOnlyResembleProtectedOnesAreUnknown) {
    const std::vector<std::string> names = {"idea",  ".ideas",    ".vscode-test", "vercel", ".claude2",
                                            "env",   "my.env",    "terraform",    "certs2", "certificate",
                                            "secre", "key-store", "signin",       "privat", "credentia"};
    std::string ignored;
    std::vector<std::string> expected;
    for (const auto& name : names) {
        weigh("repo/" + name, sizeFrom(100 * MB));
        ignored += name + "/\n";
        expected.push_back("Folder diabaikan git: " + name);
    }
    repository("repo", ignored);

    EXPECT_THAT(titles(items()), ::testing::UnorderedElementsAreArray(expected));
}

// What looks like source

TEST_F(ProjectArtifactRulesTests, anIgnoredFolderWithASourceFolderInItIsNoUnknownFolder) {
    std::string ignored;
    for (const std::string name : {"src", "Sources", "lib", "app", "include", "cmd", "pkg"}) {
        ignored += "with-" + name + "/\n";
        weigh("repo/with-" + name + "/" + name, sizeFrom(100 * MB));
    }
    repository("repo", ignored);

    EXPECT_THAT(titles(items()), IsEmpty());
}

TEST_F(ProjectArtifactRulesTests, onlyARealFolderOfExactlyThatNameMakesAFolderLookLikeSource) {
    repository("repo", "a/\nb/\nc/\nd/");
    for (const std::string folder : {"repo/a", "repo/b", "repo/c", "repo/d"})
        weigh(folder, sizeFrom(100 * MB));
    home.symlink("repo/a/src", home.folder("elsewhere"));
    home.file("repo/b/lib");
    home.folder("repo/c/sources");
    home.folder("repo/d/deeper/src");

    EXPECT_THAT(titles(items()), UnorderedElementsAre("Folder diabaikan git: a", "Folder diabaikan git: b",
                                                      "Folder diabaikan git: c", "Folder diabaikan git: d"));
}

TEST_F(ProjectArtifactRulesTests, anIgnoredFolderWithASourceFileInItIsNoUnknownFolder) {
    const std::vector<std::string> extensions = {"swift", "kt",     "kts", "java", "ts", "tsx", "js",
                                                 "jsx",   "svelte", "vue", "rs",   "go", "py",  "c",
                                                 "cc",    "cpp",    "h",   "m",    "mm"};
    EXPECT_THAT(extensions, SizeIs(19));
    std::string ignored;
    for (const auto& extension : extensions)
        for (const auto& variant : {extension, upper(extension)}) {
            const auto folder = "x" + std::to_string(ignored.size());
            ignored += folder + "/\n";
            home.file("repo/" + folder + "/a." + variant);
            weigh("repo/" + folder, sizeFrom(100 * MB));
        }
    repository("repo", ignored);

    EXPECT_THAT(titles(items()), IsEmpty());
}

TEST_F(ProjectArtifactRulesTests, anyEntryWithASourceExtensionMakesAFolderLookLikeSource) {
    repository("repo", "a/\nb/");
    weigh("repo/a/chart.js", sizeFrom(100 * MB));
    weigh("repo/b", sizeFrom(100 * MB));
    home.symlink("repo/b/main.py", home.path("missing"));

    EXPECT_THAT(titles(items()), IsEmpty());
}

TEST_F(ProjectArtifactRulesTests, aNameThatIsNoExtensionDoesNotMakeAFolderLookLikeSource) {
    repository("repo", "a/\nb/\nc/\nd/");
    for (const std::string folder : {"repo/a", "repo/b", "repo/c", "repo/d"})
        weigh(folder, sizeFrom(100 * MB));
    home.file("repo/a/.swift");
    home.file("repo/b/js");
    home.file("repo/c/a.js.map");
    home.file("repo/d/a.json");

    EXPECT_THAT(titles(items()), SizeIs(4));
}

TEST_F(ProjectArtifactRulesTests, aProjectInAnIgnoredFolderIsNoArtifact) {
    std::string ignored;
    for (const std::string marker :
         {"package.json", "build.gradle", "build.gradle.kts", "settings.gradle", "settings.gradle.kts",
          "Cargo.toml", "Package.swift", "Podfile", "pubspec.yaml", "pyproject.toml", "go.mod",
          "Contoh.xcodeproj", "Contoh.xcworkspace"}) {
        const auto folder = "x" + std::to_string(ignored.size());
        ignored += folder + "/\n";
        home.file("repo/" + folder + "/" + marker);
        weigh("repo/" + folder, sizeFrom(100 * MB));
    }
    repository("repo", ignored);

    EXPECT_THAT(titles(items()), IsEmpty());
}

TEST_F(ProjectArtifactRulesTests, anIgnoredFolderWithAGitEntryInItIsNoUnknownFolder) {
    repository("repo", "a/\nb/\nc/");
    for (const std::string folder : {"repo/a", "repo/b", "repo/c"})
        weigh(folder, sizeFrom(100 * MB));
    home.folder("repo/a/.git");
    home.file("repo/b/.git", {.text = "gitdir: /missing\n"});
    home.symlink("repo/c/.git", home.path("missing"));

    EXPECT_THAT(titles(items()), IsEmpty());
}

TEST_F(ProjectArtifactRulesTests, findsArtifactsInAnIgnoredFolderThatLooksLikeSource) {
    repository("repo", "contoh/");
    home.file("repo/contoh/package.json");
    weigh("repo/contoh/node_modules", sizeFrom(20 * MB));
    weigh("repo/contoh/media", sizeFrom(100 * MB));
    weigh("repo/contoh/sub/build", sizeFrom(100 * MB));

    EXPECT_THAT(titles(items()),
                UnorderedElementsAre("Dependency npm (node_modules)", "Folder build (sub/build)"));
}

TEST_F(ProjectArtifactRulesTests, walksAnIgnoredFolderFourLevelsDown) {
    repository("repo", "contoh/");
    home.file("repo/contoh/main.go");
    weigh("repo/contoh/1/2/3/4/.turbo", sizeFrom(20 * MB));
    weigh("repo/contoh/1/2/3/4/5/.turbo", sizeFrom(20 * MB));

    EXPECT_THAT(paths(items()), ElementsAre(home.path("repo/contoh/1/2/3/4/.turbo")));
}

TEST_F(ProjectArtifactRulesTests, aKnownNameIsNotWalkedEvenIfItLooksLikeSource) {
    repository("repo", "dist/\nbuild/\ntarget/\n.venv/");
    for (const std::string name : {"dist", "build", "target", ".venv"}) {
        home.file("repo/" + name + "/package.json");
        home.file("repo/" + name + "/src/main.js");
        weigh("repo/" + name + "/node_modules", sizeFrom(100 * MB));
    }

    EXPECT_THAT(titles(items()),
                UnorderedElementsAre("Folder diabaikan git: dist", "Folder build (repo/build)",
                                     "Folder diabaikan git: target", "Virtualenv Python"));
}

TEST_F(ProjectArtifactRulesTests, aRowStandsEvenIfItIsAProjectItself) {
    looseProject("p");
    home.file("p/package.json");
    home.file("p/node_modules/package.json");
    weigh("p/node_modules", sizeFrom(20 * MB));

    EXPECT_THAT(titles(items()), ElementsAre("Dependency npm (node_modules)"));
}

// Walking a loose project

TEST_F(ProjectArtifactRulesTests, walksALooseProjectFourLevelsDown) {
    looseProject("p");
    weigh("p/.turbo", sizeFrom(20 * MB));
    weigh("p/1/2/3/4/.turbo", sizeFrom(20 * MB));
    weigh("p/1/2/3/4/5/.turbo", sizeFrom(20 * MB));

    EXPECT_THAT(paths(items()), UnorderedElementsAre(home.path("p/.turbo"), home.path("p/1/2/3/4/.turbo")));
}

TEST_F(ProjectArtifactRulesTests, leavesHiddenFoldersOfALooseProjectAlone) {
    looseProject("p");
    home.file("p/.hidden/package.json");
    weigh("p/.hidden/node_modules", sizeFrom(20 * MB));
    home.file("p/.claude/worktrees/x/package.json");
    weigh("p/.claude/worktrees/x/node_modules", sizeFrom(20 * MB));
    home.file("p/.git/package.json");
    weigh("p/.git/node_modules", sizeFrom(20 * MB));

    EXPECT_THAT(titles(items()), IsEmpty());
}

TEST_F(ProjectArtifactRulesTests, leavesAHiddenFolderOfTheTableAloneWhereItsMarkersAreMissing) {
    looseProject("p");
    weigh("p/.build/x/.turbo", sizeFrom(20 * MB));

    EXPECT_THAT(titles(items()), IsEmpty());
}

TEST_F(ProjectArtifactRulesTests, walksAPlainFolderOfTheTableWhereItsMarkersAreMissing) {
    looseProject("p");
    weigh("p/target/.turbo", sizeFrom(20 * MB));
    weigh("p/1/2/3/dist/.turbo", sizeFrom(20 * MB));
    weigh("p/1/2/3/4/dist/.turbo", sizeFrom(20 * MB));

    EXPECT_THAT(paths(items()),
                UnorderedElementsAre(home.path("p/target/.turbo"), home.path("p/1/2/3/dist/.turbo")));
}

TEST_F(ProjectArtifactRulesTests, doesNotEnterWhatItFound) {
    looseProject("p");
    home.file("p/package.json");
    home.file("p/node_modules/a/package.json");
    weigh("p/node_modules/a/node_modules", sizeFrom(20 * MB));
    weigh("p/sub/build/.turbo", sizeFrom(20 * MB)); // too small for an unknown build folder

    EXPECT_THAT(paths(items()), ElementsAre(home.path("p/node_modules")));
}

TEST_F(ProjectArtifactRulesTests, followsNoLinkInALooseProject) {
    looseProject("p");
    weigh("elsewhere/.turbo", sizeFrom(20 * MB));
    home.symlink("p/way", home.path("elsewhere"));
    home.symlink("p/.turbo", home.path("elsewhere/.turbo"));
    home.symlink("p/build", home.path("elsewhere"));
    home.file("p/.vite", {.allocatedBytes = sizeFrom(20 * MB)});

    EXPECT_THAT(titles(items()), IsEmpty());
}

TEST_F(ProjectArtifactRulesTests, showsNoUnknownFolderOfALooseProject) {
    looseProject("p");
    weigh("p/media", sizeFrom(100 * MB));

    EXPECT_THAT(titles(items()), IsEmpty());
}

TEST_F(ProjectArtifactRulesTests, passesOverALooseProjectThatIsGoneOrNoFolder) {
    context.projects.looseProjects = {home.path("missing"), home.file("file")};
    looseProject("p");
    weigh("p/.turbo", sizeFrom(20 * MB));

    EXPECT_THAT(paths(items()), ElementsAre(home.path("p/.turbo")));
}

#ifndef __APPLE__ // whose file systems take no such names
TEST_F(ProjectArtifactRulesTests, keepsTheBytesOfANameThatIsNotUtf8) {
    looseProject("p\xff");
    weigh("p\xff/\xfe/.turbo", sizeFrom(20 * MB));

    EXPECT_THAT(paths(items()), ElementsAre(home.path("p\xff/\xfe/.turbo")));
}
#endif

// Build folders

TEST_F(ProjectArtifactRulesTests, aBuildFolderBesideAGradleFileIsGradles) {
    for (const std::string name : {"build.gradle", "build.gradle.kts"}) {
        const auto folder = "p-" + name;
        looseProject(folder);
        home.file(folder + "/modul/" + name);
        weigh(folder + "/modul/build", sizeFrom(20 * MB));
    }
    settleAll(100);

    const auto found = items();

    ASSERT_THAT(titles(found), ElementsAre("Build Gradle (modul/build)", "Build Gradle (modul/build)"));
    EXPECT_EQ(found[0], (CleanupItem{.title = "Build Gradle (modul/build)",
                                     .detail = builtBody(ago(30)) + "\n~/p-build.gradle/modul/build",
                                     .path = home.path("p-build.gradle/modul/build"),
                                     .bytes = sizeFrom(20 * MB),
                                     .category = ItemCategory::projects,
                                     .safety = Safety::regenerable,
                                     .action = CleanupAction::delete_(),
                                     .recommended = true,
                                     .lastActivity = ago(30),
                                     .offloadable = false,
                                     .warnings = {},
                                     .relatedPaths = std::nullopt}));
}

TEST_F(ProjectArtifactRulesTests, aBuildFolderIsJudgedAlikeWhereGitIgnoresIt) {
    const auto root = repository("repo", "build/");
    home.file("repo/build.gradle");
    weigh("repo/build", sizeFrom(20 * MB));
    home.file("repo/sub/README");
    weigh("repo/sub/build", sizeFrom(100 * MB));

    EXPECT_THAT(titles(items()),
                UnorderedElementsAre("Build Gradle (repo/build)", "Folder build (sub/build)"));
}

TEST_F(ProjectArtifactRulesTests, eachKindOfBuildFolderHasItsMinimum) {
    for (const std::string name : {"a", "b"}) {
        const auto size = [&](std::int64_t bytes) {
            return name == "a" ? sizeBelow(bytes) : sizeFrom(bytes);
        };
        looseProject(name);
        home.file(name + "/gradle/build.gradle");
        weigh(name + "/gradle/build", size(20 * MB));
        home.file(name + "/npm/package.json");
        weigh(name + "/npm/build", size(20 * MB));
        weigh(name + "/other/build", size(100 * MB));
        home.file(name + "/xcode/project.yml");
        weigh(name + "/xcode/build/DerivedData", size(20 * MB));
        weigh(name + "/xcode/build/Archives", size(20 * MB));
        weigh(name + "/xcode/build/Products", size(50 * MB));
    }

    const auto found = items();

    EXPECT_THAT(found, SizeIs(6));
    for (const auto& path : paths(found))
        EXPECT_TRUE(path.starts_with(home.path("b/"))) << path;
}

TEST_F(ProjectArtifactRulesTests, aGradleBuildWithReleaseOutputsIsCostlyAndNamesThem) {
    repository("repo", "build/", std::nullopt);
    home.file("repo/app/build.gradle.kts");
    weigh("repo/app/build", sizeFrom(20 * MB), 400);
    home.file("repo/app/build/outputs/bundle/app.aab", {.modified = secondsAgo(400)});
    home.folder("repo/app/build/outputs/apk/release");
    home.folder("repo/app/build/outputs/mapping");

    EXPECT_EQ(item(), (CleanupItem{.title = "Build Gradle (app/build)",
                                   .detail = builtBody(ago(400)) + "\n~/repo/app/build",
                                   .path = home.path("repo/app/build"),
                                   .bytes = sizeFrom(20 * MB),
                                   .category = ItemCategory::projects,
                                   .safety = Safety::costly,
                                   .action = CleanupAction::delete_(),
                                   .recommended = false,
                                   .lastActivity = ago(400),
                                   .offloadable = false,
                                   .warnings = {"Berisi AAB rilis, APK rilis, mapping R8. Pastikan sudah "
                                                "diunggah ke Play Console sebelum menghapus."},
                                   .relatedPaths = std::nullopt}));
}

class GradleOutputRulesTests : public ProjectArtifactRulesTests {
protected:
    GradleOutputRulesTests() {
        looseProject("p");
        home.file("p/build.gradle");
        weigh("p/build", sizeFrom(20 * MB));
    }
    void expectWarning(const std::string& labels) {
        const auto found = item();
        EXPECT_THAT(
            found.warnings,
            ElementsAre("Berisi " + labels + ". Pastikan sudah diunggah ke Play Console sebelum menghapus."));
        EXPECT_EQ(found.safety, Safety::costly);
        EXPECT_FALSE(found.recommended);
    }
    void expectNoWarning() {
        const auto found = item();
        EXPECT_THAT(found.warnings, IsEmpty());
        EXPECT_EQ(found.safety, Safety::regenerable);
    }
};

TEST_F(GradleOutputRulesTests, anEmptyBundleFolderIsNoReleaseOutput) {
    home.folder("p/build/outputs/bundle");

    expectNoWarning();
}

TEST_F(GradleOutputRulesTests, anyEntryOfTheBundleFolderIsAReleaseOutput) {
    home.folder("p/build/outputs/bundle/debug");

    expectWarning("AAB rilis");
}

TEST_F(GradleOutputRulesTests, anApkEntryThatNamesReleaseIsAReleaseOutput) {
    home.folder("p/build/outputs/apk/freeRelease");

    expectWarning("APK rilis");
}

TEST_F(GradleOutputRulesTests, anApkEntryThatNamesProdIsAReleaseOutput) {
    home.file("p/build/outputs/apk/APP-PROD.apk");

    expectWarning("APK rilis");
}

TEST_F(GradleOutputRulesTests, otherApkEntriesAreNoReleaseOutput) {
    home.folder("p/build/outputs/apk/debug/release");
    home.folder("p/build/outputs/apk/staging");
    home.folder("p/build/outputs/release");

    expectNoWarning();
}

TEST_F(GradleOutputRulesTests, theMappingFolderIsAReleaseOutputEvenIfEmpty) {
    home.folder("p/build/outputs/mapping");

    expectWarning("mapping R8");
}

TEST_F(GradleOutputRulesTests, aMappingIsAReleaseOutputEvenIfItIsADanglingLink) {
    home.symlink("p/build/outputs/mapping", home.path("missing"));

    expectWarning("mapping R8");
}

TEST_F(GradleOutputRulesTests, namesTheLabelsInTheirOrder) {
    home.folder("p/build/outputs/mapping");
    home.file("p/build/outputs/bundle/a");

    expectWarning("AAB rilis, mapping R8");
}

TEST_F(ProjectArtifactRulesTests, eachSignOfXcodeHasTheChildrenOfTheBuildFolderListed) {
    for (const std::string sign :
         {"Contoh.xcodeproj", "Contoh.xcworkspace", "project.yml", "Package.swift"}) {
        const auto folder = "p" + sign;
        looseProject(folder);
        home.file(folder + "/" + sign);
        weigh(folder + "/build/Produk", sizeFrom(50 * MB));
    }

    EXPECT_THAT(paths(items()), ElementsAre(home.path("pContoh.xcodeproj/build/Produk"),
                                            home.path("pContoh.xcworkspace/build/Produk"),
                                            home.path("pproject.yml/build/Produk"),
                                            home.path("pPackage.swift/build/Produk")));
}

TEST_F(ProjectArtifactRulesTests, otherNamesAreNoSignOfXcode) {
    looseProject("p");
    for (const auto* name : {"p/project.yaml", "p/package.swift", "p/a.xcodeproj.bak", "p/a.xcconfig"})
        home.file(name);
    weigh("p/build", sizeFrom(100 * MB));

    EXPECT_THAT(titles(items()), ElementsAre("Folder build (p/build)"));
}

TEST_F(ProjectArtifactRulesTests, showsTheChildrenOfAnXcodeBuildFolderByTheirNames) {
    repository("Aplikasi", "build/", ago(100));
    home.folder("Aplikasi/Aplikasi.xcodeproj");
    for (const std::string name : {"DerivedData", "MyDerivedData-2", "Archives", "Archives2", ".sembunyi"})
        weigh("Aplikasi/build/" + name, sizeFrom(50 * MB));

    const auto found = itemsByPath();
    const auto at = [&](const std::string& name) { return found.at(home.path("Aplikasi/build/" + name)); };
    const auto titleOf = [&](const std::string& name) { return at(name).title; };

    ASSERT_THAT(found, SizeIs(5));
    EXPECT_EQ(titleOf("DerivedData"), "DerivedData proyek (Aplikasi/build/DerivedData)");
    EXPECT_EQ(titleOf("MyDerivedData-2"), "DerivedData proyek (Aplikasi/build/MyDerivedData-2)");
    EXPECT_EQ(titleOf("Archives"), "Arsip rilis iOS (Archives)");
    EXPECT_EQ(titleOf("Archives2"), "Hasil kerja build/Archives2");
    EXPECT_EQ(titleOf(".sembunyi"), "Hasil kerja build/.sembunyi");
    EXPECT_EQ(at("DerivedData"), (CleanupItem{.title = "DerivedData proyek (Aplikasi/build/DerivedData)",
                                              .detail = builtBody(ago(30)) + "\n~/Aplikasi/build/DerivedData",
                                              .path = home.path("Aplikasi/build/DerivedData"),
                                              .bytes = sizeFrom(50 * MB),
                                              .category = ItemCategory::projects,
                                              .safety = Safety::regenerable,
                                              .action = CleanupAction::delete_(),
                                              .recommended = true,
                                              .lastActivity = ago(30),
                                              .offloadable = false,
                                              .warnings = {},
                                              .relatedPaths = std::nullopt}));
    EXPECT_EQ(at("Archives"),
              (CleanupItem{.title = "Arsip rilis iOS (Archives)",
                           .detail = unknownBody + "\n~/Aplikasi/build/Archives",
                           .path = home.path("Aplikasi/build/Archives"),
                           .bytes = sizeFrom(50 * MB),
                           .category = ItemCategory::projects,
                           .safety = Safety::review,
                           .action = CleanupAction::trash(),
                           .recommended = false,
                           .lastActivity = ago(30),
                           .offloadable = true,
                           .warnings = {"Berisi dSYM untuk membaca crash build yang beredar. Lebih baik "
                                        "pindahkan ke SSD."},
                           .relatedPaths = std::nullopt}));
    EXPECT_EQ(at("Archives2"), (CleanupItem{.title = "Hasil kerja build/Archives2",
                                            .detail = unknownBody + "\n~/Aplikasi/build/Archives2",
                                            .path = home.path("Aplikasi/build/Archives2"),
                                            .bytes = sizeFrom(50 * MB),
                                            .category = ItemCategory::projects,
                                            .safety = Safety::review,
                                            .action = CleanupAction::trash(),
                                            .recommended = false,
                                            .lastActivity = ago(30),
                                            .offloadable = true,
                                            .warnings = {},
                                            .relatedPaths = std::nullopt}));
}

TEST_F(ProjectArtifactRulesTests, comparesTheNamesOfTheChildrenOfAnXcodeBuildFolderExactly) {
    looseProject("p");
    home.file("p/Package.swift");
    weigh("p/build/archives", sizeFrom(50 * MB));
    weigh("p/build/deriveddata", sizeFrom(50 * MB));

    EXPECT_THAT(titles(items()),
                UnorderedElementsAre("Hasil kerja build/archives", "Hasil kerja build/deriveddata"));
}

TEST_F(ProjectArtifactRulesTests, onlyRealFoldersOfAnXcodeBuildFolderAreShown) {
    looseProject("p");
    home.file("p/Package.swift");
    weigh("p/build", sizeFrom(100 * MB));
    weigh("elsewhere", sizeFrom(100 * MB));
    home.symlink("p/build/Archives", home.path("elsewhere"));
    home.file("p/build/DerivedData", {.allocatedBytes = sizeFrom(50 * MB)});

    EXPECT_THAT(titles(items()), IsEmpty());
}

TEST_F(ProjectArtifactRulesTests, aSecretAmongTheChildrenOfAnXcodeBuildFolderYieldsNothing) {
    looseProject("p");
    home.file("p/Package.swift");
    for (const std::string name :
         {"Signing", "certs", "CERTIFICATES", "my-keystore.d", "PrivateFrameworks", "Credentials", "secrets",
          ".env", ".Env.release", ".idea", "DerivedData-private"})
        weigh("p/build/" + name, sizeFrom(50 * MB));
    weigh("p/build/Produk", sizeFrom(50 * MB));

    EXPECT_THAT(titles(items()), ElementsAre("Hasil kerja build/Produk"));
}

TEST_F(ProjectArtifactRulesTests, aBuildFolderOfAnotherKnownProjectIsItsResult) {
    for (const std::string marker : {"package.json", "Cargo.toml", "CMakeLists.txt"}) {
        const auto folder = "p" + marker;
        looseProject(folder);
        home.file(folder + "/modul/" + marker);
        weigh(folder + "/modul/build", sizeFrom(20 * MB));
    }
    settleAll(100);

    const auto found = items();

    ASSERT_THAT(titles(found), ElementsAre("Hasil build (modul/build)", "Hasil build (modul/build)",
                                           "Hasil build (modul/build)"));
    EXPECT_EQ(found[0], (CleanupItem{.title = "Hasil build (modul/build)",
                                     .detail = builtBody(ago(30)) + "\n~/ppackage.json/modul/build",
                                     .path = home.path("ppackage.json/modul/build"),
                                     .bytes = sizeFrom(20 * MB),
                                     .category = ItemCategory::projects,
                                     .safety = Safety::regenerable,
                                     .action = CleanupAction::delete_(),
                                     .recommended = true,
                                     .lastActivity = ago(30),
                                     .offloadable = false,
                                     .warnings = {},
                                     .relatedPaths = std::nullopt}));
}

TEST_F(ProjectArtifactRulesTests, aBuildFolderOfAnUnknownProjectIsShownEvenWithoutGit) {
    looseProject("p");
    for (const auto* name : {"p/settings.gradle", "p/pom.xml", "p/pubspec.yaml", "p/Makefile"})
        home.file(name);
    weigh("p/build", sizeFrom(100 * MB));

    EXPECT_EQ(item(), (CleanupItem{.title = "Folder build (p/build)",
                                   .detail = unknownBody + "\n~/p/build",
                                   .path = home.path("p/build"),
                                   .bytes = sizeFrom(100 * MB),
                                   .category = ItemCategory::projects,
                                   .safety = Safety::review,
                                   .action = CleanupAction::trash(),
                                   .recommended = false,
                                   .lastActivity = ago(30),
                                   .offloadable = true,
                                   .warnings = {},
                                   .relatedPaths = std::nullopt}));
}

TEST_F(ProjectArtifactRulesTests, gradleComesBeforeXcodeAndXcodeBeforeTheOthers) {
    looseProject("p");
    for (const auto* name : {"p/a/build.gradle", "p/a/Package.swift", "p/a/package.json", "p/b/Package.swift",
                             "p/b/package.json", "p/b/CMakeLists.txt"})
        home.file(name);
    for (const auto* name : {"p/c/App.xcworkspace", "p/c/package.json", "p/c/Cargo.toml"})
        home.file(name);
    for (const auto* name : {"p/a/build/Produk", "p/b/build/Produk", "p/c/build/Produk"})
        weigh(name, sizeFrom(50 * MB));

    EXPECT_THAT(titles(items()), UnorderedElementsAre("Build Gradle (a/build)", "Hasil kerja build/Produk",
                                                      "Hasil kerja build/Produk"));
}

TEST_F(ProjectArtifactRulesTests, aBuildFolderThatIsAProjectItselfIsStillJudgedAsABuildFolder) {
    repository("repo", "build/");
    home.file("repo/build/package.json");
    weigh("repo/build", sizeFrom(100 * MB));

    EXPECT_THAT(titles(items()), ElementsAre("Folder build (repo/build)"));
}

// Large unknown folders

TEST_F(ProjectArtifactRulesTests, anUnknownFolderFrom1GBOnIsBrokenUp) {
    repository("repo", "kecil/\nbesar/", ago(3));
    for (const std::string folder : {"repo/kecil", "repo/besar"}) {
        weigh(folder + "/a", 500 * 4096 * 100, 30);
        weigh(folder + "/b", sizeFrom(20 * MB), 60);
    }
    const auto rest = [](std::int64_t size) { return size - 500 * 4096 * 100 - sizeFrom(20 * MB); };
    weigh("repo/kecil", rest(sizeBelow(1000 * MB)), 90);
    weigh("repo/besar", rest(sizeFrom(1000 * MB)), 90);

    const auto found = itemsByPath();

    ASSERT_THAT(found, SizeIs(3));
    EXPECT_EQ(found.at(home.path("repo/kecil")).title, "Folder diabaikan git: kecil");
    EXPECT_EQ(found.at(home.path("repo/besar/a")).title, "besar/a");
    EXPECT_EQ(found.at(home.path("repo/besar/b")), (CleanupItem{.title = "besar/b",
                                                                .detail = unknownBody + "\n~/repo/besar/b",
                                                                .path = home.path("repo/besar/b"),
                                                                .bytes = sizeFrom(20 * MB),
                                                                .category = ItemCategory::projects,
                                                                .safety = Safety::review,
                                                                .action = CleanupAction::trash(),
                                                                .recommended = false,
                                                                .lastActivity = ago(60),
                                                                .offloadable = true,
                                                                .warnings = {},
                                                                .relatedPaths = std::nullopt}));
}

TEST_F(ProjectArtifactRulesTests, aPartOfABrokenUpFolderNeeds20MB) {
    repository("repo", "rekaman/");
    weigh("repo/rekaman/a", sizeFrom(1500 * MB));
    weigh("repo/rekaman/b", sizeBelow(20 * MB));

    EXPECT_THAT(titles(items()), ElementsAre("rekaman/a"));
}

TEST_F(ProjectArtifactRulesTests, aFolderWithOneSubfolderStaysWhole) {
    repository("repo", "rekaman/");
    weigh("repo/rekaman/a", sizeFrom(1500 * MB));
    weigh("repo/rekaman", sizeFrom(500 * MB));
    weigh("elsewhere", sizeFrom(100 * MB));
    home.symlink("repo/rekaman/b", home.path("elsewhere"));

    EXPECT_THAT(titles(items()), ElementsAre("Folder diabaikan git: rekaman"));
}

TEST_F(ProjectArtifactRulesTests, aFolderWithTwoSubfoldersIsBrokenUpHoweverSmallTheyAre) {
    repository("repo", "rekaman/");
    weigh("repo/rekaman", sizeFrom(1500 * MB));
    home.folder("repo/rekaman/a");
    home.folder("repo/rekaman/.b");

    EXPECT_THAT(titles(items()), IsEmpty());
}

TEST_F(ProjectArtifactRulesTests, aPartOfABrokenUpFolderIsNotBrokenUpAgain) {
    repository("repo", "rekaman/");
    weigh("repo/rekaman/a/b", sizeFrom(600 * MB));
    weigh("repo/rekaman/a/c", sizeFrom(600 * MB));
    home.folder("repo/rekaman/d");

    EXPECT_THAT(titles(items()), ElementsAre("rekaman/a"));
}

TEST_F(ProjectArtifactRulesTests, aPartOfABrokenUpFolderIsNotJudgedByItsName) {
    repository("repo", "arsip/");
    home.file("repo/arsip/README");
    weigh("repo/arsip/__pycache__", sizeFrom(600 * MB));
    weigh("repo/arsip/build", sizeFrom(600 * MB));

    const auto found = items();

    EXPECT_THAT(titles(found), UnorderedElementsAre("arsip/__pycache__", "arsip/build"));
    for (const auto& item : found)
        EXPECT_EQ(item.safety, Safety::review);
}

TEST_F(ProjectArtifactRulesTests, aSecretInABrokenUpFolderYieldsNothing) {
    repository("repo", "arsip/");
    weigh("repo/arsip/rekaman", sizeFrom(1000 * MB));
    for (const std::string name : {"Signing", "certs", "keystores-old", "PRIVATE", "credential", "Secrets",
                                   ".env", ".ENVIRONMENT", ".Idea", ".terraform"})
        weigh("repo/arsip/" + name, sizeFrom(20 * MB));

    EXPECT_THAT(titles(items()), ElementsAre("arsip/rekaman"));
}

TEST_F(ProjectArtifactRulesTests, aFolderOfOnePartAndASecretIsNotOfferedWhole) {
    repository("repo", "arsip/");
    weigh("repo/arsip/rekaman", sizeFrom(1000 * MB));
    weigh("repo/arsip/secrets", sizeFrom(20 * MB));

    EXPECT_THAT(titles(items()), ElementsAre("arsip/rekaman"));
}

TEST_F(ProjectArtifactRulesTests, knownFoldersAreNeverBrokenUp) {
    looseProject("p");
    home.file("p/package.json");
    for (const std::string name : {"p/node_modules", "p/dist", "p/build"}) {
        weigh(name + "/a", sizeFrom(600 * MB));
        weigh(name + "/b", sizeFrom(600 * MB));
    }

    EXPECT_THAT(titles(items()), UnorderedElementsAre("Dependency npm (node_modules)", "Hasil build (dist)",
                                                      "Hasil build (p/build)"));
}

TEST_F(ProjectArtifactRulesTests, unknownBuildFoldersAndArchivesAreBrokenUpToo) {
    looseProject("p");
    weigh("p/a/build/x", sizeFrom(600 * MB));
    weigh("p/a/build/y", sizeFrom(600 * MB));
    home.file("p/b/project.yml");
    weigh("p/b/build/Archives/2025-01-01", sizeFrom(600 * MB));
    weigh("p/b/build/Archives/2025-02-02", sizeFrom(600 * MB));

    const auto found = itemsByPath();

    ASSERT_THAT(found, SizeIs(4));
    EXPECT_EQ(found.at(home.path("p/a/build/x")).title, "build/x");
    const auto& archive = found.at(home.path("p/b/build/Archives/2025-01-01"));
    EXPECT_EQ(archive.title, "Archives/2025-01-01");
    EXPECT_THAT(archive.warnings, ElementsAre("Berisi dSYM untuk membaca crash build yang beredar. Lebih "
                                              "baik pindahkan ke SSD."));
    EXPECT_TRUE(archive.offloadable);
    EXPECT_EQ(archive.action, CleanupAction::trash());
}

// What the activity of the project decides

TEST_F(ProjectArtifactRulesTests, dependenciesOfAnActiveProjectAreCostly) {
    repository("repo", "node_modules/", ago(21, day - 1));
    home.file("repo/package.json");
    weigh("repo/node_modules", sizeFrom(20 * MB), 300);

    const auto found = item();

    EXPECT_EQ(found.safety, Safety::costly);
    EXPECT_FALSE(found.recommended);
    EXPECT_EQ(found.detail, activeBody + "\n~/repo/node_modules");
    EXPECT_EQ(found.lastActivity, ago(300));
}

TEST_F(ProjectArtifactRulesTests, dependenciesOfAnIdleProjectAreRecommended) {
    repository("repo", "node_modules/", ago(22));
    home.file("repo/package.json");
    weigh("repo/node_modules", sizeFrom(20 * MB), 0);

    const auto found = item();

    EXPECT_EQ(found.safety, Safety::regenerable);
    EXPECT_TRUE(found.recommended);
    EXPECT_EQ(found.detail, idleBody("22 hari") + "\n~/repo/node_modules");
    EXPECT_EQ(found.lastActivity, ago(0));
}

TEST_F(ProjectArtifactRulesTests, daysOfIdlenessAreCutToWholeOnes) {
    repository("repo", "node_modules/", ago(1499, day - 1));
    home.file("repo/package.json");
    weigh("repo/node_modules", sizeFrom(20 * MB));

    EXPECT_EQ(item().detail, idleBody("1499 hari") + "\n~/repo/node_modules");
}

TEST_F(ProjectArtifactRulesTests, aProjectWithoutAnySignOfWorkIsIdleForLong) {
    repository("repo", "node_modules/", std::nullopt);
    home.file("repo/package.json");
    weigh("repo/node_modules", sizeFrom(20 * MB), 0);

    const auto found = item();

    EXPECT_EQ(found.detail, idleBody("lama") + "\n~/repo/node_modules");
    EXPECT_EQ(found.safety, Safety::regenerable);
    EXPECT_TRUE(found.recommended);
}

TEST_F(ProjectArtifactRulesTests, costlyDependenciesStayCostly) {
    repository("idle", "Pods/", ago(22));
    repository("active", "Pods/", ago(1));
    for (const std::string folder : {"idle", "active"}) {
        home.file(folder + "/Podfile");
        weigh(folder + "/Pods", sizeFrom(20 * MB));
    }

    const auto found = items();

    ASSERT_THAT(found, SizeIs(2));
    EXPECT_EQ(found[0].safety, Safety::costly);
    EXPECT_TRUE(found[0].recommended);
    EXPECT_EQ(found[1].safety, Safety::costly);
    EXPECT_FALSE(found[1].recommended);
}

TEST_F(ProjectArtifactRulesTests, theSettingsSayWhenAProjectIsIdle) {
    context.inactiveDays = 5;
    repository("idle", ".venv/", ago(6));
    repository("active", ".venv/", ago(5, day - 1));
    weigh("idle/.venv", sizeFrom(20 * MB));
    weigh("active/.venv", sizeFrom(20 * MB));

    const auto found = items();

    ASSERT_THAT(found, SizeIs(2));
    EXPECT_TRUE(found[0].recommended);
    EXPECT_FALSE(found[1].recommended);
}

TEST_F(ProjectArtifactRulesTests, aBuildOfAnActiveProjectIsRecommendedAfterMoreThanSevenDays) {
    repository("repo", ".turbo/\n.vite/\n.expo/", ago(0));
    weights.add(home.path("repo/.turbo"), sizeFrom(20 * MB), secondsAgo(7, day - 1));
    weights.add(home.path("repo/.vite"), sizeFrom(20 * MB), secondsAgo(8));
    weights.add(home.path("repo/.expo"), sizeFrom(20 * MB), nowSeconds + 30 * day);

    const auto found = itemsByPath();

    ASSERT_THAT(found, SizeIs(3));
    const auto& young = found.at(home.path("repo/.turbo"));
    const auto& old = found.at(home.path("repo/.vite"));
    const auto& future = found.at(home.path("repo/.expo"));
    EXPECT_FALSE(young.recommended);
    EXPECT_EQ(young.safety, Safety::regenerable);
    EXPECT_EQ(young.detail, builtBody(ago(7, day - 1)) + "\n~/repo/.turbo");
    EXPECT_TRUE(old.recommended);
    EXPECT_FALSE(future.recommended);
    EXPECT_EQ(future.detail, builtBody(ago(-30)) + "\n~/repo/.expo");
    EXPECT_EQ(future.lastActivity, ago(-30));
}

TEST_F(ProjectArtifactRulesTests, aBuildOfAnIdleProjectIsRecommendedHoweverYoung) {
    repository("repo", ".turbo/", ago(22));
    weigh("repo/.turbo", sizeFrom(20 * MB), 0);

    EXPECT_TRUE(item().recommended);
}

TEST_F(ProjectArtifactRulesTests, theNewestFileInsideTellsTheAgeOfABuild) {
    repository("repo", ".turbo/", ago(0));
    weigh("repo/.turbo/a", sizeFrom(20 * MB), 100);
    weigh("repo/.turbo/b/c", 4096, 3);
    weigh("repo/.turbo/d", 4096, 50);

    const auto found = item();

    EXPECT_EQ(found.lastActivity, ago(3));
    EXPECT_EQ(found.detail, builtBody(ago(3)) + "\n~/repo/.turbo");
    EXPECT_FALSE(found.recommended);
}

TEST_F(ProjectArtifactRulesTests, aLooseProjectIsAsOldAsItsNewestDirectEntry) {
    for (const std::string name : {"idle", "active"}) {
        looseProject(name);
        weigh(name + "/.venv", sizeFrom(20 * MB), 0); // new inside
        home.file(name + "/sub/new", {.modified = nowSeconds});
        home.file(name + "/a");
        home.file(name + "/.b");
        settle(home.path(name), 50);
    }
    home.setModified("idle/.b", secondsAgo(22));
    home.setModified("active/.b", secondsAgo(21, day - 1));
    home.setModified("idle", nowSeconds);
    home.setModified("active", secondsAgo(50));

    const auto found = items();

    ASSERT_THAT(found, SizeIs(2));
    EXPECT_EQ(found[0].detail, idleBody("22 hari") + "\n~/idle/.venv");
    EXPECT_EQ(found[1].detail, activeBody + "\n~/active/.venv");
}

TEST_F(ProjectArtifactRulesTests, aLooseProjectIsAsOldAsALinkInItAndNotItsTarget) {
    looseProject("a");
    looseProject("b");
    weigh("a/.venv", sizeFrom(20 * MB));
    weigh("b/.venv", sizeFrom(20 * MB));
    home.symlink("a/link", home.file("new", {.modified = nowSeconds}));
    home.symlink("b/link", home.file("old", {.modified = secondsAgo(50)}));
    settleAll(50);
    home.setModified("b/link", nowSeconds);

    const auto found = items();

    ASSERT_THAT(found, SizeIs(2));
    EXPECT_EQ(found[0].detail, idleBody("50 hari") + "\n~/a/.venv");
    EXPECT_EQ(found[1].detail, activeBody + "\n~/b/.venv");
}

TEST_F(ProjectArtifactRulesTests, theRepositoryTellsTheActivityInAWalkedIgnoredFolder) {
    repository("repo", "contoh/", ago(2));
    home.file("repo/contoh/main.py", {.modified = secondsAgo(300)});
    weigh("repo/contoh/.venv", sizeFrom(20 * MB), 300);
    settle(home.path("repo/contoh"), 300);

    EXPECT_EQ(item().detail, activeBody + "\n~/repo/contoh/.venv");
}

// Worktrees, and the home in the detail

TEST_F(ProjectArtifactRulesTests, aFolderOfAClaudeWorktreeSaysSo) {
    const std::string sentence = " Berada di worktree sesi Claude.";
    repository("p/.claude/worktrees/sesi", ".turbo/\nnode_modules/\nmedia/", ago(100));
    home.file("p/.claude/worktrees/sesi/package.json");
    weigh("p/.claude/worktrees/sesi/.turbo", sizeFrom(20 * MB));
    weigh("p/.claude/worktrees/sesi/node_modules", sizeFrom(20 * MB));
    weigh("p/.claude/worktrees/sesi/media", sizeFrom(100 * MB));

    const auto found = itemsByPath();

    ASSERT_THAT(found, SizeIs(3));
    const std::string folder = "p/.claude/worktrees/sesi/";
    EXPECT_EQ(found.at(home.path(folder + ".turbo")).detail,
              builtBody(ago(30)) + sentence + "\n~/" + folder + ".turbo");
    EXPECT_EQ(found.at(home.path(folder + "node_modules")).detail,
              idleBody("100 hari") + sentence + "\n~/" + folder + "node_modules");
    EXPECT_EQ(found.at(home.path(folder + "media")).detail,
              unknownBody + sentence + "\n~/" + folder + "media");
}

TEST_F(ProjectArtifactRulesTests, anotherFolderOfClaudeIsNoWorktree) {
    repository("p/.claude/worktree/sesi", ".turbo/", ago(100));
    weigh("p/.claude/worktree/sesi/.turbo", sizeFrom(20 * MB));

    EXPECT_EQ(item().detail, builtBody(ago(30)) + "\n~/p/.claude/worktree/sesi/.turbo");
}

TEST_F(ProjectArtifactRulesTests, thePathIsShownInFullOutsideTheHomeOfTheProcess) {
    repository("repo", ".turbo/", ago(100));
    weigh("repo/.turbo", sizeFrom(20 * MB));
    const testing::ScopedHome other(home.path("repo/elsewhere"));

    EXPECT_EQ(item().detail, builtBody(ago(30)) + "\n" + home.path("repo/.turbo"));
}

#ifndef __APPLE__ // whose "find" prints nothing of its own
TEST_F(ProjectArtifactRulesTests, readsOnly) {
    repository("repo", "media/\n.turbo/");
    weigh("repo/.turbo", sizeFrom(20 * MB));
    weigh("repo/media/a", sizeFrom(1000 * MB));
    weigh("repo/media/b", sizeFrom(20 * MB));
    const auto before = testing::runProgram({"find", home.path(), "-printf", "%p %s %T@ %C@\n"}).out;

    EXPECT_THAT(items(), SizeIs(3));

    EXPECT_EQ(testing::runProgram({"find", home.path(), "-printf", "%p %s %T@ %C@\n"}).out, before);
}
#endif

} // namespace
} // namespace korvanti
