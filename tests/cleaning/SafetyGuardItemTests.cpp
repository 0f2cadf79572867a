#include "cleaning/SafetyGuard.h"

#include "base/Json.h"
#include "scan/ReportJson.h"
#include "support/Environment.h"
#include "support/TempFolder.h"

#include <expected>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace korvanti {
namespace {

using Kind = GuardError::Kind;
using Verdict = std::expected<void, GuardError>;

const Verdict accepted;

Verdict refused(Kind kind, std::string payload) {
    return std::unexpected(GuardError{kind, std::move(payload)});
}

std::string told(const Verdict& verdict) {
    return verdict ? "(accepted)" : verdict.error().description();
}

const std::string udid = "E621E1F8-C36C-495A-93FC-0C247A3E6E5F";
const std::string zero(1, '\0');

/// Each action that names a simulator or a runtime.
std::vector<CleanupAction> simulatorActions(const std::string& identifier) {
    return {CleanupAction::simulatorErase(identifier), CleanupAction::simulatorDelete(identifier),
            CleanupAction::simulatorRuntimeDelete(identifier)};
}

/// The two actions that judge the path of the item.
const std::vector<CleanupAction> fileActions = {CleanupAction::delete_(), CleanupAction::trash()};

std::vector<CleanupAction> everyAction(const std::string& identifier) {
    auto all = simulatorActions(identifier);
    all.insert(all.end(), fileActions.begin(), fileActions.end());
    all.push_back(CleanupAction::emptyTrash());
    all.push_back(CleanupAction::manual("Buka Pengaturan."));
    return all;
}

constexpr auto deletableClasses = {Safety::regenerable, Safety::costly, Safety::review};

class SafetyGuardItemTests : public ::testing::Test {
protected:
    [[nodiscard]] std::string in(const std::string& relative) const { return home.path() + "/" + relative; }
    [[nodiscard]] Verdict verdict(const CleanupAction& action, const std::string& path,
                                  Safety safety = Safety::regenerable) const {
        return SafetyGuard(home.path()).validate({.path = path, .safety = safety, .action = action});
    }
    void expectForFileActions(const std::string& path, const Verdict& expected) const {
        for (const auto& action : fileActions)
            EXPECT_EQ(verdict(action, path), expected) << action.verb() << " " << path.substr(0, 200);
    }
    void expectForIdentifier(const std::string& identifier, bool valid) const {
        for (const auto& action : simulatorActions(identifier))
            EXPECT_EQ(verdict(action, in("Library/Caches/x")),
                      valid ? accepted : refused(Kind::invalidIdentifier, identifier))
                << action.verb() << " " << identifier.substr(0, 200);
    }
    std::string application(const std::string& relative, const std::string& identifier) const {
        home.file(relative + "/Contents/Info.plist",
                  {.text = "<plist><dict><key>CFBundleIdentifier</key><string>" + identifier +
                           "</string></dict></plist>"});
        return home.path(relative);
    }

