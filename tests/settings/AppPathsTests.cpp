#include "settings/AppPaths.h"
#include "support/Environment.h"
#include "support/TempFolder.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <tuple>

namespace korvanti {
namespace {

using testing::textOf;

constexpr const char* supportFolder = "Library/Application Support/Korvanti";

/// The user's home folder is a fresh one for each test.
class AppPathsTests : public ::testing::Test {
protected:
    testing::TempFolder home;
    testing::ScopedHome usersHome{home.path()};
};

TEST_F(AppPathsTests, allFilesLieInTheSupportFolder) {
    const std::string support = home.path(supportFolder);
    EXPECT_EQ(AppPaths::support(), support);
    EXPECT_EQ(AppPaths::settings(), support + "/settings.json");
    EXPECT_EQ(AppPaths::lastReport(), support + "/last-report.json");
    EXPECT_EQ(AppPaths::storageMap(), support + "/storage-map.json");
    EXPECT_EQ(AppPaths::activity(), support + "/activity.jsonl");
    EXPECT_EQ(AppPaths::offloads(), support + "/offloads.json");
}

TEST_F(AppPathsTests, theSupportFolderIsCreatedEachTimeItIsAskedFor) {
    ASSERT_FALSE(std::filesystem::exists(home.path("Library")));
    std::ignore = AppPaths::support();
    EXPECT_TRUE(std::filesystem::is_directory(home.path(supportFolder)));

    std::filesystem::remove_all(home.path("Library"));
    std::ignore = AppPaths::activity();
    EXPECT_TRUE(std::filesystem::is_directory(home.path(supportFolder)));
}

TEST_F(AppPathsTests, aSupportFolderThatCannotBeMadeIsStillNamed) {
    home.file("Library", {.text = "in the way"});
    EXPECT_EQ(AppPaths::support(), home.path(supportFolder));
    EXPECT_EQ(textOf(home.path("Library")), "in the way");
}

} // namespace
} // namespace korvanti
