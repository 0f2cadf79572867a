#include "scan/ProjectIndex.h"

#include "fs/PathTools.h"
#include "support/Environment.h"
#include "support/Git.h"
#include "support/TempFolder.h"

#include <cstdint>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <utility>
#include <vector>

namespace korvanti {
namespace {

using ::testing::ElementsAre;
using testing::git;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::UnorderedElementsAre;

constexpr std::int64_t mebibyte = 1024 * 1024;

class ProjectIndexTests : public ::testing::Test {
protected:
    /// Of the projects below the one root "code".
    [[nodiscard]] ProjectIndex index(int maxDepth = 6) const {
        return ProjectIndex::build({temp.path("code")}, maxDepth);
    }

    [[nodiscard]] static std::vector<std::string> roots(const ProjectIndex& index) {
        std::vector<std::string> roots;
        for (const auto& repository : index.repositories)
            roots.push_back(repository.root);
        return roots;
    }

    /// A repository with one commit of one file, and its index as old as that.
    std::string repository(const std::string& relative, std::int64_t committed) const {
        auto root = temp.folder(relative);
        temp.file(relative + "/file", {.text = "text"});
        git(root, {"init", "-q"});
        git(root, {"add", "file"});
        git(root, {"commit", "-q", "-m", "First"}, committed);
        temp.setModified(relative + "/.git/index", committed);
        return root;
    }

