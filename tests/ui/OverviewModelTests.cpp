#include "ui/OverviewModel.h"

#include "UiSupport.h"
#include "base/ByteText.h"
#include "base/Json.h"
#include "scan/ReportJson.h"
#include "support/Environment.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <array>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <ostream>

namespace korvanti {

void PrintTo(Pane pane, std::ostream* out) {
    *out << rawValue(pane);
}
void PrintTo(ItemFilter filter, std::ostream* out) {
    *out << title(filter);
}

namespace {

using namespace korvanti::testing;
using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::int64_t greatest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t least = std::numeric_limits<std::int64_t>::min();

class OverviewModelTests : public UiTests {
protected:
    OverviewModelTests() {
        report.startedAt = now - 2h;
        report.duration = 41.9;
        report.disk.hasFullDiskAccess = true;
    }

    /// Made on first use, out of `report`.
    OverviewModel& overview() {
        if (!overview_) {
            mac.home.file("Library/Application Support/Korvanti/last-report.json",
                          {.text = prettySortedJson(toJson(report))});
            start();
        }
        return *overview_;
    }
    OverviewModel& overviewWithoutReport() {
        start();
        return *overview_;
    }
    [[nodiscard]] AppModel& app() { return *app_; }
    void startAgain() {
        overview_.reset();
        app_.reset();
    }

    CleanupItem& add(ItemCategory category, Safety safety, std::int64_t bytes, bool recommended = false) {
        CleanupItem item;
        item.path = "/item" + std::to_string(report.items.size());
        item.title = item.path;
        item.bytes = bytes;
        item.category = category;
        item.safety = safety;
        item.action = CleanupAction::delete_();
        item.recommended = recommended;
        return report.items.emplace_back(item);
    }

    static std::vector<std::string> column(const RowList* list, const char* role) {
        std::vector<std::string> values;
        for (const auto& row : list->rows())
            values.push_back(row.value(role).toString().toStdString());
        return values;
    }
    static std::vector<double> shares(const RowList* list) {
        std::vector<double> values;
        for (const auto& row : list->rows())
            values.push_back(row.value("share").toDouble());
        return values;
    }
    static std::string value(const RowList* list, const QString& label) {
        for (const auto& row : list->rows())
            if (row.value("label") == label)
                return row.value("value").toString().toStdString();
        return "missing";
    }