    testing::TempFolder home;
    const testing::ScopedHome shownAsTilde{home.path()};
};

// The safety class

TEST_F(SafetyGuardItemTests, whatIsImportantIsRefusedWhateverItsAction) {
    const auto folder = home.folder("Library/Caches/x");
    for (const auto& action : everyAction(udid)) {
        EXPECT_EQ(verdict(action, folder, Safety::keep), refused(Kind::notDeletable, "Penting"));
        EXPECT_EQ(told(verdict(action, folder, Safety::keep)), "Tidak boleh dihapus: Penting");
    }
}

TEST_F(SafetyGuardItemTests, whatTheSystemManagesIsRefusedWhateverItsAction) {
    const auto folder = home.folder("Library/Caches/x");
    for (const auto& action : everyAction(udid)) {
        EXPECT_EQ(verdict(action, folder, Safety::managed), refused(Kind::notDeletable, "Dikelola sistem"));
        EXPECT_EQ(told(verdict(action, folder, Safety::managed)), "Tidak boleh dihapus: Dikelola sistem");
    }
}

TEST_F(SafetyGuardItemTests, theSafetyClassComesBeforeEveryOtherRule) {
    for (const auto& action : everyAction("no identifier")) {
        for (const std::string& path : {std::string("relative"), in(".ssh/id"), std::string("/System"),
                                        in(".Trash"), std::string(), in("Library/Caches/missing")}) {
            EXPECT_EQ(verdict(action, path, Safety::keep), refused(Kind::notDeletable, "Penting"));
            EXPECT_EQ(verdict(action, path, Safety::managed), refused(Kind::notDeletable, "Dikelola sistem"));
        }
    }
}

TEST_F(SafetyGuardItemTests, whatMayBeDeletedIsJudgedByItsActionOnly) {
    const auto folder = home.folder("Library/Caches/x");
    for (const auto safety : deletableClasses) {
        for (const auto& action : fileActions)
            EXPECT_EQ(verdict(action, folder, safety), accepted);
        for (const auto& action : simulatorActions(udid))
            EXPECT_EQ(verdict(action, folder, safety), accepted);
        for (const auto& action : simulatorActions("x"))
            EXPECT_EQ(verdict(action, folder, safety), refused(Kind::invalidIdentifier, "x"));
        EXPECT_EQ(verdict(CleanupAction::emptyTrash(), in(".Trash"), safety), accepted);
        EXPECT_EQ(verdict(CleanupAction::emptyTrash(), folder, safety), refused(Kind::invalidPath, folder));
        EXPECT_EQ(verdict(CleanupAction::manual("x"), folder, safety),
                  refused(Kind::notDeletable, "butuh langkah manual"));
    }
}

TEST_F(SafetyGuardItemTests, whatIsFoundOutAboutAnItemBesidesDoesNotMatter) {
    CleanupItem item{.title = "",
                     .path = home.folder("Library/Caches/x"),
                     .bytes = -1,
                     .category = ItemCategory::personal,
                     .safety = Safety::costly,
                     .action = CleanupAction::delete_(),
                     .warnings = {"Jangan!"},
                     .relatedPaths = {{"/System", "relative", in(".ssh")}}};
    EXPECT_EQ(SafetyGuard(home.path()).validate(item), accepted);
}

// Simulators

TEST_F(SafetyGuardItemTests, aCanonicalIdentifierIsValidInAnyCase) {
    expectForIdentifier(udid, true);
    expectForIdentifier("e621e1f8-c36c-495a-93fc-0c247a3e6e5f", true);
    expectForIdentifier("E621e1F8-c36C-495a-93Fc-0C247a3E6e5f", true);
    expectForIdentifier("00000000-0000-0000-0000-000000000000", true);
    expectForIdentifier("ffffffff-ffff-ffff-ffff-ffffffffffff", true);
}

TEST_F(SafetyGuardItemTests, anIdentifierOfAnotherLengthIsInvalid) {
    expectForIdentifier("", false);
    expectForIdentifier("-", false);
    expectForIdentifier(udid.substr(0, 35), false);
    expectForIdentifier(udid.substr(1), false);
    expectForIdentifier(udid + "0", false);
    expectForIdentifier("0" + udid, false);
    expectForIdentifier(udid + udid, false);
    expectForIdentifier(std::string(100'000, 'A'), false);
    expectForIdentifier(udid + std::string(100'000, '0'), false);
}

TEST_F(SafetyGuardItemTests, anIdentifierWithSomethingAroundIsInvalid) {
    for (const std::string blank : {" ", "\n", "\t", "\r\n", "\u00A0", "\uFEFF"}) {
        expectForIdentifier(blank + udid, false);
        expectForIdentifier(udid + blank, false);
    }
    expectForIdentifier("{" + udid + "}", false);
    expectForIdentifier("(" + udid + ")", false);
    expectForIdentifier("\"" + udid + "\"", false);
    expectForIdentifier("urn:uuid:" + udid, false);
}

TEST_F(SafetyGuardItemTests, theGroupsOfAnIdentifierHaveTheirLengths) {
    for (const std::string bad :
         {"E621E1F8C36C495A93FC0C247A3E6E5F", "E621E1F-8C36C-495A-93FC-0C247A3E6E5F",
          "E621E1F8-C36C-495A-93FC0-C247A3E6E5F", "E621E1F8-C36C4-95A-93FC-0C247A3E6E5F",
          "E621E1F8-C36C-495A93FC-0C247A3E6E5F0", "E621E1F8--36C-495A-93FC-0C247A3E6E5F",
          "E621E1F8-C36C-495A-93FC-0C247A3E-E5F", "------------------------------------",
          "E621E1F8C36C-495A-93FC-0C247A3E6E5F0", "E621E1F8_C36C_495A_93FC_0C247A3E6E5F",
          "E621E1F8 C36C 495A 93FC 0C247A3E6E5F", "E621E1F8.C36C.495A.93FC.0C247A3E6E5F"})
        expectForIdentifier(bad, false);
}

TEST_F(SafetyGuardItemTests, everyPlaceOfAnIdentifierButTheHyphensHoldsAHexadecimalDigit) {
    for (std::size_t place = 0; place < udid.size(); ++place) {
        for (const char other : {'G', 'g', 'Z', ' ', '-', '+', '.', '/', ':', '@', '`', 'x', '\0', '\n', '$',
                                 '\x7f', '\x80', '\xff'}) {
            auto changed = udid;
            changed[place] = other;
            expectForIdentifier(changed, changed == udid);
        }
    }
}

TEST_F(SafetyGuardItemTests, anIdentifierThatOnlyLooksLikeNumbersIsInvalid) {
    for (const std::string bad :
         {"0x21E1F8-C36C-495A-93FC-0C247A3E6E5F", "+621E1F8-C36C-495A-93FC-0C247A3E6E5F",
          " 621E1F8-C36C-495A-93FC-0C247A3E6E5F", "E621E1F8-0x6C-495A-93FC-0C247A3E6E5F",
          "E621E1F8-C36C-495A-93FC-+C247A3E6E5F", "E621E1F8-C36C-495A-93FC-0x247A3E6E5F"})
        expectForIdentifier(bad, false);
}

TEST_F(SafetyGuardItemTests, aDigitOfAnotherScriptIsNone) {
    const auto tail = udid.substr(1);
    expectForIdentifier("\uFF10" + tail, false);           // FULLWIDTH DIGIT ZERO: 36 characters, 38 bytes
    expectForIdentifier("\u0660" + tail, false);           // ARABIC-INDIC DIGIT ZERO
    expectForIdentifier("\uFF21" + tail, false);           // FULLWIDTH LATIN CAPITAL LETTER A
    expectForIdentifier("\u0410" + tail, false);           // CYRILLIC CAPITAL LETTER A
    expectForIdentifier("\u0660" + udid.substr(2), false); // 36 bytes
    expectForIdentifier("E621E1F8\u2010C36C\u2010495A\u201093FC\u20100C247A3E6E5F", false); // HYPHEN
    expectForIdentifier("\xff\xfe" + udid.substr(2), false);
}

TEST_F(SafetyGuardItemTests, anIdentifierWithAZeroByteIsInvalid) {
    expectForIdentifier(zero, false);
    expectForIdentifier(udid + zero, false);
    expectForIdentifier(udid + zero + "x", false);
    expectForIdentifier(zero + udid, false);
}

TEST_F(SafetyGuardItemTests, anIdentifierThatIsOtherWordsIsInvalid) {
    for (const std::string bad :
         {"all", "unavailable", "booted", "--all", "-h", "com.apple.CoreSimulator.SimRuntime.iOS-17-2",
          "$(rm -rf ~)", "`id`", "; rm -rf /", "../../x", "/", "*", "&& true", "| sh",
          "E621E1F8-C36C-495A-93FC-0C247A3E6E5F; reboot", "%s%n", "\\", "'"})
        expectForIdentifier(bad, false);
    EXPECT_EQ(told(verdict(CleanupAction::simulatorDelete("$(rm -rf ~)"), "")),
              "ID tidak valid: $(rm -rf ~)");
    EXPECT_EQ(told(verdict(CleanupAction::simulatorErase(home.path()), "")),
              "ID tidak valid: " + home.path());
    EXPECT_EQ(told(verdict(CleanupAction::simulatorRuntimeDelete(""), "")), "ID tidak valid: ");
}

TEST_F(SafetyGuardItemTests, thePathOfASimulatorIsNotLookedAt) {
    for (const auto& action : simulatorActions(udid)) {
        for (const std::string& path :
             {std::string("runtime:" + udid), std::string(), std::string("/System"), in(".ssh"), in("../x"),
              std::string("/") + zero, in("Library/Developer/CoreSimulator/Devices/missing"), home.path()})
            EXPECT_EQ(verdict(action, path), accepted) << path;
    }
}

// Instructions

TEST_F(SafetyGuardItemTests, aManualStepIsRefusedWhateverItSays) {
    for (const std::string text : {"", "Buka Pengaturan.", "E621E1F8-C36C-495A-93FC-0C247A3E6E5F"}) {
        for (const std::string& path : {in("Library/Caches/x"), in(".Trash"), std::string("relative")}) {
            EXPECT_EQ(verdict(CleanupAction::manual(text), path),
                      refused(Kind::notDeletable, "butuh langkah manual"));
        }
    }
    EXPECT_EQ(told(verdict(CleanupAction::manual("x"), "")), "Tidak boleh dihapus: butuh langkah manual");
}

TEST_F(SafetyGuardItemTests, anImportantManualStepIsRefusedAsImportant) {
    EXPECT_EQ(told(verdict(CleanupAction::manual("x"), in("x/y"), Safety::keep)),
              "Tidak boleh dihapus: Penting");
}

// The Trash

TEST_F(SafetyGuardItemTests, onlyTheTrashOfTheHomeIsEmptied) {
    home.folder(".Trash/.Trash");
    home.folder("other/.Trash");
    EXPECT_EQ(verdict(CleanupAction::emptyTrash(), in(".Trash")), accepted);
    for (const std::string& path : {in(".Trash/"),
                                    in(".Trash//"),
                                    in("/.Trash"),
                                    in("./.Trash"),
                                    in(".Trash/."),
                                    in(".Trash/.."),
                                    in("x/../.Trash"),
                                    "/" + in(".Trash"),
                                    in(".trash"),
                                    in(".TRASH"),
                                    in("Trash"),
                                    in(".Trash "),
                                    in(".Trashes"),
                                    in(".Trash/.Trash"),
                                    in("other/.Trash"),
                                    in(".Trash") + zero,
                                    in(".Trash") + zero + "x",
                                    in(".Trash\n"),
                                    home.path() + "x/.Trash",
                                    std::string("~/.Trash"),
                                    std::string(".Trash"),
                                    std::string("/.Trash"),
                                    std::string("/Users/other/.Trash"),
                                    std::string("/Volumes/SSD/.Trashes/501"),
                                    std::string("/Volumes/SSD/.Trash"),
                                    "file://" + in(".Trash"),
                                    std::string(),
                                    std::string("/"),
                                    home.path(),
                                    in("Library"),
                                    std::string(100'000, 'x')}) {
        EXPECT_EQ(verdict(CleanupAction::emptyTrash(), path), refused(Kind::invalidPath, path))
            << path.substr(0, 200);
    }
    EXPECT_EQ(told(verdict(CleanupAction::emptyTrash(), in(".Trash/"))),
              "Path tidak valid: " + in(".Trash/"));
}

TEST_F(SafetyGuardItemTests, theTrashPassesWithoutALookAtTheDisk) {
    EXPECT_EQ(verdict(CleanupAction::emptyTrash(), in(".Trash")), accepted); // is not there
    home.file(".Trash");
    EXPECT_EQ(verdict(CleanupAction::emptyTrash(), in(".Trash")), accepted);
}

TEST_F(SafetyGuardItemTests, theTrashIsThatOfTheNormalisedHome) {
    for (const auto& written : {home.path() + "/", home.path() + "//", "/." + home.path() + "/."}) {
        const SafetyGuard guard(written);
        const CleanupItem item{
            .path = in(".Trash"), .safety = Safety::regenerable, .action = CleanupAction::emptyTrash()};
        EXPECT_EQ(guard.validate(item), accepted) << written;
        auto other = item;
        other.path = written + "/.Trash";
        EXPECT_EQ(guard.validate(other), refused(Kind::invalidPath, other.path)) << written;
    }
}

TEST_F(SafetyGuardItemTests, theTrashItselfMayBeNeitherDeletedNorMoved) {
    home.folder(".Trash");
    expectForFileActions(in(".Trash"), refused(Kind::protectedPath, in(".Trash")));
}

TEST_F(SafetyGuardItemTests, whatLiesInTheTrashMayBeDeleted) {
    expectForFileActions(home.folder(".Trash/x"), accepted);
}

// Files

TEST_F(SafetyGuardItemTests, filesFoldersAndLinksPass) {
    expectForFileActions(home.file("Projects/file"), accepted);
    expectForFileActions(home.folder("Library/Caches/x"), accepted);
    expectForFileActions(home.symlink("Projects/dangling", "/no/such"), accepted);
    expectForFileActions(home.symlink("Projects/link", "/System"), accepted);
}

TEST_F(SafetyGuardItemTests, aRepositoryIsRefusedForBothActions) {
    const auto folder = home.folder("Projects/app");
    home.folder("Projects/app/.git");
    expectForFileActions(folder, refused(Kind::isRepository, folder));
    EXPECT_EQ(told(verdict(CleanupAction::delete_(), folder)),
              "Ini repository git (kode sumber): ~/Projects/app");
    const auto worktree = home.folder("Projects/worktree");
    home.file("Projects/worktree/.git");
    expectForFileActions(worktree, refused(Kind::isRepository, worktree));
}

TEST_F(SafetyGuardItemTests, whatIsGoneIsMissing) {
    expectForFileActions(in("Library/Caches/x"), refused(Kind::missing, in("Library/Caches/x")));
    EXPECT_EQ(told(verdict(CleanupAction::trash(), in("Library/Caches/x"))),
              "Sudah tidak ada: ~/Library/Caches/x");
}

TEST_F(SafetyGuardItemTests, aProtectedPathIsRefusedForBothActions) {
    for (const std::string relative :
         {"Library/Caches", ".ssh/id_rsa", "Documents", "Projects", "Projects/.env",
          "Projects/app/signing.P12", "Library/Messages/chat.db"}) {
        expectForFileActions(in(relative), refused(Kind::protectedPath, in(relative)));
        EXPECT_EQ(told(verdict(CleanupAction::delete_(), in(relative))),
                  "Dilindungi (data penting): ~/" + relative);
    }
}

TEST_F(SafetyGuardItemTests, whatIsElsewhereIsRefusedForBothActionsInEverySafetyClass) {
    const auto parent = home.path().substr(0, home.path().rfind('/'));
    for (const std::string& path :
         {std::string("/System"), std::string("/"), std::string("/etc/passwd"), std::string("/usr/bin"),
          std::string("/Library/Caches/x"), std::string("/private/var/db"), std::string("/Volumes/SSD/x"),
          std::string("/Users/other/Library/Caches/x"), std::string("/dev/null"),
          std::string("/Applications"), home.path(), home.path() + "x/Library/Caches/x", parent}) {
        for (const auto safety : deletableClasses) {
            for (const auto& action : fileActions)
                EXPECT_EQ(verdict(action, path, safety), refused(Kind::outsideAllowedRoots, path)) << path;
        }
    }
    EXPECT_EQ(told(verdict(CleanupAction::delete_(), "/System")),
              "Di luar area yang boleh dibersihkan: /System");
    EXPECT_EQ(told(verdict(CleanupAction::delete_(), home.path())), "Di luar area yang boleh dibersihkan: ~");
}

TEST_F(SafetyGuardItemTests, aPathOfAnInvalidFormIsRefusedAsItCameIn) {
    home.folder("Library/Caches/x");
    for (const std::string& path :
         {std::string(), std::string(" "), std::string("relative"), std::string("~/Library/Caches/x"),
          std::string("runtime:" + udid), std::string("apfs:Data:Data"), std::string("tmutil:localsnapshots"),
          std::string(".."), in("Library/Caches/../../.ssh"), in("Library/Caches/x/.."), std::string("/.."),
          std::string("/../etc"), in("Library/Caches/x") + zero, zero,
          in("Library/Caches/x") + zero + "/../../..", std::string(100'000, 'x'),
          "file://" + in("Library/Caches/x")}) {
        expectForFileActions(path, refused(Kind::invalidPath, path));
        EXPECT_EQ(told(verdict(CleanupAction::trash(), path)), "Path tidak valid: " + path);
    }
}

TEST_F(SafetyGuardItemTests, aVeryLongPathIsJudgedLikeAnyOther) {
    home.folder("Library/Caches/x");
    const std::string name(100'000, 'x');
    expectForFileActions(in("Projects/" + name), refused(Kind::missing, in("Projects/" + name)));
    expectForFileActions(in("Projects/" + name + ".PEM"),
                         refused(Kind::protectedPath, in("Projects/" + name + ".PEM")));
    expectForFileActions(in(".ssh/" + name), refused(Kind::protectedPath, in(".ssh/" + name)));
    expectForFileActions("/" + name, refused(Kind::outsideAllowedRoots, "/" + name));

    std::string folders;
    std::string slashes;
    std::string dots;
    for (int count = 0; count < 50'000; ++count) {
        folders += "/x";
        slashes += "//";
        dots += "/.";
    }
    expectForFileActions(in("Projects" + folders), refused(Kind::missing, in("Projects" + folders)));
    expectForFileActions(in("Projects" + folders + "/.."),
                         refused(Kind::invalidPath, in("Projects" + folders + "/..")));
    expectForFileActions(home.path() + slashes + "Library/Caches/x", accepted);
    expectForFileActions(home.path() + dots + "/Library/Caches/x", accepted);
    expectForFileActions(home.path() + dots + "/Library/Caches" + slashes,
                         refused(Kind::protectedPath, in("Library/Caches")));
    expectForFileActions(slashes, refused(Kind::outsideAllowedRoots, "/"));
}

// Applications; those in /Applications are in CleanerTests.cpp

TEST_F(SafetyGuardItemTests, theSystemsApplicationIsProtectedFromTheTrash) {
    const auto bundle = application("Applications/Mail.app", "com.apple.mail");
    EXPECT_EQ(verdict(CleanupAction::trash(), bundle), refused(Kind::protectedPath, bundle));
    EXPECT_EQ(told(verdict(CleanupAction::trash(), bundle)),
              "Dilindungi (data penting): ~/Applications/Mail.app");
}

TEST_F(SafetyGuardItemTests, theApplicationRuleIsAskedForTheTrashOnly) {
    const auto bundle = application("Applications/A.app", "com.contoh.a");
    home.folder("Applications/A.app/.git");
    EXPECT_EQ(verdict(CleanupAction::trash(), bundle), accepted);
    EXPECT_EQ(verdict(CleanupAction::delete_(), bundle), refused(Kind::isRepository, bundle));
}

TEST_F(SafetyGuardItemTests, anApplicationThatIsGoneIsMissing) {
    expectForFileActions(in("Applications/A.app"), refused(Kind::missing, in("Applications/A.app")));
}

TEST_F(SafetyGuardItemTests, anApplicationIsKeptByItsSafetyClass) {
    const auto bundle = application("Applications/A.app", "com.contoh.a");
    EXPECT_EQ(verdict(CleanupAction::trash(), bundle, Safety::review), accepted);
    EXPECT_EQ(verdict(CleanupAction::trash(), bundle, Safety::keep), refused(Kind::notDeletable, "Penting"));
}

TEST_F(SafetyGuardItemTests, aBundleThatIsNoApplicationOfAFolderOfApplicationsFallsToTheOtherRules) {
    for (const std::string path : {"/Applications/Utilities/A.app", "/System/Applications/A.app", "/A.app",
                                   "/Users/other/Applications/A.app", "/Applications/A.APP"})
        EXPECT_EQ(verdict(CleanupAction::trash(), path), refused(Kind::outsideAllowedRoots, path)) << path;
    EXPECT_EQ(verdict(CleanupAction::trash(), in("A.app")), refused(Kind::protectedPath, in("A.app")));
}

// A saved report that was damaged, or written by somebody else

class SavedItemTests : public SafetyGuardItemTests {
protected:
    /// The verdict on an item as it is read from a report. `path` and `action` are JSON.
    [[nodiscard]] Verdict saved(const std::string& path, const std::string& action, int safety = 0) const {
        const auto json =
            parseJson(R"({"title":"t","detail":"","path":)" + path +
                      R"(,"bytes":1,"category":"system","safety":)" + std::to_string(safety) +
                      R"(,"action":)" + action + R"(,"recommended":true,"offloadable":false,"warnings":[]})");
        EXPECT_TRUE(json.has_value());
        const auto item = cleanupItemFromJson(json.value_or(Json()));
        EXPECT_TRUE(item.has_value());
        return SafetyGuard(home.path()).validate(item.value_or(CleanupItem{}));
    }
};

TEST_F(SavedItemTests, aGoodItemPasses) {
    home.folder("Library/Caches/x");
    EXPECT_EQ(saved('"' + in("Library/Caches/x") + '"', R"({"delete":{}})"), accepted);
    EXPECT_EQ(saved(R"("")", R"({"simulatorErase":{"udid":")" + udid + R"("}})"), accepted);
}

TEST_F(SavedItemTests, safetyZeroOpensNothingOfTheSystem) {
    for (const std::string action : {R"({"delete":{}})", R"({"trash":{}})"}) {
        EXPECT_EQ(saved(R"("/System")", action), refused(Kind::outsideAllowedRoots, "/System"));
        EXPECT_EQ(saved(R"("/")", action), refused(Kind::outsideAllowedRoots, "/"));
        EXPECT_EQ(saved('"' + home.path() + '"', action), refused(Kind::outsideAllowedRoots, home.path()));
    }
    EXPECT_EQ(saved(R"("/System")", R"({"emptyTrash":{}})"), refused(Kind::invalidPath, "/System"));
}

TEST_F(SavedItemTests, anEscapedZeroByteDoesNotEndThePath) {
    home.folder("Library/Caches/x");
    const auto written = '"' + in("Library/Caches/x") + R"(\u0000/../../.ssh")";
    EXPECT_EQ(saved(written, R"({"delete":{}})"),
              refused(Kind::invalidPath, in("Library/Caches/x") + zero + "/../../.ssh"));
    EXPECT_EQ(saved('"' + in(".Trash") + R"(\u0000")", R"({"emptyTrash":{}})"),
              refused(Kind::invalidPath, in(".Trash") + zero));
}

TEST_F(SavedItemTests, escapedDotsAndSlashesAreDotsAndSlashes) {
    EXPECT_EQ(saved('"' + home.path() + R"(\/x\u002f\u002e\u002e\/y")", R"({"delete":{}})"),
              refused(Kind::invalidPath, in("x/../y")));
}

TEST_F(SavedItemTests, anIdentifierIsTakenAsItStands) {
    for (const std::string action : {"simulatorErase", "simulatorDelete"}) {
        EXPECT_EQ(saved(R"("/System")", "{\"" + action + R"(":{"udid":"all"}})"),
                  refused(Kind::invalidIdentifier, "all"));
        EXPECT_EQ(saved(R"("/System")", "{\"" + action + R"(":{"udid":")" + udid + R"(\u0000"}})"),
                  refused(Kind::invalidIdentifier, udid + zero));
    }
    EXPECT_EQ(saved(R"("")", R"({"simulatorRuntimeDelete":{"identifier":"; reboot"}})"),
              refused(Kind::invalidIdentifier, "; reboot"));
}

TEST_F(SavedItemTests, theStoredSafetyClassCounts) {
    home.folder("Library/Caches/x");
    const auto path = '"' + in("Library/Caches/x") + '"';
    EXPECT_EQ(saved(path, R"({"delete":{}})", 2), accepted);
    EXPECT_EQ(saved(path, R"({"delete":{}})", 3), refused(Kind::notDeletable, "Penting"));
    EXPECT_EQ(saved(path, R"({"delete":{}})", 4), refused(Kind::notDeletable, "Dikelola sistem"));
}

} // namespace
} // namespace korvanti
