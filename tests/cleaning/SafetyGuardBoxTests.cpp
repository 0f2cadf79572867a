#include "cleaning/SafetyGuard.h"

#include "support/BoxFolder.h"
#include "support/Mount.h"

#include <expected>
#include <gtest/gtest.h>
#include <string>
#include <variant>

namespace korvanti {
namespace {

using testing::Mount;

using Kind = GuardError::Kind;
using Verdict = std::expected<void, GuardError>;

const Verdict accepted;

Verdict refused(Kind kind, std::string payload) {
    return std::unexpected(GuardError{kind, std::move(payload)});
}

/// Needs the right to mount: runs in the box as root.
class SafetyGuardBoxTests : public ::testing::Test {
protected:
    [[nodiscard]] Verdict verdict(const std::string& path, SafetyGuard::PathOptions options = {}) const {
        return SafetyGuard(mac.home.path()).validate(path, options);
    }

    testing::BoxMac mac;
};

constexpr SafetyGuard::PathOptions withRepository{.allowRepository = true};
constexpr SafetyGuard::PathOptions withApplication{.allowApplicationBundle = true};

// Volumes

TEST_F(SafetyGuardBoxTests, aFolderWithAVolumeInsideGivesTheMountPoint) {
    const auto folder = mac.home.folder("Library/Caches/x");
    const Mount volume(mac.home.folder("Library/Caches/x/deep/volume"));
    EXPECT_EQ(verdict(folder), refused(Kind::containsMountPoint, folder + "/deep/volume"));
    EXPECT_EQ(verdict(folder + "/"), refused(Kind::containsMountPoint, folder + "/deep/volume"));
}

TEST_F(SafetyGuardBoxTests, aMountPointItselfIsRefused) {
    const auto folder = mac.home.folder("Library/Caches/x");
    const Mount volume(folder);
    EXPECT_EQ(verdict(folder), refused(Kind::containsMountPoint, folder));
}

TEST_F(SafetyGuardBoxTests, theFirstOfSeveralMountPointsIsGiven) {
    const auto folder = mac.home.folder("Library/Caches/x");
    const Mount first(mac.home.folder("Library/Caches/x/z"));
    const Mount second(mac.home.folder("Library/Caches/x/a"));
    EXPECT_EQ(verdict(folder), refused(Kind::containsMountPoint, folder + "/z"));
}

TEST_F(SafetyGuardBoxTests, whereARepositoryIsAllowedAVolumeIsNot) {
    const auto folder = mac.home.folder("Projects/app");
    mac.home.folder("Projects/app/.git");
    const Mount volume(mac.home.folder("Projects/app/volume"));
    EXPECT_EQ(verdict(folder), refused(Kind::isRepository, folder));
    EXPECT_EQ(verdict(folder, withRepository), refused(Kind::containsMountPoint, folder + "/volume"));
}

TEST_F(SafetyGuardBoxTests, aVolumeBesideAFolderOfTheSameBeginningDoesNotMatter) {
    const Mount volume(mac.home.folder("Library/Caches/x 2"));
    EXPECT_EQ(verdict(mac.home.folder("Library/Caches/x")), accepted);
}

TEST_F(SafetyGuardBoxTests, aFolderOnAVolumePasses) {
    const Mount volume(mac.home.folder("Library/Caches/volume"));
    EXPECT_EQ(verdict(mac.home.folder("Library/Caches/volume/x")), accepted);
}

TEST_F(SafetyGuardBoxTests, aLinkToAVolumePasses) {
    const Mount volume(mac.home.folder("Library/Caches/volume"));
    EXPECT_EQ(verdict(mac.home.symlink("Library/Caches/link", mac.home.path("Library/Caches/volume"))),
              accepted);
}

TEST_F(SafetyGuardBoxTests, aFolderPassesAgainOnceItsVolumeIsGone) {
    const auto folder = mac.home.folder("Library/Caches/x");
    {
        const Mount volume(mac.home.folder("Library/Caches/x/volume"));
        EXPECT_EQ(verdict(folder), refused(Kind::containsMountPoint, folder + "/volume"));
    }
    EXPECT_EQ(verdict(folder), accepted);
}

// A Mac's disk takes names that differ in case for the same name. Here a second view of the same folder
// stands for that.

TEST_F(SafetyGuardBoxTests, nothingInAProtectedTreeInAnotherSpellingIsAdmitted) {
    const auto tree = mac.home.folder("Library/Mail");
    mac.home.file("Library/Mail/letters/one");
    const Mount alias(tree, mac.home.folder("Library/mAIL"));
    for (const auto* path : {"Library/mAIL/letters", "Library/mAIL/letters/one"}) {
        EXPECT_EQ(verdict(mac.home.path(path)), accepted) << path;
        const auto admitted = SafetyGuard(mac.home.path()).admit(mac.home.path(path), {});
        ASSERT_FALSE(admitted.has_value()) << path;
        EXPECT_EQ(std::get<GuardError>(admitted.error()),
                  (GuardError{Kind::protectedPath, mac.home.path(path)}));
    }
}

TEST_F(SafetyGuardBoxTests, nothingThatTheProgramRemembersIsAdmittedInAnotherSpelling) {
    mac.home.file("Library/Application Support/Korvanti/activity.jsonl");
    const Mount alias(mac.home.path("Library/Application Support/Korvanti"),
                      mac.home.folder("Library/Application Support/KORVANTI"));
    const auto log = mac.home.path("Library/Application Support/KORVANTI/activity.jsonl");
    const auto admitted = SafetyGuard(mac.home.path()).admit(log, {});
    ASSERT_FALSE(admitted.has_value());
    EXPECT_EQ(std::get<GuardError>(admitted.error()), (GuardError{Kind::protectedPath, log}));
}

TEST_F(SafetyGuardBoxTests, aKeptFolderInAnotherSpellingIsNotAdmittedAndWhatIsInItIs) {
    const auto caches = mac.home.folder("Library/Caches");
    mac.home.folder("Library/Caches/app");
    const Mount library(mac.home.path("Library"), mac.home.folder("lIBRARY"));
    const SafetyGuard guard(mac.home.path());
    const auto admitted = guard.admit(mac.home.path("lIBRARY/Caches"), {});
    ASSERT_FALSE(admitted.has_value());
    EXPECT_EQ(std::get<GuardError>(admitted.error()),
              (GuardError{Kind::protectedPath, mac.home.path("lIBRARY/Caches")}));
    EXPECT_TRUE(guard.admit(mac.home.path("lIBRARY/Caches/app"), {}).has_value());
}

// Applications of the whole Mac

TEST_F(SafetyGuardBoxTests, anApplicationPassesOnlyWhereBundlesAreAllowed) {
    mac.installApplication("Catatan", "com.contoh.catatan");
    EXPECT_EQ(verdict("/Applications/Catatan.app", withApplication), accepted);
    EXPECT_EQ(verdict("//Applications/./Catatan.app/", withApplication), accepted);
    EXPECT_EQ(verdict("/Applications/Catatan.app"),
              refused(Kind::outsideAllowedRoots, "/Applications/Catatan.app"));
    EXPECT_EQ(verdict("/Applications/Catatan.app", withRepository),
              refused(Kind::outsideAllowedRoots, "/Applications/Catatan.app"));
}

TEST_F(SafetyGuardBoxTests, anApplicationOfTheSystemIsProtectedWhereBundlesAreAllowed) {
    mac.installApplication("Safari", "com.apple.Safari");
    EXPECT_EQ(verdict("/Applications/Safari.app", withApplication),
              refused(Kind::protectedPath, "/Applications/Safari.app"));
    EXPECT_EQ(verdict("/Applications/Safari.app"),
              refused(Kind::outsideAllowedRoots, "/Applications/Safari.app"));
}

TEST_F(SafetyGuardBoxTests, anApplicationThatIsGoneIsMissing) {
    EXPECT_EQ(verdict("/Applications/Gone.app", withApplication),
              refused(Kind::missing, "/Applications/Gone.app"));
}

TEST_F(SafetyGuardBoxTests, anApplicationInASubfolderIsOutside) {
    mac.installApplication("Utilities/Alat", "com.contoh.alat");
    EXPECT_EQ(verdict("/Applications/Utilities/Alat.app", withApplication),
              refused(Kind::outsideAllowedRoots, "/Applications/Utilities/Alat.app"));
}

TEST_F(SafetyGuardBoxTests, whatElseLiesAmongTheApplicationsIsOutside) {
    mac.applications.folder("Folder");
    for (const std::string path : {"/Applications", "/Applications/Folder", "/System/Applications/Mail.app",
                                   "/Library/A.app", "/A.app"})
        EXPECT_EQ(verdict(path, withApplication), refused(Kind::outsideAllowedRoots, path)) << path;
}

TEST_F(SafetyGuardBoxTests, aBundleThatIsALinkIsAsked) {
    mac.installApplication("Safari", "com.apple.Safari");
    const auto link = mac.applications.symlink("Link.app", "/Applications/Safari.app");
    EXPECT_EQ(verdict(link, withApplication), refused(Kind::protectedPath, link));
    const auto dangling = mac.applications.symlink("Dangling.app", "/no/such.app");
    EXPECT_EQ(verdict(dangling, withApplication), accepted);
}

} // namespace
} // namespace korvanti
