#include "providers/ProjectArtifactProvider.h"

#include "ProjectArtifactFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace korvanti {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Needs an ordinary user, whom a lock keeps out: runs in the box.
class ProjectArtifactPermissionTests : public testing::ProjectArtifactFixture {};

TEST_F(ProjectArtifactPermissionTests, aLockedFolderInALooseProjectIsPassedOver) {
    looseProject("loose");
    home.file("loose/locked/.venv/data");
    home.file("loose/open/.venv/data");
    home.setMode("loose/locked", 0);

    EXPECT_THAT(folders(), ElementsAre(home.path("loose/open/.venv")));
}

TEST_F(ProjectArtifactPermissionTests, aLockedLooseProjectHasNone) {
    looseProject("loose");
    home.file("loose/.venv/data");
    home.setMode("loose", 0);

    EXPECT_THAT(candidates(), IsEmpty());
}

TEST_F(ProjectArtifactPermissionTests, aLockedRepositoryHasNone) {
    repository("repo", ".venv/\n");
    home.file("repo/.venv/data");
    home.setMode("repo", 0);

    EXPECT_THAT(candidates(), IsEmpty());
}

TEST_F(ProjectArtifactPermissionTests, aLockedFolderDoesNotLookLikeSourceAndIsTooSmallToBeShown) {
    repository("repo", "/locked/\n");
    home.file("repo/locked/src/data", {.allocatedBytes = 110'000'000});
    home.setMode("repo/locked", 0);

    EXPECT_THAT(folders(), ElementsAre(home.path("repo/locked")));
    ScanContext context;
    context.projects = projects;
    EXPECT_THAT(ProjectArtifactProvider().items(context), IsEmpty());
}

} // namespace
} // namespace korvanti
