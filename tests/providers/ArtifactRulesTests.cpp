#include "providers/ArtifactRules.h"

#include "ProjectArtifactFixture.h"

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

using Kind = ProjectArtifactProvider::Kind;

struct RuleRow {
    std::string name;
    std::string title;
    std::vector<std::string> markers;
    Kind kind;
    Safety safety;
};

const RuleRow ruleRows[] = {
    {"node_modules",
     "Dependency npm (node_modules)",
     {"package.json"},
     Kind::dependencies,
     Safety::regenerable},
    {".next", "Build Next.js (.next)", {"package.json"}, Kind::buildOutput, Safety::regenerable},
    {".nuxt", "Build Nuxt (.nuxt)", {"package.json"}, Kind::buildOutput, Safety::regenerable},
    {".svelte-kit", "Build SvelteKit", {"package.json"}, Kind::buildOutput, Safety::regenerable},
    {".turbo", "Cache Turborepo", {}, Kind::buildOutput, Safety::regenerable},
    {".parcel-cache", "Cache Parcel", {}, Kind::buildOutput, Safety::regenerable},
    {".vite", "Cache Vite", {}, Kind::buildOutput, Safety::regenerable},
    {".angular", "Cache Angular", {}, Kind::buildOutput, Safety::regenerable},
    {".expo", "Cache Expo", {}, Kind::buildOutput, Safety::regenerable},
    {".vinext", "Build vinext", {"package.json"}, Kind::buildOutput, Safety::regenerable},
    {".gradle",
     "Cache Gradle proyek",
     {"settings.gradle", "settings.gradle.kts", "build.gradle", "build.gradle.kts"},
     Kind::buildOutput,
     Safety::regenerable},
    {".cxx",
     "Build native CMake (.cxx)",
     {"build.gradle", "build.gradle.kts"},
     Kind::buildOutput,
     Safety::regenerable},
    {".externalNativeBuild",
     "Build native lama",
     {"build.gradle", "build.gradle.kts"},
     Kind::buildOutput,
     Safety::regenerable},
    {".kotlin", "Data daemon Kotlin", {}, Kind::buildOutput, Safety::regenerable},
    {"DerivedData", "DerivedData proyek", {}, Kind::buildOutput, Safety::regenerable},
    {".build", "Build SwiftPM (.build)", {"Package.swift"}, Kind::buildOutput, Safety::regenerable},
    {"Pods", "CocoaPods (Pods)", {"Podfile"}, Kind::dependencies, Safety::costly},
    {"target",
     "Build Rust/Maven (target)",
     {"Cargo.toml", "pom.xml"},
     Kind::buildOutput,
     Safety::regenerable},
    {".dart_tool", "Cache Dart", {"pubspec.yaml"}, Kind::buildOutput, Safety::regenerable},
    {".venv", "Virtualenv Python", {}, Kind::dependencies, Safety::costly},
    {"venv", "Virtualenv Python", {"requirements.txt", "pyproject.toml"}, Kind::dependencies, Safety::costly},
    {"__pycache__", "Cache Python", {}, Kind::buildOutput, Safety::regenerable},
    {".pytest_cache", "Cache pytest", {}, Kind::buildOutput, Safety::regenerable},
    {"coverage", "Laporan coverage", {"package.json"}, Kind::buildOutput, Safety::regenerable},
    {"storybook-static", "Build Storybook", {"package.json"}, Kind::buildOutput, Safety::regenerable},
    {"dist", "Hasil build (dist)", {"package.json"}, Kind::buildOutput, Safety::regenerable},
};

const std::string sourceFolders[] = {"src", "Sources", "lib", "app", "include", "cmd", "pkg"};
const std::string sourceExtensions[] = {"swift", "kt",     "kts", "java", "ts", "tsx", "js",
                                        "jsx",   "svelte", "vue", "rs",   "go", "py",  "c",
                                        "cc",    "cpp",    "h",   "m",    "mm"};

/// Every table, against what is written down here again.
class ArtifactRulesTests : public testing::ProjectArtifactFixture {};

// The rules

TEST_F(ArtifactRulesTests, everyRuleKnowsItsIgnoredFolderBesideEachOfItsMarkers) {
    for (const auto& row : ruleRows) {
        auto markers = row.markers;
        if (markers.empty())
            markers.emplace_back("README"); // which is no marker of anything
        for (const auto& marker : markers) {
            SCOPED_TRACE(row.name + " beside " + marker);
            projects = {};
            const auto place = row.name + "+" + marker;
            repository(place, row.name + "/\n");
            home.file(place + "/" + marker);
            home.file(place + "/" + row.name + "/data");

            EXPECT_THAT(candidates(),
                        ElementsAre(known(place + "/" + row.name, row.title, row.kind, row.safety)));
        }
    }
}

