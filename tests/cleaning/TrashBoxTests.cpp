#include "cleaning/Trash.h"

#include "RemovalSupport.h"
#include "support/BeforeCall.h"
#include "support/Mount.h"

#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <sys/mount.h>
#include <system_error>
#include <vector>

/// Needs the right to mount: runs in the box as root.
namespace korvanti {
namespace {

using namespace korvanti::testing;

constexpr auto otherVolume = std::errc::cross_device_link;

class TrashBoxTests : public RemovalTests {
protected:
    [[nodiscard]] AdmittedEntry entry(const std::string& name) const {
        return admitted(home(), arena(name), {.allowRepository = true});
    }
    [[nodiscard]] Removal move(const std::string& name) const { return Trash::move(entry(name), home()); }
    [[nodiscard]] Removal moveWhile(const std::string& name, std::function<void()> action) const {
        const auto held = entry(name);
        const BeforeCall before(Call::renameAt2, name, std::move(action));
        return Trash::move(held, home());
    }
    [[nodiscard]] Names trash() const { return namesBelow(home(".Trash")); }
};

// Volumes

TEST_F(TrashBoxTests, whatLiesOnAnotherVolumeThanTheTrashStaysAsAWhole) {
    const Mount volume(temp.folder("home/arena/volume"));
    temp.file("home/arena/volume/x/a/file");
    temp.file("home/arena/volume/file");
    for (const auto* name : {"volume/x", "volume/file"})
        EXPECT_EQ(move(name), failure(otherVolume, arena(name)));
    EXPECT_EQ(left(), (Names{"volume", "volume/x", "volume/x/a", "volume/x/a/file", "volume/file"}));
    EXPECT_EQ(trash(), Names{});
}

TEST_F(TrashBoxTests, aTrashOnAnotherVolumeTakesNothing) {
    const Mount volume(temp.folder("home/.Trash"));
    temp.file("home/arena/x/file");
    EXPECT_EQ(move("x"), failure(otherVolume, arena("x")));
    EXPECT_EQ(left(), (Names{"x", "x/file"}));
    EXPECT_EQ(trash(), Names{});
}

TEST_F(TrashBoxTests, aTrashThatIsASecondViewOfTheSameVolumeTakesNothing) {
    const Mount view(precious(), temp.folder("home/.Trash"));
    temp.file("home/arena/x/file");
    EXPECT_EQ(move("x"), failure(otherVolume, arena("x")));
    EXPECT_EQ(left(), (Names{"x", "x/file"}));
}

TEST_F(TrashBoxTests, onAHomeThatMayOnlyBeReadAllStays) {
    temp.file("home/arena/x/file");
    const Mount view(home(), home());
    const auto held = entry("x");
    ASSERT_EQ(::mount(nullptr, home().c_str(), nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr), 0);
    EXPECT_EQ(Trash::move(held, home()), failure(std::errc::read_only_file_system, arena("x")));
    EXPECT_EQ(left(), (Names{"x", "x/file"}));
}

TEST_F(TrashBoxTests, whatIsMountedOverTheEntryAfterTheVerdictStays) {
    temp.file("home/arena/x/file");
    const auto held = entry("x");
    const Mount view(precious(), arena("x"));
    EXPECT_EQ(Trash::move(held, home()), failure(stale, arena("x")));
    EXPECT_EQ(namesBelow(arena("x")), namesBelow(precious()));
    EXPECT_EQ(trash(), Names{});
}

TEST_F(TrashBoxTests, whatIsMountedOverTheEntryAtTheLastMomentStays) {
    temp.file("home/arena/x/file");
    EXPECT_FALSE(moveWhile("x", [&] {
        ASSERT_EQ(::mount(precious().c_str(), arena("x").c_str(), nullptr, MS_BIND, nullptr), 0);
    }));
    EXPECT_EQ(namesBelow(arena("x")), namesBelow(precious()));
    EXPECT_EQ(trash(), Names{});
    ::umount2(arena("x").c_str(), MNT_DETACH | UMOUNT_NOFOLLOW);
    EXPECT_EQ(left(), (Names{"x", "x/file"}));
}

// Another program at the last moment

TEST_F(TrashBoxTests, whatWasExchangedAtTheLastMomentGoesBack) {
    const std::vector<std::function<void()>> kinds = {
        [&] { temp.file("home/arena/x"); },
        [&] { temp.file("home/arena/x/file"); },
        [&] { temp.file("home/arena/x/.git/HEAD"); },
        [&] { temp.symlink("home/arena/x", precious()); },
        [&] { makePipe("home/arena/x"); },
    };
    for (const auto& make : kinds) {
        for (const auto& put : kinds) {
            std::filesystem::remove_all(arena());
            temp.folder("home/arena");
            put();
            auto expected = left();
            std::filesystem::remove_all(arena("x"));
            make();
            EXPECT_EQ(moveWhile("x",
                                [&] {
                                    std::filesystem::rename(arena("x"), home("old"));
                                    put();
                                }),
                      failure(stale, arena("x")));
            EXPECT_EQ(left(), expected);
            EXPECT_EQ(trash(), Names{});
            std::filesystem::remove_all(home("old"));
        }
    }
}

TEST_F(TrashBoxTests, whatIsGoneAtTheLastMomentIsToldAsSuch) {
    temp.file("home/arena/x");
    EXPECT_EQ(moveWhile("x", [&] { std::filesystem::remove(arena("x")); }),
              failure(std::errc::no_such_file_or_directory, arena("x")));
    EXPECT_EQ(trash(), Names{});
}

TEST_F(TrashBoxTests, aNameThatIsTakenInTheTrashAtTheLastMomentIsNotReplaced) {
    temp.file("home/arena/x", {.text = "new"});
    temp.folder("home/.Trash");
    EXPECT_EQ(moveWhile("x", [&] { temp.file("home/.Trash/x", {.text = "old"}); }), done);
    EXPECT_EQ(textOf(home(".Trash/x")), "old");
    EXPECT_EQ(textOf(home(".Trash/x 2")), "new");
}

TEST_F(TrashBoxTests, whatCannotGoBackBecauseItsPlaceIsTakenReplacesNothing) {
    temp.file("home/arena/x");
    std::optional<BeforeCall> beforeTheSecondLook;
    EXPECT_EQ(moveWhile("x",
                        [&] {
                            std::filesystem::rename(arena("x"), home("old"));
                            temp.file("home/arena/x", {.text = "second"});
                            beforeTheSecondLook.emplace(
                                Call::statAt, "x", [&] { temp.file("home/arena/x", {.text = "third"}); });
                        }),
              failure(stale, arena("x")));
    EXPECT_EQ(textOf(arena("x")), "third");
    EXPECT_EQ(textOf(home(".Trash/x")), "second");
}

TEST_F(TrashBoxTests, aTrashThatTurnsIntoALinkIsNotGoneThrough) {
    temp.folder("home/.Trash");
    temp.file("home/arena/x");
    const auto held = entry("x");
    const BeforeCall before(Call::openAt, ".Trash", [&] {
        std::filesystem::rename(home(".Trash"), home("old"));
        temp.symlink("home/.Trash", precious());
    });
    EXPECT_FALSE(Trash::move(held, home()));
    EXPECT_EQ(left(), Names{"x"});
    EXPECT_EQ(namesBelow(home("old")), Names{});
}

TEST_F(TrashBoxTests, aParentThatTurnsIntoALinkIsNotGoneThrough) {
    temp.file("home/arena/x", {.text = "held"});
    temp.file("decoy/x", {.text = "decoy"});
    EXPECT_EQ(moveWhile("x",
                        [&] {
                            std::filesystem::rename(arena(), home("moved"));
                            temp.symlink("home/arena", temp.path("decoy"));
                        }),
              done);
    EXPECT_EQ(textOf(home(".Trash/x")), "held");
    EXPECT_EQ(textOf(temp.path("decoy/x")), "decoy");
}

} // namespace
} // namespace korvanti
