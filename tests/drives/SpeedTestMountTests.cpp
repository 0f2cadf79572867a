#include "drives/VolumeService.h"
#include "support/BoxFolder.h"
#include "support/Mount.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdarg>
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <optional>
#include <set>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

namespace korvanti {
namespace {

using testing::BoxFolder;
using ::testing::ElementsAre;
using ::testing::MatchesRegex;
using testing::Mount;
using VolumeService::speedTest;

constexpr std::size_t chunkBytes = 8'388'608;
constexpr double chunkMegabytes = 8.388608;

/// What the speed test asks of the system, and what a test has it answer in its own way. Calls on anything
/// but whole chunks and the test file pass by.
struct Calls {
    Calls() { watching = this; }
    ~Calls() { watching = nullptr; }
    Calls(const Calls&) = delete;
    Calls& operator=(const Calls&) = delete;

    std::vector<std::string> made;
    std::vector<const void*> buffers;
    std::string written; ///< the first chunk
    int unlinksToRefuse = 0;
    int flagsAtWrite = 0;
    bool noNamelessFiles = false;
    std::string named; ///< the test file's path, where it has one
    off_t lengthAtUnlink = -1;
    unsigned modeAtUnlink = 0;
    std::function<std::optional<ssize_t>()> onWrite = [] { return std::nullopt; };
    std::function<std::optional<ssize_t>()> onRead = [] { return std::nullopt; };
    std::function<void()> onFlush = [] {};

    static inline Calls* watching = nullptr;
};

void pause() {
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
}
constexpr double fastestWithAPause = chunkMegabytes / 0.2;
constexpr double slowestWithAPause = chunkMegabytes / 10; // on a machine that has much else to do

class SpeedTestMountTests : public ::testing::Test {
protected:
    bool isEmpty() const { return std::filesystem::is_empty(folder); }
    static std::size_t countOf(const std::vector<std::string>& calls, const std::string& call) {
        return static_cast<std::size_t>(std::ranges::count(calls, call));
    }

