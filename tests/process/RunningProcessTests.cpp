#include "process/Toolchain.h"

#include "support/TempFolder.h"

#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <optional>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace korvanti {
namespace {

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
    static const std::string name = "Kv" + std::to_string(::getpid()) + "x";
    return name;
}

TEST(RunningProcessTests, anApplicationIsKnownByItsWholeNameAndAPatternAnywhere) {
    const Process running(uniqueName() + " Ex");

    EXPECT_FALSE(Toolchain::isAppRunning(uniqueName()));
    EXPECT_TRUE(Toolchain::isAppRunning(uniqueName() + " Ex"));
    EXPECT_FALSE(Toolchain::isAppRunning(uniqueName() + " ex"));
    EXPECT_TRUE(Toolchain::isRunning(uniqueName()));
    EXPECT_TRUE(Toolchain::isRunning(uniqueName() + " Ex 6"));
    EXPECT_FALSE(Toolchain::isRunning(uniqueName() + " 6"));
}

TEST(RunningProcessTests, whatHasEndedIsNotRunning) {
    std::optional<Process> running(uniqueName());
    EXPECT_TRUE(Toolchain::isAppRunning(uniqueName()));

    running.reset();

    EXPECT_FALSE(Toolchain::isAppRunning(uniqueName()));
    EXPECT_FALSE(Toolchain::isRunning(uniqueName()));
}

} // namespace
} // namespace korvanti
