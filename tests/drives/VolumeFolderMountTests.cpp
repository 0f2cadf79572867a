#include "drives/VolumeFolder.h"

#include "cleaning/TreeRemover.h"
#include "support/BoxFolder.h"
#include "support/Mount.h"

#include <cerrno>
#include <csignal>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <sys/mount.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <variant>

/// Needs the right to mount: runs in the box as root.
namespace korvanti {
namespace {

using namespace korvanti::testing;

class VolumeFolderMountTests : public ::testing::Test {
protected:
    VolumeFolderMountTests() { volumes.folder("Work"); }

    void mount() { mounted.emplace(volumes.path("Work")); }
    void unmount() { mounted.reset(); }

    [[nodiscard]] VolumeFolder opened() const { return VolumeFolder::open(volumes.path("Work")).value(); }

    template <class Value> [[nodiscard]] static int errorOf(const std::expected<Value, FileError>& result) {
        return result ? 0 : result.error().code.value();
    }
    /// The error number of a refusal, or minus the kind of the guard's.
    [[nodiscard]] static int refusalOf(const VolumeFolder& volume, const std::string& path) {
        const auto entry = volume.admit(path);
        if (entry)
            return 0;
        if (const auto* error = std::get_if<FileError>(&entry.error()))
            return error->code.value();
        return -static_cast<int>(std::get<GuardError>(entry.error()).kind);
    }
    [[nodiscard]] std::string ours(const std::string& relative) const {
        return volumes.path("Work/Korvanti Offload/" + relative);
    }
    static bool stands(const std::string& path) { return ::access(path.c_str(), F_OK) == 0; }

    static constexpr int outside = -static_cast<int>(GuardError::Kind::outsideAllowedRoots);

