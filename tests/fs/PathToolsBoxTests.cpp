#include "fs/PathTools.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>

namespace korvanti {
namespace {

namespace fs = std::filesystem;

/// Makes folders at the root: runs in the box as root.
class PathToolsBoxTests : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(fs::exists("/box")) << "Only inside the box: tests/box/enter --root";
    }
};

TEST_F(PathToolsBoxTests, aPathUnderPrivateIsTheShorterOneWhereThatExists) {
    fs::create_directories("/private/short/inside");
    EXPECT_EQ(PathTools::standardized("/private/short/inside"), "/private/short/inside");
    fs::create_directory_symlink("/private/short", "/short");
    EXPECT_EQ(PathTools::standardized("/private/short"), "/short");
    EXPECT_EQ(PathTools::standardized("//private/./short/inside/"), "/short/inside");
    EXPECT_EQ(PathTools::standardized("/short/inside/.."), "/short");
    EXPECT_EQ(PathTools::standardized("/private/short/missing"), "/private/short/missing");
    EXPECT_EQ(PathTools::standardized("/private"), "/private");
    EXPECT_EQ(PathTools::standardized("/privateshort"), "/privateshort");
}

TEST_F(PathToolsBoxTests, theMacsOwnFoldersAreNotTakenForThoseUnderPrivate) {
    for (const std::string name : {"Applications", "Library", "System", "Users", "Volumes", "bin", "cores",
                                   "dev", "opt", "private", "sbin", "usr"}) {
        fs::create_directories("/" + name + "/inside");
        for (const auto& path : {"/private/" + name, "/private/" + name + "/inside"})
            EXPECT_EQ(PathTools::standardized(path), path);
    }
    fs::create_directories("/usr2");
    EXPECT_EQ(PathTools::standardized("/private/usr2"), "/usr2");
}

TEST_F(PathToolsBoxTests, onlyTheFirstPrefixThatFitsIsTried) {
    fs::create_directories("/near");
    EXPECT_EQ(PathTools::standardized("/private/var/automount/near"), "/near");
    EXPECT_EQ(PathTools::standardized("/var/automount/near"), "/near");
    fs::create_directories("/var/automount/other");
    EXPECT_EQ(PathTools::standardized("/private/var/automount/other"), "/private/var/automount/other");
    EXPECT_EQ(PathTools::standardized("/var/automount/other"), "/var/automount/other");
    EXPECT_EQ(PathTools::standardized("/var/automount"), "/var/automount");
    EXPECT_EQ(PathTools::standardized("/private/var/automount"), "/var/automount");
}

} // namespace
} // namespace korvanti
