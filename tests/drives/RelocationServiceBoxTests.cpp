#include "drives/RelocationService.h"

#include "fs/FileContents.h"
#include "fs/PathTools.h"
#include "support/BoxFolder.h"
#include "support/RunProgram.h"

#include <cerrno>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <utility>
#include <vector>

namespace korvanti {
namespace {

using namespace std::string_literals;
using testing::BoxFolder;
using testing::BoxMac;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::Pair;
using ::testing::StartsWith;
using testing::textOf;
using ::testing::UnorderedElementsAre;

constexpr auto xcode = DevCache::xcodeDerivedData;
constexpr auto gradle = DevCache::gradleHome;
constexpr auto npm = DevCache::npmCache;

const std::string firstLine = "# >>> Korvanti: cache dev di SSD (dikelola otomatis, jangan diedit) >>>\n";
const std::string lastLine = "# <<< Korvanti <<<\n";

const std::string readCall = "defaults read com.example.Xcode IDECustomDerivedDataLocation";
const std::string deleteCall = "defaults delete com.example.Xcode IDECustomDerivedDataLocation";
const std::string writeCall = "defaults write com.example.Xcode IDECustomDerivedDataLocation "
                              "/Volumes/Work/Korvanti Dev/DerivedData.noindex";

std::string gradleLines(const std::string& volume) {
    return "if [ -d \"" + volume + "/Korvanti Dev\" ]; then\n  export GRADLE_USER_HOME=\"" + volume +
           "/Korvanti Dev/gradle.noindex\"\nfi\n";
}

std::string npmLines(const std::string& volume) {
    return "if [ -d \"" + volume + "/Korvanti Dev\" ]; then\n  export npm_config_cache=\"" + volume +
           "/Korvanti Dev/npm-cache.noindex\"\nfi\n";
}

const std::string gradleBlock = firstLine + gradleLines("/Volumes/Work") + lastLine;
const std::string bothBlock = firstLine + gradleLines("/Volumes/Work") + npmLines("/Volumes/Work") + lastLine;

VolumeInfo volumeAt(const std::string& mountPath, const std::string& fsType = "apfs") {
    return {.name = "Work", .mountPath = mountPath, .formatName = "ExFAT", .fsType = fsType};
}

/// An ordinary user's home, a volume, and the tools.
class RelocationServiceBoxTests : public ::testing::Test {
protected:
    [[nodiscard]] std::string profile() const { return textOf(zshenv); }
    void writeProfile(const std::string& text) const { mac.home.file(".zshenv", {.text = text}); }
    [[nodiscard]] bool hasProfile() const { return PathTools::exists(zshenv); }
    [[nodiscard]] std::vector<std::string> homeFiles() const {
        std::vector<std::string> names;
        for (const auto& entry : PathTools::entries(mac.home.path()))
            names.push_back(entry.name);
        return names;
    }
    [[nodiscard]] std::string derivedData() const {
        const auto path = mac.defaults.path("com.example.Xcode/IDECustomDerivedDataLocation");
        return PathTools::exists(path) ? textOf(path) : "none";
    }

    [[nodiscard]] bool apply(const std::set<DevCache>& caches,
                             const std::string& volume = "/Volumes/Work") const {
        return service.apply(caches, volumeAt(volume)).has_value();
    }
    /// The text of what was raised.
    [[nodiscard]] std::string refusal(const std::set<DevCache>& caches, const VolumeInfo& volume) const {
        const auto done = service.apply(caches, volume);
        return done ? "none" : description(done.error());
    }
    /// The system's error of a failed operation.
    static int errorOf(const std::expected<void, DriveFailure>& done) {
        const auto* error = done ? nullptr : std::get_if<FileError>(&done.error());
        return error == nullptr ? 0 : error->code.value();
    }
    /// An operation on a profile that can't be read fails with this error and does nothing at all.
    void expectUntouched(int error) const {
        EXPECT_EQ(errorOf(service.apply({xcode, gradle, npm}, volumeAt("/Volumes/Work"))), error);
        EXPECT_EQ(errorOf(service.revert({xcode, gradle, npm})), error);
        EXPECT_THAT(PathTools::children("/Volumes/Work"), IsEmpty());
        EXPECT_THAT(BoxMac::calls(), IsEmpty());
        EXPECT_THAT(service.currentTargets(), IsEmpty());
    }

