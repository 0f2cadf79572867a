#include "base/FileDescriptor.h"
#include "drives/VolumeService.h"
#include "support/TempFolder.h"

#include <cerrno>
#include <chrono>
#include <cmath>
#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <random>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace korvanti {
namespace {

using testing::TempFolder;
using VolumeService::speedTest;

class SpeedTestTests : public ::testing::Test {
protected:
    bool isEmpty() const { return std::filesystem::is_empty(folder); }
    void killsAtRandomMoments(int signal) const;

    TempFolder temp;
    std::string folder = temp.folder("Kerja \xFF Lama");
};

TEST_F(SpeedTestTests, bothSpeedsAreMeasuredAndNothingStaysBehind) {
    const auto speed = speedTest(folder, 32);
    ASSERT_TRUE(speed.has_value());
    for (const double value : {speed->writeMBps, speed->readMBps}) {
        EXPECT_TRUE(std::isfinite(value));
        EXPECT_GT(value, 0);
        EXPECT_LE(value, 32 * 1.048576 * 1000);
    }
    EXPECT_TRUE(isEmpty());
}

TEST_F(SpeedTestTests, aSlashBehindTheFolderChangesNothing) {
    EXPECT_TRUE(speedTest(folder + "/", 8).has_value());
    EXPECT_TRUE(isEmpty());
}

TEST_F(SpeedTestTests, aFolderThatIsGoneIsAnError) {
    const auto gone = temp.path("gone");
    const auto speed = speedTest(gone, 8);
    ASSERT_FALSE(speed.has_value());
    EXPECT_EQ(speed.error(), fileErrorOf(ENOENT, gone));
    EXPECT_FALSE(std::filesystem::exists(gone));
}

TEST_F(SpeedTestTests, aFileInThePlaceOfTheFolderIsAnErrorAndStays) {
    const auto file = temp.file("file", {.text = "mine"});
    EXPECT_EQ(speedTest(file, 8).error(), fileErrorOf(ENOTDIR, file));
    EXPECT_EQ(testing::textOf(file), "mine");
}

TEST_F(SpeedTestTests, noFolderAtAllIsAnError) {
    EXPECT_FALSE(speedTest("", 8).has_value());
}

/// Over and over in a process of its own, which is ended at some moment of it.
void SpeedTestTests::killsAtRandomMoments(int signal) const {
    if (!FileDescriptor(Platform::openNamelessFile(folder)))
        GTEST_SKIP() << "here the file has a name for a moment";
    std::mt19937 random(1); // NOLINT: the same moments each time
    std::uniform_int_distribution<int> microseconds(0, 150'000);
    for (int round = 0; round < 30; ++round) {
        const pid_t process = ::fork();
        ASSERT_GE(process, 0);
        if (process == 0) {
            while (speedTest(folder, 16)) {
            }
            ::_exit(1);
        }
        std::this_thread::sleep_for(std::chrono::microseconds(microseconds(random)));
        ::kill(process, signal);
        int status = 0;
        ASSERT_EQ(::waitpid(process, &status, 0), process);
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == signal);
        ASSERT_TRUE(isEmpty()) << "round " << round;
    }
}

TEST_F(SpeedTestTests, whoeverEndsTheProgramInTheMiddleLeavesNothingBehind) {
    killsAtRandomMoments(SIGTERM);
}

TEST_F(SpeedTestTests, whoeverKillsTheProgramInTheMiddleLeavesNothingBehind) {
    killsAtRandomMoments(SIGKILL);
}

} // namespace
} // namespace korvanti
