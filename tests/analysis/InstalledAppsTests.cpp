#include "analysis/InstalledApps.h"

#include "analysis/AppRules.h"
#include "platform/Platform.h"
#include "support/Environment.h"
#include "support/TempFolder.h"

#include <algorithm>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace korvanti {
namespace {

using testing::blocksOf;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;
using testing::ScopedVariable;
using ::testing::SizeIs;
using testing::TempFolder;
using testing::textOf;
using ::testing::UnorderedElementsAre;
using Paths = std::vector<std::string>;
using Identifiers = std::set<std::string>;

std::string infoList(const std::string& dictionary) {
    return R"(<?xml version="1.0" encoding="UTF-8"?><plist version="1.0"><dict>)" + dictionary +
           "</dict></plist>";
}

class InstalledAppsTests : public ::testing::Test {
protected:
    void bundle(const std::string& path, const std::string& identifier) {
        info(path, infoList("<key>CFBundleIdentifier</key><string>" + identifier + "</string>"));
    }
    void info(const std::string& path, const std::string& text) {
        temp.file(path + "/Contents/Info.plist", {.text = text});
    }
    Identifiers found() { return InstalledApps::bundleIdentifiers({temp.path("one"), temp.path("two")}); }

    TempFolder temp;
};

TEST_F(InstalledAppsTests, looksInFourFoldersInOrder) {
    EXPECT_EQ(InstalledApps::applicationRoots(),
              (std::vector<std::string>{"/Applications", "/Applications/Utilities",
                                        Platform::homeFolder() + "/Applications", "/System/Applications"}));
}

TEST_F(InstalledAppsTests, collectsTheApplicationsOfEveryRoot) {
    bundle("one/A.app", "com.contoh.a");
    bundle("one/B.app", "com.contoh.b");
    bundle("two/C.app", "com.contoh.c");
    bundle("elsewhere/D.app", "com.contoh.d");
    EXPECT_EQ(found(), (Identifiers{"com.contoh.a", "com.contoh.b", "com.contoh.c"}));
}

TEST_F(InstalledAppsTests, aMissingRootIsEmpty) {
    bundle("two/A.app", "com.contoh.a");
    EXPECT_EQ(found(), (Identifiers{"com.contoh.a"}));
    EXPECT_EQ(InstalledApps::bundleIdentifiers({temp.path("missing")}), Identifiers());
    EXPECT_EQ(InstalledApps::bundleIdentifiers({}), Identifiers());
}

TEST_F(InstalledAppsTests, readsABinaryInfoList) {
    info("one/A.app", textOf(KORVANTI_TEST_DATA "/Info-binary.plist"));
    EXPECT_EQ(found(), (Identifiers{"com.contoh.Catatan"}));
}

TEST_F(InstalledAppsTests, onlyTheExtensionAppInSmallLettersMakesAnApplication) {
    bundle("one/A.app", "com.contoh.a");
    bundle("one/B.APP", "com.contoh.b");
    bundle("one/C.bundle", "com.contoh.c");
    bundle("one/D", "com.contoh.d");
    bundle("one/.app", "com.contoh.e");
    bundle("one/app", "com.contoh.f");
    bundle("one/.G.app", "com.contoh.g");
    EXPECT_EQ(found(), (Identifiers{"com.contoh.a", "com.contoh.g"}));
}

TEST_F(InstalledAppsTests, anApplicationInAFolderOfARootIsNotSeen) {
    bundle("one/Folder/A.app", "com.contoh.a");
    EXPECT_EQ(found(), Identifiers());
}

TEST_F(InstalledAppsTests, collectsTheBundlesInsideAnApplication) {
    bundle("one/A.app", "com.contoh.a");
    bundle("one/A.app/Contents/PlugIns/Share.appex", "com.contoh.a.share");
    bundle("one/A.app/Contents/Library/LoginItems/Start.app", "com.contoh.a.start");
    bundle("one/A.app/Contents/Helpers/Helper", "com.contoh.a.helper");
    bundle("one/A.app/Contents/Frameworks/Renderer.framework", "com.contoh.a.renderer");
    EXPECT_EQ(found(), (Identifiers{"com.contoh.a", "com.contoh.a.share", "com.contoh.a.start",
                                    "com.contoh.a.helper", "com.contoh.a.renderer"}));
}

TEST_F(InstalledAppsTests, bundlesElsewhereInsideAnApplicationAreNotSeen) {
    bundle("one/A.app/Contents/XPCServices/Service.xpc", "com.contoh.a.service");
    bundle("one/A.app/Contents/PlugIns/Share.appex/Contents/PlugIns/Inner.appex", "com.contoh.a.inner");
    bundle("one/A.app/PlugIns/Share.appex", "com.contoh.a.share");
    EXPECT_EQ(found(), Identifiers());
}

TEST_F(InstalledAppsTests, anApplicationWithoutAListStillShowsWhatIsInside) {
    temp.folder("one/A.app/Contents");
    bundle("one/A.app/Contents/Helpers/Helper.app", "com.contoh.a.helper");
    EXPECT_EQ(found(), (Identifiers{"com.contoh.a.helper"}));
}

TEST_F(InstalledAppsTests, followsLinks) {
    bundle("elsewhere/A.app", "com.contoh.a");
    bundle("elsewhere/Helpers/Helper.app", "com.contoh.b");
    bundle("elsewhere/C.app", "com.contoh.c");
    temp.symlink("one/Linked.app", temp.path("elsewhere/A.app"));
    temp.symlink("one/B.app/Contents/Helpers", temp.path("elsewhere/Helpers"));
    temp.symlink("one/C.app/Contents/Info.plist", temp.path("elsewhere/C.app/Contents/Info.plist"));
    temp.symlink("one/Dangling.app", temp.path("nowhere"));
    EXPECT_EQ(found(), (Identifiers{"com.contoh.a", "com.contoh.b", "com.contoh.c"}));
}

TEST_F(InstalledAppsTests, aDamagedListIsSkipped) {
    bundle("one/A.app", "com.contoh.a");
    info("one/B.app", "<plist><dict><key>CFBundleIdentifier</key><string>com.contoh.b</string>");
    info("one/C.app", "bplist00nonsense");
    info("one/D.app", "");
    temp.folder("one/E.app/Contents/Info.plist");
    temp.file("one/F.app");
    EXPECT_EQ(found(), (Identifiers{"com.contoh.a"}));
}

TEST_F(InstalledAppsTests, anIdentifierThatIsNoTextDoesNotCount) {
    info("one/A.app", infoList("<key>CFBundleIdentifier</key><integer>1</integer>"));
    info("one/B.app", infoList("<key>CFBundleIdentifier</key><array><string>com.contoh.b</string></array>"));
    info("one/C.app", infoList("<key>CFBundleName</key><string>com.contoh.c</string>"));
    info("one/D.app", "<plist><string>com.contoh.d</string></plist>");
    EXPECT_EQ(found(), Identifiers());
}

TEST_F(InstalledAppsTests, oneIdentifierOfSeveralBundlesCountsOnce) {
    bundle("one/A.app", "com.contoh.a");
    bundle("two/Copy.app", "com.contoh.a");
    bundle("two/Other.app", "com.contoh.A");
    EXPECT_EQ(found(), (Identifiers{"com.contoh.a", "com.contoh.A"}));
}

TEST_F(InstalledAppsTests, eachCallReadsAnew) {
    bundle("one/A.app", "com.contoh.a");
    EXPECT_EQ(found(), (Identifiers{"com.contoh.a"}));
    bundle("one/A.app", "com.contoh.new");
    EXPECT_EQ(found(), (Identifiers{"com.contoh.new"}));
}

// The tables

TEST(AppRulesTests, knowsTheWorkPrefixes) {
    const Paths expected = {"com.apple.dt.",
                            "com.apple.TestFlight",
                            "com.apple.Simulator",
                            "com.apple.iconcomposer",
                            "com.apple.SFSymbols",
                            "com.google.android.studio",
                            "com.jetbrains.",
                            "com.microsoft.VSCode",
                            "com.todesktop.",
                            "com.exafunction.windsurf",
                            "com.google.antigravity",
                            "com.anthropic.",
                            "com.openai.",
                            "com.docker.",
                            "com.postmanlabs.",
                            "com.figma.",
                            "com.github.",
                            "com.googlecode.iterm2",
                            "dev.warp.",
                            "com.mitchellh.ghostty",
                            "com.proxyman.",
                            "com.charlesproxy.",
                            "com.tinyapp.TablePlus",
                            "com.cloudflare.",
                            "com.google.Chrome",
                            "com.brave.",
                            "org.mozilla.firefox",
                            "com.google.drivefs",
                            "com.mirovantel.",
                            "space.zendrask.",
                            "app.zendrask.",
                            "id.mirovantel.",
                            "com.sublimetext.",
                            "com.panic.",
                            "com.raycast.",
                            "com.1password.",
                            "com.bitwarden.",
                            "com.microsoft.Word",
                            "com.microsoft.Excel",
                            "com.microsoft.Powerpoint",
                            "com.apple.iWork.",
                            "com.adobe.",
                            "com.canva.",
                            "com.notion."};
    EXPECT_THAT(AppRules::workPrefixes, ElementsAreArray(expected));
    for (const auto& prefix : expected)
        EXPECT_EQ(InstalledApps::classify("Alat", prefix + "x", "public.app-category.games"),
                  (InstalledApps::Classification{AppRole::work, "Tool kerja"}))
            << prefix;
}

TEST(AppRulesTests, knowsTheCommunicationPrefixes) {
    const Paths expected = {"net.whatsapp.",         "ru.keepcoder.Telegram",
                            "com.tdesktop.Telegram", "com.tinyspeck.slackmacgap",
                            "com.hnc.Discord",       "us.zoom.",
                            "com.microsoft.teams",   "org.whispersystems.signal",
                            "jp.naver.line",         "com.skype."};
    EXPECT_THAT(AppRules::communicationPrefixes, ElementsAreArray(expected));
    for (const auto& prefix : expected)
        EXPECT_EQ(InstalledApps::classify("Steam", prefix + "x", "public.app-category.games"),
                  (InstalledApps::Classification{AppRole::communication, "App komunikasi"}))
            << prefix;
}

TEST(AppRulesTests, knowsTheLeisureNames) {
    const Paths expected = {"steam",
                            "dota",
                            "roblox",
                            "minecraft",
                            "epic games",
                            "battle.net",
                            "league of legends",
                            "valorant",
                            "genshin",
                            "spotify",
                            "netflix",
                            "insaquarium",
                            "safe exam browser",
                            "plants vs",
                            "among us",
                            "fortnite",
                            "garena"};
    EXPECT_THAT(AppRules::leisureNames, ElementsAreArray(expected));
    for (const auto& name : expected)
        EXPECT_EQ(InstalledApps::classify("My " + name + " 2", "com.contoh.a", "public.app-category.kids"),
                  (InstalledApps::Classification{AppRole::nonWork, "Game/hiburan"}))
            << name;
}

TEST(AppRulesTests, knowsTheLeisureCategories) {
    const Paths expected = {"games",     "entertainment",     "music",     "sports",
                            "lifestyle", "social-networking", "education", "kids"};
    EXPECT_THAT(AppRules::leisureCategories, ElementsAreArray(expected));
    for (const auto& category : expected)
        EXPECT_EQ(InstalledApps::classify("A", std::nullopt, "public.app-category." + category),
                  (InstalledApps::Classification{AppRole::nonWork, "Kategori " + category}));
}

TEST(AppRulesTests, knowsTheSharedNames) {
    EXPECT_THAT(AppRules::sharedNames,
                ElementsAre("google", "microsoft", "apple", "adobe", "jetbrains", "mozilla", "oracle",
                            "caches", "cache", "logs", "data", "app"));
}

TEST(AppRulesTests, knowsTheUsersOwnFolders) {
    EXPECT_THAT(AppRules::personalFolders,
                ElementsAre("Application Support/AddressBook", "Application Support/CallHistoryDB",
                            "Application Support/CloudDocs", "Application Support/MobileSync"));
}

TEST(AppRulesTests, knowsTheKindOfEachLocation) {
    const auto kind = [](const std::string& folder) {
        return InstalledApps::kindOfLocation("/Users/ani/Library/" + folder + "/com.contoh.a");
    };
    EXPECT_EQ(kind("Application Support"), "Data aplikasi");
    EXPECT_EQ(kind("Caches"), "Cache");
    EXPECT_EQ(kind("Containers"), "Container (data & pengaturan)");
    EXPECT_EQ(kind("Group Containers"), "Data bersama");
    EXPECT_EQ(kind("Logs"), "Log");
    EXPECT_EQ(kind("Saved Application State"), "Status jendela");
    EXPECT_EQ(kind("HTTPStorages"), "Data web");
    EXPECT_EQ(kind("WebKit"), "Data web");
    EXPECT_EQ(kind("Cookies"), "Data web");
    EXPECT_EQ(kind("Application Scripts"), "Skrip");
    EXPECT_EQ(kind("Lain-lain"), "Lain-lain");
    EXPECT_EQ(kind("caches"), "caches");
    EXPECT_EQ(AppRules::kindsOfLocations.size(), 10U);
}

// What an application is for

TEST(ClassifyTests, aWorkPrefixCountsWithItsCaseAndAtTheBeginningOnly) {
    for (const auto* identifier : {"com.Docker.x", "x.com.docker.x", "com.docker", ""})
        EXPECT_EQ(InstalledApps::classify("Alat", identifier, std::nullopt).role, AppRole::other)
            << identifier;
}

TEST(ClassifyTests, aNameWithZendraskIsWorkInAnyCase) {
    const InstalledApps::Classification work{AppRole::work, "Tool kerja"};
    EXPECT_EQ(InstalledApps::classify("My ZENDRASK Steam", "us.zoom.x", "public.app-category.games"), work);
    EXPECT_EQ(InstalledApps::classify("zendrask", std::nullopt, std::nullopt), work);
    EXPECT_EQ(InstalledApps::classify("zendras", std::nullopt, std::nullopt).role, AppRole::other);
}

TEST(ClassifyTests, aLeisureNameCountsInAnyCaseAndAnywhere) {
    EXPECT_EQ(InstalledApps::classify("The Safe Exam BROWSER", "org.safeexambrowser.SEB", std::nullopt),
              (InstalledApps::Classification{AppRole::nonWork, "Game/hiburan"}));
}

TEST(ClassifyTests, aLeisureCategoryCountsWithItsCase) {
    EXPECT_EQ(InstalledApps::classify("A", std::nullopt, "public.app-category.Games"),
              (InstalledApps::Classification{AppRole::other, "Kategori Games"}));
    EXPECT_EQ(InstalledApps::classify("A", std::nullopt, "public.app-category.action-games"),
              (InstalledApps::Classification{AppRole::nonWork, "Kategori action-games"}));
    EXPECT_EQ(InstalledApps::classify("A", std::nullopt, "music"),
              (InstalledApps::Classification{AppRole::nonWork, "Kategori music"}));
}

TEST(ClassifyTests, anApplicationOfTheSystemWithALeisureCategoryIsNonWork) {
    EXPECT_EQ(InstalledApps::classify("Chess", "com.apple.Chess", "public.app-category.board-games"),
              (InstalledApps::Classification{AppRole::nonWork, "Kategori board-games"}));
}

TEST(ClassifyTests, anApplicationOfTheSystemIsToldByItsIdentifier) {
    const InstalledApps::Classification system{AppRole::system, "Bawaan macOS"};
    EXPECT_EQ(InstalledApps::classify("Safari", "com.apple.Safari", std::nullopt), system);
    EXPECT_EQ(InstalledApps::classify("Alat", "com.apple.a", "public.app-category.developer-tools"), system);
    EXPECT_EQ(InstalledApps::classify("A", "com.applex", std::nullopt).role, AppRole::other);
}

TEST(ClassifyTests, withoutACategoryItIsAnother) {
    EXPECT_EQ(InstalledApps::classify("A", "com.contoh.a", std::nullopt),
              (InstalledApps::Classification{AppRole::other, "Tanpa kategori"}));
    EXPECT_EQ(InstalledApps::classify("A", std::nullopt, std::nullopt),
              (InstalledApps::Classification{AppRole::other, "Tanpa kategori"}));
}

TEST(ClassifyTests, aDeveloperToolIsWork) {
    EXPECT_EQ(InstalledApps::classify("A", "com.contoh.a", "public.app-category.developer-tools"),
              (InstalledApps::Classification{AppRole::work, "Tool developer"}));
}

TEST(ClassifyTests, anyOtherCategoryIsTheReason) {
    EXPECT_EQ(InstalledApps::classify("A", "com.contoh.a", "public.app-category.utilities"),
              (InstalledApps::Classification{AppRole::other, "Kategori utilities"}));
    EXPECT_EQ(InstalledApps::classify("A", "com.contoh.a", ""),
              (InstalledApps::Classification{AppRole::other, "Kategori "}));
}

// Whether to remove it

constexpr std::int64_t day = 86'400;
const Instant now = instantFromSeconds(1'794'768'179); // 2026-11-15T18:42:59Z

Instant daysAgo(std::int64_t days, std::int64_t seconds = 0) {
    return instantFromSeconds(1'794'768'179 - days * day - seconds);
}

class AdviseTests : public ::testing::Test {
protected:
    static InstalledApps::Advice advise(const InstalledApp& app) { return InstalledApps::advise(app, now); }
    static InstalledApps::Advice yes(std::string advice) { return {true, std::move(advice)}; }
    static InstalledApps::Advice no(std::string advice) { return {false, std::move(advice)}; }

    ScopedVariable language{"LC_ALL", "C"};
    ScopedVariable zone{"TZ", "UTC"};
};

TEST_F(AdviseTests, oneOfTheSystemStaysEvenWhenItRuns) {
    EXPECT_EQ(advise({.lastUsed = daysAgo(1000), .role = AppRole::system}), no("Bawaan macOS"));
    EXPECT_EQ(advise({.role = AppRole::system, .isRunning = true}), no("Bawaan macOS"));
}

TEST_F(AdviseTests, oneThatRunsStaysWhateverItsIdleTime) {
    for (const AppRole role : {AppRole::work, AppRole::communication, AppRole::nonWork, AppRole::other}) {
        EXPECT_EQ(advise({.bytes = 200'000'000, .lastUsed = daysAgo(1000), .role = role, .isRunning = true}),
                  no("Sedang berjalan, jadi masih dipakai."));
        EXPECT_EQ(advise({.bytes = 200'000'000, .role = role, .isRunning = true}),
                  no("Sedang berjalan, jadi masih dipakai."));
    }
}

TEST_F(AdviseTests, leisureGoesAfter31Days) {
    EXPECT_EQ(advise({.bytes = 12'300'000, .lastUsed = daysAgo(31), .role = AppRole::nonWork}),
              yes("Bukan app kerja, dibuka terakhir 1 bulan yang lalu. Hapus untuk membebaskan 12.3 MB."));
    EXPECT_EQ(advise({.bytes = 12'300'000, .lastUsed = daysAgo(31, -1), .role = AppRole::nonWork}),
              no("Masih dipakai, dibuka terakhir 4 minggu yang lalu."));
    EXPECT_EQ(advise({.bytes = 12'300'000, .lastUsed = daysAgo(30), .role = AppRole::nonWork}),
              no("Masih dipakai, dibuka terakhir 4 minggu yang lalu."));
}

TEST_F(AdviseTests, leisureUnusedForLongerIsStillToldAsLeisure) {
    EXPECT_EQ(advise({.lastUsed = daysAgo(400), .role = AppRole::nonWork}),
              yes("Bukan app kerja, dibuka terakhir 1 tahun yang lalu. Hapus untuk membebaskan 0 bytes."));
}

TEST_F(AdviseTests, anyOtherRoleGoesAfter181Days) {
    for (const AppRole role : {AppRole::work, AppRole::communication, AppRole::other})
        EXPECT_EQ(advise({.bytes = 12'300'000, .lastUsed = daysAgo(181), .role = role}),
                  yes("Tidak dibuka lebih dari 6 bulan. Hapus untuk membebaskan 12.3 MB."));
}

TEST_F(AdviseTests, workAndCommunicationStayFor180Days) {
    for (const AppRole role : {AppRole::work, AppRole::communication}) {
        EXPECT_EQ(advise({.lastUsed = daysAgo(180), .role = role}),
                  no("Masih dipakai, dibuka terakhir 5 bulan yang lalu."));
        EXPECT_EQ(advise({.lastUsed = daysAgo(181, -1), .role = role}),
                  no("Masih dipakai, dibuka terakhir 5 bulan yang lalu."));
    }
}

TEST_F(AdviseTests, anotherGoesAfter91Days) {
    EXPECT_EQ(advise({.bytes = 12'300'000, .lastUsed = daysAgo(91), .role = AppRole::other}),
              yes("Tidak dibuka 3 bulan terakhir. Hapus untuk membebaskan 12.3 MB."));
    EXPECT_EQ(advise({.bytes = 12'300'000, .lastUsed = daysAgo(180), .role = AppRole::other}),
              yes("Tidak dibuka 3 bulan terakhir. Hapus untuk membebaskan 12.3 MB."));
    EXPECT_EQ(advise({.lastUsed = daysAgo(90), .role = AppRole::other}),
              no("Masih dipakai, dibuka terakhir 2 bulan yang lalu."));
    EXPECT_EQ(advise({.lastUsed = daysAgo(91, -1), .role = AppRole::other}),
              no("Masih dipakai, dibuka terakhir 2 bulan yang lalu."));
}

TEST_F(AdviseTests, leisureWithoutASignOfUseGoes) {
    EXPECT_EQ(advise({.bytes = 1'000, .role = AppRole::nonWork, .isBackgroundAgent = true}),
              yes("Bukan app kerja, tidak tercatat pernah dibuka. Hapus untuk membebaskan 1 KB."));
}

TEST_F(AdviseTests, anotherWithoutASignOfUseGoesWhenItIsLarge) {
    EXPECT_EQ(advise({.bytes = 100'000'000, .role = AppRole::other}),
              yes("Tidak tercatat pernah dibuka. Hapus untuk membebaskan 100 MB."));
    EXPECT_EQ(advise({.bytes = 99'999'999, .role = AppRole::other}),
              no("Masih dipakai, tidak tercatat pernah dibuka."));
}

TEST_F(AdviseTests, theDataCountsForTheSize) {
    EXPECT_EQ(advise({.bytes = 60'000'000, .data = {{.bytes = 40'000'000}}, .role = AppRole::other}),
              yes("Tidak tercatat pernah dibuka. Hapus untuk membebaskan 100 MB."));
    EXPECT_EQ(advise({.bytes = 60'000'000, .data = {{.bytes = 39'999'999}}, .role = AppRole::other}),
              no("Masih dipakai, tidak tercatat pernah dibuka."));
}

TEST_F(AdviseTests, aBackgroundAgentWithoutASignOfUseStays) {
    EXPECT_EQ(advise({.bytes = 100'000'000, .role = AppRole::other, .isBackgroundAgent = true}),
              no("Masih dipakai, tidak tercatat pernah dibuka."));
}

TEST_F(AdviseTests, aBackgroundAgentGoesAfter91DaysLikeAnyOther) {
    EXPECT_TRUE(
        advise({.lastUsed = daysAgo(91), .role = AppRole::other, .isBackgroundAgent = true}).suggested);
}

TEST_F(AdviseTests, workAndCommunicationWithoutASignOfUseStay) {
    for (const AppRole role : {AppRole::work, AppRole::communication})
        EXPECT_EQ(advise({.bytes = 200'000'000, .role = role}),
                  no("Masih dipakai, tidak tercatat pernah dibuka."));
}

TEST_F(AdviseTests, tellsHowOftenItWasOpened) {
    EXPECT_EQ(
        advise({.lastUsed = daysAgo(31), .useCount = 7, .role = AppRole::nonWork}).advice,
        "Bukan app kerja, dibuka terakhir 1 bulan yang lalu · dibuka 7×. Hapus untuk membebaskan 0 bytes.");
    EXPECT_EQ(advise({.useCount = 7, .role = AppRole::nonWork}).advice,
              "Bukan app kerja, tidak tercatat pernah dibuka · dibuka 7×. Hapus untuk membebaskan 0 bytes.");
    EXPECT_EQ(advise({.lastUsed = daysAgo(181), .useCount = 0, .role = AppRole::work}).advice,
              "Tidak dibuka lebih dari 6 bulan · dibuka 0×. Hapus untuk membebaskan 0 bytes.");
    EXPECT_EQ(advise({.lastUsed = daysAgo(91), .useCount = 1, .role = AppRole::other}).advice,
              "Tidak dibuka 3 bulan terakhir · dibuka 1×. Hapus untuk membebaskan 0 bytes.");
    EXPECT_EQ(advise({.lastUsed = daysAgo(3), .useCount = 1234, .role = AppRole::other}).advice,
              "Masih dipakai, dibuka terakhir 3 hari yang lalu · dibuka 1234×.");
}

TEST_F(AdviseTests, doesNotTellHowOftenWhereNoUseIsKnown) {
    EXPECT_EQ(advise({.bytes = 100'000'000, .useCount = 7, .role = AppRole::other}).advice,
              "Tidak tercatat pernah dibuka. Hapus untuk membebaskan 100 MB.");
}

TEST_F(AdviseTests, tellsOfTheChangeOfDataWhereThatIsLater) {
    EXPECT_EQ(advise({.lastUsed = daysAgo(40), .role = AppRole::work, .dataActivity = daysAgo(3)}).advice,
              "Masih dipakai, datanya terakhir berubah 3 hari yang lalu.");
    EXPECT_EQ(
        advise({.role = AppRole::nonWork, .dataActivity = daysAgo(31)}).advice,
        "Bukan app kerja, datanya terakhir berubah 1 bulan yang lalu. Hapus untuk membebaskan 0 bytes.");
}

TEST_F(AdviseTests, tellsOfTheOpeningWhereThatIsNotEarlier) {
    EXPECT_EQ(advise({.lastUsed = daysAgo(3), .role = AppRole::work, .dataActivity = daysAgo(40)}).advice,
              "Masih dipakai, dibuka terakhir 3 hari yang lalu.");
    EXPECT_EQ(advise({.lastUsed = daysAgo(3), .role = AppRole::work, .dataActivity = daysAgo(3)}).advice,
              "Masih dipakai, dibuka terakhir 3 hari yang lalu.");
}

TEST_F(AdviseTests, aChangeOfDataKeepsAnApplicationAsAnOpeningDoes) {
    EXPECT_FALSE(
        advise({.lastUsed = daysAgo(400), .role = AppRole::nonWork, .dataActivity = daysAgo(30)}).suggested);
    EXPECT_TRUE(
        advise({.lastUsed = daysAgo(400), .role = AppRole::nonWork, .dataActivity = daysAgo(31)}).suggested);
}

TEST_F(AdviseTests, anActivityInTheFutureSuggestsNothing) {
    for (const AppRole role : {AppRole::work, AppRole::nonWork, AppRole::other})
        EXPECT_EQ(advise({.bytes = 200'000'000, .lastUsed = daysAgo(-200), .role = role}),
                  no("Masih dipakai, dibuka terakhir dalam 6 bulan."));
}

TEST_F(AdviseTests, doesNotReadWhatWasAdvisedBefore) {
    EXPECT_EQ(advise({.role = AppRole::system, .suggested = true, .advice = "lama"}), no("Bawaan macOS"));
}

TEST_F(AdviseTests, writesSizesInTheLanguageOfTheSystem) {
    const ScopedVariable indonesian("LC_ALL", "id_ID.UTF-8");
    EXPECT_EQ(advise({.bytes = 12'300'000, .lastUsed = daysAgo(181)}).advice,
              "Tidak dibuka lebih dari 6 bulan. Hapus untuk membebaskan 12,3 MB.");
}

// Where an application keeps its data

class DataLocationsTests : public ::testing::Test {
protected:
    /// Relative to the library.
    [[nodiscard]] Paths found(const std::optional<std::string>& identifier, const std::string& name) const {
        Paths relative;
        const auto library = home.path("Library") + "/";
        for (const auto& path : InstalledApps::dataLocations(identifier, name, home.path())) {
            EXPECT_TRUE(path.starts_with(library)) << path;
            relative.push_back(path.substr(library.size()));
        }
        return relative;
    }
    void put(const Paths& folders) const {
        for (const auto& folder : folders)
            home.folder("Library/" + folder);
    }

    TempFolder home;
};

TEST_F(DataLocationsTests, findsEachPlaceOfAnIdentifierAndOfANameInOrder) {
    const Paths all = {"Application Support/com.contoh.a",
                       "Caches/com.contoh.a",
                       "Containers/com.contoh.a",
                       "HTTPStorages/com.contoh.a",
                       "WebKit/com.contoh.a",
                       "Logs/com.contoh.a",
                       "Application Scripts/com.contoh.a",
                       "Saved Application State/com.contoh.a.savedState",
                       "HTTPStorages/com.contoh.a.binarycookies",
                       "Cookies/com.contoh.a.binarycookies",
                       "Containers/com.contoh.a.share",
                       "Group Containers/group.com.contoh.a",
                       "Application Support/Catatan",
                       "Caches/Catatan",
                       "Logs/Catatan"};
    put(all);
    EXPECT_EQ(found("com.contoh.a", "Catatan"), all);
}

TEST_F(DataLocationsTests, aLibraryWithNothingOfItGivesNothing) {
    EXPECT_THAT(found("com.contoh.a", "Catatan"), IsEmpty());
    put({"Caches/com.contoh.b", "Caches/Lain", "Preferences/com.contoh.a", "WebKit/Catatan",
         "Containers/Catatan", "com.contoh.a"});
    EXPECT_THAT(found("com.contoh.a", "Catatan"), IsEmpty());
}

TEST_F(DataLocationsTests, filesAndDanglingLinksAreLocationsToo) {
    home.file("Library/Caches/com.contoh.a");
    home.symlink("Library/Logs/Catatan", "/no/such");
    EXPECT_THAT(found("com.contoh.a", "Catatan"), ElementsAre("Caches/com.contoh.a", "Logs/Catatan"));
}

TEST_F(DataLocationsTests, findsTheContainersOfTheParts) {
    put({"Containers/com.contoh.a.share", "Containers/com.contoh.a.b.c", "Containers/com.contoh.ab",
         "Containers/x.com.contoh.a.share", "Containers/com.contoh.A.share"});
    EXPECT_THAT(found("com.contoh.a", ""),
                UnorderedElementsAre("Containers/com.contoh.a.share", "Containers/com.contoh.a.b.c"));
}

TEST_F(DataLocationsTests, findsTheGroupsOfAnIdentifier) {
    put({"Group Containers/com.contoh.a", "Group Containers/TEAM.com.contoh.a",
         "Group Containers/group.com.contoh.a", "Group Containers/group.com.contoh.ab",
         "Group Containers/group.com.contoh.a.shared", "Group Containers/TEAM.com.contoh.a.shared"});
    EXPECT_THAT(found("com.contoh.a", ""),
                UnorderedElementsAre("Group Containers/com.contoh.a", "Group Containers/TEAM.com.contoh.a",
                                     "Group Containers/group.com.contoh.a",
                                     "Group Containers/group.com.contoh.ab",
                                     "Group Containers/group.com.contoh.a.shared",
                                     "Group Containers/TEAM.com.contoh.a.shared"));
}

TEST_F(DataLocationsTests, leavesTheGroupsOfOthers) {
    put({"Group Containers/com.contoh.a.shared", "Group Containers/TEAMcom.contoh.a",
         "Group Containers/TEAM.com.contoh.ab", "Group Containers/x.group.com.contoh.ab",
         "Group Containers/group.COM.contoh.a", "Group Containers/com.contoh"});
    EXPECT_THAT(found("com.contoh.a", ""), IsEmpty());
}

TEST_F(DataLocationsTests, anIdentifierWithoutADotGivesOnlyWhatTheNameGives) {
    put({"Caches/catatan", "Containers/catatan.share", "Group Containers/catatan", "Caches/Buku"});
    EXPECT_THAT(found("catatan", "Buku"), ElementsAre("Caches/Buku"));
    EXPECT_THAT(found(std::nullopt, "Buku"), ElementsAre("Caches/Buku"));
    EXPECT_THAT(found("", "Buku"), ElementsAre("Caches/Buku"));
}

TEST_F(DataLocationsTests, aPlaceThatNameAndIdentifierGiveIsListedOnce) {
    put({"Caches/com.contoh.a", "Logs/com.contoh.a"});
    EXPECT_THAT(found("com.contoh.a", "com.contoh.a"),
                ElementsAre("Caches/com.contoh.a", "Logs/com.contoh.a"));
}

TEST_F(DataLocationsTests, aSharedNameIsNoName) {
    for (const std::string name : {"google", "microsoft", "apple", "adobe", "jetbrains", "mozilla", "oracle",
                                   "caches", "cache", "logs", "data", "app", "Google", "DATA", " Data\t"}) {
        put({"Application Support/" + name, "Caches/" + name, "Logs/" + name});
        EXPECT_THAT(found(std::nullopt, name), IsEmpty()) << name;
    }
    put({"Caches/Data", "Caches/Databank"});
    EXPECT_THAT(found(std::nullopt, "Data"), IsEmpty());
    EXPECT_THAT(found(std::nullopt, "Databank"), ElementsAre("Caches/Databank"));
}

TEST_F(DataLocationsTests, aNameHasAtLeastThreeCharacters) {
    put({"Caches/ab", "Caches/abc", "Caches/é\u0301é", "Caches/日本語"});
    EXPECT_THAT(found(std::nullopt, "ab"), IsEmpty());
    EXPECT_THAT(found(std::nullopt, "é\u0301é"), IsEmpty()); // two characters for a person
    EXPECT_THAT(found(std::nullopt, "abc"), ElementsAre("Caches/abc"));
    EXPECT_THAT(found(std::nullopt, "日本語"), ElementsAre("Caches/日本語"));
    EXPECT_THAT(found(std::nullopt, ""), IsEmpty());
    EXPECT_THAT(found(std::nullopt, " ab \t"), IsEmpty());
}

TEST_F(DataLocationsTests, aNameCountsWithoutBlanksAroundItAndInItsOwnCase) {
    put({"Caches/Buku Tulis", "Caches/buku tulis 2"});
    EXPECT_THAT(found(std::nullopt, " \tBuku Tulis "), ElementsAre("Caches/Buku Tulis"));
    EXPECT_THAT(found(std::nullopt, "Buku tulis"), IsEmpty());
}

TEST_F(DataLocationsTests, whatAnApplicationCallsItselfLeadsNowhereElse) {
    put({"Caches/Google/Chrome", "Application Support/Google", "HTTPStorages", "WebKit",
         "Application Scripts"});
    home.folder("Documents");
    for (const auto* name : {"./Google", "Google/.", "Google/", "/Google", "x/../Google", "../Caches/Google",
                             "../../Documents", "Google//Chrome", "..."})
        EXPECT_THAT(found(std::nullopt, name), IsEmpty()) << name;
    for (const auto* identifier : {".", "..", "./", "./.", "../WebKit", "../../Documents", "com.x/../Google"})
        EXPECT_THAT(found(identifier, ""), IsEmpty()) << identifier;
    EXPECT_THAT(found(std::string("./\0.", 4), std::string("Google\0x", 8)), IsEmpty());
}

TEST_F(DataLocationsTests, aNameOfSeveralPartsIsAFolderInAFolder) {
    put({"Caches/Contoh/Catatan"});
    EXPECT_EQ(found(std::nullopt, "Contoh/Catatan"), (Paths{"Caches/Contoh/Catatan"}));
}

TEST_F(DataLocationsTests, aNameDoesNotLeadIntoAFolderThatManyShare) {
    put({"Caches/Google/Chrome", "Application Support/Google/Chrome"});
    EXPECT_THAT(found(std::nullopt, "Google/Chrome"), IsEmpty());
    EXPECT_THAT(found(std::nullopt, "google/Chrome"), IsEmpty());
}

TEST_F(DataLocationsTests, aHomeMayBeWrittenWithASlashBehind) {
    put({"Caches/Buku"});
    EXPECT_EQ(InstalledApps::dataLocations(std::nullopt, "Buku", home.path() + "/"),
              (Paths{home.path("Library/Caches/Buku")}));
}

// The whole list

class ListTests : public ::testing::Test {
protected:
    using Keys = std::vector<std::pair<std::string, std::string>>;

    /// The values are elements of an XML property list.
    std::string application(const std::string& path, const Keys& keys) const {
        std::string dictionary;
        for (const auto& [key, value] : keys)
            dictionary += "<key>" + key + "</key>" + value;
        temp.file(path + "/Contents/Info.plist", {.text = infoList(dictionary)});
        return temp.path(path);
    }
    std::string application(const std::string& path, const std::string& identifier) const {
        return application(path, {{"CFBundleIdentifier", "<string>" + identifier + "</string>"}});
    }
    [[nodiscard]] std::vector<InstalledApp> list(InstalledApps::ListOptions options = {}) const {
        SizeLedger sizes;
        return InstalledApps::list({temp.path("one"), temp.path("two")}, temp.path("home"), now, sizes,
                                   options);
    }
    /// The one application that there is.
    [[nodiscard]] InstalledApp only(InstalledApps::ListOptions options = {}) const {
        auto apps = list(options);
        EXPECT_THAT(apps, SizeIs(1));
        return apps.empty() ? InstalledApp() : std::move(apps.front());
    }
    [[nodiscard]] Paths names() const {
        Paths names;
        std::ranges::transform(list(), std::back_inserter(names), &InstalledApp::name);
        return names;
    }
    std::string data(const std::string& path, const TempFolder::File& contents) const {
        return temp.file("home/Library/" + path, contents);
    }
    [[nodiscard]] std::string library(const std::string& path) const {
        return temp.path("home/Library/" + path);
    }
    static Paths places(const InstalledApp& app) {
        Paths places;
        std::ranges::transform(app.data, std::back_inserter(places), &AppDataLocation::path);
        return places;
    }

    TempFolder temp;
};

TEST_F(ListTests, aMacWithoutApplicationsHasNone) {
    EXPECT_THAT(list(), IsEmpty());
    temp.folder("one");
    EXPECT_THAT(list(), IsEmpty());
}

TEST_F(ListTests, listsTheApplicationsDirectlyInEachRoot) {
    application("one/A.app", "com.contoh.a");
    application("two/B.app", "com.contoh.b");
    application("one/Folder/C.app", "com.contoh.c");
    application("one/D.APP", "com.contoh.d");
    application("one/E.bundle", "com.contoh.e");
    application("three/F.app", "com.contoh.f");
    temp.file("one/file.app");
    EXPECT_THAT(names(), UnorderedElementsAre("A", "B", "file"));
}

TEST_F(ListTests, anApplicationThatIsALinkIsLeftOutButItsIdentifierIsKnown) {
    application("elsewhere/A.app", "com.contoh.a");
    temp.symlink("one/A.app", temp.path("elsewhere/A.app"));
    temp.symlink("one/Dangling.app", "/no/such.app");
    EXPECT_THAT(list(), IsEmpty());
    EXPECT_EQ(InstalledApps::bundleIdentifiers({temp.path("one")}), (Identifiers{"com.contoh.a"}));
}

TEST_F(ListTests, readsWhatTheBundleTells) {
    const auto path =
        application("one/Berkas.app",
                    {{"CFBundleDisplayName", "<string>Catatan</string>"},
                     {"CFBundleIdentifier", "<string>com.contoh.catatan</string>"},
                     {"CFBundleExecutable", "<string>catatan-bin</string>"},
                     {"CFBundleShortVersionString", "<string>1.2.3</string>"},
                     {"CFBundleName", "<string>Lain</string>"},
                     {"CFBundleVersion", "<string>77</string>"},
                     {"LSApplicationCategoryType", "<string>public.app-category.productivity</string>"}});
    const auto app = only();
    EXPECT_EQ(app.name, "Catatan");
    EXPECT_EQ(app.path, path);
    EXPECT_EQ(app.bundleID, "com.contoh.catatan");
    EXPECT_EQ(app.executable, "catatan-bin");
    EXPECT_EQ(app.version, "1.2.3");
    EXPECT_EQ(app.categoryType, "public.app-category.productivity");
    EXPECT_EQ(app.role, AppRole::other);
    EXPECT_EQ(app.reason, "Kategori productivity");
    EXPECT_FALSE(app.fromAppStore);
    EXPECT_FALSE(app.isRunning);
    EXPECT_FALSE(app.isBackgroundAgent);
    EXPECT_FALSE(app.suggested);
    EXPECT_EQ(app.advice, "Masih dipakai, tidak tercatat pernah dibuka.");
}

TEST_F(ListTests, whatIsNoTextIsNotRead) {
    application("one/Berkas.app", {{"CFBundleDisplayName", "<integer>1</integer>"},
                                   {"CFBundleIdentifier", "<true/>"},
                                   {"CFBundleExecutable", "<array/>"},
                                   {"CFBundleShortVersionString", "<real>1.2</real>"},
                                   {"LSApplicationCategoryType", "<dict/>"}});
    const auto app = only();
    EXPECT_EQ(app.name, "Berkas");
    EXPECT_EQ(app.bundleID, std::nullopt);
    EXPECT_EQ(app.executable, std::nullopt);
    EXPECT_EQ(app.version, std::nullopt);
    EXPECT_EQ(app.categoryType, std::nullopt);
    EXPECT_EQ(app.reason, "Tanpa kategori");
}

TEST_F(ListTests, anApplicationWithoutAReadableListGoesByItsFileName) {
    temp.folder("one/Buku.app/Contents/Info.plist");
    data("Caches/Buku/file", {.allocatedBytes = 4096});
    data("Caches/com.contoh.buku/file", {.allocatedBytes = 4096});
    const auto app = only();
    EXPECT_EQ(app.name, "Buku");
    EXPECT_EQ(app.bundleID, std::nullopt);
    EXPECT_EQ(app.role, AppRole::other);
    EXPECT_EQ(app.reason, "Tanpa kategori");
    EXPECT_FALSE(app.isBackgroundAgent);
    ASSERT_THAT(app.data, SizeIs(1));
    EXPECT_EQ(app.data[0].path, library("Caches/Buku"));
}

TEST_F(ListTests, aListBeyondAnyMeasureCountsAsAbsent) {
    temp.file("one/Buku.app/Contents/Info.plist",
              {.text = infoList("<key>CFBundleIdentifier</key><string>com.contoh.a</string>"),
               .sparseBytes = 500'000'000});
    EXPECT_EQ(only().bundleID, std::nullopt);
}

TEST_F(ListTests, aDamagedListAndALinkToNothingCountAsAbsent) {
    temp.file("one/A.app/Contents/Info.plist", {.text = "bplist00nonsense"});
    temp.symlink("one/B.app/Contents/Info.plist", "/no/such");
    for (const auto& app : list())
        EXPECT_EQ(app.bundleID, std::nullopt);
}

TEST_F(ListTests, aNameThatIsNotUtf8IsAName) {
    application("one/\xff\xfe.app", "com.contoh.a");
    const auto app = only();
    EXPECT_EQ(app.name, "\xff\xfe");
    EXPECT_EQ(app.path, temp.path("one/\xff\xfe.app"));
}

TEST_F(ListTests, aReceiptMeansTheStore) {
    application("one/A.app", "com.contoh.a");
    temp.folder("one/A.app/Contents/_MASReceipt");
    EXPECT_TRUE(only().fromAppStore);
}

TEST_F(ListTests, aReceiptElsewhereMeansNothing) {
    application("one/A.app", "com.contoh.a");
    temp.folder("one/A.app/_MASReceipt");
    EXPECT_FALSE(only().fromAppStore);
}

TEST_F(ListTests, aBackgroundAgentSaysSo) {
    using Key = std::pair<std::string, std::string>;
    for (const auto& key : {Key{"LSUIElement", "<true/>"}, Key{"LSBackgroundOnly", "<true/>"},
                            Key{"LSUIElement", "<string>1</string>"}}) {
        application("one/A.app", {key});
        EXPECT_TRUE(only().isBackgroundAgent) << key.first << key.second;
    }
}

TEST_F(ListTests, nothingElseMakesABackgroundAgent) {
    using Key = std::pair<std::string, std::string>;
    for (const auto& key :
         {Key{"LSUIElement", "<false/>"}, Key{"LSBackgroundOnly", "<false/>"},
          Key{"LSUIElement", "<string>0</string>"}, Key{"LSUIElement", "<string>true</string>"},
          Key{"LSBackgroundOnly", "<string>1</string>"}, Key{"LSUIElement", "<array/>"}}) {
        application("one/A.app", {key});
        EXPECT_FALSE(only().isBackgroundAgent) << key.first << key.second;
    }
}

TEST_F(ListTests, measuresTheBundle) {
    const auto info = application("one/A.app", "com.contoh.a") + "/Contents/Info.plist";
    const auto program = temp.file("one/A.app/Contents/MacOS/a", {.allocatedBytes = 1'000'000});
    EXPECT_EQ(only().bytes, blocksOf(info) + blocksOf(program));
}

TEST_F(ListTests, measuresTheDataLargestFirst) {
    application("one/Catatan.app", "com.contoh.a");
    const auto small = data("Application Support/com.contoh.a/file", {.allocatedBytes = 4096});
    const auto large = data("Containers/com.contoh.a/file", {.allocatedBytes = 40960});
    const auto middle = data("Caches/Catatan/file", {.allocatedBytes = 8192});
    EXPECT_THAT(only().data,
                ElementsAre(AppDataLocation{library("Containers/com.contoh.a"),
                                            "Container (data & pengaturan)", blocksOf(large)},
                            AppDataLocation{library("Caches/Catatan"), "Cache", blocksOf(middle)},
                            AppDataLocation{library("Application Support/com.contoh.a"), "Data aplikasi",
                                            blocksOf(small)}));
}

TEST_F(ListTests, dataOfOneSizeKeepsItsOrder) {
    application("one/Catatan.app", "com.contoh.a");
    for (const auto* folder : {"Logs", "Caches", "Application Support", "WebKit"})
        data(folder + std::string("/com.contoh.a/file"), {.allocatedBytes = 4096});
    Paths kinds;
    std::ranges::transform(only().data, std::back_inserter(kinds), &AppDataLocation::kind);
    EXPECT_THAT(kinds, ElementsAre("Data aplikasi", "Cache", "Data web", "Log"));
}

TEST_F(ListTests, aLocationOfNoBytesIsNotInTheDataButItsChangeCounts) {
    application("one/Catatan.app", "com.contoh.a");
    data("Cookies/com.contoh.a.binarycookies", {.modified = 1'794'000'000});
    data("Caches/com.contoh.a/file", {.allocatedBytes = 4096, .modified = 1'600'000'000});
    temp.setModified("home/Library/Caches/com.contoh.a", 1'600'000'000);
    const auto app = only();
    ASSERT_THAT(app.data, SizeIs(1));
    EXPECT_EQ(app.data[0].path, library("Caches/com.contoh.a"));
    EXPECT_EQ(app.dataActivity, instantFromSeconds(1'794'000'000));
}

TEST_F(ListTests, theActivityIsTheLatestChangeInAnyLocation) {
    application("one/Catatan.app", "com.contoh.a");
    data("Caches/com.contoh.a/deep/file", {.allocatedBytes = 4096, .modified = 1'700'000'000});
    data("Logs/com.contoh.a/file", {.allocatedBytes = 4096, .modified = 1'600'000'000});
    for (const auto* folder : {"Caches/com.contoh.a/deep", "Caches/com.contoh.a", "Logs/com.contoh.a"})
        temp.setModified("home/Library/" + std::string(folder), 1'500'000'000);
    const auto app = only();
    EXPECT_EQ(app.dataActivity, instantFromSeconds(1'700'000'000));
    EXPECT_EQ(app.lastActivity(), instantFromSeconds(1'700'000'000));
    EXPECT_TRUE(app.suggested);
    EXPECT_THAT(app.advice,
                ::testing::StartsWith("Tidak dibuka lebih dari 6 bulan. Hapus untuk membebaskan "));
}

TEST_F(ListTests, theBundleItselfIsNoSignOfUse) {
    application("one/A.app", "com.contoh.a");
    EXPECT_EQ(only().dataActivity, std::nullopt);
}

TEST_F(ListTests, anApplicationOfTheSystemHasNoData) {
    application("one/Safari.app", "com.apple.Safari");
    data("Caches/com.apple.Safari/file", {.allocatedBytes = 4096});
    data("Caches/Safari/file", {.allocatedBytes = 4096});
    const auto app = only();
    EXPECT_THAT(app.data, IsEmpty());
    EXPECT_EQ(app.dataActivity, std::nullopt);
    EXPECT_EQ(app.role, AppRole::system);
    EXPECT_EQ(app.advice, "Bawaan macOS");
}

TEST_F(ListTests, anIdentifierThatIsTheSystemsInAnyCaseHasNoData) {
    for (const auto* identifier : {"com.apple", "COM.Apple", "com.Apple.contoh", "Com.apple.x.y"}) {
        application("one/Catatan.app", identifier);
        data("Containers/com.apple.mail/file", {.allocatedBytes = 4096});
        data("Containers/com.Apple.contoh/file", {.allocatedBytes = 4096});
        data("Caches/" + std::string(identifier) + "/file", {.allocatedBytes = 4096});
        EXPECT_THAT(only().data, IsEmpty()) << identifier;
    }
}

TEST_F(ListTests, whatIsNamedAfterTheSystemIsNoApplicationsData) {
    application("one/com.apple.mail.app", "apple.mail");
    data("Caches/com.apple.mail/file", {.allocatedBytes = 4096});
    data("Group Containers/group.com.apple.mail/file", {.allocatedBytes = 4096});
    data("Group Containers/group.COM.Apple.x.apple.mail/file", {.allocatedBytes = 4096});
    data("Group Containers/TEAM.groups.com.apple.mail/file", {.allocatedBytes = 4096});
    data("Group Containers/com.appleseed.apple.mail/file", {.allocatedBytes = 4096});
    EXPECT_EQ(places(only()), (Paths{library("Group Containers/com.appleseed.apple.mail")}));
}

TEST_F(ListTests, whatALongerIdentifierOfAnotherApplicationNamesIsItsOwn) {
    application("one/Note.app", "id.contoh.Note");
    data("Group Containers/group.id.contoh.Note/file", {.allocatedBytes = 4096});
    data("Group Containers/group.id.contoh.Notebook/file", {.allocatedBytes = 4096});
    data("Group Containers/group.id.contoh.Notebook.share/file", {.allocatedBytes = 4096});
    data("Group Containers/group.id.contoh.Notes/file", {.allocatedBytes = 4096});
    data("Containers/id.contoh.Note.share/file", {.allocatedBytes = 4096});
    data("Containers/id.contoh.Note.pro/file", {.allocatedBytes = 4096});
    data("Containers/id.contoh.Note.PRO.share/file", {.allocatedBytes = 4096});
    data("Containers/id.contoh.Note.professional/file", {.allocatedBytes = 4096});
    const auto all = only().data;
    EXPECT_THAT(all, SizeIs(8));

    application("two/Notebook.app", "ID.contoh.notebook");
    application("two/Pro.app", "id.contoh.Note.pro");
    for (const auto& app : list()) {
        if (app.name == "Note") {
            EXPECT_THAT(places(app), UnorderedElementsAre(library("Group Containers/group.id.contoh.Note"),
                                                          library("Group Containers/group.id.contoh.Notes"),
                                                          library("Containers/id.contoh.Note.share"),
                                                          library("Containers/id.contoh.Note.professional")));
        }
        if (app.name == "Pro") {
            EXPECT_EQ(places(app), (Paths{library("Containers/id.contoh.Note.pro")}));
        }
    }
}

TEST_F(ListTests, aHelperInsideAnApplicationLeavesItItsData) {
    application("one/Note.app", "id.contoh.Note");
    application("one/Note.app/Contents/PlugIns/Share.appex", "id.contoh.Note.share");
    application("two/Note.app", "id.contoh.Note");
    data("Containers/id.contoh.Note.share/file", {.allocatedBytes = 4096});
    for (const auto& app : list())
        EXPECT_THAT(app.data, SizeIs(1)) << app.path;
}

TEST_F(ListTests, aNameThatIsTheIdentifierOfAnotherApplicationGivesNothing) {
    application("one/id.contoh.b.app", "id.contoh.lain");
    application("two/B.app", "id.contoh.b");
    application("two/Tanpa.app", "Catatan");
    application("two/Catatan.app", "id.contoh.c");
    data("Caches/id.contoh.b/file", {.allocatedBytes = 4096});
    data("Caches/Catatan/file", {.allocatedBytes = 4096});
    for (const auto& app : list())
        EXPECT_THAT(app.data, SizeIs(app.name == "B" || app.name == "Catatan" ? 1 : 0)) << app.name;
}

TEST_F(ListTests, theUsersOwnFoldersAreNoApplicationsData) {
    for (const std::string name : {"MobileSync", "AddressBook", "CallHistoryDB", "CloudDocs"}) {
        application("one/" + name + ".app", "com.contoh.a");
        data("Application Support/" + name + "/file", {.allocatedBytes = 4096});
        data("Caches/" + name + "/file", {.allocatedBytes = 4096});
        EXPECT_EQ(places(list().at(0)), (Paths{library("Caches/" + name)})) << name;
        std::filesystem::remove_all(temp.path("one"));
    }
    application("one/mobilesync.app", "com.contoh.a");
    data("Application Support/mobilesync/file", {.allocatedBytes = 4096});
    EXPECT_THAT(only().data, IsEmpty());
}

TEST_F(ListTests, whatTheGuardRefusesIsNoData) {
    application("one/Claude.app", "com.contoh.a");
    data("Application Support/Claude/file", {.allocatedBytes = 4096}); // a protected tree
    data("Caches/com.contoh.a/.git", {.allocatedBytes = 4096});        // a repository
    data("Logs/Claude/file", {.allocatedBytes = 8192});
    const auto app = only();
    ASSERT_THAT(app.data, SizeIs(1));
    EXPECT_EQ(app.data[0].path, library("Logs/Claude"));
}

TEST_F(ListTests, whatTheGuardRefusesIsNoSignOfUseEither) {
    application("one/Claude.app", "com.contoh.a");
    data("Application Support/Claude/file", {.allocatedBytes = 4096});
    EXPECT_EQ(only().dataActivity, std::nullopt);
}

TEST_F(ListTests, oneLocationMayBelongToTwoApplications) {
    application("one/Catatan.app", "com.contoh.a");
    application("two/Catatan.app", "com.contoh.b");
    data("Caches/Catatan/file", {.allocatedBytes = 4096});
    const auto apps = list();
    ASSERT_THAT(apps, SizeIs(2));
    EXPECT_THAT(apps[0].data, SizeIs(1));
    EXPECT_EQ(apps[0].data, apps[1].data);
}

TEST_F(ListTests, theLargestWithItsDataComesFirst) {
    application("one/A.app", "com.contoh.a");
    application("one/B.app", "com.contoh.b");
    application("one/C.app", "com.contoh.c");
    temp.file("one/A.app/Contents/MacOS/a", {.allocatedBytes = 40960});
    temp.file("one/B.app/Contents/MacOS/b", {.allocatedBytes = 81920});
    data("Caches/com.contoh.c/file", {.allocatedBytes = 163'840});
    EXPECT_THAT(names(), ElementsAre("C", "B", "A"));
}

TEST_F(ListTests, withoutMeasuringThereAreNoSizesAndNoData) {
    application("one/A.app", {{"CFBundleDisplayName", "<string>Steam</string>"}});
    temp.file("one/A.app/Contents/MacOS/a", {.allocatedBytes = 40960});
    data("Caches/Steam/file", {.allocatedBytes = 4096});
    const auto app = only({.measure = false});
    EXPECT_EQ(app.bytes, 0);
    EXPECT_THAT(app.data, IsEmpty());
    EXPECT_EQ(app.dataActivity, std::nullopt);
    EXPECT_EQ(app.role, AppRole::nonWork);
    EXPECT_TRUE(app.suggested);
}

#ifdef __linux__
TEST(UsageTests, withoutSpotlightNoUseIsKnown) {
    EXPECT_EQ(InstalledApps::usage("/Applications/Safari.app"), InstalledApps::Usage());
}
#endif

} // namespace
} // namespace korvanti
