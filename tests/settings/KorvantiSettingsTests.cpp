#include "settings/AppPaths.h"
#include "settings/KorvantiSettings.h"
#include "support/Environment.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

namespace korvanti {
namespace {

using testing::TempFolder;
using testing::textOf;
using Texts = std::vector<std::string>;

constexpr const char* supportFolder = "Library/Application Support/Korvanti";
constexpr const char* settingsFile = "Library/Application Support/Korvanti/settings.json";

/// The user's home folder is a fresh one for each test.
class KorvantiSettingsTests : public ::testing::Test {
protected:
    std::string writeSettings(std::string text) { return home.file(settingsFile, {.text = std::move(text)}); }

    TempFolder home;
    testing::ScopedHome usersHome{home.path()};
};

constexpr const char* wholeFile = R"({
  "devRoots" : ["~/kerja", "/opt/x"],
  "inactiveDays" : 45,
  "lowSpaceWarningGB" : 7,
  "workVolumeUUID" : "6B0F-11",
  "relocations" : {"gradle" : "/Volumes/SSD/gradle"}
})";

KorvantiSettings wholeSettings() {
    return {.devRoots = {"~/kerja", "/opt/x"},
            .inactiveDays = 45,
            .lowSpaceWarningGB = 7,
            .workVolumeUUID = "6B0F-11",
            .relocations = {{"gradle", "/Volumes/SSD/gradle"}}};
}

// Defaults

TEST_F(KorvantiSettingsTests, theCandidatesAreTwelve) {
    EXPECT_EQ(
        Texts(KorvantiSettings::candidateRoots.begin(), KorvantiSettings::candidateRoots.end()),
        (Texts{"~/builder", "~/Developer", "~/AndroidStudioProjects", "~/StudioProjects", "~/Projects",
               "~/projects", "~/Code", "~/code", "~/dev", "~/src", "~/Documents/GitHub", "~/XcodeProjects"}));
}

TEST_F(KorvantiSettingsTests, aHomeWithoutCandidatesHasNoRoots) {
    EXPECT_EQ(KorvantiSettings::defaults(), KorvantiSettings{});
    EXPECT_EQ(KorvantiSettings::defaults().inactiveDays, 21);
    EXPECT_EQ(KorvantiSettings::defaults().lowSpaceWarningGB, 20);
    EXPECT_EQ(KorvantiSettings::defaults().workVolumeUUID, std::nullopt);
    EXPECT_TRUE(KorvantiSettings::defaults().relocations.empty());
}

TEST_F(KorvantiSettingsTests, theCandidatesThatExistAreTheRootsInTheirOrder) {
    for (const char* name : {"XcodeProjects", "src", "Documents/GitHub", "Developer", "other"})
        home.folder(name);
    EXPECT_EQ(KorvantiSettings::defaults().devRoots,
              (Texts{"~/Developer", "~/src", "~/Documents/GitHub", "~/XcodeProjects"}));
}

TEST_F(KorvantiSettingsTests, allCandidatesCanBeRoots) {
    for (const std::string_view candidate : KorvantiSettings::candidateRoots)
        home.folder(std::string(candidate.substr(2)));
    EXPECT_EQ(KorvantiSettings::defaults().devRoots,
              Texts(KorvantiSettings::candidateRoots.begin(), KorvantiSettings::candidateRoots.end()));
}

TEST_F(KorvantiSettingsTests, aLinkToAFolderIsNoRoot) {
    home.folder("elsewhere");
    home.symlink("Developer", home.path("elsewhere"));
    EXPECT_TRUE(KorvantiSettings::defaults().devRoots.empty());
}

TEST_F(KorvantiSettingsTests, aFileIsNoRoot) {
    home.file("Developer", {.text = "x"});
    EXPECT_TRUE(KorvantiSettings::defaults().devRoots.empty());
}

TEST_F(KorvantiSettingsTests, aRootBehindALinkedParentCounts) {
    home.folder("elsewhere/GitHub");
    home.symlink("Documents", home.path("elsewhere"));
    EXPECT_EQ(KorvantiSettings::defaults().devRoots, Texts{"~/Documents/GitHub"});
}

