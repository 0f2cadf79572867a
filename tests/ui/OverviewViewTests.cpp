#include "SampleReport.h"
#include "UiSupport.h"
#include "base/ByteText.h"
#include "base/Json.h"
#include "scan/ReportJson.h"
#include "support/DiskSpace.h"
#include "support/Environment.h"

#include <QAccessible>
#include <QTest>
#include <QWheelEvent>
#include <algorithm>
#include <functional>
#include <gmock/gmock.h>
#include <optional>

namespace korvanti {
namespace {

using namespace korvanti::testing;
using ::testing::IsEmpty;

class OverviewViewTests : public UiTests {
protected:
    /// What the window finds when it opens.
    void layReport() const {
        mac.home.file("Library/Application Support/Korvanti/last-report.json",
                      {.text = prettySortedJson(toJson(report))});
    }
    void open(QSize size = {920, 760}) {
        layReport();
        openUnscanned(size);
    }
    /// The pane alone, as wide as it is beside the sidebar.
    void openUnscanned(QSize size = {920, 760}) {
        auto& pane =
            show("OverviewView { objectName: 'overview' }", size,
                 {{"frame", QVariant::fromValue(&frame())}, {"model", QVariant::fromValue(&overview())}});
        pane.setSize(size);
        settle();
    }
    /// Scrolls as far as needed, as the wheel would.
    void reveal(const QString& name) {
        auto& pane = item("overviewScroll");
        QMetaObject::invokeMethod(&pane, "reveal", Q_ARG(QQuickItem*, &item(name)));
        settle();
    }
    void clickOn(const QString& name) {
        reveal(name);
        click(name);
    }
    /// By Tab, as far as it takes.
    bool focus(const QString& name) {
        for (int tabs = 0; tabs < 60; ++tabs) {
            if (item(name).hasActiveFocus())
                return true;
            press(Qt::Key_Tab);
        }
        return false;
    }
    [[nodiscard]] QAccessibleInterface* accessible(const QString& name) {
        return QAccessible::queryAccessibleInterface(&item(name));
    }
    /// Every text of the pane that is cut off, or that stands out of its place.
    std::vector<std::string> badTexts() {
        std::vector<std::string> bad;
        const std::function<void(QQuickItem*)> look = [&](QQuickItem* one) {
            if (!one->isVisible())
                return;
            if (one->inherits("QQuickText")) {
                const auto text = one->property("text").toString();
                const auto right = one->mapToScene(QPointF(one->width(), 0)).x();
                if (one->property("truncated").toBool() ||
                    one->property("contentWidth").toReal() > one->width() + 1 ||
                    right > item("overview").width())
                    bad.push_back(text.toStdString());
            }
            for (auto* child : one->childItems())
                look(child);
        };
        look(&item("overviewScroll"));
        return bad;
    }

