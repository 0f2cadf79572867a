#include "process/Toolchain.h"

#include "support/BoxFolder.h"
#include "support/Environment.h"
#include "support/NewProcess.h"

#include <chrono>
#include <csignal>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <string>

namespace korvanti {
namespace {

using namespace std::chrono_literals;
using testing::BoxMac;
using ::testing::ElementsAre;
using testing::inANewProcess;
using testing::ScopedVariable;

/// The developer folder is found once a process, so each test that asks for it asks in a new one.
class ToolchainBoxTests : public ::testing::Test {
protected:
    std::string xcode(const std::string& name) const {
        return mac.applications.folder(name + "/Contents/Developer");
    }

    const BoxMac mac;
    const ScopedVariable none{"DEVELOPER_DIR", std::nullopt};
};

TEST_F(ToolchainBoxTests, theDeveloperFolderIsTheSelectedOne) {
    xcode("Xcode.app");
    mac.answer("xcode-select -p", xcode("Xcode-beta.app") + "\n");

    inANewProcess(
        [] { EXPECT_EQ(Toolchain::developerDir(), "/Applications/Xcode-beta.app/Contents/Developer"); });
}

TEST_F(ToolchainBoxTests, theDeveloperFolderIsThatOfAnXcodeBesideTheCommandLineTools) {
    xcode("Xcode-16.app");
    mac.answer("xcode-select -p", "/Library/Developer/CommandLineTools\n");

    inANewProcess(
        [] { EXPECT_EQ(Toolchain::developerDir(), "/Applications/Xcode-16.app/Contents/Developer"); });
}

TEST_F(ToolchainBoxTests, xcodeWinsWhereNothingIsSelected) {
    xcode("Xcode-15.app");
    xcode("Xcode.app");
    mac.answer("xcode-select -p", "", 2);

    inANewProcess([] { EXPECT_EQ(Toolchain::developerDir(), "/Applications/Xcode.app/Contents/Developer"); });
}

TEST_F(ToolchainBoxTests, theDeveloperFolderIsFoundOnce) {
    const auto first = xcode("Xcode.app");
    mac.answer("xcode-select -p", first + "\n");
    const auto other = xcode("Xcode-beta.app");

    inANewProcess([&] {
        EXPECT_EQ(Toolchain::developerDir(), first);
        mac.answer("xcode-select -p", other + "\n");
        std::filesystem::remove_all(first);
        EXPECT_EQ(Toolchain::developerDir(), first);
        static_cast<void>(Toolchain::simctl({"list"}, 100s));
        EXPECT_THAT(BoxMac::calls(), ElementsAre("xcode-select -p", "xcrun simctl list"));
    });
}

TEST_F(ToolchainBoxTests, withoutADeveloperFolderSimctlIsNotStarted) {
    mac.answer("xcode-select -p", "/Library/Developer/CommandLineTools\n");
    mac.answer("xcrun simctl list", "answer");

    inANewProcess([] {
        EXPECT_EQ(Toolchain::developerDir(), std::nullopt);
        EXPECT_EQ(Toolchain::simctl({"list"}, 100s), std::nullopt);
        EXPECT_THAT(BoxMac::calls(), ElementsAre("xcode-select -p"));
    });
}

TEST_F(ToolchainBoxTests, simctlRunsWithItsArgumentsAndTheDeveloperFolder) {
    const auto folder = xcode("Xcode.app");
    mac.answerWithScript("xcrun simctl list devices -j", "echo \"$DEVELOPER_DIR\"; echo err >&2; exit 3");
    const ScopedVariable inherited("DEVELOPER_DIR", "/inherited");

    inANewProcess([&] {
        EXPECT_EQ(Toolchain::simctl({"list", "devices", "-j"}, 100s),
                  (ShellResult{.status = 3, .out = folder + "\n", .err = "err\n"}));
    });
}

TEST_F(ToolchainBoxTests, simctlEndsAtItsTimeLimit) {
    xcode("Xcode.app");
    mac.answerWithScript("xcrun simctl hang", "exec sleep 600");

    inANewProcess([] { EXPECT_EQ(Toolchain::simctl({"hang"}, 1s)->status, SIGTERM); });
}

TEST_F(ToolchainBoxTests, gitRunsInItsFolderWithTheDeveloperFolder) {
    const auto folder = xcode("Xcode.app");
    const auto repository = mac.home.folder("a repository");
    const ScopedVariable inherited("DEVELOPER_DIR", "/inherited");

    inANewProcess([&] {
        EXPECT_TRUE(Toolchain::git({"init", "-q"}, repository, 100s).ok());
        EXPECT_EQ(Toolchain::git({"rev-parse", "--show-toplevel"}, repository, 100s).out, repository + "\n");
        EXPECT_EQ(
            Toolchain::git({"-c", "alias.show-it=!echo $DEVELOPER_DIR", "show-it"}, repository, 100s).out,
            folder + "\n");
    });
}

TEST_F(ToolchainBoxTests, gitRunsWithoutADeveloperFolderAsWell) {
    const auto repository = mac.home.folder("repository");

    inANewProcess([&] {
        EXPECT_TRUE(Toolchain::git({"init", "-q"}, repository, 100s).ok());
        EXPECT_EQ(
            Toolchain::git({"-c", "alias.show-it=!echo ${DEVELOPER_DIR-none}", "show-it"}, repository, 100s)
                .out,
            "none\n");
        EXPECT_EQ(Toolchain::developerDir(), std::nullopt);
    });
}

TEST_F(ToolchainBoxTests, gitInAFolderThatIsMissingOrNoRepositoryFails) {
    inANewProcess([&] {
        for (const auto& folder : {mac.home.path("missing"), mac.home.folder("plain")}) {
            const auto result = Toolchain::git({"status"}, folder, 100s);
            EXPECT_FALSE(result.ok()) << folder;
            EXPECT_NE(result.err, "") << folder;
        }
    });
}

TEST_F(ToolchainBoxTests, whatIsRunningIsAskedByPatternOrByName) {
    mac.answer("pgrep -f A daemon", "4711\n");
    mac.answer("pgrep -x An Ex", "4711\n4712\n");

    EXPECT_TRUE(Toolchain::isRunning("A daemon"));
    EXPECT_FALSE(Toolchain::isRunning("An Ex"));
    EXPECT_TRUE(Toolchain::isAppRunning("An Ex"));
    EXPECT_FALSE(Toolchain::isAppRunning("A daemon"));
}

TEST_F(ToolchainBoxTests, nothingRunsThatCanNotBeAsked) {
    for (const int status : {1, 2, 3}) {
        mac.answer("pgrep -f A daemon", "4711\n", status);
        mac.answer("pgrep -x An Ex", "4711\n", status);
        EXPECT_FALSE(Toolchain::isRunning("A daemon")) << status;
        EXPECT_FALSE(Toolchain::isAppRunning("An Ex")) << status;
    }
}

TEST_F(ToolchainBoxTests, askingWhatIsRunningNeedsNoXcode) {
    EXPECT_FALSE(Toolchain::isRunning("A daemon"));
    EXPECT_FALSE(Toolchain::isAppRunning("An Ex"));
    EXPECT_THAT(BoxMac::calls(), ElementsAre("pgrep -f A daemon", "pgrep -x An Ex"));
}

} // namespace
} // namespace korvanti
