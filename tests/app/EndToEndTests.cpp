#include "EndToEnd.h"

#include "support/Git.h"
#include "support/TempFolder.h"

#include <algorithm>
#include <filesystem>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <regex>

namespace korvanti::testing {
namespace {

using ::testing::Contains;
using ::testing::ContainsRegex;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::MatchesRegex;
using ::testing::Not;
using ::testing::SizeIs;
using ::testing::StartsWith;
using Reading = ProgramOptions::Reading;

using EndToEndTests = EndToEnd;

const std::string xcode = "■ Xcode — ";
const std::string android = "■ Android & Gradle — ";
const std::string toolchains = "■ Paket & toolchain — ";
const std::string aiTools = "■ Tool AI & editor — ";

const std::string diskAccessNote =
    "ℹ︎ Full Disk Access belum aktif: Tong Sampah, Containers, dan media WhatsApp/Telegram tidak bisa diukur. "
    "Aktifkan di System Settings › Privacy & Security › Full Disk Access.";
const std::string xcodeNote = "ℹ︎ Xcode tidak ditemukan, jadi simulator & runtime dilewati.";
const std::string closingLine =
    "✓ = dipilih otomatis oleh 'Rekomendasi'. Mode terminal tidak menghapus apa pun; "
    "pakai app Korvanti untuk membersihkan.";

const std::string settingsFile = "Library/Application Support/Korvanti/settings.json";

/// A folder of Android Studio's logs: a row with a wildcard that lists from 10 MB on.
std::string studioLog(const std::string& name) {
    return "Library/Logs/Google/AndroidStudio" + name;
}

/// The keys of every object in the order of the text.
void expectSortedKeys(const nlohmann::ordered_json& value) {
    std::string last;
    for (const auto& [key, child] : value.items()) {
        if (value.is_object()) {
            EXPECT_LT(last, key);
            last = key;
        }
        if (child.is_structured())
            expectSortedKeys(child);
    }
}

// The start-up decision

TEST_F(EndToEndTests, printsTheUsageText) {
    const auto result = korvanti({"--help"});

    EXPECT_EQ(result.out,
              "Korvanti — bikin storage Mac lemvar lagi (bonus pintar untuk developer iOS & Android)\n"
              "\n"
              "  Korvanti                 buka app\n"
              "  Korvanti --report        pindai & tampilkan rekomendasi (read-only)\n"
              "  Korvanti --report --all  tampilkan semua item\n"
              "  Korvanti --json          laporan dalam JSON\n"
              "  Korvanti --volumes       info SSD eksternal & saran\n"
              "  Korvanti --map           peta penyimpanan per folder\n");
    EXPECT_EQ(result.err, "");
}

TEST_F(EndToEndTests, prefersTheUsageTextToAScan) {
    const auto result = korvanti({"--json", "--help", "--all"});

    EXPECT_THAT(result.out, StartsWith("Korvanti — bikin storage"));
    EXPECT_EQ(result.err, "");
}

/// The program where a test can say what lies beside it.
class BesideTests : public EndToEnd {
protected:
    BesideTests() {
        mac.home.folder("bin");
        std::filesystem::copy_file(KORVANTI_EXECUTABLE, program);
    }
    void layWindow(std::filesystem::perms permissions) const {
        mac.home.file("bin/korvanti-window", {.text = "#!/bin/sh\necho \"$0\" \"$@\"\nexit 7\n"});
        std::filesystem::permissions(window, permissions);
    }

