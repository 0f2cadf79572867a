#include "process/Toolchain.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

namespace korvanti {
namespace {

class ToolchainTests : public ::testing::Test {
protected:
    testing::TempFolder applications;
};

TEST_F(ToolchainTests, withoutXcodeThereIsNoDeveloperFolder) {
    applications.folder("Safari.app/Contents/Developer");
    applications.folder("Xcode tools/Contents/Developer");
    EXPECT_EQ(Toolchain::findDeveloperDir(applications.path()), std::nullopt);
    EXPECT_EQ(Toolchain::findDeveloperDir(applications.path("missing")), std::nullopt);
}

TEST_F(ToolchainTests, theReleaseGoesBeforeEveryOtherVersion) {
    applications.folder("Xcode-15.app/Contents/Developer");
    const auto release = applications.folder("Xcode.app/Contents/Developer");
    EXPECT_EQ(Toolchain::findDeveloperDir(applications.path()), release);
}

TEST_F(ToolchainTests, otherVersionsGoByTheirNames) {
    applications.folder("Xcode-beta.app/Contents/Developer");
    const auto first = applications.folder("Xcode-16.app/Contents/Developer");
    EXPECT_EQ(Toolchain::findDeveloperDir(applications.path()), first);
}

TEST_F(ToolchainTests, anXcodeWithoutADeveloperFolderIsPassedOver) {
    applications.folder("Xcode.app/Contents");
    const auto other = applications.folder("Xcode-16.app/Contents/Developer");
    EXPECT_EQ(Toolchain::findDeveloperDir(applications.path()), other);
}

} // namespace
} // namespace korvanti
