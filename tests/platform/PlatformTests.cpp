#include "base/FileDescriptor.h"
#include "base/Text.h"
#include "platform/Platform.h"
#include "support/Environment.h"
#include "support/TempFolder.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <string_view>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#ifdef __linux__
#include <sys/xattr.h>
#endif

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

#ifdef __linux__
TEST(PlatformTests, whereNothingIsPurgeableAnImportantUseMayHaveWhatIsFree) {
    const auto capacity = Platform::volumeCapacity("/");
    EXPECT_EQ(capacity.availableImportant, capacity.available);
}
#endif

TEST(PlatformTests, aFolderTakesOverWhatAnotherOneIs) {
    const TempFolder temp;
    temp.folder("from");
    temp.folder("to");
    temp.setMode("from", 02751);
    temp.setModified("from", 1'700'000'000);
    const FileDescriptor from(Platform::openFolder(temp.path("from")));
    const FileDescriptor to(Platform::openFolder(temp.path("to")));
#ifdef __linux__
    const std::string value("\0colour", 7);
    ASSERT_EQ(::fsetxattr(from.get(), "user.colour", value.data(), value.size(), 0), 0);
    ASSERT_EQ(::fsetxattr(from.get(), "user.empty", nullptr, 0, 0), 0);
#endif
    EXPECT_EQ(Platform::copyFolderFacts(from.get(), to.get()), 0);

    struct stat status {};
    ASSERT_EQ(::fstat(to.get(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 02751u);
    EXPECT_EQ(status.st_mtime, 1'700'000'000);
#ifdef __linux__
    char copied[16] = {};
    EXPECT_EQ(::fgetxattr(to.get(), "user.colour", copied, sizeof copied), 7);
    EXPECT_EQ(std::string(copied, 7), value);
    EXPECT_EQ(::fgetxattr(to.get(), "user.empty", copied, sizeof copied), 0);
#endif
}

TEST(PlatformTests, whatCannotBeTakenOverIsAnError) {
    const TempFolder temp;
    const FileDescriptor folder(Platform::openFolder(temp.path()));
    EXPECT_EQ(Platform::copyFolderFacts(-1, folder.get()), EBADF);
    EXPECT_EQ(Platform::copyFolderFacts(folder.get(), -1), EBADF);
}

TEST(PlatformTests, filesAndVolumesAreFlushed) {
    const TempFolder temp;
    const FileDescriptor folder(Platform::openFolder(temp.path()));
    EXPECT_EQ(Platform::flushFile(folder.get()), 0);
    EXPECT_EQ(Platform::flushVolume(folder.get()), 0);
    EXPECT_EQ(Platform::flushFile(-1), EBADF);
    EXPECT_EQ(Platform::flushVolume(-1), EBADF);
}

TEST(PlatformTests, memoryIsInstalledAndSwapIsNotNegative) {
    EXPECT_GT(Platform::physicalMemory(), 16'000'000);
    EXPECT_GE(Platform::swapUsed(), 0);
}

TEST(PlatformTests, whatIsNoApplicationWasNeverUsed) {
    const TempFolder temp;
    for (const auto& path : {std::string(), temp.path("missing.app"), temp.folder("Empty.app")})
        EXPECT_EQ(Platform::applicationUsage(path), Platform::SpotlightUsage{}) << path;
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
    for (const auto facts :
         {Platform::EntryFacts::names, Platform::EntryFacts::sizes, Platform::EntryFacts::everything}) {
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
    for (const auto facts : {Platform::EntryFacts::sizes, Platform::EntryFacts::everything}) {
        const auto entry = read(facts).at("file");
        EXPECT_EQ(entry.allocatedBytes, 8192);
        EXPECT_EQ(entry.logicalBytes, 8192);
        EXPECT_EQ(entry.modifiedSeconds, 1'234'567);
    }
    EXPECT_EQ(read(Platform::EntryFacts::names).at("file").logicalBytes, 0);
    EXPECT_EQ(read(Platform::EntryFacts::names).at("file").modifiedSeconds, std::nullopt);
}

TEST_F(FolderReaderTests, anOrdinaryEntryIsNeitherHiddenNorAPackageByItsListing) {
    temp.file("file");
    temp.file(".file");
    temp.folder("folder");
    for (const auto& [name, entry] : read(Platform::EntryFacts::everything)) {
        EXPECT_FALSE(entry.hidden) << name;
        EXPECT_FALSE(entry.package) << name;
    }
}

#ifdef __APPLE__
TEST_F(FolderReaderTests, whatTheFinderDoesNotShowIsHidden) {
    ASSERT_EQ(::chflags(temp.file("file").c_str(), UF_HIDDEN), 0);
    ASSERT_EQ(::chflags(temp.folder("folder").c_str(), UF_HIDDEN), 0);
    const auto entries = read(Platform::EntryFacts::everything);
    EXPECT_TRUE(entries.at("file").hidden);
    EXPECT_TRUE(entries.at("folder").hidden);
}
#endif

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

TEST_F(FolderReaderTests, theErrorIsTheSystemsAndNoneWhereAllWasRead) {
    const auto buffer = std::make_unique<Platform::FolderBuffer>();
    const auto errorOf = [&](int folder) {
        Platform::FolderReader reader(folder, *buffer, Platform::EntryFacts::names);
        while (reader.next())
            ;
        return reader.error();
    };
    const FileDescriptor folder(Platform::openFolder(temp.path()));
    const FileDescriptor file(::open(temp.file("file").c_str(), O_RDONLY));
    EXPECT_EQ(errorOf(folder.get()), 0);
    EXPECT_EQ(errorOf(file.get()), ENOTDIR);
    EXPECT_EQ(errorOf(-1), EBADF);
}

TEST_F(FolderReaderTests, aPassageLeadsToWhatIsInTheFolder) {
    temp.file("folder/inside/file");
    const FileDescriptor folder(Platform::openPassage(temp.path("folder")));
    const FileDescriptor inside(Platform::openPassageAt(folder.get(), "inside"));
    struct stat status {};
    EXPECT_EQ(::fstatat(inside.get(), "file", &status, AT_SYMLINK_NOFOLLOW), 0);
}

TEST_F(FolderReaderTests, aPassageFollowsALinkInAPathButNotInAFolder) {
    temp.folder("folder/inside");
    temp.symlink("link", "folder");
    const FileDescriptor passage(Platform::openPassage(temp.path("link")));
    ASSERT_TRUE(passage);
    EXPECT_TRUE(FileDescriptor(Platform::openPassageAt(passage.get(), "inside")));
    const FileDescriptor parent(Platform::openPassage(temp.path()));
    EXPECT_FALSE(FileDescriptor(Platform::openPassageAt(parent.get(), "link")));
}

TEST_F(FolderReaderTests, onlyAFolderIsAPassage) {
    ASSERT_EQ(::mkfifo(temp.path("pipe").c_str(), 0600), 0);
    temp.file("file");
    const FileDescriptor parent(Platform::openPassage(temp.path()));
    for (const auto* name : {"file", "pipe"}) {
        EXPECT_FALSE(FileDescriptor(Platform::openPassage(temp.path(name)))) << name;
        EXPECT_FALSE(FileDescriptor(Platform::openPassageAt(parent.get(), name))) << name;
    }
    EXPECT_EQ(Platform::openPassage(temp.path("missing")), -1);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(Platform::openPassageAt(parent.get(), "missing"), -1);
    EXPECT_EQ(errno, ENOENT);
}

TEST_F(FolderReaderTests, aProgramThatIsStartedInheritsNoPassage) {
    const FileDescriptor folder(Platform::openPassage(temp.folder("folder")));
    const FileDescriptor parent(Platform::openPassageAt(folder.get(), ".."));
    EXPECT_EQ(::fcntl(folder.get(), F_GETFD), FD_CLOEXEC);
    EXPECT_EQ(::fcntl(parent.get(), F_GETFD), FD_CLOEXEC);
}

TEST_F(FolderReaderTests, theParentOfAnOpenFolderOpens) {
    const FileDescriptor folder(Platform::openFolder(temp.folder("folder")));
    const FileDescriptor parent(Platform::openFolderAt(folder.get(), ".."));
    const FileDescriptor expected(Platform::openFolder(temp.path()));
    EXPECT_EQ(Platform::folderIdentity(parent.get())->inode, Platform::folderIdentity(expected.get())->inode);
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

TEST(PlatformTests, foldersThatAreOneDocumentArePackages) {
    const TempFolder temp;
    EXPECT_TRUE(Platform::isPackage(temp.folder("Foo.app")));
    EXPECT_TRUE(Platform::isPackage(temp.folder("v1.2 Photos Library.photoslibrary")));
    for (const auto* folder : {"Foo.framework", "Foo.app/Contents", "app", "node_modules", "some.folder"})
        EXPECT_FALSE(Platform::isPackage(temp.folder(folder))) << folder;
    EXPECT_FALSE(Platform::isPackage(""));
}

#ifdef __linux__
TEST(PlatformTests, everyPackageExtensionIsKnownInAnyCase) {
    const std::string_view extensions =
        "app appex bundle plugin component kext xpc prefpane saver qlgenerator mdimporter wdgt service "
        "action workflow scptd rtfd pages numbers key pkg mpkg download xcodeproj xcworkspace xcarchive "
        "xcdatamodeld playground dsym mlpackage photoslibrary aplibrary musiclibrary tvlibrary imovielibrary "
        "fcpbundle logicx band garageband sparsebundle backupbundle dvdmedia theater";
    for (const auto extension : Text::pieces(extensions, ' ')) {
        const std::string path = "/a/b." + std::string(extension);
        EXPECT_TRUE(Platform::isPackage(path)) << path;
        EXPECT_FALSE(Platform::isPackage(path + "x")) << path;
        std::string upper = path;
        std::ranges::transform(upper, upper.begin(), [](unsigned char c) { return std::toupper(c); });
        EXPECT_TRUE(Platform::isPackage(upper)) << upper;
    }
    for (const auto* other : {"framework", "lproj", "xcassets"})
        EXPECT_FALSE(Platform::isPackage("/a/b." + std::string(other))) << other;
}

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

TEST(PlatformTests, theRunningProgramIsTheOneAtItsPath) {
    const auto path = Platform::executablePath();
    EXPECT_TRUE(path.ends_with("/korvanti_platform_tests")) << path;
    struct stat status {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0);
}

TEST(PlatformTests, aMountIsTheRootOfItsVolume) {
    const FileDescriptor proc(Platform::openFolder("/proc"));
    EXPECT_TRUE(Platform::folderIdentity(proc.get())->mountRoot);
}
#endif

} // namespace
} // namespace korvanti
