#include "fs/FolderChain.h"

#include "platform/Platform.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace korvanti {
namespace {

using korvanti::testing::TempFolder;

class FolderChainTests : public ::testing::Test {
protected:
    [[nodiscard]] std::expected<FileDescriptor, FileError> create(std::string_view relative) const {
        const FileDescriptor base(Platform::openPassage(temp.path()));
        return FolderChain::create(base.get(), temp.path(), relative);
    }
    [[nodiscard]] FileError error(std::string_view relative) const {
        const auto made = create(relative);
        return made ? FileError() : made.error();
    }
    [[nodiscard]] FileError errorOf(std::errc code, const std::string& relative) const {
        return {.path = temp.path(relative), .code = std::make_error_code(code), .systemText = {}};
    }
    /// The open folder is the one at that path.
    [[nodiscard]] bool isAt(const std::expected<FileDescriptor, FileError>& made,
                            const std::string& relative) const {
        struct stat open {};
        struct stat there {};
        return made && ::fstat(made->get(), &open) == 0 &&
               ::lstat(temp.path(relative).c_str(), &there) == 0 && open.st_ino == there.st_ino &&
               S_ISDIR(there.st_mode);
    }

    TempFolder temp;
};

TEST_F(FolderChainTests, missingParentsAreMade) {
    EXPECT_TRUE(isAt(create("a/b/c"), "a/b/c"));
}

TEST_F(FolderChainTests, whatStandsIsEntered) {
    temp.file("a/b/file");
    EXPECT_TRUE(isAt(create("a/b"), "a/b"));
    EXPECT_TRUE(isAt(create("/a//b/"), "a/b"));
}

TEST_F(FolderChainTests, anEmptyPathIsTheBaseItself) {
    EXPECT_TRUE(isAt(create(""), ""));
}

TEST_F(FolderChainTests, anErrorNamesThePathWithOneSlashBetween) {
    temp.file("file");
    for (const auto* relative : {"file/b", "/file/b", "//file/b"})
        EXPECT_EQ(error(relative).path, temp.path("file/b")) << relative;
}

TEST_F(FolderChainTests, aLinkOnTheWayIsRefusedAndNothingIsMadeBehindIt) {
    temp.folder("elsewhere");
    temp.symlink("link", temp.path("elsewhere"));
    EXPECT_EQ(error("link/a"), errorOf(std::errc::too_many_symbolic_link_levels, "link/a"));
    EXPECT_EQ(error("link"), errorOf(std::errc::too_many_symbolic_link_levels, "link"));
    EXPECT_NE(::access(temp.path("elsewhere/a").c_str(), F_OK), 0);
}

TEST_F(FolderChainTests, aDanglingLinkIsRefused) {
    temp.symlink("link", temp.path("nowhere"));
    EXPECT_EQ(error("link/a"), errorOf(std::errc::too_many_symbolic_link_levels, "link/a"));
    EXPECT_NE(::access(temp.path("nowhere").c_str(), F_OK), 0);
}

TEST_F(FolderChainTests, aFileOnTheWayIsNoFolder) {
    temp.file("a/file");
    EXPECT_EQ(error("a/file/b"), errorOf(std::errc::not_a_directory, "a/file/b"));
}

TEST_F(FolderChainTests, aPathThatLeadsUpwardsIsRefusedAsAWhole) {
    EXPECT_EQ(error("a/../../b"), errorOf(std::errc::invalid_argument, "a/../../b"));
    EXPECT_EQ(error("a/./b"), errorOf(std::errc::invalid_argument, "a/./b"));
    EXPECT_NE(::access(temp.path("a").c_str(), F_OK), 0);
}

TEST_F(FolderChainTests, aNameThatNoFileSystemTakesIsItsError) {
    const std::string name(300, 'n');
    EXPECT_EQ(error("a/" + name), errorOf(std::errc::filename_too_long, "a/" + name));
}

} // namespace
} // namespace korvanti
