#include "providers/ProjectArtifactCandidates.h"

#include "ProjectArtifactFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace korvanti {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::UnorderedElementsAre;

class ProjectArtifactCandidatesTests : public testing::ProjectArtifactFixture {};

TEST_F(ProjectArtifactCandidatesTests, hasNoneWithoutProjects) {
    EXPECT_THAT(candidates(), IsEmpty());
}

// What git tells

TEST_F(ProjectArtifactCandidatesTests, onlyFoldersThatGitIgnoresAreCandidates) {
    const auto root = repository("repo", "/ignored/\n*.log\n");
    home.file("repo/package.json");
    home.file("repo/dist/tracked.txt");
    home.file("repo/.venv/untracked");
    home.file("repo/big.log");
    home.file("repo/ignored/data");
    testing::git(root, {"add", "package.json", "dist"});
    testing::git(root, {"commit", "--quiet", "--message=one"});

    EXPECT_THAT(candidates(), ElementsAre(unknown("repo/ignored", "Folder diabaikan git: ignored")));
}

TEST_F(ProjectArtifactCandidatesTests, anIgnoredFolderWithTrackedFilesIsNotACandidate) {
    const auto root = repository("repo", "/folder/\n");
    home.file("repo/folder/tracked");
    home.file("repo/folder/inner/data");
    testing::git(root, {"add", "--force", "folder/tracked"});

    EXPECT_THAT(folders(), ElementsAre(home.path("repo/folder/inner")));
}

TEST_F(ProjectArtifactCandidatesTests, everyIgnoreFileOfTheRepositoryCounts) {
    repository("repo");
    home.file("repo/sub/.gitignore", {.text = "one/\n"});
    home.file("repo/sub/one/data");
    home.file("repo/.git/info/exclude", {.text = "two/\n"});
    home.file("repo/two/data");

    EXPECT_THAT(folders(), UnorderedElementsAre(home.path("repo/sub/one"), home.path("repo/two")));
}

TEST_F(ProjectArtifactCandidatesTests, aLinkToAFolderIsNotACandidate) {
    repository("repo", "link\n/.venv\n");
    home.symlink("repo/link", home.folder("elsewhere"));
    home.symlink("repo/.venv", home.folder("elsewhere"));

    EXPECT_THAT(candidates(), IsEmpty());
}

TEST_F(ProjectArtifactCandidatesTests, aNameMayHoldAnyCharacter) {
    repository("repo", "/*/\n");
    const std::string names[] = {"two words",    "line\nfeed", "\"quoted\"", "back\\slash",
                                 "Kafé 漢字 🙂", "-z",         "*"};
    std::vector<Candidate> expected;
    for (const auto& name : names) {
        home.file("repo/" + name + "/data");
        expected.push_back(unknown("repo/" + name, "Folder diabaikan git: " + name));
    }

    EXPECT_THAT(candidates(), ::testing::UnorderedElementsAreArray(expected));
}

#ifndef __APPLE__ // whose file systems take no such names
TEST_F(ProjectArtifactCandidatesTests, aNameThatIsNotUtf8StandsForNoOtherFolder) {
    const auto root = repository("repo", "/stuff\xff/\n/deep/*/\n");
    home.file("repo/stuff\xff/data");
    home.file("repo/stuff\uFFFD/tracked");
    home.file("repo/deep/tracked");
    home.file("repo/deep/\xff/data");
    testing::git(root, {"add", "."});

    EXPECT_THAT(folders(),
                ::testing::UnorderedElementsAre(home.path("repo/stuff\xff"), home.path("repo/deep/\xff")));
}

TEST_F(ProjectArtifactCandidatesTests, aRepositoryWhosePathIsNotUtf8IsAsked) {
    repository("repo\xff", "/stuff/\n");
    home.file("repo\xff/stuff/data");

    EXPECT_THAT(folders(), ElementsAre(home.path("repo\xff/stuff")));
}
#endif

TEST_F(ProjectArtifactCandidatesTests, aRepositoryThatGitFailsInHasNone) {
    projects.repositories.push_back({home.path("missing"), std::nullopt});
    projects.repositories.push_back({home.folder("no repository"), std::nullopt});
    home.file("no repository/.venv/data");
    projects.repositories.push_back({home.folder("broken"), std::nullopt});
    home.file("broken/.git", {.text = "nonsense\n"});
    home.file("broken/.venv/data");
    repository("repo", ".venv/\n");
    home.file("repo/.venv/data");

    EXPECT_THAT(folders(), ElementsAre(home.path("repo/.venv")));
}

