#include "ShellSupport.h"
#include "fs/PathTools.h"
#include "shell/Desktop.h"
#include "support/BoxFolder.h"
#include "support/Mount.h"

#include <csignal>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

/// Real mounts: in the box as root.
namespace korvanti {
namespace {

using namespace korvanti::testing;

class WatchingTests : public ::testing::Test {
protected:
    WatchingTests() {
        application();
        desktop->watchMounts([this] { ++changes; });
    }

    const BoxMac mac;
    const BoxFolder volumes{"/Volumes"};
    std::unique_ptr<Desktop> desktop = systemDesktop("/Users/tester");
    int changes = 0;
};

TEST_F(WatchingTests, nothingIsToldWhileNothingHappens) {
    spinFor(std::chrono::milliseconds(100));
    EXPECT_EQ(changes, 0);
}

TEST_F(WatchingTests, eachMountAndUnmountIsToldOnce) {
    const auto path = volumes.folder("Kerja");
    for (int round = 0; round < 3; ++round) {
        changes = 0;
        std::optional<Mount> mount(path);
        ASSERT_TRUE(waitFor([&] { return changes > 0; }));
        spinFor(std::chrono::milliseconds(50));
        EXPECT_EQ(changes, 1);
        mount.reset();
        ASSERT_TRUE(waitFor([&] { return changes > 1; }));
        spinFor(std::chrono::milliseconds(50));
        EXPECT_EQ(changes, 2);
    }
}

TEST_F(WatchingTests, nothingIsToldOnceTheDesktopIsGone) {
    desktop.reset();
    const Mount mount(volumes.folder("Kerja"));
    spinFor(std::chrono::milliseconds(100));
    EXPECT_EQ(changes, 0);
}

TEST_F(WatchingTests, aProgramThatSeesAnotherFolderUnderThePathIsNotTheApplications) {
    mac.installApplication("Tool", "org.example.tool");
    InstalledApp app;
    app.path = "/Applications/Tool.app";
    const std::string elsewhere = "mount -t tmpfs elsewhere /Applications && mkdir /Applications/Tool.app && "
                                  "cp /bin/sleep /Applications/Tool.app/tool && "
                                  "exec /Applications/Tool.app/tool 60";
    pid_t process = 0;
    const char* const arguments[] = {"unshare", "--mount", "sh", "-c", elsewhere.c_str(), nullptr};
    ASSERT_EQ(
        ::posix_spawnp(&process, "unshare", nullptr, nullptr, const_cast<char* const*>(arguments), environ),
        0);
    const auto program = "/proc/" + std::to_string(process) + "/exe";
    EXPECT_TRUE(waitFor([&] { return PathTools::linkTarget(program) == "/Applications/Tool.app/tool"; }));
    EXPECT_FALSE(desktop->isRunning(app));
    desktop->askToEnd(app);
    spinFor(std::chrono::milliseconds(50));
    EXPECT_EQ(::waitpid(process, nullptr, WNOHANG), 0) << "it goes on";
    ::kill(process, SIGKILL);
    ::waitpid(process, nullptr, 0);
}

} // namespace
} // namespace korvanti
