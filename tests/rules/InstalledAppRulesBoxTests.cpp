#include "providers/InstalledAppsProvider.h"

#include "RulesSupport.h"
#include "analysis/InstalledApps.h"
#include "base/ByteText.h"
#include "base/Formatters.h"
#include "support/BoxFolder.h"

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

using testing::ago;
using testing::now;
using testing::secondsAgo;
using testing::titles;

constexpr std::int64_t block = 4096;

class InstalledAppRulesBoxTests : public ::testing::Test {
protected:
    /// Data of that size, changed 40 days ago.
    std::string data(const std::string& relative, std::int64_t blocks) {
        mac.home.file("Library/" + relative + "/data",
                      {.allocatedBytes = blocks * block, .modified = secondsAgo(40)});
        return mac.home.path("Library/" + relative);
    }
    /// An application that weighs that much in all.
    void install(const std::string& name, const std::string& identifier, std::int64_t blocks) {
        mac.installApplication(name, identifier);
        mac.applications.file(name + ".app/Contents/isi", {.allocatedBytes = (blocks - 1) * block});
    }
    [[nodiscard]] std::vector<InstalledApp> list(const std::string& home = "/Users/tester") const {
        SizeLedger sizes;
        return InstalledApps::list(home, now(), sizes);
    }
    [[nodiscard]] std::vector<std::string> paths() const {
        std::vector<std::string> paths;
        for (const auto& app : list())
            paths.push_back(app.path);
        return paths;
    }
    [[nodiscard]] std::vector<std::string> running() const {
        std::vector<std::string> names;
        for (const auto& app : list())
            if (app.isRunning)
                names.push_back(app.name);
        return names;
    }
    [[nodiscard]] std::vector<CleanupItem> items() const {
        ScanContext context;
        context.home = mac.home.path();
        context.inactiveDays = 21;
        context.now = now();
        return InstalledAppsProvider().items(context);
    }

    testing::BoxMac mac;
};

// Where applications are

TEST_F(InstalledAppRulesBoxTests, listsTheUsersApplicationsAndNotThoseOfMacOS) {
    const testing::BoxFolder system("/System/Applications");
    system.folder("Musik.app/Contents");
    mac.applications.folder("A.app/Contents");
    mac.applications.folder("Utilities/B.app/Contents");
    mac.applications.folder("Lain/C.app/Contents");
    mac.home.folder("Applications/D.app/Contents");

    EXPECT_THAT(paths(), UnorderedElementsAre("/Applications/A.app", "/Applications/Utilities/B.app",
                                              "/Users/tester/Applications/D.app"));
}

TEST_F(InstalledAppRulesBoxTests, theApplicationsAreThoseOfTheProcessAndTheDataThatOfTheGivenHome) {
    const testing::BoxFolder other("/Users/Shared/lain");
    other.folder("Applications/A.app/Contents");
    other.file("Library/Caches/Berdua/data", {.allocatedBytes = 3 * block});
    mac.home.file("Library/Caches/Berdua/data", {.allocatedBytes = 5 * block});
    mac.home.folder("Applications/Berdua.app/Contents");

    const auto found = list(other.path());

    ASSERT_THAT(found, SizeIs(1));
    EXPECT_EQ(found[0].path, "/Users/tester/Applications/Berdua.app");
    EXPECT_THAT(found[0].data,
                ElementsAre(AppDataLocation{other.path("Library/Caches/Berdua"), "Cache", 3 * block}));
}

// What runs

TEST_F(InstalledAppRulesBoxTests, anApplicationRunsWhenAProcessRunsFromInsideItsBundle) {
    for (const auto* name : {"Satu", "Dua Kata", "Tiga", "Empat", "Lima"})
        mac.installApplication(name, std::string("com.contoh.") + name[0]);
    mac.answer("ps -axo comm=", "/sbin/launchd\n"
                                "/Applications/Satu.app/Contents/MacOS/Satu\n"
                                "\t /Applications/Dua Kata.app/Contents/Frameworks/Dua Kata Helper.app/x \n"
                                "\n"
                                "/Applications/Tiga.app\n"
                                "/Applications/Tiga.app/Content/x\n"
                                "x/Applications/Empat.app/Contents/MacOS/Empat\n"
                                "/applications/Lima.app/Contents/MacOS/Lima\n"
                                "-zsh");

    EXPECT_THAT(running(), UnorderedElementsAre("Satu", "Dua Kata"));
}

TEST_F(InstalledAppRulesBoxTests, anApplicationRunsWhetherItIsMeasuredOrNot) {
    mac.installApplication("Satu", "com.contoh.a");
    mac.answer("ps -axo comm=", "/Applications/Satu.app/Contents/MacOS/Satu\n");
    SizeLedger sizes;

    const auto found = InstalledApps::list(mac.home.path(), now(), sizes, {.measure = false});

    ASSERT_THAT(found, SizeIs(1));
    EXPECT_TRUE(found[0].isRunning);
    EXPECT_EQ(found[0].bytes, 0);
}

TEST_F(InstalledAppRulesBoxTests, asksOnceForTheProcesses) {
    mac.installApplication("Satu", "com.contoh.a");
    mac.installApplication("Dua", "com.contoh.b");
    mac.answer("ps -axo comm=", "");

    EXPECT_THAT(list(), SizeIs(2));

    EXPECT_THAT(testing::BoxMac::calls(), ElementsAre("ps -axo comm="));
}