    BoxMac mac;
    BoxFolder work{"/Volumes/Work"};
    BoxFolder other{"/Volumes/Other"};
    const RelocationService service{"/Users/tester", "com.example.Xcode"};
    const std::string zshenv = "/Users/tester/.zshenv";
};

// Pointing caches at a volume

TEST_F(RelocationServiceBoxTests, allThreeCachesArePointedAtTheVolume) {
    ASSERT_TRUE(apply({xcode, gradle, npm}));

    EXPECT_EQ(profile(), bothBlock);
    EXPECT_EQ(derivedData(), "/Volumes/Work/Korvanti Dev/DerivedData.noindex");
    EXPECT_THAT(PathTools::children("/Volumes/Work"), ElementsAre("/Volumes/Work/Korvanti Dev"));
    EXPECT_THAT(PathTools::subfolders("/Volumes/Work/Korvanti Dev"),
                UnorderedElementsAre("/Volumes/Work/Korvanti Dev/DerivedData.noindex",
                                     "/Volumes/Work/Korvanti Dev/gradle.noindex",
                                     "/Volumes/Work/Korvanti Dev/npm-cache.noindex"));
    EXPECT_THAT(service.currentTargets(),
                ElementsAre(Pair(xcode, "/Volumes/Work/Korvanti Dev/DerivedData.noindex"),
                            Pair(gradle, "/Volumes/Work/Korvanti Dev/gradle.noindex"),
                            Pair(npm, "/Volumes/Work/Korvanti Dev/npm-cache.noindex")));
}

TEST_F(RelocationServiceBoxTests, theToolsAreCalledWithTheirArguments) {
    ASSERT_TRUE(apply({xcode, gradle, npm}));
    EXPECT_THAT(BoxMac::calls(),
                ElementsAre("tmutil addexclusion /Volumes/Work/Korvanti Dev/DerivedData.noindex", writeCall,
                            "tmutil addexclusion /Volumes/Work/Korvanti Dev/gradle.noindex",
                            "tmutil addexclusion /Volumes/Work/Korvanti Dev/npm-cache.noindex"));
}

TEST_F(RelocationServiceBoxTests, xcodeAloneWritesNoEnvironmentLines) {
    ASSERT_TRUE(apply({xcode}));
    EXPECT_FALSE(hasProfile());
    writeProfile("export EDITOR=vi");
    ASSERT_TRUE(apply({xcode}));
    EXPECT_EQ(profile(), "export EDITOR=vi");
}

TEST_F(RelocationServiceBoxTests, aSecondVolumeReplacesOnlyItsOwnLine) {
    ASSERT_TRUE(apply({gradle, npm}));
    ASSERT_TRUE(apply({gradle}, "/Volumes/Other"));
    EXPECT_EQ(profile(), firstLine + gradleLines("/Volumes/Other") + npmLines("/Volumes/Work") + lastLine);
    EXPECT_TRUE(PathTools::isDirectory("/Volumes/Work/Korvanti Dev/gradle.noindex"));
}

TEST_F(RelocationServiceBoxTests, cachesNotInTheSetKeepWhatTheyHad) {
    ASSERT_TRUE(apply({gradle}));
    ASSERT_TRUE(apply({npm}));
    ASSERT_TRUE(apply({xcode}));
    ASSERT_TRUE(apply({}));
    EXPECT_EQ(profile(), bothBlock);
}

TEST_F(RelocationServiceBoxTests, applyingTwiceIsApplyingOnce) {
    writeProfile("a");
    ASSERT_TRUE(apply({xcode, gradle, npm}));
    ASSERT_TRUE(apply({xcode, gradle, npm}));
    EXPECT_EQ(profile(), "a\n" + bothBlock);
}

TEST_F(RelocationServiceBoxTests, aProfileThatStaysAsItIsIsNotWritten) {
    ASSERT_TRUE(apply({npm}));
    struct stat before {};
    struct stat after {};
    ASSERT_EQ(::stat(zshenv.c_str(), &before), 0);
    ASSERT_TRUE(apply({npm}));
    ASSERT_EQ(::stat(zshenv.c_str(), &after), 0);
    EXPECT_EQ(before.st_ino, after.st_ino);
}

TEST_F(RelocationServiceBoxTests, onlyFormatsThatKeepLinksAndModesAreTaken) {
    for (const auto* type : {"exfat", "msdos", "ntfs", "", "APFS", "hfs+"}) {
        EXPECT_EQ(refusal({xcode, gradle, npm}, volumeAt("/Volumes/Work", type)),
                  "Format ExFAT tidak aman untuk data dev (symlink & izin file hilang). Format SSD ke APFS, "
                  "atau pindahkan hanya foto/video.")
            << type;
    }
    EXPECT_THAT(PathTools::children("/Volumes/Work"), IsEmpty());
    EXPECT_THAT(BoxMac::calls(), IsEmpty());
    EXPECT_FALSE(hasProfile());
    EXPECT_EQ(refusal({npm}, volumeAt("/Volumes/Work", "hfs")), "none");
}

TEST_F(RelocationServiceBoxTests, aMountPathThatWouldTearTheBlockApartIsRefused) {
    for (const auto& name :
         {"a\nb"s, "a\0b"s, "# <<< Korvanti <<<"s, firstLine.substr(0, firstLine.size() - 1)}) {
        const auto volume = "/Volumes/" + name;
        work.folder("../" + name.substr(0, name.find('\0')));
        for (const auto cache : allDevCaches)
            EXPECT_EQ(errorOf(service.apply({cache}, volumeAt(volume))), EINVAL) << volume;
        EXPECT_THAT(PathTools::children(volume.substr(0, volume.find('\0'))), IsEmpty());
        std::filesystem::remove_all(volume.substr(0, volume.find('\0')));
    }
    EXPECT_FALSE(hasProfile());
    EXPECT_THAT(BoxMac::calls(), IsEmpty());
}

TEST_F(RelocationServiceBoxTests, quotesAndDollarSignsGoIntoTheBlockUnescaped) {
    const BoxFolder odd("/Volumes/\"$HOME\xff");
    ASSERT_TRUE(apply({npm}, odd.path()));
    EXPECT_EQ(profile(), firstLine + npmLines("/Volumes/\"$HOME\xff") + lastLine);
    EXPECT_THAT(service.currentTargets(),
                ElementsAre(Pair(npm, "/Volumes/\"$HOME\xff/Korvanti Dev/npm-cache.noindex")));
}

TEST_F(RelocationServiceBoxTests, aVolumeThatWentAwayIsNotMadeUp) {
    EXPECT_EQ(errorOf(service.apply({xcode, gradle, npm}, volumeAt("/Volumes/Gone"))), ENOENT);
    EXPECT_FALSE(PathTools::exists("/Volumes/Gone"));
    EXPECT_THAT(BoxMac::calls(), IsEmpty());
    EXPECT_FALSE(hasProfile());
}

TEST_F(RelocationServiceBoxTests, aFolderThatCanNotBeMadeLeavesTheBlockAsItIs) {
    work.file("Korvanti Dev/gradle.noindex");
    EXPECT_EQ(errorOf(service.apply({xcode, gradle, npm}, volumeAt("/Volumes/Work"))), ENOTDIR);
    EXPECT_EQ(derivedData(), "/Volumes/Work/Korvanti Dev/DerivedData.noindex");
    EXPECT_FALSE(PathTools::exists("/Volumes/Work/Korvanti Dev/npm-cache.noindex"));
    EXPECT_FALSE(hasProfile());
}

TEST_F(RelocationServiceBoxTests, aVolumeThatMayNotBeWrittenIsTheSystemsError) {
    work.setMode("", 0500);
    EXPECT_EQ(errorOf(service.apply({npm}, volumeAt("/Volumes/Work"))), EACCES);
    EXPECT_FALSE(hasProfile());
}

TEST_F(RelocationServiceBoxTests, whenTheDefaultCanNotBeWrittenTheToolsWordsAreRaisedAsTheyStand) {
    mac.answerWithScript(writeCall, "printf ' tidak bisa\\n\\n' >&2; exit 1");
    EXPECT_EQ(refusal({xcode, npm}, volumeAt("/Volumes/Work")), "Gagal menyalin:  tidak bisa\n\n");
    EXPECT_TRUE(PathTools::isDirectory("/Volumes/Work/Korvanti Dev/DerivedData.noindex"));
    EXPECT_FALSE(PathTools::exists("/Volumes/Work/Korvanti Dev/npm-cache.noindex"));
    EXPECT_FALSE(hasProfile());
}

TEST_F(RelocationServiceBoxTests, whetherTheFolderCouldBeKeptOutOfBackupsDoesNotMatter) {
    const std::string call = "tmutil addexclusion /Volumes/Work/Korvanti Dev/npm-cache.noindex";
    for (const int status : {0, 1, 80}) {
        mac.answer(call, "", status);
        EXPECT_TRUE(apply({npm})) << status;
    }
    mac.answerWithScript(call, "kill -KILL $$");
    EXPECT_TRUE(apply({npm}));
}

// The Gradle configuration

TEST_F(RelocationServiceBoxTests, theGradleConfigurationIsCarriedOver) {
    mac.home.file(".gradle/gradle.properties", {.text = "org.gradle.daemon=false\n"});
    mac.home.file(".gradle/init.d/one.gradle", {.text = "one"});
    mac.home.file(".gradle/caches/large");
    ASSERT_TRUE(apply({gradle}));
    EXPECT_EQ(textOf("/Volumes/Work/Korvanti Dev/gradle.noindex/gradle.properties"),
              "org.gradle.daemon=false\n");
    EXPECT_EQ(textOf("/Volumes/Work/Korvanti Dev/gradle.noindex/init.d/one.gradle"), "one");
    EXPECT_FALSE(PathTools::exists("/Volumes/Work/Korvanti Dev/gradle.noindex/caches"));
    EXPECT_TRUE(PathTools::exists("/Users/tester/.gradle/gradle.properties"));
}

TEST_F(RelocationServiceBoxTests, aGradleFileThatStandsInTheNewFolderStaysAsItIs) {
    mac.home.file(".gradle/gradle.properties", {.text = "old"});
    work.file("Korvanti Dev/gradle.noindex/gradle.properties", {.text = "new"});
    ASSERT_TRUE(apply({gradle}));
    EXPECT_EQ(textOf("/Volumes/Work/Korvanti Dev/gradle.noindex/gradle.properties"), "new");
}

TEST_F(RelocationServiceBoxTests, aGradleFileThatCanNotBeReadIsLeftOut) {
    mac.home.file(".gradle/gradle.properties", {.text = "secret"});
    mac.home.setMode(".gradle/gradle.properties", 0);
    mac.home.file(".gradle/init.gradle", {.text = "x"});
    ASSERT_TRUE(apply({gradle}));
    EXPECT_THAT(PathTools::children("/Volumes/Work/Korvanti Dev/gradle.noindex"),
                ElementsAre("/Volumes/Work/Korvanti Dev/gradle.noindex/init.gradle"));
    EXPECT_EQ(profile(), gradleBlock);
}

TEST_F(RelocationServiceBoxTests, otherCachesCarryNothingOver) {
    mac.home.file(".gradle/gradle.properties", {.text = "x"});
    ASSERT_TRUE(apply({xcode, npm}));
    EXPECT_FALSE(PathTools::exists("/Volumes/Work/Korvanti Dev/gradle.noindex"));
}

// Taking back

TEST_F(RelocationServiceBoxTests, takingBackTheLastTargetRemovesTheBlock) {
    writeProfile("a\n\n" + bothBlock + "\n\nb");
    ASSERT_TRUE(service.revert({gradle}));
    EXPECT_EQ(profile(), "a\n\n\n\nb\n" + firstLine + npmLines("/Volumes/Work") + lastLine);
    ASSERT_TRUE(service.revert({npm}));
    EXPECT_EQ(profile(), "a\n\n\n\nb\n");
    EXPECT_THAT(BoxMac::calls(), IsEmpty());
}

TEST_F(RelocationServiceBoxTests, takingBackLeavesTheFoldersOnTheVolume) {
    ASSERT_TRUE(apply({xcode, gradle, npm}));
    work.file("Korvanti Dev/npm-cache.noindex/package", {.text = "x"});
    ASSERT_TRUE(service.revert({xcode, gradle, npm}));
    EXPECT_EQ(textOf("/Volumes/Work/Korvanti Dev/npm-cache.noindex/package"), "x");
    EXPECT_TRUE(PathTools::isDirectory("/Volumes/Work/Korvanti Dev/gradle.noindex"));
    EXPECT_EQ(profile(), "");
    EXPECT_EQ(derivedData(), "none");
    EXPECT_THAT(service.currentTargets(), IsEmpty());
}

TEST_F(RelocationServiceBoxTests, takingBackWithoutAProfileMakesNone) {
    ASSERT_TRUE(service.revert({xcode, gradle, npm}));
    EXPECT_FALSE(hasProfile());
}

TEST_F(RelocationServiceBoxTests, takingBackXcodeTakesALocationSetByHandAsWell) {
    mac.defaults.file("com.example.Xcode/IDECustomDerivedDataLocation", {.text = "/Users/tester/Build"});
    EXPECT_THAT(service.currentTargets(), ElementsAre(Pair(xcode, "/Users/tester/Build")));
    ASSERT_TRUE(service.revert({xcode}));
    EXPECT_EQ(derivedData(), "none");
    EXPECT_THAT(BoxMac::calls(), ElementsAre(readCall, deleteCall));
}

TEST_F(RelocationServiceBoxTests, whetherThereWasADefaultToTakeBackDoesNotMatter) {
    writeProfile(bothBlock);
    EXPECT_TRUE(service.revert({xcode, npm}));
    EXPECT_EQ(profile(), gradleBlock);
    EXPECT_THAT(BoxMac::calls(), ElementsAre(deleteCall));
}

// What is in force

TEST_F(RelocationServiceBoxTests, withNothingSetNothingIsInForce) {
    EXPECT_THAT(service.currentTargets(), IsEmpty());
    EXPECT_THAT(BoxMac::calls(), ElementsAre(readCall));
    EXPECT_FALSE(hasProfile());
}

TEST_F(RelocationServiceBoxTests, theLocationIsTrimmed) {
    mac.answer(readCall, " \t/Volumes/Work/Korvanti Dev \u00A0\r\n\n");
    EXPECT_THAT(service.currentTargets(), ElementsAre(Pair(xcode, "/Volumes/Work/Korvanti Dev")));
}

TEST_F(RelocationServiceBoxTests, anEmptyLocationIsNone) {
    for (const auto* text : {"", "\n", " \t\r\n"}) {
        mac.answer(readCall, text);
        EXPECT_THAT(service.currentTargets(), IsEmpty());
    }
}

TEST_F(RelocationServiceBoxTests, aToolThatFailsTellsNoLocationWhateverItPrints) {
    mac.answer(readCall, "/Volumes/Work", 1);
    EXPECT_THAT(service.currentTargets(), IsEmpty());
    mac.answerWithScript(readCall, "echo /Volumes/Work; kill -KILL $$");
    EXPECT_THAT(service.currentTargets(), IsEmpty());
}

TEST_F(RelocationServiceBoxTests, aLineWithTabsInFrontCountsAndOneWithoutItsQuoteDoesNot) {
    writeProfile(firstLine + "\t\texport GRADLE_USER_HOME=\"/g\"\nexport npm_config_cache=\"/n\n" + lastLine);
    EXPECT_THAT(service.currentTargets(), ElementsAre(Pair(gradle, "/g")));
}

// The profile

TEST_F(RelocationServiceBoxTests, aProfileWithoutALineFeedAtItsEndGetsOneBeforeTheBlock) {
    writeProfile("export EDITOR=vi");
    ASSERT_TRUE(apply({gradle, npm}));
    EXPECT_EQ(profile(), "export EDITOR=vi\n" + bothBlock);
}

TEST_F(RelocationServiceBoxTests, aStrayFirstMarkerStaysAndTheNewBlockIsReadBehindIt) {
    writeProfile(firstLine + "export EDITOR=vi\n");
    ASSERT_TRUE(apply({gradle}));
    EXPECT_EQ(profile(), firstLine + "export EDITOR=vi\n" + gradleBlock);
    EXPECT_THAT(service.currentTargets(),
                ElementsAre(Pair(gradle, "/Volumes/Work/Korvanti Dev/gradle.noindex")));
    ASSERT_TRUE(apply({npm}));
    EXPECT_EQ(profile(), firstLine + "export EDITOR=vi\n" + bothBlock);
    ASSERT_TRUE(service.revert({gradle, npm}));
    EXPECT_EQ(profile(), firstLine + "export EDITOR=vi\n");
}

TEST_F(RelocationServiceBoxTests, whateverIsInTheProfileStaysByteForByte) {
    const auto odd = "\xEF\xBB\xBF\r\n\xff\xfe\0 caf\xC3\r\nexport A=\"b\"\r\n\t\n\n"s;
    writeProfile(odd);
    ASSERT_TRUE(apply({gradle}));
    EXPECT_EQ(profile(), odd + gradleBlock);
    ASSERT_TRUE(service.revert({gradle}));
    EXPECT_EQ(profile(), odd);
}

TEST_F(RelocationServiceBoxTests, theModeOfTheProfileIsKept) {
    for (const unsigned mode : {0600U, 0644U, 0400U, 0755U}) {
        writeProfile("a\n");
        mac.home.setMode(".zshenv", mode);
        ASSERT_TRUE(apply({gradle}));
        struct stat status {};
        ASSERT_EQ(::stat(zshenv.c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 0777, mode);
        mac.home.setMode(".zshenv", 0600);
    }
}

TEST_F(RelocationServiceBoxTests, aProfileThatIsALinkStaysOneAndTheFileBehindItChanges) {
    mac.home.file("dotfiles/zsh/env", {.text = "a\n"});
    mac.home.symlink("dotfiles/link", "zsh/../zsh/env");
    mac.home.symlink(".zshenv", "dotfiles/link");
    ASSERT_TRUE(apply({gradle}));
    EXPECT_EQ(std::filesystem::read_symlink(zshenv), "dotfiles/link");
    EXPECT_EQ(std::filesystem::read_symlink("/Users/tester/dotfiles/link"), "zsh/../zsh/env");
    EXPECT_EQ(textOf("/Users/tester/dotfiles/zsh/env"), "a\n" + gradleBlock);
    EXPECT_THAT(PathTools::children("/Users/tester/dotfiles/zsh"),
                ElementsAre("/Users/tester/dotfiles/zsh/env"));
}

TEST_F(RelocationServiceBoxTests, theFileBehindADanglingLinkIsMade) {
    mac.home.folder("dotfiles");
    mac.home.symlink("link", "/Users/tester/dotfiles/env");
    mac.home.symlink(".zshenv", "./link");
    ASSERT_TRUE(service.revert({gradle}));
    EXPECT_FALSE(PathTools::exists("/Users/tester/dotfiles/env"));
    ASSERT_TRUE(apply({gradle}));
    EXPECT_TRUE(PathTools::isSymlink(zshenv));
    EXPECT_TRUE(PathTools::isSymlink("/Users/tester/link"));
    EXPECT_EQ(textOf("/Users/tester/dotfiles/env"), gradleBlock);
}

TEST_F(RelocationServiceBoxTests, aDanglingLinkIntoAMissingFolderIsTheSystemsErrorAndStays) {
    mac.home.symlink(".zshenv", "/Volumes/Gone/env");
    EXPECT_EQ(errorOf(service.apply({gradle}, volumeAt("/Volumes/Work"))), ENOENT);
    EXPECT_EQ(std::filesystem::read_symlink(zshenv), "/Volumes/Gone/env");
    EXPECT_FALSE(PathTools::exists("/Volumes/Gone"));
    EXPECT_TRUE(service.revert({gradle}));
}

TEST_F(RelocationServiceBoxTests, aProfileThatMayNotBeReadIsNeverWritten) {
    writeProfile(bothBlock);
    mac.home.setMode(".zshenv", 0200);
    expectUntouched(EACCES);
    mac.home.setMode(".zshenv", 0600);
    EXPECT_EQ(profile(), bothBlock);
}

TEST_F(RelocationServiceBoxTests, aProfileBehindALockedFolderIsNeverWritten) {
    mac.home.file("dotfiles/env", {.text = bothBlock});
    mac.home.symlink(".zshenv", "dotfiles/env");
    mac.home.setMode("dotfiles", 0);
    expectUntouched(EACCES);
    mac.home.setMode("dotfiles", 0700);
    EXPECT_EQ(profile(), bothBlock);
}

TEST_F(RelocationServiceBoxTests, aFolderInThePlaceOfTheProfileStays) {
    mac.home.file(".zshenv/file");
    expectUntouched(EISDIR);
    EXPECT_TRUE(PathTools::exists("/Users/tester/.zshenv/file"));
}

TEST_F(RelocationServiceBoxTests, aPipeInThePlaceOfTheProfileStays) {
    ASSERT_EQ(::mkfifo(zshenv.c_str(), 0600), 0);
    expectUntouched(EINVAL);
}

TEST_F(RelocationServiceBoxTests, aLinkInACircleStays) {
    mac.home.symlink(".zshenv", ".zshenv");
    expectUntouched(ELOOP);
}

TEST_F(RelocationServiceBoxTests, aProfileOverTheLimitIsNeverWritten) {
    mac.home.file(".zshenv", {.sparseBytes = FileContents::defaultLimit + 1});
    expectUntouched(EFBIG);
    EXPECT_EQ(std::filesystem::file_size(zshenv), std::uintmax_t{FileContents::defaultLimit} + 1);
}

TEST_F(RelocationServiceBoxTests, aProfileIsNotMadeSoLargeThatItCouldNotBeReadAgain) {
    const auto block = static_cast<std::int64_t>(gradleBlock.size());
    mac.home.file(".zshenv", {.sparseBytes = FileContents::defaultLimit - block}); // gets a line feed, too
    EXPECT_EQ(errorOf(service.apply({gradle}, volumeAt("/Volumes/Work"))), EFBIG);
    EXPECT_EQ(std::filesystem::file_size(zshenv), std::uintmax_t(FileContents::defaultLimit - block));

    mac.home.file(".zshenv", {.sparseBytes = FileContents::defaultLimit - block - 1});
    EXPECT_TRUE(apply({gradle}));
    EXPECT_EQ(std::filesystem::file_size(zshenv), std::uintmax_t{FileContents::defaultLimit});
    EXPECT_THAT(service.currentTargets(),
                Contains(Pair(gradle, "/Volumes/Work/Korvanti Dev/gradle.noindex")));
    EXPECT_TRUE(service.revert({gradle}));
}

TEST_F(RelocationServiceBoxTests, aHomeThatMayNotBeWrittenIsTheSystemsErrorAndKeepsTheProfile) {
    writeProfile("a\n");
    mac.home.setMode("", 0500);
    EXPECT_EQ(errorOf(service.apply({xcode, gradle}, volumeAt("/Volumes/Work"))), EACCES);
    EXPECT_EQ(profile(), "a\n");
    EXPECT_EQ(derivedData(), "/Volumes/Work/Korvanti Dev/DerivedData.noindex");
    EXPECT_EQ(homeFiles(), std::vector<std::string>{".zshenv"});
    mac.home.setMode("", 0700);
}

TEST_F(RelocationServiceBoxTests, nothingIsLeftBesideTheProfile) {
    ASSERT_TRUE(apply({gradle, npm}));
    ASSERT_TRUE(service.revert({npm}));
    EXPECT_EQ(homeFiles(), std::vector<std::string>{".zshenv"});
}

TEST_F(RelocationServiceBoxTests, whatTheUserSavesWhileToolsRunIsKept) {
    writeProfile("old\n");
    mac.answerWithScript("tmutil addexclusion /Volumes/Work/Korvanti Dev/gradle.noindex",
                         "echo saved >/Users/tester/.zshenv");
    ASSERT_TRUE(apply({gradle}));
    EXPECT_EQ(profile(), "saved\n" + gradleBlock);
}

// The shell

TEST_F(RelocationServiceBoxTests, aShellTakesTheVariablesOnlyWhileTheVolumeIsThere) {
    const auto inShell = [&] {
        const auto result = testing::runProgram(
            {"/bin/sh", "-euc",
             ". \"$0\"; echo \"$EDITOR|${GRADLE_USER_HOME-none}|${npm_config_cache-none}\"", zshenv},
            {.environment = {{"GRADLE_USER_HOME", std::nullopt}, {"npm_config_cache", std::nullopt}}});
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.err, "");
        return result.out;
    };
    writeProfile("EDITOR=vi");
    ASSERT_TRUE(apply({gradle, npm}));

    EXPECT_EQ(inShell(), "vi|/Volumes/Work/Korvanti Dev/gradle.noindex|"
                         "/Volumes/Work/Korvanti Dev/npm-cache.noindex\n");
    std::filesystem::rename("/Volumes/Work/Korvanti Dev", "/Volumes/Work/gone");
    EXPECT_EQ(inShell(), "vi|none|none\n");
    std::filesystem::rename("/Volumes/Work/gone", "/Volumes/Work/Korvanti Dev");
    ASSERT_TRUE(service.revert({gradle}));
    EXPECT_EQ(inShell(), "vi|none|/Volumes/Work/Korvanti Dev/npm-cache.noindex\n");
    ASSERT_TRUE(service.revert({npm}));
    EXPECT_EQ(inShell(), "vi|none|none\n");
}

} // namespace
} // namespace korvanti
