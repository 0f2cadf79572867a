#include "fs/PinnedEntry.h"

#include "support/TempFolder.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <system_error>
#include <unistd.h>
#include <utility>
#include <vector>

namespace korvanti {
namespace {

using korvanti::testing::TempFolder;
using Platform::EntryKind;

Platform::EntryIdentity identityOf(const std::string& path) {
    struct stat status {};
    EXPECT_EQ(::lstat(path.c_str(), &status), 0) << path;
    return {.device = static_cast<std::uint64_t>(status.st_dev), .inode = status.st_ino};
}

Platform::EntryIdentity identityOf(int descriptor) {
    struct stat status {};
    EXPECT_EQ(::fstat(descriptor, &status), 0);
    return {.device = static_cast<std::uint64_t>(status.st_dev), .inode = status.st_ino};
}

class PinnedEntryTests : public ::testing::Test {
protected:
    [[nodiscard]] PinnedEntry pinned(const std::string& relative) const {
        return PinnedEntry::open(temp.path(), temp.path(relative)).value();
    }
    [[nodiscard]] static FileError errorFrom(const std::string& base, const std::string& path) {
        const auto entry = PinnedEntry::open(base, path);
        return entry ? FileError() : entry.error();
    }
    [[nodiscard]] FileError error(const std::string& path) const { return errorFrom(temp.path(), path); }
    [[nodiscard]] static FileError errorOf(std::errc code, const std::string& path) {
        return {.path = path, .code = std::make_error_code(code), .systemText = {}};
    }
    void rename(const std::string& from, const std::string& to) const {
        std::filesystem::rename(temp.path(from), temp.path(to));
    }

