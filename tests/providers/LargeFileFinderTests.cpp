#include "providers/LargeFileFinder.h"

#include "base/FileDescriptor.h"
#include "fs/PathTools.h"
#include "platform/Platform.h"
#include "support/Environment.h"
#include "support/Items.h"
#include "support/TempFolder.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#ifdef __linux__
#include <sys/inotify.h>
#endif
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace korvanti {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using testing::paths;
using ::testing::SizeIs;
using ::testing::StartsWith;
using ::testing::UnorderedElementsAre;

constexpr std::int64_t block = 4096;
constexpr std::int64_t day = 86'400;
constexpr std::int64_t now = 1'750'000'000;

class LargeFileFinderTests : public ::testing::Test {
protected:
    [[nodiscard]] std::vector<CleanupItem> items(std::int64_t leastBytes = block,
                                                 std::vector<std::string> devRoots = {}) const {
        ScanContext context;
        context.home = home.path();
        context.devRoots = std::move(devRoots);
        context.now = instantFromSeconds(now);
        return LargeFileFinder::find(context, leastBytes);
    }

    [[nodiscard]] std::vector<std::string> found(std::vector<std::string> devRoots = {}) const {
        return paths(items(block, std::move(devRoots)));
    }

    /// A file that is large enough.
    std::string large(const std::string& relative) const {
        return home.file(relative, {.allocatedBytes = block});
    }

    /// A chain of folders that may be deeper than any path is long, each with a large file beside the next
    /// one.
    void makeChain(const std::string& top, int depth) const {
        FileDescriptor folder(::open(home.folder(top).c_str(), O_RDONLY | O_DIRECTORY));
        for (int level = 0; level < depth; ++level) {
            const FileDescriptor file(::openat(folder.get(), "file", O_WRONLY | O_CREAT, 0644));
            ASSERT_EQ(::write(file.get(), "x", 1), 1);
            ASSERT_EQ(::mkdirat(folder.get(), "behind", 0755), 0);
            ASSERT_EQ(::mkdirat(folder.get(), "deeper", 0755), 0);
            FileDescriptor next(::openat(folder.get(), "deeper", O_RDONLY | O_DIRECTORY));
            ASSERT_TRUE(next);
            folder = std::move(next);
        }
    }

    testing::TempFolder home;
};

// Which files

TEST_F(LargeFileFinderTests, anEmptyHomeHasNoLargeFiles) {
    EXPECT_THAT(found(), IsEmpty());
}

TEST_F(LargeFileFinderTests, aHomeThatIsMissingOrAFileHasNoLargeFiles) {
    ScanContext context;
    context.home = home.path("missing");
    EXPECT_THAT(LargeFileFinder::find(context, 0), IsEmpty());
    context.home = large("file");
    EXPECT_THAT(LargeFileFinder::find(context, 0), IsEmpty());
}

TEST_F(LargeFileFinderTests, aFileOfJustTheThresholdIsReported) {
    const auto file = home.file("Movies/file", {.allocatedBytes = 4 * block});

    EXPECT_THAT(paths(items(testing::blocksOf(file))), ElementsAre(file));
    EXPECT_THAT(paths(items(testing::blocksOf(file) + 1)), IsEmpty());
}

TEST_F(LargeFileFinderTests, theThresholdOfAScanIsThreeHundredMillionBytes) {
    EXPECT_EQ(LargeFileFinder::threshold, 300'000'000);
    // The file system may keep a few blocks of its own with a large file.
    const auto below = home.file("Movies/below", {.allocatedBytes = 299'999'232 - 8 * block});
    const auto above = home.file("Movies/above", {.allocatedBytes = 300'003'328});
    ASSERT_LT(testing::blocksOf(below), 300'000'000);

    const auto reported = items(LargeFileFinder::threshold);

    ASSERT_THAT(paths(reported), ElementsAre(above));
    EXPECT_EQ(reported[0].bytes, testing::blocksOf(above));
}

TEST_F(LargeFileFinderTests, aSparseFileIsJudgedByItsBlocks) {
    home.file("VMs/empty", {.sparseBytes = 1'000'000'000});
    const auto partly = home.file("VMs/partly", {.allocatedBytes = 4 * block, .sparseBytes = 1'000'000'000});

    const auto reported = items();

    ASSERT_THAT(paths(reported), ElementsAre(partly));
    EXPECT_EQ(reported[0].bytes, testing::blocksOf(partly));
    EXPECT_LT(reported[0].bytes, 1'000'000);
}

TEST_F(LargeFileFinderTests, eachNameOfAHardLinkedFileIsReported) {
    const auto one = large("Movies/one");
    const auto two = home.hardLink("Movies/folder/two", one);

    EXPECT_THAT(found(), UnorderedElementsAre(one, two));
}

TEST_F(LargeFileFinderTests, onlyRegularFilesAreReported) {
    home.folder("Movies/folder");
    ASSERT_EQ(::mkfifo(home.path("Movies/pipe").c_str(), 0600), 0);
    const auto file = home.file("Movies/file", {.text = ""});

    EXPECT_THAT(paths(items(0)), ElementsAre(file));
}

TEST_F(LargeFileFinderTests, linksAreNeitherReportedNorFollowed) {
    const testing::TempFolder elsewhere;
    elsewhere.file("folder/file", {.allocatedBytes = block});
    const auto file = large("Movies/file");
    home.symlink("Movies/to a file", file);
    home.symlink("Movies/to a folder", elsewhere.path("folder"));
    home.symlink("Movies/to itself", home.path("Movies"));
    home.symlink("Movies/dangling", "nowhere");

    EXPECT_THAT(paths(items(0)), ElementsAre(file));
}

TEST_F(LargeFileFinderTests, hiddenFilesAndFoldersArePassedOver) {
    large("Movies/.file");
    large("Movies/.folder/file");
    large("Movies/._file");
    large("Movies/folder/.deep/folder/file");

    EXPECT_THAT(found(), IsEmpty());
}

TEST_F(LargeFileFinderTests, everyLevelIsWalked) {
    const std::vector<std::string> files = {large("a/one"), large("a/b/two"), large("a/b/c/three"),
                                            large("a/d/four"), large("e/five")};

    EXPECT_THAT(found(), ::testing::UnorderedElementsAreArray(files));
}

TEST_F(LargeFileFinderTests, theFilesOfAFolderComeBeforeThoseBelow) {
    for (const auto* folder : {"a/b/c/d/", "a/b/c/", "a/b/", "a/"})
        large(folder + std::string("file"));

    EXPECT_THAT(found(), ElementsAre(home.path("a/file"), home.path("a/b/file"), home.path("a/b/c/file"),
                                     home.path("a/b/c/d/file")));
}

TEST_F(LargeFileFinderTests, foldersAreWalkedInTheOrderInWhichTheyAreListed) {
    for (const auto* folder : {"one", "two", "three", "four", "five", "six"})
        large("Movies/" + std::string(folder) + "/file");
    auto expected = PathTools::subfolders(home.path("Movies"));
    for (auto& path : expected)
        path += "/file";

    EXPECT_EQ(found(), expected);
}

// Which folders of the home

TEST_F(LargeFileFinderTests, filesInTheHomeFolderItselfAreNotReported) {
    large("file.mov");

    EXPECT_THAT(found(), IsEmpty());
}

TEST_F(LargeFileFinderTests, foldersThatOthersLookAfterAreNotWalked) {
    for (const auto* folder : {"Library", "Applications", "Downloads", "Public", ".cache", ".Trash"})
        large(folder + std::string("/folder/file"));

    EXPECT_THAT(found(), IsEmpty());
}

TEST_F(LargeFileFinderTests, theirNamesMeanNothingFurtherDown) {
    std::vector<std::string> files;
    for (const auto* folder : {"Library", "Applications", "Downloads", "Public"})
        files.push_back(large("Documents/" + std::string(folder) + "/file"));

    EXPECT_THAT(found(), ::testing::UnorderedElementsAreArray(files));
}

TEST_F(LargeFileFinderTests, similarNamesAreWalked) {
    const std::vector<std::string> files = {large("Library 2/file"), large("My Downloads/file"),
                                            large("Publications/file")};

    EXPECT_THAT(found(), ::testing::UnorderedElementsAreArray(files));
}

TEST_F(LargeFileFinderTests, aLinkInTheHomeIsNotWalked) {
    const testing::TempFolder elsewhere;
    elsewhere.file("file", {.allocatedBytes = block});
    home.symlink("Movies", elsewhere.path());

    EXPECT_THAT(found(), IsEmpty());
}

TEST_F(LargeFileFinderTests, aHomeThatIsALinkIsWalkedUnderItsOwnName) {
    const testing::TempFolder elsewhere;
    large("Movies/file");
    large("Code/app/file");
    ScanContext context;
    context.home = elsewhere.symlink("home", home.path());
    context.devRoots = {elsewhere.path("home/Code")};

    EXPECT_THAT(paths(LargeFileFinder::find(context, block)),
                ElementsAre(elsewhere.path("home/Movies/file")));
}

// Project roots

TEST_F(LargeFileFinderTests, aFolderThatIsAProjectRootIsNotWalked) {
    large("Code/file");
    const auto other = large("Movies/file");

    EXPECT_THAT(found({home.path("Code")}), ElementsAre(other));
}

TEST_F(LargeFileFinderTests, aFolderThatHoldsAProjectRootIsNotWalkedAtAll) {
    large("Documents/GitHub/app/file");
    large("Documents/file");
    large("Documents/Letters/file");

    EXPECT_THAT(found({home.path("Documents/GitHub")}), IsEmpty());
}

TEST_F(LargeFileFinderTests, aFolderInsideAProjectRootIsNotWalked) {
    large("Movies/file");

    EXPECT_THAT(found({home.path()}), IsEmpty());
    EXPECT_THAT(found({"/"}), IsEmpty());
}

TEST_F(LargeFileFinderTests, rootsAreComparedByWholeNames) {
    const std::vector<std::string> files = {large("Code 2/file"), large("Cod/file")};
    large("Code/file");

    EXPECT_THAT(found({home.path("Code")}), ::testing::UnorderedElementsAreArray(files));
}

TEST_F(LargeFileFinderTests, aProjectRootThatIsGivenThroughALinkIsKnown) {
    const testing::TempFolder elsewhere;
    large("Code/file");
    large("Documents/GitHub/file");
    elsewhere.symlink("to the home", home.path());
    elsewhere.symlink("to the root", home.path("Documents/GitHub"));

    EXPECT_THAT(found({elsewhere.path("to the home/Code"), elsewhere.path("to the root")}), IsEmpty());
}

TEST_F(LargeFileFinderTests, aProjectRootWithDotsInItsPathIsKnown) {
    large("Code/file");
    home.folder("Movies");

    EXPECT_THAT(found({home.path("Movies/../Code/.")}), IsEmpty());
}

TEST_F(LargeFileFinderTests, aMissingProjectRootStillCountsByItsPath) {
    large("Documents/file");
    const auto other = large("Movies/file");

    EXPECT_THAT(found({home.path("Documents/GitHub"), "/nowhere/at/all"}), ElementsAre(other));
}

TEST_F(LargeFileFinderTests, aProjectRootThatIsALinkInTheHomeLeavesTheLinkedFolderOut) {
    large("Work/Code/file");
    large("Work/file");
    const auto other = large("Movies/file");

    EXPECT_THAT(found({home.symlink("Code", home.path("Work/Code"))}), ElementsAre(other));
}

// Packages

TEST_F(LargeFileFinderTests, whatIsInsideAPackageIsNotReported) {
    for (const auto* package : {"Foo.app", "Movies/Film.fcpbundle", "Documents/a/Talk.KEY",
                                "VMs/Disk.sparsebundle", "Pictures/Photos Library.photoslibrary"})
        large(package + std::string("/Contents/file"));

    EXPECT_THAT(found(), IsEmpty());
}

TEST_F(LargeFileFinderTests, aFolderWithAnyOtherExtensionIsWalked) {
    std::vector<std::string> files;
    for (const auto* folder : {"a.framework", "a.lproj", "a.xcassets", "node_modules", "app", "v1.2 app"})
        files.push_back(large("Movies/" + std::string(folder) + "/file"));

    EXPECT_THAT(found(), ::testing::UnorderedElementsAreArray(files));
}

TEST_F(LargeFileFinderTests, aFileWithTheNameOfAPackageIsAFile) {
    const auto file = large("Movies/Foo.app");

    EXPECT_THAT(found(), ElementsAre(file));
}

// The item

TEST_F(LargeFileFinderTests, anItemHasAllItsFields) {
    const testing::ScopedHome own(home.path());
    const auto path =
        home.file("Movies/Trip/Day 1.MOV", {.allocatedBytes = 4 * block, .modified = now - 3 * day});

    EXPECT_THAT(items(),
                ElementsAre(CleanupItem{
                    .title = "Day 1.MOV",
                    .detail = "Video berukuran besar di ~/Movies/Trip, diubah 3 hari yang lalu. Hapus bila "
                              "sudah tidak dibutuhkan, atau pindahkan ke SSD.",
                    .path = path,
                    .bytes = testing::blocksOf(path),
                    .category = ItemCategory::personal,
                    .safety = Safety::review,
                    .action = CleanupAction::trash(),
                    .recommended = false,
                    .lastActivity = instantFromSeconds(now - 3 * day),
                    .offloadable = true,
                    .warnings = {},
                    .relatedPaths = std::nullopt}));
}

TEST_F(LargeFileFinderTests, aFileWithoutADateHasNoneInItsText) {
    const auto item = LargeFileFinder::item("/Volumes/x/a.wav", 1, std::nullopt, instantFromSeconds(now));

    EXPECT_EQ(item.detail, "Audio berukuran besar di /Volumes/x, . Hapus bila sudah tidak dibutuhkan, atau "
                           "pindahkan ke SSD.");
    EXPECT_EQ(item.lastActivity, std::nullopt);
}

TEST_F(LargeFileFinderTests, aDateInTheFutureIsSaidAsSuch) {
    const auto item =
        LargeFileFinder::item("/a/b", 1, instantFromSeconds(now + 2 * day), instantFromSeconds(now));

    EXPECT_THAT(item.detail, HasSubstr("/a, diubah dalam 2 hari. Hapus"));
}

TEST(LargeFileKindTests, everyExtensionHasItsKind) {
    const std::pair<std::string, std::vector<std::string>> rows[] = {
        {"Video", {"mov", "mp4", "m4v", "mkv", "avi", "webm", "mts", "braw", "r3d"}},
        {"Image disk", {"dmg", "iso", "img", "sparseimage", "sparsebundle"}},
        {"Arsip", {"zip", "rar", "7z", "tar", "gz", "tgz", "xz", "bz2"}},
        {"Mesin virtual", {"vmdk", "vdi", "qcow2", "vhd", "vhdx", "utm", "pvm"}},
        {"Audio", {"wav", "aif", "aiff", "flac", "caf"}},
        {"Foto RAW", {"cr2", "cr3", "nef", "arw", "raf", "dng"}},
        {"File desain", {"psd", "psb", "ai", "sketch", "fig", "blend", "prproj", "aep"}},
        {"Installer", {"pkg", "apk", "aab", "ipa", "exe", "msi", "xip"}},
        {"File", {"", "txt", "deb", "appimage", "mpkg", "mp3", "jpg", "heic", "movx", "7"}},
    };
    for (const auto& [label, extensions] : rows) {
        for (const auto& extension : extensions) {
            auto upper = extension;
            std::ranges::transform(upper, upper.begin(), [](char c) {
                return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c;
            });
            for (const auto& name : {"name." + extension, "two.parts." + upper})
                EXPECT_THAT(LargeFileFinder::item("/f/" + name, 1, std::nullopt, Instant()).detail,
                            StartsWith(label + " berukuran besar di /f, "))
                    << name;
        }
    }
}

TEST(LargeFileKindTests, aNameThatIsNoExtensionIsAnyFile) {
    for (const auto* name : {"mov", "a.mov ", "v1.mov copy", "a.mov."})
        EXPECT_THAT(LargeFileFinder::item("/f/" + std::string(name), 1, std::nullopt, Instant()).detail,
                    StartsWith("File berukuran"))
            << name;
}

#ifndef __APPLE__ // whose file systems take no such names
TEST_F(LargeFileFinderTests, namesThatAreNoTextStayAsTheyAre) {
    const auto video = large("Mo\xffvies/\xfe.mov");
    const auto other = large("Mo\xffvies/a.mo\xffv");

    auto reported = items();
    std::ranges::sort(reported, {}, &CleanupItem::title);

    ASSERT_THAT(paths(reported), ElementsAre(other, video));
    EXPECT_EQ(reported[0].title, "a.mo\xffv");
    EXPECT_THAT(reported[0].detail, StartsWith("File berukuran besar di " + home.path("Mo\xffvies") + ","));
    EXPECT_EQ(reported[1].title, "\xfe.mov");
    EXPECT_THAT(reported[1].detail, StartsWith("Video berukuran besar di "));
}
#endif

// Trees of every shape

TEST_F(LargeFileFinderTests, aChainOfTwoThousandFoldersIsWalkedToItsEnd) {
    makeChain("Movies", 2000);

    EXPECT_THAT(items(), SizeIs(2000));
    Platform::raiseOpenFileLimit(); // the library that removes the tree takes a descriptor for each level
}

TEST_F(LargeFileFinderTests, whatIsLeftOnTheWayDownIsWalkedOnTheWayUp) {
    std::vector<std::string> files;
    std::string path = "Movies";
    for (int level = 0; level < 200; ++level) {
        for (const auto* sibling : {"/a", "/z"})
            files.push_back(large(path + sibling + "/file"));
        path += "/m";
    }

    EXPECT_THAT(found(), ::testing::UnorderedElementsAreArray(files));
}

TEST_F(LargeFileFinderTests, aDeepTreeTakesFewDescriptors) {
    rlimit before{};
    ::getrlimit(RLIMIT_NOFILE, &before);
    const int next = FileDescriptor(::open("/dev/null", O_RDONLY)).get();
    ASSERT_GE(::open("/dev/null", O_RDONLY), 0); // keeps a place below
    const rlimit few = {.rlim_cur = static_cast<rlim_t>(next) + 40, .rlim_max = before.rlim_max};
    makeChain("Movies", 300);
    makeChain("Music", 300);
    ::setrlimit(RLIMIT_NOFILE, &few);
    const auto reported = items();
    ::setrlimit(RLIMIT_NOFILE, &before);

    EXPECT_THAT(reported, SizeIs(600));
}

TEST_F(LargeFileFinderTests, aFolderOfManyEntriesIsListedWhole) {
    for (int i = 0; i < 3000; ++i)
        home.folder("Movies/a-name-that-is-long-enough-to-need-more-than-one-page-" + std::to_string(i));
    for (int i = 0; i < 3000; ++i)
        large("Movies/a-name-that-is-long-enough-to-need-more-than-one-page-" + std::to_string(i) + "/file");

    EXPECT_THAT(items(), SizeIs(3000));
}

TEST_F(LargeFileFinderTests, aFolderThatIsSwappedForALinkLeadsNowhere) {
    const testing::TempFolder elsewhere;
    elsewhere.file("file", {.allocatedBytes = block});
    const auto file = large("Movies/stays/file");
    const auto swapped = home.path("Movies/swapped");
    std::atomic<bool> stop = false;
    std::thread other([&] {
        while (!stop) {
            ::mkdir(swapped.c_str(), 0755);
            ::rmdir(swapped.c_str());
            static_cast<void>(::symlink(elsewhere.path().c_str(), swapped.c_str()));
            ::unlink(swapped.c_str());
        }
    });
    for (int i = 0; i < 500; ++i)
        EXPECT_THAT(found(), ElementsAre(file));
    stop = true;
    other.join();
}

#ifdef __linux__
TEST_F(LargeFileFinderTests, aTreeThatIsMovedAwayDuringTheWalkLeavesTheRestOfTheHome) {
    const testing::TempFolder elsewhere;
    std::vector<std::string> files;
    for (int i = 0; i < 20; ++i) {
        const auto name = "sibling" + std::to_string(i);
        home.folder("Movies/a/" + name);
        elsewhere.file(name + "/file", {.allocatedBytes = block});
        if (i == 10)
            makeChain("Movies/a/middle", 60);
        files.push_back(large("Music" + std::to_string(i) + "/file"));
    }
    std::string bottom = "Movies/a/middle";
    for (int level = 0; level < 60; ++level)
        bottom += "/deeper";
    for (int i = 0; i < 20'000; ++i) // takes a while to be listed
        ::close(::open(home.path(bottom + "/" + std::to_string(i)).c_str(), O_WRONLY | O_CREAT, 0644));

    const FileDescriptor watch(::inotify_init1(IN_CLOEXEC));
    ASSERT_GE(::inotify_add_watch(watch.get(), home.path(bottom).c_str(), IN_OPEN), 0);
    std::thread other([&] {
        inotify_event event{};
        EXPECT_EQ(::read(watch.get(), &event, sizeof event), sizeof event);
        EXPECT_EQ(::rename(home.path("Movies/a/middle").c_str(), elsewhere.path("moved").c_str()), 0);
    });
    auto reported = found();
    other.join();

    // Neither what lies beside the folder now, nor a folder of the home too few.
    std::erase_if(reported,
                  [this](const std::string& path) { return path.starts_with(home.path("Movies/a/middle")); });
    EXPECT_THAT(reported, ::testing::UnorderedElementsAreArray(files));
}
#endif

} // namespace
} // namespace korvanti