    const ScopedVariable language{"LC_ALL", "id_ID.UTF-8"};
    ScanReport report;
    Instant now = instantFromSeconds(1'760'000'000);

private:
    void start() {
        app_ = std::make_unique<AppModel>(std::make_unique<ScriptedDesktop>(desktop));
        overview_ = std::make_unique<OverviewModel>(*app_, [this] { return now; });
        for (auto* list :
             {overview_->tiles(), overview_->categories(), overview_->health(), overview_->notes()})
            new QAbstractItemModelTester(list, QAbstractItemModelTester::FailureReportingMode::Fatal, list);
    }

    std::unique_ptr<AppModel> app_;
    std::unique_ptr<OverviewModel> overview_;
};

// Without a report

TEST_F(OverviewModelTests, withoutAReportThereIsNothingToCleanAndNobodyIsAskedForAccess) {
    auto& pane = overviewWithoutReport();
    EXPECT_FALSE(pane.hasReport());
    EXPECT_FALSE(pane.asksForAccess());
    EXPECT_FALSE(pane.canClean());
    EXPECT_FALSE(pane.swapIsLarge());
    EXPECT_EQ(pane.scanLine(), "");
    EXPECT_TRUE(pane.categories()->rows().isEmpty());
    EXPECT_TRUE(pane.notes()->rows().isEmpty());
    pane.cleanRecommended();
    EXPECT_FALSE(app().pendingCleanup().has_value());
}

// Line of the scan

TEST_F(OverviewModelTests, theLineTellsWhenAndHowLongWithItsSecondsCut) {
    EXPECT_EQ(overview().scanLine(), "Dipindai 2 jam yang lalu · 41 dtk");
}

TEST_F(OverviewModelTests, aScanInTheFutureIsSaidToBeThere) {
    report.startedAt = now + 3h;
    EXPECT_EQ(overview().scanLine(), "Dipindai dalam 3 jam · 41 dtk");
}

TEST_F(OverviewModelTests, durationsThatNoScanHasAreStillNumbers) {
    struct Case {
        double duration;
        QString text;
    };
    for (const auto& [duration, text] : {Case{0, "0"},
                                         {0.999, "0"},
                                         {-0.5, "0"},
                                         {-3.9, "-3"},
                                         {9.3e18, "1000000000000000"},
                                         {1e300, "1000000000000000"},
                                         {-1e300, "-1000000000000000"}}) {
        report.duration = duration;
        EXPECT_EQ(overview().scanLine(), "Dipindai 2 jam yang lalu · " + text + " dtk");
        startAgain();
    }
}

TEST_F(OverviewModelTests, whileShownTheLineKeepsUpWithTheClockOnceAMinute) {
    auto& pane = overview();
    QSignalSpy lines(&pane, &OverviewModel::scanLineChanged);
    expectToFollow(*pane.clock(), lines, [this] { now += 1h; });
    EXPECT_NE(pane.scanLine(), "Dipindai 2 jam yang lalu · 41 dtk");
}

TEST_F(OverviewModelTests, aLineThatStaysTheSameIsNotToldAgain) {
    auto& pane = overview();
    QSignalSpy lines(&pane, &OverviewModel::scanLineChanged);
    now += 1s;
    pane.clock()->setIsShown(true);
    EXPECT_EQ(lines.count(), 0);
}

// Full Disk Access

TEST_F(OverviewModelTests, accessIsAskedForWhileTheReportSaysThatItIsMissing) {
    report.disk.hasFullDiskAccess = false;
    EXPECT_TRUE(overview().asksForAccess());
    startAgain();
    report.disk.hasFullDiskAccess = true;
    EXPECT_FALSE(overview().asksForAccess());
}

TEST_F(OverviewModelTests, theSettingsOfTheSystemOpen) {
    overview().openFullDiskAccessSettings();
    EXPECT_EQ(desktop.settingsOpened, 1);
}

// Hero

TEST_F(OverviewModelTests, theHeroSumsAndCountsTheRecommendedItemsOnly) {
    add(ItemCategory::xcode, Safety::regenerable, 30 * GB, true);
    add(ItemCategory::android, Safety::costly, 1'460'000'000, true);
    add(ItemCategory::android, Safety::review, 5 * GB);
    EXPECT_EQ(overview().recommendedText(), "31,46 GB");
    EXPECT_EQ(overview().recommendedPromise(),
              "2 item yang dibuat ulang otomatis (cache, file sementara, build lama, sisa app). Tidak ada "
              "dokumen, foto, kode, atau rilis yang ikut.");
    EXPECT_TRUE(overview().canClean());
}

TEST_F(OverviewModelTests, withNothingRecommendedTheHeroIsZeroButItsDetailsOpen) {
    add(ItemCategory::xcode, Safety::review, 30 * GB);
    EXPECT_EQ(overview().recommendedText(), "0 byte");
    EXPECT_TRUE(overview().recommendedPromise().startsWith("0 item yang dibuat ulang otomatis "));
    EXPECT_FALSE(overview().canClean());
    app().setFilter(ItemFilter::all);
    app().setCategoryFilter(ItemCategory::apps);
    overview().showDetails();
    EXPECT_EQ(app().filter(), ItemFilter::recommended);
    EXPECT_EQ(app().categoryFilter(), std::nullopt);
    EXPECT_EQ(app().pane(), Pane::cleanup);
}

TEST_F(OverviewModelTests, cleaningTheRecommendationSelectsItAndAsks) {
    const auto recommended = add(ItemCategory::xcode, Safety::regenerable, 5, true);
    const auto other = add(ItemCategory::xcode, Safety::review, 7);
    auto& pane = overview();
    app().toggle(recommended);
    app().toggle(other);
    pane.cleanRecommended();
    EXPECT_THAT(app().selection(), ElementsAre(recommended.path));
    ASSERT_TRUE(app().pendingCleanup().has_value());
    EXPECT_THAT(*app().pendingCleanup(), ElementsAre(recommended));
    EXPECT_EQ(app().pane(), Pane::overview);
}

// Tiles

struct TileCase {
    const char* key;
    Safety safety;
    const char* title;
    const char* caption;
    ItemFilter filter;
};
const std::array tileCases = {
    TileCase{"regenerable", Safety::regenerable, "Aman",
             "Dibuat ulang otomatis oleh tool-nya. Tidak ada data yang hilang.", ItemFilter::deletable},
    TileCase{"costly", Safety::costly, "Aman · unduh ulang",
             "Aman dihapus, tapi akan diunduh atau di-build ulang (butuh waktu & internet).",
             ItemFilter::deletable},
    TileCase{"review", Safety::review, "Periksa dulu",
             "Bisa berisi data bernilai. Masuk Tong Sampah dulu, atau pindahkan ke SSD.", ItemFilter::review},
    TileCase{"managed", Safety::managed, "Dikelola sistem",
             "Dikelola macOS atau app lain. Ikuti cara resmi yang dijelaskan.", ItemFilter::all},
};

TEST_F(OverviewModelTests, eachTileHasItsTextsInOrder) {
    std::vector<std::string> keys, titles, captions;
    for (const auto& tile : tileCases) {
        keys.emplace_back(tile.key);
        titles.emplace_back(tile.title);
        captions.emplace_back(tile.caption);
    }
    EXPECT_EQ(column(overview().tiles(), "key"), keys);
    EXPECT_EQ(column(overview().tiles(), "title"), titles);
    EXPECT_EQ(column(overview().tiles(), "caption"), captions);
}

TEST_F(OverviewModelTests, aTileSumsItsClassAndWhatStaysCountsInNone) {
    add(ItemCategory::xcode, Safety::regenerable, 33'180'000'000);
    add(ItemCategory::xcode, Safety::costly, 20 * GB);
    add(ItemCategory::apps, Safety::costly, 1'700'000'000);
    add(ItemCategory::xcode, Safety::review, 38'050'000'000);
    add(ItemCategory::xcode, Safety::keep, 99 * GB);
    add(ItemCategory::xcode, Safety::managed, 12'440'000'000);
    EXPECT_THAT(column(overview().tiles(), "value"),
                ElementsAre("33,18 GB", "21,7 GB", "38,05 GB", "12,44 GB"));
}

TEST_F(OverviewModelTests, eachTileLeadsToItsItemsInAllCategories) {
    for (const auto& tile : tileCases) {
        overview();
        app().setFilter(ItemFilter::recommended);
        app().setCategoryFilter(ItemCategory::apps);
        overview().tileTapped(tile.key);
        EXPECT_EQ(app().filter(), tile.filter) << tile.key;
        EXPECT_EQ(app().categoryFilter(), std::nullopt) << tile.key;
        EXPECT_EQ(app().pane(), Pane::cleanup) << tile.key;
        startAgain();
    }
}

TEST_F(OverviewModelTests, unknownKeysLeadNowhere) {
    overview();
    for (const auto* key : {"", "keep", "Xcode", "<b>", "review\n"}) {
        overview().tileTapped(key);
        overview().categoryTapped(key);
    }
    EXPECT_EQ(app().pane(), Pane::overview);
    EXPECT_EQ(app().filter(), ItemFilter::recommended);
}

// Categories

struct CategoryCase {
    ItemCategory category;
    const char* key;
    const char* title;
    const char* symbol;
};
const std::array categoryCases = {
    CategoryCase{ItemCategory::xcode, "xcode", "Xcode", "hammer"},
    CategoryCase{ItemCategory::simulators, "simulators", "Simulator iOS", "ipad.and.iphone"},
    CategoryCase{ItemCategory::android, "android", "Android & Gradle", "square.stack.3d.up"},
    CategoryCase{ItemCategory::projects, "projects", "Artefak proyek", "folder.badge.gearshape"},
    CategoryCase{ItemCategory::toolchains, "toolchains", "Paket & toolchain", "shippingbox"},
    CategoryCase{ItemCategory::aiTools, "aiTools", "Tool AI & editor", "sparkles"},
    CategoryCase{ItemCategory::appCaches, "appCaches", "Cache app & browser", "globe"},
    CategoryCase{ItemCategory::apps, "apps", "Aplikasi jarang dipakai", "gamecontroller"},
    CategoryCase{ItemCategory::personal, "personal", "File pribadi", "photo.on.rectangle"},
    CategoryCase{ItemCategory::system, "system", "Sistem macOS", "gearshape.2"},
};

TEST_F(OverviewModelTests, eachCategoryHasItsTextsAndLeadsToItsDeletableItems) {
    for (const auto& expected : categoryCases) {
        report.items.clear();
        add(expected.category, Safety::review, 28'600'000'000);
        const auto rows = overview().categories()->rows();
        ASSERT_EQ(rows.size(), 1);
        EXPECT_EQ(rows[0].value("key"), expected.key);
        EXPECT_EQ(rows[0].value("title"), expected.title);
        EXPECT_EQ(rows[0].value("symbol"), expected.symbol);
        EXPECT_EQ(rows[0].value("sizeText"), "28,6 GB");
        overview().categoryTapped(expected.key);
        EXPECT_EQ(app().categoryFilter(), expected.category) << expected.key;
        EXPECT_EQ(app().filter(), ItemFilter::deletable) << expected.key;
        EXPECT_EQ(app().pane(), Pane::cleanup) << expected.key;
        startAgain();
    }
}

TEST_F(OverviewModelTests, categoriesAreSortedBySizeAndThoseWithoutAnyAreMissing) {
    add(ItemCategory::xcode, Safety::review, 1);
    add(ItemCategory::android, Safety::keep, 300);
    add(ItemCategory::android, Safety::managed, 100);
    add(ItemCategory::apps, Safety::review, 0);
    add(ItemCategory::system, Safety::review, 200);
    EXPECT_THAT(column(overview().categories(), "key"), ElementsAre("android", "system", "xcode"));
    EXPECT_THAT(shares(overview().categories()), ElementsAre(1, 0.5, 0.0025));
}

TEST_F(OverviewModelTests, categoriesOfOneSizeKeepTheirOrder) {
    for (const auto category : {ItemCategory::system, ItemCategory::apps, ItemCategory::xcode})
        add(category, Safety::review, 7);
    EXPECT_THAT(column(overview().categories(), "key"), ElementsAre("xcode", "apps", "system"));
}

TEST_F(OverviewModelTests, whenAllCategoriesAreZeroTheListIsEmpty) {
    add(ItemCategory::apps, Safety::review, 0);
    EXPECT_TRUE(overview().categories()->rows().isEmpty());
}

// Health

TEST_F(OverviewModelTests, theRowsOfHealthStandInOrder) {
    report.disk.smart = SmartInfo{.percentageUsed = 11, .dataWrittenBytes = 86'400'000'000'000};
    report.disk.swapUsed = 9'430'000'000;
    report.disk.physicalMemory = 17'179'869'184;
    report.disk.available = 10 * GB;
    report.disk.availableImportant = 16'080'000'000;
    EXPECT_THAT(column(overview().health(), "label"),
                ElementsAre("Keausan SSD internal", "Total data ditulis", "Swap terpakai", "RAM",
                            "Purgeable (dibebaskan macOS)"));
    EXPECT_THAT(column(overview().health(), "value"),
                ElementsAre("11%", "86 TB", "9,43 GB", "16 GB", "6,08 GB"));
}

TEST_F(OverviewModelTests, withoutSmartItsRowsAreMissingAndTheOthersStay) {
    EXPECT_THAT(column(overview().health(), "label"),
                ElementsAre("Swap terpakai", "RAM", "Purgeable (dibebaskan macOS)"));
}

TEST_F(OverviewModelTests, aFieldThatSmartDoesNotTellIsMissingAlone) {
    report.disk.smart = SmartInfo{.percentageUsed = 0};
    EXPECT_EQ(value(overview().health(), "Keausan SSD internal"), "0%");
    EXPECT_EQ(value(overview().health(), "Total data ditulis"), "missing");
    startAgain();
    report.disk.smart = SmartInfo{.dataWrittenBytes = 0};
    EXPECT_EQ(value(overview().health(), "Keausan SSD internal"), "missing");
    EXPECT_EQ(value(overview().health(), "Total data ditulis"), "0 TB");
}

TEST_F(OverviewModelTests, whatWasWrittenIsRoundedToWholeTerabytes) {
    struct Case {
        std::int64_t bytes;
        const char* text;
    };
    for (const auto& [bytes, text] : {Case{499'999'999'999, "0 TB"},
                                      {500'000'000'000, "0 TB"}, // a half goes to the even one
                                      {1'500'000'000'000, "2 TB"},
                                      {86'499'999'999'999, "86 TB"},
                                      {1'234'000'000'000'000, "1234 TB"},
                                      {greatest, "9223372 TB"},
                                      {-2'000'000'000'000, "-2 TB"}}) {
        report.disk.smart = SmartInfo{.dataWrittenBytes = bytes};
        EXPECT_EQ(value(overview().health(), "Total data ditulis"), text);
        startAgain();
    }
}

TEST_F(OverviewModelTests, wearIsShownAsItStands) {
    for (const auto& [wear, text] :
         {std::pair{std::int64_t{255}, "255%"}, {-1, "-1%"}, {greatest, "9223372036854775807%"}}) {
        report.disk.smart = SmartInfo{.percentageUsed = wear};
        EXPECT_EQ(value(overview().health(), "Keausan SSD internal"), text);
        startAgain();
    }
}

TEST_F(OverviewModelTests, purgeableIsNeverBelowZeroAndNeverOverflows) {
    struct Case {
        std::int64_t available, important;
        const char* text;
    };
    for (const auto& [available, important, text] : {Case{5, 5, "0 byte"},
                                                     {6 * GB, 5 * GB, "0 byte"},
                                                     {greatest, least, "0 byte"},
                                                     {least, greatest, "9,22 EB"}}) {
        report.disk.available = available;
        report.disk.availableImportant = important;
        EXPECT_EQ(value(overview().health(), "Purgeable (dibebaskan macOS)"), text);
        startAgain();
    }
}

TEST_F(OverviewModelTests, swapIsLargeAboveHalfOfTheMemory) {
    struct Case {
        std::int64_t swap, memory;
        bool isLarge;
    };
    for (const auto& [swap, memory, isLarge] : {Case{0, 0, false},
                                                {8 * GB, 16 * GB, false},
                                                {8 * GB + 1, 16 * GB, true},
                                                {2, 5, false},
                                                {3, 5, true},
                                                {greatest, greatest, true},
                                                {least, greatest, false}}) {
        report.disk.swapUsed = swap;
        report.disk.physicalMemory = memory;
        EXPECT_EQ(overview().swapIsLarge(), isLarge) << swap << " of " << memory;
        startAgain();
    }
}

// Notes

TEST_F(OverviewModelTests, notesStandInOrderAsTheyAre) {
    report.notes = {"Second first", "<b>bold</b> & <img src='x'>", ""};
    EXPECT_EQ(column(overview().notes(), "text"), report.notes);
}

TEST_F(OverviewModelTests, aControlCharacterOfANoteIsSeen) {
    report.notes = {"line\nfeed"};
    EXPECT_THAT(column(overview().notes(), "text"), ElementsAre("line\uFFFDfeed"));
}

// Changes

TEST_F(OverviewModelTests, aScanIsToldFromItsStartToItsEnd) {
    add(ItemCategory::xcode, Safety::regenerable, 5 * GB, true);
    auto& pane = overview();
    QSignalSpy states(&pane, &OverviewModel::isScanningChanged);
    QSignalSpy reports(&pane, &OverviewModel::reportChanged);
    QSignalSpy lines(&pane, &OverviewModel::scanStatusChanged);
    pane.scan();
    EXPECT_TRUE(pane.isScanning());
    EXPECT_EQ(pane.scanStatus(), "Memulai…");
    EXPECT_EQ(pane.recommendedText(), "5 GB");
    ASSERT_TRUE(waitFor([&] { return !pane.isScanning(); }));
    EXPECT_EQ(states.count(), 2);
    EXPECT_EQ(reports.count(), 1);
    EXPECT_GE(lines.count(), 2);
    EXPECT_EQ(pane.recommendedText(), "0 byte");
    EXPECT_TRUE(pane.categories()->rows().isEmpty());
    EXPECT_TRUE(pane.asksForAccess());
}

TEST_F(OverviewModelTests, theHintNamesTheShortcutOfTheSystem) {
#ifdef Q_OS_MACOS
    EXPECT_EQ(OverviewModel::rescanHint(), "Pindai ulang (⌘R)");
#else
    EXPECT_EQ(OverviewModel::rescanHint(), "Pindai ulang (Ctrl+R)");
#endif
}

} // namespace
} // namespace korvanti