    TempFolder temp;
};

// What is held

TEST_F(PinnedEntryTests, aFileIsHeldByItsFolderAndItsName) {
    const auto file = temp.file("a/b/file");
    const auto entry = pinned("a/b/file");
    EXPECT_EQ(entry.path(), file);
    EXPECT_EQ(entry.name(), "file");
    EXPECT_EQ(identityOf(entry.parent()), identityOf(temp.path("a/b")));
    EXPECT_EQ(entry.kind(), EntryKind::file);
    EXPECT_FALSE(entry.isFolder());
    EXPECT_EQ(entry.folder(), -1);
    EXPECT_EQ(entry.identity(), identityOf(file));
    EXPECT_TRUE(entry.stillThere().has_value());
}

TEST_F(PinnedEntryTests, aFolderIsHeldItself) {
    const auto folder = temp.folder("a/folder");
    const auto entry = pinned("a/folder");
    EXPECT_EQ(entry.kind(), EntryKind::folder);
    EXPECT_TRUE(entry.isFolder());
    EXPECT_EQ(identityOf(entry.folder()), identityOf(folder));
    EXPECT_EQ(entry.identity(), identityOf(folder));
    EXPECT_TRUE(entry.stillThere().has_value());
}

TEST_F(PinnedEntryTests, aLinkIsHeldAsTheLinkThatItIs) {
    temp.folder("target");
    for (const std::string target : {"target", "nowhere", "link", "."}) {
        const auto link = temp.symlink("link", target);
        const auto entry = pinned("link");
        EXPECT_EQ(entry.kind(), EntryKind::link) << target;
        EXPECT_EQ(entry.folder(), -1) << target;
        EXPECT_EQ(entry.identity(), identityOf(link)) << target;
        EXPECT_TRUE(entry.stillThere().has_value()) << target;
        std::filesystem::remove(link);
    }
}

TEST_F(PinnedEntryTests, pipesAndSocketsAreNeitherFileNorFolder) {
    ASSERT_EQ(::mkfifo(temp.path("pipe").c_str(), 0600), 0);
    const int server = ::socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
    temp.path("socket").copy(address.sun_path, sizeof address.sun_path - 1);
    ASSERT_EQ(::bind(server, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    ::close(server);
    for (const auto* name : {"pipe", "socket"}) {
        EXPECT_EQ(pinned(name).kind(), EntryKind::other) << name;
        EXPECT_TRUE(pinned(name).stillThere().has_value()) << name;
    }
}

TEST_F(PinnedEntryTests, theNamesOfAHardLinkAreOneObjectAndTwoFilesAreTwo) {
    const auto one = temp.file("one");
    temp.hardLink("two", one);
    temp.file("other");
    EXPECT_EQ(pinned("one").identity(), pinned("two").identity());
    EXPECT_NE(pinned("one").identity(), pinned("other").identity());
}

TEST_F(PinnedEntryTests, whatIsMovedToAnotherOwnerIsHeldOn) {
    temp.file("folder/file");
    auto first = pinned("folder");
    const PinnedEntry second = std::move(first);
    EXPECT_TRUE(second.stillThere().has_value());
    EXPECT_EQ(identityOf(second.folder()), identityOf(temp.path("folder")));
}

#ifndef __APPLE__ // whose file systems take no such names
TEST_F(PinnedEntryTests, namesNeedNotBeText) {
    temp.file("\xff\xfe/\xc3/two\nlines");
    EXPECT_EQ(pinned("\xff\xfe/\xc3/two\nlines").name(), "two\nlines");
    EXPECT_TRUE(pinned("\xff\xfe/\xc3").isFolder());
}
#endif

TEST_F(PinnedEntryTests, aPathLongerThanTheSystemTakesIsReachedStepByStep) {
    const std::string name(200, 'n');
    const FileDescriptor start(Platform::openPassage(temp.path()));
    const FileDescriptor* last = &start;
    std::vector<FileDescriptor> way;
    std::string path = temp.path();
    for (int i = 0; i < 100; ++i) {
        ASSERT_EQ(::mkdirat(last->get(), name.c_str(), 0700), 0);
        way.emplace_back(Platform::openPassageAt(last->get(), name.c_str()));
        ASSERT_TRUE(way.back());
        last = &way.back();
        path += "/" + name;
    }
    const auto entry = PinnedEntry::open(temp.path(), path);
    ASSERT_TRUE(entry);
    EXPECT_EQ(identityOf(entry->folder()), identityOf(last->get()));
}

TEST_F(PinnedEntryTests, openingClosesAllButWhatIsHeld) {
    temp.file("a/b/c/folder/file");
    const auto firstFree = [] { return FileDescriptor(::dup(0)).get(); };
    const int before = firstFree();
    {
        const auto entry = pinned("a/b/c/folder");
        EXPECT_LE(firstFree(), before + 2);
    }
    EXPECT_FALSE(PinnedEntry::open(temp.path(), temp.path("a/b/c/missing")));
    EXPECT_FALSE(PinnedEntry::open(temp.path(), temp.path("a/b/missing/x")));
    EXPECT_EQ(firstFree(), before);
}

// The way

TEST_F(PinnedEntryTests, aLinkOnTheWayIsAnErrorAtEveryDepth) {
    temp.file("real/b/c/file");
    temp.symlink("first", "real");
    temp.symlink("real/second", "b");
    temp.symlink("real/b/last", temp.path("real/b/c"));
    for (const auto* relative :
         {"first/b/c/file", "first/b", "real/second/c/file", "real/b/last/file", "real/b/last/missing"})
        EXPECT_EQ(error(temp.path(relative)),
                  errorOf(std::errc::too_many_symbolic_link_levels, temp.path(relative)))
            << relative;
}

TEST_F(PinnedEntryTests, aLinkThatLeadsNowhereOrToAFileIsOneOnTheWayToo) {
    temp.file("file");
    for (const std::string target : {"nowhere", "link", "file"}) {
        const auto link = temp.symlink("link", target);
        EXPECT_EQ(error(link + "/x"), errorOf(std::errc::too_many_symbolic_link_levels, link + "/x"))
            << target;
        std::filesystem::remove(link);
    }
}

TEST_F(PinnedEntryTests, theBaseMayBeALinkAndLieBehindOthers) {
    temp.file("real/base/a/file");
    temp.symlink("way", "real");
    const auto link = temp.symlink("link", temp.path("way/base"));
    for (const auto& base : {temp.path("real/base"), temp.path("way/base"), link}) {
        const auto entry = PinnedEntry::open(base, base + "/a/file");
        ASSERT_TRUE(entry) << base;
        EXPECT_EQ(entry->identity(), identityOf(temp.path("real/base/a/file"))) << base;
        EXPECT_EQ(entry->path(), base + "/a/file");
    }
}

TEST_F(PinnedEntryTests, theRootIsABaseLikeAnyOther) {
    const auto file = temp.file("file");
    const auto entry = PinnedEntry::open("/", file);
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->identity(), identityOf(file));
}

TEST_F(PinnedEntryTests, whatIsNotThereIsMissing) {
    for (const auto* relative : {"missing", "missing/deeper"})
        EXPECT_EQ(error(temp.path(relative)),
                  errorOf(std::errc::no_such_file_or_directory, temp.path(relative)));
    EXPECT_EQ(errorFrom(temp.path("no-base"), temp.path("no-base/x")),
              errorOf(std::errc::no_such_file_or_directory, temp.path("no-base/x")));
}

TEST_F(PinnedEntryTests, aFileOnTheWayLeadsNowhere) {
    temp.file("a/file");
    EXPECT_EQ(error(temp.path("a/file/x")), errorOf(std::errc::not_a_directory, temp.path("a/file/x")));
}

TEST_F(PinnedEntryTests, aPathThatDoesNotLieBelowTheBaseIsInvalid) {
    temp.file("base/file");
    temp.file("base 2/file");
    for (const auto& path : {temp.path("base"), temp.path("base 2/file"), temp.path("file"),
                             std::string("base/file"), std::string("/"), std::string()})
        EXPECT_EQ(errorFrom(temp.path("base"), path), errorOf(std::errc::invalid_argument, path)) << path;
}

TEST_F(PinnedEntryTests, aZeroInThePathIsInvalid) {
    const auto path = temp.file("file") + std::string("\0x", 2);
    EXPECT_EQ(error(path), errorOf(std::errc::invalid_argument, path));
}

TEST_F(PinnedEntryTests, aNameThatNoSystemTakesIsAnError) {
    const auto path = temp.path(std::string(1000, 'n'));
    EXPECT_EQ(error(path), errorOf(std::errc::filename_too_long, path));
    EXPECT_EQ(error(path + "/x"), errorOf(std::errc::filename_too_long, path + "/x"));
}

// What happens meanwhile

TEST_F(PinnedEntryTests, whatWasRemovedOrRenamedIsNotThere) {
    temp.file("file");
    temp.folder("folder");
    const auto file = pinned("file");
    const auto folder = pinned("folder");
    std::filesystem::remove(temp.path("file"));
    rename("folder", "elsewhere");
    EXPECT_FALSE(file.stillThere().has_value());
    EXPECT_FALSE(folder.stillThere().has_value());
}

TEST_F(PinnedEntryTests, anotherOneOfTheSameKindIsNotIt) {
    temp.file("file");
    temp.file("other file");
    temp.folder("folder");
    temp.folder("other folder");
    temp.symlink("link", "nowhere");
    temp.symlink("other link", "nowhere");
    for (const std::string name : {"file", "folder", "link"}) {
        const auto entry = pinned(name);
        rename(name, "old " + name);
        rename("other " + name, name);
        EXPECT_FALSE(entry.stillThere().has_value()) << name;
        rename(name, "other " + name);
        rename("old " + name, name);
        EXPECT_TRUE(entry.stillThere().has_value()) << name;
    }
}

TEST_F(PinnedEntryTests, aLinkToTheVeryObjectIsNotIt) {
    temp.file("file");
    temp.folder("folder");
    for (const std::string name : {"file", "folder"}) {
        const auto entry = pinned(name);
        rename(name, "moved " + name);
        temp.symlink(name, "moved " + name);
        EXPECT_FALSE(entry.stillThere().has_value()) << name;
    }
}

// Many file systems give the number of a removed file to the next new one.
TEST_F(PinnedEntryTests, aNewFileInThePlaceOfARemovedOneIsNotIt) {
    temp.file("file");
    const auto entry = pinned("file");
    for (int i = 0; i < 10; ++i) {
        std::filesystem::remove(temp.path("file"));
        temp.file("file", {.text = "somebody's new work"});
        EXPECT_FALSE(entry.stillThere().has_value());
    }
}

TEST_F(PinnedEntryTests, theHeldFolderStaysTheParentWhereverItGoes) {
    temp.file("folder/file");
    temp.file("decoy/file");
    const auto entry = pinned("folder/file");
    rename("folder", "moved");
    temp.symlink("folder", "decoy");
    EXPECT_TRUE(entry.stillThere().has_value());
    EXPECT_EQ(identityOf(entry.parent()), identityOf(temp.path("moved")));
    std::filesystem::remove(temp.path("moved/file"));
    EXPECT_FALSE(entry.stillThere().has_value());
}

} // namespace
} // namespace korvanti