TEST_F(KorvantiSettingsTests, defaultsAreComputedAnewEachTime) {
    EXPECT_TRUE(KorvantiSettings::defaults().devRoots.empty());
    home.folder("code");
    EXPECT_EQ(KorvantiSettings::defaults().devRoots, Texts{"~/code"});
}

TEST_F(KorvantiSettingsTests, defaultsDoNotLookAtTheFile) {
    writeSettings(wholeFile);
    EXPECT_EQ(KorvantiSettings::defaults(), KorvantiSettings{});
}

// Loading

TEST_F(KorvantiSettingsTests, withoutAFileTheDefaultsAreLoaded) {
    home.folder("Developer");
    EXPECT_EQ(KorvantiSettings::load(), KorvantiSettings::defaults());
    EXPECT_EQ(KorvantiSettings::load().devRoots, Texts{"~/Developer"});
}

TEST_F(KorvantiSettingsTests, loadingWritesNoFile) {
    std::ignore = KorvantiSettings::load();
    EXPECT_FALSE(std::filesystem::exists(home.path(settingsFile)));
}

TEST_F(KorvantiSettingsTests, aWholeFileIsLoaded) {
    writeSettings(wholeFile);
    EXPECT_EQ(KorvantiSettings::load(), wholeSettings());
}

TEST_F(KorvantiSettingsTests, savedRootsAreNotMixedWithCandidates) {
    home.folder("Developer");
    writeSettings(wholeFile);
    EXPECT_EQ(KorvantiSettings::load().devRoots, (Texts{"~/kerja", "/opt/x"}));
}

TEST_F(KorvantiSettingsTests, aFileWithRootsOnlyGivesWayToTheDefaultsAsAWhole) {
    home.folder("Developer");
    writeSettings(R"({"devRoots" : ["~/kerja"]})");
    EXPECT_EQ(KorvantiSettings::load(), KorvantiSettings::defaults());
    EXPECT_EQ(KorvantiSettings::load().devRoots, Texts{"~/Developer"});
}

TEST_F(KorvantiSettingsTests, aFileWithoutAWorkVolumeIsLoadedWithoutOne) {
    Json json = toJson(wholeSettings());
    json.erase("workVolumeUUID");
    writeSettings(compactJson(json));
    KorvantiSettings expected = wholeSettings();
    expected.workVolumeUUID.reset();
    EXPECT_EQ(KorvantiSettings::load(), expected);
}

TEST_F(KorvantiSettingsTests, everyOtherKeyIsRequired) {
    for (const char* key : {"devRoots", "inactiveDays", "lowSpaceWarningGB", "relocations"}) {
        Json json = toJson(wholeSettings());
        ASSERT_EQ(json.erase(key), 1U) << key;
        writeSettings(compactJson(json));
        EXPECT_EQ(KorvantiSettings::load(), KorvantiSettings::defaults()) << key;
    }
}

TEST_F(KorvantiSettingsTests, aWrongValueMakesTheFileUndecodable) {
    const std::vector<std::pair<const char*, Json>> wrong = {
        {"devRoots", "~/kerja"}, {"devRoots", Json::array({1})}, {"inactiveDays", "45"},
        {"inactiveDays", 4.5},   {"lowSpaceWarningGB", true},    {"lowSpaceWarningGB", nullptr},
        {"workVolumeUUID", 5},   {"relocations", Json::array()}, {"relocations", {{"gradle", 1}}}};
    for (const auto& [key, value] : wrong) {
        Json json = toJson(wholeSettings());
        json[key] = value;
        writeSettings(compactJson(json));
        EXPECT_EQ(KorvantiSettings::load(), KorvantiSettings::defaults()) << key << " " << value.dump();
    }
}

TEST_F(KorvantiSettingsTests, aDamagedFileGivesTheDefaultsAndStaysAsItIs) {
    for (const char* text : {"", "{", "null", "[]", "{}", "{\"devRoots\" : [\"~/kerja\"]", "\xFF\xFE"}) {
        writeSettings(text);
        EXPECT_EQ(KorvantiSettings::load(), KorvantiSettings::defaults()) << text;
        EXPECT_EQ(textOf(home.path(settingsFile)), text);
    }
}

