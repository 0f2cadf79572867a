#include "CleanupSupport.h"
#include "UiSupport.h"
#include "cleaning/ActivityLog.h"
#include "settings/AppPaths.h"
#include "support/Environment.h"

#include <QAbstractItemModelTester>
#include <QAccessible>
#include <QColor>
#include <QElapsedTimer>
#include <QSignalSpy>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace korvanti {
namespace {

using namespace korvanti::testing;
using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::StartsWith;
using Tester = QAbstractItemModelTester;

ActivityEntry entry(const std::string& title, bool success = true, const std::string& message = "Dihapus") {
    ActivityEntry made;
    made.date = instantFromSeconds(1'700'000'000);
    made.kind = "Hapus";
    made.title = title;
    made.path = "/Users/tester/Library/Caches/" + title;
    made.bytes = success ? 1'000'000 : 0;
    made.success = success;
    made.message = message;
    return made;
}

class HistoryTests : public UiTests {
protected:
    static void log(const ActivityEntry& entry) { ActivityLog(AppPaths::activity()).append(entry); }
    /// What the program does itself is logged, and read again.
    void cleanOne(const std::string& name) {
        model().requestCleanup({cache(name)});
        model().confirmCleanup();
        ASSERT_TRUE(waitFor([&] { return !model().isCleaning(); }));
        model().dismissCleanup();
        settle(250);
    }
    void open(QSize size = {1140, 760}) {
        saveReport({});
        model().setPane(Pane::history);
        window();
        resize(size.width(), size.height());
    }
    /// Of the row with that number.
    QQuickItem& part(int row, const char* name) {
        auto* const found = item(QString("entry%1").arg(row)).findChild<QQuickItem*>(name);
        if (!found)
            throw std::runtime_error("no such part");
        return *found;
    }
    const ScopedVariable language{"LC_ALL", "id_ID.UTF-8"};
};

TEST_F(HistoryTests, theNewestComesFirst) {
    log(entry("one"));
    log(entry("two", false, "Tidak ada izin."));
    const Tester tester(&history(), Tester::FailureReportingMode::Fatal);
    EXPECT_FALSE(history().isEmpty());
    EXPECT_THAT(column(history(), "title"), ElementsAre("two", "one"));
    EXPECT_THAT(column(history(), "message"), ElementsAre("Tidak ada izin.", "Dihapus"));
    EXPECT_THAT(column(history(), "path"), ElementsAre("~/Library/Caches/two", "~/Library/Caches/one"));
    EXPECT_THAT(column(history(), "fullPath"),
                ElementsAre("/Users/tester/Library/Caches/two", "/Users/tester/Library/Caches/one"));
    EXPECT_THAT(column(history(), "sizeText"), ElementsAre("0 byte", "1 MB"));
    EXPECT_THAT(column(history(), "spokenText"),
                ElementsAre("two, gagal, Tidak ada izin., 0 byte", "one, berhasil, Dihapus, 1 MB"));
    EXPECT_FALSE(roleOf(history(), 0, "success").toBool());
    EXPECT_TRUE(roleOf(history(), 1, "success").toBool());
}

TEST_F(HistoryTests, datesKeepUpWithTheClock) {
    log(entry("one"));
    auto now = instantFromSeconds(1'700'000'000 + 7'200);
    HistoryModel shown(model(), [&] { return now; });
    EXPECT_THAT(column(shown, "dateText"), ElementsAre("2 jam yang lalu"));
    QSignalSpy changed(&shown, &HistoryModel::dataChanged);
    now = instantFromSeconds(1'700'000'000 + 3 * 86'400);
    expectToFollow(*shown.clock(), changed);
    EXPECT_THAT(column(shown, "dateText"), ElementsAre("3 hari yang lalu"));
    shown.clock()->setIsShown(true);
    ASSERT_EQ(changed.count(), 1);
    EXPECT_EQ(changed.front()[2].value<QList<int>>(), QList<int>({shown.roleNames().key("dateText")}));
}

TEST_F(HistoryTests, aNewEntryComesInAboveTheOthers) {
    log(entry("one"));
    const Tester tester(&history(), Tester::FailureReportingMode::Fatal);
    QSignalSpy inserted(&history(), &HistoryModel::rowsInserted);
    QSignalSpy reset(&history(), &HistoryModel::modelReset);
    cleanOne("two");
    EXPECT_THAT(column(history(), "title"), ElementsAre("two", "one"));
    ASSERT_EQ(inserted.count(), 1);
    EXPECT_EQ(inserted[0][1].toInt(), 0);
    EXPECT_EQ(reset.count(), 0);
}

TEST_F(HistoryTests, theFirstEntryEndsTheEmptyState) {
    const Tester tester(&history(), Tester::FailureReportingMode::Fatal);
    QSignalSpy changed(&history(), &HistoryModel::isEmptyChanged);
    EXPECT_TRUE(history().isEmpty());
    cleanOne("first");
    EXPECT_EQ(changed.count(), 1);
    EXPECT_FALSE(history().isEmpty());
}

TEST_F(HistoryTests, ofMoreThanFiveHundredTheOldestFallOut) {
    for (int i = 0; i < 500; ++i)
        log(entry(std::to_string(i)));
    const Tester tester(&history(), Tester::FailureReportingMode::Fatal);
    ASSERT_EQ(history().rowCount(), 500);
    QSignalSpy removed(&history(), &HistoryModel::rowsRemoved);
    QSignalSpy reset(&history(), &HistoryModel::modelReset);
    cleanOne("new");
    EXPECT_EQ(history().rowCount(), 500);
    EXPECT_EQ(roleOf(history(), 0, "title").toString(), "new");
    EXPECT_EQ(roleOf(history(), 499, "title").toString(), "1");
    EXPECT_EQ(removed.count(), 1);
    EXPECT_EQ(reset.count(), 0);
}

TEST_F(HistoryTests, aLogThatWasReplacedIsShownAnew) {
    log(entry("one"));
    log(entry("two"));
    const Tester tester(&history(), Tester::FailureReportingMode::Fatal);
    ASSERT_EQ(history().rowCount(), 2);
    mac.home.file("Library/Application Support/Korvanti/activity.jsonl", {.text = ""});
    cleanOne("new");
    EXPECT_THAT(column(history(), "title"), ElementsAre("new"));
}

TEST_F(HistoryTests, damagedLinesAreLeftOut) {
    mac.home.file("Library/Application Support/Korvanti/activity.jsonl",
                  {.text = "{\n[]\nnull\n\n{\"id\":1}\n"});
    log(entry("good"));
    EXPECT_THAT(column(history(), "title"), ElementsAre("good"));
}

TEST_F(HistoryTests, whatToolsSayStaysText) {
    log(entry("<i>a\nb</i>", false, "ditto: satu\n  dua\t<b>tiga</b>\n"));
    log(entry("long", false, std::string(50'000, 'x')));
    EXPECT_EQ(roleOf(history(), 1, "title").toString().toStdString(), "<i>a\uFFFDb</i>");
    EXPECT_EQ(roleOf(history(), 1, "message").toString(), "ditto: satu dua <b>tiga</b>");
    EXPECT_EQ(roleOf(history(), 0, "message").toString(), QString(600, 'x') + "…");
}

// The pane

TEST_F(HistoryTests, withoutEntriesThePaneSaysWhatItIsFor) {
    open();
    EXPECT_EQ(text("emptyTitle"), "Belum ada aktivitas");
    EXPECT_EQ(text("emptyBody"), "Semua penghapusan & pemindahan tercatat di sini.");
    EXPECT_FALSE(find("historyList"));
}

TEST_F(HistoryTests, aFailureHasTheRedSymbolAndItsMessage) {
    log(entry("good", true, ""));
    log(entry("bad", false, "Tidak ada izin. Aktifkan Full Disk Access untuk Korvanti."));
    open();
    EXPECT_EQ(part(0, "mark").property("name").toString(), "xmark.octagon.fill");
    EXPECT_EQ(part(0, "mark").property("color").value<QColor>(), QColor(0xC2, 0x41, 0x2D));
    EXPECT_EQ(part(0, "message").property("text").toString(),
              "Tidak ada izin. Aktifkan Full Disk Access untuk Korvanti.");
    EXPECT_EQ(part(1, "mark").property("name").toString(), "checkmark.circle.fill");
    EXPECT_EQ(part(1, "mark").property("color").value<QColor>(), QColor(0x1A, 0x7A, 0x50));
    EXPECT_FALSE(part(1, "message").isVisible());
    EXPECT_LT(place("entry1").height(), place("entry0").height()) << "no room for what is not said";
    EXPECT_EQ(part(0, "title").property("textFormat").toInt(), 0) << "plain";
}

TEST_F(HistoryTests, fiveHundredEntriesWithFailuresAreFluent) {
    for (int i = 0; i < 500; ++i)
        log(entry(std::to_string(i), i % 3 != 0, i % 2 != 0 ? "" : "Tidak ada izin."));
    open();
    QElapsedTimer timer;
    timer.start();
    item("historyList").forceActiveFocus(Qt::TabFocusReason);
    press(Qt::Key_End);
    EXPECT_TRUE(item("entry499").hasActiveFocus());
    for (int i = 0; i < 10; ++i)
        press(Qt::Key_PageUp);
    press(Qt::Key_Home);
    EXPECT_TRUE(item("entry0").hasActiveFocus());
    press(Qt::Key_Down);
    EXPECT_TRUE(item("entry1").hasActiveFocus());
    EXPECT_LT(timer.elapsed(), 5'000);
    EXPECT_LT(item("rows").property("contentItem").value<QQuickItem*>()->childItems().size(), 60);
}

TEST_F(HistoryTests, theKeysBeginAtTheNewestEntry) {
    for (int i = 0; i < 50; ++i)
        log(entry(std::to_string(i)));
    open();
    item("historyList").forceActiveFocus(Qt::TabFocusReason);
    EXPECT_TRUE(item("entry0").hasActiveFocus());
    press(Qt::Key_Down);
    item("settingsButton").forceActiveFocus(Qt::TabFocusReason);
    cleanOne("new");
    item("historyList").forceActiveFocus(Qt::TabFocusReason);
    settle();
    EXPECT_TRUE(item("entry0").hasActiveFocus());
    EXPECT_GE(place("entry0").top(), place("rows").top()) << "it comes into view";
    EXPECT_EQ(part(0, "title").property("text").toString(), "new");
}

TEST_F(HistoryTests, longTextsPushNothingAside) {
    auto wide = entry(std::string(400, 'W'), false, std::string(300, 'x') + " " + std::string(290, 'y'));
    wide.path += "/" + std::string(600, 'p');
    log(wide);
    open({960, 620});
    EXPECT_EQ(part(0, "size").mapToScene({part(0, "size").width(), 0}).x(), window().width() - 24);
    for (const char* name : {"title", "path", "message"})
        EXPECT_LE(part(0, name).mapToScene({part(0, name).width(), 0}).x(),
                  part(0, "date").mapToScene({0, 0}).x())
            << name;
    EXPECT_LT(place("entry0").height(), 300);
}

TEST_F(HistoryTests, withLargeTypeTheFiguresStandUnderTheWords) {
    setFontScale(2);
    log(entry("one"));
    open({960, 620});
    EXPECT_GE(part(0, "size").mapToScene({}).y(),
              part(0, "message").mapToScene({0, part(0, "message").height()}).y());
    EXPECT_EQ(part(0, "size").mapToScene({}).x(), part(0, "title").mapToScene({}).x());
}

TEST_F(HistoryTests, everythingHasItsNameAndRole) {
    log(entry("bad", false, "Tidak ada izin."));
    open();
    const auto faceOf = [&](const QString& name) {
        return QAccessible::queryAccessibleInterface(&item(name));
    };
    EXPECT_EQ(faceOf("rows")->role(), QAccessible::List);
    EXPECT_EQ(faceOf("entry0")->role(), QAccessible::ListItem);
    EXPECT_EQ(faceOf("entry0")->text(QAccessible::Name), "bad, gagal, Tidak ada izin., 0 byte");
    EXPECT_THAT(faceOf("entry0")->text(QAccessible::Description).toStdString(),
                AllOf(StartsWith("~/Library/Caches/bad, "), EndsWith(", 1 dari 1")));
}

} // namespace
} // namespace korvanti