    BoxFolder volumes{"/Volumes"};
    std::string folder = volumes.folder("Kerja");
};

TEST_F(SpeedTestMountTests, megabytesMakeChunksOfEightAndAtLeastOne) {
    const Mount mount(folder);
    struct Row {
        std::int64_t megabytes;
        std::size_t chunks;
    };
    for (const auto& [megabytes, chunks] :
         {Row{7, 1}, Row{8, 1}, Row{15, 1}, Row{16, 2}, Row{23, 2}, Row{24, 3}, Row{1, 1}, Row{0, 1},
          Row{-1, 1}, Row{-100, 1}, Row{std::numeric_limits<std::int64_t>::min(), 1}}) {
        Calls calls;
        EXPECT_TRUE(speedTest(folder, megabytes).has_value());
        EXPECT_EQ(countOf(calls.made, "write"), chunks) << megabytes;
        EXPECT_EQ(countOf(calls.made, "read"), chunks + 1) << megabytes;
        EXPECT_TRUE(isEmpty());
    }
}

TEST_F(SpeedTestMountTests, allIsWrittenThenFlushedThenRead) {
    const Mount mount(folder);
    Calls calls;
    EXPECT_TRUE(speedTest(folder, 16).has_value());
    EXPECT_THAT(calls.made,
                ElementsAre("bypass", "write", "write", "flush", "bypass", "read", "read", "read"));
}

TEST_F(SpeedTestMountTests, theSameAlignedBlockIsWrittenPastTheCacheEachTime) {
    const Mount mount(folder);
    Calls calls;
    EXPECT_TRUE(speedTest(folder, 24).has_value());
    ASSERT_EQ(calls.buffers.size(), 3U);
    EXPECT_EQ(std::set(calls.buffers.begin(), calls.buffers.end()).size(), 1U);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(calls.buffers[0]) % 4096, 0U);
    EXPECT_NE(calls.flagsAtWrite & O_DIRECT, 0);
}

TEST_F(SpeedTestMountTests, noPartOfTheBlockIsLikeAnother) {
    const Mount mount(folder);
    Calls calls;
    EXPECT_TRUE(speedTest(folder, 8).has_value());
    ASSERT_EQ(calls.written.size(), chunkBytes);
    std::set<std::string_view> parts;
    for (std::size_t at = 0; at < chunkBytes; at += 512)
        parts.insert(std::string_view(calls.written).substr(at, 512));
    EXPECT_EQ(parts.size(), chunkBytes / 512);
}

TEST_F(SpeedTestMountTests, eachTestHasBytesOfItsOwn) {
    const Mount mount(folder);
    Calls calls;
    EXPECT_TRUE(speedTest(folder, 8).has_value());
    const auto first = std::exchange(calls.written, {});
    EXPECT_TRUE(speedTest(folder, 8).has_value());
    EXPECT_NE(calls.written, first);
}

// Time

TEST_F(SpeedTestMountTests, theTimeOfWritingCountsForWritingOnly) {
    const Mount mount(folder);
    Calls calls;
    calls.onWrite = [] {
        pause();
        return std::nullopt;
    };
    const auto speed = speedTest(folder, 8).value();
    EXPECT_LE(speed.writeMBps, fastestWithAPause);
    EXPECT_GE(speed.writeMBps, slowestWithAPause);
    EXPECT_GT(speed.readMBps, fastestWithAPause);
}

TEST_F(SpeedTestMountTests, theFlushCountsAsWriting) {
    const Mount mount(folder);
    Calls calls;
    calls.onFlush = pause;
    const auto speed = speedTest(folder, 8).value();
    EXPECT_LE(speed.writeMBps, fastestWithAPause);
    EXPECT_GT(speed.readMBps, fastestWithAPause);
}

TEST_F(SpeedTestMountTests, theTimeOfReadingCountsForReadingOnly) {
    const Mount mount(folder);
    Calls calls;
    calls.onRead = [] {
        pause();
        return std::nullopt;
    };
    const auto speed = speedTest(folder, 8).value();
    EXPECT_LE(speed.readMBps, fastestWithAPause);
    EXPECT_GE(speed.readMBps, slowestWithAPause);
    EXPECT_GT(speed.writeMBps, fastestWithAPause);
}

TEST_F(SpeedTestMountTests, noTimeCountsAsLessThanAThousandthOfASecond) {
    const Mount mount(folder);
    Calls calls;
    calls.written = "no copy, which takes time";
    calls.onWrite = [] { return chunkBytes; };
    calls.onRead = [] { return 0; };
    VolumeService::SpeedResult fastest;
    for (int round = 0; round < 20; ++round) { // the machine may be busy with something else
        const auto speed = speedTest(folder, 8).value();
        fastest.writeMBps = std::max(fastest.writeMBps, speed.writeMBps);
        fastest.readMBps = std::max(fastest.readMBps, speed.readMBps);
    }
    EXPECT_DOUBLE_EQ(fastest.writeMBps, 8388.608);
    EXPECT_DOUBLE_EQ(fastest.readMBps, 8388.608);
}

TEST_F(SpeedTestMountTests, aReadThatFailsEndsTheReading) {
    const Mount mount(folder);
    Calls calls;
    calls.onRead = [] {
        errno = EIO;
        return -1;
    };
    EXPECT_TRUE(speedTest(folder, 16).has_value());
    EXPECT_EQ(countOf(calls.made, "read"), 1U);
}

// Failures

TEST_F(SpeedTestMountTests, aVolumeThatFillsUpWithinABlockIsAnErrorOfTheDisk) {
    const Mount mount(folder, 12 * 1024 * 1024);
    EXPECT_EQ(speedTest(folder, 16).error(), fileErrorOf(EIO, folder));
    EXPECT_TRUE(isEmpty());
    EXPECT_EQ(std::filesystem::space(folder).available, 12 * 1024 * 1024);
}

TEST_F(SpeedTestMountTests, aVolumeThatIsFullSaysSo) {
    const Mount mount(folder, chunkBytes);
    EXPECT_EQ(speedTest(folder, 16).error(), fileErrorOf(ENOSPC, folder));
    EXPECT_TRUE(isEmpty());
    EXPECT_EQ(std::filesystem::space(folder).available, chunkBytes);
}

TEST_F(SpeedTestMountTests, aTestThatIsLargerThanAnyDiskFillsTheVolumeAndFails) {
    const Mount mount(folder, 2 * chunkBytes);
    EXPECT_FALSE(speedTest(folder, std::numeric_limits<std::int64_t>::max()).has_value());
    EXPECT_TRUE(isEmpty());
}

TEST_F(SpeedTestMountTests, aVolumeThatCanOnlyBeReadIsAnError) {
    const Mount mount(folder);
    ASSERT_EQ(::mount("box", folder.c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr), 0);
    EXPECT_EQ(speedTest(folder, 8).error(), fileErrorOf(EROFS, folder));
}

TEST_F(SpeedTestMountTests, anErrorOfAWriteKeepsItsReason) {
    const Mount mount(folder);
    Calls calls;
    calls.onWrite = [] {
        errno = EDQUOT;
        return -1;
    };
    EXPECT_EQ(speedTest(folder, 8).error(), fileErrorOf(EDQUOT, folder));
    EXPECT_TRUE(isEmpty());
}

TEST_F(SpeedTestMountTests, aWriteOfNothingIsAnErrorOfTheDiskWhateverFailedBefore) {
    const Mount mount(folder);
    Calls calls;
    calls.onWrite = [] {
        errno = EACCES;
        return 0;
    };
    EXPECT_EQ(speedTest(folder, 8).error(), fileErrorOf(EIO, folder));
}

// Where each file has a name

TEST_F(SpeedTestMountTests, theNameIsGoneBeforeAnythingIsWritten) {
    const Mount mount(folder);
    Calls calls;
    calls.noNamelessFiles = true;
    EXPECT_TRUE(speedTest(folder, 8).has_value());
    EXPECT_THAT(calls.named, MatchesRegex("/Volumes/Kerja/\\.korvanti-speedtest-[0-9A-F]{8}-[0-9A-F]{4}-"
                                          "[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{12}"));
    EXPECT_EQ(calls.lengthAtUnlink, 0);
    EXPECT_EQ(calls.modeAtUnlink, 0600U);
    EXPECT_THAT(calls.made,
                ElementsAre("open", "unlink", "bypass", "write", "flush", "bypass", "read", "read"));
    EXPECT_TRUE(isEmpty());
}

TEST_F(SpeedTestMountTests, eachTestHasANameOfItsOwn) {
    const Mount mount(folder);
    Calls calls;
    calls.noNamelessFiles = true;
    EXPECT_TRUE(speedTest(folder, 8).has_value());
    const auto first = calls.named;
    EXPECT_TRUE(speedTest(folder, 8).has_value());
    EXPECT_NE(calls.named, first);
}

TEST_F(SpeedTestMountTests, whereAnOpenFileKeepsItsNameItLosesItAtTheEnd) {
    const Mount mount(folder);
    Calls calls;
    calls.noNamelessFiles = true;
    calls.unlinksToRefuse = 1;
    EXPECT_TRUE(speedTest(folder, 8).has_value());
    EXPECT_THAT(calls.made, ElementsAre("open", "unlink", "bypass", "write", "flush", "bypass", "read",
                                        "read", "unlink"));
    EXPECT_TRUE(isEmpty());
}

TEST_F(SpeedTestMountTests, alsoWhereAnOpenFileKeepsItsNameAFailureLeavesNothingBehind) {
    const Mount mount(folder, chunkBytes);
    Calls calls;
    calls.noNamelessFiles = true;
    calls.unlinksToRefuse = 1;
    EXPECT_EQ(speedTest(folder, 16).error(), fileErrorOf(ENOSPC, folder));
    EXPECT_TRUE(isEmpty());
}

TEST_F(SpeedTestMountTests, whereAFileCannotBeMadeNoneIsRemoved) {
    const auto gone = volumes.path("gone");
    Calls calls;
    calls.noNamelessFiles = true;
    EXPECT_EQ(speedTest(gone, 8).error(), fileErrorOf(ENOENT, gone));
    EXPECT_THAT(calls.made, ElementsAre("open"));
}

} // namespace
} // namespace korvanti

