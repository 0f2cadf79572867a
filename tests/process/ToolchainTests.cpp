#include "process/Toolchain.h"

#include "support/TempFolder.h"

#include <gtest/gtest.h>
#include <string>

namespace korvanti {
namespace {

class ToolchainTests : public ::testing::Test {
protected:
    /// An Xcode with its developer folder, which is given.
    std::string xcode(const std::string& name) const {
        return applications.folder(name + "/Contents/Developer");
    }

    [[nodiscard]] std::optional<std::string> found(const std::string& selected = "") const {
        return Toolchain::findDeveloperDir(selected, applications.path());
    }

    testing::TempFolder applications;
};

TEST_F(ToolchainTests, theSelectedXcodeIsTaken) {
    const testing::TempFolder elsewhere;
    const auto selected = elsewhere.folder("My Xcodes/Xcode 15.app/Contents/Developer");
    xcode("Xcode.app");

    EXPECT_EQ(found(selected + "\n"), selected);
    EXPECT_EQ(found(" \t" + selected + "\r\n\n"), selected);
    EXPECT_EQ(found(selected), selected);
}

TEST_F(ToolchainTests, anyApplicationMayBeSelected) {
    const testing::TempFolder elsewhere;
    const auto selected = elsewhere.folder("Beta.app/Contents/Developer");

    EXPECT_EQ(found(selected + "\n"), selected);
}

TEST_F(ToolchainTests, theCommandLineToolsAreNoXcode) {
    const testing::TempFolder elsewhere;
    const auto expected = xcode("Xcode-16.app");

    EXPECT_EQ(found("/Library/Developer/CommandLineTools\n"), expected);
    EXPECT_EQ(found(elsewhere.folder("Library/Developer/CommandLineTools") + "\n"), expected);
}

TEST_F(ToolchainTests, aSelectionThatIsNoDeveloperFolderIsOfNoUse) {
    const auto expected = xcode("Xcode.app");
    const testing::TempFolder elsewhere;
    elsewhere.folder("Xcode.app/Contents/Developer/usr");
    for (const auto& selected :
         {std::string(), std::string("\n"), std::string("xcode-select: error: unable to get active folder\n"),
          std::string("/no/such/Xcode.app/Contents/Developer\n"), elsewhere.path("Xcode.app"),
          elsewhere.path("Xcode.app/Contents/Developer/usr"), elsewhere.path("Xcode.app/Contents/Developer/"),
          elsewhere.path("xcode.app/contents/developer"),
          elsewhere.path("Xcode.app/Contents/Developer") + "\nand more"})
        EXPECT_EQ(found(selected), expected) << selected;
}

TEST_F(ToolchainTests, withoutASelectionXcodeComesBeforeEveryOther) {
    xcode("Xcode-15.app");
    xcode("Xcode 9.app");
    xcode("Xcode-beta.app");
    const auto expected = xcode("Xcode.app");

    EXPECT_EQ(found(), expected);
}

TEST_F(ToolchainTests, withoutXcodeTheFirstByNameIsTaken) {
    xcode("Xcode_14.app");
    xcode("Xcode-beta.app");
    xcode("Xcode-9.app");
    const auto expected = xcode("Xcode-16.app");

    EXPECT_EQ(found(), expected);
}

TEST_F(ToolchainTests, anXcodeWithoutADeveloperFolderIsPassedOver) {
    applications.folder("Xcode.app/Contents");
    applications.file("Xcode-14.app");
    applications.folder("Xcode-15.app");
    const auto expected = xcode("Xcode-16.app");

    EXPECT_EQ(found(), expected);
}

TEST_F(ToolchainTests, otherApplicationsAreNoXcode) {
    for (const auto* name : {"MyXcode.app", "xcode.app", "Xcode.app.old", "Xcode", "XCODE.app", "Xcode.APP"})
        xcode(name);

    EXPECT_EQ(found(), std::nullopt);
}

TEST_F(ToolchainTests, anXcodeBehindALinkIsAnXcode) {
    const testing::TempFolder elsewhere;
    elsewhere.folder("Xcode-16.4.app/Contents/Developer");
    applications.symlink("Xcode.app", elsewhere.path("Xcode-16.4.app"));

    EXPECT_EQ(found(), applications.path("Xcode.app/Contents/Developer"));
}

TEST_F(ToolchainTests, withoutAnyXcodeThereIsNoDeveloperFolder) {
    EXPECT_EQ(found(), std::nullopt);
    EXPECT_EQ(found("/Library/Developer/CommandLineTools\n"), std::nullopt);
    EXPECT_EQ(Toolchain::findDeveloperDir("", applications.path("missing")), std::nullopt);
}

} // namespace
} // namespace korvanti
