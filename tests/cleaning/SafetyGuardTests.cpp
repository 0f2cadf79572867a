#include "cleaning/SafetyGuard.h"

#include "cleaning/SafetyGuardTables.h"
#include "fs/PathTools.h"
#include "support/Environment.h"
#include "support/TempFolder.h"

#include <algorithm>
#include <expected>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <variant>
#include <vector>

namespace korvanti {
namespace {

using ::testing::ElementsAreArray;
using ::testing::HasSubstr;

using Kind = GuardError::Kind;
using Verdict = std::expected<void, GuardError>;
using Names = std::vector<std::string>;

const Names sensitiveSuffixes = {".jks",
                                 ".keystore",
                                 ".p12",
                                 ".p8",
                                 ".pem",
                                 ".key",
                                 ".mobileprovision",
                                 ".provisionprofile",
                                 ".keychain",
                                 ".keychain-db",
                                 ".photoslibrary"};

const Names protectedRoots = {"Library",
                              "Library/Caches",
                              "Library/Application Support",
                              "Library/Containers",
                              "Library/Group Containers",
                              "Library/Logs",
                              "Library/Developer",
                              "Library/Developer/Xcode",
                              "Library/Developer/CoreSimulator",
                              "Library/Developer/CoreSimulator/Devices",
                              "Library/Android",
                              "Library/Android/sdk",
                              ".android",
                              ".gradle",
                              ".gradle/caches",
                              ".gradle/wrapper",
                              ".gradle/wrapper/dists",
                              ".npm",
                              ".cargo",
                              ".rustup",
                              ".nvm",
                              ".codex",
                              ".codex/sessions",
                              ".gemini",
                              ".config",
                              ".local",
                              ".cache",
                              "Applications",
                              "Downloads",
                              "Documents",
                              "Desktop",
                              "Movies",
                              "Music",
                              "Pictures",
                              "Public"};

const Names protectedTrees = {".ssh",
                              ".gnupg",
                              ".aws",
                              ".kube",
                              ".docker/config.json",
                              ".config/gh",
                              ".netrc",
                              "Library/Keychains",
                              "Library/Mobile Documents",
                              "Library/CloudStorage",
                              "Library/Messages",
                              "Library/Mail",
                              "Library/Photos",
                              "Library/Preferences",
                              "Library/Developer/CoreDevice",
                              "Library/Application Support/com.apple.TCC",
                              "Library/Logs/DiagnosticReports",
                              "Library/Android/sdk/platform-tools",
                              "Library/Android/sdk/licenses",
                              ".android/debug.keystore",
                              ".android/adbkey",
                              ".claude",
                              "Library/Application Support/Claude",
                              ".codex/auth.json",
                              ".codex/config.toml",
                              ".codex/worktrees",
                              ".gradle/gradle.properties",
                              ".gradle/init.d"};

const Names ownTrees = {"Library/Application Support/Korvanti"};

const Verdict accepted;

Verdict refused(Kind kind, std::string payload) {
    return std::unexpected(GuardError{kind, std::move(payload)});
}

std::string inOtherCase(std::string text) {
    std::ranges::transform(text, text.begin(), [](char c) {
        return static_cast<char>((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ? c ^ 0x20 : c);
    });
    return text;
}

class SafetyGuardTests : public ::testing::Test {
protected:
    [[nodiscard]] std::string in(const std::string& relative) const { return home.path() + "/" + relative; }
    [[nodiscard]] Verdict verdict(const std::string& path, SafetyGuard::PathOptions options = {}) const {
        return SafetyGuard(home.path()).validate(path, options);
    }
    void expectProtected(const std::string& relative) const {
        const auto path = in(relative);
        EXPECT_EQ(verdict(path), refused(Kind::protectedPath, path)) << path;
    }
    /// The names of nothing on the disk: only that holds them back.
    void expectOnlyMissing(const std::string& relative) const {
        const auto path = in(relative);
        EXPECT_EQ(verdict(path), refused(Kind::missing, path)) << path;
    }
    std::string application(const std::string& relative,
                            const std::string& identifier = "com.contoh.a") const {
        home.file(relative + "/Contents/Info.plist",
                  {.text = "<plist><dict><key>CFBundleIdentifier</key><string>" + identifier +
                           "</string></dict></plist>"});
        return home.path(relative);
    }

    testing::TempFolder home;
};

constexpr SafetyGuard::PathOptions withRepository{.allowRepository = true};
constexpr SafetyGuard::PathOptions withApplication{.allowApplicationBundle = true};

// The tables

TEST_F(SafetyGuardTests, knowsTheSensitiveSuffixes) {
    EXPECT_EQ(sensitiveSuffixes.size(), 11U);
    EXPECT_THAT(SafetyGuardTables::sensitiveSuffixes, ElementsAreArray(sensitiveSuffixes));
}

TEST_F(SafetyGuardTests, knowsTheProtectedRoots) {
    EXPECT_EQ(protectedRoots.size(), 35U);
    EXPECT_THAT(SafetyGuardTables::protectedRoots, ElementsAreArray(protectedRoots));
}

TEST_F(SafetyGuardTests, knowsTheProtectedTrees) {
    EXPECT_EQ(protectedTrees.size(), 28U);
    EXPECT_THAT(SafetyGuardTables::protectedTrees, ElementsAreArray(protectedTrees));
}

TEST_F(SafetyGuardTests, knowsItsOwnTrees) {
    EXPECT_EQ(ownTrees.size(), 1U);
    EXPECT_THAT(SafetyGuardTables::ownTrees, ElementsAreArray(ownTrees));
}

TEST_F(SafetyGuardTests, whatIsPromisedToPeopleNamesEachEntry) {
    const auto document = testing::textOf(KORVANTI_TEST_DATA "/../../docs/safety.md");
    for (const auto* names : {&sensitiveSuffixes, &protectedRoots, &protectedTrees, &ownTrees}) {
        for (const auto& name : *names)
            EXPECT_THAT(document, HasSubstr("`" + name + "`"));
    }
}

// The form of a path

TEST_F(SafetyGuardTests, aPathWithoutALeadingSlashIsInvalid) {
    for (const std::string path :
         {"", "Library/Caches/x", "~/Library/Caches/x", ".", "file:///tmp/x", ".env"})
        EXPECT_EQ(verdict(path), refused(Kind::invalidPath, path)) << path;
}

TEST_F(SafetyGuardTests, aPathWithAParentComponentIsInvalidAndShownAsItCameIn) {
    home.folder("Library/Caches/x");
    for (const auto& path : {in("Library/../Library/Caches/x"), in("Library/Caches/x/.."), in("../x"),
                             in("Library//.././/Caches/x/"), in("Library/Caches/x/../"), std::string("/.."),
                             std::string("/../etc")})
        EXPECT_EQ(verdict(path), refused(Kind::invalidPath, path)) << path;
}

TEST_F(SafetyGuardTests, dotsWithinANameAreNoParentComponent) {
    const auto path = home.folder("Library/Caches/..x/y..");
    EXPECT_EQ(verdict(path), accepted);
}

TEST_F(SafetyGuardTests, aPathWithAZeroByteIsInvalid) {
    home.folder("Library/Caches/x");
    const auto path = in("Library/Caches/x") + std::string("\0/y", 3);
    EXPECT_EQ(verdict(path), refused(Kind::invalidPath, path));
    EXPECT_EQ(verdict(path.substr(0, path.size() - 2)),
              refused(Kind::invalidPath, path.substr(0, path.size() - 2)));
}

TEST_F(SafetyGuardTests, aPathIsJudgedWithoutItsCurrentFolderComponents) {
    home.folder("Library/Caches/x");
    EXPECT_EQ(verdict(in("./Library/./Caches/x/.")), accepted);
    EXPECT_EQ(verdict(in("Library/./Caches/.")), refused(Kind::protectedPath, in("Library/Caches")));
    EXPECT_EQ(verdict(in(".")), refused(Kind::outsideAllowedRoots, home.path()));
}

TEST_F(SafetyGuardTests, aPathIsJudgedWithoutRepeatedAndTrailingSlashes) {
    home.folder("Library/Caches/x");
    EXPECT_EQ(verdict("//" + in("Library///Caches//x//")), accepted);
    EXPECT_EQ(verdict(in("Library//Caches/")), refused(Kind::protectedPath, in("Library/Caches")));
    EXPECT_EQ(verdict(in("Library/Caches//y/")), refused(Kind::missing, in("Library/Caches/y")));
    EXPECT_EQ(verdict("//"), refused(Kind::outsideAllowedRoots, "/"));
}

TEST_F(SafetyGuardTests, theHomeIsNormalisedLikeAPath) {
    const auto path = home.folder("Library/Caches/x");
    for (const auto& written : {home.path() + "/", "/" + home.path() + "/./", "/." + home.path()})
        EXPECT_EQ(SafetyGuard(written).validate(path, {}), accepted) << written;
}

TEST_F(SafetyGuardTests, withAHomeThatIsNoAbsolutePathNothingPasses) {
    const auto path = home.folder("Library/Caches/x");
    const auto bundle = application("Applications/A.app");
    for (const std::string& useless : {std::string(), std::string("/"), std::string("//"), std::string("."),
                                       std::string("tmp"), home.path().substr(1)}) {
        EXPECT_EQ(SafetyGuard(useless).validate(path, {}), refused(Kind::outsideAllowedRoots, path));
        EXPECT_EQ(SafetyGuard(useless).validate(bundle, withApplication),
                  refused(Kind::outsideAllowedRoots, bundle));
    }
}

TEST_F(SafetyGuardTests, aHomeWithAParentComponentLetsNothingPass) {
    const auto path = home.folder("Library/Caches/x");
    EXPECT_EQ(SafetyGuard(home.path() + "/Library/..").validate(path, {}),
              refused(Kind::outsideAllowedRoots, path));
}

// Secrets by name

TEST_F(SafetyGuardTests, everyNameThatBeginsLikeAnEnvironmentFileIsProtected) {
    for (const auto* name : {".env", ".env.production", ".ENV", ".Env.local", ".environment", ".envrc"}) {
        expectProtected(name);
        expectProtected(std::string("Projects/app/") + name);
        EXPECT_EQ(verdict(std::string("/etc/") + name),
                  refused(Kind::protectedPath, std::string("/etc/") + name));
    }
}

TEST_F(SafetyGuardTests, anEnvironmentFileIsToldByTheBeginningOfTheLastComponentOnly) {
    expectOnlyMissing("Projects/app/env");
    expectOnlyMissing("Projects/app/prod.env");
    expectOnlyMissing("Projects/.env/app");
}

TEST_F(SafetyGuardTests, everySensitiveSuffixIsProtectedInAnyCaseAndAnywhere) {
    for (const auto& suffix : sensitiveSuffixes) {
        expectProtected("Projects/app/signing" + suffix);
        expectProtected("Projects/app/signing" + inOtherCase(suffix));
        EXPECT_EQ(verdict(in("Projects/app/signing" + suffix + "/")),
                  refused(Kind::protectedPath, in("Projects/app/signing" + suffix)));
        expectProtected("Projects/app/" + suffix);
        EXPECT_EQ(verdict("/etc/signing" + suffix), refused(Kind::protectedPath, "/etc/signing" + suffix));
    }
}

TEST_F(SafetyGuardTests, aSensitiveSuffixCountsWithItsDotAtTheEndOfTheLastComponentOnly) {
    for (const auto& suffix : sensitiveSuffixes) {
        expectOnlyMissing("Projects/app/" + suffix.substr(1));
        expectOnlyMissing("Projects/app/signing" + suffix.substr(1));
        expectOnlyMissing("Projects/app/signing" + suffix + ".txt");
        expectOnlyMissing("Projects/app/signing" + suffix + "x");
        expectOnlyMissing("Projects/signing" + suffix + "/x");
    }
}

TEST_F(SafetyGuardTests, theUpperCaseNameOfAKeyIsProtected) {
    expectProtected("Projects/app/signing.P12");
    expectProtected("Projects/app/signing.\u212AEY"); // KELVIN SIGN is a capital k
}

TEST_F(SafetyGuardTests, aNameThatIsNotUtf8IsJudgedLikeAnyOther) {
    expectProtected("Projects/app/\xff\xfe.PEM");
    EXPECT_EQ(verdict(home.file("Projects/\xff\xfe")), accepted);
}

// Where

TEST_F(SafetyGuardTests, theHomeItselfIsOutside) {
    EXPECT_EQ(verdict(home.path()), refused(Kind::outsideAllowedRoots, home.path()));
    EXPECT_EQ(verdict(home.path() + "/"), refused(Kind::outsideAllowedRoots, home.path()));
}

TEST_F(SafetyGuardTests, aSiblingWhosePathBeginsLikeTheHomeIsOutside) {
    for (const auto& path :
         {home.path() + "x/Library/Caches/x", home.path() + "-old", home.path() + ".x/y/z"})
        EXPECT_EQ(verdict(path), refused(Kind::outsideAllowedRoots, path)) << path;
}

TEST_F(SafetyGuardTests, whatIsElsewhereIsOutside) {
    const auto parent = std::string(PathTools::parent(home.path()));
    for (const std::string path :
         {"/", "/etc", "/etc/hosts", "/Library/Caches/x", "/Applications", parent.c_str()})
        EXPECT_EQ(verdict(path), refused(Kind::outsideAllowedRoots, path)) << path;
}

TEST_F(SafetyGuardTests, theCaseOfTheHomeCounts) {
    const auto path = inOtherCase(home.path()) + "/Library/Caches/x";
    EXPECT_EQ(verdict(path), refused(Kind::outsideAllowedRoots, path));
}

TEST_F(SafetyGuardTests, nothingDirectlyInTheHomeMayGo) {
    home.folder("Projects");
    home.file("file");
    home.symlink("link", "Projects");
    for (const auto* name : {"Projects", "file", "link", "missing", ".cache2", "Library-old"})
        expectProtected(name);
    EXPECT_EQ(verdict(in("Projects//.")), refused(Kind::protectedPath, in("Projects")));
}

// Roots

TEST_F(SafetyGuardTests, noProtectedRootMayGo) {
    for (const auto& root : protectedRoots) {
        expectProtected(root);
        EXPECT_EQ(verdict(in(root) + "/"), refused(Kind::protectedPath, in(root))) << root;
        EXPECT_EQ(verdict(in(root), {.allowRepository = true, .allowApplicationBundle = true}),
                  refused(Kind::protectedPath, in(root)))
            << root;
    }
}

TEST_F(SafetyGuardTests, whatLiesInAProtectedRootMayGo) {
    for (const auto& root : protectedRoots) {
        expectOnlyMissing(root + "/lain");
        expectOnlyMissing(root + "/lain/dalam");
    }
}

TEST_F(SafetyGuardTests, whatOnlyResemblesAProtectedRootMayGo) {
    for (const auto& root : protectedRoots) {
        if (!root.contains('/'))
            continue; // such a one lies directly in the home
        expectOnlyMissing(root + "-old");
        expectOnlyMissing(inOtherCase(root));
        expectOnlyMissing("Projects/" + root);
    }
}

TEST_F(SafetyGuardTests, aShorterOrLongerNameThanThatOfAProtectedRootMayGo) {
    for (const auto& root : protectedRoots) {
        expectOnlyMissing(root.substr(0, root.size() - 1) + "/lain");
        expectOnlyMissing(root + "x/lain");
        expectOnlyMissing(root + " /lain");
        expectOnlyMissing(inOtherCase(root) + "/lain");
        if (root.contains('/')) {
            expectOnlyMissing(root.substr(0, root.size() - 1));
            expectOnlyMissing(root + "x");
            expectOnlyMissing(root + " ");
        }
    }
}

TEST_F(SafetyGuardTests, noFolderThatHoldsAProtectedRootMayGo) {
    for (const auto& root : protectedRoots) {
        const auto parent = std::string(PathTools::parent(in(root)));
        EXPECT_EQ(verdict(parent),
                  refused(parent == home.path() ? Kind::outsideAllowedRoots : Kind::protectedPath, parent));
    }
}

TEST_F(SafetyGuardTests, aProtectedRootStaysWhateverStandsThere) {
    for (const auto& root : protectedRoots) {
        home.folder(root);
        expectProtected(root);
        EXPECT_EQ(verdict(home.folder(root + "/lain")), accepted) << root;
        EXPECT_EQ(verdict(home.file(root + "/file")), accepted) << root;
    }
}

TEST_F(SafetyGuardTests, aLinkInPlaceOfAProtectedRootStays) {
    for (const auto& root : protectedRoots) {
        const testing::TempFolder other;
        const auto link = other.symlink(root, "/no/such");
        EXPECT_EQ(SafetyGuard(other.path()).validate(link, {}), refused(Kind::protectedPath, link));
    }
}

TEST_F(SafetyGuardTests, aFolderInACacheFolderPasses) {
    EXPECT_EQ(verdict(home.folder("Library/Caches/x")), accepted);
    EXPECT_EQ(verdict(home.folder(".gradle/caches/modules-2")), accepted);
    EXPECT_EQ(verdict(home.file("Library/Caches/file")), accepted);
}

// Trees

TEST_F(SafetyGuardTests, noProtectedTreeMayGo) {
    for (const auto& tree : protectedTrees) {
        expectProtected(tree);
        EXPECT_EQ(verdict(in(tree) + "/"), refused(Kind::protectedPath, in(tree))) << tree;
        EXPECT_EQ(verdict(in(tree), {.allowRepository = true, .allowApplicationBundle = true}),
                  refused(Kind::protectedPath, in(tree)))
            << tree;
    }
}

TEST_F(SafetyGuardTests, nothingInsideAProtectedTreeMayGo) {
    for (const auto& tree : protectedTrees) {
        expectProtected(tree + "/x");
        expectProtected(tree + "/deep/inside/x");
        EXPECT_EQ(verdict(in(tree) + "//./x/"), refused(Kind::protectedPath, in(tree + "/x"))) << tree;
    }
}

TEST_F(SafetyGuardTests, aSiblingThatBeginsLikeAProtectedTreeMayGo) {
    for (const auto& tree : protectedTrees) {
        expectOnlyMissing(tree + "-old/x");
        expectOnlyMissing(tree.substr(0, tree.size() - 1) + "/x");
    }
}

TEST_F(SafetyGuardTests, aShorterOrLongerNameThanThatOfAProtectedTreeMayGo) {
    for (const auto& tree : protectedTrees) {
        expectOnlyMissing(tree + "x/x");
        expectOnlyMissing(tree + " /x");
        if (tree.contains('/')) {
            expectOnlyMissing(tree.substr(0, tree.size() - 1));
            expectOnlyMissing(tree + "-old");
            expectOnlyMissing(tree + " ");
        }
    }
}

TEST_F(SafetyGuardTests, whatLiesBesideAProtectedTreeMayGo) {
    for (const auto& tree : protectedTrees) {
        if (const auto slash = tree.rfind('/'); slash != std::string::npos)
            expectOnlyMissing(tree.substr(0, slash) + "/lain");
    }
}

TEST_F(SafetyGuardTests, aProtectedTreeStaysWhateverStandsThere) {
    for (const auto& tree : protectedTrees) {
        home.folder(tree + "/folder");
        home.file(tree + "/file");
        home.symlink(tree + "/link", "/no/such");
        for (const auto* inside : {"", "/folder", "/file", "/link"})
            expectProtected(tree + inside);
    }
}

TEST_F(SafetyGuardTests, theCaseOfAProtectedTreeCounts) {
    for (const auto& tree : protectedTrees) {
        expectOnlyMissing(inOtherCase(tree) + "/x");
        if (tree.contains('/') && !tree.ends_with(".keystore")) // whose ending counts in any case
            expectOnlyMissing(inOtherCase(tree));
    }
    expectOnlyMissing("Library/mail/x");
}

TEST_F(SafetyGuardTests, aProtectedTreeIsMeantBelowTheHomeOnly) {
    for (const auto& tree : protectedTrees)
        expectOnlyMissing("Projects/" + tree + "/x");
}

TEST_F(SafetyGuardTests, noFolderThatHoldsAProtectedTreeMayGo) {
    for (const auto& tree : protectedTrees) {
        const auto parent = std::string(PathTools::parent(in(tree)));
        EXPECT_EQ(verdict(parent),
                  refused(parent == home.path() ? Kind::outsideAllowedRoots : Kind::protectedPath, parent));
    }
}

TEST_F(SafetyGuardTests, aNeighbourOfAProtectedTreeMayGo) {
    EXPECT_EQ(verdict(home.folder(".config/other")), accepted);
    EXPECT_EQ(verdict(home.folder(".claude-old/x")), accepted);
    EXPECT_EQ(verdict(home.folder(".android/avd")), accepted);
    expectProtected(".config/gh/hosts.yml");
}

TEST_F(SafetyGuardTests, nothingThatTheProgramRemembersMayGo) {
    for (const auto& tree : ownTrees) {
        home.file(tree + "/activity.jsonl");
        for (const auto* inside : {"", "/activity.jsonl", "/offloads.json", "/deep/inside/x"})
            expectProtected(tree + inside);
        EXPECT_EQ(verdict(in(tree) + "//./x/"), refused(Kind::protectedPath, in(tree + "/x"))) << tree;
        expectOnlyMissing(tree + "-old");
        expectOnlyMissing(tree + "-old/x");
        expectOnlyMissing(tree.substr(0, tree.size() - 1));
        expectOnlyMissing("Projects/" + tree + "/x");
    }
}

// The disk

TEST_F(SafetyGuardTests, whatDoesNotExistIsMissingUnlessItsNameIsProtected) {
    expectOnlyMissing("Library/Caches/x");
    expectProtected("Library/Mail/x");
    home.file("Library/Caches/file");
    expectOnlyMissing("Library/Caches/file/x");
}

TEST_F(SafetyGuardTests, filesPipesAndLinksPass) {
    EXPECT_EQ(verdict(home.file("Projects/file")), accepted);
    ASSERT_EQ(::mkfifo(home.path("Projects/pipe").c_str(), 0600), 0);
    EXPECT_EQ(verdict(home.path("Projects/pipe")), accepted);
    EXPECT_EQ(verdict(home.symlink("Projects/dangling", "/no/such")), accepted);
}

TEST_F(SafetyGuardTests, aLinkPassesWhateverItPointsAt) {
    home.folder("Projects/repository/.git");
    EXPECT_EQ(verdict(home.symlink("Projects/to-repository", home.path("Projects/repository"))), accepted);
    EXPECT_EQ(verdict(home.symlink("Projects/to-volume", "/proc")), accepted);
    EXPECT_EQ(verdict(home.symlink("Projects/to-home", home.path())), accepted);
}

TEST_F(SafetyGuardTests, aLinkInAProtectedTreeIsProtected) {
    home.symlink(".ssh/link", home.folder("Projects/x"));
    expectProtected(".ssh/link");
}

TEST_F(SafetyGuardTests, aFolderWithAGitEntryOfAnyKindIsARepository) {
    home.folder("Projects/folder/.git");
    home.file("Projects/file/.git");
    home.symlink("Projects/link/.git", "/no/such");
    for (const auto* name : {"Projects/folder", "Projects/file", "Projects/link"})
        EXPECT_EQ(verdict(in(name)), refused(Kind::isRepository, in(name)));
    EXPECT_EQ(verdict(in("Projects/./folder/")), refused(Kind::isRepository, in("Projects/folder")));
}

TEST_F(SafetyGuardTests, aRepositoryPassesWhereItIsAllowed) {
    home.folder("Projects/app/.git");
    EXPECT_EQ(verdict(in("Projects/app"), withRepository), accepted);
    EXPECT_EQ(verdict(in("Projects/app"), withApplication), refused(Kind::isRepository, in("Projects/app")));
}

TEST_F(SafetyGuardTests, onlyAGitEntryDirectlyInsideMakesARepository) {
    home.folder("Projects/all/app/.git");
    home.folder("Projects/x/.github");
    EXPECT_EQ(verdict(in("Projects/all")), accepted);
    EXPECT_EQ(verdict(in("Projects/x")), accepted);
    EXPECT_EQ(verdict(in("Projects/all/app/.git")), accepted);
}

// Applications; those in /Applications are in SafetyGuardBoxTests.cpp

TEST_F(SafetyGuardTests, anApplicationOfTheUserPasses) {
    EXPECT_EQ(verdict(application("Applications/A.app"), withApplication), accepted);
    EXPECT_EQ(verdict(home.path("Applications/A.app")), accepted);
}

TEST_F(SafetyGuardTests, anAllowedApplicationPassesWithoutTheRulesBehind) {
    application("Applications/A.app");
    home.folder("Applications/A.app/.git");
    EXPECT_EQ(verdict(in("Applications/A.app"), withApplication), accepted);
    EXPECT_EQ(verdict(in("Applications/A.app")), refused(Kind::isRepository, in("Applications/A.app")));
}

TEST_F(SafetyGuardTests, anApplicationOfTheSystemIsProtected) {
    const auto path = application("Applications/A.app", "com.apple.a");
    EXPECT_EQ(verdict(path, withApplication), refused(Kind::protectedPath, path));
    EXPECT_EQ(verdict(path + "/", withApplication), refused(Kind::protectedPath, path));
}

TEST_F(SafetyGuardTests, anApplicationOfTheSystemIsKnownByABinaryPropertyListToo) {
    using namespace std::string_literals;
    // One dictionary (of objects 1 and 2), its key and its value; the places of the three; the trailer.
    const auto list = "bplist00\xd1\x01\x02\x5f\x10\x12"s + "CFBundleIdentifier" + "\x5e" + "com.apple.mail" +
                      "\x08\x0b\x20"s + "\0\0\0\0\0\0\x01\x01"s + "\0\0\0\0\0\0\0\x03"s +
                      "\0\0\0\0\0\0\0\0"s + "\0\0\0\0\0\0\0\x2f"s;
    home.file("Applications/Mail.app/Contents/Info.plist", {.text = list});
    EXPECT_EQ(verdict(in("Applications/Mail.app"), withApplication),
              refused(Kind::protectedPath, in("Applications/Mail.app")));
}

TEST_F(SafetyGuardTests, anApplicationThatIsALinkIsAskedBehindIt) {
    application("Elsewhere/Mail.app", "com.apple.mail");
    const auto link = home.symlink("Applications/Mail.app", in("Elsewhere/Mail.app"));
    EXPECT_EQ(verdict(link, withApplication), refused(Kind::protectedPath, link));
    EXPECT_EQ(verdict(home.symlink("Applications/Gone.app", "/no/such"), withApplication), accepted);
}

TEST_F(SafetyGuardTests, aPipeInPlaceOfAnApplicationsPropertyListKeepsNobodyWaiting) {
    home.folder("Applications/A.app/Contents");
    ASSERT_EQ(::mkfifo(in("Applications/A.app/Contents/Info.plist").c_str(), 0600), 0);
    EXPECT_EQ(verdict(in("Applications/A.app"), withApplication), accepted);
}

TEST_F(SafetyGuardTests, onlyTheWholeBeginningMakesAnApplicationTheSystems) {
    EXPECT_EQ(verdict(application("Applications/A.app", "com.apple"), withApplication), accepted);
    EXPECT_EQ(verdict(application("Applications/B.app", "com.applex.a"), withApplication), accepted);
    EXPECT_EQ(verdict(application("Applications/C.app", "x.com.apple.a"), withApplication), accepted);
    EXPECT_EQ(verdict(application("Applications/D.app", "com.Apple.a"), withApplication), accepted);
}

TEST_F(SafetyGuardTests, anApplicationWithoutAReadableIdentifierPasses) {
    EXPECT_EQ(verdict(home.folder("Applications/Empty.app"), withApplication), accepted);
    home.file("Applications/Damaged.app/Contents/Info.plist", {.text = "bplist00com.apple."});
    EXPECT_EQ(verdict(in("Applications/Damaged.app"), withApplication), accepted);
    home.file("Applications/Number.app/Contents/Info.plist",
              {.text = "<plist><dict><key>CFBundleIdentifier</key><integer>1</integer></dict></plist>"});
    EXPECT_EQ(verdict(in("Applications/Number.app"), withApplication), accepted);
    home.folder("Applications/Folder.app/Contents/Info.plist");
    EXPECT_EQ(verdict(in("Applications/Folder.app"), withApplication), accepted);
    EXPECT_EQ(verdict(home.file("Applications/File.app"), withApplication), accepted);
}

TEST_F(SafetyGuardTests, anApplicationThatIsGoneIsMissing) {
    EXPECT_EQ(verdict(in("Applications/A.app"), withApplication),
              refused(Kind::missing, in("Applications/A.app")));
}

TEST_F(SafetyGuardTests, theApplicationRuleIsOnlyForTheEndingAppInSmallLetters) {
    for (const auto* name : {"Applications/A.APP", "Applications/A.app.x", "Applications/Aapp"}) {
        const auto path = application(name, "com.apple.a");
        EXPECT_EQ(verdict(path, withApplication), accepted) << name;
    }
}

TEST_F(SafetyGuardTests, theApplicationRuleIsOnlyForDirectChildren) {
    for (const auto* name : {"Applications/Sub/A.app", "Projects/A.app", "Projects/Applications/A.app"}) {
        const auto path = application(name, "com.apple.a");
        EXPECT_EQ(verdict(path, withApplication), accepted)
            << name; // the other rules hold nothing against it
    }
    expectProtected("A.app");
    EXPECT_EQ(verdict(in("A.app"), withApplication), refused(Kind::protectedPath, in("A.app")));
}

TEST_F(SafetyGuardTests, anApplicationWithTheNameOfASecretIsProtected) {
    const auto path = application("Applications/.env.app");
    EXPECT_EQ(verdict(path, withApplication), refused(Kind::protectedPath, path));
}

// What the user is told

// A Mac's disk takes names that differ in case or composition for the same name. Here a second name of the
// same object stands for that.

TEST_F(SafetyGuardTests, aProtectedFileInAnotherSpellingIsNotAdmitted) {
    const auto secret = home.file(".codex/auth.json");
    const auto alias = home.hardLink(".Codex/AUTH.json", secret);
    EXPECT_EQ(verdict(alias), accepted);
    const auto admitted = SafetyGuard(home.path()).admit(alias, {});
    ASSERT_FALSE(admitted.has_value());
    EXPECT_EQ(std::get<GuardError>(admitted.error()), (GuardError{Kind::protectedPath, alias}));
}

TEST_F(SafetyGuardTests, aPlaceThatOnlyIsSpelledLikeAProtectedOneIsAdmitted) {
    home.file(".codex/auth.json");
    EXPECT_TRUE(SafetyGuard(home.path()).admit(home.file(".Codex/AUTH.json"), {}).has_value());
    home.file("Library/Mail/letter");
    EXPECT_TRUE(SafetyGuard(home.path()).admit(home.file("Library/mail/letter"), {}).has_value());
    EXPECT_TRUE(SafetyGuard(home.path()).admit(home.folder(".GRADLE/caches"), {}).has_value());
}

TEST_F(SafetyGuardTests, aSecondNameThatIsSpelledOtherwiseIsAdmitted) {
    const auto secret = home.file(".codex/auth.json");
    EXPECT_TRUE(SafetyGuard(home.path()).admit(home.hardLink(".codex/copy.json", secret), {}).has_value());
}

TEST(GuardErrorTests, saysWhyAndShowsTheHomeAsATildeWhereThePayloadIsAPath) {
    const testing::ScopedHome home("/Users/ani");
    const std::string path = "/Users/ani/Library/Caches/x";
    const auto text = [&](Kind kind) { return GuardError{kind, path}.description(); };
    EXPECT_EQ(text(Kind::notDeletable), "Tidak boleh dihapus: /Users/ani/Library/Caches/x");
    EXPECT_EQ(text(Kind::invalidPath), "Path tidak valid: /Users/ani/Library/Caches/x");
    EXPECT_EQ(text(Kind::outsideAllowedRoots), "Di luar area yang boleh dibersihkan: ~/Library/Caches/x");
    EXPECT_EQ(text(Kind::protectedPath), "Dilindungi (data penting): ~/Library/Caches/x");
    EXPECT_EQ(
        text(Kind::containsMountPoint),
        "Berisi volume lain yang ter-mount (~/Library/Caches/x) \u2014 dilewati agar isi perangkat tidak "
        "ikut terhapus");
    EXPECT_EQ(text(Kind::isRepository), "Ini repository git (kode sumber): ~/Library/Caches/x");
    EXPECT_EQ(text(Kind::missing), "Sudah tidak ada: ~/Library/Caches/x");
    EXPECT_EQ(text(Kind::invalidIdentifier), "ID tidak valid: /Users/ani/Library/Caches/x");
}

TEST(GuardErrorTests, showsAPathOutsideTheHomeAsItIs) {
    const testing::ScopedHome home("/Users/ani");
    EXPECT_EQ(
        (GuardError{Kind::containsMountPoint, "/Volumes/SSD"}.description()),
        "Berisi volume lain yang ter-mount (/Volumes/SSD) \u2014 dilewati agar isi perangkat tidak ikut "
        "terhapus");
    EXPECT_EQ((GuardError{Kind::outsideAllowedRoots, "/Users/anita/x"}.description()),
              "Di luar area yang boleh dibersihkan: /Users/anita/x");
}

TEST(GuardErrorTests, differsByKindAndPayload) {
    const GuardError error{Kind::missing, "/a"};
    EXPECT_EQ(error, (GuardError{Kind::missing, "/a"}));
    EXPECT_NE(error, (GuardError{Kind::missing, "/b"}));
    EXPECT_NE(error, (GuardError{Kind::invalidPath, "/a"}));
}

} // namespace
} // namespace korvanti
