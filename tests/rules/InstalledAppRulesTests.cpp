#include "analysis/InstalledApps.h"

#include "RulesSupport.h"
#include "base/ByteText.h"
#include "base/Formatters.h"
#include "support/TempFolder.h"

#include <algorithm>
#include <cctype>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <vector>

namespace korvanti {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::UnorderedElementsAre;

using InstalledApps::Advice;
using InstalledApps::Classification;
using testing::ago;
using testing::day;
using testing::now;
using testing::secondsAgo;

constexpr std::int64_t block = 4096;

std::vector<std::string> entriesOf(const std::string& list) {
    std::vector<std::string> entries;
    for (const auto& row : testing::ruleTable("app-classes.tsv"))
        if (row.at(0) == list)
            entries.push_back(row.at(1));
    return entries;
}

std::string upper(std::string text) {
    std::ranges::transform(text, text.begin(),
                           [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return text;
}

// Records

TEST(InstalledAppRulesTests, rolesHaveTheirNamesAndLabelsInOrder) {
    std::vector<std::string> texts;
    for (const auto role : allCases<AppRole>)
        texts.push_back(std::string(rawValue(role)) + " " + std::string(label(role)));

    EXPECT_THAT(texts, ElementsAre("work Kerja", "communication Komunikasi", "nonWork Non-kerja",
                                   "system Sistem", "other Lainnya"));
}

TEST(InstalledAppRulesTests, sumsTheBytesOfAnApplication) {
    InstalledApp app;
    EXPECT_EQ(app.totalBytes(), 0);

    app.bytes = 5;
    app.data = {{"/a", "Cache", 10}, {"/b", "Log", 200}};

    EXPECT_EQ(app.dataBytes(), 210);
    EXPECT_EQ(app.totalBytes(), 215);
}

TEST(InstalledAppRulesTests, theLaterSignOfUseIsTheLastActivity) {
    InstalledApp app;
    EXPECT_EQ(app.lastActivity(), std::nullopt);

    app.lastUsed = ago(5);
    EXPECT_EQ(app.lastActivity(), ago(5));
    app.dataActivity = ago(4);
    EXPECT_EQ(app.lastActivity(), ago(4));
    app.dataActivity = ago(6);
    EXPECT_EQ(app.lastActivity(), ago(5));
    app.lastUsed.reset();
    EXPECT_EQ(app.lastActivity(), ago(6));
}

TEST(InstalledAppRulesTests, onlySystemApplicationsAreNotRemovable) {
    for (const auto role : allCases<AppRole>) {
        InstalledApp app;
        app.role = role;
        EXPECT_EQ(app.isRemovable(), role != AppRole::system) << rawValue(role);
    }
}

// Classification

TEST(AppClassRulesTests, theListsAreComplete) {
    EXPECT_THAT(entriesOf("workPrefix"), SizeIs(44));
    EXPECT_THAT(entriesOf("communicationPrefix"), SizeIs(10));
    EXPECT_THAT(entriesOf("leisureName"), SizeIs(17));
    EXPECT_THAT(entriesOf("leisureCategory"), SizeIs(8));
}

TEST(AppClassRulesTests, eachWorkPrefixMakesATool) {
    for (const auto& prefix : entriesOf("workPrefix"))
        for (const auto& identifier : {prefix, prefix + "x.y"})
            EXPECT_EQ(InstalledApps::classify("Steam", identifier, "public.app-category.games"),
                      (Classification{AppRole::work, "Tool kerja"}))
                << identifier;
}

TEST(AppClassRulesTests, eachCommunicationPrefixMakesACommunicationApp) {
    for (const auto& prefix : entriesOf("communicationPrefix"))
        for (const auto& identifier : {prefix, prefix + "x.y"})
            EXPECT_EQ(InstalledApps::classify("Steam", identifier, "public.app-category.games"),
                      (Classification{AppRole::communication, "App komunikasi"}))
                << identifier;
}

TEST(AppClassRulesTests, aPrefixStandsAtTheBeginningInItsOwnCase) {
    for (const auto* list : {"workPrefix", "communicationPrefix"})
        for (const auto& prefix : entriesOf(list)) {
            EXPECT_EQ(InstalledApps::classify("Contoh", "x." + prefix, std::nullopt),
                      (Classification{AppRole::other, "Tanpa kategori"}))
                << prefix;
            EXPECT_EQ(InstalledApps::classify("Contoh", upper(prefix), std::nullopt),
                      (Classification{AppRole::other, "Tanpa kategori"}))
                << prefix;
        }
    EXPECT_EQ(InstalledApps::classify("Contoh", "com.figma", std::nullopt).role, AppRole::other);
    EXPECT_EQ(InstalledApps::classify("Contoh", "us.zoom", std::nullopt).role, AppRole::other);
}

TEST(AppClassRulesTests, eachLeisureNameMakesAGameInAnyCase) {
    for (const auto& name : entriesOf("leisureName"))
        for (const auto& variant : {name, upper(name), "My " + name + " 2"})
            EXPECT_EQ(InstalledApps::classify(variant, "com.apple.x", "public.app-category.developer-tools"),
                      (Classification{AppRole::nonWork, "Game/hiburan"}))
                << variant;
}

TEST(AppClassRulesTests, eachLeisureCategoryMakesNoWorkEvenOfAnAppleApplication) {
    for (const auto& category : entriesOf("leisureCategory")) {
        EXPECT_EQ(InstalledApps::classify("Contoh", "com.apple.x", "public.app-category." + category),
                  (Classification{AppRole::nonWork, "Kategori " + category}));
        EXPECT_EQ(InstalledApps::classify("Contoh", std::nullopt, "a-" + category + "-b"),
                  (Classification{AppRole::nonWork, "Kategori a-" + category + "-b"}));
        EXPECT_EQ(InstalledApps::classify("Contoh", std::nullopt, "public.app-category." + upper(category)),
                  (Classification{AppRole::other, "Kategori " + upper(category)}));
    }
}

TEST(AppClassRulesTests, theNameOfTheCompanyMakesATool) {
    EXPECT_EQ(InstalledApps::classify("My ZendRask Steam", "net.whatsapp.x", "games"),
              (Classification{AppRole::work, "Tool kerja"}));
    EXPECT_EQ(InstalledApps::classify("zendrask", std::nullopt, std::nullopt),
              (Classification{AppRole::work, "Tool kerja"}));
}

TEST(AppClassRulesTests, anAppleApplicationIsPartOfTheSystem) {
    for (const std::optional<std::string>& category :
         {std::optional<std::string>(), std::optional<std::string>("public.app-category.developer-tools"),
          std::optional<std::string>("public.app-category.utilities")})
        EXPECT_EQ(InstalledApps::classify("Notes", "com.apple.Notes", category),
                  (Classification{AppRole::system, "Bawaan macOS"}));
    EXPECT_EQ(InstalledApps::classify("Notes", "com.apple", std::nullopt).role, AppRole::other);
    EXPECT_EQ(InstalledApps::classify("Notes", "com.Apple.Notes", std::nullopt).role, AppRole::other);
    EXPECT_EQ(InstalledApps::classify("com.apple.Notes", std::nullopt, std::nullopt).role, AppRole::other);
}

TEST(AppClassRulesTests, theCategoryDecidesAboutTheRest) {
    EXPECT_EQ(InstalledApps::classify("Contoh", "com.contoh", std::nullopt),
              (Classification{AppRole::other, "Tanpa kategori"}));
    EXPECT_EQ(InstalledApps::classify("Contoh", std::nullopt, "public.app-category.developer-tools"),
              (Classification{AppRole::work, "Tool developer"}));
    EXPECT_EQ(InstalledApps::classify("Contoh", std::nullopt, "public.app-category.Developer-tools"),
              (Classification{AppRole::other, "Kategori Developer-tools"}));
    EXPECT_EQ(InstalledApps::classify("Contoh", std::nullopt, "public.app-category.productivity"),
              (Classification{AppRole::other, "Kategori productivity"}));
    EXPECT_EQ(InstalledApps::classify("Contoh", std::nullopt, "lain"),
              (Classification{AppRole::other, "Kategori lain"}));
    EXPECT_EQ(InstalledApps::classify("Contoh", std::nullopt, ""),
              (Classification{AppRole::other, "Kategori "}));
    EXPECT_EQ(InstalledApps::classify("Contoh", std::nullopt, "developer-tools games"),
              (Classification{AppRole::nonWork, "Kategori developer-tools games"}));
}

// Advice

InstalledApp appOf(AppRole role) {
    InstalledApp app;
    app.name = "Contoh";
    app.role = role;
    app.bytes = 100'000'000;
    app.data = {{"/a", "Cache", 23'000'000}};
    return app;
}

const std::string freed = " Hapus untuk membebaskan " + bytesText(123'000'000) + ".";

TEST(AppAdviceRulesTests, systemApplicationsAreNeverSuggestedEvenIfTheyRun) {
    auto app = appOf(AppRole::system);
    app.lastUsed = ago(1000);
    EXPECT_EQ(InstalledApps::advise(app, now()), (Advice{false, "Bawaan macOS"}));
    app.isRunning = true;
    EXPECT_EQ(InstalledApps::advise(app, now()), (Advice{false, "Bawaan macOS"}));
}

TEST(AppAdviceRulesTests, runningApplicationsAreNeverSuggested) {
    for (const auto role : {AppRole::work, AppRole::communication, AppRole::nonWork, AppRole::other}) {
        auto app = appOf(role);
        app.isRunning = true;
        EXPECT_EQ(InstalledApps::advise(app, now()), (Advice{false, "Sedang berjalan, jadi masih dipakai."}));
        app.lastUsed = ago(1000);
        EXPECT_EQ(InstalledApps::advise(app, now()), (Advice{false, "Sedang berjalan, jadi masih dipakai."}));
    }
}

TEST(AppAdviceRulesTests, whatIsNoWorkIsSuggestedAfterAMonth) {
    auto app = appOf(AppRole::nonWork);
    for (const auto lastUsed : {ago(31), ago(90), ago(181), ago(1000)}) {
        app.lastUsed = lastUsed;
        EXPECT_EQ(InstalledApps::advise(app, now()),
                  (Advice{true, "Bukan app kerja, dibuka terakhir " + Formatters::relative(lastUsed, now()) +
                                    "." + freed}));
    }
    for (const auto lastUsed : {ago(30), ago(30, day - 1), ago(0), ago(-1000)}) {
        app.lastUsed = lastUsed;
        EXPECT_EQ(
            InstalledApps::advise(app, now()),
            (Advice{false, "Masih dipakai, dibuka terakhir " + Formatters::relative(lastUsed, now()) + "."}));
    }
}

TEST(AppAdviceRulesTests, everythingIsSuggestedAfterHalfAYear) {
    for (const auto role : {AppRole::work, AppRole::communication, AppRole::other}) {
        auto app = appOf(role);
        app.lastUsed = ago(181);
        EXPECT_EQ(InstalledApps::advise(app, now()),
                  (Advice{true, "Tidak dibuka lebih dari 6 bulan." + freed}))
            << rawValue(role);
    }
    for (const auto role : {AppRole::work, AppRole::communication}) {
        auto app = appOf(role);
        app.lastUsed = ago(180, day - 1);
        EXPECT_EQ(InstalledApps::advise(app, now()),
                  (Advice{false, "Masih dipakai, dibuka terakhir " +
                                     Formatters::relative(ago(180, day - 1), now()) + "."}))
            << rawValue(role);
    }
}

TEST(AppAdviceRulesTests, otherApplicationsAreSuggestedAfterThreeMonths) {
    auto app = appOf(AppRole::other);
    for (const auto lastUsed : {ago(91), ago(180), ago(180, day - 1)}) {
        app.lastUsed = lastUsed;
        EXPECT_EQ(InstalledApps::advise(app, now()),
                  (Advice{true, "Tidak dibuka 3 bulan terakhir." + freed}));
    }
    app.lastUsed = ago(90, day - 1);
    EXPECT_EQ(InstalledApps::advise(app, now()),
              (Advice{false, "Masih dipakai, dibuka terakhir " +
                                 Formatters::relative(ago(90, day - 1), now()) + "."}));
}

TEST(AppAdviceRulesTests, aBackgroundAgentIsSuggestedByItsAgeLikeAnyOther) {
    auto app = appOf(AppRole::other);
    app.isBackgroundAgent = true;
    app.lastUsed = ago(91);

    EXPECT_TRUE(InstalledApps::advise(app, now()).suggested);
}

TEST(AppAdviceRulesTests, whatIsNoWorkAndWasNeverUsedIsSuggestedHoweverSmall) {
    auto app = appOf(AppRole::nonWork);
    app.bytes = 0;
    app.data.clear();
    app.isBackgroundAgent = true;

    EXPECT_EQ(InstalledApps::advise(app, now()),
              (Advice{true, "Bukan app kerja, tidak tercatat pernah dibuka. Hapus untuk membebaskan " +
                                bytesText(0) + "."}));
}

TEST(AppAdviceRulesTests, anotherApplicationThatWasNeverUsedIsSuggestedFrom100MB) {
    auto app = appOf(AppRole::other);
    app.bytes = 60'000'000;
    app.data = {{"/a", "Cache", 39'999'999}};
    EXPECT_EQ(InstalledApps::advise(app, now()),
              (Advice{false, "Masih dipakai, tidak tercatat pernah dibuka."}));

    app.data = {{"/a", "Cache", 40'000'000}};
    EXPECT_EQ(InstalledApps::advise(app, now()),
              (Advice{true, "Tidak tercatat pernah dibuka. Hapus untuk membebaskan " +
                                bytesText(100'000'000) + "."}));

    app.useCount = 3; // not named in this sentence
    EXPECT_EQ(InstalledApps::advise(app, now()),
              (Advice{true, "Tidak tercatat pernah dibuka. Hapus untuk membebaskan " +
                                bytesText(100'000'000) + "."}));

    app.isBackgroundAgent = true;
    EXPECT_EQ(InstalledApps::advise(app, now()),
              (Advice{false, "Masih dipakai, tidak tercatat pernah dibuka · dibuka 3×."}));
}

TEST(AppAdviceRulesTests, toolsThatWereNeverUsedAreNotSuggested) {
    for (const auto role : {AppRole::work, AppRole::communication})
        EXPECT_EQ(InstalledApps::advise(appOf(role), now()),
                  (Advice{false, "Masih dipakai, tidak tercatat pernah dibuka."}));
}

TEST(AppAdviceRulesTests, tellsHowOftenAnApplicationWasUsed) {
    auto app = appOf(AppRole::nonWork);
    app.useCount = 7;
    EXPECT_EQ(InstalledApps::advise(app, now()).advice,
              "Bukan app kerja, tidak tercatat pernah dibuka · dibuka 7×." + freed);
    app.lastUsed = ago(40);
    EXPECT_EQ(InstalledApps::advise(app, now()).advice, "Bukan app kerja, dibuka terakhir " +
                                                            Formatters::relative(ago(40), now()) +
                                                            " · dibuka 7×." + freed);
    app.useCount = 0;
    app.lastUsed = ago(3);
    EXPECT_EQ(InstalledApps::advise(app, now()).advice,
              "Masih dipakai, dibuka terakhir " + Formatters::relative(ago(3), now()) + " · dibuka 0×.");
    app.role = AppRole::other;
    app.useCount = 1234;
    app.lastUsed = ago(91);
    EXPECT_EQ(InstalledApps::advise(app, now()).advice,
              "Tidak dibuka 3 bulan terakhir · dibuka 1234×." + freed);
    app.lastUsed = ago(181);
    EXPECT_EQ(InstalledApps::advise(app, now()).advice,
              "Tidak dibuka lebih dari 6 bulan · dibuka 1234×." + freed);
}

TEST(AppAdviceRulesTests, tellsOfTheLaterOfUseAndChange) {
    auto app = appOf(AppRole::work);
    app.lastUsed = ago(50);
    app.dataActivity = ago(3);
    EXPECT_EQ(InstalledApps::advise(app, now()).advice,
              "Masih dipakai, datanya terakhir berubah " + Formatters::relative(ago(3), now()) + ".");

    app.dataActivity = ago(50);
    EXPECT_EQ(InstalledApps::advise(app, now()).advice,
              "Masih dipakai, dibuka terakhir " + Formatters::relative(ago(50), now()) + ".");

    app.dataActivity = ago(60);
    EXPECT_EQ(InstalledApps::advise(app, now()).advice,
              "Masih dipakai, dibuka terakhir " + Formatters::relative(ago(50), now()) + ".");

    app.lastUsed.reset();
    EXPECT_EQ(InstalledApps::advise(app, now()).advice,
              "Masih dipakai, datanya terakhir berubah " + Formatters::relative(ago(60), now()) + ".");
}

TEST(AppAdviceRulesTests, aChangeOfDataKeepsAnApplicationInUse) {
    auto app = appOf(AppRole::nonWork);
    app.lastUsed = ago(400);
    app.dataActivity = ago(30);
    EXPECT_FALSE(InstalledApps::advise(app, now()).suggested);

    app.dataActivity = ago(31);
    EXPECT_EQ(InstalledApps::advise(app, now()),
              (Advice{true, "Bukan app kerja, datanya terakhir berubah " +
                                Formatters::relative(ago(31), now()) + "." + freed}));
}

TEST(AppAdviceRulesTests, doesNotReadTheFieldsThatItFills) {
    auto app = appOf(AppRole::work);
    app.suggested = true;
    app.advice = "lama";

    EXPECT_EQ(InstalledApps::advise(app, now()),
              (Advice{false, "Masih dipakai, tidak tercatat pernah dibuka."}));
}

// Where an application keeps its data

class AppDataRulesTests : public ::testing::Test {
protected:
    std::string library(const std::string& relative) { return home.folder("Library/" + relative); }
    [[nodiscard]] std::vector<std::string> found(const std::optional<std::string>& identifier,
                                                 const std::string& name) const {
        return InstalledApps::dataLocations(identifier, name, home.path());
    }

    testing::TempFolder home;
};

TEST_F(AppDataRulesTests, findsEveryLocationInItsOrder) {
    std::vector<std::string> expected;
    for (const auto* location :
         {"Application Support/com.contoh.app", "Caches/com.contoh.app", "Containers/com.contoh.app",
          "HTTPStorages/com.contoh.app", "WebKit/com.contoh.app", "Logs/com.contoh.app",
          "Application Scripts/com.contoh.app", "Saved Application State/com.contoh.app.savedState",
          "HTTPStorages/com.contoh.app.binarycookies", "Cookies/com.contoh.app.binarycookies",
          "Containers/com.contoh.app.helper", "Group Containers/AB12.com.contoh.app",
          "Application Support/Contoh", "Caches/Contoh", "Logs/Contoh"})
        expected.push_back(library(location));
    for (const auto* other : {"Preferences/com.contoh.app", "HTTPStorages/Contoh", "Containers/Contoh",
                              "Cookies/com.contoh.app", "Saved Application State/com.contoh.app"})
        library(other);

    EXPECT_EQ(found("com.contoh.app", "Contoh"), expected);
}

TEST_F(AppDataRulesTests, findsNothingThatDoesNotExist) {
    EXPECT_THAT(found("com.contoh.app", "Contoh"), IsEmpty());
}

TEST_F(AppDataRulesTests, findsFilesAndDanglingLinks) {
    const auto cookies = home.file("Library/Cookies/com.contoh.app.binarycookies");
    const auto link = home.symlink("Library/Caches/com.contoh.app", home.path("missing"));

    EXPECT_THAT(found("com.contoh.app", ""), ElementsAre(link, cookies));
}

TEST_F(AppDataRulesTests, takesContainersThatBeginWithTheIdentifierAndADot) {
    const auto a = library("Containers/com.contoh.app.helper");
    const auto b = library("Containers/com.contoh.app.");
    library("Containers/com.contoh.apple");
    library("Containers/x.com.contoh.app.helper");
    library("Containers/com.contoh");

    EXPECT_THAT(found("com.contoh.app", ""), UnorderedElementsAre(a, b));
}

TEST_F(AppDataRulesTests, takesGroupContainersByFourRules) {
    std::vector<std::string> expected;
    for (const auto* name :
         {"com.contoh.app", "AB12.com.contoh.app", "group.com.contoh.app", "group.com.contoh.app.shared",
          "group.com.contoh.appendix", "AB12.com.contoh.app.shared", "AB12.group.com.contoh.app.x"})
        expected.push_back(library(std::string("Group Containers/") + name));
    for (const auto* name :
         {"com.contoh.app.shared", "AB12com.contoh.app", "AB12.com.contoh.apple", "group.com.contoh.ap",
          "Xgroupcom.contoh.app", "AB12.group.com.contoh.appendix", "com.contoh", "Contoh"})
        library(std::string("Group Containers/") + name);

    EXPECT_THAT(found("com.contoh.app", "Contoh"), ::testing::UnorderedElementsAreArray(expected));
}

TEST_F(AppDataRulesTests, anIdentifierWithoutADotHasNoLocations) {
    library("Caches/contoh");
    library("Containers/contoh.helper");
    library("Group Containers/group.contoh");
    const auto named = library("Logs/Nama");

    EXPECT_THAT(found("contoh", "Nama"), ElementsAre(named));
    EXPECT_THAT(found("", "Nama"), ElementsAre(named));
    EXPECT_THAT(found(std::nullopt, "Nama"), ElementsAre(named));
}

TEST_F(AppDataRulesTests, aLocationIsTakenOnce) {
    const auto support = library("Application Support/com.contoh.app");
    const auto caches = library("Caches/com.contoh.app");

    EXPECT_THAT(found("com.contoh.app", "com.contoh.app"), ElementsAre(support, caches));
}

TEST_F(AppDataRulesTests, aNameNeedsThreeCharacters) {
    library("Caches/AB");
    library("Caches/éü");
    const std::string decomposed = "e\u0301u\u0308"; // four code points, two characters
    library("Caches/" + decomposed);
    const auto three = library("Caches/ABC");
    const auto accented = library("Caches/éüñ");

    EXPECT_THAT(found(std::nullopt, "AB"), IsEmpty());
    EXPECT_THAT(found(std::nullopt, "éü"), IsEmpty());
    EXPECT_THAT(found(std::nullopt, decomposed), IsEmpty());
    EXPECT_THAT(found(std::nullopt, " AB\t "), IsEmpty());
    EXPECT_THAT(found(std::nullopt, ""), IsEmpty());
    EXPECT_THAT(found(std::nullopt, "ABC"), ElementsAre(three));
    EXPECT_THAT(found(std::nullopt, "éüñ"), ElementsAre(accented));
}

TEST_F(AppDataRulesTests, blanksAroundANameDoNotCount) {
    const auto caches = library("Caches/Nama Panjang");

    EXPECT_THAT(found(std::nullopt, "\t Nama Panjang \t"), ElementsAre(caches));
}

TEST_F(AppDataRulesTests, sharedFoldersAreNobodysInAnyCase) {
    const std::vector<std::string> words = {"google", "microsoft", "apple", "adobe", "jetbrains", "mozilla",
                                            "oracle", "caches",    "cache", "logs",  "data",      "app"};
    EXPECT_THAT(words, SizeIs(12));
    for (const auto& word : words)
        for (auto name : {word, upper(word)}) {
            library("Application Support/" + name);
            library("Caches/" + name);
            library("Logs/" + name);
            EXPECT_THAT(found(std::nullopt, name), IsEmpty()) << name;
            EXPECT_THAT(found(std::nullopt, " " + name + " "), IsEmpty()) << name;
        }
    const auto named = library("Application Support/Google Earth");
    EXPECT_THAT(found(std::nullopt, "Google Earth"), ElementsAre(named));
}

TEST_F(AppDataRulesTests, theSystemRemembersNothingOfABundleThatIsNotThere) {
    EXPECT_EQ(InstalledApps::usage(home.path("Tidak Ada.app")), InstalledApps::Usage());
}

// The list

std::string text(const std::string& key, const std::string& value) {
    return "<key>" + key + "</key><string>" + value + "</string>";
}

class AppListRulesTests : public ::testing::Test {
protected:
    /// A bundle whose property list has these entries.
    std::string bundle(const std::string& name, const std::string& entries) {
        home.file("Apps/" + name + "/Contents/Info.plist",
                  {.text = R"(<?xml version="1.0" encoding="UTF-8"?><plist version="1.0"><dict>)" + entries +
                           "</dict></plist>"});
        return home.path("Apps/" + name);
    }
    std::string data(const std::string& relative, std::int64_t blocks, std::int64_t days = 10) {
        home.file("Library/" + relative + "/data",
                  {.allocatedBytes = blocks * block, .modified = secondsAgo(days)});
        return home.path("Library/" + relative);
    }
    [[nodiscard]] std::vector<InstalledApp> list(InstalledApps::ListOptions options = {}) {
        SizeLedger sizes;
        return InstalledApps::list({home.path("Apps"), home.path("missing"), home.path("Apps2")}, homeText,
                                   now(), sizes, options);
    }
    [[nodiscard]] InstalledApp app() {
        const auto found = list();
        EXPECT_THAT(found, SizeIs(1));
        return found.size() == 1 ? found[0] : InstalledApp();
    }
    [[nodiscard]] std::vector<std::string> names() {
        std::vector<std::string> names;
        for (const auto& app : list())
            names.push_back(app.name);
        return names;
    }

    testing::TempFolder home;
    std::string homeText = home.path();
};

TEST_F(AppListRulesTests, fillsEveryField) {
    const auto path =
        bundle("Contoh.app", text("CFBundleIdentifier", "com.contoh.app") +
                                 text("CFBundleDisplayName", "Nama Tampil") +
                                 text("CFBundleName", "Nama Lain") + text("CFBundleExecutable", "contoh") +
                                 text("CFBundleShortVersionString", "1.2.3") + text("CFBundleVersion", "99") +
                                 text("LSApplicationCategoryType", "public.app-category.productivity"));
    home.file("Apps/Contoh.app/Contents/MacOS/contoh",
              {.allocatedBytes = 9 * block, .modified = secondsAgo(1)});
    home.folder("Apps/Contoh.app/Contents/_MASReceipt");
    const auto caches = data("Caches/com.contoh.app", 3, 200);
    const auto support = data("Application Support/Nama Tampil", 5, 100);

    InstalledApp expected;
    expected.name = "Nama Tampil";
    expected.path = path;
    expected.bundleID = "com.contoh.app";
    expected.executable = "contoh";
    expected.version = "1.2.3";
    expected.categoryType = "public.app-category.productivity";
    expected.bytes = 10 * block;
    expected.data = {{support, "Data aplikasi", 5 * block}, {caches, "Cache", 3 * block}};
    expected.fromAppStore = true;
    expected.role = AppRole::other;
    expected.reason = "Kategori productivity";
    expected.suggested = true;
    expected.advice = "Tidak dibuka 3 bulan terakhir. Hapus untuk membebaskan " + bytesText(18 * block) + ".";
    expected.dataActivity = ago(100);
    EXPECT_EQ(app(), expected);
}

TEST_F(AppListRulesTests, takesBundlesOfEveryRootLargestFirst) {
    bundle("A.app", text("CFBundleIdentifier", "com.contoh.a"));
    home.file("Apps/A.app/isi", {.allocatedBytes = 5 * block});
    bundle("B.app", text("CFBundleIdentifier", "com.contoh.b"));
    data("Caches/com.contoh.b", 20);
    home.file("Apps2/C.app/isi", {.allocatedBytes = 12 * block});

    EXPECT_THAT(names(), ElementsAre("B", "C", "A"));
}

TEST_F(AppListRulesTests, takesWhatEndsInAppAndIsNoLink) {
    bundle("A.app", "");
    bundle("B.APP", "");
    bundle("C.app.bak", "");
    bundle("D.bundle", "");
    bundle("Folder/E.app", "");
    bundle(".app", "");
    bundle("F.G.app", "");
    home.file("Apps/H.app");
    home.symlink("Apps/I.app", bundle("elsewhere", ""));
    home.symlink("Apps/J.app", home.path("missing"));

    EXPECT_THAT(names(), UnorderedElementsAre("A", "F.G", "H"));
}

TEST_F(AppListRulesTests, aBundleWithoutAPropertyListHasItsFileName) {
    home.file("Apps/Contoh Dua.app/isi", {.allocatedBytes = 2 * block});
    const auto logs = data("Logs/Contoh Dua", 1, 40);
    data("Caches/com.contoh.dua", 1);

    InstalledApp expected;
    expected.name = "Contoh Dua";
    expected.path = home.path("Apps/Contoh Dua.app");
    expected.bytes = 2 * block;
    expected.data = {{logs, "Log", block}};
    expected.role = AppRole::other;
    expected.reason = "Tanpa kategori";
    expected.advice = "Masih dipakai, datanya terakhir berubah " + Formatters::relative(ago(40), now()) + ".";
    expected.dataActivity = ago(40);
    EXPECT_EQ(app(), expected);
}

TEST_F(AppListRulesTests, aDamagedPropertyListIsNone) {
    home.file("Apps/Contoh.app/Contents/Info.plist", {.text = "<plist><array/></plist"});

    EXPECT_EQ(app().name, "Contoh");
    EXPECT_EQ(app().bundleID, std::nullopt);
    EXPECT_FALSE(app().isBackgroundAgent);
}

TEST_F(AppListRulesTests, onlyStringsOfThePropertyListCount) {
    std::string entries;
    for (const auto* key : {"CFBundleIdentifier", "CFBundleDisplayName", "CFBundleExecutable",
                            "CFBundleShortVersionString", "LSApplicationCategoryType"})
        entries += std::string("<key>") + key + "</key><integer>1</integer>";
    bundle("Contoh.app", entries);

    const auto found = app();

    EXPECT_EQ(found.name, "Contoh");
    EXPECT_EQ(found.bundleID, std::nullopt);
    EXPECT_EQ(found.executable, std::nullopt);
    EXPECT_EQ(found.version, std::nullopt);
    EXPECT_EQ(found.categoryType, std::nullopt);
    EXPECT_EQ(found.reason, "Tanpa kategori");
}

TEST_F(AppListRulesTests, classifiesByNameIdentifierAndCategory) {
    bundle("A.app", text("CFBundleDisplayName", "Steam"));
    bundle("B.app", text("CFBundleIdentifier", "com.figma.Desktop"));
    bundle("C.app", text("LSApplicationCategoryType", "public.app-category.puzzle-games"));
    bundle("D.app", text("CFBundleIdentifier", "com.apple.Pages"));

    std::vector<std::string> reasons;
    for (const auto& app : list())
        reasons.push_back(app.path.substr(home.path("Apps/").size()) + " " + std::string(rawValue(app.role)) +
                          " " + app.reason);

    EXPECT_THAT(reasons,
                UnorderedElementsAre("A.app nonWork Game/hiburan", "B.app work Tool kerja",
                                     "C.app nonWork Kategori puzzle-games", "D.app system Bawaan macOS"));
}

TEST_F(AppListRulesTests, anAppleApplicationHasNoData) {
    bundle("A.app", text("CFBundleIdentifier", "com.apple.contoh") + text("CFBundleDisplayName", "Contoh"));
    data("Caches/com.apple.contoh", 5);
    data("Caches/Contoh", 5);

    EXPECT_THAT(app().data, IsEmpty());
    EXPECT_EQ(app().dataActivity, std::nullopt);
}

TEST_F(AppListRulesTests, anApplicationOfASimilarIdentifierHasItsData) {
    bundle("A.app", text("CFBundleIdentifier", "com.appleseed.contoh"));
    data("Caches/com.appleseed.contoh", 5);

    EXPECT_THAT(app().data, SizeIs(1));
}

TEST_F(AppListRulesTests, namesTheKindOfEachLocation) {
    bundle("A.app", text("CFBundleIdentifier", "com.contoh.a"));
    const std::vector<std::pair<std::string, std::string>> kinds = {
        {"Application Support/com.contoh.a", "Data aplikasi"},
        {"Caches/com.contoh.a", "Cache"},
        {"Containers/com.contoh.a", "Container (data & pengaturan)"},
        {"Group Containers/group.com.contoh.a", "Data bersama"},
        {"Logs/com.contoh.a", "Log"},
        {"Saved Application State/com.contoh.a.savedState", "Status jendela"},
        {"HTTPStorages/com.contoh.a", "Data web"},
        {"WebKit/com.contoh.a", "Data web"},
        {"Cookies/com.contoh.a.binarycookies", "Data web"},
        {"Application Scripts/com.contoh.a", "Skrip"},
    };
    std::vector<AppDataLocation> expected;
    std::int64_t blocks = 30;
    for (const auto& [location, kind] : kinds) {
        expected.push_back({data(location, blocks), kind, blocks * block});
        --blocks;
    }

    EXPECT_EQ(app().data, expected);
}

TEST_F(AppListRulesTests, aLocationInAnotherFolderIsCalledByThatFolder) {
    bundle("A.app", text("CFBundleDisplayName", "Vendor/Produk"));
    data("Application Support/Vendor/Produk", 3);

    const auto found = app();

    ASSERT_THAT(found.data, SizeIs(1));
    EXPECT_EQ(found.data[0].kind, "Vendor");
}

TEST_F(AppListRulesTests, dataIsSortedBySizeAndEmptyLocationsAreLeftOut) {
    bundle("A.app", text("CFBundleIdentifier", "com.contoh.a"));
    data("Application Support/com.contoh.a", 2);
    data("Caches/com.contoh.a", 7);
    data("Logs/com.contoh.a", 0);
    data("WebKit/com.contoh.a", 4);

    std::vector<std::int64_t> bytes;
    for (const auto& location : app().data)
        bytes.push_back(location.bytes);

    EXPECT_THAT(bytes, ElementsAre(7 * block, 4 * block, 2 * block));
}

TEST_F(AppListRulesTests, anEmptyLocationStillTellsOfActivity) {
    bundle("A.app", text("CFBundleIdentifier", "com.contoh.a"));
    data("Caches/com.contoh.a", 2, 50);
    data("Logs/com.contoh.a", 0, 3);

    EXPECT_THAT(app().data, SizeIs(1));
    EXPECT_EQ(app().dataActivity, ago(3));
}

TEST_F(AppListRulesTests, theBundleItselfTellsNothingOfActivity) {
    bundle("A.app", text("CFBundleIdentifier", "com.contoh.a"));
    home.file("Apps/A.app/isi", {.allocatedBytes = block, .modified = secondsAgo(1)});
    EXPECT_EQ(app().dataActivity, std::nullopt);

    home.file("Library/Cookies/com.contoh.a.binarycookies",
              {.allocatedBytes = block, .modified = secondsAgo(70)});
    EXPECT_EQ(app().dataActivity, ago(70));
}

TEST_F(AppListRulesTests, withoutMeasuringThereAreNoSizesAndNoData) {
    const auto path = bundle("A.app", text("CFBundleIdentifier", "com.contoh.a"));
    home.file("Apps/A.app/isi", {.allocatedBytes = 5 * block});
    data("Caches/com.contoh.a", 2, 400);

    const auto found = list({.measure = false});

    ASSERT_THAT(found, SizeIs(1));
    EXPECT_EQ(found[0].path, path);
    EXPECT_EQ(found[0].bundleID, "com.contoh.a");
    EXPECT_EQ(found[0].bytes, 0);
    EXPECT_THAT(found[0].data, IsEmpty());
    EXPECT_EQ(found[0].dataActivity, std::nullopt);
    EXPECT_FALSE(found[0].suggested);
    EXPECT_EQ(found[0].advice, "Masih dipakai, tidak tercatat pernah dibuka.");
}

TEST_F(AppListRulesTests, aReceiptMakesAnApplicationOneOfTheStore) {
    bundle("A.app", "");
    EXPECT_FALSE(app().fromAppStore);

    home.symlink("Apps/A.app/Contents/_MASReceipt", home.path("missing"));
    EXPECT_TRUE(app().fromAppStore);
}

TEST_F(AppListRulesTests, knowsABackgroundAgent) {
    for (const auto* entry : {"<key>LSUIElement</key><true/>", "<key>LSBackgroundOnly</key><true/>",
                              "<key>LSUIElement</key><string>1</string>",
                              "<key>LSUIElement</key><false/><key>LSBackgroundOnly</key><true/>"}) {
        bundle("A.app", entry);
        EXPECT_TRUE(app().isBackgroundAgent) << entry;
    }
    for (const auto* entry :
         {"", "<key>LSUIElement</key><false/>", "<key>LSBackgroundOnly</key><false/>",
          "<key>LSUIElement</key><string>0</string>", "<key>LSUIElement</key><string>YES</string>",
          "<key>LSUIElement</key><string>true</string>", "<key>LSBackgroundOnly</key><string>1</string>",
          "<key>LSUIPresentationMode</key><true/>"}) {
        bundle("A.app", entry);
        EXPECT_FALSE(app().isBackgroundAgent) << entry;
    }
}

TEST_F(AppListRulesTests, aLargeApplicationWithoutAnySignOfUseIsSuggestedUnlessItIsAnAgent) {
    bundle("A.app", "");
    home.file("Apps/A.app/isi", {.allocatedBytes = testing::sizeFrom(100'000'000) - block});
    EXPECT_TRUE(app().suggested);

    bundle("A.app", "<key>LSUIElement</key><true/>");
    EXPECT_FALSE(app().suggested);

    bundle("A.app", "");
    home.file("Apps/A.app/isi", {.allocatedBytes = testing::sizeBelow(100'000'000) - block});
    EXPECT_FALSE(app().suggested);
}

// What of the data the guard lets through

TEST_F(AppListRulesTests, aLocationThatIsARepositoryIsDropped) {
    bundle("A.app", text("CFBundleIdentifier", "com.contoh.a"));
    data("Application Support/com.contoh.a", 5);
    home.file("Library/Application Support/com.contoh.a/.git");
    const auto caches = data("Caches/com.contoh.a", 2, 90);

    const auto found = app();

    ASSERT_THAT(found.data, SizeIs(1));
    EXPECT_EQ(found.data[0].path, caches);
    EXPECT_EQ(found.dataActivity, ago(90));
}

TEST_F(AppListRulesTests, protectedLocationsAreDropped) {
    bundle("Claude.app", text("CFBundleIdentifier", "com.contoh.claude"));
    data("Application Support/Claude", 5);
    const auto caches = data("Caches/Claude", 2);
    EXPECT_THAT(app().data, ElementsAre(AppDataLocation{caches, "Cache", 2 * block}));
}

TEST_F(AppListRulesTests, theReportsOfTheSystemBelongToNoApplication) {
    bundle("DiagnosticReports.app", "");
    data("Logs/DiagnosticReports", 5);

    EXPECT_THAT(app().data, IsEmpty());
}

TEST_F(AppListRulesTests, locationsThatLookLikeSecretsAreDropped) {
    bundle("A.app", text("CFBundleIdentifier", "com.contoh.key"));
    data("Caches/com.contoh.key", 5);
    const auto state = data("Saved Application State/com.contoh.key.savedState", 2);
    EXPECT_THAT(app().data, ElementsAre(AppDataLocation{state, "Status jendela", 2 * block}));

    bundle("A.app", text("CFBundleIdentifier", ".env.contoh"));
    data("Caches/.env.contoh", 5);
    EXPECT_THAT(app().data, IsEmpty());

    bundle("A.app", text("CFBundleDisplayName", "Kunci.P12"));
    data("Caches/Kunci.P12", 5);
    EXPECT_THAT(app().data, IsEmpty());
}

TEST_F(AppListRulesTests, anIdentifierOrNameDoesNotLeadOutOfItsFolder) {
    data("Keychains", 5);
    data("Application Support/lain", 5);
    home.folder("Library/Caches");
    for (const auto* identifier : {".", "..", "../..", "./.", "../Keychains", "../../Dokumen", "x/../../."}) {
        bundle("A.app", text("CFBundleIdentifier", identifier));
        EXPECT_THAT(app().data, IsEmpty()) << identifier;
        EXPECT_EQ(app().dataActivity, std::nullopt) << identifier;
    }
    for (const auto* name : {"../Keychains", "../..", ".//.", "./lain/..", "/.."}) {
        bundle("A.app", text("CFBundleDisplayName", name));
        EXPECT_THAT(app().data, IsEmpty()) << name;
        EXPECT_EQ(app().dataActivity, std::nullopt) << name;
    }
}

TEST_F(AppListRulesTests, aLinkIsALocationOfNoSize) {
    bundle("A.app", text("CFBundleIdentifier", "com.contoh.a"));
    data("lain", 5);
    home.folder("Library/Caches");
    home.symlink("Library/Caches/com.contoh.a", home.path("Library/lain"));

    EXPECT_THAT(app().data, IsEmpty());
    EXPECT_EQ(app().dataActivity, std::nullopt);
}

TEST_F(AppListRulesTests, aHomeThatIsWrittenOtherwiseIsTheSameForTheGuard) {
    bundle("A.app", text("CFBundleIdentifier", "com.contoh.a"));
    data("Caches/com.contoh.a", 5);
    for (const auto& written : {home.path() + "/", home.path() + "/.", "/." + home.path()}) {
        homeText = written;
        EXPECT_THAT(app().data, SizeIs(1)) << written;
    }
}

} // namespace
} // namespace korvanti