TEST_F(KorvantiSettingsTests, aFolderInPlaceOfTheFileGivesTheDefaults) {
    home.folder(settingsFile);
    EXPECT_EQ(KorvantiSettings::load(), KorvantiSettings::defaults());
    EXPECT_TRUE(std::filesystem::is_directory(home.path(settingsFile)));
}

// Saving

TEST_F(KorvantiSettingsTests, theFileIsPrettyWithSortedKeys) {
    wholeSettings().save();
    EXPECT_EQ(textOf(home.path(settingsFile)), R"({
  "devRoots" : [
    "~\/kerja",
    "\/opt\/x"
  ],
  "inactiveDays" : 45,
  "lowSpaceWarningGB" : 7,
  "relocations" : {
    "gradle" : "\/Volumes\/SSD\/gradle"
  },
  "workVolumeUUID" : "6B0F-11"
})");
}

TEST_F(KorvantiSettingsTests, anAbsentWorkVolumeIsLeftOutOfTheFile) {
    KorvantiSettings{}.save();
    EXPECT_EQ(textOf(home.path(settingsFile)), R"({
  "devRoots" : [

  ],
  "inactiveDays" : 21,
  "lowSpaceWarningGB" : 20,
  "relocations" : {

  }
})");
}

TEST_F(KorvantiSettingsTests, whatIsSavedIsLoaded) {
    KorvantiSettings settings = wholeSettings();
    settings.devRoots = {"~/Pekerjaan é", "/a \"b\"\n", ""};
    settings.inactiveDays = -3;
    settings.relocations = {{"b", "/x"}, {"a", "/y"}};
    settings.save();
    EXPECT_EQ(KorvantiSettings::load(), settings);
}

TEST_F(KorvantiSettingsTests, theOrderOfTheRootsSurvives) {
    KorvantiSettings settings;
    settings.devRoots = {"~/z", "~/a", "~/m", "~/a"};
    settings.save();
    EXPECT_EQ(KorvantiSettings::load().devRoots, (Texts{"~/z", "~/a", "~/m", "~/a"}));
}

TEST_F(KorvantiSettingsTests, savingReplacesTheOldFileAndLeavesNothingBeside) {
    writeSettings("old");
    const std::string witness = home.path("witness");
    std::filesystem::create_hard_link(home.path(settingsFile), witness);

    wholeSettings().save();

    EXPECT_EQ(textOf(witness), "old");
    EXPECT_EQ(KorvantiSettings::load(), wholeSettings());
    Texts names;
    for (const auto& entry : std::filesystem::directory_iterator(home.path(supportFolder)))
        names.push_back(entry.path().filename().string());
    EXPECT_EQ(names, Texts{"settings.json"});
}

TEST_F(KorvantiSettingsTests, settingsThatCannotBeSavedAreDroppedWithoutAWord) {
    home.file("Library", {.text = "in the way"});
    ::testing::internal::CaptureStdout();
    ::testing::internal::CaptureStderr();
    wholeSettings().save();
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(textOf(home.path("Library")), "in the way");
    EXPECT_EQ(KorvantiSettings::load(), KorvantiSettings::defaults());
}

// Roots

Texts resolved(Texts devRoots) {
    KorvantiSettings settings;
    settings.devRoots = std::move(devRoots);
    return settings.resolvedDevRoots("/Users/a");
}

TEST(ResolvedDevRootsTests, aTildeInFrontIsTheHomeFolder) {
    EXPECT_EQ(resolved({"~/x", "~"}), (Texts{"/Users/a/x", "/Users/a"}));
}

TEST(ResolvedDevRootsTests, onlyTheFirstCharacterIsTakenOff) {
    EXPECT_EQ(resolved({"~x", "~~/y"}), (Texts{"/Users/ax", "/Users/a~/y"}));
}

TEST(ResolvedDevRootsTests, anAbsolutePathStays) {
    EXPECT_EQ(resolved({"/opt/x", "/opt/~/y"}), (Texts{"/opt/x", "/opt/~/y"}));
}

TEST(ResolvedDevRootsTests, nothingIsDroppedAndTheOrderStays) {
    EXPECT_EQ(resolved({"~/missing", "/b", "~/missing", "/a"}),
              (Texts{"/Users/a/missing", "/b", "/Users/a/missing", "/a"}));
}

} // namespace
} // namespace korvanti