TEST_F(ProjectArtifactCandidatesTests, aRepositoryThatAnOuterOneAnswersForIsNotItsOwnCandidate) {
    testing::git(home.folder("outer"), {"init", "--quiet"});
    home.file("outer/.gitignore", {.text = "/broken/\n"});
    home.folder("outer/broken/.git"); // and nothing in it
    home.file("outer/broken/.venv/data");
    projects.repositories.push_back({home.path("outer/broken"), std::nullopt});

    EXPECT_THAT(candidates(), IsEmpty());
}

TEST_F(ProjectArtifactCandidatesTests, candidatesComeInTheOrderOfTheIndexEachWithItsActivity) {
    const auto one = instantFromSeconds(1'600'000'000);
    const auto two = instantFromSeconds(1'700'000'000);
    repository("z", "x/\n", two);
    repository("a", "x/\n", one);
    repository("m", "x/\n");
    for (const auto* place : {"z/x", "a/x", "m/x"})
        home.file(std::string(place) + "/data");
    looseProject("loose");
    home.file("loose/.venv/data");
    home.setModified("loose/.venv", 1'500'000'000);

    const auto found = candidates();

    ASSERT_THAT(found, SizeIs(4));
    EXPECT_EQ(std::pair(found[0].url, found[0].repoActivity),
              std::pair(home.path("z/x"), std::optional(two)));
    EXPECT_EQ(std::pair(found[1].url, found[1].repoActivity),
              std::pair(home.path("a/x"), std::optional(one)));
    EXPECT_EQ(found[2].url, home.path("m/x"));
    EXPECT_EQ(found[2].repoActivity, std::nullopt);
    EXPECT_EQ(found[3].url, home.path("loose/.venv"));
    EXPECT_EQ(found[3].repoActivity, instantFromSeconds(1'500'000'000));
}

TEST_F(ProjectArtifactCandidatesTests, whatIsWalkedInAnIgnoredFolderHasTheActivityOfTheRepository) {
    const auto activity = instantFromSeconds(1'600'000'000);
    repository("repo", "/stuff/\n", activity);
    home.file("repo/stuff/main.c");
    home.file("repo/stuff/.venv/data");

    const auto found = candidates();

    ASSERT_THAT(found, SizeIs(1));
    EXPECT_EQ(found[0].repoActivity, activity);
}

// Repositories inside each other

TEST_F(ProjectArtifactCandidatesTests, anIgnoredFolderThatIsOrHoldsARepositoryIsLeftToIt) {
    repository("outer", "*/\n");
    repository("outer/itself", "x/\n");
    repository("outer/holding/a/deep", "x/\n");
    home.file("outer/itself/x/data");
    home.file("outer/holding/data");
    home.file("outer/holding/a/deep/x/data");

    EXPECT_THAT(folders(),
                UnorderedElementsAre(home.path("outer/itself/x"), home.path("outer/holding/a/deep/x")));
}

TEST_F(ProjectArtifactCandidatesTests, aKnownFolderThatHoldsARepositoryIsLeftToIt) {
    repository("outer", "node_modules/\nbuild/\n");
    home.file("outer/package.json");
    repository("outer/node_modules/a");
    repository("outer/build/b");

    EXPECT_THAT(candidates(), IsEmpty());
}

// Somebody's work, that the index did not find

TEST_F(ProjectArtifactCandidatesTests, aFolderWithARepositoryInItIsNoCandidate) {
    repository("repo", "build/\nnode_modules/\ndata/\n/other/\n");
    home.file("repo/package.json");
    home.file("repo/build/mylib/.git/HEAD");
    home.file("repo/node_modules/ku/.git", {.text = "gitdir: elsewhere\n"});
    home.file("repo/data/x/.git/HEAD");
    home.file("repo/sub/package.json");
    home.file("repo/sub/node_modules/@contoh/ku/.git/HEAD");
    home.file("repo/sub/build/.git/HEAD");
    home.file("repo/other/data");
    EXPECT_THAT(folders(), ElementsAre(home.path("repo/other")));
}

TEST_F(ProjectArtifactCandidatesTests, aRepositoryThatABuildToolFetchedLeavesItsFolderACandidate) {
    repository("repo", "build/\nnode_modules/\n.build/\n");
    home.file("repo/CMakeLists.txt");
    home.file("repo/package.json");
    home.file("repo/build/_deps/x-src/.git/HEAD");
    home.file("repo/.build/checkouts/x/.git/HEAD");
    home.file("repo/node_modules/ku/node_modules/x/.git/HEAD");
    home.file("repo/node_modules/@contoh/ku/x/.git/HEAD");
    home.file("repo/node_modules/contoh/ku/.git/HEAD"); // no scope
    home.file("repo/node_modules/.gitignore");
    EXPECT_THAT(folders(), UnorderedElementsAre(home.path("repo/build"), home.path("repo/.build"),
                                                home.path("repo/node_modules")));
}

TEST_F(ProjectArtifactCandidatesTests, aLinkToARepositoryLeavesItsFolderACandidate) {
    repository("repo", "node_modules/\n");
    home.file("repo/package.json");
    home.file("elsewhere/ku/.git/HEAD");
    home.folder("repo/node_modules/@contoh");
    home.symlink("repo/node_modules/ku", home.path("elsewhere/ku"));
    home.symlink("repo/node_modules/@contoh/ku", home.path("elsewhere/ku"));
    home.symlink("repo/node_modules/@lain", home.path("elsewhere"));
    EXPECT_THAT(folders(), ElementsAre(home.path("repo/node_modules")));
}

TEST_F(ProjectArtifactCandidatesTests, aPartOfAnXcodeBuildWithARepositoryInItIsNoCandidate) {
    repository("repo", "build/\n");
    home.file("repo/project.yml");
    home.file("repo/build/DerivedData/mylib/.git/HEAD");
    home.file("repo/build/DerivedData-2/mylib/file");
    EXPECT_THAT(folders(), ElementsAre(home.path("repo/build/DerivedData-2")));
    home.file("repo/build/mylib/.git/HEAD");
    EXPECT_THAT(folders(), IsEmpty());
}

TEST_F(ProjectArtifactCandidatesTests, aWalkPassesOverAFolderWithARepositoryInIt) {
    looseProject("loose");
    home.file("loose/package.json");
    home.file("loose/node_modules/ku/.git/HEAD");
    home.file("loose/node_modules/ku/package.json");
    home.file("loose/node_modules/ku/node_modules/x");
    home.file("loose/build/deep/mylib/.git/HEAD");
    home.file("loose/sub/package.json");
    home.file("loose/sub/node_modules/x/index.js");
    EXPECT_THAT(folders(),
                UnorderedElementsAre(home.path("loose/build"), home.path("loose/sub/node_modules")));
    projects.repositories.push_back({home.path("loose/build/deep/mylib"), std::nullopt});
    EXPECT_THAT(folders(), ElementsAre(home.path("loose/sub/node_modules")));
}

TEST_F(ProjectArtifactCandidatesTests, aFolderWhoseNameBeginsLikeARepositoryIsACandidate) {
    repository("outer", "*/\n");
    repository("outer/copy-2");
    home.file("outer/copy/data");

    EXPECT_THAT(folders(), ElementsAre(home.path("outer/copy")));
}

TEST_F(ProjectArtifactCandidatesTests, aRepositoryIsRecognisedInAnyFormOfTheSameName) {
    repository("outer", "*/\n");
    const std::string forms[] = {"caf\u00E9", "cafe\u0301"}; // git may print one where the disk has the other
    home.file("outer/" + forms[0] + " a/data");
    home.file("outer/" + forms[1] + " b/data");
    projects.repositories.push_back({home.path("outer/" + forms[1] + " a/repo"), std::nullopt});
    projects.repositories.push_back({home.path("outer/" + forms[0] + " b/repo"), std::nullopt});

    EXPECT_THAT(candidates(), IsEmpty());
}

TEST_F(ProjectArtifactCandidatesTests, worktreesOfASessionAreAskedThemselves) {
    const auto root = repository("repo", ".claude/\n.venv/\n");
    testing::git(root, {"add", ".gitignore"});
    testing::git(root, {"commit", "--quiet", "--message=one"});
    testing::git(root, {"worktree", "add", "--quiet", ".claude/worktrees/session"});
    projects.repositories.push_back({home.path("repo/.claude/worktrees/session"), std::nullopt});
    home.file("repo/.venv/data");
    home.file("repo/.claude/worktrees/session/.venv/data");

    EXPECT_THAT(folders(),
                ElementsAre(home.path("repo/.venv"), home.path("repo/.claude/worktrees/session/.venv")));
}

// Loose projects

TEST_F(ProjectArtifactCandidatesTests, aLooseProjectIsWalkedFourLevelsDown) {
    looseProject("loose");
    for (const auto* place : {"", "1/", "1/2/", "1/2/3/", "1/2/3/4/", "1/2/3/4/5/"})
        home.file("loose/" + std::string(place) + ".venv/data");

    EXPECT_THAT(folders(), UnorderedElementsAre(home.path("loose/.venv"), home.path("loose/1/.venv"),
                                                home.path("loose/1/2/.venv"), home.path("loose/1/2/3/.venv"),
                                                home.path("loose/1/2/3/4/.venv")));
}

TEST_F(ProjectArtifactCandidatesTests, anIgnoredFolderThatLooksLikeSourceIsWalkedFourLevelsDown) {
    repository("repo", "/stuff/\n");
    home.file("repo/stuff/main.c");
    for (const auto* place : {"1/2/3/4/", "1/2/3/4/5/"})
        home.file("repo/stuff/" + std::string(place) + ".venv/data");

    EXPECT_THAT(folders(), ElementsAre(home.path("repo/stuff/1/2/3/4/.venv")));
}

TEST_F(ProjectArtifactCandidatesTests, aWalkPassesOverLinksFilesAndHiddenFolders) {
    looseProject("loose");
    home.file("elsewhere/.venv/data");
    home.symlink("loose/link", home.path("elsewhere"));
    home.symlink("loose/.venv", home.path("elsewhere"));
    home.file("loose/.vite");
    home.file("loose/.git/x/.venv/data");
    home.file("loose/.hidden/x/.venv/data");

    EXPECT_THAT(candidates(), IsEmpty());
}

TEST_F(ProjectArtifactCandidatesTests, aWalkDoesNotEnterACandidate) {
    looseProject("loose");
    home.file("loose/package.json");
    home.file("loose/node_modules/package/package.json");
    home.file("loose/node_modules/package/node_modules/data");
    home.file("loose/build/package.json");
    home.file("loose/build/node_modules/data");

    EXPECT_THAT(folders(), UnorderedElementsAre(home.path("loose/node_modules"), home.path("loose/build")));
}

TEST_F(ProjectArtifactCandidatesTests, aWalkEntersAFolderWhoseRuleDoesNotApplyUnlessItIsHidden) {
    looseProject("loose");
    home.file("loose/dist/.venv/data");
    home.file("loose/.next/.venv/data");

    EXPECT_THAT(folders(), ElementsAre(home.path("loose/dist/.venv")));
}

TEST_F(ProjectArtifactCandidatesTests, aWalkKnowsNoFolderWithoutARule) {
    looseProject("loose");
    home.file("loose/screenshots/data");

    EXPECT_THAT(candidates(), IsEmpty());
}

TEST_F(ProjectArtifactCandidatesTests, aWalkLeavesARepositoryToItsGit) {
    looseProject("loose");
    repository("loose/nested", ".vite/\n", instantFromSeconds(1'600'000'000));
    home.file("loose/nested/package.json");
    home.file("loose/nested/dist/own work");
    home.file("loose/nested/.vite/data");

    const auto found = candidates();

    ASSERT_THAT(found, SizeIs(1));
    EXPECT_EQ(found[0].url, home.path("loose/nested/.vite"));
    EXPECT_EQ(found[0].repoActivity, instantFromSeconds(1'600'000'000));
}

TEST_F(ProjectArtifactCandidatesTests, theActivityOfALooseProjectIsItsNewestDirectEntry) {
    looseProject("loose");
    home.file("loose/.venv/newer and deeper", {.modified = 1'700'000'000});
    home.setModified("loose/.venv", 1'500'000'000);
    home.file("loose/old", {.modified = 1'400'000'000});
    home.symlink("loose/link", home.path("missing"));
    home.setModified("loose/link", 1'600'000'000);

    const auto found = candidates();

    ASSERT_THAT(found, SizeIs(1));
    EXPECT_EQ(found[0].repoActivity, instantFromSeconds(1'600'000'000));
}

TEST_F(ProjectArtifactCandidatesTests, aLooseProjectThatIsMissingOrNoFolderHasNone) {
    projects.looseProjects = {home.path("missing"), home.file("file")};

    EXPECT_THAT(candidates(), IsEmpty());
}

#ifndef __APPLE__ // whose file systems take no such names
TEST_F(ProjectArtifactCandidatesTests, aWalkKeepsTheBytesOfANameThatIsNotUtf8) {
    looseProject("loose\xff");
    home.file("loose\xff/build/data");

    EXPECT_THAT(candidates(),
                ElementsAre(::testing::Field(&Candidate::title, "Folder build (loose\xff/build)")));
}
#endif

} // namespace
} // namespace korvanti
