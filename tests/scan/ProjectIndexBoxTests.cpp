#include "scan/ProjectIndex.h"

#include "support/Environment.h"
#include "support/TempFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <unistd.h>

/// What only an ordinary user meets: root reads everything.
namespace korvanti {
namespace {

using ::testing::ElementsAre;

class ProjectIndexPermissionTests : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_NE(::geteuid(), 0U) << "run this as an ordinary user"; }

    [[nodiscard]] ProjectIndex index() const { return ProjectIndex::build({temp.path("code")}, 6); }

    testing::TempFolder temp;
};

TEST_F(ProjectIndexPermissionTests, aLockedFolderIsPassedOverAndItsSiblingsAreNot) {
    temp.folder("code/locked/app/.git");
    temp.file("code/open/go.mod");
    temp.setMode("code/locked", 0);

    EXPECT_EQ(index(), (ProjectIndex{.looseProjects = {temp.path("code/open")}}));
}

TEST_F(ProjectIndexPermissionTests, aLockedRootIsEmpty) {
    temp.file("code/go.mod");
    temp.setMode("code", 0);

    EXPECT_EQ(index(), ProjectIndex());
    EXPECT_FALSE(ProjectIndex::isProjectRoot(temp.path("code")));
}

TEST_F(ProjectIndexPermissionTests, aLockedFileHasAnEmptyText) {
    temp.file("code/build.gradle", {.text = "compileSdk 34"});
    temp.file("code/.nvmrc", {.text = "20"});
    temp.setMode("code/build.gradle", 0);
    temp.setMode("code/.nvmrc", 0);

    EXPECT_EQ(index(), (ProjectIndex{.looseProjects = {temp.path("code")}, .buildFileText = "\n"}));
}

TEST_F(ProjectIndexPermissionTests, aLockedGitFolderTellsNoDate) {
    const testing::ScopedVariable ceiling("GIT_CEILING_DIRECTORIES", temp.path());
    temp.file("code/app/.git/index");
    temp.setMode("code/app/.git", 0);

    EXPECT_THAT(index().repositories, ElementsAre(Repository{temp.path("code/app"), std::nullopt}));
}

} // namespace
} // namespace korvanti