    const std::string program = mac.home.path("bin/korvanti");
    const std::string window = mac.home.path("bin/korvanti-window");
};

TEST_F(BesideTests, itIsTheWindowWithoutAFlagOfTheTerminal) {
    layWindow(std::filesystem::perms::owner_all);
    for (const auto& arguments :
         {std::vector<std::string>{}, {"--foo"}, {"--REPORT"}, {"--report=x"}, {"-report", "two words"}}) {
        std::vector<std::string> command = {program};
        std::string expected = window;
        for (const auto& argument : arguments) {
            command.push_back(argument);
            expected += " " + argument;
        }
        const auto result = runProgram(command);
        EXPECT_EQ(result.out, expected + "\n");
        EXPECT_EQ(result.err, "");
        EXPECT_EQ(result.status, 7);
    }
}

TEST_F(BesideTests, theWindowIsFoundThroughALinkToTheProgram) {
    layWindow(std::filesystem::perms::owner_all);
    std::filesystem::create_symlink(program, mac.home.path("korvanti"));
    EXPECT_EQ(runProgram({mac.home.path("korvanti")}).out, window + "\n");
}

TEST_F(BesideTests, withoutAWindowItSaysSo) {
    for (const bool isLocked : {false, true}) {
        if (isLocked)
            layWindow(std::filesystem::perms::owner_read);
        const auto result = runProgram({program});
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.out, "");
        EXPECT_THAT(result.err, StartsWith("Jendela Korvanti tidak bisa dibuka: " + window + ": "));
        EXPECT_THAT(result.err, EndsWith("\nJalankan `korvanti --report` untuk laporan di terminal.\n"));
    }
}

TEST_F(EndToEndTests, passesAnUnknownArgumentBy) {
    EXPECT_THAT(korvanti({"--foo", "--report"}).out, EndsWith("\n" + closingLine + "\n"));
    EXPECT_THAT(korvanti({"--report", "--foo"}).out, EndsWith("\n" + closingLine + "\n"));
}

// The report

TEST_F(EndToEndTests, tellsTheDrivesHealth) {
    mac.answer("diskutil info -plist /", textOf(KORVANTI_TEST_DATA "/diskutil-info-root.plist"));

    EXPECT_THAT(korvanti({"--report"}).out,
                ContainsRegex("\nKesehatan SSD: aus 3% · total ditulis 32 TB · swap [0-9.]+ [a-zA-Z]+\n"));
}

TEST_F(EndToEndTests, laysTheReportOut) {
    occupy("Library/Developer/Xcode/Archives", 20'500'000);
    occupy("Library/Developer/Xcode/DerivedData", 21'000'000);
    occupy(".gradle/caches/modules-2", 125'000'000);
    occupy(".gradle/daemon", 10'000'000);
    occupy("Library/Application Support/Claude", 24'000'000);
    mac.home.file(".claude/memory", {.text = "hello"});

    const auto lines = linesOf(korvanti({"--report"}).out);

    ASSERT_THAT(lines, SizeIs(::testing::Gt(3U)));
    EXPECT_EQ(lines[0], "");
    EXPECT_THAT(lines[1], MatchesRegex("KORVANTI · .*[0-9]:[0-9][0-9].* · pindai [0-9]+ dtk"));
    EXPECT_THAT(
        lines[2],
        MatchesRegex(R"(Disk internal: [0-9.]+ [MGT]B kosong dari [0-9.]+ [MGT]B \(\+0 bytes purgeable\))"));
    EXPECT_THAT((std::vector<std::string>(lines.begin() + 3, lines.end())),
                ElementsAre("Full Disk Access: BELUM — sebagian folder tidak terbaca",         //
                            "",                                                                //
                            "  Aman                        31 MB",                             //
                            "  Aman · unduh ulang         125 MB",                             //
                            "  Periksa dulu              20.5 MB",                             //
                            "  Penting                      4 KB",                             //
                            "  Dikelola sistem             24 MB",                             //
                            "  → Rekomendasi Korvanti      31 MB",                             //
                            "",                                                                //
                            "■ Xcode — 41.5 MB bisa dibersihkan",                              //
                            "  ✓     21 MB  Aman                DerivedData Xcode",            //
                            "      20.5 MB  Periksa dulu        Arsip Xcode (.xcarchive)",     //
                            "",                                                                //
                            "■ Android & Gradle — 135 MB bisa dibersihkan",                    //
                            "  ✓     10 MB  Aman                Log Gradle daemon",            //
                            "       125 MB  Aman · unduh ulang  Dependency Gradle (Maven)",    //
                            "",                                                                //
                            "■ Tool AI & editor — 0 bytes bisa dibersihkan",                   //
                            "         4 KB  Penting             Memori & riwayat Claude Code", //
                            "        24 MB  Dikelola sistem     Data app Claude",              //
                            "",                                                                //
                            diskAccessNote, xcodeNote, "", closingLine));
}

TEST_F(EndToEndTests, reportsAnEmptyHome) {
    const auto lines = linesOf(korvanti({"--report"}).out);

    ASSERT_THAT(lines, SizeIs(16));
    EXPECT_THAT((std::vector<std::string>(lines.begin() + 5, lines.end())),
                ElementsAre("  Aman                      0 bytes", //
                            "  Aman · unduh ulang        0 bytes", //
                            "  Periksa dulu              0 bytes", //
                            "  Penting                   0 bytes", //
                            "  Dikelola sistem           0 bytes", //
                            "  → Rekomendasi Korvanti    0 bytes", //
                            "", diskAccessNote, xcodeNote, "", closingLine));
}

TEST_F(EndToEndTests, writesSizesInTheSystemsLanguage) {
    occupy("Library/Developer/Xcode/DerivedData", 20'500'000);

    const auto report = korvanti({"--report"}, with("LC_ALL", "id_ID.UTF-8")).out;

    EXPECT_THAT(sectionOf(report, xcode),
                ElementsAre("■ Xcode — 20,5 MB bisa dibersihkan",
                            "  ✓   20,5 MB  Aman                DerivedData Xcode"));
    EXPECT_THAT(linesOf(report), Contains("  Penting                    0 byte"));
}

TEST_F(EndToEndTests, showsTwelveItemsOfACategory) {
    for (int number = 0; number < 12; ++number)
        occupy(studioLog(std::to_string(number)), 10'000'000);

    const auto section = sectionOf(korvanti({"--report"}).out, android);

    EXPECT_THAT(section, SizeIs(13));
    EXPECT_THAT(section, Not(Contains(HasSubstr("item lain"))));
}

TEST_F(EndToEndTests, countsTheItemsBeyondTheTwelfth) {
    for (int number = 1; number <= 13; ++number) // each 100 KB larger than the one before
        occupy(studioLog(std::to_string(number)), 10'000'000 + number * 100'000);

    const auto section = sectionOf(korvanti({"--report"}).out, android);

    ASSERT_THAT(section, SizeIs(14));
    EXPECT_EQ(section[0], "■ Android & Gradle — 139.1 MB bisa dibersihkan");
    EXPECT_EQ(section[1], "  ✓   11.3 MB  Aman                Log Android Studio (AndroidStudio13)");
    EXPECT_EQ(section[12], "  ✓   10.2 MB  Aman                Log Android Studio (AndroidStudio2)");
    EXPECT_EQ(section[13], "    … 1 item lain (pakai --all)");
}

TEST_F(EndToEndTests, showsEveryItemWithItsPathWhenAskedForAll) {
    for (int number = 1; number <= 13; ++number)
        occupy(studioLog(std::to_string(number)), 10'000'000 + number * 100'000);

    const auto section = sectionOf(korvanti({"--report", "--all"}).out, android);

    ASSERT_THAT(section, SizeIs(27));
    EXPECT_EQ(section[25], "  ✓   10.1 MB  Aman                Log Android Studio (AndroidStudio1)");
    EXPECT_EQ(section[26], "      ~/Library/Logs/Google/AndroidStudio1");
    EXPECT_THAT(section, Not(Contains(HasSubstr("item lain"))));
}

TEST_F(EndToEndTests, takesAllAloneForTheFullReport) {
    occupy(".gradle/daemon", 10'000'000);

    EXPECT_THAT(sectionOf(korvanti({"--all"}).out, android),
                ElementsAre("■ Android & Gradle — 10 MB bisa dibersihkan",
                            "  ✓     10 MB  Aman                Log Gradle daemon",
                            "      ~/.gradle/daemon"));
}

TEST_F(EndToEndTests, tellsHowFarItIsOnStandardError) {
    const auto progress = linesOf(korvanti({"--report"}).err);

    ASSERT_THAT(progress, SizeIs(::testing::Ge(3U)));
    EXPECT_EQ(progress.front(), "· Mengindeks proyek…");
    EXPECT_THAT(progress, Contains("· Selesai: Katalog lokasi dikenal").Times(1));
    EXPECT_EQ(progress.back(), "· Membaca kondisi disk…");
    EXPECT_THAT(progress, ::testing::Each(StartsWith("· ")));
}

TEST_F(EndToEndTests, seesFullDiskAccess) {
    mac.grantFullDiskAccess();

    const auto lines = linesOf(korvanti({"--report"}).out);

    EXPECT_THAT(lines, Contains("Full Disk Access: aktif"));
    EXPECT_THAT(lines, Not(Contains(diskAccessNote)));
}

TEST_F(EndToEndTests, seesXcode) {
    mac.applications.folder("Xcode-16.app/Contents/Developer");

    EXPECT_THAT(linesOf(korvanti({"--report"}).out), Not(Contains(xcodeNote)));
}

TEST_F(EndToEndTests, endsWithTheClosingLineWithoutNotes) {
    mac.grantFullDiskAccess();
    mac.applications.folder("Xcode.app/Contents/Developer");

    EXPECT_THAT(korvanti({"--report"}).out,
                EndsWith("\n  → Rekomendasi Korvanti    0 bytes\n\n\n" + closingLine + "\n"));
}

// What is listed

TEST_F(EndToEndTests, listsFromTheSmallestSizeOn) {
    occupy("Library/Developer/Xcode/Products", 4883LL * 4096); // 20,000,768 bytes
    occupy("Library/Developer/Xcode/DerivedData", 4882LL * 4096);

    EXPECT_THAT(
        sectionOf(korvanti({"--report"}).out, xcode),
        ElementsAre("■ Xcode — 20 MB bisa dibersihkan", "  ✓     20 MB  Aman                Xcode Products"));
}

TEST_F(EndToEndTests, countsBlocksAndNotTheLength) {
    mac.home.file("Library/Developer/Xcode/DerivedData/sparse", {.sparseBytes = 10'000'000'000});

    EXPECT_THAT(sectionOf(korvanti({"--report"}).out, xcode), IsEmpty());
}

TEST_F(EndToEndTests, listsImportantThingsOfAnySize) {
    mac.home.file(".claude", {.text = "12345"});

    EXPECT_THAT(sectionOf(korvanti({"--report", "--all"}).out, aiTools),
                ElementsAre("■ Tool AI & editor — 0 bytes bisa dibersihkan",
                            "         4 KB  Penting             Memori & riwayat Claude Code",
                            "      ~/.claude"));
}

TEST_F(EndToEndTests, listsNothingForAnEmptyManagedFolder) {
    mac.home.folder(".codex/worktrees");

    EXPECT_THAT(sectionOf(korvanti({"--report"}).out, aiTools), IsEmpty());
}

TEST_F(EndToEndTests, doesNotListALocationThatIsALink) {
    mac.home.file("elsewhere/contents", {.allocatedBytes = 21'000'000});
    mac.home.folder("Library/Developer/Xcode");
    mac.home.symlink("Library/Developer/Xcode/DerivedData", mac.home.path("elsewhere"));

    EXPECT_THAT(sectionOf(korvanti({"--report"}).out, xcode), IsEmpty());
}

TEST_F(EndToEndTests, takesDockersDataForALeftoverWithoutDocker) {
    occupy("Library/Containers/com.docker.docker", 20'000'000);

    EXPECT_THAT(sectionOf(korvanti({"--report"}).out, toolchains),
                ElementsAre("■ Paket & toolchain — 20 MB bisa dibersihkan",
                            "        20 MB  Periksa dulu        Sisa data Docker Desktop"));
}

TEST_F(EndToEndTests, leavesDockersDataToDockerWhereItIsInstalled) {
    mac.installApplication("Docker", "com.docker.docker");
    occupy("Library/Containers/com.docker.docker", 20'000'000);

    EXPECT_THAT(sectionOf(korvanti({"--report"}).out, toolchains),
                ElementsAre("■ Paket & toolchain — 0 bytes bisa dibersihkan",
                            "        20 MB  Dikelola sistem     Data Docker Desktop"));
}

TEST_F(EndToEndTests, takesNoOtherApplicationForDocker) {
    mac.installApplication("Docker", "com.docker.docker2");
    mac.installApplication("Other", "com.Docker.docker");
    occupy("Library/Containers/com.docker.docker", 20'000'000);

    EXPECT_THAT(sectionOf(korvanti({"--report"}).out, toolchains),
                Contains("        20 MB  Periksa dulu        Sisa data Docker Desktop"));
}

TEST_F(EndToEndTests, passesAnUnreadableLocationBy) {
    occupy("Library/Developer/Xcode/DerivedData", 21'000'000);
    mac.home.setMode("Library/Developer/Xcode/DerivedData", 0);

    const auto result = korvanti({"--report"});

    EXPECT_THAT(sectionOf(result.out, xcode), IsEmpty());
    EXPECT_THAT(linesOf(result.err), ::testing::Each(StartsWith("· ")));
}

TEST_F(EndToEndTests, countsWhatIsReadableBesideAnUnreadableFolder) {
    occupy("Library/Developer/Xcode/DerivedData", 21'000'000);
    occupy("Library/Developer/Xcode/DerivedData/locked", 8'000'000);
    mac.home.setMode("Library/Developer/Xcode/DerivedData/locked", 0);

    EXPECT_THAT(sectionOf(korvanti({"--report"}).out, xcode),
                ElementsAre("■ Xcode — 21 MB bisa dibersihkan",
                            "  ✓     21 MB  Aman                DerivedData Xcode"));
}

TEST_F(EndToEndTests, keepsALineWholeWhateverAFolderIsCalled) {
    occupy(studioLog("\n■ Xcode — 1 TB"), 10'300'000);
    occupy(studioLog("\x1b[31m"), 10'200'000);
    occupy(studioLog("\xff\xfe"), 10'100'000);

    EXPECT_THAT(
        sectionOf(korvanti({"--all"}).out, android),
        ElementsAre("■ Android & Gradle — 30.6 MB bisa dibersihkan",
                    "  ✓   10.3 MB  Aman                Log Android Studio (AndroidStudio�■ Xcode — 1 TB)",
                    "      ~/Library/Logs/Google/AndroidStudio�■ Xcode — 1 TB",
                    "  ✓   10.2 MB  Aman                Log Android Studio (AndroidStudio�[31m)",
                    "      ~/Library/Logs/Google/AndroidStudio�[31m",
                    "  ✓   10.1 MB  Aman                Log Android Studio (AndroidStudio��)",
                    "      ~/Library/Logs/Google/AndroidStudio��"));
}

// JSON

TEST_F(EndToEndTests, printsOneJsonDocumentAndNothingElse) {
    occupy(".gradle/daemon", 10'000'000);

    const auto result = korvanti({"--json"});

    EXPECT_EQ(result.err, "");
    EXPECT_THAT(result.out, StartsWith("{\n  \"disk\" : {\n"));
    EXPECT_THAT(result.out, EndsWith("\"\n}\n"));
    EXPECT_TRUE(nlohmann::json::accept(result.out));
    EXPECT_EQ(std::ranges::count(result.out, '\0'), 0);
}

TEST_F(EndToEndTests, sortsTheKeysOfTheJson) {
    occupy(".gradle/daemon", 10'000'000);

    expectSortedKeys(nlohmann::ordered_json::parse(korvanti({"--json"}).out));
}

TEST_F(EndToEndTests, escapesTheSlashesOfTheJson) {
    occupy(".gradle/daemon", 10'000'000);

    const auto json = korvanti({"--json"}).out;

    EXPECT_THAT(json, HasSubstr(R"("path" : "\/Users\/tester\/.gradle\/daemon")"));
    for (auto slash = json.find('/'); slash != std::string::npos; slash = json.find('/', slash + 1))
        EXPECT_EQ(json.at(slash - 1), '\\') << json.substr(slash - 1, 40);
}

TEST_F(EndToEndTests, printsTheSameJsonWithAll) {
    occupy(".gradle/daemon", 10'000'000);

    const auto result = korvanti({"--json", "--all"});

    EXPECT_EQ(result.err, "");
    EXPECT_EQ(nlohmann::json::parse(result.out).at("items"),
              nlohmann::json::parse(korvanti({"--json"}).out).at("items"));
}

TEST_F(EndToEndTests, putsEveryItemIntoTheJson) {
    for (int number = 0; number < 13; ++number)
        occupy(studioLog(std::to_string(number)), 10'000'000);

    EXPECT_THAT(nlohmann::json::parse(korvanti({"--json"}).out).at("items"), SizeIs(13));
}

TEST_F(EndToEndTests, repairsNamesThatAreNoTextInTheJson) {
    occupy(studioLog("\n2"), 10'200'000);
    occupy(studioLog("\xff\xfe"), 10'100'000);

    const auto json = korvanti({"--json"}).out;

    EXPECT_THAT(json, HasSubstr(R"json("title" : "Log Android Studio (AndroidStudio\n2)")json"));
    EXPECT_THAT(json, HasSubstr("\"title\" : \"Log Android Studio (AndroidStudio��)\""));
    EXPECT_TRUE(nlohmann::json::accept(json)); // which also checks the UTF-8
}

TEST_F(EndToEndTests, printsExactlyTheKnownJson) {
    const auto place = [this](const std::string& location, std::int64_t bytes, std::int64_t modified) {
        occupy(location, bytes);
        mac.home.setModified(location, modified);
    };
    place("Library/Developer/Xcode/DerivedData", 21'000'000, 1'767'323'045);
    place("Library/Developer/Xcode/Archives", 20'500'000, 1'767'323'046);
    place(".gradle/caches/modules-2", 25'000'000, 0);
    place(".gradle/daemon", 10'000'000, -1);
    place("Library/Logs/Google/AndroidStudio2024.1 \"Ö\"", 11'000'000, 951'782'400);
    place("Library/Containers/com.docker.docker", 22'000'000, 1'709'164'800);
    place("Library/Application Support/Code/Cache", 30'000'000, 1'767'225'599);
    place("Library/Application Support/Claude", 23'000'000, 1'767'225'600);
    place(".claude", 1, 1'600'000'000);
    place("Library/Group Containers/group.net.whatsapp.WhatsApp.shared/Message/Media", 26'000'000,
          1'700'000'000);
    mac.home.file(".npm/_logs", {.allocatedBytes = 5'000'000, .modified = 1'500'000'000});

    auto json = korvanti({"--json"}).out;

    json = std::regex_replace(json, std::regex(R"re(("startedAt" : )"[0-9]{4}-[0-9-]{5}T[0-9:]{8}Z")re"),
                              "$1\"<instant>\"");
    json = std::regex_replace(
        json,
        std::regex(
            R"re(("(duration|total|available|availableImportant|swapUsed|physicalMemory)" : )[0-9][0-9.e-]*)re"),
        "$1<number>");
    EXPECT_EQ(json, textOf(KORVANTI_TEST_DATA "/golden-report.json"));
}

// The map

TEST_F(EndToEndTests, mapsTheFoldersOfTheMac) {
    occupy("Library/Caches/large", 40'000'000);
    occupy("Library/Caches/small", 5'000'000);
    occupy("Library/Logs/all", 12'000'000);
    occupy("Movies/film", 20'000'000);
    mac.home.file("archive.zip", {.allocatedBytes = 11'000'000});
    mac.home.folder("Library/locked/inside");
    mac.home.setMode("Library/locked", 0);

    const auto result = korvanti({"--map"});

    EXPECT_THAT(sectionOf(result.out, "■ Home (~)"),
                ElementsAre("■ Home (~) — 88 MB (1 folder tak terbaca)", //
                            "      57 MB  Library  [1 tak terbaca]",     //
                            "          45 MB  Caches",                   //
                            "          12 MB  Logs",                     //
                            "        0 bytes  locked",                   //
                            "      20 MB  Movies",                       //
                            "          20 MB  film",                     //
                            "      11 MB  archive.zip"));
    EXPECT_THAT(linesOf(result.out), Contains("■ /Applications — 0 bytes"));
    EXPECT_THAT(linesOf(result.err), Contains("· Memetakan ~…"));
    EXPECT_THAT(linesOf(result.err), Contains("· Memetakan /Applications…"));
    EXPECT_THAT(linesOf(result.err), ::testing::Each(MatchesRegex("· Memetakan .+…")));
}

TEST_F(EndToEndTests, keepsTheMapForTheApplication) {
    occupy("Library/Caches/large", 40'000'000);

    static_cast<void>(korvanti({"--map"}));

    const auto map = nlohmann::ordered_json::parse(
        textOf(mac.home.path("Library/Application Support/Korvanti/storage-map.json")));
    EXPECT_THAT(map.at("createdAt").get<std::string>(), EndsWith("Z"));
    const auto roots = map.at("roots");
    const auto home =
        std::ranges::find_if(roots, [](const auto& root) { return root.at("name") == "Home (~)"; });
    ASSERT_NE(home, roots.end());
    EXPECT_EQ(home->at("children").at(0).at("path"), "/Users/tester/Library");
}

TEST_F(EndToEndTests, prefersTheJsonToTheMapAndTheMapToTheReport) {
    EXPECT_THAT(korvanti({"--map", "--json"}).out, StartsWith("{\n"));
    EXPECT_THAT(korvanti({"--report", "--all", "--map"}).out, StartsWith("\n■ "));
}

TEST_F(EndToEndTests, mapsAHomeThatDoesNotExist) {
    const auto lines = linesOf(korvanti({"--map"}, with("HOME", "/proc/nobody")).out);

    EXPECT_THAT(lines, Contains("■ /Applications — 0 bytes"));
    EXPECT_THAT(lines, Not(Contains(HasSubstr("nobody"))));
}

// Settings and home

TEST_F(EndToEndTests, leavesDamagedSettingsAsTheyAre) {
    const std::string whole =
        R"({"devRoots": ["~/x"], "inactiveDays": 3, "lowSpaceWarningGB": 5, "relocations": {}})";
    for (const auto& text :
         {std::string("{not json"), whole.substr(0, whole.size() / 2), std::string("[]"),
          std::string(R"({"devRoots": ["~/x"]})"), std::string(), std::string("\xff\x00\x01", 3)}) {
        mac.home.file(settingsFile, {.text = text});

        const auto result = korvanti({"--report"});

        EXPECT_THAT(result.out, EndsWith("\n" + closingLine + "\n")) << text;
        EXPECT_THAT(linesOf(result.err), ::testing::Each(StartsWith("· "))) << text;
        EXPECT_EQ(textOf(mac.home.path(settingsFile)), text);
    }
}

TEST_F(EndToEndTests, leavesGoodSettingsAsTheyAre) {
    const std::string text =
        R"({"relocations":{},"devRoots":["~/b","~/a"],"inactiveDays":3,"lowSpaceWarningGB":5,"more":1})";
    mac.home.file(settingsFile, {.text = text});

    static_cast<void>(korvanti({"--report"}));

    EXPECT_EQ(textOf(mac.home.path(settingsFile)), text);
}

TEST_F(EndToEndTests, changesNothingInTheHome) {
    occupy("Library/Developer/Xcode/DerivedData", 21'000'000);
    mac.home.symlink("Library/Caches/Homebrew", "/nowhere");
    mac.home.folder("Library/Application Support/Korvanti");
    const auto before = picture(mac.home.path());

    static_cast<void>(korvanti({"--report", "--all"}));
    static_cast<void>(korvanti({"--json"}));

    EXPECT_EQ(picture(mac.home.path()), before);
}

TEST_F(EndToEndTests, writesNothingIntoItsFolder) {
    static_cast<void>(korvanti({"--report"}));

    EXPECT_TRUE(std::filesystem::is_empty(mac.home.path("Library/Application Support/Korvanti")));
}

TEST_F(EndToEndTests, reportsAHomeThatDoesNotExist) {
    const auto lines = linesOf(korvanti({"--report"}, with("HOME", "/proc/nobody")).out);

    ASSERT_THAT(lines, SizeIs(16));
    EXPECT_EQ(lines[2], "Disk internal: 0 bytes kosong dari 0 bytes (+0 bytes purgeable)");
    EXPECT_EQ(lines[10], "  → Rekomendasi Korvanti    0 bytes");
}

TEST_F(EndToEndTests, makesItsFolderInAHomeThatDoesNotExistYet) {
    const TempFolder temp;

    static_cast<void>(korvanti({"--report"}, with("HOME", temp.path("new/home"))));

    EXPECT_TRUE(std::filesystem::is_directory(temp.path("new/home/Library/Application Support/Korvanti")));
}

TEST_F(EndToEndTests, findsTheHomeWithoutTheVariable) {
    occupy(".gradle/daemon", 10'000'000);

    EXPECT_THAT(sectionOf(korvanti({"--all"}, with("HOME", std::nullopt)).out, android),
                Contains("      ~/.gradle/daemon"));
}

// Repositories of others

TEST_F(EndToEndTests, runsNothingThatARepositorysOwnSettingsName) {
    const auto repository = mac.home.folder("Developer/foreign");
    mac.home.file("Developer/foreign/.gitignore", {.text = "node_modules/\n"});
    mac.home.file("Developer/foreign/package.json");
    mac.home.file("Developer/foreign/node_modules/data", {.allocatedBytes = 20'000'768});
    const auto program = mac.home.file("program", {.text = "#!/bin/sh\ntouch /Users/tester/it-ran\n"});
    mac.home.setMode("program", 0755);
    for (const std::vector<std::string>& step : {std::vector<std::string>{"init", "-q"},
                                                 {"add", "."},
                                                 {"commit", "-qm", "All"},
                                                 {"config", "core.fsmonitor", program},
                                                 {"config", "log.showSignature", "true"},
                                                 {"config", "gpg.program", program}})
        git(repository, step);

    const auto report = korvanti({"--all"}).out;

    EXPECT_THAT(report, HasSubstr("~/Developer/foreign/node_modules"));
    EXPECT_FALSE(std::filesystem::exists("/Users/tester/it-ran"));
}

TEST_F(EndToEndTests, aSettingOfGitInItsOwnSurroundingsDoesNotMisleadIt) {
    mac.home.folder("Developer/app");
    mac.home.file("Developer/app/.gitignore", {.text = "node_modules/\n"});
    mac.home.file("Developer/app/package.json");
    mac.home.file("Developer/app/node_modules/data", {.allocatedBytes = 20'000'768});
    git(mac.home.path("Developer/app"), {"init", "-q"});

    EXPECT_THAT(korvanti({"--all"}, with("GIT_DIR", "/nowhere")).out,
                HasSubstr("~/Developer/app/node_modules"));
}

// Standard output

TEST_F(EndToEndTests, endsWellWhenNobodyReadsOn) {
    for (int number = 0; number < 15; ++number)
        occupy(studioLog(std::to_string(number)), 10'000'000);

    for (const auto& mode : {"--all", "--json"}) {
        EXPECT_THAT(linesOf(korvanti({mode}, reading(Reading::firstLine)).out), SizeIs(1)) << mode;
        EXPECT_EQ(korvanti({mode}, reading(Reading::nothing)).out, "") << mode;
    }
    EXPECT_EQ(korvanti({"--help"}, reading(Reading::nothing)).out, "");
}

TEST_F(EndToEndTests, worksWithItsStandardStreamsClosed) {
    occupy(".npm/_cacache", 21'000'000);
    for (const std::string streams : {">&-", "2>&-", "<&-", "<&- >&- 2>&-"}) {
        const auto result = runProgram({"sh", "-c", "exec \"$0\" --report " + streams, KORVANTI_EXECUTABLE},
                                       {.environment = {{"HOME", "/Users/tester"}}});
        EXPECT_EQ(result.status, 0) << streams;
        EXPECT_EQ(result.out.contains("Cache npm"), !streams.contains(" >") && !streams.starts_with('>'))
            << streams;
    }
}

TEST_F(EndToEndTests, hearsWhatToolsSayWhereItsCallerIgnoresTheEndOfChildren) {
    mac.home.folder("Developer/app");
    mac.home.file("Developer/app/.gitignore", {.text = "node_modules/\n"});
    mac.home.file("Developer/app/package.json");
    mac.home.file("Developer/app/node_modules/data", {.allocatedBytes = 20'000'768});
    ASSERT_EQ(runProgram({"git", "-C", mac.home.path("Developer/app"), "init", "-q"}).status, 0);

    EXPECT_THAT(runProgram({"sh", "-c", "trap '' CHLD; exec \"$0\" --all", KORVANTI_EXECUTABLE},
                           {.environment = {{"HOME", "/Users/tester"}}})
                    .out,
                HasSubstr("~/Developer/app/node_modules"));
}

TEST_F(EndToEndTests, saysNothingAboutAReaderThatWent) {
    EXPECT_EQ(korvanti({"--json"}, reading(Reading::nothing)).err, "");
    EXPECT_THAT(linesOf(korvanti({"--report"}, reading(Reading::nothing)).err),
                ::testing::Each(StartsWith("· ")));
}

} // namespace
} // namespace korvanti::testing
