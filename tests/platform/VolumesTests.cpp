#include "base/FileDescriptor.h"
#include "platform/Platform.h"
#include "support/TempFolder.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <set>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

namespace korvanti {
namespace {

using testing::TempFolder;

TEST(VolumesTests, eachMountPointIsThereOnce) {
    std::set<std::string> seen;
    for (const auto& volume : Platform::mountedVolumes()) {
        EXPECT_TRUE(volume.mountPath.starts_with('/')) << volume.mountPath;
        EXPECT_TRUE(seen.insert(volume.mountPath).second) << volume.mountPath;
    }
}

TEST(VolumesTests, theRootFileSystemIsOneOfThem) {
    const auto volumes = Platform::mountedVolumes();
    EXPECT_EQ(std::ranges::count(volumes, true, &Platform::MountedVolume::isRootFileSystem), 1);
    const auto root = std::ranges::find(volumes, "/", &Platform::MountedVolume::mountPath);
    ASSERT_NE(root, volumes.end());
    EXPECT_EQ(root->isRootFileSystem, true);
    EXPECT_FALSE(root->fsType.empty());
    if (root->isLocal == true) { // in a virtual machine it may lie with the host
        EXPECT_EQ(root->total, Platform::volumeCapacity("/").total);
    }
}

TEST(VolumesTests, whatTheKernelOnlyShowsAsFilesIsNoVolume) {
    for (const auto& volume : Platform::mountedVolumes())
        for (const auto* other : {"proc", "sysfs", "devtmpfs", "devpts", "cgroup", "cgroup2"})
            EXPECT_NE(volume.fsType, other) << volume.mountPath;
}

// Passing the cache by

constexpr std::size_t length = 1024 * 1024;

std::size_t pagesInCache(int file) {
    void* memory = ::mmap(nullptr, length, PROT_READ, MAP_SHARED, file, 0);
    EXPECT_NE(memory, MAP_FAILED);
    std::vector<unsigned char> pages(length / 4096);
    EXPECT_EQ(::mincore(memory, length, pages.data()), 0);
    ::munmap(memory, length);
    return static_cast<std::size_t>(std::ranges::count_if(pages, [](auto page) { return (page & 1) != 0; }));
}

class BypassCacheTests : public ::testing::Test {
protected:
    void SetUp() override {
        constexpr long memoryFileSystem = 0x01021994;
        struct statfs system {};
        ASSERT_EQ(::statfs(temp.path().c_str(), &system), 0);
        if (system.f_type == memoryFileSystem)
            GTEST_SKIP() << "a memory file system is its own cache";
    }

    void write(const FileDescriptor& to) const {
        ASSERT_EQ(::write(to.get(), memory.get(), length), static_cast<ssize_t>(length));
    }

    TempFolder temp;
    std::unique_ptr<void, decltype(&std::free)> memory{std::aligned_alloc(4096, length), &std::free};
    FileDescriptor file{::open(temp.path("file").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600)};
};

TEST_F(BypassCacheTests, whatIsWrittenAndReadDoesNotStayInTheCache) {
    Platform::bypassCache(file.get());
    write(file);
    EXPECT_EQ(Platform::flushFile(file.get()), 0);
    Platform::bypassCache(file.get());
    EXPECT_EQ(pagesInCache(file.get()), 0U);

    ASSERT_EQ(::lseek(file.get(), 0, SEEK_SET), 0);
    EXPECT_EQ(::read(file.get(), memory.get(), length), static_cast<ssize_t>(length));
    EXPECT_EQ(pagesInCache(file.get()), 0U);
}

TEST_F(BypassCacheTests, whatWentThroughTheCacheBeforeLeavesItOnceItIsFlushed) {
    write(file);
    EXPECT_EQ(pagesInCache(file.get()), length / 4096);
    EXPECT_EQ(Platform::flushFile(file.get()), 0);
    Platform::bypassCache(file.get());
    EXPECT_EQ(pagesInCache(file.get()), 0U);
}

TEST(FlushTests, whatIsNotOpenCannotBeFlushed) {
    EXPECT_EQ(Platform::flushFile(-1), EBADF);
    EXPECT_EQ(Platform::flushVolume(-1), EBADF);
    Platform::bypassCache(-1); // nothing to do
}

TEST(FlushTests, filesAndFoldersAreFlushed) {
    const TempFolder temp;
    for (const auto& path : {temp.file("file", {.text = "x"}), temp.folder("folder")}) {
        const FileDescriptor open(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
        EXPECT_EQ(Platform::flushFile(open.get()), 0);
        EXPECT_EQ(Platform::flushVolume(open.get()), 0);
    }
}

// Files without a name

TEST(NamelessFileTests, aNamelessFileIsInNoFolderAndOfThisUserAlone) {
    const TempFolder temp;
    const FileDescriptor file(Platform::openNamelessFile(temp.path()));
    if (!file)
        GTEST_SKIP() << "not on this file system";
    EXPECT_EQ(::write(file.get(), "x", 1), 1);
    char byte = 0;
    EXPECT_EQ(::pread(file.get(), &byte, 1, 0), 1);
    EXPECT_EQ(byte, 'x');
    struct stat facts {};
    ASSERT_EQ(::fstat(file.get(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 0777, 0600U);
    EXPECT_EQ(facts.st_nlink, 0U);
    EXPECT_TRUE((::fcntl(file.get(), F_GETFD) & FD_CLOEXEC) != 0);
    EXPECT_TRUE(std::filesystem::is_empty(temp.path()));
}

TEST(NamelessFileTests, whereThereIsNoFolderThereIsNoFile) {
    const TempFolder temp;
    errno = 0;
    EXPECT_EQ(Platform::openNamelessFile(temp.path("gone")), -1);
    EXPECT_EQ(errno, ENOENT);
}

} // namespace
} // namespace korvanti
