#include "base/FileDescriptor.h"
#include "fs/FileContents.h"
#include "fs/PathTools.h"
#include "platform/Platform.h"
#include "support/TempFolder.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace korvanti {
namespace {

using korvanti::testing::TempFolder;
using korvanti::testing::textOf;

class FileContentsTests : public ::testing::Test {
protected:
    TempFolder temp;
};

TEST_F(FileContentsTests, readsAWholeFileWithItsZeros) {
    const std::string bytes("a\0b\n\xff", 5);
    EXPECT_EQ(FileContents::read(temp.file("file", {.text = bytes})), bytes);
    EXPECT_EQ(FileContents::read(temp.file("empty")), "");
}

TEST_F(FileContentsTests, readsThroughALink) {
    temp.file("file", {.text = "x"});
    EXPECT_EQ(FileContents::read(temp.symlink("link", "file")), "x");
}

TEST_F(FileContentsTests, aFolderAPipeADeviceAndNothingHaveNoContents) {
    ASSERT_EQ(::mkfifo(temp.path("pipe").c_str(), 0600), 0);
    for (const auto& path : {temp.path(), temp.path("pipe"), std::string("/dev/zero"), temp.path("missing")})
        EXPECT_EQ(FileContents::read(path), std::nullopt) << path;
}

TEST_F(FileContentsTests, aFileOverTheLimitIsNotRead) {
    const auto file = temp.file("file", {.text = "12345"});
    EXPECT_EQ(FileContents::read(file, 5), "12345");
    EXPECT_EQ(FileContents::read(file, 4), std::nullopt);
    EXPECT_EQ(FileContents::read(temp.file("huge", {.sparseBytes = FileContents::defaultLimit + 1})),
              std::nullopt);
}

TEST_F(FileContentsTests, whatCanNotBeReadTellsWhy) {
    ASSERT_EQ(::mkfifo(temp.path("pipe").c_str(), 0600), 0);
    temp.file("file", {.text = "12345"});
    const auto reasonAt = [](const std::string& path, std::int64_t limit = 5) {
        const auto bytes = FileContents::readOrError(path, limit);
        return bytes ? std::error_code() : bytes.error();
    };
    const auto reason = [&](const std::string& relative) { return reasonAt(temp.path(relative)); };
    EXPECT_EQ(reason("missing"), std::errc::no_such_file_or_directory);
    temp.symlink("dangling", "nowhere");
    EXPECT_EQ(reason("dangling"), std::errc::no_such_file_or_directory);
    EXPECT_EQ(reason("file/below"), std::errc::not_a_directory);
    EXPECT_EQ(reason(""), std::errc::is_a_directory);
    EXPECT_EQ(reason("pipe"), std::errc::invalid_argument);
    temp.symlink("circle", "circle");
    EXPECT_EQ(reason("circle"), std::errc::too_many_symbolic_link_levels);
    EXPECT_EQ(reasonAt(temp.path("file"), 4), std::errc::file_too_large);
    EXPECT_EQ(reason("file"), std::error_code());
    EXPECT_EQ(FileContents::readOrError(temp.path("file")), "12345");
#ifdef __linux__
    EXPECT_EQ(reasonAt("/proc/self/mem"), std::errc::io_error);
    EXPECT_EQ(reasonAt("/proc/self/status", 10), std::errc::file_too_large);
#endif
}

TEST_F(FileContentsTests, theStartOfAFileIsReadUpToTheLimit) {
    const auto file = temp.file("file", {.text = std::string("1\0"
                                                             "345",
                                                             5)});
    EXPECT_EQ(FileContents::readStart(file, 3), std::string("1\0"
                                                            "3",
                                                            3));
    EXPECT_EQ(FileContents::readStart(file, 0), "");
    for (const std::int64_t enough : {5, 6, 1'000'000})
        EXPECT_EQ(FileContents::readStart(file, enough), std::string("1\0"
                                                                     "345",
                                                                     5))
            << enough;
    EXPECT_EQ(FileContents::readStart(temp.file("empty"), 5), "");
}

TEST_F(FileContentsTests, theStartOfAHugeFileIsRead) {
    const auto file = temp.file("huge", {.text = "start", .sparseBytes = 100'000'000'000});
    const auto start = FileContents::readStart(file, 200'000);
    ASSERT_TRUE(start);
    EXPECT_EQ(start->size(), 200'000U);
    EXPECT_TRUE(start->starts_with(std::string("start\0", 6)));
    EXPECT_EQ(FileContents::read(file), std::nullopt);
}

TEST_F(FileContentsTests, theStartIsReadThroughALink) {
    temp.file("file", {.text = "text"});
    EXPECT_EQ(FileContents::readStart(temp.symlink("link", "file"), 2), "te");
    EXPECT_EQ(FileContents::readStart(temp.symlink("dangling", "nowhere"), 2), std::nullopt);
}

TEST_F(FileContentsTests, aFolderAPipeADeviceAndNothingHaveNoStart) {
    ASSERT_EQ(::mkfifo(temp.path("pipe").c_str(), 0600), 0);
    for (const auto& path :
         {temp.path(), temp.path("pipe"), std::string("/dev/zero"), temp.path("missing"), std::string()})
        EXPECT_EQ(FileContents::readStart(path, 10), std::nullopt) << path;
}

TEST_F(FileContentsTests, writingReplacesTheFileAndLeavesNothingBeside) {
    const auto file = temp.file("folder/file", {.text = "old and longer"});
    EXPECT_TRUE(FileContents::writeAtomically(file, "new"));
    EXPECT_EQ(textOf(file), "new");
    EXPECT_EQ(PathTools::children(temp.path("folder")), std::vector{file});
}

TEST_F(FileContentsTests, writingKeepsTheModeOfTheOldFile) {
    const auto file = temp.file("file");
    temp.setMode("file", 0600);
    EXPECT_TRUE(FileContents::writeAtomically(file, "x"));
    struct stat status {};
    ASSERT_EQ(::stat(file.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600U);
}

TEST_F(FileContentsTests, aNewFileIsForItsUserAlone) {
    const auto file = temp.path("file");
    EXPECT_TRUE(FileContents::writeAtomically(file, "x"));
    struct stat status {};
    ASSERT_EQ(::stat(file.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600U);
}

TEST_F(FileContentsTests, aFailedWriteLeavesTheOldStateAndNothingBeside) {
    const auto folder = temp.folder("parent/taken/by-a-folder");
    const auto taken = temp.path("parent/taken");
    EXPECT_FALSE(FileContents::writeAtomically(taken, "x"));
    EXPECT_EQ(PathTools::children(temp.path("parent")), std::vector{taken});
    EXPECT_TRUE(PathTools::isDirectory(folder));
    EXPECT_FALSE(FileContents::writeAtomically(temp.path("no/such/folder/file"), "x"));
}

TEST_F(FileContentsTests, createsAFolderWithItsParents) {
    EXPECT_TRUE(FileContents::createFolders(temp.path("a/b/c")));
    EXPECT_TRUE(FileContents::createFolders(temp.path("a/b/c")));
    EXPECT_TRUE(PathTools::isDirectory(temp.path("a/b/c")));
}

TEST_F(FileContentsTests, aFileInTheWayIsAnError) {
    temp.file("a");
    EXPECT_EQ(FileContents::createFolders(temp.path("a/b")).error(), std::errc::not_a_directory);
    EXPECT_FALSE(FileContents::createFolders(temp.path("a")));
}

TEST_F(FileContentsTests, readsAPropertyList) {
    const auto list = FileContents::readPropertyList(KORVANTI_TEST_DATA "/Info-binary.plist");
    ASSERT_TRUE(list);
    EXPECT_EQ(list->text("CFBundleIdentifier"), "com.contoh.Catatan");
}

TEST_F(FileContentsTests, whatIsNoPropertyListIsNotReadAsOne) {
    for (const auto& path : {temp.file("damaged", {.text = "bplist00nonsense"}), temp.file("empty"),
                             temp.folder("folder"), temp.path("missing")})
        EXPECT_EQ(FileContents::readPropertyList(path), std::nullopt) << path;
}

TEST_F(FileContentsTests, readsAPropertyListFromAnOpenFolder) {
    temp.file("app/Contents/Info.plist", {.text = textOf(KORVANTI_TEST_DATA "/Info-xml.plist")});
    const FileDescriptor folder(Platform::openPassage(temp.path("app")));
    const auto list = FileContents::readPropertyList(folder.get(), "Contents/Info.plist");
    ASSERT_TRUE(list);
    EXPECT_EQ(list->text("CFBundleIdentifier"), "com.contoh.Catatan");
    EXPECT_EQ(FileContents::readPropertyList(folder.get(), "Info.plist"), std::nullopt);
    EXPECT_EQ(FileContents::readPropertyList(folder.get(), "Contents"), std::nullopt);
}

TEST_F(FileContentsTests, thePropertyListIsThatOfTheOpenFolderWhateverHasItsPathNow) {
    temp.file("app/Info.plist", {.text = textOf(KORVANTI_TEST_DATA "/Info-xml.plist")});
    const FileDescriptor folder(Platform::openPassage(temp.path("app")));
    std::filesystem::rename(temp.path("app"), temp.path("moved"));
    temp.file("app/Info.plist", {.text = "damaged"});
    EXPECT_TRUE(FileContents::readPropertyList(folder.get(), "Info.plist"));
}

TEST_F(FileContentsTests, whereNoFolderIsOpenThereIsNoPropertyList) {
    temp.file("Info.plist", {.text = textOf(KORVANTI_TEST_DATA "/Info-xml.plist")});
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(temp.path());
    EXPECT_EQ(FileContents::readPropertyList(-1, "Info.plist"), std::nullopt);
    std::filesystem::current_path(before);
}

} // namespace
} // namespace korvanti
