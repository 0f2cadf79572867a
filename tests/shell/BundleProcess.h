#pragma once

#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <optional>
#include <spawn.h>
#include <string>
#include <sys/wait.h>

extern char** environ; // NOLINT(readability-redundant-declaration): macOS declares it nowhere

namespace korvanti::testing {

/// A program that runs until it is asked to end, for a minute at the most: laid down at a path of the box,
/// and started from there.
class BundleProcess {
public:
    explicit BundleProcess(const std::string& program) {
        std::filesystem::create_directories(std::filesystem::path(program).parent_path());
        std::filesystem::copy_file("/bin/sleep", program);
        std::string name = program;
        std::string seconds = "60";
        char* const arguments[] = {name.data(), seconds.data(), nullptr};
        EXPECT_EQ(::posix_spawn(&process_, program.c_str(), nullptr, nullptr, arguments, environ), 0);
    }
    ~BundleProcess() {
        if (!signalThatEndedIt()) {
            ::kill(process_, SIGKILL);
            ::waitpid(process_, nullptr, 0);
        }
    }
    BundleProcess(const BundleProcess&) = delete;
    BundleProcess& operator=(const BundleProcess&) = delete;

    /// Absent while it runs; 0 when it ended by itself.
    std::optional<int> signalThatEndedIt() {
        int status = 0;
        if (!ended_ && ::waitpid(process_, &status, WNOHANG) == process_)
            ended_ = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
        return ended_;
    }

private:
    pid_t process_ = 0;
    std::optional<int> ended_;
};

} // namespace korvanti::testing