    testing::TempFolder temp;

private:
    testing::GitWithoutSettings settings;
    // What git looks for in vain it does not find above either.
    testing::ScopedVariable ceiling{"GIT_CEILING_DIRECTORIES", temp.path()};
};

// Roots

TEST_F(ProjectIndexTests, withoutRootsItIsEmpty) {
    EXPECT_EQ(ProjectIndex::build({}, 6), ProjectIndex());
}

TEST_F(ProjectIndexTests, missingRootsFilesAndLinksAreNoRoots) {
    temp.file("elsewhere/package.json");
    temp.symlink("link", temp.path("elsewhere"));

    EXPECT_EQ(ProjectIndex::build(
                  {temp.path("missing"), temp.path("elsewhere/package.json"), temp.path("link"), ""}, 6),
              ProjectIndex());
}

TEST_F(ProjectIndexTests, aSlashBehindItMakesNoLinkARoot) {
    temp.file("elsewhere/package.json");
    temp.symlink("link", temp.path("elsewhere"));

    EXPECT_EQ(ProjectIndex::build({temp.path("link/")}, 6), ProjectIndex());
}

TEST_F(ProjectIndexTests, aSlashBehindARootDoesNotComeOutInThePaths) {
    temp.file("code/package.json");

    EXPECT_THAT(ProjectIndex::build({temp.path("code//")}, 6).looseProjects, ElementsAre(temp.path("code")));
}

TEST_F(ProjectIndexTests, aRelativeRootIsPassedOver) {
    temp.file("code/package.json");
    const auto folder = std::filesystem::current_path();
    std::filesystem::current_path(temp.path());

    EXPECT_EQ(ProjectIndex::build({"code", ".", "./code"}, 6), ProjectIndex());

    std::filesystem::current_path(folder);
}

TEST_F(ProjectIndexTests, aRootMayItselfBeARepositoryOrAProject) {
    temp.folder("one/.git");
    temp.file("two/go.mod");

    const auto index = ProjectIndex::build({temp.path("one"), temp.path("two")}, 6);

    EXPECT_THAT(roots(index), ElementsAre(temp.path("one")));
    EXPECT_THAT(index.looseProjects, ElementsAre(temp.path("two")));
}

TEST_F(ProjectIndexTests, rootsAreWalkedInTheirOrder) {
    for (const auto* name : {"b", "a", "c"}) {
        temp.folder(std::string(name) + "/repository/.git");
        temp.file(std::string(name) + "/project/Podfile");
        temp.file(std::string(name) + "/gradle.properties", {.text = name});
    }

    const auto index = ProjectIndex::build({temp.path("b"), temp.path("a"), temp.path("c")}, 6);

    EXPECT_THAT(roots(index),
                ElementsAre(temp.path("b/repository"), temp.path("a/repository"), temp.path("c/repository")));
    EXPECT_THAT(index.looseProjects,
                ElementsAre(temp.path("b/project"), temp.path("a/project"), temp.path("c/project")));
    EXPECT_EQ(index.buildFileText, "b\na\nc\n");
}

TEST_F(ProjectIndexTests, repositoriesUnderOverlappingRootsStayTwice) {
    temp.folder("code/app/.git");

    const auto index = ProjectIndex::build({temp.path("code"), temp.path("code/app"), temp.path("code")}, 6);

    EXPECT_THAT(roots(index),
                ElementsAre(temp.path("code/app"), temp.path("code/app"), temp.path("code/app")));
}

TEST_F(ProjectIndexTests, aProjectUnderARepositoryOfAnotherRootIsDropped) {
    temp.folder("code/app/.git");
    temp.file("code/app/web/package.json");

    EXPECT_THAT(ProjectIndex::build({temp.path("code"), temp.path("code/app/web")}, 6).looseProjects,
                IsEmpty());
    EXPECT_THAT(ProjectIndex::build({temp.path("code/app/web"), temp.path("code")}, 6).looseProjects,
                IsEmpty());
}

TEST_F(ProjectIndexTests, aProjectBesideARepositoryStaysThoughItsNameBeginsAlike) {
    temp.folder("code/app/.git");
    temp.file("code/app-two/package.json");

    EXPECT_THAT(index().looseProjects, ElementsAre(temp.path("code/app-two")));
}

// Repositories and projects

TEST_F(ProjectIndexTests, aFolderWithAGitFolderIsARepository) {
    temp.folder("code/app/.git");

    EXPECT_THAT(roots(index()), ElementsAre(temp.path("code/app")));
}

TEST_F(ProjectIndexTests, aFolderWithAGitFileIsARepository) {
    temp.file("code/worktree/.git", {.text = "gitdir: /nowhere\n"});

    EXPECT_THAT(roots(index()), ElementsAre(temp.path("code/worktree")));
}

TEST_F(ProjectIndexTests, aNestedRepositoryIsRecordedBehindTheOuterOne) {
    temp.folder("code/outer/.git");
    temp.folder("code/outer/libraries/inner/.git");

    EXPECT_THAT(roots(index()),
                ElementsAre(temp.path("code/outer"), temp.path("code/outer/libraries/inner")));
}

TEST_F(ProjectIndexTests, siblingsComeInTheOrderOfTheListing) {
    for (const auto* name : {"delta", "alpha", "echo", "bravo", "charlie"})
        temp.folder("code/" + std::string(name) + "/.git");

    EXPECT_EQ(roots(index()), PathTools::subfolders(temp.path("code")));
}

TEST_F(ProjectIndexTests, aMarkerInsideARepositoryMakesNoLooseProject) {
    temp.folder("code/app/.git");
    temp.file("code/app/package.json");
    temp.file("code/app/web/package.json");
    temp.file("code/app/a/b/c/Cargo.toml");

    EXPECT_THAT(index().looseProjects, IsEmpty());
}

TEST_F(ProjectIndexTests, onlyTheOuterOfNestedProjectsIsRecorded) {
    temp.file("code/outer/package.json");
    temp.file("code/outer/packages/inner/package.json");

    EXPECT_THAT(index().looseProjects, ElementsAre(temp.path("code/outer")));
}

TEST_F(ProjectIndexTests, aRepositoryInsideAProjectIsRecordedAndTheProjectToo) {
    temp.file("code/outer/package.json");
    temp.folder("code/outer/inner/.git");

    const auto found = index();

    EXPECT_THAT(roots(found), ElementsAre(temp.path("code/outer/inner")));
    EXPECT_THAT(found.looseProjects, ElementsAre(temp.path("code/outer")));
}

TEST_F(ProjectIndexTests, whatComesBehindARepositoryIsOutsideOfIt) {
    temp.folder("code/a/.git");
    temp.file("code/b/go.mod");
    temp.folder("code/c/.git");
    temp.file("code/d/go.mod");

    EXPECT_THAT(index().looseProjects, UnorderedElementsAre(temp.path("code/b"), temp.path("code/d")));
}

constexpr std::string_view markers[] = {
    "package.json",        "build.gradle",   "build.gradle.kts", "settings.gradle",
    "settings.gradle.kts", "Cargo.toml",     "Package.swift",    "Podfile",
    "pubspec.yaml",        "pyproject.toml", "go.mod",
};

TEST_F(ProjectIndexTests, eachMarkerTellsTheTopOfAProject) {
    ASSERT_EQ(std::size(markers), 11);
    std::vector<std::string> projects;
    for (const auto marker : markers) {
        projects.push_back(temp.folder("code/of " + std::string(marker)));
        temp.file("code/of " + std::string(marker) + "/" + std::string(marker));
    }

    EXPECT_THAT(index().looseProjects, ::testing::UnorderedElementsAreArray(projects));
    for (const auto& project : projects)
        EXPECT_TRUE(ProjectIndex::isProjectRoot(project)) << project;
}

TEST_F(ProjectIndexTests, anXcodeProjectOrWorkspaceTellsItWhateverItsName) {
    temp.folder("code/a/App.xcodeproj");
    temp.folder("code/b/My App.xcworkspace");
    temp.folder("code/c/.xcodeproj");

    EXPECT_THAT(index().looseProjects,
                UnorderedElementsAre(temp.path("code/a"), temp.path("code/b"), temp.path("code/c")));
}

TEST_F(ProjectIndexTests, similarNamesAreNoMarkers) {
    for (const auto* name :
         {"Package.json", "package.json5", "my-package.json", "build.gradle.bak", "cargo.toml", "podfile",
          "Podfile.lock", "App.xcodeproj.zip", "Appxcodeproj", "libs.versions.toml", "gradle.properties",
          ".nvmrc", "rust-toolchain", "Makefile"})
        temp.file("code/app/" + std::string(name));

    EXPECT_THAT(index().looseProjects, IsEmpty());
    EXPECT_FALSE(ProjectIndex::isProjectRoot(temp.path("code/app")));
}

TEST_F(ProjectIndexTests, aMarkerCountsByItsNameWhateverItIs) {
    temp.folder("code/folder/package.json");
    temp.symlink("code/link/go.mod", "nowhere");
    temp.symlink("code/workspace/App.xcworkspace", "nowhere");

    EXPECT_THAT(index().looseProjects, UnorderedElementsAre(temp.path("code/folder"), temp.path("code/link"),
                                                            temp.path("code/workspace")));
}

TEST_F(ProjectIndexTests, noProjectIsWhatHoldsNothingOrIsNoFolder) {
    EXPECT_FALSE(ProjectIndex::isProjectRoot(temp.folder("empty")));
    EXPECT_FALSE(ProjectIndex::isProjectRoot(temp.file("file")));
    EXPECT_FALSE(ProjectIndex::isProjectRoot(temp.path("missing")));
}

// Which folders are entered

constexpr std::string_view skipped[] = {
    "node_modules", ".git",      "build",       "DerivedData", "Pods",    ".gradle",     ".next",
    "dist",         ".build",    "target",      ".cxx",        ".kotlin", ".turbo",      "out",
    ".venv",        "venv",      "__pycache__", ".idea",       ".vscode", ".svelte-kit", ".expo",
    ".dart_tool",   ".wrangler", ".vercel",     ".vinext",
};

TEST_F(ProjectIndexTests, noneOfTheSkippedFoldersIsEntered) {
    ASSERT_EQ(std::size(skipped), 25);
    for (const auto name : skipped) {
        const testing::TempFolder own;
        own.folder(std::string(name) + "/repository/.git");
        own.file(std::string(name) + "/project/package.json");
        own.file(std::string(name) + "/.nvmrc", {.text = "20.11.0"});

        auto found = ProjectIndex::build({own.path()}, 6);

        EXPECT_THAT(found.looseProjects, IsEmpty()) << name;
        EXPECT_THAT(found.nodeVersions, IsEmpty()) << name;
        EXPECT_THAT(roots(found),
                    ::testing::Not(::testing::Contains(own.path(std::string(name) + "/repository"))))
            << name;
    }
}

TEST_F(ProjectIndexTests, namesLikeTheSkippedOnesAreEntered) {
    const std::vector<std::string> names = {"node_modules2", "Build", "pods", "builds",
                                            "targets",       "git",   "outer"};
    for (const auto& name : names)
        temp.folder("code/" + name + "/app/.git");

    EXPECT_THAT(index().repositories, SizeIs(names.size()));
}

TEST_F(ProjectIndexTests, aSkippedNameDoesNotHinderARoot) {
    temp.folder("build/.git");

    EXPECT_THAT(roots(ProjectIndex::build({temp.path("build")}, 6)), ElementsAre(temp.path("build")));
}

TEST_F(ProjectIndexTests, hiddenFoldersAreNotEnteredButForClaude) {
    for (const auto* name : {".hidden", ".claude", ".claude2", ".Claude", ".config"})
        temp.folder("code/app/" + std::string(name) + "/worktrees/one/.git");

    EXPECT_THAT(roots(index()), ElementsAre(temp.path("code/app/.claude/worktrees/one")));
}

TEST_F(ProjectIndexTests, linksAreNotEnteredAndNotRead) {
    temp.folder("elsewhere/repository/.git");
    temp.file("elsewhere/project/package.json");
    temp.file("elsewhere/build.gradle", {.text = "compileSdk 34"});
    temp.file("elsewhere/.nvmrc", {.text = "20.11.0"});
    temp.symlink("code/link", temp.path("elsewhere"));
    temp.symlink("code/app/build.gradle", temp.path("elsewhere/build.gradle"));
    temp.symlink("code/app/.nvmrc", temp.path("elsewhere/.nvmrc"));

    EXPECT_EQ(index(), (ProjectIndex{.looseProjects = {temp.path("code/app")}}));
}

TEST_F(ProjectIndexTests, linksInACircleEndTheWalkNowhere) {
    temp.symlink("code/app/up", temp.path("code"));
    temp.symlink("code/app/self", "self");
    temp.folder("code/app/.git");

    EXPECT_THAT(roots(index()), ElementsAre(temp.path("code/app")));
}

TEST_F(ProjectIndexTests, aFolderAtTheGreatestDepthIsReadAndOneBelowIsNotReached) {
    temp.file("code/1/2/3/4/5/6/.nvmrc", {.text = "6"});
    temp.file("code/1/2/3/4/5/6/7/.nvmrc", {.text = "7"});
    temp.folder("code/1/2/3/4/5/six/.git");
    temp.folder("code/1/2/3/4/5/6/seven/.git");
    temp.file("code/1/2/3/4/5/six too/go.mod");
    temp.file("code/1/2/3/4/5/6/seven too/go.mod");

    const auto found = index();

    EXPECT_THAT(found.nodeVersions, ElementsAre("6"));
    EXPECT_THAT(roots(found), ElementsAre(temp.path("code/1/2/3/4/5/six")));
    EXPECT_THAT(found.looseProjects, ElementsAre(temp.path("code/1/2/3/4/5/six too")));
}

TEST_F(ProjectIndexTests, withoutDepthOnlyTheRootItselfIsRead) {
    temp.file("code/.nvmrc", {.text = "root"});
    temp.file("code/app/.nvmrc", {.text = "app"});

    EXPECT_THAT(index(0).nodeVersions, ElementsAre("root"));
}

#ifndef __APPLE__ // whose file systems take no such names
TEST_F(ProjectIndexTests, namesThatAreNoTextAreEntered) {
    const auto root = repository("code/\xff\n app", 1'600'000'000);
    temp.file("code/\xfe/go.mod");

    const auto found = index();

    EXPECT_EQ(found.repositories, (std::vector<Repository>{{root, instantFromSeconds(1'600'000'000)}}));
    EXPECT_THAT(found.looseProjects, ElementsAre(temp.path("code/\xfe")));
}
#endif

// Files that are read

TEST_F(ProjectIndexTests, wrapperFilesTellTheDistributions) {
    const std::pair<std::string_view, std::vector<std::string>> files[] = {
        {"distributionUrl=https\\://services.gradle.org/distributions/gradle-8.7-bin.zip\n",
         {"gradle-8.7-bin"}},
        {"distributionUrl=https\\://services.gradle.org/distributions/gradle-8.10.2-all.zip",
         {"gradle-8.10.2-all"}},
        {"gradle-8.7-rc-1-bin.zip", {"gradle-8.7-rc-1-bin"}},
        {"gradle-9.0.0-20250101000000+0000-bin.zip", {}},
        {"gradle-8.7-bin.zip gradle-7.6-all.zip", {"gradle-8.7-bin"}},
        {"x\ngradle-7.6-all.zip\ngradle-8.7-bin.zip", {"gradle-7.6-all"}},
        {"gradle-bin.zip", {}},
        {"gradle-x8.7-bin.zip", {}},
        {"gradle-8.7.zip", {}},
        {"gradle-8.7-src.zip", {}},
        {"Gradle-8.7-bin.zip", {}},
        {"", {}},
    };
    for (const auto& [text, distributions] : files) {
        temp.file("code/app/gradle/wrapper/gradle-wrapper.properties", {.text = std::string(text)});

        EXPECT_THAT(index().gradleDistributions, ::testing::ElementsAreArray(distributions)) << text;
    }
}

TEST_F(ProjectIndexTests, theDistributionsOfAllWrapperFilesComeTogether) {
    temp.file("code/a/gradle/wrapper/gradle-wrapper.properties", {.text = "gradle-8.7-bin.zip"});
    temp.file("code/b/gradle/wrapper/gradle-wrapper.properties", {.text = "gradle-7.6-all.zip"});
    temp.file("code/c/gradle-wrapper.properties", {.text = "gradle-8.7-bin.zip"});
    temp.file("code/c/other.properties", {.text = "gradle-6.0-bin.zip"});

    EXPECT_THAT(index().gradleDistributions, ElementsAre("gradle-7.6-all", "gradle-8.7-bin"));
}

TEST_F(ProjectIndexTests, eachKindOfBuildFileGoesIntoTheText) {
    for (const auto* name : {"build.gradle", "build.gradle.kts", "settings.gradle", "settings.gradle.kts",
                             "libs.versions.toml", "gradle.properties"}) {
        const testing::TempFolder own;
        own.file(name, {.text = "the text\nof it"});

        EXPECT_EQ(ProjectIndex::build({own.path()}, 6).buildFileText, "the text\nof it\n") << name;
    }
}

TEST_F(ProjectIndexTests, otherFilesDoNotGoIntoTheText) {
    for (const auto* name : {"build.gradle.kt", "Build.gradle", "local.properties", "versions.toml",
                             "package.json", "gradle-wrapper.properties", ".nvmrc", "rust-toolchain"})
        temp.file("code/" + std::string(name), {.text = "some text"});

    EXPECT_EQ(index().buildFileText, "");
}

TEST_F(ProjectIndexTests, buildFilesAreJoinedInTheOrderOfTheListing) {
    temp.file("code/build.gradle", {.text = "build.gradle"});
    temp.file("code/settings.gradle", {.text = "settings.gradle"});
    temp.file("code/app/build.gradle", {.text = "app"});
    temp.file("code/gradle.properties", {.text = "gradle.properties"});
    temp.file("code/library/build.gradle", {.text = "library"});
    std::string expected;
    for (const auto& entry : PathTools::entries(temp.path("code")))
        expected += entry.name + "\n";

    EXPECT_EQ(index().buildFileText, expected);
}

TEST_F(ProjectIndexTests, buildFilesInsideRepositoriesAndProjectsAreReadToo) {
    temp.folder("code/repository/.git");
    temp.file("code/repository/app/build.gradle", {.text = "inside"});
    temp.file("code/project/package.json");
    temp.file("code/project/android/build.gradle", {.text = "inside"});

    EXPECT_EQ(index().buildFileText, "inside\ninside\n");
}

TEST_F(ProjectIndexTests, aBuildFileThatCannotBeReadIsAnEmptyOne) {
    temp.folder("code");
    ASSERT_EQ(::mkfifo(temp.path("code/build.gradle").c_str(), 0600), 0);
    ASSERT_EQ(::mkfifo(temp.path("code/.nvmrc").c_str(), 0600), 0);
    ASSERT_EQ(::mkfifo(temp.path("code/rust-toolchain").c_str(), 0600), 0);
    ASSERT_EQ(::mkfifo(temp.path("code/gradle-wrapper.properties").c_str(), 0600), 0);

    EXPECT_EQ(index(), (ProjectIndex{.looseProjects = {temp.path("code")}, .buildFileText = "\n"}));
}

TEST_F(ProjectIndexTests, aFolderNamedLikeABuildFileIsEnteredAndNotRead) {
    temp.file("code/build.gradle/.nvmrc", {.text = "20"});

    const auto found = index();

    EXPECT_EQ(found.buildFileText, "");
    EXPECT_THAT(found.nodeVersions, ElementsAre("20"));
}

TEST_F(ProjectIndexTests, ofAHugeBuildFileTheStartIsRead) {
    temp.file("code/build.gradle", {.text = "compileSdk 34\n", .sparseBytes = 2048 * mebibyte});

    const auto found = index();

    EXPECT_EQ(found.buildFileText.size(), 4 * mebibyte + 1);
    EXPECT_THAT(found.compileSdks(), ElementsAre(34));
}

TEST_F(ProjectIndexTests, noFurtherBuildFileIsReadAfterVeryMuchText) {
    for (int number = 0; number < 20; ++number)
        temp.file("code/" + std::to_string(number) + "/build.gradle", {.sparseBytes = 2048 * mebibyte});

    EXPECT_EQ(index().buildFileText.size(), 16 * (4 * mebibyte + 1));
}

TEST_F(ProjectIndexTests, aRootWithAZeroInsideIsNone) {
    temp.folder("code/.git");

    EXPECT_EQ(ProjectIndex::build({temp.path("code") + '\0'}, 6), ProjectIndex());
}

TEST_F(ProjectIndexTests, buildFilesThatAreNoUtf8AreRepaired) {
    temp.file("code/build.gradle", {.text = "// caf\xe9\ncompileSdk 34"});

    EXPECT_EQ(index().buildFileText, "// caf\uFFFD\ncompileSdk 34\n");
}

TEST_F(ProjectIndexTests, rustToolchainFilesTellTheirFirstVersion) {
    const std::pair<std::string_view, std::vector<std::string>> files[] = {
        {"[toolchain]\nchannel = \"1.75.0\"\n", {"1.75.0"}},
        {"1.75.0\n", {"1.75.0"}},
        {"1.75", {"1.75"}},
        {"1.75.0.1", {"1.75.0"}},
        {"nightly-2024-01-01 1.70 1.80", {"1.70"}},
        {"stable", {}},
        {"[toolchain]\nchannel = \"nightly\"\n", {}},
        {"nightly-2024-01-01", {}},
        {"1", {}},
        {"", {}},
    };
    for (const auto* name : {"rust-toolchain", "rust-toolchain.toml"}) {
        const testing::TempFolder own;
        for (const auto& [text, versions] : files) {
            own.file(name, {.text = std::string(text)});

            EXPECT_THAT(ProjectIndex::build({own.path()}, 6).rustToolchains,
                        ::testing::ElementsAreArray(versions))
                << name << ": " << text;
        }
    }
}

TEST_F(ProjectIndexTests, nodeVersionFilesTellTheirTrimmedText) {
    const std::pair<std::string_view, std::vector<std::string>> files[] = {
        {"v20.11.0\n", {"20.11.0"}},
        {"20.11.0", {"20.11.0"}},
        {"  \tv18\r\n\n", {"18"}},
        {"lts/iron\n", {"lts/iron"}},
        {"vv20vv", {"20"}},
        {"node", {"node"}},
        {"v 20", {" 20"}},
        {"20\n18\n", {"20\n18"}},
        {"v", {}},
        {" \n", {}},
        {"", {}},
    };
    for (const auto* name : {".nvmrc", ".node-version"}) {
        const testing::TempFolder own;
        for (const auto& [text, versions] : files) {
            own.file(name, {.text = std::string(text)});

            EXPECT_THAT(ProjectIndex::build({own.path()}, 6).nodeVersions,
                        ::testing::ElementsAreArray(versions))
                << name << ": " << text;
        }
    }
}

// What is derived

TEST(ProjectIndexFactsTests, aVersionIsTheSecondPieceOfADistribution) {
    const std::pair<std::string, std::set<std::string>> names[] = {
        {"gradle-8.7-bin", {"8.7"}},
        {"gradle-8.10.2-all", {"8.10.2"}},
        {"gradle-8.7-rc-1-bin", {"8.7"}},
        {"gradle--8.7--bin", {"8.7"}},
        {"-gradle-8.7", {"8.7"}},
        {"gradle-8.7", {"8.7"}},
        {"gradle", {}},
        {"gradle-", {}},
        {"-", {}},
        {"", {}},
    };
    for (const auto& [name, versions] : names)
        EXPECT_EQ(ProjectIndex{.gradleDistributions = {name}}.gradleVersions(), versions) << name;
}

TEST(ProjectIndexFactsTests, oneVersionOfTwoDistributionsIsOne) {
    const ProjectIndex index = {
        .gradleDistributions = {"gradle-8.7-all", "gradle-8.7-bin", "gradle-7.6-bin"}};

    EXPECT_THAT(index.gradleVersions(), ElementsAre("7.6", "8.7"));
}

TEST(ProjectIndexFactsTests, compileSdksAreTheTwoDigitsBehindTheWord) {
    const std::pair<std::string_view, std::set<std::int64_t>> texts[] = {
        {"compileSdk = 34", {34}},
        {"compileSdk=34", {34}},
        {"compileSdk 34", {34}},
        {"compileSdk\t34", {34}},
        {"compileSdk\n34", {34}},
        {"compileSdk(34)", {34}},
        {"compileSdk ( 34 )", {34}},
        {"compileSdk = \"34\"", {34}},
        {"compileSdkVersion 33", {33}},
        {"compileSdkVersion = 33", {33}},
        {"compileSdkVersion(33)", {33}},
        {"compileSdkVersion   \"33\"", {33}},
        {"compileSdk = 345", {34}},
        {"compileSdk = 9", {}},
        {"compileSdk 9 34", {}},
        {"compileSdk34", {}},
        {"compileSdk: 34", {}},
        {"compileSdkPreview = 34", {}},
        {"CompileSdk = 34", {}},
        {"compileSdk = 'android-34'", {}},
        {"compileSdk = ٣٤", {}},
        {"compileSdk = 34\nminSdk = 24\ncompileSdkVersion 33 compileSdk 34", {33, 34}},
        {"", {}},
    };
    for (const auto& [text, levels] : texts)
        EXPECT_EQ(ProjectIndex{.buildFileText = std::string(text)}.compileSdks(), levels) << text;
}

TEST(ProjectIndexFactsTests, aLongRunOfBlanksHidesNoOtherProject) {
    const ProjectIndex index = {.buildFileText = "compileSdk 34\ncompileSdk" + std::string(100'000, ' ') +
                                                 "x\ncompileSdk 33\n"};
    EXPECT_THAT(index.compileSdks(), ElementsAre(33, 34));
}

// The last activity of a repository

TEST_F(ProjectIndexTests, theLastCommitIsASignOfUse) {
    const auto root = repository("app", 1'600'000'000);
    temp.setModified("app/.git/index", 1'500'000'000);

    EXPECT_EQ(ProjectIndex::lastActivityOfRepository(root), instantFromSeconds(1'600'000'000));
}

TEST_F(ProjectIndexTests, aNewerIndexCountsMoreThanTheLastCommit) {
    const auto root = repository("app", 1'600'000'000);
    temp.setModified("app/.git/index", 1'700'000'000);

    EXPECT_EQ(ProjectIndex::lastActivityOfRepository(root), instantFromSeconds(1'700'000'000));
}

TEST_F(ProjectIndexTests, theLastCommitIsThatOfTheBranchThatIsCheckedOut) {
    const auto root = repository("app", 1'600'000'000);
    git(root, {"checkout", "-q", "-b", "other"});
    git(root, {"commit", "-q", "--allow-empty", "-m", "Second"}, 1'650'000'000);
    temp.setModified("app/.git/index", 1'500'000'000);
    EXPECT_EQ(ProjectIndex::lastActivityOfRepository(root), instantFromSeconds(1'650'000'000));

    git(root, {"checkout", "-q", "-"});
    temp.setModified("app/.git/index", 1'500'000'000);
    EXPECT_EQ(ProjectIndex::lastActivityOfRepository(root), instantFromSeconds(1'600'000'000));
}

TEST_F(ProjectIndexTests, theDateIsThatOfTheCommitterAndNotOfTheAuthor) {
    const auto root = repository("app", 1'600'000'000);
    git(root, {"commit", "-q", "--allow-empty", "-m", "Second", "--date", "1400000000 +0000"}, 1'650'000'000);
    temp.setModified("app/.git/index", 1'500'000'000);

    EXPECT_EQ(ProjectIndex::lastActivityOfRepository(root), instantFromSeconds(1'650'000'000));
}

TEST_F(ProjectIndexTests, aRepositoryWithoutCommitsAndIndexHasNoDate) {
    const auto root = temp.folder("app");
    git(root, {"init", "-q"});

    EXPECT_EQ(ProjectIndex::lastActivityOfRepository(root), std::nullopt);
}

TEST_F(ProjectIndexTests, aRepositoryWithoutCommitsHasTheDateOfItsIndex) {
    const auto root = temp.folder("app");
    temp.file("app/file", {.text = "text"});
    git(root, {"init", "-q"});
    git(root, {"add", "file"});
    temp.setModified("app/.git/index", 1'700'000'000);

    EXPECT_EQ(ProjectIndex::lastActivityOfRepository(root), instantFromSeconds(1'700'000'000));
}

TEST_F(ProjectIndexTests, aRepositoryWithoutIndexHasTheDateOfItsLastCommit) {
    const auto root = repository("app", 1'600'000'000);
    std::filesystem::remove(temp.path("app/.git/index"));

    EXPECT_EQ(ProjectIndex::lastActivityOfRepository(root), instantFromSeconds(1'600'000'000));
}

TEST_F(ProjectIndexTests, theIndexIsAskedItselfAndNotWhereALinkLeads) {
    temp.file("index", {.modified = 1'700'000'000});
    temp.symlink("app/.git/index", temp.path("index"));
    temp.setModified("app/.git/index", 1'650'000'000);

    EXPECT_EQ(ProjectIndex::lastActivityOfRepository(temp.path("app")), instantFromSeconds(1'650'000'000));
}

TEST_F(ProjectIndexTests, aFolderWithoutGitHasNoDate) {
    EXPECT_EQ(ProjectIndex::lastActivityOfRepository(temp.folder("plain")), std::nullopt);
    EXPECT_EQ(ProjectIndex::lastActivityOfRepository(temp.path("missing")), std::nullopt);
}

TEST_F(ProjectIndexTests, aWorktreeHasItsOwnCommitAndIndex) {
    const auto main = repository("main", 1'600'000'000);
    git(main, {"worktree", "add", "-q", "-b", "other", temp.path("tree")});
    git(temp.path("tree"), {"commit", "-q", "--allow-empty", "-m", "Second"}, 1'650'000'000);
    ASSERT_FALSE(PathTools::isDirectory(temp.path("tree/.git")));
    temp.setModified("main/.git/worktrees/tree/index", 1'500'000'000);
    temp.setModified("main/.git/index", 1'500'000'000);

    EXPECT_EQ(ProjectIndex::lastActivityOfRepository(temp.path("tree")), instantFromSeconds(1'650'000'000));
    EXPECT_EQ(ProjectIndex::lastActivityOfRepository(main), instantFromSeconds(1'600'000'000));

    temp.setModified("main/.git/worktrees/tree/index", 1'700'000'000);
    EXPECT_EQ(ProjectIndex::lastActivityOfRepository(temp.path("tree")), instantFromSeconds(1'700'000'000));
}

TEST_F(ProjectIndexTests, aSubmoduleHasItsOwnCommitAndIndex) {
    const auto library = repository("library", 1'600'000'000);
    const auto main = repository("code/main", 1'610'000'000);
    git(main, {"-c", "protocol.file.allow=always", "submodule", "--quiet", "add", library, "parts/library"});
    ASSERT_THAT(testing::textOf(temp.path("code/main/parts/library/.git")),
                ::testing::StartsWith("gitdir: ../../.git/modules/"));
    temp.setModified("code/main/.git/index", 1'620'000'000);
    temp.setModified("code/main/.git/modules/parts/library/index", 1'500'000'000);

    EXPECT_THAT(index().repositories, ElementsAre(Repository{main, instantFromSeconds(1'620'000'000)},
                                                  Repository{temp.path("code/main/parts/library"),
                                                             instantFromSeconds(1'600'000'000)}));

    temp.setModified("code/main/.git/modules/parts/library/index", 1'700'000'000);
    EXPECT_EQ(ProjectIndex::lastActivityOfRepository(temp.path("code/main/parts/library")),
              instantFromSeconds(1'700'000'000));
}

/// Links that git itself may refuse, so that there is no commit.
class GitFileTests : public ProjectIndexTests {
protected:
    [[nodiscard]] std::optional<Instant> activity(const std::string& gitFile) const {
        temp.file("code/app/.git", {.text = gitFile});
        return ProjectIndex::lastActivityOfRepository(temp.path("code/app"));
    }

    static constexpr std::int64_t date = 1'700'000'000;
    const std::optional<Instant> found = instantFromSeconds(date);
};

TEST_F(GitFileTests, aRelativePathStartsAtTheRepository) {
    temp.file("code/elsewhere/index", {.modified = date});

    EXPECT_EQ(activity("gitdir: ../elsewhere\n"), found);
    EXPECT_EQ(activity("gitdir: ./../app/../elsewhere\n"), found);
}

TEST_F(GitFileTests, anAbsolutePathStandsAsItIs) {
    temp.file("elsewhere/index", {.modified = date});

    EXPECT_EQ(activity("gitdir: " + temp.path("elsewhere") + "\n"), found);
}

TEST_F(GitFileTests, blanksAndLineEndsAroundThePathAreCut) {
    temp.file("code/else where/index", {.modified = date});

    EXPECT_EQ(activity("gitdir:../else where"), found);
    EXPECT_EQ(activity("gitdir: \t ../else where \t \r\n"), found);
}

TEST_F(GitFileTests, theFirstLineWithAPathCounts) {
    temp.file("code/elsewhere/index", {.modified = date});

    EXPECT_EQ(activity("# a comment\n\n gitdir: ../other\ngitdir: ../elsewhere\ngitdir: ../third\n"), found);
}

TEST_F(GitFileTests, withoutAPathThereIsNoIndex) {
    temp.file("code/elsewhere/index", {.modified = date});

    for (const auto* text :
         {"", "\n", "../elsewhere", "Gitdir: ../elsewhere", "gitdir ../elsewhere", "gitdir: ../none"})
        EXPECT_EQ(activity(text), std::nullopt) << text;
}

TEST_F(GitFileTests, aFileThatLeadsToItselfHasNoIndex) {
    EXPECT_EQ(activity("gitdir: .git\n"), std::nullopt);
    EXPECT_EQ(activity("gitdir: " + temp.path("code/app/.git") + "\n"), std::nullopt);
}

TEST_F(GitFileTests, aChainOfFilesIsFollowedOneStepOnly) {
    temp.file("code/elsewhere/index", {.modified = date});
    temp.file("code/second/.git", {.text = "gitdir: ../elsewhere\n"});

    EXPECT_EQ(activity("gitdir: ../second/.git\n"), std::nullopt);
}

TEST_F(GitFileTests, ofAHugeFileTheStartIsRead) {
    temp.file("code/elsewhere/index", {.modified = date});

    temp.file("code/app/.git", {.text = "gitdir: ../elsewhere\n", .sparseBytes = 2048 * mebibyte});
    EXPECT_EQ(ProjectIndex::lastActivityOfRepository(temp.path("code/app")), found);

    EXPECT_EQ(activity(std::string(5 * mebibyte, '\n') + "gitdir: ../elsewhere\n"), std::nullopt);
}

TEST_F(GitFileTests, aPipeHasNoIndexAndIsNotWaitedFor) {
    temp.folder("code/app");
    ASSERT_EQ(::mkfifo(temp.path("code/app/.git").c_str(), 0600), 0);

    EXPECT_EQ(index().repositories, (std::vector<Repository>{{temp.path("code/app"), std::nullopt}}));
}

TEST_F(GitFileTests, aFileThatLeadsToAPipeHasNoIndex) {
    temp.folder("code");
    ASSERT_EQ(::mkfifo(temp.path("code/pipe").c_str(), 0600), 0);

    EXPECT_EQ(activity("gitdir: ../pipe\n"), std::nullopt);
}

TEST_F(GitFileTests, aLinkToTheRealFolderLeadsThere) {
    repository("elsewhere", 1'600'000'000);
    temp.setModified("elsewhere/.git/index", date);
    temp.symlink("code/app/.git", temp.path("elsewhere/.git"));

    EXPECT_EQ(index().repositories, (std::vector<Repository>{{temp.path("code/app"), found}}));
}

TEST_F(GitFileTests, aDanglingLinkHasNoIndex) {
    temp.symlink("code/app/.git", "nowhere");

    EXPECT_EQ(index().repositories, (std::vector<Repository>{{temp.path("code/app"), std::nullopt}}));
}

#ifndef __APPLE__ // whose file systems take no such names
TEST_F(GitFileTests, thePathNeedNotBeText) {
    temp.file("code/\xff\xfe/index", {.modified = date});

    EXPECT_EQ(activity("gitdir: ../\xff\xfe\n"), found);
}
#endif

TEST_F(ProjectIndexTests, manyRepositoriesAskedAtOnceKeepTheirOrderAndDates) {
    std::vector<Repository> expected;
    for (int number = 0; number < 20; ++number) {
        const auto date = 1'600'000'000 + number;
        const auto name = "code" + std::to_string(number);
        expected.push_back({repository(name, date), instantFromSeconds(date)});
    }
    std::vector<std::string> all;
    for (const auto& repository : expected)
        all.push_back(repository.root);

    EXPECT_EQ(ProjectIndex::build(all, 6).repositories, expected);
}

} // namespace
} // namespace korvanti