TEST_F(InstalledAppRulesBoxTests, nothingRunsWhereTheProcessesCannotBeListed) {
    mac.installApplication("Steam", "com.contoh.a");

    const auto found = list();

    ASSERT_THAT(found, SizeIs(1));
    EXPECT_FALSE(found[0].isRunning);
    EXPECT_TRUE(found[0].suggested);
}

TEST_F(InstalledAppRulesBoxTests, aRunningApplicationIsNoItem) {
    install("Steam", "com.contoh.a", 2000);
    EXPECT_THAT(titles(items()), ElementsAre("Steam"));

    mac.answer("ps -axo comm=", "/Applications/Steam.app/Contents/MacOS/steam_osx\n");
    EXPECT_THAT(titles(items()), IsEmpty());
}

// Items

TEST_F(InstalledAppRulesBoxTests, hasItsNameAndPriority) {
    EXPECT_EQ(InstalledAppsProvider().name(), "Aplikasi");
    EXPECT_EQ(InstalledAppsProvider().priority(), 60);
}

TEST_F(InstalledAppRulesBoxTests, offersASuggestedApplicationWithItsData) {
    install("Steam", "com.contoh.steam", 1500);
    mac.applications.folder("Steam.app/Contents/_MASReceipt");
    const auto caches = data("Caches/com.contoh.steam", 30);
    const auto support = data("Application Support/Steam", 20);
    const auto web = data("WebKit/com.contoh.steam", 15);
    const auto storages = data("HTTPStorages/com.contoh.steam", 10);
    const auto logs = data("Logs/com.contoh.steam", 0);
    const std::int64_t dataBytes = 75 * block;

    EXPECT_THAT(
        items(),
        ElementsAre(CleanupItem{
            .title = "Steam",
            .detail = "Bukan app kerja, datanya terakhir berubah " + Formatters::relative(ago(40), now()) +
                      ". Hapus untuk membebaskan " + bytesText(1500 * block + dataBytes) + ".",
            .path = "/Applications/Steam.app",
            .bytes = 1500 * block + dataBytes,
            .category = ItemCategory::apps,
            .safety = Safety::review,
            .action = CleanupAction::trash(),
            .recommended = false,
            .lastActivity = std::nullopt,
            .offloadable = false,
            .warnings = {"Dari App Store: macOS mungkin meminta password admin saat dihapus.",
                         "Termasuk 4 lokasi data (" + bytesText(dataBytes) +
                             "): Cache, Data aplikasi, Data web"},
            .relatedPaths = std::vector<std::string>{caches, support, web, storages}}));
}

TEST_F(InstalledAppRulesBoxTests, namesAKindOncePerLocation) {
    install("Steam", "com.contoh.steam", 1500);
    data("WebKit/com.contoh.steam", 15);
    data("HTTPStorages/com.contoh.steam", 10);

    const auto found = items();

    ASSERT_THAT(found, SizeIs(1));
    EXPECT_THAT(found[0].warnings,
                ElementsAre("Termasuk 2 lokasi data (" + bytesText(25 * block) + "): Data web, Data web"));
}

TEST_F(InstalledAppRulesBoxTests, offersASuggestedApplicationWithoutData) {
    install("Steam", "com.contoh.steam", 1500);

    EXPECT_THAT(items(), ElementsAre(CleanupItem{.title = "Steam",
                                                 .detail = "Bukan app kerja, tidak tercatat pernah dibuka. "
                                                           "Hapus untuk membebaskan " +
                                                           bytesText(1500 * block) + ".",
                                                 .path = "/Applications/Steam.app",
                                                 .bytes = 1500 * block,
                                                 .category = ItemCategory::apps,
                                                 .safety = Safety::review,
                                                 .action = CleanupAction::trash(),
                                                 .recommended = false,
                                                 .lastActivity = std::nullopt,
                                                 .offloadable = false,
                                                 .warnings = {},
                                                 .relatedPaths = std::vector<std::string>{}}));
}

TEST_F(InstalledAppRulesBoxTests, offersFrom5MBOnWithDataCounted) {
    constexpr std::int64_t below = testing::sizeBelow(5'000'000) / block;
    install("Dota Satu", "com.contoh.a", below);
    install("Dota Dua", "com.contoh.b", below + 1);
    install("Dota Tiga", "com.contoh.c", below - 9);
    data("Caches/com.contoh.c", 10);

    EXPECT_THAT(titles(items()), UnorderedElementsAre("Dota Dua", "Dota Tiga"));
}

TEST_F(InstalledAppRulesBoxTests, offersOnlyWhatIsSuggestedAndTheLargestFirst) {
    install("Roblox", "com.contoh.a", 1300);
    install("Catatan", "com.contoh.b", 3000);
    install("Figma", "com.figma.Desktop", 3000);
    install("Bawaan", "com.apple.contoh", 3000);
    install("Garena", "com.contoh.c", 1500);
    install("Spotify", "com.contoh.d", 1300);
    data("Caches/com.contoh.d", 1000);

    EXPECT_THAT(titles(items()), ElementsAre("Spotify", "Garena", "Roblox"));
}

} // namespace
} // namespace korvanti
