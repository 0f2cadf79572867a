#include "ui/CleanupModel.h"

#include "CleanupSupport.h"
#include "base/ByteText.h"

#include <QAbstractItemModelTester>
#include <QClipboard>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QMimeData>
#include <QSignalSpy>
#include <array>
#include <string>
#include <vector>

namespace korvanti {
namespace {

using namespace korvanti::testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using Tester = QAbstractItemModelTester;

class CleanupModelTests : public CleanupFixture {
protected:
    CleanupModel& pane() {
        if (!tester_)
            tester_ = std::make_unique<Tester>(cleanup().items(), Tester::FailureReportingMode::Fatal);
        return cleanup();
    }
    ItemListModel& list() { return *pane().items(); }
    std::vector<std::string> titles() { return column(list(), "title"); }
    QVariant role(int row, const char* name) { return roleOf(list(), row, name); }
    std::string text(int row, const char* name) { return role(row, name).toString().toStdString(); }
    std::string sectionSum(const char* section) {
        return list().sections()[section].toMap()["sizeText"].toString().toStdString();
    }

private:
    std::unique_ptr<Tester> tester_;
};

// Texts that never change

TEST_F(CleanupModelTests, theFiltersHaveTheirTitlesInOrder) {
    EXPECT_EQ(pane().filters(), QStringList({"Rekomendasi", "Bisa dibersihkan", "Periksa dulu", "Semua"}));
}

TEST_F(CleanupModelTests, theCategoriesFollowTheEntryForAllOfThem) {
    EXPECT_EQ(pane().categories(),
              QStringList({"Semua kategori", "Xcode", "Simulator iOS", "Android & Gradle", "Artefak proyek",
                           "Paket & toolchain", "Tool AI & editor", "Cache app & browser",
                           "Aplikasi jarang dipakai", "File pribadi", "Sistem macOS"}));
    EXPECT_EQ(pane().categorySymbols(),
              QStringList({"", "hammer", "ipad.and.iphone", "square.stack.3d.up", "folder.badge.gearshape",
                           "shippingbox", "sparkles", "globe", "gamecontroller", "photo.on.rectangle",
                           "gearshape.2"}));
}

// Filters

TEST_F(CleanupModelTests, theFilterAtFirstIsThatOfTheRecommended) {
    EXPECT_EQ(pane().filterIndex(), 0);
    EXPECT_EQ(pane().categoryIndex(), 0);
    EXPECT_EQ(pane().search(), "");
}

TEST_F(CleanupModelTests, eachFilterShowsItsItems) {
    auto recommendedCostly = item("costly", Safety::costly);
    recommendedCostly.recommended = true;
    saveReport({item("regenerable"), recommendedCostly, item("review", Safety::review),
                item("keep", Safety::keep), manualItem("manual")});
    struct Case {
        int filter;
        std::vector<std::string> titles;
    };
    const std::array<Case, 4> cases = {{{0, {"regenerable", "costly"}},
                                        {1, {"regenerable", "costly", "review"}},
                                        {2, {"review"}},
                                        {3, {"regenerable", "costly", "review", "keep", "manual"}}}};
    for (const auto& [filter, expected] : cases) {
        pane().setFilterIndex(filter);
        EXPECT_EQ(pane().filterIndex(), filter);
        EXPECT_EQ(titles(), expected) << filter;
    }
}

TEST_F(CleanupModelTests, aCategoryShowsItsItemsAndNoneShowsAll) {
    saveReport({itemOf(ItemCategory::system, "s"), itemOf(ItemCategory::android, "a")});
    pane().setCategoryIndex(3);
    EXPECT_EQ(model().categoryFilter(), ItemCategory::android);
    EXPECT_EQ(pane().categoryIndex(), 3);
    EXPECT_THAT(titles(), ElementsAre("a"));
    pane().setCategoryIndex(10);
    EXPECT_THAT(titles(), ElementsAre("s"));
    pane().setCategoryIndex(0);
    EXPECT_EQ(model().categoryFilter(), std::nullopt);
    EXPECT_THAT(titles(), ElementsAre("a", "s"));
}

TEST_F(CleanupModelTests, numbersThatNoEntryHasChangeNothing) {
    saveReport({itemOf(ItemCategory::android, "a")});
    pane().setCategoryIndex(3);
    for (const int index : {-1, 11, 1'000'000}) {
        pane().setFilterIndex(index);
        pane().setCategoryIndex(index);
        pane().toggle(index);
        pane().toggleInstructions(index);
        pane().openMenu(index);
        EXPECT_FALSE(pane().hasMenu());
    }
    EXPECT_EQ(pane().filterIndex(), 3);
    EXPECT_EQ(pane().categoryIndex(), 3);
    EXPECT_THAT(model().selection(), SizeIs(1));
}

TEST_F(CleanupModelTests, theSearchFindsTitlesAndPathsInAnyCase) {
    auto hidden = item("Other");
    hidden.path = "/Users/tester/Library/needle";
    saveReport({item("Needle"), hidden, item("Hay")});
    pane().setSearch("  nEEdle\t");
    EXPECT_EQ(pane().search(), "  nEEdle\t");
    EXPECT_THAT(titles(), ElementsAre("Needle", "Other"));
}

TEST_F(CleanupModelTests, aSearchOfBlanksFindsEverything) {
    saveReport({item("a"), item("b")});
    pane().setSearch(" \t ");
    EXPECT_THAT(titles(), ElementsAre("a", "b"));
}

// Nothing to show

TEST_F(CleanupModelTests, withoutAReportTheListSaysThatNothingWasScanned) {
    EXPECT_TRUE(pane().isEmpty());
    EXPECT_EQ(pane().emptyTitle(), "Belum dipindai");
    EXPECT_EQ(pane().emptySymbol(), "magnifyingglass");
    EXPECT_EQ(pane().emptyText(), "Jalankan pindai dari Ringkasan.");
}

TEST_F(CleanupModelTests, withAReportAnEmptyResultSaysThatNothingMatches) {
    saveReport({itemOf(ItemCategory::xcode, "x")});
    pane().setFilterIndex(2);
    pane().setCategoryIndex(1);
    EXPECT_TRUE(pane().isEmpty());
    EXPECT_EQ(pane().emptyTitle(), "Tidak ada item");
    EXPECT_EQ(pane().emptySymbol(), "checkmark.circle");
    EXPECT_EQ(pane().emptyText(), "Tidak ada yang cocok dengan filter ini.");
    QSignalSpy changes(&pane(), &CleanupModel::contentsChanged);
    pane().setFilterIndex(3);
    EXPECT_FALSE(pane().isEmpty());
    EXPECT_GE(changes.count(), 1);
}

// Groups

TEST_F(CleanupModelTests, theGroupsStandInTheOrderOfTheCategoriesAndTheItemsInThatOfTheReport) {
    saveReport({itemOf(ItemCategory::system, "s1", 9), itemOf(ItemCategory::xcode, "x1", 1),
                itemOf(ItemCategory::personal, "p1"), itemOf(ItemCategory::system, "s2", 10),
                itemOf(ItemCategory::xcode, "x2", 2)});
    EXPECT_THAT(titles(), ElementsAre("x1", "x2", "p1", "s1", "s2"));
    EXPECT_THAT(column(list(), "section"), ElementsAre("xcode", "xcode", "personal", "system", "system"));
}

TEST_F(CleanupModelTests, aSectionHasTheTitleAndTheSymbolOfItsCategory) {
    saveReport({itemOf(ItemCategory::appCaches, "a")});
    const auto section = list().sections()["appCaches"].toMap();
    EXPECT_EQ(section["title"], "Cache app & browser");
    EXPECT_EQ(section["symbol"], "globe");
    EXPECT_THAT(list().sections(), SizeIs(1));
}

TEST_F(CleanupModelTests, theSumOfASectionCountsWhatCanBeSelected) {
    saveReport({itemOf(ItemCategory::xcode, "a", 1'000'000), itemOf(ItemCategory::xcode, "b", 2'000'000),
                item("keep", Safety::keep), manualItem("manual"),
                item("review", Safety::review, CleanupAction::trash())});
    EXPECT_EQ(sectionSum("xcode"), bytesText(3'001'000));
}

TEST_F(CleanupModelTests, aSectionOfWhatCannotBeSelectedSumsUpToZero) {
    saveReport({item("keep", Safety::keep), manualItem("manual")});
    EXPECT_EQ(sectionSum("xcode"), bytesText(0));
}

TEST_F(CleanupModelTests, theSumOfASectionIsThatOfTheItemsThatAreShown) {
    saveReport({itemOf(ItemCategory::xcode, "a", 1'000'000), itemOf(ItemCategory::xcode, "b", 2'000'000)});
    QSignalSpy sums(&list(), &ItemListModel::sectionsChanged);
    pane().setSearch("b");
    EXPECT_EQ(sectionSum("xcode"), bytesText(2'000'000));
    EXPECT_EQ(sums.count(), 1);
}

// A row

TEST_F(CleanupModelTests, aRowHasReadyTexts) {
    auto shown = item("Title", Safety::review, CleanupAction::trash());
    shown.detail = "Detail";
    shown.bytes = 12'300'000;
    shown.warnings = {"one", "two"};
    shown.lastActivity = currentInstant() - std::chrono::hours(72);
    shown.recommended = true;
    saveReport({shown});
    EXPECT_EQ(text(0, "title"), "Title");
    EXPECT_EQ(text(0, "detail"), "Detail");
    EXPECT_EQ(text(0, "path"), "~/things/Title");
    EXPECT_EQ(text(0, "fullPath"), "/Users/tester/things/Title");
    EXPECT_EQ(role(0, "warnings").toStringList(), QStringList({"one", "two"}));
    EXPECT_EQ(text(0, "sizeText"), bytesText(12'300'000));
    EXPECT_EQ(text(0, "lastActivity"), "3 hari yang lalu");
    EXPECT_EQ(text(0, "verb"), "Pindah ke Tong Sampah");
    EXPECT_EQ(role(0, "safety"), 2);
    EXPECT_EQ(text(0, "spokenTitle"), "Title, Periksa dulu, " + bytesText(12'300'000));
    EXPECT_EQ(text(0, "spokenDetail"),
              "Direkomendasikan, Pindah ke Tong Sampah, Detail, ~/things/Title, one, two");
    EXPECT_EQ(role(0, "isSelectable"), true);
    EXPECT_EQ(role(0, "isRecommended"), true);
    EXPECT_EQ(role(0, "isManual"), false);
    EXPECT_EQ(text(0, "instructions"), "");
}

TEST_F(CleanupModelTests, aRowWithoutADateAndWarningsHasNone) {
    saveReport({item("a")});
    EXPECT_EQ(text(0, "lastActivity"), "");
    EXPECT_EQ(text(0, "detail"), "");
    EXPECT_THAT(role(0, "warnings").toStringList(), IsEmpty());
}

TEST_F(CleanupModelTests, theDatesKeepUpWithTheClockAndNothingElseIsTold) {
    auto shown = item("a");
    auto now = instantFromSeconds(1'700'000'000);
    shown.lastActivity = now;
    saveReport({shown, item("b")});
    ItemListModel timed(model(), [&] { return now; });
    const Tester tester(&timed, Tester::FailureReportingMode::Fatal);
    QSignalSpy changes(&timed, &ItemListModel::dataChanged);
    QSignalSpy resets(&timed, &ItemListModel::modelReset);
    now += std::chrono::hours(2);
    EXPECT_THAT(column(timed, "lastActivity"), ElementsAre("2 jam yang lalu", ""));
    expectToFollow(*timed.clock(), changes);
    timed.clock()->setIsShown(true);
    ASSERT_EQ(changes.count(), 1);
    EXPECT_EQ(changes.front()[2].value<QList<int>>(), QList<int>({timed.roleNames().key("lastActivity")}));
    EXPECT_EQ(resets.count(), 0);
}

TEST_F(CleanupModelTests, aKeptItemCannotBeSelectedAndHasNoVerb) {
    saveReport({item("keep", Safety::keep)});
    EXPECT_EQ(role(0, "isSelectable"), false);
    EXPECT_EQ(text(0, "verb"), "");
    pane().toggle(0);
    EXPECT_EQ(role(0, "isSelected"), false);
}

TEST_F(CleanupModelTests, aManualItemCannotBeSelectedAndHasAGuide) {
    auto manual = item("m", Safety::review, CleanupAction::manual("Buka Xcode."));
    manual.recommended = true; // as a report may say: its id is selected then
    saveReport({manual});
    EXPECT_THAT(model().selection(), SizeIs(1));
    EXPECT_EQ(role(0, "isSelectable"), false);
    EXPECT_EQ(role(0, "isManual"), true);
    EXPECT_EQ(text(0, "verb"), "");
    EXPECT_EQ(text(0, "instructions"), "Buka Xcode.");
    EXPECT_EQ(pane().selectedText(), "0 item dipilih");
    EXPECT_FALSE(pane().canClean());
}

TEST_F(CleanupModelTests, namesOnTheScreenAreOneLineOfText) {
    auto odd = item("<b>bold</b>\nsecond\x1b[1m");
    odd.path = "/Users/tester/\xd7\xa9\xd7\x9c\xd7\x95\xd7\x9d/a\nb";
    saveReport({odd});
    EXPECT_EQ(text(0, "title"), "<b>bold</b>\uFFFDsecond\uFFFD[1m");
    EXPECT_EQ(text(0, "path"), "~/\u05e9\u05dc\u05d5\u05dd/a\uFFFDb");
}

TEST_F(CleanupModelTests, theInstructionsKeepTheirLines) {
    saveReport({item("m", Safety::managed, CleanupAction::manual("1. a\n2. b"))});
    EXPECT_EQ(text(0, "instructions"), "1. a\n2. b");
}

TEST_F(CleanupModelTests, aRowOrARoleThatIsNotThereHasNoValue) {
    saveReport({item("a")});
    EXPECT_FALSE(list().data({}, Qt::UserRole + 1).isValid());
    EXPECT_FALSE(list().data(list().index(0), Qt::UserRole).isValid());
    EXPECT_FALSE(list().data(list().index(0), 100'000).isValid());
    EXPECT_EQ(list().rowCount(list().index(0)), 0);
}

// Guides

TEST_F(CleanupModelTests, aGuideOpensAndCloses) {
    saveReport({item("a"), manualItem("m")});
    QSignalSpy changes(&list(), &ItemListModel::dataChanged);
    pane().toggleInstructions(1);
    EXPECT_EQ(role(1, "showInstructions"), true);
    pane().toggleInstructions(1);
    EXPECT_EQ(role(1, "showInstructions"), false);
    pane().toggleInstructions(0);
    EXPECT_EQ(role(0, "showInstructions"), false);
    EXPECT_EQ(changes.count(), 2);
}

TEST_F(CleanupModelTests, anOpenGuideStaysOpenAsLongAsItsRowIsListed) {
    saveReport({manualItem("first"), manualItem("second")});
    pane().toggleInstructions(1);
    pane().setSearch("second");
    EXPECT_THAT(titles(), ElementsAre("second"));
    EXPECT_EQ(role(0, "showInstructions"), true);
    pane().setSearch("first");
    pane().setSearch("");
    EXPECT_EQ(role(1, "showInstructions"), false);
}

// Selection

TEST_F(CleanupModelTests, theRecommendedItemsAreSelectedAtFirst) {
    saveReport({item("a"), item("b", Safety::review)});
    EXPECT_EQ(role(0, "isSelected"), true);
    EXPECT_EQ(role(1, "isSelected"), false);
    EXPECT_EQ(pane().selectedText(), "1 item dipilih");
}

TEST_F(CleanupModelTests, theActionBarCountsAndSumsWhatIsSelectedWhateverIsShown) {
    saveReport({itemOf(ItemCategory::xcode, "a", 1'000'000), itemOf(ItemCategory::system, "b", 2'000'000),
                item("keep", Safety::keep)});
    pane().setSearch("nothing has this name");
    EXPECT_EQ(pane().selectedText(), "2 item dipilih");
    EXPECT_EQ(pane().selectedSizeText().toStdString(), bytesText(3'000'000) + " akan dibersihkan");
    EXPECT_TRUE(pane().canClean());
    pane().clearSelection();
    EXPECT_EQ(pane().selectedText(), "0 item dipilih");
    EXPECT_EQ(pane().selectedSizeText().toStdString(), bytesText(0) + " akan dibersihkan");
    EXPECT_FALSE(pane().canClean());
    pane().selectRecommended();
    EXPECT_EQ(pane().selectedText(), "2 item dipilih");
}

TEST_F(CleanupModelTests, aToggleTouchesItsRowOnly) {
    saveReport({item("a"), item("b"), item("c")});
    QSignalSpy changes(&list(), &ItemListModel::dataChanged);
    QSignalSpy resets(&list(), &ItemListModel::modelReset);
    pane().toggle(1);
    EXPECT_EQ(role(1, "isSelected"), false);
    ASSERT_EQ(changes.count(), 1);
    EXPECT_EQ(changes.front()[0].toModelIndex().row(), 1);
    EXPECT_EQ(changes.front()[1].toModelIndex().row(), 1);
    EXPECT_EQ(changes.front()[2].value<QList<int>>(), QList<int>({list().roleNames().key("isSelected")}));
    EXPECT_EQ(resets.count(), 0);
}

TEST_F(CleanupModelTests, aChangeOfManyRowsIsToldInRuns) {
    saveReport({item("a"), item("b"), item("keep", Safety::keep), item("c")});
    QSignalSpy changes(&list(), &ItemListModel::dataChanged);
    pane().clearSelection();
    ASSERT_EQ(changes.count(), 2);
    EXPECT_EQ(changes[0][0].toModelIndex().row(), 0);
    EXPECT_EQ(changes[0][1].toModelIndex().row(), 1);
    EXPECT_EQ(changes[1][0].toModelIndex().row(), 3);
    EXPECT_EQ(changes[1][1].toModelIndex().row(), 3);
}

// Items that go

TEST_F(CleanupModelTests, cleanedItemsAreTakenOutOfTheListThatStaysOtherwise) {
    std::vector<CleanupItem> items;
    for (const char* name : {"a", "b", "c", "d"}) {
        items.push_back(item(name));
        items.back().path = mac.home.file(std::string("Library/Caches/") + name + "/file", {.text = "x"});
        items.back().path = mac.home.path(std::string("Library/Caches/") + name);
    }
    saveReport(items);
    pane().openMenu(3);
    QSignalSpy resets(&list(), &ItemListModel::modelReset);
    QSignalSpy removals(&list(), &ItemListModel::rowsRemoved);
    QSignalSpy sums(&list(), &ItemListModel::sectionsChanged);
    model().requestCleanup({items[0], items[2]});
    model().confirmCleanup();
    ASSERT_TRUE(waitFor([&] { return !model().isCleaning(); }));
    EXPECT_THAT(titles(), ElementsAre("b", "d"));
    EXPECT_EQ(resets.count(), 0);
    EXPECT_EQ(removals.count(), 2);
    EXPECT_EQ(sums.count(), 1);
    EXPECT_EQ(sectionSum("xcode"), bytesText(2'000));
    EXPECT_EQ(pane().selectedText(), "2 item dipilih");
    EXPECT_TRUE(pane().hasMenu());
    pane().reveal();
    EXPECT_THAT(desktop.revealed, ElementsAre(items[3].path));
}

TEST_F(CleanupModelTests, aScanBringsANewList) {
    saveReport({item("a")});
    EXPECT_THAT(titles(), ElementsAre("a"));
    mac.home.file("Library/Developer/Xcode/DerivedData/App/file", {.allocatedBytes = 60'000'000});
    model().scan();
    ASSERT_TRUE(waitFor([&] { return !model().isScanning(); }));
    EXPECT_EQ(column(list(), "fullPath").front(), "/Users/tester/Library/Developer/Xcode/DerivedData");
    EXPECT_EQ(role(0, "isSelected"), true);
}

TEST_F(CleanupModelTests, anItemThatAScanFindsInAnotherSectionMakesANewList) {
    auto moved = itemOf(ItemCategory::android, "moved");
    mac.home.file("Library/Developer/Xcode/DerivedData/App/file", {.allocatedBytes = 60'000'000});
    moved.path = mac.home.path("Library/Developer/Xcode/DerivedData");
    saveReport({moved});
    pane().setSearch("DerivedData");
    EXPECT_THAT(column(list(), "section"), ElementsAre("android"));
    QSignalSpy resets(&list(), &ItemListModel::modelReset);
    model().scan();
    ASSERT_TRUE(waitFor([&] { return !model().isScanning(); }));
    EXPECT_THAT(column(list(), "section"), ElementsAre("xcode"));
    EXPECT_EQ(resets.count(), 1);
}

TEST_F(CleanupModelTests, aScanThatFindsTheSameItemsChangesNothingButThem) {
    const auto folder = "Library/Developer/Xcode/DerivedData/App/";
    mac.home.file(std::string(folder) + "one", {.allocatedBytes = 60'000'000});
    mac.home.file("Library/Developer/Xcode/iOS DeviceSupport/17.0/file", {.allocatedBytes = 60'000'000});
    const auto scan = [this] {
        model().scan();
        ASSERT_TRUE(waitFor([&] { return !model().isScanning(); }));
    };
    scan();
    const auto shownBefore = titles();
    ASSERT_GE(list().rowCount(), 1);
    const auto before = text(0, "sizeText");
    pane().openMenu(0);
    QSignalSpy resets(&list(), &ItemListModel::modelReset);
    QSignalSpy changes(&list(), &ItemListModel::dataChanged);
    QSignalSpy sums(&list(), &ItemListModel::sectionsChanged);
    mac.home.file(std::string(folder) + "two", {.allocatedBytes = 70'000'000});
    scan();
    EXPECT_EQ(titles(), shownBefore);
    EXPECT_EQ(resets.count(), 0);
    EXPECT_NE(text(0, "sizeText"), before);
    EXPECT_GE(changes.count(), 1);
    EXPECT_EQ(sums.count(), 1);
    EXPECT_TRUE(pane().hasMenu());
}

// The menu

TEST_F(CleanupModelTests, theMenuIsAboutTheRowItWasOpenedOn) {
    saveReport({item("a"), item("b", Safety::review, CleanupAction::trash())});
    mac.home.file("things/b");
    EXPECT_FALSE(pane().hasMenu());
    pane().openMenu(1);
    EXPECT_TRUE(pane().hasMenu());
    EXPECT_EQ(pane().cleanText(), "Pindah ke Tong Sampah sekarang…");
    pane().reveal();
    EXPECT_THAT(desktop.revealed, ElementsAre("/Users/tester/things/b"));
    pane().cleanOne();
    ASSERT_TRUE(model().pendingCleanup().has_value());
    EXPECT_THAT(*model().pendingCleanup(), SizeIs(1));
    EXPECT_EQ(model().pendingCleanup()->front().title, "b");
}

TEST_F(CleanupModelTests, theMenuOffersNoCleaningOfWhatCannotBeSelected) {
    saveReport({item("keep", Safety::keep), manualItem("m")});
    for (const int row : {0, 1}) {
        pane().openMenu(row);
        EXPECT_EQ(pane().cleanText(), "");
        pane().cleanOne();
        EXPECT_FALSE(model().pendingCleanup().has_value());
    }
}

TEST_F(CleanupModelTests, aMenuWhoseListWasReplacedDoesNothing) {
    saveReport({item("a"), item("b")});
    pane().openMenu(0);
    QSignalSpy changes(&pane(), &CleanupModel::menuChanged);
    pane().setSearch("b");
    EXPECT_GE(changes.count(), 1);
    EXPECT_FALSE(pane().hasMenu());
    pane().cleanOne();
    pane().reveal();
    EXPECT_FALSE(model().pendingCleanup().has_value());
    EXPECT_THAT(desktop.revealed, IsEmpty());
}

TEST_F(CleanupModelTests, theVeryPathIsCopied) {
    saveReport({item("a\nb")});
    pane().openMenu(0);
    pane().copyPath();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), "/Users/tester/things/a\nb");
    EXPECT_EQ(QGuiApplication::clipboard()->mimeData()->data("text/plain").toStdString(),
              "/Users/tester/things/a\nb");
}

TEST_F(CleanupModelTests, withoutAWorkVolumeMovingIsShownAndNotPossible) {
    auto large = item("large");
    large.offloadable = true;
    saveReport({large, item("small")});
    pane().openMenu(0);
    EXPECT_TRUE(pane().isOffloadable());
    EXPECT_FALSE(pane().canOffload());
    EXPECT_EQ(pane().offloadText(), "Pindahkan ke SSD (pilih SSD kerja dulu)");
    pane().offload();
    EXPECT_EQ(model().errorMessage(), std::nullopt);
    pane().openMenu(1);
    EXPECT_FALSE(pane().isOffloadable());
}

// Cleaning

TEST_F(CleanupModelTests, theButtonAsksForWhatIsSelected) {
    saveReport({item("a"), item("b"), item("keep", Safety::keep)});
    pane().toggle(0);
    pane().requestCleanup();
    ASSERT_TRUE(model().pendingCleanup().has_value());
    EXPECT_THAT(*model().pendingCleanup(), SizeIs(1));
    EXPECT_EQ(model().pendingCleanup()->front().title, "b");
}

// Large lists

TEST_F(CleanupModelTests, tenThousandItemsAreFilteredBetweenTwoKeystrokes) {
    std::vector<CleanupItem> items;
    for (int number = 0; number < 10'000; ++number)
        items.push_back(itemOf(allCases<ItemCategory>[static_cast<std::size_t>(number % 10)],
                               "Item number " + std::to_string(number)));
    saveReport(std::move(items));
    EXPECT_EQ(list().rowCount(), 10'000);
    QElapsedTimer timer;
    timer.start();
    pane().setSearch("number 1");
    EXPECT_LT(timer.elapsed(), 500); // the sanitizers are slow; without them it takes a tenth
    EXPECT_EQ(list().rowCount(), 1'111);
}

} // namespace
} // namespace korvanti