    const ScopedVariable language{"LC_ALL", "id_ID.UTF-8"};
    std::optional<DiskSpace> space{std::in_place, sampleFreeBytes, sampleTotalBytes};
    ScanReport report = sampleReport("/Users/tester", currentInstant());
};

// What stands there

TEST_F(OverviewViewTests, theBlocksStandInOrder) {
    report.disk.hasFullDiskAccess = false;
    open();
    double above = 0;
    for (const auto* name : {"capacityText", "capacityBar", "scanLine", "accessBanner", "hero",
                             "tile:regenerable", "categoriesCard", "note:0"}) {
        EXPECT_GT(place(name).top(), above) << name;
        above = place(name).top();
    }
    EXPECT_EQ(text("capacityText"), "14,2 GB kosong dari 245,11 GB");
    EXPECT_EQ(text("scanLine"), "Dipindai 2 jam yang lalu · 41 dtk");
    EXPECT_EQ(text("recommendedText"), "31,46 GB");
    EXPECT_TRUE(text("recommendedPromise").startsWith("42 item yang dibuat ulang otomatis "));
}

TEST_F(OverviewViewTests, everyTextOfThePaneIsWordForWord) {
    report.disk.hasFullDiskAccess = false;
    open();
    const auto shown = texts();
    for (const auto* expected :
         {"Ringkasan", "Pindai ulang", "MACINTOSH HD", "Beri Korvanti akses penuh ke disk",
          "Tanpa Full Disk Access, Tong Sampah, Containers, dan media WhatsApp/Telegram tidak terlihat (bisa "
          "puluhan GB). Klik tombol di bawah, lalu seret Korvanti dari Finder ke daftar Full Disk Access dan "
          "nyalakan.",
          "Buka pengaturan Full Disk Access", "SIAP DIBERSIHKAN", "Bersihkan rekomendasi", "Lihat rinciannya",
          "Bisa dibersihkan per kategori", "Kesehatan Mac",
          "Swap besar: macOS memakai SSD sebagai RAM saat Xcode, Gradle, simulator, dan browser jalan "
          "bersamaan. Ini memakan ruang (volume VM) dan mempercepat keausan SSD. Di Mac berikutnya, RAM "
          "lebih "
          "penting daripada storage internal."})
        EXPECT_TRUE(shown.contains(expected)) << expected;
}

TEST_F(OverviewViewTests, theBannerStandsOnlyWithAReportThatSawNoAccess) {
    open();
    EXPECT_EQ(find("accessBanner"), nullptr);
}

TEST_F(OverviewViewTests, swapWithinHalfOfTheMemoryIsNoMatter) {
    report.disk.swapUsed = report.disk.physicalMemory / 2;
    open();
    EXPECT_EQ(find("swapCallout"), nullptr);
}

TEST_F(OverviewViewTests, notesAreShownAsTheyAreAndNotAsMarkup) {
    report.notes = {"<b>bold</b> &amp; <img src='x'>", "&lt;"};
    open();
    EXPECT_EQ(text("note:0"), "<b>bold</b> &amp; <img src='x'>");
    EXPECT_EQ(text("note:1"), "&lt;");
    EXPECT_EQ(find("note:2"), nullptr);
}

// Where things lead

TEST_F(OverviewViewTests, eachTileLeadsToItsItems) {
    open();
    struct Case {
        const char* tile;
        ItemFilter filter;
    };
    for (const auto& [tile, filter] : {Case{"tile:regenerable", ItemFilter::deletable},
                                       {"tile:costly", ItemFilter::deletable},
                                       {"tile:review", ItemFilter::review},
                                       {"tile:managed", ItemFilter::all}}) {
        model().setPane(Pane::overview);
        model().setFilter(ItemFilter::recommended);
        model().setCategoryFilter(ItemCategory::apps);
        settle();
        clickOn(tile);
        EXPECT_EQ(model().pane(), Pane::cleanup) << tile;
        EXPECT_EQ(model().filter(), filter) << tile;
        EXPECT_EQ(model().categoryFilter(), std::nullopt) << tile;
    }
}

TEST_F(OverviewViewTests, eachCategoryLeadsToItsItems) {
    open();
    for (const auto category : allCases<ItemCategory>) {
        model().setPane(Pane::overview);
        model().setFilter(ItemFilter::recommended);
        settle();
        const auto name = "category:" + QString::fromUtf8(rawValue(category).data());
        clickOn(name);
        EXPECT_EQ(model().pane(), Pane::cleanup) << qPrintable(name);
        EXPECT_EQ(model().filter(), ItemFilter::deletable) << qPrintable(name);
        EXPECT_EQ(model().categoryFilter(), category) << qPrintable(name);
    }
}

TEST_F(OverviewViewTests, theRecommendationIsAskedForAndNothingElse) {
    open();
    model().clearSelection();
    clickOn("cleanRecommendedButton");
    ASSERT_TRUE(model().pendingCleanup().has_value());
    EXPECT_EQ(model().pendingCleanup()->size(), 42U);
    EXPECT_EQ(model().selection().size(), 42U);
}

TEST_F(OverviewViewTests, withNothingRecommendedOnlyTheDetailsOpen) {
    std::erase_if(report.items, &CleanupItem::recommended);
    open();
    EXPECT_EQ(text("recommendedText"), "0 byte");
    clickOn("cleanRecommendedButton");
    EXPECT_FALSE(model().pendingCleanup().has_value());
    clickOn("detailsButton");
    EXPECT_EQ(model().pane(), Pane::cleanup);
    EXPECT_EQ(model().filter(), ItemFilter::recommended);
}

TEST_F(OverviewViewTests, theBannerOpensTheSettingsOfTheSystem) {
    report.disk.hasFullDiskAccess = false;
    open();
    clickOn("accessButton");
    EXPECT_EQ(desktop.settingsOpened, 1);
}

// Scanning

TEST_F(OverviewViewTests, aScanShowsItsStepsInThePlaceOfTheLineAndNothingMoves) {
    mac.answerWithScript("diskutil info -plist /", "exec sleep 1");
    open();
    const auto hero = place("hero");
    const auto button = place("rescanButton");
    click("rescanButton");
    EXPECT_TRUE(model().isScanning());
    EXPECT_FALSE(model().scanStatus().empty());
    EXPECT_EQ(text("scanLine"), overview().scanStatus());
    EXPECT_FALSE(item("rescanButton").isEnabled());
    EXPECT_EQ(place("hero"), hero);
    EXPECT_EQ(place("rescanButton"), button);
    ASSERT_TRUE(waitFor([&] { return !model().isScanning(); }));
    EXPECT_TRUE(text("scanLine").startsWith("Dipindai dalam 0 detik") ||
                text("scanLine").contains("detik yang lalu"));
    EXPECT_TRUE(item("rescanButton").isEnabled());
}

TEST_F(OverviewViewTests, barsGrowOnceAfterAScan) {
    open();
    EXPECT_EQ(item("overview").property("growth").toReal(), 1);
    click("rescanButton");
    ASSERT_TRUE(waitFor([&] { return !model().isScanning(); }));
    EXPECT_LT(item("overview").property("growth").toReal(), 1);
    settle(500);
    EXPECT_EQ(item("overview").property("growth").toReal(), 1);
}

TEST_F(OverviewViewTests, withoutAReportThereIsAnInvitationThatStaysWhereItIs) {
    mac.answerWithScript("diskutil info -plist /", "exec sleep 1");
    openUnscanned();
    EXPECT_EQ(find("overviewScroll"), nullptr);
    EXPECT_EQ(find("accessBanner"), nullptr);
    const auto shown = texts();
    for (const auto* expected :
         {"Belum dipindai",
          "Korvanti membaca folder Xcode, Android, proyek, dan cache untuk menilai mana yang aman dihapus.",
          "Pindai sekarang"})
        EXPECT_TRUE(shown.contains(expected)) << expected;
    EXPECT_EQ(find("emptyStatus"), nullptr);

    const auto button = place("emptyButton");
    click("emptyButton");
    EXPECT_TRUE(model().isScanning());
    EXPECT_FALSE(item("emptyButton").isEnabled());
    EXPECT_EQ(place("emptyButton"), button);
    ASSERT_TRUE(
        waitFor([&] { return find("emptyStatus") && text("emptyStatus") == "Membaca kondisi disk…"; }));
    ASSERT_TRUE(waitFor([&] { return !model().isScanning(); }));
    EXPECT_EQ(find("emptyState"), nullptr);
    EXPECT_NE(find("hero"), nullptr);
}

// Keyboard and accessibility

TEST_F(OverviewViewTests, everyControlIsReachedByTabInTheOrderOfThePane) {
    report.disk.hasFullDiskAccess = false;
    open();
    QStringList controls = {"rescanButton", "accessButton", "cleanRecommendedButton", "detailsButton"};
    for (const auto& row : overview().tiles()->rows())
        controls.append("tile:" + row.value("key").toString());
    for (const auto& row : overview().categories()->rows())
        controls.append("category:" + row.value("key").toString());
    ASSERT_EQ(controls.size(), 4 + 4 + 10);
    press(Qt::Key_Tab);
    for (const auto& control : controls) {
        EXPECT_TRUE(item(control).hasActiveFocus()) << qPrintable(control);
        EXPECT_TRUE(item(control).property("visualFocus").toBool()) << qPrintable(control);
        const auto lies = place(control);
        EXPECT_GE(lies.top(), 0) << qPrintable(control);
        EXPECT_LE(lies.bottom(), 760) << qPrintable(control);
        press(Qt::Key_Tab);
    }
}

TEST_F(OverviewViewTests, aRingStandsAroundWhatTheKeyboardReachedOnly) {
    open();
    const auto ringIsSeen = [&](const QString& name) {
        const std::function<bool(QQuickItem*)> look = [&](QQuickItem* one) {
            if (one->isVisible() && QString(one->metaObject()->className()).startsWith("FocusRing"))
                return true;
            return std::ranges::any_of(one->childItems(), look);
        };
        return look(&item(name));
    };
    for (const auto* name : {"tile:review", "category:xcode", "cleanRecommendedButton", "detailsButton"}) {
        EXPECT_FALSE(ringIsSeen(name)) << name;
        ASSERT_TRUE(focus(name)) << name;
        EXPECT_TRUE(ringIsSeen(name)) << name;
    }
    clickOn("tile:review");
    EXPECT_FALSE(ringIsSeen("tile:review"));
}

TEST_F(OverviewViewTests, tilesAndCategoriesOpenByKey) {
    open();
    for (const auto key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter}) {
        for (const auto* name : {"tile:managed", "category:android", "detailsButton"}) {
            model().setPane(Pane::overview);
            ASSERT_TRUE(focus(name)) << name;
            press(key);
            EXPECT_EQ(model().pane(), Pane::cleanup) << name << " " << key;
        }
    }
}

TEST_F(OverviewViewTests, whoListensHearsNamesAndRoles) {
    report.disk.hasFullDiskAccess = false;
    open();
    struct Case {
        const char* item;
        QAccessible::Role role;
        const char* name;
    };
    for (const auto& [name, role, spoken] :
         {Case{"rescanButton", QAccessible::Button, "Pindai ulang"},
          {"capacityBar", QAccessible::ProgressBar, "Terpakai 94 persen"},
          {"accessButton", QAccessible::Button, "Buka pengaturan Full Disk Access"},
          {"cleanRecommendedButton", QAccessible::Button, "Bersihkan rekomendasi"},
          {"detailsButton", QAccessible::Button, "Lihat rinciannya"},
          {"tile:regenerable", QAccessible::Button, "Aman, 33,18 GB"},
          {"tile:costly", QAccessible::Button, "Aman · unduh ulang, 21,7 GB"},
          {"tile:review", QAccessible::Button, "Periksa dulu, 38,05 GB"},
          {"tile:managed", QAccessible::Button, "Dikelola sistem, 12,44 GB"},
          {"category:xcode", QAccessible::Button, "Xcode, 28,6 GB"},
          {"health:RAM", QAccessible::StaticText, "RAM: 16 GB"}}) {
        auto* const heard = accessible(name);
        ASSERT_NE(heard, nullptr) << name;
        EXPECT_EQ(heard->role(), role) << name;
        EXPECT_EQ(heard->text(QAccessible::Name), spoken) << name;
    }
    EXPECT_EQ(accessible("tile:review")->text(QAccessible::Description),
              "Bisa berisi data bernilai. Masuk Tong Sampah dulu, atau pindahkan ke SSD.");
}

TEST_F(OverviewViewTests, aTilePressedByAnAssistantOpens) {
    open();
    auto* const actions = accessible("tile:review")->actionInterface();
    ASSERT_NE(actions, nullptr);
    actions->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(model().filter(), ItemFilter::review);
    EXPECT_EQ(model().pane(), Pane::cleanup);
}

// Measures

TEST_F(OverviewViewTests, tilesAreAlikeAndInOneRow) {
    for (const QSize size : {QSize(920, 760), QSize(740, 620)}) {
        open(size);
        const auto first = place("tile:regenerable");
        for (const auto* name : {"tile:costly", "tile:review", "tile:managed"}) {
            EXPECT_EQ(place(name).top(), first.top()) << name;
            EXPECT_EQ(place(name).height(), first.height()) << name;
            EXPECT_NEAR(place(name).width(), first.width(), 1) << name;
        }
    }
}

TEST_F(OverviewViewTests, healthStandsBesideTheCategoriesWithinItsBounds) {
    struct Case {
        int pane;
        double health;
    };
    for (const auto& [pane, health] : {Case{740, 280}, {920, 349}, {1600, 360}}) {
        open({pane, 760});
        EXPECT_NEAR(place("healthCard").width(), health, 1) << pane;
        EXPECT_EQ(place("healthCard").top(), place("categoriesCard").top());
        EXPECT_EQ(place("healthCard").left(), place("categoriesCard").right() + 18);
        EXPECT_EQ(place("healthCard").right(), pane - 24);
    }
}

TEST_F(OverviewViewTests, theSmallestCategoryHasABarOfFourPixelsAndTheLargestAllThereIs) {
    report.items.resize(2);
    report.items[0].category = ItemCategory::xcode;
    report.items[0].bytes = 500 * GB;
    report.items[1].category = ItemCategory::apps;
    report.items[1].bytes = 1;
    open();
    const auto barOf = [&](const QString& name) { return item(name).findChild<QQuickItem*>("bar"); };
    EXPECT_EQ(barOf("category:apps")->width(), 4);
    EXPECT_EQ(barOf("category:xcode")->width(), barOf("category:xcode")->parentItem()->width());
    EXPECT_EQ(find("category:android"), nullptr);
}

TEST_F(OverviewViewTests, noTextIsCutOffAtAnySize) {
    report.disk.hasFullDiskAccess = false;
    for (const double scale : {1.0, 1.3, 2.0}) {
        setFontScale(scale);
        for (const QSize size : {QSize(920, 760), QSize(740, 620), QSize(700, 620)}) {
            open(size);
            EXPECT_THAT(badTexts(), IsEmpty()) << scale << " " << size.width();
        }
    }
}

TEST_F(OverviewViewTests, theHeroGivesItsWordsThreeLinesBeforeItsActionsMoveBelow) {
    open({740, 620});
    EXPECT_GT(place("cleanRecommendedButton").left(), place("recommendedPromise").right());
    open({610, 620}); // four lines
    EXPECT_GE(place("cleanRecommendedButton").top(), place("recommendedPromise").bottom());
    setFontScale(2);
    open({740, 620});
    EXPECT_GE(place("cleanRecommendedButton").top(), place("recommendedPromise").bottom());
}

TEST_F(OverviewViewTests, theWheelScrollsAndDraggingDoesNot) {
    open({740, 400});
    auto& pane = item("overviewScroll");
    QTest::mousePress(pane.window(), Qt::LeftButton, {}, {300, 300});
    QTest::mouseMove(pane.window(), {300, 200});
    QTest::mouseMove(pane.window(), {300, 100});
    QTest::mouseRelease(pane.window(), Qt::LeftButton, {}, {300, 100});
    EXPECT_EQ(pane.property("contentY").toReal(), 0);
    QWheelEvent wheel({300, 300}, pane.window()->mapToGlobal(QPoint(300, 300)), {}, {0, -120}, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(pane.window(), &wheel);
    settle();
    EXPECT_EQ(pane.property("contentY").toReal(), 60);
}

} // namespace
} // namespace korvanti
