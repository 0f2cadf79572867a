#include "AppsSupport.h"
#include "BundleProcess.h"
#include "base/ByteText.h"

#include <QAccessible>
#include <QElapsedTimer>
#include <QTest>
#include <filesystem>
#include <gmock/gmock.h>
#include <string>
#include <vector>

namespace korvanti {
namespace {

using namespace korvanti::testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Optional;

const QString toolRow = "row:/Applications/Tool.app";
const QString gameRow = "row:/Applications/Game.app";
const QString oldRow = "row:/Applications/Old.app";
const QString systemRow = "row:/Applications/Sys.app";

QString removeOf(const std::string& name) {
    return QString::fromStdString("remove:/Applications/" + name + ".app");
}

/// The pane and its sheet over the real core in the box.
class AppsViewTests : public AppsFixture {
protected:
    void open(QSize size = {1140, 760}) {
        window();
        resize(size.width(), size.height());
        load();
        settle();
    }
    /// With every application in the list.
    void openAll(QSize size = {1140, 760}) {
        open(size);
        apps().setFilterIndex(3);
        settle();
    }
    QQuickItem& list() { return item("apps"); }
    QQuickItem* in(const QString& row, const QString& name) { return item(row).findChild<QQuickItem*>(name); }
    void openSheet(const std::string& name) {
        click(removeOf(name));
        readSheet();
        ASSERT_NE(find("uninstallButton"), nullptr);
    }
    void waitForTheQuestion() {
        ASSERT_TRUE(waitFor([&] { return confirm().isReady() && find("confirmButton") != nullptr; }));
        readSheet();
    }
    void waitForTheResult() {
        ASSERT_TRUE(waitFor([&] { return find("closeButton") != nullptr; }));
        readSheet();
    }
    bool focusIsOn(const QString& name) { return item(name).hasActiveFocus(); }
    QString nameOf(const QString& name) {
        auto* const face = QAccessible::queryAccessibleInterface(&item(name));
        return face ? face->text(QAccessible::Name) : QString("(nothing)");
    }
    QAccessible::Role accessibleRoleOf(const QString& name) {
        return QAccessible::queryAccessibleInterface(&item(name))->role();
    }
};

// What is seen

TEST_F(AppsViewTests, whileTheyAreMeasuredThePaneSaysSo) {
    mac.answerWithScript("ps -axo comm=", "exec sleep 1");
    installSome();
    window();
    model().setPane(Pane::apps);
    settle();
    EXPECT_TRUE(texts(&item("loading")).contains("Mengukur aplikasi & datanya…"));
    EXPECT_EQ(find("emptyState"), nullptr);
    EXPECT_EQ(find("appList"), nullptr);
    EXPECT_EQ(find("header"), nullptr);
    EXPECT_EQ(find("summary"), nullptr);
    EXPECT_FALSE(item("reloadButton").isEnabled());
    ASSERT_TRUE(waitFor([&] { return !model().appsLoading(); }));
    settle();
    EXPECT_EQ(find("loading"), nullptr);
    EXPECT_NE(find(gameRow), nullptr);
    EXPECT_TRUE(item("reloadButton").isEnabled());
}

TEST_F(AppsViewTests, aListShowsItsApplications) {
    installSome();
    openAll();
    const auto shown = texts();
    for (const auto* text : {"Aplikasi",
                             "Peran",
                             "Total",
                             "Terakhir dipakai",
                             "Muat ulang",
                             "Saran",
                             "Jarang dipakai",
                             "Terbesar",
                             "Semua",
                             "Tool",
                             "Game",
                             "Old",
                             "Sys",
                             "Kerja",
                             "Non-kerja",
                             "Lainnya",
                             "Sistem",
                             "3 hari yang lalu",
                             "Tidak tercatat",
                             "Masih dipakai, datanya terakhir berubah 3 hari yang lalu."})
        EXPECT_TRUE(shown.contains(text)) << text;
    EXPECT_EQ(text("summary"), apps().summary());
    EXPECT_TRUE(in(gameRow, "star")->isVisible());
    EXPECT_FALSE(in(toolRow, "star")->isVisible());
    EXPECT_TRUE(in(toolRow, "data")->isVisible());
    EXPECT_FALSE(in(gameRow, "data")->isVisible());
}

TEST_F(AppsViewTests, withoutASuggestionThereIsNoEmptyTable) {
    install("Sys", {.identifier = "com.apple.sys", .bytes = 1'000});
    open();
    EXPECT_EQ(text("emptyTitle"), "Tidak ada saran");
    EXPECT_EQ(text("emptyBody"),
              "Semua app masih dipakai. Lihat 'Terbesar' untuk app yang paling makan tempat.");
    EXPECT_EQ(find("appList"), nullptr);
    EXPECT_EQ(find("header"), nullptr);
    EXPECT_EQ(find("summary"), nullptr);
    click("segment2");
    EXPECT_EQ(text("emptyTitle"), "Tidak ada app");
    EXPECT_EQ(find("emptyBody"), nullptr);
    click("segment3");
    EXPECT_EQ(find("emptyState"), nullptr);
    EXPECT_NE(find(systemRow), nullptr);
}

TEST_F(AppsViewTests, anApplicationOfTheSystemCannotBeRemoved) {
    installSome();
    openAll();
    EXPECT_NE(find(removeOf("Tool")), nullptr);
    EXPECT_NE(find(systemRow), nullptr);
    EXPECT_EQ(find(removeOf("Sys")), nullptr);
}

TEST_F(AppsViewTests, theFiltersAreChosenByAClick) {
    installSome();
    open();
    EXPECT_EQ(find(toolRow), nullptr);
    EXPECT_NE(find(gameRow), nullptr);
    click("segment2");
    EXPECT_EQ(apps().filterIndex(), 2);
    EXPECT_NE(find(toolRow), nullptr);
    EXPECT_EQ(find(systemRow), nullptr);
    EXPECT_LT(place(toolRow).top(), place(gameRow).top());
    EXPECT_LT(place(gameRow).top(), place(oldRow).top());
}

TEST_F(AppsViewTests, theyAreListedAnewByTheButton) {
    installSome();
    open();
    install("Another", {.identifier = "org.example.another", .category = "public.app-category.games"});
    click("reloadButton");
    EXPECT_TRUE(model().appsLoading());
    EXPECT_FALSE(item("reloadButton").isEnabled());
    EXPECT_NE(find(gameRow), nullptr) << "the old ones stay meanwhile";
    ASSERT_TRUE(waitFor([&] { return !model().appsLoading(); }));
    settle();
    EXPECT_NE(find("row:/Applications/Another.app"), nullptr);
}

TEST_F(AppsViewTests, theReasonOfARoleIsToldWhenThePointerRestsOnIt) {
    installSome();
    openAll();
    QTest::mouseMove(&window(), QPoint(0, 0));
    const auto* role = in(toolRow, "role");
    QTest::mouseMove(&window(), role->mapToScene({10, role->height() / 2}).toPoint());
    EXPECT_TRUE(waitFor([&] { return texts().contains("Tool developer"); }));
    hover("reloadButton");
    EXPECT_TRUE(waitFor([&] { return !texts().contains("Tool developer"); }));
}

TEST_F(AppsViewTests, namesAreShownAsText) {
    for (const std::string name : {"<b>bold & <img src=x>", "\u05e9\u05dc\u05d5\u05dd", "odd\xff"})
        install(name, {.category = "public.app-category.games"});
    openAll();
    const auto shown = texts();
    EXPECT_TRUE(shown.contains("<b>bold & <img src=x>"));
    EXPECT_TRUE(shown.contains("odd\uFFFD"));
    const auto* name = in("row:/Applications/\u05e9\u05dc\u05d5\u05dd.app", "name");
    ASSERT_NE(name, nullptr);
    EXPECT_EQ(name->property("effectiveHorizontalAlignment").toInt(), Qt::AlignLeft);
}

TEST_F(AppsViewTests, columnsStandUnderTheirHeads) {
    installSome();
    openAll();
    EXPECT_EQ(place("apps").top(), place("header").bottom());
    const auto right = [](QQuickItem* item) { return item->mapToScene({item->width(), 0}).x(); };
    EXPECT_EQ(right(in(toolRow, "size")), right(in(gameRow, "size")));
    EXPECT_EQ(right(in(toolRow, "size")), right(in(toolRow, "data")));
    EXPECT_EQ(right(in(toolRow, "size")), 892);
    EXPECT_EQ(in(toolRow, "role")->mapToScene({0, 0}).x(), 712);
    EXPECT_EQ(in(toolRow, "used")->mapToScene({0, 0}).x(), 916);
    EXPECT_EQ(place(removeOf("Tool")).right(), 1116);
}

TEST_F(AppsViewTests, longTextsPushNothingAside) {
    install(std::string(200, 'W'),
            {.identifier = "org.example.w", .category = "public.app-category." + std::string(400, 'x')});
    installSome();
    openAll({960, 620});
    const auto row = QString("row:/Applications/" + QString(200, 'W') + ".app");
    list().setProperty("contentY", 0);
    ASSERT_NE(find(row), nullptr);
    EXPECT_LE(in(row, "name")->width(), in(row, "role")->x() - in(row, "name")->x());
    EXPECT_TRUE(in(row, "name")->property("truncated").toBool());
    EXPECT_EQ(place(removeOf(std::string(200, 'W'))).right(), 936);
}

TEST_F(AppsViewTests, withLargeTypeTheColumnsStandUnderEachOther) {
    setFontScale(2);
    installSome();
    openAll({960, 620});
    EXPECT_EQ(find("header"), nullptr);
    const auto top = [](QQuickItem* item) { return item->mapToScene({0, 0}).y(); };
    const auto bottom = [](QQuickItem* item) { return item->mapToScene({0, item->height()}).y(); };
    EXPECT_GE(top(in(toolRow, "size")), bottom(in(toolRow, "advice")));
    EXPECT_GE(top(in(toolRow, "role")), bottom(in(toolRow, "data")));
    EXPECT_GE(place(removeOf("Tool")).top(), bottom(in(toolRow, "role")));
    EXPECT_LE(place(removeOf("Tool")).bottom(), place(toolRow).bottom());
    EXPECT_GE(place("summary").top(), place("filterPicker").bottom());
}

TEST_F(AppsViewTests, aLongListStaysFluent) {
    for (int number = 0; number < 500; ++number)
        install("App " + std::to_string(number), {.category = "public.app-category.games"});
    openAll();
    ASSERT_EQ(apps().rows()->rowCount(), 500);
    auto* const content = list().property("contentItem").value<QQuickItem*>();
    EXPECT_LT(content->childItems().size(), 60);
    QElapsedTimer timer;
    timer.start();
    for (int step = 1; step <= 60; ++step) {
        list().setProperty("contentY", 100.0 * step);
        grab();
    }
    EXPECT_LT(timer.elapsed(), 12'000) << "a fifth of a second each on a machine that is busy";
    EXPECT_LT(content->childItems().size(), 80) << "rows are used again";
}

// Keys

TEST_F(AppsViewTests, arrowKeysGoFromRowToRow) {
    for (int number = 100; number < 150; ++number)
        install("App " + std::to_string(number), {.category = "public.app-category.games"});
    openAll();
    item("appList").forceActiveFocus(Qt::TabFocusReason);
    press(Qt::Key_Down);
    EXPECT_EQ(list().property("currentIndex").toInt(), 1);
    press(Qt::Key_End);
    settle();
    EXPECT_EQ(list().property("currentIndex").toInt(), 49);
    auto* const current = list().property("currentItem").value<QQuickItem*>();
    EXPECT_TRUE(current->hasActiveFocus());
    EXPECT_LE(current->mapToScene({0, current->height()}).y(), place("apps").bottom() + 1);
    press(Qt::Key_PageUp);
    EXPECT_LT(list().property("currentIndex").toInt(), 45);
    EXPECT_GT(list().property("currentIndex").toInt(), 30);
    press(Qt::Key_PageDown);
    EXPECT_EQ(list().property("currentIndex").toInt(), 49);
    press(Qt::Key_Home);
    EXPECT_EQ(list().property("currentIndex").toInt(), 0);
    press(Qt::Key_Up);
    EXPECT_EQ(list().property("currentIndex").toInt(), 0);
}

TEST_F(AppsViewTests, anotherFilterIsSeenFromItsBeginning) {
    for (int number = 0; number < 50; ++number)
        install("App " + std::to_string(number), {.category = "public.app-category.games"});
    openAll();
    list().setProperty("contentY", 1'000.0);
    click("segment2");
    settle();
    EXPECT_EQ(list().property("contentY"), list().property("originY"));
}

// The sheet

TEST_F(AppsViewTests, theSheetIsAboutItsApplication) {
    installSome();
    open();
    openSheet("Old");
    EXPECT_EQ(text("sheetName"), "Old");
    EXPECT_EQ(text("sheetOrigin"), "Versi 0.9 · App Store");
    EXPECT_EQ(text("sheetSize").toStdString(), bytesText(appNamed("Old").totalBytes()));
    EXPECT_EQ(text("sheetAdvice", "symbol"), "star.fill");
    EXPECT_EQ(text("sheetAdvice"), QString::fromStdString(appNamed("Old").advice));
    EXPECT_EQ(text("sheetPromise"), "Semua yang dipilih masuk Tong Sampah, jadi masih bisa dikembalikan. "
                                    "Ruang baru bebas setelah Tong Sampah dikosongkan.");
    EXPECT_EQ(text("choiceTitle0"), "Aplikasi");
    EXPECT_EQ(text("choicePath0"), "/Applications/Old.app");
    EXPECT_EQ(text("choiceSize0").toStdString(), bytesText(appNamed("Old").bytes));
    EXPECT_EQ(text("choiceTitle1"), "Cache");
    EXPECT_EQ(text("choicePath1"), "~/Library/Caches/org.example.old");
    EXPECT_TRUE(item("choiceCheck0").property("checked").toBool());
    EXPECT_FALSE(item("choiceCheck1").property("checked").toBool());
    EXPECT_EQ(text("uninstallButton"), moveText(appNamed("Old").bytes));
    EXPECT_EQ(find("running"), nullptr);
    click("cancelUninstallButton");
    settle(250);
    EXPECT_EQ(find("uninstallButton"), nullptr);
    EXPECT_FALSE(model().pendingCleanup().has_value());
}

TEST_F(AppsViewTests, oneThatIsInUseHasAnotherSign) {
    installSome();
    openAll();
    openSheet("Tool");
    EXPECT_EQ(text("sheetAdvice", "symbol"), "info.circle.fill");
    EXPECT_EQ(text("sheetOrigin"), "Versi 1.2");
}

TEST_F(AppsViewTests, withoutDataThereIsNoButtonForThem) {
    installSome();
    open();
    openSheet("Game");
    EXPECT_EQ(find("dataOnlyButton"), nullptr);
    EXPECT_EQ(find("choiceCheck1"), nullptr);
    EXPECT_EQ(find("sheetOrigin"), nullptr);
}

TEST_F(AppsViewTests, aClickAnywhereInARowChoosesIt) {
    installSome();
    open();
    openSheet("Old");
    click("choiceTitle1");
    EXPECT_TRUE(item("choiceCheck1").property("checked").toBool());
    click("choiceCheck1");
    EXPECT_FALSE(item("choiceCheck1").property("checked").toBool());
    click("choiceCheck0");
    EXPECT_FALSE(item("choiceCheck0").property("checked").toBool());
    EXPECT_FALSE(item("uninstallButton").isEnabled());
    click("choiceSize1");
    EXPECT_TRUE(item("uninstallButton").isEnabled());
    EXPECT_EQ(text("uninstallButton"), moveText(appNamed("Old").dataBytes()));
}

TEST_F(AppsViewTests, aSheetWithMuchToChooseScrolls) {
    install("Large", {.identifier = "org.example.large", .category = "public.app-category.games"});
    for (int number = 0; number < 20; ++number)
        layData("Library/Containers/org.example.large." + std::to_string(number), 10'000, 50);
    open();
    openSheet("Large");
    EXPECT_LT(place("choices").bottom(), place("sheetPromise").top());
    EXPECT_GT(place("choice20").top(), place("choices").bottom());
    item("choiceCheck0").forceActiveFocus(Qt::TabFocusReason);
    for (int step = 0; step < 20; ++step)
        press(Qt::Key_Tab);
    settle();
    EXPECT_TRUE(focusIsOn("choiceCheck20"));
    EXPECT_LE(place("choice20").bottom(), place("choices").bottom() + 1);
    press(Qt::Key_Space);
    EXPECT_TRUE(item("choiceCheck20").property("checked").toBool());
}

TEST_F(AppsViewTests, withLargeTypeEverythingInTheSheetCanBeReached) {
    setFontScale(2);
    installSome();
    desktop.running = {"/Applications/Old.app"};
    open({960, 620});
    apps().openUninstall(1);
    settle(250);
    EXPECT_EQ(text("sheetName"), "Old");
    for (const auto* name : {"dataOnlyButton", "cancelUninstallButton", "uninstallButton"})
        EXPECT_TRUE(QRectF(0, 0, 960, 620).contains(place(name))) << name;
    EXPECT_FALSE(place("dataOnlyButton").intersects(place("cancelUninstallButton")));
    EXPECT_FALSE(place("dataOnlyButton").intersects(place("uninstallButton")));
    EXPECT_GE(place("choices").top(), place("running").bottom());
    EXPECT_GE(place("sheetPromise").top(), place("choice1").bottom());
    item("choiceCheck1").forceActiveFocus(Qt::TabFocusReason);
    settle();
    EXPECT_LE(place("choiceCheck1").bottom(), place("uninstallButton").top());
}

TEST_F(AppsViewTests, aDoubleClickStopsAtTheQuestion) {
    installSome();
    open();
    openSheet("Old");
    doubleClick("uninstallButton");
    settle(300);
    EXPECT_TRUE(model().pendingCleanup().has_value());
    EXPECT_FALSE(model().isCleaning());
    EXPECT_TRUE(model().outcomes().empty());
    EXPECT_TRUE(std::filesystem::exists("/Applications/Old.app"));
}

TEST_F(AppsViewTests, aKeyThatIsHeldDownStopsAtTheQuestion) {
    installSome();
    open();
    openSheet("Old");
    item("uninstallButton").forceActiveFocus(Qt::TabFocusReason);
    holdKey(Qt::Key_Return, 1'300);
    EXPECT_TRUE(model().pendingCleanup().has_value());
    EXPECT_FALSE(model().isCleaning());
    EXPECT_TRUE(model().outcomes().empty());
    EXPECT_TRUE(std::filesystem::exists("/Applications/Old.app"));
}

// Whole ways

TEST_F(AppsViewTests, anApplicationGoesWithTheDataThatWereChosen) {
    installSome();
    openAll();
    openSheet("Tool");
    click("choiceCheck1");
    EXPECT_EQ(text("choicePath1"), "~/Library/Caches/org.example.tool");
    click("uninstallButton");
    waitForTheQuestion();
    EXPECT_EQ(find("uninstallButton"), nullptr);
    EXPECT_TRUE(texts(&item("confirmList")).contains("Tool"));
    EXPECT_TRUE(std::filesystem::exists("/Applications/Tool.app")) << "not before it is confirmed";
    click("confirmButton");
    waitForTheResult();
    EXPECT_FALSE(std::filesystem::exists("/Applications/Tool.app"));
    EXPECT_FALSE(std::filesystem::exists(mac.home.path("Library/Caches/org.example.tool")));
    EXPECT_TRUE(std::filesystem::exists(mac.home.path("Library/Application Support/Tool/file")));
    EXPECT_TRUE(std::filesystem::exists(mac.home.path(".Trash/Tool.app/Contents/MacOS/program")));
    EXPECT_TRUE(std::filesystem::exists(mac.home.path(".Trash/org.example.tool/file")));
    EXPECT_EQ(find("skippedText"), nullptr);
    click("closeButton");
    ASSERT_TRUE(waitFor([&] { return !model().appsLoading(); }));
    settle(250);
    EXPECT_EQ(find(toolRow), nullptr);
    EXPECT_NE(find(gameRow), nullptr);
}

TEST_F(AppsViewTests, dataGoAloneAndTheBundleStays) {
    installSome();
    openAll();
    openSheet("Tool");
    click("dataOnlyButton");
    waitForTheQuestion();
    ASSERT_TRUE(model().pendingCleanup().has_value());
    EXPECT_EQ(model().pendingCleanup()->front().path, mac.home.path("Library/Caches/org.example.tool"));
    EXPECT_TRUE(texts(&item("confirmList")).contains("Data Tool"));
    click("confirmButton");
    waitForTheResult();
    EXPECT_TRUE(std::filesystem::exists("/Applications/Tool.app/Contents/MacOS/program"));
    EXPECT_FALSE(std::filesystem::exists(mac.home.path("Library/Caches/org.example.tool")));
    EXPECT_FALSE(std::filesystem::exists(mac.home.path("Library/Application Support/Tool")));
    EXPECT_TRUE(std::filesystem::exists(mac.home.path(".Trash/org.example.tool/file")));
    EXPECT_TRUE(std::filesystem::exists(mac.home.path(".Trash/Tool/file")));
    EXPECT_THAT(desktop.recycled, IsEmpty());
    click("closeButton");
    ASSERT_TRUE(waitFor([&] { return !model().appsLoading(); }));
    settle(250);
    EXPECT_NE(find(toolRow), nullptr);
    EXPECT_FALSE(in(toolRow, "data")->isVisible());
}

TEST_F(AppsViewTests, aBundleThatCannotBeMovedGoesByTheFileManager) {
    installSome();
    mac.home.file(".Trash", {.text = "no folder"});
    desktop.whileRecycling = [&] { std::filesystem::remove(mac.home.path(".Trash")); };
    open();
    openSheet("Old");
    click("choiceCheck1");
    click("uninstallButton");
    waitForTheQuestion();
    click("confirmButton");
    waitForTheResult();
    EXPECT_THAT(desktop.recycled, ElementsAre("/Applications/Old.app"));
    EXPECT_FALSE(std::filesystem::exists("/Applications/Old.app"));
    EXPECT_TRUE(std::filesystem::exists(mac.home.path(".Trash/org.example.old/file")));
    ASSERT_EQ(model().outcomes().size(), 1U);
    EXPECT_EQ(model().outcomes().front().message, "Dipindah ke Tong Sampah lewat Finder");
    click("closeButton");
    ASSERT_TRUE(waitFor([&] { return !model().appsLoading(); }));
    settle(250);
    EXPECT_EQ(find(oldRow), nullptr);
}

TEST_F(AppsViewTests, oneThatTheFileManagerRefusesIsToldAndStays) {
    installSome();
    mac.home.file(".Trash", {.text = "no folder"});
    desktop.recycling = {std::unexpected("pengguna membatalkan")};
    open();
    openSheet("Game");
    click("uninstallButton");
    waitForTheQuestion();
    click("confirmButton");
    waitForTheResult();
    EXPECT_EQ(text("skippedText"), "1 item dilewati:");
    EXPECT_TRUE(texts(&item("skippedList")).contains("Tidak bisa dihapus: pengguna membatalkan"));
    click("closeButton");
    ASSERT_TRUE(waitFor([&] { return !model().appsLoading(); }));
    settle(250);
    EXPECT_NE(find(gameRow), nullptr);
}

TEST_F(AppsViewTests, aBundleWhoseNameIsNoTextIsRemovedByItsVeryBytes) {
    install("odd\xff\xfe", {.category = "public.app-category.games"});
    install("odd\xef\xbf\xbd\xef\xbf\xbd", {.category = "public.app-category.work"});
    open();
    const auto shown = "remove:/Applications/odd\uFFFD\uFFFD.app";
    ASSERT_NE(find(shown), nullptr);
    click(shown);
    readSheet();
    click("uninstallButton");
    waitForTheQuestion();
    click("confirmButton");
    waitForTheResult();
    EXPECT_FALSE(std::filesystem::exists("/Applications/odd\xff\xfe.app"));
    EXPECT_TRUE(std::filesystem::exists("/Applications/odd\xef\xbf\xbd\xef\xbf\xbd.app"));
}

TEST_F(AppsViewTests, aProgramThatRunsIsSeenAndEnded) {
    desktop.system = systemDesktop(mac.home.path());
    installSome();
    BundleProcess process("/Applications/Game.app/Contents/MacOS/game");
    open();
    openSheet("Game");
    EXPECT_EQ(text("runningText"), "Game sedang terbuka. Tutup dulu sebelum menghapus.");
    EXPECT_TRUE(item("uninstallButton").isEnabled());
    click("closeAppButton");
    ASSERT_TRUE(waitFor([&] { return process.signalThatEndedIt().has_value(); }));
    EXPECT_EQ(process.signalThatEndedIt(), SIGTERM);
    ASSERT_TRUE(waitFor([&] { return find("running") == nullptr; }));
    EXPECT_NE(find("uninstallButton"), nullptr);
}

TEST_F(AppsViewTests, allOfItGoesByKeysAlone) {
    installSome();
    open();
    item("filterPicker").forceActiveFocus(Qt::TabFocusReason);
    press(Qt::Key_Right);
    press(Qt::Key_Right);
    EXPECT_EQ(apps().filterIndex(), 2);
    press(Qt::Key_Tab);
    ASSERT_TRUE(focusIsOn("appList"));
    press(Qt::Key_Down);
    press(Qt::Key_Down);
    ASSERT_TRUE(focusIsOn(oldRow));
    press(Qt::Key_Tab);
    ASSERT_TRUE(focusIsOn(removeOf("Old")));
    press(Qt::Key_Space);
    settle(250);
    EXPECT_EQ(text("sheetName"), "Old");
    press(Qt::Key_Escape);
    settle(250);
    ASSERT_EQ(find("uninstallButton"), nullptr);
    ASSERT_TRUE(focusIsOn(removeOf("Old"))) << "where it was before";
    press(Qt::Key_Tab, Qt::ShiftModifier);
    press(Qt::Key_Up);
    press(Qt::Key_Down);
    ASSERT_TRUE(focusIsOn(oldRow));
    press(Qt::Key_Return);
    readSheet();
    ASSERT_NE(find("uninstallButton"), nullptr);
    press(Qt::Key_Tab);
    ASSERT_TRUE(focusIsOn("choiceCheck0"));
    press(Qt::Key_Tab);
    ASSERT_TRUE(focusIsOn("choiceCheck1"));
    press(Qt::Key_Space);
    EXPECT_EQ(text("uninstallButton"), moveText(appNamed("Old").totalBytes()));
    press(Qt::Key_Tab);
    press(Qt::Key_Tab);
    press(Qt::Key_Tab);
    ASSERT_TRUE(focusIsOn("uninstallButton"));
    press(Qt::Key_Return);
    waitForTheQuestion();
    press(Qt::Key_Return);
    waitForTheResult();
    EXPECT_FALSE(std::filesystem::exists("/Applications/Old.app"));
    EXPECT_FALSE(std::filesystem::exists(mac.home.path("Library/Caches/org.example.old")));
    press(Qt::Key_Return);
    settle(250);
    EXPECT_FALSE(model().pendingCleanup().has_value());
    ASSERT_TRUE(waitFor([&] { return !model().appsLoading(); }));
    settle();
    ASSERT_EQ(find(oldRow), nullptr);
    EXPECT_TRUE(focusIsOn(gameRow)) << "keys go on beside where the row was";
    press(Qt::Key_Up);
    EXPECT_TRUE(focusIsOn(toolRow));
}

TEST_F(AppsViewTests, theKeysOfThePanesWaitForTheSheet) {
    installSome();
    open();
    openSheet("Old");
    press(Qt::Key_1, Qt::ControlModifier);
    settle();
    EXPECT_EQ(model().pane(), Pane::apps);
    EXPECT_NE(find("uninstallButton"), nullptr);
}

TEST_F(AppsViewTests, returnConfirmsWhatIsOffered) {
    installSome();
    open();
    openSheet("Old");
    press(Qt::Key_Return);
    waitForTheQuestion();
    ASSERT_TRUE(model().pendingCleanup().has_value());
    EXPECT_EQ(model().pendingCleanup()->front().path, "/Applications/Old.app");
    EXPECT_THAT(model().pendingCleanup()->front().relatedPaths, Optional(IsEmpty()));
}

// Who can't see it

TEST_F(AppsViewTests, itReadsWell) {
    installSome();
    openAll();
    EXPECT_EQ(nameOf("filterPicker"), "Tampilkan");
    EXPECT_EQ(nameOf("reloadButton"), "Muat ulang");
    EXPECT_EQ(accessibleRoleOf("apps"), QAccessible::List);
    EXPECT_EQ(nameOf("apps"), "Aplikasi");
    EXPECT_EQ(accessibleRoleOf(toolRow), QAccessible::ListItem);
    EXPECT_EQ(nameOf(toolRow).toStdString(), "Tool, Kerja, " + bytesText(appNamed("Tool").totalBytes()));
    EXPECT_TRUE(QAccessible::queryAccessibleInterface(&item(toolRow))
                    ->text(QAccessible::Description)
                    .startsWith("Masih dipakai, "));
    EXPECT_EQ(nameOf(removeOf("Tool")), "Hapus…");
    openSheet("Old");
    EXPECT_EQ(accessibleRoleOf("choiceCheck0"), QAccessible::CheckBox);
    EXPECT_EQ(nameOf("choiceCheck0").toStdString(),
              "Aplikasi, /Applications/Old.app, " + bytesText(appNamed("Old").bytes));
    EXPECT_TRUE(QAccessible::queryAccessibleInterface(&item("choiceCheck0"))->state().checked);
    EXPECT_FALSE(QAccessible::queryAccessibleInterface(&item("choiceCheck1"))->state().checked);
    EXPECT_EQ(nameOf("dataOnlyButton"), "Hapus datanya saja");
    EXPECT_EQ(nameOf("cancelUninstallButton"), "Batal");
    EXPECT_EQ(nameOf("uninstallButton"), moveText(appNamed("Old").bytes));
    EXPECT_EQ(accessibleRoleOf("uninstallButton"), QAccessible::Button);
}

} // namespace
} // namespace korvanti
