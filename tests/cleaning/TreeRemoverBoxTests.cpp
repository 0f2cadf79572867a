#include "cleaning/TreeRemover.h"

#include "RemovalSupport.h"
#include "support/BeforeCall.h"
#include "support/Mount.h"

#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <system_error>
#include <utility>

/// Needs the right to mount: runs in the box as root.
namespace korvanti {
namespace {

using namespace korvanti::testing;
using Kind = GuardError::Kind;

constexpr auto otherVolume = std::errc::cross_device_link;
constexpr auto busy = std::errc::device_or_resource_busy;

class TreeRemoverBoxTests : public RemovalTests {
protected:
    [[nodiscard]] std::optional<Refusal> refusal(const std::string& path,
                                                 SafetyGuard::PathOptions options = {}) const {
        return testing::refusal(home(), path, options);
    }
};

// Volumes that the verdict sees

TEST_F(TreeRemoverBoxTests, aFolderWithAVolumeInsideIsRefused) {
    const Mount volume(temp.folder("home/arena/x/deep/volume"));
    for (const bool repository : {false, true})
        EXPECT_EQ(refusal(arena("x"), {.allowRepository = repository}),
                  refused(Kind::containsMountPoint, arena("x/deep/volume")));
}

TEST_F(TreeRemoverBoxTests, aSecondViewOfTheSameVolumeInsideIsOneToo) {
    const Mount view(precious(), temp.folder("home/arena/x/view"));
    EXPECT_EQ(refusal(arena("x")), refused(Kind::containsMountPoint, arena("x/view")));
}

TEST_F(TreeRemoverBoxTests, aFileThatIsMountedInsideIsOneToo) {
    const Mount view(precious("file"), temp.file("home/arena/x/file"));
    EXPECT_EQ(refusal(arena("x")), refused(Kind::containsMountPoint, arena("x/file")));
}

TEST_F(TreeRemoverBoxTests, aMountPointItselfIsRefused) {
    const Mount volume(temp.folder("home/arena/volume"));
    const Mount view(precious(), temp.folder("home/arena/view"));
    EXPECT_EQ(refusal(arena("volume")), refused(Kind::containsMountPoint, arena("volume")));
    EXPECT_EQ(refusal(arena("view")), refused(Kind::containsMountPoint, arena("view")));
}

TEST_F(TreeRemoverBoxTests, aVolumeIsFoundWhereTheHomeLiesBehindALink) {
    const Mount volume(temp.folder("home/arena/x/volume"));
    const Mount point(temp.folder("home/arena/point"));
    const auto link = temp.symlink("link", "home");
    temp.symlink("way", ".");
    for (const auto& otherHome : {link, temp.path("way/home"), temp.path("way/link")}) {
        EXPECT_EQ(testing::refusal(otherHome, otherHome + "/arena/x"),
                  refused(Kind::containsMountPoint, arena("x/volume")))
            << otherHome;
        EXPECT_EQ(testing::refusal(otherHome, otherHome + "/arena/point"),
                  refused(Kind::containsMountPoint, arena("point")))
            << otherHome;
    }
}

TEST_F(TreeRemoverBoxTests, aVolumeBesideAFolderOfTheSameBeginningDoesNotMatter) {
    temp.file("home/arena/x/file");
    const Mount volume(temp.folder("home/arena/x 2"));
    EXPECT_EQ(remove("x"), done);
    EXPECT_EQ(left(), Names{"x 2"});
}

TEST_F(TreeRemoverBoxTests, aFolderOnAVolumeInTheHomeGoes) {
    const Mount volume(temp.folder("home/arena/volume"));
    temp.file("home/arena/volume/x/a/file");
    EXPECT_EQ(remove("volume/x"), done);
    EXPECT_EQ(left(), Names{"volume"});
}

TEST_F(TreeRemoverBoxTests, aLinkToAVolumeGoesAsALink) {
    const Mount volume(temp.folder("home/arena/volume"));
    temp.file("home/arena/volume/file");
    temp.symlink("home/arena/link", arena("volume"));
    EXPECT_EQ(remove("link"), done);
    EXPECT_EQ(left(), (Names{"volume", "volume/file"}));
}

// Volumes that come after the verdict

TEST_F(TreeRemoverBoxTests, aVolumeThatComesLaterIsNotEnteredAndTheRestGoes) {
    temp.file("home/arena/x/a/file");
    temp.folder("home/arena/x/a/volume");
    temp.file("home/arena/x/z/file");
    const auto entry = admitted(home(), arena("x"));
    const Mount volume(arena("x/a/volume"));
    temp.file("home/arena/x/a/volume/folder/file");
    EXPECT_EQ(TreeRemover::remove(entry), failure(otherVolume, arena("x/a/volume")));
    EXPECT_EQ(left(), (Names{"x", "x/a", "x/a/volume", "x/a/volume/folder", "x/a/volume/folder/file"}));
}

TEST_F(TreeRemoverBoxTests, aViewOfTheSameVolumeThatComesLaterIsNotEnteredAndTheRestGoes) {
    temp.folder("home/arena/x/a/view");
    temp.file("home/arena/x/z/file");
    const auto entry = admitted(home(), arena("x"));
    const Mount view(precious(), arena("x/a/view"));
    EXPECT_EQ(TreeRemover::remove(entry), failure(otherVolume, arena("x/a/view")));
    EXPECT_FALSE(std::filesystem::exists(arena("x/z")));
}

TEST_F(TreeRemoverBoxTests, aFileThatIsMountedLaterStaysAndTheRestGoes) {
    temp.file("home/arena/x/a/file", {.text = "below"});
    temp.file("home/arena/x/z/file");
    const auto entry = admitted(home(), arena("x"));
    {
        const Mount view(precious("file"), arena("x/a/file"));
        EXPECT_EQ(TreeRemover::remove(entry), failure(busy, arena("x/a/file")));
    }
    EXPECT_EQ(left(), (Names{"x", "x/a", "x/a/file"}));
    EXPECT_EQ(textOf(arena("x/a/file")), "below");
}

TEST_F(TreeRemoverBoxTests, whatIsMountedOverTheFolderItselfStays) {
    temp.file("home/arena/x/file");
    for (const bool sameVolume : {true, false}) {
        const auto entry = admitted(home(), arena("x"));
        const auto mount = sameVolume ? std::make_unique<Mount>(precious(), arena("x"))
                                      : std::make_unique<Mount>(arena("x"));
        if (!sameVolume)
            temp.file("home/arena/x/on the volume");
        EXPECT_EQ(TreeRemover::remove(entry), failure(stale, arena("x")));
        EXPECT_EQ(namesBelow(arena("x")), sameVolume ? namesBelow(precious()) : Names{"on the volume"});
    }
}

TEST_F(TreeRemoverBoxTests, aFolderWithTheSameNumberOnAnotherVolumeStays) {
    const Mount volume(temp.folder("home/arena/volume"));
    const Mount other(temp.folder("other"));
    const auto numberOf = [](const std::string& path) {
        struct stat status {};
        EXPECT_EQ(::lstat(path.c_str(), &status), 0) << path;
        return status.st_ino;
    };
    std::string twin;
    for (int i = 0; i < 100 && twin.empty(); ++i) {
        const auto here = temp.folder("home/arena/volume/x");
        const auto there = temp.folder("other/" + std::to_string(i));
        if (numberOf(here) == numberOf(there))
            twin = there;
        else if (numberOf(here) < numberOf(there))
            std::filesystem::remove(here);
    }
    if (twin.empty())
        GTEST_SKIP() << "volumes of this system share their numbers";
    const auto entry = admitted(home(), arena("volume/x"));
    const Mount view(twin, arena("volume/x"));
    EXPECT_EQ(TreeRemover::remove(entry), failure(stale, arena("volume/x")));
}

TEST_F(TreeRemoverBoxTests, whatIsMountedOverTheFileItselfStays) {
    temp.file("home/arena/file", {.text = "below"});
    const auto entry = admitted(home(), arena("file"));
    {
        const Mount view(precious("file"), arena("file"));
        EXPECT_EQ(TreeRemover::remove(entry), failure(stale, arena("file")));
    }
    EXPECT_EQ(textOf(arena("file")), "below");
}

TEST_F(TreeRemoverBoxTests, aViewThatIsTakenAwayDuringTheVerdictIsNotAdmitted) {
    temp.file("home/arena/x/file");
    ASSERT_EQ(::mount(precious().c_str(), arena("x").c_str(), nullptr, MS_BIND, nullptr), 0);
    const BeforeCall whenAskedForGit(Call::statAt, ".git",
                                     [&] { EXPECT_EQ(::umount2(arena("x").c_str(), MNT_DETACH), 0); });
    EXPECT_FALSE(SafetyGuard(home()).admit(arena("x"), {}).has_value());
    EXPECT_EQ(left(), (Names{"x", "x/file"}));
}

TEST_F(TreeRemoverBoxTests, theWayBackFromADeepTreeDoesNotLeadOntoAVolume) {
    std::string path = "x";
    for (int level = 0; level < 150; ++level)
        path += "/n";
    temp.file("home/arena/" + path + "/last file");
    const auto entry = admitted(home(), arena("x"));
    std::unique_ptr<Mount> view;
    {
        const BeforeCall atTheBottom(Call::unlinkAt, "last file",
                                     [&] { view = std::make_unique<Mount>(precious(), arena("x/n/n/n")); });
        EXPECT_FALSE(TreeRemover::remove(entry));
    }
    EXPECT_EQ(namesBelow(arena("x/n/n/n")), namesBelow(precious()));
}

TEST_F(TreeRemoverBoxTests, devicesGoWithoutBeingOpened) {
    temp.folder("home/arena/x");
    for (const auto* name : {"device", "x/device"}) {
        ASSERT_EQ(::mknod(arena(name).c_str(), S_IFCHR | 0600, ::makedev(1, 3)), 0);
        ASSERT_EQ(::mknod((arena(name) + " of blocks").c_str(), S_IFBLK | 0600, ::makedev(240, 0)), 0);
    }
    for (const auto* name : {"device", "device of blocks", "x"})
        EXPECT_EQ(remove(name), done) << name;
    EXPECT_EQ(left(), Names{});
}

// Another program at the worst moment

class LastMomentTests : public RemovalTests {
protected:
    /// Removes a folder "x" while another program acts right before a call that concerns `name`.
    [[nodiscard]] Removal removeWhile(Call call, const std::string& name,
                                      std::function<void()> action) const {
        const auto entry = admitted(home(), arena("x"));
        const BeforeCall before(call, name, std::move(action));
        return TreeRemover::remove(entry);
    }
};

TEST_F(LastMomentTests, aFolderThatTurnsIntoALinkIsNotGoneThrough) {
    temp.file("home/arena/x/a/folder/deep/file");
    temp.file("home/arena/x/z");
    EXPECT_FALSE(removeWhile(Call::openAt, "folder", [&] {
        rename("x/a/folder", "moved");
        temp.symlink("home/arena/x/a/folder", precious("folder"));
    }));
    EXPECT_EQ(left(), (Names{"x", "x/a", "x/a/folder", "moved", "moved/deep", "moved/deep/file"}));
}

TEST_F(LastMomentTests, aFileThatTurnsIntoALinkTakesNothingBehindItAway) {
    temp.file("home/arena/x/file");
    EXPECT_EQ(removeWhile(Call::unlinkAt, "file",
                          [&] {
                              rename("x/file", "moved");
                              temp.symlink("home/arena/x/file", precious("file"));
                          }),
              done);
    EXPECT_EQ(left(), Names{"moved"});
}

TEST_F(LastMomentTests, aFileThatTurnsIntoAFolderStays) {
    temp.file("home/arena/x/name");
    temp.file("home/arena/x/z/file");
    const auto removal = removeWhile(Call::unlinkAt, "name", [&] {
        rename("x/name", "moved");
        temp.file("home/arena/x/name/file");
    });
    ASSERT_FALSE(removal);
    EXPECT_EQ(removal.error().path, arena("x/name"));
    EXPECT_EQ(left(), (Names{"moved", "x", "x/name", "x/name/file"}));
}

TEST_F(LastMomentTests, anEmptiedFolderThatTurnsIntoALinkStays) {
    temp.file("home/arena/x/folder/file");
    const auto removal = removeWhile(Call::unlinkAt, "folder", [&] {
        rename("x/folder", "moved");
        temp.symlink("home/arena/x/folder", precious("folder"));
    });
    ASSERT_FALSE(removal);
    EXPECT_EQ(removal.error().path, arena("x/folder"));
    EXPECT_EQ(left(), (Names{"moved", "x", "x/folder"}));
}

TEST_F(LastMomentTests, anEmptiedFolderThatIsExchangedForAFullOneStays) {
    temp.file("home/arena/x/folder/file");
    EXPECT_EQ(removeWhile(Call::unlinkAt, "folder",
                          [&] {
                              rename("x/folder", "moved");
                              temp.file("home/arena/x/folder/new");
                          }),
              failure(std::errc::directory_not_empty, arena("x/folder")));
    EXPECT_EQ(left(), (Names{"moved", "x", "x/folder", "x/folder/new"}));
}

TEST_F(LastMomentTests, theEmptiedEntryItselfThatIsExchangedForAFullOneStays) {
    temp.file("home/arena/x/file");
    EXPECT_EQ(removeWhile(Call::unlinkAt, "x",
                          [&] {
                              rename("x", "moved");
                              temp.file("home/arena/x/.git/HEAD");
                          }),
              failure(std::errc::directory_not_empty, arena("x")));
    EXPECT_EQ(left(), (Names{"moved", "x", "x/.git", "x/.git/HEAD"}));
}

TEST_F(LastMomentTests, theEmptiedEntryItselfThatTurnsIntoALinkStays) {
    temp.file("home/arena/x/file");
    EXPECT_FALSE(removeWhile(Call::unlinkAt, "x", [&] {
        rename("x", "moved");
        temp.symlink("home/arena/x", precious());
    }));
    EXPECT_EQ(left(), (Names{"moved", "x"}));
}

TEST_F(LastMomentTests, whatIsGoneAtTheLastMomentIsNoFailure) {
    for (const auto* name : {"a", "b", "c"})
        temp.file(std::string("home/arena/x/") + name + "/file");
    EXPECT_EQ(removeWhile(Call::openAt, "b", [&] { std::filesystem::remove_all(arena("x/b")); }), done);
    EXPECT_EQ(left(), Names{});
    temp.file("home/arena/x/a/file");
    temp.file("home/arena/x/a/gone");
    EXPECT_EQ(removeWhile(Call::unlinkAt, "gone", [&] { std::filesystem::remove(arena("x/a/gone")); }), done);
    EXPECT_EQ(left(), Names{});
    temp.file("home/arena/x/a/file");
    EXPECT_EQ(removeWhile(Call::unlinkAt, "a", [&] { std::filesystem::remove(arena("x/a")); }), done);
    EXPECT_EQ(left(), Names{});
}

TEST_F(LastMomentTests, theEntryItselfThatIsGoneAtTheLastMomentIsToldAsSuch) {
    temp.file("home/arena/x/file");
    EXPECT_EQ(removeWhile(Call::unlinkAt, "x", [&] { std::filesystem::remove(arena("x")); }),
              failure(std::errc::no_such_file_or_directory, arena("x")));
}

// A folder is listed as a whole before anything in it is removed, so that what comes later is not among it.
TEST_F(LastMomentTests, whatComesIntoAFolderDuringItsRemovalStays) {
    temp.file("home/arena/x/a/file");
    EXPECT_EQ(removeWhile(Call::unlinkAt, "file", [&] { temp.file("home/arena/x/a/new"); }),
              failure(std::errc::directory_not_empty, arena("x/a")));
    EXPECT_EQ(left(), (Names{"x", "x/a", "x/a/new"}));
}

TEST_F(LastMomentTests, whatComesIntoALargeFolderDuringItsRemovalStays) {
    constexpr int count = 20'000; // more than one page of a listing
    const std::string filler(60, 'f');
    for (int i = 0; i < count; ++i)
        temp.file("home/arena/x/" + filler + std::to_string(i));
    EXPECT_EQ(removeWhile(Call::unlinkAt, filler + std::to_string(count / 2),
                          [&] {
                              for (int i = 0; i < 100; ++i)
                                  temp.file("home/arena/x/new " + std::to_string(i));
                          }),
              failure(std::errc::directory_not_empty, arena("x")));
    EXPECT_EQ(namesBelow(arena("x")).size(), 100U);
}

TEST_F(LastMomentTests, aFolderThatMovesAwayTakesNothingAtItsNewPlaceWithIt) {
    std::string path = "x";
    std::string halfway;
    for (int level = 0; level < 150; ++level) {
        temp.file("home/arena/" + path + "/before");
        temp.file("home/arena/" + path + "/n/inside");
        temp.file("home/arena/" + path + "/after");
        path += "/n";
        if (level == 75)
            halfway = path;
    }
    temp.file("home/arena/" + path + "/last file");
    temp.file("home/arena/new place/before");
    temp.file("home/arena/new place/after");
    EXPECT_EQ(removeWhile(Call::unlinkAt, "last file", [&] { rename(halfway, "new place/n"); }).error().code,
              std::error_code(ESTALE, std::generic_category()));
    EXPECT_TRUE(std::filesystem::exists(arena("new place/before")));
    EXPECT_TRUE(std::filesystem::exists(arena("new place/after")));
    EXPECT_FALSE(std::filesystem::exists(arena(halfway)));
}

TEST_F(LastMomentTests, aFolderNearTheTopThatMovesAwayIsEmptiedWhereItIsAndNothingBesideIt) {
    temp.file("home/arena/x/n/n/file");
    temp.file("home/arena/new place/beside");
    EXPECT_EQ(removeWhile(Call::unlinkAt, "file", [&] { rename("x/n/n", "new place/n"); }), done);
    EXPECT_EQ(left(), (Names{"new place", "new place/beside", "new place/n"}));
}

TEST_F(LastMomentTests, aParentThatIsExchangedMidwayIsNotGoneThrough) {
    temp.file("home/arena/x/folder/deep/file");
    EXPECT_EQ(removeWhile(Call::unlinkAt, "file",
                          [&] {
                              std::filesystem::rename(arena(), home("moved"));
                              temp.symlink("decoy/x", precious());
                              temp.symlink("home/arena", temp.path("decoy"));
                          }),
              done);
    EXPECT_EQ(namesBelow(home("moved")), Names{});
    EXPECT_EQ(namesBelow(temp.path("decoy")), Names{"x"});
}

// The verdict at the worst moment

TEST_F(LastMomentTests, aRepositoryThatComesBehindTheVerdictIsNotTheHeldFolder) {
    temp.file("home/arena/x/file");
    const BeforeCall whenAskedForGit(Call::statAt, ".git", [&] {
        rename("x", "moved");
        temp.file("home/arena/x/.git/HEAD");
    });
    const auto entry = admitted(home(), arena("x"));
    EXPECT_EQ(TreeRemover::remove(entry), failure(stale, arena("x")));
    EXPECT_EQ(namesBelow(arena("x")), (Names{".git", ".git/HEAD"}));
}

TEST_F(LastMomentTests, aRepositoryIsRefusedThoughItsPathLeadsElsewhereByNow) {
    temp.file("home/arena/x/.git/HEAD");
    const BeforeCall whenAskedForGit(Call::statAt, ".git", [&] {
        rename("x", "moved");
        temp.file("home/arena/x/file");
    });
    EXPECT_EQ(refusal(home(), arena("x")), refused(Kind::isRepository, arena("x")));
}

TEST_F(LastMomentTests, aFolderThatTurnsIntoALinkOnTheWayIsRefused) {
    temp.file("home/arena/a/folder/file");
    for (const auto* path : {"a/folder/file", "a/folder"}) {
        const BeforeCall whenOpened(Call::openAt, "folder", [&] {
            rename("a/folder", "moved");
            temp.symlink("home/arena/a/folder", precious());
        });
        EXPECT_EQ(refusal(home(), arena(path)),
                  refused(std::errc::too_many_symbolic_link_levels, arena(path)));
        std::filesystem::remove(arena("a/folder"));
        rename("moved", "a/folder");
    }
}

TEST_F(LastMomentTests, aFolderThatIsExchangedOnTheWayIsTheOneThatIsJudgedAndGoes) {
    temp.file("home/arena/x/old");
    const BeforeCall whenOpened(Call::openAt, "x", [&] {
        rename("x", "moved");
        temp.file("home/arena/x/new");
    });
    EXPECT_EQ(remove("x"), done);
    EXPECT_EQ(left(), (Names{"moved", "moved/old"}));
}

TEST_F(LastMomentTests, theVerdictOnAnApplicationIsAboutTheHeldBundle) {
    const auto install = [&](const std::string& place, const std::string& identifier) {
        temp.file(place + "/Contents/Info.plist",
                  {.text = "<plist version=\"1.0\"><dict><key>CFBundleIdentifier</key><string>" + identifier +
                           "</string></dict></plist>"});
    };
    install("home/Applications/A.app", "com.apple.A");
    install("other", "com.contoh.A");
    const BeforeCall whenRead(Call::openAt, "Contents/Info.plist", [&] {
        std::filesystem::rename(home("Applications/A.app"), temp.path("moved"));
        std::filesystem::rename(temp.path("other"), home("Applications/A.app"));
    });
    EXPECT_EQ(refusal(home(), home("Applications/A.app"), {.allowApplicationBundle = true}),
              refused(Kind::protectedPath, home("Applications/A.app")));
}

} // namespace
} // namespace korvanti