// In the place of the C library's own.
extern "C" {

int open(const char* path, int flags, ...) {
    std::va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    auto* const calls = korvanti::Calls::watching;
    if (calls && calls->noNamelessFiles && (flags & O_TMPFILE) == O_TMPFILE) {
        errno = EOPNOTSUPP;
        return -1;
    }
    if (calls && (flags & O_CREAT) != 0) {
        calls->made.emplace_back("open");
        calls->named = path;
    }
    return static_cast<int>(::syscall(SYS_openat, AT_FDCWD, path, flags, mode));
}

int unlink(const char* path) noexcept {
    if (auto* const calls = korvanti::Calls::watching) {
        calls->made.emplace_back("unlink");
        struct stat facts {};
        if (::stat(path, &facts) == 0) {
            calls->lengthAtUnlink = facts.st_size;
            calls->modeAtUnlink = facts.st_mode & 0777;
        }
        if (calls->unlinksToRefuse > 0) {
            --calls->unlinksToRefuse;
            errno = EBUSY;
            return -1;
        }
    }
    return static_cast<int>(::syscall(SYS_unlinkat, AT_FDCWD, path, 0));
}

ssize_t write(int file, const void* bytes, std::size_t count) {
    auto* const calls = korvanti::Calls::watching;
    if (calls && count == korvanti::chunkBytes) {
        calls->made.emplace_back("write");
        calls->buffers.push_back(bytes);
        calls->flagsAtWrite = ::fcntl(file, F_GETFL);
        if (calls->written.empty())
            calls->written.assign(static_cast<const char*>(bytes), count);
        if (const auto answer = calls->onWrite())
            return *answer;
    }
    return ::syscall(SYS_write, file, bytes, count);
}

ssize_t read(int file, void* bytes, std::size_t count) {
    auto* const calls = korvanti::Calls::watching;
    if (calls && count == korvanti::chunkBytes) {
        calls->made.emplace_back("read");
        if (const auto answer = calls->onRead())
            return *answer;
    }
    return ::syscall(SYS_read, file, bytes, count);
}

int posix_fadvise(int file, off_t at, off_t count, int advice) noexcept {
    auto* const calls = korvanti::Calls::watching;
    if (calls && advice == POSIX_FADV_DONTNEED)
        calls->made.emplace_back("bypass");
    return static_cast<int>(::syscall(SYS_fadvise64, file, at, count, advice));
}

int fsync(int file) {
    if (auto* const calls = korvanti::Calls::watching) {
        calls->made.emplace_back("flush");
        calls->onFlush();
    }
    return static_cast<int>(::syscall(SYS_fsync, file));
}
}
