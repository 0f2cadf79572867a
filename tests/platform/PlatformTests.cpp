#include "base/FileDescriptor.h"
#include "platform/Platform.h"
#include "support/Environment.h"
#include "support/TempFolder.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/statvfs.h>

namespace korvanti {
namespace {

using korvanti::testing::ScopedVariable;
using korvanti::testing::TempFolder;

TEST(PlatformTests, theCapacityIsThatOfTheVolumeOfThePath) {
    const TempFolder temp;
    struct statvfs volume {};
    ASSERT_EQ(::statvfs(temp.path().c_str(), &volume), 0);
    const auto capacity = Platform::volumeCapacity(temp.path());
    EXPECT_EQ(capacity.total, static_cast<std::int64_t>(volume.f_blocks * volume.f_frsize));
    EXPECT_GT(capacity.available, 0);
    EXPECT_LE(capacity.available, capacity.total);
}

TEST(PlatformTests, theCapacityOfNothingIsZero) {
    EXPECT_EQ(Platform::volumeCapacity("/no/such/path"), Platform::VolumeCapacity{});
}

TEST(PlatformTests, memoryIsInstalledAndSwapIsNotNegative) {
    EXPECT_GT(Platform::physicalMemory(), 16'000'000);
    EXPECT_GE(Platform::swapUsed(), 0);
}

TEST(PlatformTests, raisingTheLimitOfOpenFilesNeverLowersIt) {
    rlimit before{};
    rlimit after{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
    Platform::raiseOpenFileLimit();
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &after), 0);
    EXPECT_GE(after.rlim_cur, before.rlim_cur);
    EXPECT_EQ(after.rlim_max, before.rlim_max);
    ::setrlimit(RLIMIT_NOFILE, &before);
}

class FolderReaderTests : public ::testing::Test {
protected:
    std::map<std::string, Platform::FolderEntry> read(Platform::EntryFacts facts) const {
        const FileDescriptor folder(Platform::openFolder(temp.path()));
        const auto buffer = std::make_unique<Platform::FolderBuffer>();
        Platform::FolderReader reader(folder.get(), *buffer, facts);
        std::map<std::string, Platform::FolderEntry> entries;
        while (const auto* entry = reader.next())
            entries.emplace(entry->name, *entry);
        EXPECT_FALSE(reader.failed());
        return entries;
    }

    TempFolder temp;
};

TEST_F(FolderReaderTests, tellsTheKindOfEachEntry) {
    temp.file("file");
    temp.folder("folder");
    temp.symlink("link", "folder");
    ASSERT_EQ(::mkfifo(temp.path("pipe").c_str(), 0600), 0);
    for (const auto facts : {Platform::EntryFacts::names, Platform::EntryFacts::sizes}) {
        const auto entries = read(facts);
        ASSERT_EQ(entries.size(), 4U);
        EXPECT_EQ(entries.at("file").kind, Platform::EntryKind::file);
        EXPECT_EQ(entries.at("folder").kind, Platform::EntryKind::folder);
        EXPECT_EQ(entries.at("link").kind, Platform::EntryKind::link);
        EXPECT_EQ(entries.at("pipe").kind, Platform::EntryKind::other);
    }
}

TEST_F(FolderReaderTests, tellsSizesAndDatesOnlyWhenAsked) {
    temp.file("file", {.allocatedBytes = 8192, .modified = 1'234'567});
    const auto entry = read(Platform::EntryFacts::sizes).at("file");
    EXPECT_EQ(entry.allocatedBytes, 8192);
    EXPECT_EQ(entry.logicalBytes, 8192);
    EXPECT_EQ(entry.modifiedSeconds, 1'234'567);
    EXPECT_EQ(read(Platform::EntryFacts::names).at("file").logicalBytes, 0);
}

TEST_F(FolderReaderTests, aDescriptorThatIsNoFolderFails) {
    const FileDescriptor file(::open(temp.file("file").c_str(), O_RDONLY));
    const auto buffer = std::make_unique<Platform::FolderBuffer>();
    Platform::FolderReader reader(file.get(), *buffer, Platform::EntryFacts::sizes);
    EXPECT_EQ(reader.next(), nullptr);
    EXPECT_TRUE(reader.failed());
}

TEST_F(FolderReaderTests, aLinkIsNotOpenedAsAFolder) {
    temp.folder("folder");
    temp.symlink("link", "folder");
    EXPECT_FALSE(FileDescriptor(Platform::openFolder(temp.path("link"))));
    const FileDescriptor parent(Platform::openFolder(temp.path()));
    EXPECT_FALSE(FileDescriptor(Platform::openFolderAt(parent.get(), "link")));
    EXPECT_TRUE(FileDescriptor(Platform::openFolderAt(parent.get(), "folder")));
}

TEST_F(FolderReaderTests, twoFoldersHaveTwoIdentities) {
    const FileDescriptor one(Platform::openFolder(temp.folder("one")));
    const FileDescriptor again(Platform::openFolder(temp.path("one")));
    const FileDescriptor two(Platform::openFolder(temp.folder("two")));
    const auto identity = Platform::folderIdentity(one.get());
    ASSERT_TRUE(identity);
    EXPECT_EQ(identity->inode, Platform::folderIdentity(again.get())->inode);
    EXPECT_NE(identity->inode, Platform::folderIdentity(two.get())->inode);
    EXPECT_EQ(identity->device, Platform::folderIdentity(two.get())->device);
    EXPECT_FALSE(identity->mountRoot);
    EXPECT_FALSE(Platform::folderIdentity(-1));
}

#ifdef __linux__
TEST(PlatformTests, theHomeFolderIsThatOfTheEnvironmentWithoutATrailingSlash) {
    const ScopedVariable home("HOME", "/some/home//");
    EXPECT_EQ(Platform::homeFolder(), "/some/home");
}

TEST(PlatformTests, withoutAUsableVariableTheAccountTellsTheHomeFolder) {
    const ScopedVariable unset("HOME", std::nullopt);
    const auto account = Platform::homeFolder();
    EXPECT_TRUE(account.starts_with('/'));
    for (const auto* useless : {"", "relative/home"}) {
        const ScopedVariable home("HOME", useless);
        EXPECT_EQ(Platform::homeFolder(), account) << useless;
    }
}

TEST(PlatformTests, aMountIsTheRootOfItsVolume) {
    const FileDescriptor proc(Platform::openFolder("/proc"));
    EXPECT_TRUE(Platform::folderIdentity(proc.get())->mountRoot);
}
#endif

} // namespace
} // namespace korvanti