TEST_F(ArtifactRulesTests, everyRuleKnowsItsFolderInALooseProjectBesideEachOfItsMarkers) {
    for (const auto& row : ruleRows) {
        auto markers = row.markers;
        if (markers.empty())
            markers.emplace_back("README");
        for (const auto& marker : markers) {
            SCOPED_TRACE(row.name + " beside " + marker);
            projects = {};
            const auto place = row.name + "+" + marker;
            looseProject(place);
            home.file(place + "/" + marker);
            home.file(place + "/" + row.name + "/data");

            EXPECT_THAT(withoutActivity(),
                        ElementsAre(known(place + "/" + row.name, row.title, row.kind, row.safety)));
        }
    }
}

TEST_F(ArtifactRulesTests, aRuleWithMarkersDoesNotKnowItsIgnoredFolderWithoutThem) {
    for (const auto& row : ruleRows) {
        if (row.markers.empty())
            continue;
        SCOPED_TRACE(row.name);
        projects = {};
        repository(row.name, row.name + "/\n");
        home.file(row.name + "/README");
        home.file(row.name + "/" + row.name + "/data");

        EXPECT_THAT(candidates(),
                    ElementsAre(unknown(row.name + "/" + row.name, "Folder diabaikan git: " + row.name)));
    }
}

TEST_F(ArtifactRulesTests, aRuleWithMarkersKnowsNothingInALooseProjectWithoutThem) {
    for (const auto& row : ruleRows) {
        if (row.markers.empty())
            continue;
        SCOPED_TRACE(row.name);
        projects = {};
        looseProject(row.name);
        home.file(row.name + "/README");
        home.file(row.name + "/" + row.name + "/data");

        EXPECT_THAT(candidates(), IsEmpty());
    }
}

TEST_F(ArtifactRulesTests, theTablesHoldNothingElse) {
    EXPECT_EQ(ArtifactRules::directories().size(), std::size(ruleRows));
    EXPECT_EQ(ArtifactRules::protectedNames().size(), std::size(testing::protectedNames));
    EXPECT_EQ(ArtifactRules::protectedWords().size(), std::size(testing::protectedWords));
    EXPECT_EQ(ArtifactRules::sourceFolders().size(), std::size(sourceFolders));
    EXPECT_EQ(ArtifactRules::sourceExtensions().size(), std::size(sourceExtensions));
}

TEST_F(ArtifactRulesTests, aMarkerMustLieBesideTheFolder) {
    repository("repo", "dist/\n");
    home.file("repo/package.json");
    home.file("repo/web/page");
    home.file("repo/web/dist/package.json");

    EXPECT_THAT(candidates(), ElementsAre(unknown("repo/web/dist", "Folder diabaikan git: dist")));
}

TEST_F(ArtifactRulesTests, anEntryOfAnyKindIsAMarker) {
    repository("repo", "dist/\n");
    home.symlink("repo/package.json", home.path("missing"));
    home.file("repo/dist/data");

    EXPECT_THAT(candidates(), ElementsAre(known("repo/dist", "Hasil build (dist)")));
}

TEST_F(ArtifactRulesTests, namesOfRulesAreComparedExactly) {
    repository("repo", "*/\n");
    home.file("repo/Dist/data");
    home.file("repo/pods/data");
    home.file("repo/Build/data");
    for (const auto* marker : {"package.json", "Podfile", "build.gradle"})
        home.file(std::string("repo/") + marker);

    EXPECT_THAT(candidates(), UnorderedElementsAre(unknown("repo/Dist", "Folder diabaikan git: Dist"),
                                                   unknown("repo/pods", "Folder diabaikan git: pods"),
                                                   unknown("repo/Build", "Folder diabaikan git: Build")));
}

// Secrets and configuration

TEST_F(ArtifactRulesTests, everyProtectedNameIsLeftAloneInAnySpelling) {
    repository("lower", "*/\n");
    repository("upper", "*/\n");
    for (const auto& name : testing::protectedNames) {
        home.file("lower/" + name + "/data");
        home.file("upper/" + testing::upper(name) + "/data");
    }

    EXPECT_THAT(candidates(), IsEmpty());
}

TEST_F(ArtifactRulesTests, everyProtectedWordInANameIsLeftAloneInAnySpelling) {
    repository("repo", "*/\n");
    for (const auto& word : testing::protectedWords) {
        home.file("repo/" + word + "/data");
        home.file("repo/my" + word + "s/data");
        home.file("repo/OLD-" + testing::upper(word) + "S/data");
    }

    EXPECT_THAT(candidates(), IsEmpty());
}

TEST_F(ArtifactRulesTests, everythingThatBeginsWithDotEnvIsLeftAlone) {
    repository("repo", "*/\n");
    for (const auto* name : {".env", ".env.local", ".environments", ".ENV-2"})
        home.file(std::string("repo/") + name + "/data");

    EXPECT_THAT(candidates(), IsEmpty());
}

