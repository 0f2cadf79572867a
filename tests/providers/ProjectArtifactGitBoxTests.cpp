#include "ProjectArtifactFixture.h"
#include "support/Mount.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

namespace korvanti {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::Mount;

constexpr const char* installedGit = "/usr/bin/git";

/// Needs the right to mount: runs in the box as root.
class ProjectArtifactGitBoxTests : public testing::ProjectArtifactFixture {
protected:
    [[nodiscard]] std::string script(const std::string& text) const {
        const auto path = home.file("git", {.text = "#!/bin/sh\n" + text + "\n"});
        home.setMode("git", 0755);
        return path;
    }
};

TEST_F(ProjectArtifactGitBoxTests, withoutGitOnlyLooseProjectsHaveCandidates) {
    repository("repo", ".venv/\n");
    home.file("repo/.venv/data");
    looseProject("loose");
    home.file("loose/.venv/data");
    const Mount none("/dev/null", installedGit);

    EXPECT_THAT(folders(), ElementsAre(home.path("loose/.venv")));
}

TEST_F(ProjectArtifactGitBoxTests, gitIsAskedOnceForEachRepositoryInItsOrder) {
    projects.repositories = {{home.path("b"), {}}, {home.path("a"), {}}};
    const Mount recorder(script("echo \"$*\" >>'" + home.path("calls") + "'"), installedGit);

    EXPECT_THAT(candidates(), IsEmpty());

    const std::string question = " ls-files --others --ignored --exclude-standard --directory -z\n";
    EXPECT_EQ(testing::textOf(home.path("calls")),
              "-C " + home.path("b") + question + "-C " + home.path("a") + question);
}

TEST_F(ProjectArtifactGitBoxTests, whatAFailingGitPrintsDoesNotCount) {
    home.file("repo/.venv/data");
    projects.repositories = {{home.path("repo"), {}}};
    {
        const Mount well(script(R"(printf '.venv/\0')"), installedGit);
        ASSERT_THAT(folders(), ElementsAre(home.path("repo/.venv")));
    }
    const Mount failing(script(R"(printf '.venv/\0'; exit 1)"), installedGit);

    EXPECT_THAT(candidates(), IsEmpty());
}

TEST_F(ProjectArtifactGitBoxTests, whatGitPrintsNeverLeadsOutOfTheRepository) {
    home.file("repo/.venv/data");
    home.file("other/.venv/data");
    projects.repositories = {{home.path("repo"), {}}};
    const Mount strange(script(R"(printf '../other/.venv/\0.venv/../../other/.venv/\0.venv/\0')"),
                        installedGit);

    EXPECT_THAT(folders(), ElementsAre(home.path("repo/.venv")));
}

} // namespace
} // namespace korvanti
