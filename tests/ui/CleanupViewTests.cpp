#include "UiSupport.h"
#include "base/ByteText.h"

#include <QAccessible>
#include <QClipboard>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QTest>
#include <QWheelEvent>
#include <algorithm>
#include <filesystem>
#include <gmock/gmock.h>
#include <string>
#include <utility>
#include <vector>

namespace korvanti {
namespace {

using namespace korvanti::testing;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsSupersetOf;
using ::testing::Not;
using ::testing::SizeIs;

constexpr auto things = "/Users/tester/things/";

CleanupItem thing(const std::string& title, Safety safety = Safety::regenerable,
                  CleanupAction action = CleanupAction::delete_(),
                  ItemCategory category = ItemCategory::xcode) {
    CleanupItem made;
    made.title = title;
    made.path = things + title;
    made.bytes = 1'000'000;
    made.category = category;
    made.safety = safety;
    made.action = std::move(action);
    made.recommended = safety == Safety::regenerable && made.action.isAutomatic();
    return made;
}

CleanupItem guided(const std::string& title) {
    return thing(title, Safety::managed, CleanupAction::manual("Buka Xcode, lalu hapus " + title + "."));
}

QString rowOf(const std::string& title) {
    return QString::fromStdString("row:" + (things + title));
}
QString checkOf(const std::string& title) {
    return QString::fromStdString("check:" + (things + title));
}
QString guideOf(const std::string& title) {
    return QString::fromStdString("guideButton:" + (things + title));
}

/// The pane and the sheet over the real core in the box.
class CleanupViewTests : public UiTests {
protected:
    /// The window with these items in the list.
    void open(std::vector<CleanupItem> items, QSize size = {1140, 760}) {
        saveReport(std::move(items));
        model().setFilter(ItemFilter::all);
        open(size);
    }
    void open(QSize size = {1140, 760}) {
        model().setPane(Pane::cleanup);
        window();
        resize(size.width(), size.height());
    }
    QQuickItem& list() { return item("items"); }
    /// The head of a section that is at the top, or null.
    QQuickItem* headAtTheTop() {
        const auto top = place("items").top();
        for (auto* child : list().property("contentItem").value<QQuickItem*>()->childItems()) {
            if (child->objectName().startsWith("section:") && child->isVisible() &&
                child->mapToScene({0, 0}).y() == top)
                return child;
        }
        return nullptr;
    }
    bool isSelected(const std::string& title) { return model().selection().contains(things + title); }
    void rightClick(const QString& name) {
        QTest::mouseClick(&window(), Qt::RightButton, Qt::NoModifier, place(name).center().toPoint());
        settle(150);
    }
    [[nodiscard]] bool waitUntil(const std::function<bool()>& isTrue) { return waitFor(isTrue); }
    void waitForTheSheet() {
        ASSERT_TRUE(waitFor([&] { return confirm().isReady() && find("confirmButton") != nullptr; }));
        readSheet();
    }
    void waitForTheResult() {
        ASSERT_TRUE(waitFor([&] { return find("closeButton") != nullptr; }));
        readSheet();
    }
    bool focusIsOn(const QString& name) { return item(name).hasActiveFocus(); }
};

// What is seen

TEST_F(CleanupViewTests, aListShowsItsItemsInTheirSections) {
    auto review = thing("Arsip", Safety::review, CleanupAction::trash());
    review.detail = "Detail of it";
    review.warnings = {"Berisi 4 arsip."};
    open({thing("DerivedData"), review,
          thing("Cache", Safety::costly, CleanupAction::delete_(), ItemCategory::android)});
    const auto shown = texts();
    for (const auto* text :
         {"Pembersihan", "Xcode", "Android & Gradle", "DerivedData", "Arsip", "Detail of it",
          "Berisi 4 arsip.", "Aman", "Periksa dulu", "Aman · unduh ulang", "Pindah ke Tong Sampah",
          "1 item dipilih", "Bersihkan…", "Pilih rekomendasi", "Kosongkan pilihan"})
        EXPECT_TRUE(shown.contains(text)) << text;
    EXPECT_EQ(text("path"), "~/things/DerivedData");
}

TEST_F(CleanupViewTests, withoutAReportThePaneSaysSo) {
    show("CleanupView { anchors.fill: parent }", {920, 760}, {{"model", QVariant::fromValue(&cleanup())}});
    EXPECT_EQ(text("emptyTitle"), "Belum dipindai");
    EXPECT_EQ(text("emptyBody"), "Jalankan pindai dari Ringkasan.");
    EXPECT_FALSE(item("cleanButton").isEnabled());
    grab("cleanup-not-scanned.png");
}

TEST_F(CleanupViewTests, anEmptyResultIsNoMissingScan) {
    open({thing("a")});
    click("segment2");
    model().setCategoryFilter(ItemCategory::xcode);
    settle();
    EXPECT_EQ(text("emptyTitle"), "Tidak ada item");
    EXPECT_EQ(text("emptyBody"), "Tidak ada yang cocok dengan filter ini.");
    EXPECT_EQ(find("itemList"), nullptr);
    grab("cleanup-empty.png");
}

TEST_F(CleanupViewTests, whatMustNotGoHasACheckboxThatCannotBeMarked) {
    open({thing("keep", Safety::keep), guided("guide")});
    for (const std::string title : {"keep", "guide"}) {
        EXPECT_FALSE(item(checkOf(title)).isEnabled());
        click(checkOf(title));
        EXPECT_FALSE(isSelected(title));
    }
    EXPECT_FALSE(texts().contains("Hapus permanen"));
    EXPECT_EQ(find(guideOf("keep")), nullptr);
}

TEST_F(CleanupViewTests, markupInATitleIsText) {
    open({thing("<b>bold</b> & <img src=x>")});
    EXPECT_TRUE(texts().contains("<b>bold</b> & <img src=x>"));
}

TEST_F(CleanupViewTests, textFromRightToLeftStaysAtItsPlace) {
    open({thing("\u05e9\u05dc\u05d5\u05dd"), thing("plain")});
    auto* const title = item(rowOf("\u05e9\u05dc\u05d5\u05dd")).findChild<QQuickItem*>("title");
    ASSERT_NE(title, nullptr);
    EXPECT_EQ(title->property("effectiveHorizontalAlignment").toInt(), Qt::AlignLeft);
}

TEST_F(CleanupViewTests, aPathThatIsCutShortIsSelectedAsAWhole) {
    auto deep = thing("deep");
    deep.path += "/" + std::string(300, 'x') + "/end";
    open({deep, thing("other")});
    EXPECT_TRUE(text("path").contains("…"));
    click("path");
    press(Qt::Key_A, Qt::ControlModifier);
    press(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text().toStdString(),
              "~/things/deep/" + std::string(300, 'x') + "/end");
    click(rowOf("other"));
    EXPECT_EQ(text("path", "selectedText"), "");
    EXPECT_TRUE(text("path").contains("…"));
}

TEST_F(CleanupViewTests, whatIsCutShortOrOnlyASignIsToldWhenThePointerRestsOnIt) {
    auto deep = thing("deep");
    deep.path += "/" + std::string(300, 'x') + "/end";
    open({deep});
    hover("path");
    ASSERT_TRUE(waitUntil([&] { return texts().contains("~/things/deep/" + QString(300, 'x') + "/end"); }));
    hover("hand");
    ASSERT_TRUE(waitUntil([&] { return texts().contains("Direkomendasikan"); }));
    hover("cleanButton");
    ASSERT_TRUE(waitUntil([&] { return !texts().contains("Direkomendasikan"); }));
}

// Guides

TEST_F(CleanupViewTests, aGuideOpensAndClosesByItsLink) {
    open({guided("guide"), thing("next")});
    EXPECT_EQ(text(guideOf("guide")), "Cara membersihkan");
    const auto before = place(rowOf("guide")).height();
    click(guideOf("guide"));
    settle(300);
    EXPECT_EQ(text(guideOf("guide")), "Tutup panduan");
    EXPECT_EQ(text("guide"), "Buka Xcode, lalu hapus guide.");
    EXPECT_GT(place(rowOf("guide")).height(), before + 30);
    EXPECT_GE(place(rowOf("next")).top(), place(rowOf("guide")).bottom());
    click(guideOf("guide"));
    settle(300);
    EXPECT_EQ(place(rowOf("guide")).height(), before);
    EXPECT_EQ(find("guide"), nullptr);
}

TEST_F(CleanupViewTests, anOpenGuideStaysOpenWhenItsRowIsScrolledAway) {
    std::vector<CleanupItem> items = {guided("guide")};
    for (int number = 0; number < 300; ++number)
        items.push_back(guided("row " + std::to_string(number)));
    open(std::move(items));
    click(guideOf("guide"));
    settle(300);
    list().setProperty("contentY", 10'000.0);
    settle();
    EXPECT_FALSE(place(rowOf("guide")).intersects(place("items")));
    EXPECT_EQ(texts(&list()).filter("Buka Xcode").size(), 1) << "no other row has taken it over";
    list().setProperty("contentY", list().property("originY"));
    settle();
    EXPECT_EQ(text("guide"), "Buka Xcode, lalu hapus guide.");
}

// Scrolling

TEST_F(CleanupViewTests, theHeadOfASectionStaysAtTheTop) {
    std::vector<CleanupItem> items;
    for (int number = 0; number < 50; ++number)
        items.push_back(thing("row " + std::to_string(number)));
    open(std::move(items));
    list().setProperty("contentY", 1'000.0);
    settle();
    ASSERT_NE(headAtTheTop(), nullptr);
    EXPECT_TRUE(texts(headAtTheTop()).contains("Xcode"));
}

TEST_F(CleanupViewTests, theCurrentRowIsNeverUnderTheHead) {
    std::vector<CleanupItem> items;
    for (int number = 0; number < 50; ++number) {
        items.push_back(thing("row " + std::to_string(number)));
        if (number % 3 == 0)
            items.back().warnings = {"one", "two", "three"};
    }
    open(std::move(items));
    item("itemList").forceActiveFocus(Qt::TabFocusReason);
    press(Qt::Key_End);
    settle();
    EXPECT_EQ(place(rowOf("row 49")).bottom(), place("items").bottom());
    for (int number = 48; number >= 0; --number) {
        press(Qt::Key_Up);
        settle(1);
        const auto row = place(rowOf("row " + std::to_string(number)));
        EXPECT_GE(row.top(), place("items").top() + 34) << number;
        EXPECT_LE(row.bottom(), place("items").bottom()) << number;
    }
}

TEST_F(CleanupViewTests, aNewSearchIsSeenFromItsBeginning) {
    std::vector<CleanupItem> items;
    for (int number = 0; number < 100; ++number)
        items.push_back(thing("row " + std::to_string(number)));
    open(std::move(items));
    item("itemList").forceActiveFocus(Qt::TabFocusReason);
    press(Qt::Key_End);
    model().setSearch("row");
    settle();
    EXPECT_EQ(place(rowOf("row 0")).top(), place("items").top() + 34);
    press(Qt::Key_Down);
    EXPECT_TRUE(item(rowOf("row 1")).hasActiveFocus());
}

TEST_F(CleanupViewTests, theListStaysWhereItIsWhenItemsGo) {
    std::vector<CleanupItem> items;
    for (int number = 0; number < 100; ++number)
        items.push_back(thing("row " + std::to_string(number)));
    mac.home.file("things/row 99/file", {.text = "x"});
    open(items);
    list().setProperty("contentY", 2'000.0);
    settle();
    model().requestCleanup({items[99]});
    model().confirmCleanup();
    ASSERT_TRUE(waitUntil([&] { return !model().isCleaning(); }));
    settle();
    EXPECT_EQ(list().property("contentY").toDouble(), 2'000.0);
    EXPECT_EQ(list().property("count").toInt(), 99);
}

// The menu

TEST_F(CleanupViewTests, aRightClickOpensTheMenuOfItsRow) {
    mac.home.file("things/a");
    open({thing("a"), thing("b", Safety::review, CleanupAction::trash())});
    rightClick(rowOf("b"));
    EXPECT_EQ(text("revealEntry"), "Tampilkan di Finder");
    EXPECT_EQ(text("cleanOneEntry"), "Pindah ke Tong Sampah sekarang…");
    EXPECT_EQ(find("offloadEntry"), nullptr);
    grab("cleanup-menu.png");
    click("copyPathEntry");
    EXPECT_EQ(QGuiApplication::clipboard()->text().toStdString(), std::string(things) + "b");
    settle(200);
    rightClick(rowOf("a"));
    click("revealEntry");
    EXPECT_THAT(desktop.revealed, ElementsAre(std::string(things) + "a"));
}

TEST_F(CleanupViewTests, theMenuOfAKeptItemHasNoCleaning) {
    open({thing("keep", Safety::keep)});
    rightClick(rowOf("keep"));
    EXPECT_NE(find("revealEntry"), nullptr);
    EXPECT_EQ(find("cleanOneEntry"), nullptr);
}

TEST_F(CleanupViewTests, whatCanBeMovedSaysThatADriveIsToBeChosenFirst) {
    auto large = thing("large");
    large.offloadable = true;
    open({large});
    rightClick(rowOf("large"));
    EXPECT_EQ(text("offloadEntry"), "Pindahkan ke SSD (pilih SSD kerja dulu)");
    EXPECT_FALSE(item("offloadEntry").isEnabled());
}

TEST_F(CleanupViewTests, theMenuClosesWhenItsListIsReplaced) {
    open({thing("a"), thing("b")});
    rightClick(rowOf("a"));
    ASSERT_NE(find("revealEntry"), nullptr);
    model().setSearch("b");
    settle(200);
    EXPECT_EQ(find("revealEntry"), nullptr);
}

TEST_F(CleanupViewTests, theMenuOpensAndIsUsedByKeys) {
    open({thing("a"), thing("b")});
    item("itemList").forceActiveFocus(Qt::TabFocusReason);
    press(Qt::Key_Down);
    press(Qt::Key_F10, Qt::ShiftModifier);
    settle(150);
    ASSERT_NE(find("cleanOneEntry"), nullptr);
    EXPECT_TRUE(item("revealEntry").hasActiveFocus()) << "the first is there already";
    for (int entry = 0; entry < 2; ++entry)
        press(Qt::Key_Down);
    press(Qt::Key_Return);
    ASSERT_TRUE(model().pendingCleanup().has_value());
    EXPECT_THAT(*model().pendingCleanup(), SizeIs(1));
    EXPECT_EQ(model().pendingCleanup()->front().title, "b");
}

// The sheet

TEST_F(CleanupViewTests, theSheetOpenedFromOneRowListsThatItem) {
    open({thing("a"), thing("b")});
    rightClick(rowOf("b"));
    click("cleanOneEntry");
    waitForTheSheet();
    const auto shown = texts(&item("confirmList"));
    EXPECT_TRUE(shown.contains("b"));
    EXPECT_FALSE(shown.contains("a"));
    EXPECT_EQ(text("confirmButton"), "Bersihkan 1 item");
    press(Qt::Key_Escape);
    EXPECT_FALSE(model().pendingCleanup().has_value());
}

TEST_F(CleanupViewTests, aKeyThatIsHeldDownConfirmsNothing) {
    for (const auto key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space}) {
        open({thing("a")});
        item("cleanButton").forceActiveFocus(Qt::TabFocusReason);
        holdKey(key, 1'300);
        waitForTheSheet();
        holdKey(Qt::Key_Shift);
        EXPECT_TRUE(model().pendingCleanup().has_value()) << key;
        EXPECT_FALSE(model().isCleaning()) << key;
        EXPECT_TRUE(model().outcomes().empty()) << key;
        press(Qt::Key_Escape);
        settle(250);
    }
}

TEST_F(CleanupViewTests, theSecondHalfOfADoubleClickAnswersNothing) {
    open({thing("a"), thing("b")});
    for (const bool reducedMotion : {false, true}) {
        theme().setReducedMotion(reducedMotion);
        model().requestCleanup(model().selectedItems());
        settle(100);
        click("confirmButton");
        click("cancelButton");
        press(Qt::Key_Return);
        press(Qt::Key_Tab);
        press(Qt::Key_Space);
        waitForTheSheet();
        EXPECT_TRUE(model().pendingCleanup().has_value());
        EXPECT_FALSE(model().isCleaning());
        EXPECT_TRUE(model().outcomes().empty());
        press(Qt::Key_Escape);
        settle(250);
        EXPECT_FALSE(model().pendingCleanup().has_value());
    }
    click("cleanButton");
    waitForTheSheet();
    click("confirmButton");
    ASSERT_TRUE(waitUntil([&] { return find("closeButton") != nullptr; }));
    settle();
    click("closeButton");
    click("rescanButton");
    press(Qt::Key_Return);
    waitForTheResult();
    EXPECT_TRUE(model().pendingCleanup().has_value()) << "the result has to be read";
    EXPECT_FALSE(model().isScanning());
    click("closeButton");
    EXPECT_FALSE(model().pendingCleanup().has_value());
}

TEST_F(CleanupViewTests, whileTheWarningsAreMadeReadyNothingIsConfirmed) {
    mac.answerWithScript("pgrep -x Xcode", "sleep 1.5");
    open({thing("a")});
    model().requestCleanup(model().selectedItems());
    settle(700);
    ASSERT_FALSE(confirm().isReady());
    press(Qt::Key_Return);
    ASSERT_TRUE(waitUntil([&] { return confirm().isReady(); }));
    press(Qt::Key_Return);
    click("confirmButton");
    EXPECT_TRUE(texts().join(' ').contains("Xcode sedang terbuka."));
    EXPECT_FALSE(model().isCleaning()) << "its warning has just come";
    readSheet();
    press(Qt::Key_Return);
    ASSERT_TRUE(waitUntil([&] { return !model().isCleaning() && !model().outcomes().empty(); }));
}

TEST_F(CleanupViewTests, everyOpeningOfTheSheetBeginsAfresh) {
    mac.home.file("things/a/file", {.text = "x"});
    mac.home.file("things/b/file", {.text = "x"});
    const auto a = thing("a");
    const auto b = thing("b");
    open({a, b});
    item("cleanButton").forceActiveFocus(Qt::TabFocusReason);

    model().requestCleanup({a});
    waitForTheSheet();
    while (!focusIsOn("cancelButton"))
        press(Qt::Key_Tab);
    press(Qt::Key_Escape);
    settle(250);
    model().requestCleanup({a});
    waitForTheSheet();
    EXPECT_FALSE(focusIsOn("cancelButton"));
    press(Qt::Key_Return);
    waitForTheResult();
    EXPECT_FALSE(std::filesystem::exists(a.path)) << "Return cleans";
    EXPECT_TRUE(focusIsOn("closeButton"));
    press(Qt::Key_Return);
    settle(250);
    EXPECT_FALSE(model().pendingCleanup().has_value());

    model().requestCleanup({b});
    waitForTheSheet();
    press(Qt::Key_Return);
    waitForTheResult();
    EXPECT_FALSE(std::filesystem::exists(b.path)) << "Return cleans again";
    press(Qt::Key_Return);
    EXPECT_FALSE(model().pendingCleanup().has_value());
}

TEST_F(CleanupViewTests, allThatGoesWithAnItemStandsInTheQuestion) {
    auto app = thing("App", Safety::review, CleanupAction::trash());
    app.relatedPaths = {{"/Users/tester/Library/Caches/org.example", "/Users/tester/two\nlines"}};
    const auto plain = thing("Dependency");
    open({app, plain});
    model().requestCleanup({app, plain});
    waitForTheSheet();
    EXPECT_TRUE(
        texts(&item("confirmList")).contains("~/things/App\n~/Library/Caches/org.example\n~/two\uFFFDlines"))
        << texts(&item("confirmList")).join(" | ").toStdString();
    hover("entry1");
    ASSERT_TRUE(waitUntil([&] { return texts().contains("~/things/Dependency"); }));
}

TEST_F(CleanupViewTests, theItemsOfTheSheetAreReadByKeys) {
    std::vector<CleanupItem> items;
    for (int number = 0; number < 60; ++number)
        items.push_back(thing("row " + std::to_string(number)));
    open(items);
    model().requestCleanup(items);
    waitForTheSheet();
    const auto focused = [&] {
        auto* const face = QAccessible::queryAccessibleInterface(window().activeFocusItem());
        return face ? face->text(QAccessible::Name) + "|" + face->text(QAccessible::Description) : QString();
    };
    press(Qt::Key_Tab);
    const auto size = QString::fromStdString(bytesText(1'000'000));
    press(Qt::Key_Down);
    EXPECT_EQ(focused(), "row 0, " + size + "|~/things/row 0");
    const auto frame = place("confirmList");
    EXPECT_EQ(grab().pixelColor(QPointF(frame.center().x(), frame.top() - 3).toPoint()),
              QColor(0x00, 0x64, 0xAF))
        << "the ring";
    press(Qt::Key_End);
    EXPECT_EQ(focused(), "row 59, " + size + "|~/things/row 59");
    press(Qt::Key_PageUp);
    EXPECT_NE(focused(), "row 59, " + size + "|~/things/row 59");
    press(Qt::Key_Home);
    EXPECT_EQ(focused(), "Hapus permanen, " + QString::fromStdString(bytesText(60'000'000)) + "|");
}

TEST_F(CleanupViewTests, whatCameOfItIsHeardWithTheButtonThatClosesIt) {
    mac.home.file("things/a/file", {.text = "x"});
    open({thing("a")});
    click("cleanButton");
    waitForTheSheet();
    click("confirmButton");
    waitForTheResult();
    EXPECT_TRUE(focusIsOn("closeButton"));
    EXPECT_EQ(QAccessible::queryAccessibleInterface(&item("closeButton"))->text(QAccessible::Description),
              confirm().freedText() + ", " + confirm().freeText());
}

TEST_F(CleanupViewTests, theSheetCannotBeLeftWhileItCleans) {
    auto large = thing("large");
    for (int number = 0; number < 20'000; ++number)
        std::filesystem::create_directories(things + std::string("large/") + std::to_string(number));
    open({large});
    click("cleanButton");
    waitForTheSheet();
    click("confirmButton");
    EXPECT_TRUE(model().isCleaning());
    settle(60);
    ASSERT_TRUE(model().isCleaning());
    grab("cleanup-running.png");
    press(Qt::Key_Escape);
    press(Qt::Key_Return);
    EXPECT_TRUE(model().pendingCleanup().has_value());
    EXPECT_EQ(find("cancelButton"), nullptr);
    EXPECT_EQ(find("closeButton"), nullptr);
    ASSERT_TRUE(waitUntil([&] { return !model().isCleaning(); }));
    settle();
    EXPECT_NE(find("closeButton"), nullptr);
}

// Whole ways

class CleanupJourneyTests : public CleanupViewTests {
protected:
    /// A home with three things to find, scanned.
    void scan() {
        mac.home.file("Library/Developer/Xcode/DerivedData/App/file", {.allocatedBytes = 60'000'000});
        mac.home.file("Library/Developer/Xcode/Archives/One.xcarchive/file", {.allocatedBytes = 70'000'000});
        mac.home.file("Library/Developer/CoreSimulator/Caches/dyld/file", {.allocatedBytes = 80'000'000});
        open(); // which scans by itself, where there is no report
        ASSERT_TRUE(waitUntil([&] { return model().report().has_value() && !model().isScanning(); }));
        settle();
    }
    const QString derivedData = "/Users/tester/Library/Developer/Xcode/DerivedData";
    const QString archives = "/Users/tester/Library/Developer/Xcode/Archives";
    const QString caches = "/Users/tester/Library/Developer/CoreSimulator/Caches";
    static bool isThere(const QString& path) { return std::filesystem::exists(path.toStdString()); }
};

TEST_F(CleanupJourneyTests, byTheMouse) {
    scan();
    EXPECT_NE(find("row:" + derivedData), nullptr);
    EXPECT_NE(find("row:" + caches), nullptr);
    EXPECT_EQ(find("row:" + archives), nullptr) << "not recommended";
    EXPECT_EQ(text("selectedText"), "2 item dipilih");

    click("segment3");
    EXPECT_NE(find("row:" + archives), nullptr);
    click("categoryPicker");
    settle(150);
    click("choice2");
    settle(150);
    EXPECT_EQ(model().categoryFilter(), ItemCategory::simulators);
    EXPECT_EQ(find("row:" + archives), nullptr);
    click("categoryPicker");
    settle(150);
    click("choice0");
    settle(150);

    click("searchField");
    type("arsip");
    EXPECT_NE(find("row:" + archives), nullptr);
    EXPECT_EQ(find("row:" + derivedData), nullptr);
    click("check:" + archives);
    EXPECT_EQ(text("selectedText"), "3 item dipilih");
    click("clearSearchButton");
    EXPECT_EQ(model().search(), "");
    click("check:" + caches);
    EXPECT_EQ(text("selectedText"), "2 item dipilih");
    click("clearSelectionButton");
    EXPECT_EQ(text("selectedText"), "0 item dipilih");
    EXPECT_FALSE(item("cleanButton").isEnabled());
    click("selectRecommendedButton");
    click("check:" + caches);
    click("check:" + archives);

    click("cleanButton");
    waitForTheSheet();
    EXPECT_EQ(text("confirmButton"), "Bersihkan 2 item");
    EXPECT_TRUE(isThere(derivedData));
    click("cancelButton");
    settle(250);
    EXPECT_FALSE(model().pendingCleanup().has_value());
    EXPECT_TRUE(isThere(derivedData));

    click("cleanButton");
    waitForTheSheet();
    click("confirmButton");
    waitForTheResult();
    EXPECT_FALSE(isThere(derivedData));
    EXPECT_FALSE(isThere(archives));
    EXPECT_TRUE(isThere(caches));
    EXPECT_TRUE(isThere("/Users/tester/.Trash/Archives"));
    EXPECT_TRUE(text("freedText").startsWith("Selesai 6")) << text("freedText").toStdString();
    click("rescanButton");
    settle(250);
    EXPECT_FALSE(model().pendingCleanup().has_value());
    ASSERT_TRUE(waitUntil([&] { return !model().isScanning(); }));
    settle();
    EXPECT_EQ(find("row:" + derivedData), nullptr);
    EXPECT_NE(find("row:" + caches), nullptr);
}

TEST_F(CleanupJourneyTests, byKeysAlone) {
    scan();
    item("searchField").forceActiveFocus(Qt::TabFocusReason);
    type("xcode");
    EXPECT_EQ(find("row:" + caches), nullptr);
    press(Qt::Key_Escape);
    EXPECT_NE(find("row:" + caches), nullptr);

    press(Qt::Key_Tab);
    ASSERT_TRUE(focusIsOn("filterPicker"));
    for (int step = 0; step < 3; ++step)
        press(Qt::Key_Right);
    EXPECT_EQ(model().filter(), ItemFilter::all);
    press(Qt::Key_Tab);
    ASSERT_TRUE(focusIsOn("categoryPicker"));
    press(Qt::Key_Tab);
    ASSERT_TRUE(focusIsOn("selectRecommendedButton"));
    press(Qt::Key_Tab);
    ASSERT_TRUE(focusIsOn("clearSelectionButton"));
    press(Qt::Key_Return);
    EXPECT_EQ(text("selectedText"), "0 item dipilih");
    press(Qt::Key_Tab);
    ASSERT_TRUE(focusIsOn("itemList"));
    press(Qt::Key_Home);
    press(Qt::Key_Space);
    EXPECT_THAT(model().selection(), ElementsAre(derivedData.toStdString()));
    grab("cleanup-keys.png");
    press(Qt::Key_Down);
    press(Qt::Key_Space);
    EXPECT_EQ(text("selectedText"), "2 item dipilih");
    press(Qt::Key_Space);
    press(Qt::Key_Tab);
    ASSERT_TRUE(focusIsOn("cleanButton"));
    press(Qt::Key_Space);
    waitForTheSheet();
    press(Qt::Key_Escape);
    settle(250);
    EXPECT_FALSE(model().pendingCleanup().has_value());
    ASSERT_TRUE(focusIsOn("cleanButton"));
    press(Qt::Key_Return);
    waitForTheSheet();
    press(Qt::Key_Return);
    waitForTheResult();
    EXPECT_FALSE(isThere(derivedData));
    EXPECT_TRUE(focusIsOn("closeButton"));
    press(Qt::Key_Return);
    settle(250);
    EXPECT_TRUE(focusIsOn("itemList")) << "nothing is chosen, so that nothing can be cleaned";
    EXPECT_FALSE(model().pendingCleanup().has_value());
    EXPECT_FALSE(model().isScanning());
    EXPECT_EQ(find("row:" + derivedData), nullptr);
    EXPECT_NE(find("row:" + archives), nullptr);
}

TEST_F(CleanupJourneyTests, aPathThatIsNoTextIsCleanedByItsVeryBytes) {
    const std::string odd = "Projects/odd\xff\xfe";
    mac.home.file(odd + "/package.json", {.text = "{}"});
    mac.home.file(odd + "/node_modules/x/file", {.allocatedBytes = 90'000'000});
    // What it looks like, and must not be taken for.
    const std::string alike = "Projects/odd\xef\xbf\xbd\xef\xbf\xbd";
    mac.home.file(alike + "/node_modules/x/file", {.text = "precious"});
    scan();
    click("segment3");
    const auto shown = "row:/Users/tester/Projects/odd\uFFFD\uFFFD/node_modules";
    ASSERT_NE(find(shown), nullptr) << texts().join(" | ").toStdString();
    rightClick(shown);
    click("cleanOneEntry");
    waitForTheSheet();
    click("confirmButton");
    waitForTheResult();
    EXPECT_FALSE(std::filesystem::exists(mac.home.path(odd + "/node_modules")));
    EXPECT_EQ(textOf(mac.home.path(alike + "/node_modules/x/file")), "precious");
}

// Who can't see it

TEST_F(CleanupViewTests, itReadsWell) {
    auto large = thing("DerivedData");
    large.detail = "Hasil build.";
    large.warnings = {"Tutup Xcode."};
    open({large, guided("guide")});
    const auto nameOf = [&](const QString& name) {
        auto* const face = QAccessible::queryAccessibleInterface(&item(name));
        return face ? face->text(QAccessible::Name) : QString("(nothing)");
    };
    const auto roleOf = [&](const QString& name) {
        return QAccessible::queryAccessibleInterface(&item(name))->role();
    };
    EXPECT_EQ(nameOf("searchField"), "Cari nama atau path");
    EXPECT_EQ(nameOf("filterPicker"), "Tampilkan");
    EXPECT_EQ(nameOf("categoryPicker"), "Kategori");
    EXPECT_EQ(nameOf("section:xcode"), "Xcode, " + QString::fromStdString(bytesText(1'000'000)));
    EXPECT_EQ(roleOf("items"), QAccessible::List);
    EXPECT_EQ(nameOf(rowOf("DerivedData")),
              "DerivedData, Aman, " + QString::fromStdString(bytesText(1'000'000)));
    EXPECT_EQ(
        QAccessible::queryAccessibleInterface(&item(rowOf("DerivedData")))->text(QAccessible::Description),
        "Direkomendasikan, Hapus permanen, Hasil build., ~/things/DerivedData, Tutup Xcode., 1 dari 2");
    EXPECT_EQ(roleOf(rowOf("DerivedData")), QAccessible::CheckBox);
    EXPECT_EQ(nameOf(guideOf("guide")), "Cara membersihkan");
    EXPECT_EQ(nameOf("cleanButton"), "Bersihkan…");
    EXPECT_EQ(roleOf("cleanButton"), QAccessible::Button);
}

TEST_F(CleanupViewTests, aRowIsTheCheckBoxOfItsItem) {
    QAccessible::setActive(true);
    open({thing("a"), guided("guide")});
    const auto faceOf = [&](const QString& name) {
        return QAccessible::queryAccessibleInterface(&item(name));
    };
    auto* const row = faceOf(rowOf("a"));
    EXPECT_EQ(row->role(), QAccessible::CheckBox);
    EXPECT_TRUE(row->state().checkable);
    EXPECT_TRUE(row->state().checked);
    for (int place = 0; place < row->childCount(); ++place)
        EXPECT_NE(row->child(place)->role(), QAccessible::CheckBox) << "the same twice";
    item("itemList").forceActiveFocus(Qt::TabFocusReason);
    EXPECT_TRUE(row->state().focused);
    press(Qt::Key_Space);
    EXPECT_FALSE(row->state().checked);
    row->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_TRUE(row->state().checked);
    auto* const fixed = faceOf(rowOf("guide"));
    EXPECT_FALSE(fixed->state().checkable);
    EXPECT_FALSE(fixed->state().checked);
    EXPECT_TRUE(fixed->text(QAccessible::Description).startsWith("tidak bisa dipilih, "));
    QAccessible::setActive(false);
}

TEST_F(CleanupViewTests, theTabKeyComesToTheCurrentRow) {
    open({thing("a"), guided("b"), thing("c")});
    item("clearSelectionButton").forceActiveFocus(Qt::TabFocusReason);
    press(Qt::Key_Tab);
    EXPECT_TRUE(item(rowOf("a")).hasActiveFocus());
    EXPECT_TRUE(item("itemList").property("showsFocus").toBool());
    press(Qt::Key_Down);
    EXPECT_TRUE(item(rowOf("b")).hasActiveFocus());
    press(Qt::Key_Tab);
    EXPECT_TRUE(item(guideOf("b")).hasActiveFocus());
    press(Qt::Key_Tab, Qt::ShiftModifier);
    EXPECT_TRUE(item(rowOf("b")).hasActiveFocus());
    press(Qt::Key_Tab, Qt::ShiftModifier);
    EXPECT_TRUE(item("clearSelectionButton").hasActiveFocus());
    press(Qt::Key_Tab);
    EXPECT_TRUE(item(rowOf("b")).hasActiveFocus());
    click(rowOf("c"));
    EXPECT_TRUE(item(rowOf("c")).hasActiveFocus());
    EXPECT_FALSE(item("itemList").property("showsFocus").toBool()) << "for keys only";
}

TEST_F(CleanupViewTests, theTabKeyBringsTheCurrentRowIntoView) {
    std::vector<CleanupItem> items;
    for (int number = 0; number < 100; ++number)
        items.push_back(thing("row " + std::to_string(number)));
    open(std::move(items));
    list().setProperty("contentY", 2'000.0);
    settle();
    item("clearSelectionButton").forceActiveFocus(Qt::TabFocusReason);
    press(Qt::Key_Tab);
    settle();
    EXPECT_TRUE(item(rowOf("row 0")).hasActiveFocus());
    EXPECT_GE(place(rowOf("row 0")).top(), place("items").top() + 34);
}

TEST_F(CleanupViewTests, aPathAtTheEndOfTheDetailIsNotShownTwice) {
    auto project = thing("node_modules");
    project.detail = "Dependensi proyek.\n~/things/node_modules";
    auto other = thing("other");
    other.detail = "Satu.\nDua\x1b";
    open({project, other});
    EXPECT_EQ(texts(&item(rowOf("node_modules"))).count("Dependensi proyek."), 1)
        << texts().join("|").toStdString();
    EXPECT_TRUE(texts(&item(rowOf("other"))).contains("Satu.\nDua\uFFFD"));
    EXPECT_EQ(
        QAccessible::queryAccessibleInterface(&item(rowOf("node_modules")))->text(QAccessible::Description),
        "Direkomendasikan, Hapus permanen, Dependensi proyek., ~/things/node_modules, 1 dari 2");
    EXPECT_TRUE(QAccessible::queryAccessibleInterface(&item(rowOf("other")))
                    ->text(QAccessible::Description)
                    .contains("Satu., Dua\uFFFD, ~/things/other"));
}

// Room

TEST_F(CleanupViewTests, inANarrowWindowTheLinksStandUnderThePickers) {
    open({thing("a")});
    EXPECT_LT(place("selectRecommendedButton").top(), place("filterPicker").bottom());
    resize(960, 620);
    EXPECT_GE(place("selectRecommendedButton").top(), place("filterPicker").bottom());
    EXPECT_EQ(place("selectRecommendedButton").left(), place("filterPicker").left());
}

TEST_F(CleanupViewTests, longTextsPushNothingAside) {
    auto one = thing(std::string(400, 'W'), Safety::costly);
    one.detail = std::string(4'000, 'x') + std::string(4'000, ' ') + "y";
    one.warnings = {std::string(400, 'w')};
    open({one}, {960, 620});
    EXPECT_LE(place("title").right(), place("size").left());
    EXPECT_EQ(place("size").right(), place("items").right() - 24);
    EXPECT_LE(place("warning").right(), place("verb").left());
    EXPECT_TRUE(texts().contains("Aman · unduh ulang"));
}

TEST_F(CleanupViewTests, withLargeTypeTheFiguresStandUnderTheWords) {
    setFontScale(2);
    open({thing("a")}, {960, 620});
    EXPECT_GE(place("size").top(), place("path").bottom());
    EXPECT_EQ(place("size").left(), place("path").left());
    resize(1500, 900);
    EXPECT_LT(place("size").top(), place("path").top());
}

} // namespace
} // namespace korvanti
