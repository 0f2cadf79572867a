#include "process/Toolchain.h"

#include "support/BoxFolder.h"
#include "support/Environment.h"
#include "support/TempFolder.h"

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace korvanti {
namespace {

using namespace std::chrono_literals;
using testing::BoxMac;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::ScopedVariable;

class ToolchainBoxTests : public ::testing::Test {
protected:
    /// The developer folder is found once a process, so each test that asks for it asks in a new one.
    static void inANewProcess(const std::function<void()>& body) {
        std::fflush(nullptr);
        const pid_t process = ::fork();
        ASSERT_GE(process, 0);
        if (process == 0) {
            body();
            std::fflush(nullptr);
            ::_exit(HasFailure() ? 1 : 0);
        }
        int status = 0;
        ASSERT_EQ(::waitpid(process, &status, 0), process);
        EXPECT_EQ(status, 0) << "see above";
    }

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

/// A program that does nothing, under a name of its own, for as long as the object lives.
class Process {
public:
    explicit Process(const std::string& name) {
        const auto program = temp_.path(name);
        std::filesystem::copy_file("/bin/sleep", program);
        std::string words[] = {program, "600"};
        char* arguments[] = {words[0].data(), words[1].data(), nullptr};
        EXPECT_EQ(::posix_spawn(&process_, program.c_str(), nullptr, nullptr, arguments, environ), 0);
    }
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;
    ~Process() {
        ::kill(process_, SIGKILL);
        ::waitpid(process_, nullptr, 0);
    }

private:
    testing::TempFolder temp_;
    pid_t process_ = -1;
};

/// A name that no other process of this machine has; the system keeps 15 characters of one.
const std::string& uniqueName() {
    static const std::string name = "Kv" + std::to_string(::getpid());
    return name;
}

TEST_F(ToolchainBoxTests, anApplicationIsKnownByItsWholeNameAndAPatternAnywhere) {
    const Process running(uniqueName() + " Ex");

    EXPECT_FALSE(Toolchain::isAppRunning(uniqueName()));
    EXPECT_TRUE(Toolchain::isAppRunning(uniqueName() + " Ex"));
    EXPECT_FALSE(Toolchain::isAppRunning(uniqueName() + " ex"));
    EXPECT_TRUE(Toolchain::isRunning(uniqueName()));
    EXPECT_TRUE(Toolchain::isRunning(uniqueName() + " Ex 6"));
    EXPECT_FALSE(Toolchain::isRunning(uniqueName() + " 6"));
}

TEST_F(ToolchainBoxTests, whatHasEndedIsNotRunning) {
    std::optional<Process> running(uniqueName());
    EXPECT_TRUE(Toolchain::isAppRunning(uniqueName()));

    running.reset();

    EXPECT_FALSE(Toolchain::isAppRunning(uniqueName()));
    EXPECT_FALSE(Toolchain::isRunning(uniqueName()));
}

TEST_F(ToolchainBoxTests, askingWhatIsRunningNeedsNoXcode) {
    EXPECT_FALSE(Toolchain::isRunning(uniqueName()));
    EXPECT_THAT(BoxMac::calls(), IsEmpty());
}

} // namespace
} // namespace korvanti
