#include "cleaning/TreeRemover.h"

#include "RemovalSupport.h"
#include "base/FileDescriptor.h"
#include "cleaning/Trash.h"
#include "platform/Platform.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <system_error>
#include <unistd.h>

/// What only an ordinary user meets: root may do everything.
namespace korvanti {
namespace {

using namespace korvanti::testing;

constexpr auto denied = std::errc::permission_denied;

class TreeRemoverPermissionTests : public RemovalTests {
protected:
    void SetUp() override { ASSERT_NE(::geteuid(), 0U) << "run this as an ordinary user"; }

    /// What is left, once all of it may be read.
    [[nodiscard]] Names leftBehind(const std::string& closed) const {
        temp.setMode("home/arena/" + closed, 0700);
        return left();
    }
};

// Removal

TEST_F(TreeRemoverPermissionTests, filesWithoutPermissionsGo) {
    temp.file("home/arena/file");
    temp.file("home/arena/x/a/file");
    for (const auto* file : {"home/arena/file", "home/arena/x/a/file"})
        temp.setMode(file, 0);
    EXPECT_EQ(remove("file"), done);
    EXPECT_EQ(remove("x"), done);
    EXPECT_EQ(left(), Names{});
}

TEST_F(TreeRemoverPermissionTests, aFolderThatMayNotBeListedStaysAndTheRestGoes) {
    temp.file("home/arena/x/a/closed/file");
    temp.file("home/arena/x/a/open/file");
    temp.file("home/arena/x/b/file");
    temp.file("home/arena/x/file");
    for (const unsigned mode : {0U, 0100U, 0300U}) {
        temp.setMode("home/arena/x/a/closed", mode);
        EXPECT_EQ(remove("x"), failure(denied, arena("x/a/closed"))) << mode;
        EXPECT_EQ(modeOf(arena("x/a/closed")), mode);
    }
    EXPECT_EQ(leftBehind("x/a/closed"), (Names{"x", "x/a", "x/a/closed", "x/a/closed/file"}));
}

TEST_F(TreeRemoverPermissionTests, whatLiesInAFolderThatMayNotBeChangedStaysAndTheRestGoes) {
    temp.file("home/arena/x/a/closed/file");
    temp.file("home/arena/x/a/closed/folder/inside");
    temp.file("home/arena/x/a/open/file");
    temp.file("home/arena/x/b/file");
    temp.setMode("home/arena/x/a/closed", 0500);
    const auto removal = remove("x");
    ASSERT_FALSE(removal);
    EXPECT_EQ(removal.error().code, denied);
    EXPECT_TRUE((Names{arena("x/a/closed/file"), arena("x/a/closed/folder")}).contains(removal.error().path))
        << removal.error().path;
    EXPECT_EQ(modeOf(arena("x/a/closed")), 0500U);
    EXPECT_EQ(left(), (Names{"x", "x/a", "x/a/closed", "x/a/closed/file", "x/a/closed/folder"}));
}

TEST_F(TreeRemoverPermissionTests, whatLiesInAFolderThatMayNotBeEnteredStaysAndTheRestGoes) {
    temp.file("home/arena/x/closed/file");
    temp.file("home/arena/x/file");
    for (const unsigned mode : {0400U, 0600U}) {
        temp.setMode("home/arena/x/closed", mode);
        EXPECT_EQ(remove("x"), failure(denied, arena("x/closed/file"))) << mode;
        EXPECT_EQ(modeOf(arena("x/closed")), mode);
    }
    EXPECT_EQ(leftBehind("x/closed"), (Names{"x", "x/closed", "x/closed/file"}));
}

TEST_F(TreeRemoverPermissionTests, theErrorIsThatOfTheCauseAndNotOfTheFoldersAboveIt) {
    temp.file("home/arena/x/a/b/c/closed/file");
    temp.setMode("home/arena/x/a/b/c/closed", 0500);
    EXPECT_EQ(remove("x"), failure(denied, arena("x/a/b/c/closed/file")));
}

TEST_F(TreeRemoverPermissionTests, anErrorFarDownHasItsWholePath) {
    std::string path = "x";
    for (int level = 0; level < 300; ++level)
        path += "/folder";
    temp.file("home/arena/" + path + "/closed/file");
    temp.file("home/arena/" + path + "/open/file");
    temp.setMode("home/arena/" + path + "/closed", 0500);
    EXPECT_EQ(remove("x"), failure(denied, arena(path + "/closed/file")));
    EXPECT_FALSE(std::filesystem::exists(arena(path + "/open")));
}

TEST_F(TreeRemoverPermissionTests, oneOfSeveralErrorsIsGivenAndTheRestGoes) {
    for (int i = 0; i < 20; ++i) {
        const auto folder = "home/arena/x/" + std::to_string(i);
        temp.file(folder + "/open/file");
        temp.file(folder + "/closed/file");
        temp.setMode(folder + "/closed", 0500);
    }
    const auto removal = remove("x");
    ASSERT_FALSE(removal);
    EXPECT_EQ(removal.error().code, denied);
    EXPECT_TRUE(removal.error().path.ends_with("/closed/file")) << removal.error().path;
    EXPECT_EQ(left().size(), 1U + 20 * 3);
}

TEST_F(TreeRemoverPermissionTests, whatLiesInAParentThatMayNotBeChangedStays) {
    temp.file("home/arena/parent/file");
    temp.symlink("home/arena/parent/link", precious());
    temp.folder("home/arena/parent/empty");
    temp.file("home/arena/parent/folder/file");
    temp.setMode("home/arena/parent", 0500);
    for (const auto* name : {"file", "link", "empty", "folder"}) {
        const auto path = std::string("parent/") + name;
        EXPECT_EQ(remove(path), failure(denied, arena(path)));
        EXPECT_TRUE(std::filesystem::exists(std::filesystem::symlink_status(arena(path))));
    }
    EXPECT_EQ(modeOf(arena("parent")), 0500U);
}

TEST_F(TreeRemoverPermissionTests, aFolderThatMayNotBeListedItselfStaysWithWhatIsInIt) {
    temp.file("home/arena/x/file");
    temp.setMode("home/arena/x", 0300);
    EXPECT_EQ(remove("x"), failure(denied, arena("x")));
    EXPECT_EQ(modeOf(arena("x")), 0300U);
    EXPECT_EQ(leftBehind("x"), (Names{"x", "x/file"}));
}

TEST_F(TreeRemoverPermissionTests, theWayTakesNoRightToListTheFolders) {
    temp.file("home/arena/way/x/file");
    temp.file("home/arena/way/file");
    temp.setMode("home/arena/way", 0300);
    temp.setMode("home/arena", 0100);
    temp.setMode("home", 0100);
    EXPECT_EQ(remove("way/x"), done);
    EXPECT_EQ(remove("way/file"), done);
    temp.setMode("home", 0700);
    temp.setMode("home/arena", 0700);
    EXPECT_EQ(leftBehind("way"), Names{"way"});
}

// The verdict

TEST_F(TreeRemoverPermissionTests, aPathThatMayNotBeGoneIsRefusedWithTheSystemsError) {
    temp.file("home/arena/closed/folder/file");
    temp.setMode("home/arena/closed", 0600);
    for (const auto* relative : {"closed/folder", "closed/folder/file", "closed/missing"})
        EXPECT_EQ(refusal(home(), arena(relative)), refused(denied, arena(relative)));
}

TEST_F(TreeRemoverPermissionTests, aFolderThatDoesNotTellWhetherItIsARepositoryIsRefused) {
    temp.folder("home/arena/x/.git");
    temp.setMode("home/arena/x", 0600);
    EXPECT_EQ(refusal(home(), arena("x")), refused(denied, arena("x/.git")));
    EXPECT_EQ(refusal(home(), arena("x"), {.allowRepository = true}), std::nullopt);
}

TEST_F(TreeRemoverPermissionTests, aRepositoryThatMayNotBeListedIsOne) {
    temp.folder("home/arena/x/.git");
    temp.setMode("home/arena/x", 0100);
    EXPECT_EQ(refusal(home(), arena("x")), refused(GuardError::Kind::isRepository, arena("x")));
}

TEST_F(TreeRemoverPermissionTests, aPassageTakesNoRightToListTheFolder) {
    temp.file("home/arena/closed/inside/file");
    temp.setMode("home/arena/closed/inside", 0100);
    temp.setMode("home/arena/closed", 0100);
    const FileDescriptor closed(Platform::openPassage(arena("closed")));
    ASSERT_TRUE(closed);
    EXPECT_TRUE(FileDescriptor(Platform::openPassageAt(closed.get(), "inside")));
    EXPECT_FALSE(FileDescriptor(Platform::openFolder(arena("closed"))));
    EXPECT_FALSE(FileDescriptor(Platform::openFolderAt(closed.get(), "inside")));
}

// The Trash

class TrashPermissionTests : public TreeRemoverPermissionTests {
protected:
    [[nodiscard]] Removal move(const std::string& relative) const {
        return Trash::move(admitted(home(), arena(relative)), home());
    }
    [[nodiscard]] Names trash() const { return namesBelow(home(".Trash")); }
};

TEST_F(TrashPermissionTests, whatMayNotBeReadIsMovedAllTheSame) {
    temp.file("home/arena/file");
    temp.setMode("home/arena/file", 0);
    temp.file("home/arena/x/closed/file");
    temp.setMode("home/arena/x/closed", 0);
    EXPECT_EQ(move("file"), done);
    EXPECT_EQ(move("x"), done);
    EXPECT_EQ(modeOf(home(".Trash/file")), 0U);
    EXPECT_EQ(modeOf(home(".Trash/x/closed")), 0U);
    EXPECT_EQ(left(), Names{});
}

TEST_F(TrashPermissionTests, whereTheTrashMayNotBeChangedAllStaysWhereItStood) {
    temp.folder("home/.Trash");
    temp.file("home/arena/x/file");
    for (const unsigned mode : {0U, 0400U, 0500U}) {
        temp.setMode("home/.Trash", mode);
        EXPECT_EQ(move("x"), failure(denied, arena("x"))) << mode;
        EXPECT_EQ(modeOf(home(".Trash")), mode);
    }
    EXPECT_EQ(left(), (Names{"x", "x/file"}));
}

TEST_F(TrashPermissionTests, aTrashThatMayNotBeListedTakesWhatIsMoved) {
    temp.file("home/.Trash/file", {.text = "old"});
    temp.setMode("home/.Trash", 0300);
    temp.file("home/arena/file");
    EXPECT_EQ(move("file"), done);
    temp.setMode("home/.Trash", 0700);
    EXPECT_EQ(trash(), (Names{"file", "file 2"}));
}

TEST_F(TrashPermissionTests, whereNoTrashMayBeMadeAllStaysWhereItStood) {
    temp.file("home/arena/file");
    temp.setMode("home", 0500);
    EXPECT_EQ(move("file"), failure(denied, arena("file")));
    EXPECT_EQ(left(), Names{"file"});
}

TEST_F(TrashPermissionTests, whatLiesInAParentThatMayNotBeChangedStays) {
    temp.file("home/arena/parent/file");
    temp.file("home/arena/parent/folder/file");
    temp.setMode("home/arena/parent", 0500);
    for (const auto* relative : {"parent/file", "parent/folder"})
        EXPECT_EQ(move(relative), failure(denied, arena(relative)));
    EXPECT_EQ(left(), (Names{"parent", "parent/file", "parent/folder", "parent/folder/file"}));
    EXPECT_EQ(trash(), Names{});
}

} // namespace
} // namespace korvanti