TEST_F(ArtifactRulesTests, namesThatOnlyResembleProtectedOnesAreNotProtected) {
    repository("repo", "*/\n");
    const std::string names[] = {"idea", "certs2", "my-certs", "x.env", "env", "sign", "local.properties.d"};
    std::vector<Candidate> expected;
    for (const auto& name : names) {
        home.file("repo/" + name + "/data");
        expected.push_back(unknown("repo/" + name, "Folder diabaikan git: " + name));
    }

    EXPECT_THAT(candidates(), ::testing::UnorderedElementsAreArray(expected));
}

TEST_F(ArtifactRulesTests, aProtectedIgnoredFolderIsNotEnteredEvenIfItLooksLikeSource) {
    repository("repo", "/keystore-tool/\n/.env.d/\n");
    for (const auto* name : {"repo/keystore-tool", "repo/.env.d"}) {
        home.file(std::string(name) + "/package.json");
        home.file(std::string(name) + "/node_modules/data");
    }

    EXPECT_THAT(candidates(), IsEmpty());
}

// What looks like source

TEST_F(ArtifactRulesTests, anIgnoredFolderWithASourceFolderInItIsWalked) {
    for (const auto& name : sourceFolders) {
        SCOPED_TRACE(name);
        projects = {};
        repository(name, "/stuff/\n");
        home.file(name + "/stuff/" + name + "/data");
        home.file(name + "/stuff/deep/.venv/data");

        EXPECT_THAT(candidates(), ElementsAre(known(name + "/stuff/deep/.venv", "Virtualenv Python",
                                                    Kind::dependencies, Safety::costly)));
    }
}

TEST_F(ArtifactRulesTests, anIgnoredFolderWithASourceFileInItIsWalked) {
    for (const auto& lower : sourceExtensions)
        for (const auto& extension : {lower, testing::upper(lower)}) {
            SCOPED_TRACE(extension);
            projects = {};
            const auto place = "repo " + extension;
            repository(place, "/stuff/\n");
            home.file(place + "/stuff/a." + extension);
            home.file(place + "/stuff/deep/.venv/data");

            EXPECT_THAT(folders(), ElementsAre(home.path(place + "/stuff/deep/.venv")));
        }
}

TEST_F(ArtifactRulesTests, aFolderWithASourceExtensionCountsLikeAFile) {
    repository("repo", "/stuff/\n");
    home.folder("repo/stuff/moment.js");

    EXPECT_THAT(candidates(), IsEmpty());
}

TEST_F(ArtifactRulesTests, aProjectInsideAnIgnoredFolderIsWalked) {
    repository("repo", "/copies/\n/app.d/\n");
    home.file("repo/copies/pyproject.toml");
    home.file("repo/copies/venv/data");
    home.folder("repo/app.d/App.xcodeproj");

    EXPECT_THAT(folders(), ElementsAre(home.path("repo/copies/venv")));
}

TEST_F(ArtifactRulesTests, anIgnoredFolderWithAGitEntryIsWalked) {
    repository("repo", "/folder/\n/file/\n");
    testing::git(home.folder("repo/folder"), {"init", "--quiet"});
    home.file("repo/folder/x/.venv/data");
    home.file("repo/file/.git", {.text = "gitdir: /missing\n"});
    home.file("repo/file/x/.venv/data");

    EXPECT_THAT(folders(),
                UnorderedElementsAre(home.path("repo/folder/x/.venv"), home.path("repo/file/x/.venv")));
}

TEST_F(ArtifactRulesTests, whatOnlyResemblesSourceIsUnknown) {
    repository("repo", "*/\n");
    home.file("repo/file/src");
    home.symlink("repo/link/src", home.folder("elsewhere"));
    home.file("repo/capitals/SRC/data");
    home.file("repo/hidden/.swift");
    home.file("repo/below/deeper/main.c");
    home.file("repo/others/notes.txt");
    home.file("repo/others/page.html");
    home.file("repo/others/swift");

    EXPECT_THAT(folders(), UnorderedElementsAre(home.path("repo/file"), home.path("repo/link"),
                                                home.path("repo/capitals"), home.path("repo/hidden"),
                                                home.path("repo/below"), home.path("repo/others")));
}

TEST_F(ArtifactRulesTests, aKnownIgnoredFolderIsNotTakenForSource) {
    repository("repo", "*/\n");
    home.file("repo/package.json");
    home.file("repo/dist/index.js");
    home.file("repo/coverage/src/x/.venv/data");
    home.file("repo/build/main.js");

    EXPECT_THAT(folders(), UnorderedElementsAre(home.path("repo/dist"), home.path("repo/coverage"),
                                                home.path("repo/build")));
}

} // namespace
} // namespace korvanti
