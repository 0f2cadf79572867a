#include "SsdSupport.h"
#include "base/ByteText.h"
#include "drives/VolumeAdvisor.h"
#include "support/DiskSpace.h"
#include "ui/SsdModel.h"

#include <QAbstractItemModelTester>
#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QSignalSpy>
#include <chrono>
#include <fstream>
#include <gmock/gmock.h>
#include <limits>

namespace korvanti {
namespace {

using namespace korvanti::testing;
using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class SsdModelTests : public SsdFixture {
protected:
    SsdModel& pane() {
        if (!pane_) {
            pane_ = std::make_unique<SsdModel>(model(), [this] { return now; });
            for (auto* list : {pane_->volumes(), pane_->caches(), pane_->moved()})
                new QAbstractItemModelTester(list, QAbstractItemModelTester::FailureReportingMode::Fatal,
                                             list);
        }
        return *pane_;
    }
    static std::vector<std::string> column(const RowList* list, const char* role) {
        std::vector<std::string> values;
        for (const auto& row : list->rows())
            values.push_back(row.value(role).toString().toStdString());
        return values;
    }
    std::string volume(int row, const char* role) { return column(pane().volumes(), role).at(size_t(row)); }
    std::string moved(int row, const char* role) { return column(pane().moved(), role).at(size_t(row)); }
    RowList* advice(int row) { return pane().volumes()->rows()[row].value("advice").value<RowList*>(); }

    Instant now = currentInstant();

private:
    std::unique_ptr<SsdModel> pane_;
};

// Volumes

TEST_F(SsdModelTests, withoutVolumesAndRecordsNothingCanBeDone) {
    EXPECT_FALSE(pane().hasVolumes());
    EXPECT_FALSE(pane().hasWorkVolume());
    EXPECT_FALSE(pane().hasMoved());
    pane().toggleCache(0);
    EXPECT_FALSE(pane().canRelocate());
    EXPECT_FALSE(pane().canRevert());
    EXPECT_FALSE(pane().needsOtherFormat());
    for (const int row : {-1, 0, 7}) {
        pane().makeWorkVolume(row);
        pane().testSpeed(row);
        pane().reveal(row);
        pane().eject(row);
        pane().copyCommand(row, 0);
        pane().openMenu(row);
        EXPECT_FALSE(pane().hasMenu());
        pane().revealMoved();
        pane().restore();
        pane().forget();
    }
    pane().relocate();
    pane().revertRelocation();
    EXPECT_FALSE(model().speedTesting().has_value());
    EXPECT_FALSE(model().noticeMessage().has_value());
    EXPECT_FALSE(model().errorMessage().has_value());
    EXPECT_THAT(desktop.revealed, IsEmpty());
    EXPECT_THAT(desktop.opened, IsEmpty());
}

TEST_F(SsdModelTests, aVolumeIsToldInReadyTexts) {
    const DiskSpace space(612'400'000'000, 1'000'000'000'000);
    plug("Kerja", {.uuid = "aa-1"});
    plug("Lain", {.fsType = "exfat", .formatName = "ExFAT", .facts = ""});
    pane();
    ASSERT_TRUE(sees(2));
    EXPECT_TRUE(pane().hasVolumes());
    EXPECT_THAT(column(pane().volumes(), "name"), ElementsAre("Kerja", "Lain"));
    EXPECT_EQ(volume(0, "freeText"), "612,4 GB kosong dari 1 TB");
    EXPECT_THAT(column(pane().volumes(), "formatText"),
                ElementsAre("APFS · USB", "ExFAT · koneksi tidak diketahui"));
    EXPECT_EQ(pane().volumes()->rows()[0].value("used").toDouble(), 387'600'000'000);
    EXPECT_EQ(pane().volumes()->rows()[0].value("total").toDouble(), 1'000'000'000'000);
    EXPECT_EQ(volume(0, "speedText"), "");
}

TEST_F(SsdModelTests, aVolumeIsAlmostFullBelowATenth) {
    struct Case {
        std::int64_t free;
        std::int64_t total;
        bool isAlmostFull;
    };
    constexpr auto greatest = std::numeric_limits<std::int64_t>::max();
    plug("Kerja", {.uuid = "aa-1"});
    for (const auto& [free, total, isAlmostFull] :
         {Case{0, 0, false}, Case{5, 0, false}, Case{0, 1, true}, Case{99, 1'000, true},
          Case{100, 1'000, false}, Case{101, 1'000, false}, Case{2'000, 1'000, false},
          Case{0, greatest, true}, Case{greatest, greatest, false}}) {
        const DiskSpace space(free, total);
        ASSERT_TRUE(seesSize(free, total));
        EXPECT_EQ(pane().volumes()->rows()[0].value("isAlmostFull").toBool(), isAlmostFull)
            << free << " of " << total;
        EXPECT_EQ(advice(0)->rows().last().value("title").toString() == "SSD hampir penuh", isAlmostFull);
    }
}

TEST_F(SsdModelTests, adviceKeepsItsOrderAndEachLevelItsSymbol) {
    plug("Kerja", {.uuid = "aa-1",
                   .facts = "<key>GlobalPermissionsEnabled</key><false/><key>BusProtocol</key>"
                            "<string>USB</string>"});
    ASSERT_TRUE(sees(1));
    const auto* rows = advice(0);
    ASSERT_THAT(column(rows, "title"), ElementsAre("Format APFS", "Ownership diabaikan", "Koneksi USB"));
    EXPECT_THAT(column(rows, "symbol"),
                ElementsAre("checkmark.circle.fill", "exclamationmark.triangle.fill", "info.circle.fill"));
    EXPECT_THAT(column(rows, "level"), ElementsAre("0", "2", "1"));
    EXPECT_THAT(column(rows, "command"),
                ElementsAre("", "sudo diskutil enableOwnership \"/Volumes/Kerja\"", ""));
    const auto expected = VolumeAdvisor::advice(model().volumes().front());
    for (std::size_t row = 0; row < expected.size(); ++row)
        EXPECT_EQ(column(rows, "detail")[row], expected[row].detail);
}

TEST_F(SsdModelTests, aCommandIsCopiedAsItsVeryBytes) {
    const auto path =
        plug("odd\xff", {.uuid = "aa-1", .facts = "<key>GlobalPermissionsEnabled</key><false/>"});
    ASSERT_TRUE(sees(1));
    EXPECT_EQ(column(advice(0), "command")[1], "sudo diskutil enableOwnership \"/Volumes/odd\uFFFD\"");
    pane().copyCommand(0, 1);
    EXPECT_EQ(QGuiApplication::clipboard()->mimeData()->data("text/plain").toStdString(),
              "sudo diskutil enableOwnership \"" + path + "\"");
    QGuiApplication::clipboard()->setText("kept");
    for (const int row : {-1, 0, 99})
        pane().copyCommand(0, row);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), "kept");
}

TEST_F(SsdModelTests, oneVolumeAtATimeIsTheWorkVolume) {
    plug("Dua", {.uuid = "aa-2"});
    plug("Satu", {.uuid = "aa-1"});
    pane();
    ASSERT_TRUE(sees(2));
    EXPECT_THAT(column(pane().volumes(), "workText"), ElementsAre("Jadikan SSD kerja", "Jadikan SSD kerja"));
    EXPECT_FALSE(pane().hasWorkVolume());
    pane().makeWorkVolume(1);
    const auto chosen = model().volumes()[1];
    EXPECT_EQ(KorvantiSettings::load().workVolumeUUID, chosen.uuid);
    EXPECT_TRUE(pane().hasWorkVolume());
    EXPECT_THAT(column(pane().volumes(), "workText"), ElementsAre("Jadikan SSD kerja", "SSD kerja ✓"));
    EXPECT_THAT(column(pane().volumes(), "isWorkVolume"), ElementsAre("false", "true"));
    EXPECT_THAT(column(pane().volumes(), "canBecomeWorkVolume"), ElementsAre("true", "false"));
    EXPECT_EQ(pane().relocateText().toStdString(), "Arahkan ke " + chosen.name);
    pane().makeWorkVolume(0);
    EXPECT_THAT(column(pane().volumes(), "isWorkVolume"), ElementsAre("true", "false"));
}

TEST_F(SsdModelTests, aVolumeWithoutAUuidNeverBecomesTheWorkVolume) {
    plug("Kerja", {});
    pane();
    ASSERT_TRUE(sees(1));
    EXPECT_EQ(volume(0, "canBecomeWorkVolume"), "false");
    EXPECT_EQ(volume(0, "isWorkVolume"), "false");
    pane().makeWorkVolume(0);
    EXPECT_FALSE(model().settings().workVolumeUUID.has_value());
    EXPECT_FALSE(pane().hasWorkVolume());
}

TEST_F(SsdModelTests, oneExfatDriveIsNotChosenByItself) {
    plug("Kerja", {.uuid = "aa-1", .fsType = "exfat", .formatName = "ExFAT"});
    pane();
    ASSERT_TRUE(sees(1));
    EXPECT_FALSE(pane().hasWorkVolume());
    EXPECT_EQ(volume(0, "canBecomeWorkVolume"), "true");
}

TEST_F(SsdModelTests, namesAreShownAsOneLineOfText) {
    plug("<b>fett</b>", {.uuid = "aa-1"});
    plug("two\nlines", {});
    pane();
    ASSERT_TRUE(sees(2));
    EXPECT_THAT(column(pane().volumes(), "name"),
                ::testing::UnorderedElementsAre("<b>fett</b>", "two\uFFFDlines"));
}

// Speed

TEST_F(SsdModelTests, speedIsRoundedToWholeMegabytesHalvesToTheEvenSide) {
    struct Case {
        double write;
        double read;
        const char* text;
    };
    for (const auto& [write, read, text] :
         {Case{884.2, 950.9, "Tulis 884 MB/s · Baca 951 MB/s"}, Case{0.5, 1.5, "Tulis 0 MB/s · Baca 2 MB/s"},
          Case{2.5, 3.5, "Tulis 2 MB/s · Baca 4 MB/s"}, Case{0, 0.49, "Tulis 0 MB/s · Baca 0 MB/s"},
          Case{12'345.4, 1e15, "Tulis 12345 MB/s · Baca 1000000000000000 MB/s"},
          Case{1073741.824, 99.5, "Tulis 1073742 MB/s · Baca 100 MB/s"}})
        EXPECT_EQ(SsdModel::speedText({.writeMBps = write, .readMBps = read}).toStdString(), text);
    EXPECT_EQ(SsdModel::speedText({.writeMBps = 1e308, .readMBps = 1}).size(), 309 + 25);
}

TEST_F(SsdModelTests, whileOneVolumeIsTestedNoOtherCanBe) {
    plug("Dua", {.uuid = "aa-2"});
    plug("Satu", {});
    pane();
    ASSERT_TRUE(sees(2));
    const int tested = volume(0, "name") == "Satu" ? 0 : 1;
    EXPECT_THAT(column(pane().volumes(), "canTest"), ElementsAre("true", "true"));
    pane().testSpeed(tested);
    EXPECT_EQ(model().speedTesting(), "/Volumes/Satu") << "the mount path, without a UUID";
    EXPECT_THAT(column(pane().volumes(), "canTest"), ElementsAre("false", "false"));
    EXPECT_EQ(volume(tested, "testText"), "Menguji…");
    EXPECT_EQ(volume(1 - tested, "testText"), "Uji kecepatan (1 GB)");
    pane().testSpeed(1 - tested);
    EXPECT_EQ(model().speedTesting(), "/Volumes/Satu");
    ASSERT_TRUE(waitFor([&] { return !model().speedTesting().has_value(); }));
    EXPECT_EQ(model().errorMessage(), std::nullopt);
    ASSERT_TRUE(model().speedResults().contains("/Volumes/Satu"));
    EXPECT_THAT(volume(tested, "speedText"), ::testing::MatchesRegex("Tulis [0-9]+ MB/s · Baca [0-9]+ MB/s"));
    EXPECT_EQ(volume(1 - tested, "speedText"), "");
    EXPECT_THAT(column(pane().volumes(), "canTest"), ElementsAre("true", "true"));
}

// Caches

TEST_F(SsdModelTests, theCachesAreThoseThatCanBeRedirectedInTheirOrder) {
    EXPECT_THAT(column(pane().caches(), "title"),
                ElementsAre("DerivedData Xcode", "Gradle (cache, wrapper, JDK)", "Cache npm"));
    EXPECT_THAT(
        column(pane().caches(), "detail"),
        ElementsAre("Lewat pengaturan Xcode (Locations › Derived Data). Build Xcode berikutnya menulis ke "
                    "SSD. Skrip yang memakai `-derivedDataPath` sendiri tidak terpengaruh.",
                    "Lewat GRADLE_USER_HOME di ~/.zshenv, aktif hanya bila SSD terpasang. Berlaku untuk "
                    "Gradle dari Terminal; buka terminal baru setelah menerapkan.",
                    "Lewat npm_config_cache di ~/.zshenv, aktif hanya bila SSD terpasang."));
    EXPECT_THAT(column(pane().caches(), "isChosen"), ElementsAre("false", "false", "false"));
    EXPECT_THAT(column(pane().caches(), "targetText"), ElementsAre("", "", ""));
    pane().toggleCache(1);
    pane().toggleCache(2);
    pane().toggleCache(1);
    for (const int row : {-1, 3})
        pane().toggleCache(row);
    EXPECT_THAT(column(pane().caches(), "isChosen"), ElementsAre("false", "false", "true"));
}

TEST_F(SsdModelTests, cachesArePointedAtTheWorkVolumeAndBack) {
    plug("Kerja", {.uuid = "aa-1"});
    pane();
    ASSERT_TRUE(sees(1));
    ASSERT_TRUE(pane().hasWorkVolume());
    EXPECT_FALSE(pane().canRelocate()) << "nothing is chosen";
    EXPECT_FALSE(pane().canRevert()) << "nothing is in force";
    pane().toggleCache(2);
    ASSERT_TRUE(pane().canRelocate());
    pane().relocate();
    ASSERT_TRUE(waitFor([&] { return pane().canRevert(); }));
    EXPECT_THAT(column(pane().caches(), "targetText"),
                ElementsAre("", "", "Aktif: /Volumes/Kerja/Korvanti Dev/npm-cache.noindex"));
    EXPECT_THAT(textOf(mac.home.path(".zshenv")), HasSubstr("npm_config_cache"));
    pane().revertRelocation();
    ASSERT_TRUE(waitFor([&] { return !pane().canRevert(); }));
    EXPECT_THAT(column(pane().caches(), "targetText"), ElementsAre("", "", ""));
    EXPECT_THAT(textOf(mac.home.path(".zshenv")), Not(HasSubstr("npm_config_cache")));
}

TEST_F(SsdModelTests, allCachesComeBackWhenNoneIsChosen) {
    plug("Kerja", {.uuid = "aa-1"});
    pane();
    ASSERT_TRUE(sees(1));
    pane().toggleCache(1);
    pane().toggleCache(2);
    pane().relocate();
    ASSERT_TRUE(waitFor([&] { return pane().canRevert(); }));
    pane().toggleCache(1);
    pane().toggleCache(2);
    pane().revertRelocation();
    ASSERT_TRUE(waitFor([&] { return !pane().canRevert(); }));
    EXPECT_THAT(column(pane().caches(), "targetText"), ElementsAre("", "", ""));
    EXPECT_THAT(textOf(mac.home.path(".zshenv")), Not(HasSubstr("/Volumes/Kerja")));
}

TEST_F(SsdModelTests, aWorkVolumeOfAnotherFormatTakesNoCachesButGivesThemBack) {
    plug("Kerja", {.uuid = "aa-1"});
    pane();
    ASSERT_TRUE(sees(1));
    pane().toggleCache(1);
    pane().relocate();
    ASSERT_TRUE(waitFor([&] { return pane().canRevert(); }));
    EXPECT_FALSE(pane().needsOtherFormat());
    plug("Foto", {.uuid = "aa-2", .fsType = "exfat", .formatName = "ExFAT"});
    chooseWorkVolume("aa-2");
    ASSERT_TRUE(sees(2));
    EXPECT_TRUE(pane().needsOtherFormat());
    EXPECT_FALSE(pane().canRelocate());
    const auto before = textOf(mac.home.path(".zshenv"));
    model().dismissNotice();
    pane().relocate();
    EXPECT_FALSE(model().noticeMessage().has_value());
    EXPECT_FALSE(model().errorMessage().has_value());
    ASSERT_TRUE(pane().canRevert());
    pane().revertRelocation();
    EXPECT_NE(textOf(mac.home.path(".zshenv")), before);
    EXPECT_TRUE(waitFor([&] { return !pane().canRevert(); }));
}

TEST_F(SsdModelTests, aVolumeOfTheOlderMacFormatTakesCaches) {
    plug("Kerja", {.uuid = "aa-1", .fsType = "hfs", .formatName = "Mac OS Extended"});
    chooseWorkVolume("aa-1");
    ASSERT_TRUE(sees(1));
    pane().toggleCache(0);
    EXPECT_TRUE(pane().canRelocate());
    EXPECT_FALSE(pane().needsOtherFormat());
}

// What was moved

TEST_F(SsdModelTests, aRecordIsToldWithItsStatus) {
    const auto path = plug("Kerja", {.uuid = "aa-1"});
    std::filesystem::create_directories(path + "/Korvanti Offload/things/here");
    saveRecords({record("here", path + "/Korvanti Offload/things/here"),
                 record("lost", path + "/Korvanti Offload/things/lost"),
                 record("away", "/Volumes/Lain/Korvanti Offload/things/away")});
    ASSERT_TRUE(pane().hasMoved());
    EXPECT_THAT(column(pane().moved(), "title"), ElementsAre("here", "lost", "away"));
    EXPECT_EQ(moved(0, "path"), "~/things/here");
    EXPECT_EQ(moved(0, "sizeLine"), "9,64 GB · 3 hari yang lalu");
    EXPECT_THAT(column(pane().moved(), "statusText"),
                ElementsAre("Tersedia di SSD", "Folder di SSD hilang", "SSD tidak terpasang"));
    EXPECT_THAT(column(pane().moved(), "statusSymbol"),
                ElementsAre("checkmark.circle.fill", "exclamationmark.triangle.fill",
                            "exclamationmark.triangle.fill"));
    EXPECT_THAT(column(pane().moved(), "isAvailable"), ElementsAre("true", "false", "false"));
}

TEST_F(SsdModelTests, oddRecordsAreShownAsTheyAre) {
    auto odd = record("<i>x</i>\nsecond", "relative");
    odd.originalPath = "";
    odd.bytes = std::numeric_limits<std::int64_t>::max();
    auto negative = record("", "");
    negative.bytes = -1;
    negative.date = instantFromSeconds(-1);
    saveRecords({odd, negative});
    EXPECT_EQ(moved(0, "title"), "<i>x</i>\uFFFDsecond");
    EXPECT_EQ(moved(0, "path"), "");
    EXPECT_THAT(moved(0, "sizeLine"), ::testing::StartsWith(bytesText(odd.bytes) + " · "));
    EXPECT_THAT(column(pane().moved(), "isAvailable"), ElementsAre("false", "false"));
}

TEST_F(SsdModelTests, aDamagedStoreIsAnEmptyOne) {
    mac.home.file("Library/Application Support/Korvanti/offloads.json", {.text = "[{\"id\": 3}"});
    EXPECT_FALSE(pane().hasMoved());
}

TEST_F(SsdModelTests, statusAndDateKeepUpWhileThePaneIsSeen) {
    const auto path = plug("Kerja", {.uuid = "aa-1"});
    std::filesystem::create_directories(path + "/Korvanti Offload/a");
    saveRecords({record("a", path + "/Korvanti Offload/a")});
    EXPECT_EQ(moved(0, "isAvailable"), "true");
    std::filesystem::remove_all(path + "/Korvanti Offload/a");
    now += 24h;
    EXPECT_EQ(moved(0, "isAvailable"), "true");
    pane().clock()->setIsShown(true);
    EXPECT_EQ(moved(0, "statusText"), "Folder di SSD hilang");
    EXPECT_EQ(moved(0, "sizeLine"), "9,64 GB · 4 hari yang lalu");
    std::filesystem::create_directories(path + "/Korvanti Offload/a");
    pane().reload();
    EXPECT_EQ(moved(0, "isAvailable"), "true");
}

TEST_F(SsdModelTests, datesAndStatusesAreLookedUpAgainOnlyWhileThePaneIsSeen) {
    saveRecords({record("a", "/Volumes/Kerja/Korvanti Offload/a")});
    QSignalSpy told(&pane(), &SsdModel::movedChanged);
    expectToFollow(*pane().clock(), told, [this] { now += 24h; });
    EXPECT_EQ(moved(0, "sizeLine"), "9,64 GB · 5 hari yang lalu") << "not of the third day, which nobody saw";
}

TEST_F(SsdModelTests, aRecordWhoseDriveIsPulledOutStaysAndCanBeForgotten) {
    const auto path = plug("Kerja", {.uuid = "aa-1"});
    std::filesystem::create_directories(path + "/Korvanti Offload/a");
    saveRecords({record("a", path + "/Korvanti Offload/a")});
    pane();
    ASSERT_TRUE(sees(1));
    pane().openMenu(0);
    EXPECT_EQ(pane().restoreText(), "Kembalikan ke Mac");
    EXPECT_TRUE(pane().canRestore());
    unplug("Kerja");
    ASSERT_TRUE(sees(0));
    EXPECT_EQ(moved(0, "statusText"), "SSD tidak terpasang");
    EXPECT_EQ(pane().restoreText(), "SSD tidak terpasang");
    EXPECT_FALSE(pane().canRestore());
    pane().restore();
    EXPECT_FALSE(model().busyMessage().has_value());
    EXPECT_TRUE(pane().hasMenu());
    pane().forget();
    EXPECT_FALSE(pane().hasMoved());
    EXPECT_FALSE(pane().hasMenu());
    EXPECT_THAT(OffloadRecords::read(AppPaths::offloads()), IsEmpty());
}

TEST_F(SsdModelTests, theMenuNeverPassesToAnotherRecord) {
    const auto path = plug("Kerja", {.uuid = "aa-1"});
    const std::vector records = {record("a", path + "/Korvanti Offload/a"),
                                 record("b", path + "/Korvanti Offload/b")};
    for (const auto& one : records)
        std::filesystem::create_directories(one.destinationPath);
    saveRecords(records);
    pane().openMenu(1);
    model().forget(records[0]);
    ASSERT_TRUE(pane().hasMenu()) << "its row is another one now";
    pane().revealMoved();
    EXPECT_THAT(desktop.revealed, ElementsAre(records[1].destinationPath));
    pane().openMenu(0);
    QSignalSpy changes(&pane(), &SsdModel::menuChanged);
    model().forget(records[1]);
    EXPECT_FALSE(pane().hasMenu());
    EXPECT_GE(changes.count(), 1);
    pane().revealMoved();
    pane().restore();
    pane().forget();
    EXPECT_THAT(desktop.revealed, SizeIs(1));
    EXPECT_FALSE(model().busyMessage().has_value());
}

TEST_F(SsdModelTests, aMenuWhoseRecordHasGoneTouchesNoneOfTheOthers) {
    saveRecords({record("a", "/Volumes/Kerja/a"), record("b", "/Volumes/Kerja/b")});
    pane().openMenu(0);
    model().forget(model().offloads()[0]);
    pane().forget();
    EXPECT_THAT(column(pane().moved(), "title"), ElementsAre("b"));
}

TEST_F(SsdModelTests, oneMoveAtATimeGoesBack) {
    const auto path = plug("Kerja", {.uuid = "aa-1"});
    const std::vector records = {record("a", path + "/Korvanti Offload/a"),
                                 record("b", path + "/Korvanti Offload/b")};
    for (const auto& one : records)
        std::ofstream((std::filesystem::create_directories(one.destinationPath), one.destinationPath + "/x"));
    saveRecords(records);
    pane().openMenu(0);
    pane().restore();
    EXPECT_EQ(model().busyMessage(), "Mengembalikan a ke Mac…");
    pane().openMenu(1);
    EXPECT_EQ(pane().restoreText(), "Kembalikan ke Mac");
    EXPECT_FALSE(pane().canRestore());
    pane().restore();
    EXPECT_EQ(model().busyMessage(), "Mengembalikan a ke Mac…");
    ASSERT_TRUE(isIdle());
    ASSERT_TRUE(waitFor([&] { return pane().moved()->rows().size() == 1; }));
    EXPECT_TRUE(std::filesystem::exists("/Users/tester/things/a/x"));
    EXPECT_FALSE(std::filesystem::exists("/Users/tester/things/b"));
    EXPECT_TRUE(pane().canRestore());
}

// Rows

TEST_F(SsdModelTests, aVolumeThatGoesTakesItsRowAndLeavesTheOthersTheirs) {
    plug("Dua", {.uuid = "aa-2"});
    plug("Satu", {.uuid = "aa-1", .facts = ""});
    pane();
    ASSERT_TRUE(sees(2));
    const auto last = volume(1, "name");
    const QPersistentModelIndex kept = pane().volumes()->index(1);
    QSignalSpy removals(pane().volumes(), &RowList::rowsRemoved);
    unplug(volume(0, "name"));
    ASSERT_TRUE(sees(1));
    ASSERT_EQ(removals.count(), 1);
    EXPECT_EQ(removals[0][1].toInt(), 0);
    EXPECT_EQ(kept.row(), 0);
    EXPECT_EQ(volume(0, "name"), last);
    EXPECT_EQ(advice(0)->rows().size(), last == "Satu" ? 1 : 2) << "and its own advice";
}

} // namespace
} // namespace korvanti