    BoxFolder volumes{"/Volumes"};
    std::optional<Mount> mounted;
};

TEST_F(VolumeFolderMountTests, whatIsNoFolderIsNoVolume) {
    volumes.file("file");
    volumes.symlink("link", volumes.path("Work"));
    EXPECT_EQ(VolumeFolder::open(volumes.path("nothing")).error().code, std::errc::no_such_file_or_directory);
    EXPECT_EQ(VolumeFolder::open(volumes.path("file")).error().code, std::errc::not_a_directory);
    EXPECT_FALSE(VolumeFolder::open(volumes.path("link")));
}

TEST_F(VolumeFolderMountTests, aSlashBehindTheMountPathDoesNotCount) {
    EXPECT_EQ(VolumeFolder::open(volumes.path("Work/")).value().mountPath(), "/Volumes/Work");
}

TEST_F(VolumeFolderMountTests, aVolumeInUseIsNotUnmountedInAnOrderlyWay) {
    mount();
    const auto volume = opened();
    EXPECT_EQ(::umount2(volumes.path("Work").c_str(), 0), -1);
    EXPECT_EQ(errno, EBUSY);
    EXPECT_TRUE(volume.isStillThere());
}

TEST_F(VolumeFolderMountTests, aVolumeThatWasTornOffIsNotThereAnyMore) {
    mount();
    const auto volume = opened();
    unmount();
    EXPECT_FALSE(volume.isStillThere());
}

TEST_F(VolumeFolderMountTests, aPlainFolderIsNotMounted) {
    EXPECT_FALSE(opened().isMounted());
    mount();
    EXPECT_TRUE(opened().isMounted());
}

TEST_F(VolumeFolderMountTests, aSecondViewOfAFolderIsMounted) {
    const Mount view("/Users", volumes.path("Work"));
    EXPECT_TRUE(opened().isMounted());
}

TEST_F(VolumeFolderMountTests, anotherVolumeAtTheSamePathIsNotThisOne) {
    mount();
    const auto volume = opened();
    unmount();
    mount();
    EXPECT_FALSE(volume.isStillThere());
    EXPECT_EQ(refusalOf(volume, ours("x")), ENOENT);
    volumes.file("Work/Korvanti Offload/x");
    EXPECT_EQ(refusalOf(volume, ours("x")), EXDEV);
}

TEST_F(VolumeFolderMountTests, foldersAreMadeOnTheVolumeThatIsHeldWhateverIsAtThePath) {
    mount();
    const auto volume = opened();
    unmount();
    EXPECT_EQ(errorOf(volume.createFolders("Korvanti Offload/a")), 0);
    EXPECT_FALSE(stands(ours("")));
}

TEST_F(VolumeFolderMountTests, foldersAreMadeOnTheVolumeOnly) {
    mount();
    const auto volume = opened();
    EXPECT_EQ(errorOf(volume.createFolders("Korvanti Offload/a/b")), 0);
    EXPECT_TRUE(stands(ours("a/b")));

    const Mount inside(volumes.folder("Work/Korvanti Offload/other"));
    EXPECT_EQ(errorOf(volume.createFolders("Korvanti Offload/other")), EXDEV);
    volumes.symlink("Work/Korvanti Offload/link", "/Users");
    EXPECT_EQ(errorOf(volume.createFolders("Korvanti Offload/link/a")), ELOOP);
    EXPECT_EQ(errorOf(volume.createFolders("../a")), EINVAL);
}

TEST_F(VolumeFolderMountTests, aReadOnlyVolumeTakesNoFolder) {
    mount();
    ASSERT_EQ(::mount(nullptr, "/Volumes/Work", nullptr, MS_REMOUNT | MS_RDONLY, nullptr), 0);
    const auto volume = opened();
    EXPECT_EQ(errorOf(volume.createFolders("Korvanti Offload")), EROFS);
}

TEST_F(VolumeFolderMountTests, aSecondMoveIsKeptOffUntilTheFirstHasEnded) {
    mount();
    const auto second = opened();
    {
        const auto first = opened();
        const auto held = first.lock();
        EXPECT_EQ(errorOf(held), 0);
        EXPECT_EQ(errorOf(second.lock()), EBUSY);
    }
    EXPECT_EQ(errorOf(second.lock()), 0);
}

TEST_F(VolumeFolderMountTests, aMoveEndsThoughAChildStillHasTheFolderOpen) {
    mount();
    const auto first = opened();
    const auto second = opened();
    pid_t child = -1;
    {
        const auto held = first.lock();
        child = ::fork();
        if (child == 0) {
            ::pause();
            ::_exit(0);
        }
    }
    EXPECT_EQ(errorOf(second.lock()), 0);
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
}

TEST_F(VolumeFolderMountTests, aVolumeIsFlushed) {
    mount();
    EXPECT_EQ(errorOf(opened().flush()), 0);
}

TEST_F(VolumeFolderMountTests, whatLiesBelowTheOffloadFolderIsAdmitted) {
    mount();
    volumes.file("Work/Korvanti Offload/Library/x/file");
    const auto volume = opened();
    EXPECT_EQ(refusalOf(volume, ours("Library/x")), 0);
    const auto entry = volume.admit(ours("Library/x"));
    ASSERT_TRUE(entry.has_value());
    EXPECT_TRUE(TreeRemover::remove(*entry).has_value());
    EXPECT_FALSE(stands(ours("Library/x")));
    EXPECT_TRUE(stands(ours("Library")));
}

TEST_F(VolumeFolderMountTests, nothingElseOnTheVolumeIsAdmitted) {
    mount();
    volumes.file("Work/Korvanti Offload/x");
    volumes.file("Work/Korvanti Offload 2/x");
    volumes.file("Work/photos/x");
    const auto volume = opened();
    for (const auto* path :
         {"/Volumes/Work", "/Volumes/Work/", "/Volumes/Work/photos", "/Volumes/Work/photos/x",
          "/Volumes/Work/Korvanti Offload", "/Volumes/Work/Korvanti Offload/",
          "/Volumes/Work/Korvanti Offload/.", "/Volumes/Work/Korvanti Offload/../photos",
          "/Volumes/Work/Korvanti Offload/x/../../photos/x", "/Volumes/Work/Korvanti Offload//x",
          "/Volumes/Work/Korvanti Offload 2/x", "/Volumes/Work/korvanti offload/x", "/Users/tester/x",
          "Korvanti Offload/x", "", "/"})
        EXPECT_EQ(refusalOf(volume, path), outside) << path;
}

TEST_F(VolumeFolderMountTests, nothingReachedThroughALinkIsAdmitted) {
    mount();
    volumes.file("Work/photos/album/x");
    volumes.symlink("Work/Korvanti Offload/link", volumes.path("Work/photos"));
    EXPECT_EQ(refusalOf(opened(), ours("link/album")), ELOOP);
    EXPECT_TRUE(stands(volumes.path("Work/photos/album/x")));
}

TEST_F(VolumeFolderMountTests, anOffloadFolderThatIsALinkIsNotFollowed) {
    mount();
    volumes.file("Work/photos/x");
    volumes.symlink("Work/Korvanti Offload", volumes.path("Work/photos"));
    EXPECT_EQ(refusalOf(opened(), ours("x")), ELOOP);
}

TEST_F(VolumeFolderMountTests, nothingOnOrAroundAnotherVolumeIsAdmitted) {
    mount();
    const Mount inside(volumes.folder("Work/Korvanti Offload/x/other"));
    volumes.folder("Work/Korvanti Offload/x/other/folder");
    const auto volume = opened();
    EXPECT_EQ(refusalOf(volume, ours("x/other/folder")), EXDEV);
    EXPECT_EQ(refusalOf(volume, ours("x/other")), EXDEV);
    EXPECT_EQ(refusalOf(volume, ours("x")), -static_cast<int>(GuardError::Kind::containsMountPoint));
}

TEST_F(VolumeFolderMountTests, aSecondViewOfTheVolumeInsideItIsNotEntered) {
    mount();
    volumes.file("Work/photos/x");
    const Mount view(volumes.path("Work/photos"), volumes.folder("Work/Korvanti Offload/x/view"));
    EXPECT_EQ(refusalOf(opened(), ours("x")), -static_cast<int>(GuardError::Kind::containsMountPoint));
    EXPECT_EQ(refusalOf(opened(), ours("x/view")), -static_cast<int>(GuardError::Kind::containsMountPoint));
}

TEST_F(VolumeFolderMountTests, whatIsNotThereIsAnError) {
    mount();
    volumes.folder("Work/Korvanti Offload");
    EXPECT_EQ(refusalOf(opened(), ours("x")), ENOENT);
}

} // namespace
} // namespace korvanti
